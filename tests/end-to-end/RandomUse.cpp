#include "RandomUse.h"

#include <cstdlib>
#include <random>

namespace endtoend {

std::chrono::seconds workingTime() {
  constexpr int everyDay = 30;
  const char* const wished = std::getenv("PULSEMOD_RANDOM_USE_SECONDS");
  return std::chrono::seconds(wished != nullptr ? std::atoi(wished) : everyDay);
}

std::uint32_t chooseSeed() {
  const char* const wished = std::getenv("PULSEMOD_RANDOM_USE_SEED");
  return wished != nullptr ? static_cast<std::uint32_t>(std::strtoul(wished, nullptr, 10))
                           : std::random_device()();
}

}  // namespace endtoend
