#pragma once

#include <chrono>
#include <cstdint>

namespace endtoend {

/// How long a user at random works: 30 seconds for every day, `PULSEMOD_RANDOM_USE_SECONDS` for a
/// long run.
std::chrono::seconds workingTime();

/// A new seed, or `PULSEMOD_RANDOM_USE_SEED`, which repeats what a run wished.
std::uint32_t chooseSeed();

}  // namespace endtoend
