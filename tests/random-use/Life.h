#pragma once

#include <chrono>
#include <cstdint>

#include "Record.h"

namespace randomuse {

struct Plan {
  bool overSerial = false;
  bool isCCDF = false;
  std::uint64_t seed = 0;
  /// Of the whole run.
  std::uint64_t mostActs = 0;
  std::chrono::steady_clock::time_point end = std::chrono::steady_clock::time_point::max();
};

/// One start of the program to its end, in this process, which ends with it. No other life may have
/// been lived in the process.
[[noreturn]] void live(const Plan& plan, std::uint64_t seed, Record& record);

}  // namespace randomuse
