#pragma once

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <locale>
#include <string>
#include <system_error>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace pulsemod::test {

/// A locale with a decimal comma for as long as it lives. Taken from the system, or else built once
/// into the temporary folder.
class CommaLocale {
 public:
  CommaLocale() {
    active_ = install();
    if (!active_ && buildLocale()) active_ = install();
    // Streams have a locale of their own.
    std::locale::global(std::locale(previous_, new CommaPunctuation));
  }
  ~CommaLocale() {
    std::locale::global(previous_);
    std::setlocale(LC_ALL, "C");
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  /// False when the system can neither offer nor build such a locale.
  bool isActive() const { return active_; }

 private:
  static constexpr auto name_ = "de_DE.UTF-8";

  class CommaPunctuation : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };

  static bool install() {
    if (std::setlocale(LC_ALL, name_) == nullptr) return false;
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%.1f", 0.5);
    return text[1] == ',';
  }

  static bool buildLocale() {
#ifdef _WIN32
    return false;
#else
    namespace fs = std::filesystem;
    const fs::path kept = fs::temp_directory_path() / "pulsemod-test-locales";
    std::error_code error;
    if (!fs::exists(kept / name_, error)) {
      // Several tests may build it at the same time: each in a folder of its own.
      const fs::path own = kept.string() + "-" + std::to_string(getpid());
      fs::create_directories(own, error);
      const std::string command =
          "localedef -i de_DE -f UTF-8 '" + (own / name_).string() + "' >/dev/null 2>&1";
      const bool built = std::system(command.c_str()) == 0;
      if (built) fs::rename(own, kept, error);
      if (!built || error) fs::remove_all(own, error);
    }
    return fs::exists(kept / name_, error) && setenv("LOCPATH", kept.c_str(), 1) == 0;
#endif
  }

  std::locale previous_;
  bool active_ = false;
};

}  // namespace pulsemod::test
