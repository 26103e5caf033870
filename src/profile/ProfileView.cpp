#include "profile/ProfileView.h"

#include <cstdlib>

namespace pulsemod {

namespace {
ProfileView* current = nullptr;
}

ProfileView& profileView() {
  if (current == nullptr) std::abort();
  return *current;
}

ProfileViewGuard::ProfileViewGuard(ProfileView& view) : previous_(current) { current = &view; }

ProfileViewGuard::~ProfileViewGuard() { current = previous_; }

}  // namespace pulsemod
