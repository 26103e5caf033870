#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "Process.h"

namespace endtoend {

/// A virtual screen and a session bus of a test's own, on which the first program that asks for it
/// gets a bus of accessibility.
class Desktop {
 public:
  /// Why there can be none on this machine; empty when there can.
  static std::string whatIsMissing();

  /// `folder` keeps what they write.
  explicit Desktop(const std::filesystem::path& folder);

  /// What a program needs to come up there and to speak to screen readers.
  std::map<std::string, std::string> environment() const;
  const std::string& sessionBus() const { return sessionBus_; }

 private:
  std::filesystem::path folder_;
  std::optional<Process> screen_;
  std::string display_;
  std::optional<Process> bus_;
  std::string sessionBus_;
};

}  // namespace endtoend
