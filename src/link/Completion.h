#pragma once

namespace pulsemod {

/// Asks the meter whether all that it was sent is complete (*OPC?). An answer other than 1 shows a
/// message; no answer shows nothing.
void CheckCompleted();

}  // namespace pulsemod
