#include "Bench.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace endtoend {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

int listenAt(const fs::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text = path;
  if (text.size() >= sizeof address.sun_path) throw std::runtime_error("path too long: " + text);
  std::copy(text.begin(), text.end(), address.sun_path);
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(listener, 1) != 0) {
    throw std::runtime_error("cannot listen at " + text);
  }
  return listener;
}

/// What the toolkit's platform for tests says of itself.
bool isHarmless(const std::string& line) {
  return line.empty() || line.starts_with("This plugin does not support ");
}

std::string lastLines(const std::string& text, std::size_t most) {
  std::size_t begin = text.size();
  for (std::size_t i = 0; i <= most && begin != std::string::npos && begin > 0; ++i) {
    begin = text.rfind('\n', begin - 1);
  }
  return begin == std::string::npos || begin == 0 ? text : "...\n" + text.substr(begin + 1);
}

}  // namespace

void PrintTo(Link link, std::ostream* out) { *out << (link == Link::gpib ? "GPIB" : "RS232"); }

std::string linkName(const ::testing::TestParamInfo<Link>& info) {
  return info.param == Link::gpib ? "Gpib" : "Serial";
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void writeFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

void Bench::SetUp() {
  std::string pattern = fs::temp_directory_path() / "pulsemod-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
  folder_ = pattern;
}

fs::path Bench::storeFile() const { return folder_ / "config" / "Pelmora PulseMod.ini"; }

fs::path Bench::portLink() const { return folder_ / "config" / "Pelmora PulseMod/ports/com1"; }

std::string Bench::storeText() const { return readFile(storeFile()); }

void Bench::setStore(const std::string& text) { writeFile(storeFile(), text); }

void Bench::storeLinkSettings() {
  setStore(std::string("[Comms]\nCommsType=") + (link_ == Link::gpib ? "2" : "1") +
           "\nGPIBAddress=13\nRS232Baud=57600\nRS232Port=1\n");
}

void Bench::startMeter() {
  writeFile(folder_ / "scenario", scenario_);
  if (link_ == Link::gpib) return;
  Process::Order order;
  order.command = {
      SIMULATED_METER,      "--link",       portLink(),      "--baud", "0", "--scenario",
      folder_ / "scenario", "--transcript", transcriptFile()};
  order.environment = environment_;
  order.environment["ASAN_OPTIONS"] = "detect_leaks=0";
  order.outputFile = folder_ / "meter.out";
  order.errorFile = folder_ / "meter.err";
  meter_ = std::make_unique<Process>(order);
  const auto deadline = Clock::now() + patience;
  while (readFile(order.outputFile).find('\n') == std::string::npos) {
    if (!meter_->isRunning() || Clock::now() > deadline) {
      throw std::runtime_error("no simulated meter: " + readFile(order.errorFile));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

void Bench::startProgram() {
  fs::create_directories(folder_ / "config");
  fs::permissions(folder_, fs::perms::owner_all);
  const fs::path socket = folder_ / "robot";
  fs::remove(socket);
  const int listener = listenAt(socket);
  Process::Order order;
  order.command = {PULSEMOD};
  order.environment = {
      {"HOME", folder_},
      {"XDG_CONFIG_HOME", folder_ / "config"},
      {"XDG_CONFIG_DIRS", folder_ / "none"},
      {"XDG_RUNTIME_DIR", folder_},
      {"QT_QPA_PLATFORM", "offscreen"},
      {"QT_PLUGIN_PATH", ROBOT_PLUGINS},
      {"QT_QPA_GENERIC_PLUGINS", "pulsemodrobot:" + socket.string()},
      {"SIMULATED_METER_SCENARIO", folder_ / "scenario"},
      {"SIMULATED_METER_TRANSCRIPT", transcriptFile()},
      {"ASAN_OPTIONS", "exitcode=99:detect_leaks=0"},
      {"UBSAN_OPTIONS", "print_stacktrace=1"},
      {"LC_ALL", "C.UTF-8"},
      {"LD_LIBRARY_PATH", gpibLibraryIsThere_ ? GPIB_LIBRARY_FOLDER : ""},
  };
  for (const auto& [name, value] : environment_) order.environment[name] = value;
  order.withoutVariables = {"QT_SCALE_FACTOR", "QT_STYLE_OVERRIDE", "DISPLAY", "WAYLAND_DISPLAY"};
  order.outputFile = folder_ / "program.out";
  order.errorFile = folder_ / "program.err";
  endExpected_ = false;
  hands_.reset();
  program_ = std::make_unique<Process>(order);
  connectRobot(listener);
  ::close(listener);
}

void Bench::connectRobot(int listener) {
  const auto deadline = Clock::now() + patience;
  while (program_->isRunning() && Clock::now() < deadline) {
    pollfd waiting{listener, POLLIN, 0};
    constexpr int sliceMs = 50;
    if (::poll(&waiting, 1, sliceMs) <= 0) continue;
    hands_ =
        std::make_unique<robot::RobotClient>(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
    hands_->setLimit(patience);
    return;
  }
  throw std::runtime_error("the robot did not come up: " + readFile(folder_ / "program.err"));
}

void Bench::startOn(Link link, const std::string& scenario) {
  useLink(link);
  setScenario(scenario);
  storeLinkSettings();
  startMeter();
  startProgram();
  hands().waitVisible("frmConfigureQuestion");
}

void Bench::startLoaded(Link link, const std::string& scenario) {
  startOn(link, scenario);
  hands().click("frmConfigureQuestion/cmdLoadPM");
  hands().waitVisible("frmMain");
}

void Bench::startCCDF(Link link, const std::string& scenario) {
  startOn(link, scenario);
  hands().click("frmConfigureQuestion/cmdCCDF");
  hands().waitVisible("frmCCDF");
}

Events Bench::awaitTranscript(const std::string& what,
                              const std::function<bool(const Events&)>& isSo) {
  const auto deadline = Clock::now() + patience;
  while (true) {
    const bool running = program_->isRunning();
    Events events = transcript();
    if (isSo(events)) return events;
    if (!running || Clock::now() > deadline) {
      throw std::runtime_error((running ? "waited in vain for " : "the program ended before ") +
                               what);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

Events Bench::awaitMessages(const std::string& text, std::size_t count) {
  return awaitTranscript(std::to_string(count) + " times " + text, [&](const Events& events) {
    return countMessages(events, text) >= count;
  });
}

void Bench::clickStart() { hands().trigger("frmMain/menuStart"); }

void Bench::clickStop() { hands().trigger("frmMain/menuStop"); }

Events Bench::markTranscript() {
  ++marks_;
  hands().trigger("frmMain/menudisplayupdate");
  return awaitMessages(marks_ % 2 == 1 ? "SYDISP OFF" : "SYDISP ON", (marks_ + 1) / 2);
}

void Bench::expectProgramEnd() {
  endExpected_ = true;
  const std::optional<int> status = program_->awaitEnd(patience);
  ASSERT_TRUE(status.has_value()) << "the program still runs";
  EXPECT_EQ(*status, 0);
}

void Bench::closeMainWindowAndExpectEnd() {
  hands().close("frmMain");
  expectProgramEnd();
}

void Bench::checkErrorFile(const char* name) {
  std::istringstream lines(readFile(folder_ / name));
  std::string unexpected;
  for (std::string line; std::getline(lines, line);) {
    if (!isHarmless(line)) unexpected += line + "\n";
  }
  EXPECT_EQ(unexpected, "") << "in " << name;
}

void Bench::tellWhatHappened() {
  constexpr std::size_t most = 40;
  std::cout << "the end of the transcript:\n" << lastLines(readFile(transcriptFile()), most);
  if (hands_ == nullptr || program_ == nullptr || !program_->isRunning()) return;
  try {
    hands_->setLimit(std::chrono::seconds(5));
    std::cout << "windows on the screen:\n" << hands_->windows() << std::endl;
  } catch (const std::exception& error) {
    std::cout << error.what() << std::endl;
  }
}

void Bench::TearDown() {
  if (HasFailure()) tellWhatHappened();
  if (program_ != nullptr) {
    const bool endedUnasked = !program_->isRunning() && !endExpected_;
    EXPECT_FALSE(endedUnasked) << "the program ended with " << *program_->awaitEnd(patience);
  }
  hands_.reset();
  program_.reset();
  if (meter_ != nullptr && meter_->isRunning()) {
    meter_->sendSignal(SIGTERM);
    EXPECT_EQ(meter_->awaitEnd(patience), std::optional<int>(0));
  }
  meter_.reset();
  checkErrorFile("program.err");
  checkErrorFile("meter.err");
  if (!offencesAllowed_) {
    EXPECT_EQ(offences(transcript()), "");
  }
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

}  // namespace endtoend
