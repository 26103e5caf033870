// What a scenario file says: the meter's options, its power-on settings, and its faults.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "FaultPlan.h"
#include "Meter.h"

namespace simmeter {

struct Scenario {
  MeterOptions meter;
  std::vector<std::string> setup;                // commands carried out at power-on, in order
  int address = 13;                              // GPIB, 1 to 30
  std::chrono::milliseconds boardTimeOut{1000};  // GPIB: the longest that a call waits
  std::chrono::milliseconds replyDelay{0};       // before every reply
  std::vector<FaultRule> faults;

  // One for each line that could not be used, with its number: "line 3: unknown key 'modle'".
  // Such lines have no effect.
  std::vector<std::string> problems;
};

Scenario parseScenario(std::string_view text);

// A file that cannot be read gives the defaults and one problem.
Scenario readScenario(const std::string& path);

}  // namespace simmeter
