#pragma once

#include <string>
#include <vector>

#include "ccdf/CCDFState.h"
#include "profile/MeasurementSettings.h"
#include "profile/Readouts.h"

namespace pulsemod::test {

/// All that a workflow leaves behind, of the program and of what the oracle says. The columns of
/// gates, markers and cursor follow from the rest and are left out.
struct Outcome {
  enum class End {
    returned,  ///< or the loop waits for the user
    waited,    ///< for a reply that never came, until the user closed the program
    ended,     ///< the program ended itself
    broken     ///< by an exception that nobody caught: never right
  };
  End end = End::returned;
  std::vector<std::string> sent;
  /// "title|text|icon|details"
  std::vector<std::string> boxes;
  /// "started" and "stopped", of either window.
  std::vector<std::string> menus;
  int drawings = 0;
  bool running = false;
  bool progressShown = false;
  std::int32_t meterModel = 0;

  MeasurementSettings settings;
  Trace profile{};
  decltype(GateReadings) readings{};
  CCDFSettings ccdf;
  Trace curve{};
};

/// Where the two differ, in words; empty when they do not.
std::string differences(const Outcome& expected, const Outcome& actual);

}  // namespace pulsemod::test
