#pragma once

#include "profile/MeasurementSettings.h"

namespace pulsemod {

/// Edits of the graph's parameters that were made while the acquisition ran. The new value stands
/// in `Settings` already; the meter does not know it yet.
struct PendingEditFlags {
  Boolean16 CaptureTime = False16;
  Boolean16 ReferenceLevel = False16;
  Boolean16 TriggerDelay = False16;
  Boolean16 GraphScale = False16;
};
extern PendingEditFlags PendingEdits;

/// Sends each pending value to the meter and takes the value that the meter reads back, in the
/// order capture time, reference level, trigger delay, scale. A failed read-back leaves the value
/// as it was entered. A value that is edited again during its own exchange stays, pending anew.
void CarryOutPendingEdits();

}  // namespace pulsemod
