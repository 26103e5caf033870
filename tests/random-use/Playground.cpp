#include "Playground.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

#include "ccdf/CCDFGraphFile.h"
#include "settings/SettingsFile.h"
#include "tracefiles/ProfileTraceFile.h"

namespace randomuse {

namespace fs = std::filesystem;

namespace {

void write(const std::string& name, const std::string& content) {
  std::ofstream(name, std::ios::binary) << content;
}

/// With more points than the program holds.
std::string withTooManyPoints(std::string text) {
  constexpr std::string_view head = "Graph Points\t";
  constexpr int tooMany = 450;
  const std::size_t at = text.find(head);
  if (at == std::string::npos) std::abort();
  const std::size_t count = at + head.size();
  text.replace(count, text.find_first_of("\r\n", count) - count, std::to_string(tooMany));
  for (int point = 0; point < tooMany; ++point) text += "1\t1\r\n";
  return text;
}

/// The inputs that the fuzzers of the files began with, spoilt ones for the most part.
void copyInputs(const std::string& kind) {
  std::vector<fs::path> inputs;
  for (const auto& entry : fs::directory_iterator(fs::path(FUZZ_CORPUS) / kind)) {
    inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    fs::copy_file(inputs[i], "spoilt/" + kind + std::to_string(i) + ".txt");
  }
}

}  // namespace

Playground::Playground() {
  std::string pattern = (fs::temp_directory_path() / "random-use-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) std::abort();
  folder_ = pattern;
  fs::current_path(folder_);
  // The toolkit's own settings.
  setenv("HOME", folder_.c_str(), 1);
  for (const char* place : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
    setenv(place, folder_.c_str(), 1);
  }
}

Playground::~Playground() {
  fs::current_path("/");
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void Playground::fill() {
  for (const auto& entry : fs::directory_iterator(".")) fs::remove_all(entry.path());
  for (const char* folder : {"folder", "spoilt"}) fs::create_directory(folder);
  write("profile.txt", pulsemod::profileTraceText());
  write("curve.txt", pulsemod::ccdfGraphText());
  write("settings.txt", pulsemod::settingsText());
  write("folder/settings.txt", pulsemod::settingsText());
  write("long-profile.txt", withTooManyPoints(pulsemod::profileTraceText()));
  write("long-curve.txt", withTooManyPoints(pulsemod::ccdfGraphText()));
  write("half.txt", pulsemod::profileTraceText().substr(0, 300));
  write("empty.txt", "");
  write("noise.txt", std::string(5000, '\xfe'));
  write("huge.txt", std::string(std::size_t{5} * 1024 * 1024, '1'));
  write("unreadable.txt", "1");
  fs::permissions("unreadable.txt", fs::perms::none);
  fs::create_symlink("nowhere.txt", "broken-link.txt");
  fs::create_symlink("/dev/null", "device.txt");
  if (mkfifo("pipe.txt", S_IRUSR | S_IWUSR) != 0) std::abort();
  for (const char* kind : {"trace-file", "curve-file", "settings-file"}) copyInputs(kind);
}

std::string Playground::anyName(Chance& chance) {
  static const std::vector<std::string> whole{"profile.txt", "curve.txt", "settings.txt",
                                              "folder/settings.txt"};
  static const std::vector<std::string> odd{"half.txt",
                                            "empty.txt",
                                            "noise.txt",
                                            "long-profile.txt",
                                            "long-curve.txt",
                                            "huge.txt",
                                            "unreadable.txt",
                                            "broken-link.txt",
                                            "device.txt",
                                            "pipe.txt",
                                            "folder",
                                            "missing.txt",
                                            "no suffix",
                                            "missing-folder/a.txt",
                                            "\xc3\xbc \xe2\x82\xac.txt",
                                            "a picture.png",
                                            "drawing.SVG",
                                            "page.pdf",
                                            "trailing. ",
                                            std::string(300, 'n')};
  static const std::vector<std::string> kinds{"trace-file", "curve-file", "settings-file"};
  if (chance.percent(40)) return chance.among(whole);
  if (chance.percent(60)) return chance.among(odd);
  constexpr int inputsOfEach = 30;
  return "spoilt/" + chance.among(kinds) + std::to_string(chance.below(inputsOfEach)) + ".txt";
}

}  // namespace randomuse
