// Time as every part of the simulator measures it.
#pragma once

#include <chrono>

namespace simmeter {

using Clock = std::chrono::steady_clock;  // CLOCK_MONOTONIC, as in the transcript
using TimePoint = Clock::time_point;
using Duration = Clock::duration;

}  // namespace simmeter
