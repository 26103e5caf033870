#include "platform/Services.h"

#include <cstdlib>

namespace pulsemod {

namespace {
const Services* current = nullptr;
}

const Services& services() {
  if (current == nullptr) std::abort();
  return *current;
}

ServicesGuard::ServicesGuard(const Services& installed) : previous_(current) {
  current = &installed;
}

ServicesGuard::~ServicesGuard() { current = previous_; }

}  // namespace pulsemod
