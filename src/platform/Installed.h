#pragma once

#include <cstdlib>

namespace pulsemod {

/// Makes an object the one of its kind that the whole process uses, for as long as the guard lives,
/// and brings back the one before. For what the program installs at its start and a test replaces.
template <typename Kind>
class Installed {
 public:
  explicit Installed(Kind& installed) : previous_(current) { current = &installed; }
  ~Installed() { current = previous_; }
  Installed(const Installed&) = delete;
  Installed& operator=(const Installed&) = delete;

  /// The one in use; none has been installed yet: ends the process.
  static Kind& get() {
    if (current == nullptr) std::abort();
    return *current;
  }

 private:
  static inline Kind* current = nullptr;
  Kind* previous_;
};

}  // namespace pulsemod
