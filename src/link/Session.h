#pragma once

namespace pulsemod {

/// Ends the program at once: on GPIB the board is taken offline first; exchanges that were kept
/// never run. For the close of the main window, Exit, and faults after which the program cannot go
/// on.
[[noreturn]] void EndSession();

}  // namespace pulsemod
