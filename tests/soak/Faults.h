#pragma once

#include <span>

#include "Ledger.h"

namespace soak {

/// What is acquired, and how.
enum class Kind { gpib, rs232, readouts, ccdf };

/// One fault of the simulated meter, in the words of its scenario. Its occurrence counts from the
/// moment at which it is laid out.
struct Fault {
  const char* rule;
  Fate fate = Fate::dropped;
  /// It strikes when the acquisition starts, so the user stops and starts it.
  bool atStart = false;
};

/// Every fault of this kind of run that does not end the program.
std::span<const Fault> faultsOf(Kind kind);

}  // namespace soak
