#pragma once

#include "profile/MeasurementSettings.h"

namespace pulsemod {

/// Sends the whole of `Settings` to the meter: channel and mode, input configuration, times and
/// levels, averaging, the repeat of gate 1, gates 1 to 4 with their fences, markers. Then asks
/// whether the meter has completed it all; an answer other than 1 shows a message, no answer shows
/// nothing. Progress shows in `frmPleaseWait`. With both channels active averaging cannot be sent:
/// that is a `Fault`, after everything before it was sent.
void WriteMeterConfig();

/// Sends the states of a gate (1 to 8) and of its fence, and then the one time, if there is one.
void WriteGateConfig(int gate, GateTime time);

/// Sends the three settings of the repeat of gate 1.
void WriteRepeatConfig();

}  // namespace pulsemod
