#pragma once

#include <string>

#include "link/MeterLink.h"

namespace pulsemod::test {

/// The two queries differ in their polling over GPIB alone.
using Query = bool (*)(const std::string&, std::string&);
constexpr Query queries[] = {QueryMeter, QueryMeterWhenReady};

}  // namespace pulsemod::test
