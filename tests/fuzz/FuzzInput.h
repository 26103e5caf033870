#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "link/Fault.h"

namespace pulsemod::fuzz {

/// What must hold whatever came in. Where it does not the process ends, and libFuzzer keeps the
/// input.
inline void require(bool holds, std::string_view property) {
  if (holds) return;
  std::cerr << "BROKEN: " << property << std::endl;
  std::abort();
}

/// Runs `part`; true when a `Fault` left it. All else that leaves it ends the process.
template <typename Part>
bool faults(const Part& part) {
  try {
    part();
  } catch (const Fault& fault) {
    require(fault.what()[0] != '\0', "a fault says what is wrong");
    return true;
  }
  return false;
}

/// The bytes of one run, taken from the front.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  std::string_view rest() const { return rest_; }
  bool atEnd() const { return rest_.empty(); }

  /// 0 at the end.
  std::uint8_t byte() {
    if (rest_.empty()) return 0;
    const auto first = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return first;
  }

  /// What stands before the next `separator`, or all.
  std::string piece(char separator) {
    const std::size_t end = std::min(rest_.find(separator), rest_.size());
    const std::string found(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return found;
  }

 private:
  std::string_view rest_;
};

}  // namespace pulsemod::fuzz
