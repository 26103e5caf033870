// Carries a conformance case out on a build of the simulated meter.
#pragma once

#include <string>
#include <string_view>

#include "ConformanceCases.h"

namespace simmeter {

struct MeterBuild {
  std::string library;     // the GPIB library
  std::string program;     // the meter on a serial line
  std::string brokenRule;  // of a build whose rules can be broken; empty: none
};

enum class Link { kGpib, kLine };
constexpr std::string_view linkName(Link link) { return link == Link::kGpib ? "GPIB" : "RS232"; }

bool usesLink(const ConformanceCase& one, Link link);

// A fresh meter in a process of its own, so that a meter that hangs or crashes fails the case and
// nothing else. Empty when the meter keeps the rule, or the first step that shows that it does not.
std::string runCase(const ConformanceCase& one, Link link, const MeterBuild& build);

}  // namespace simmeter
