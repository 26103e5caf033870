#pragma once

#include "profile/MeasurementSettings.h"

namespace pulsemod {

/// Switches statistics acquisition off and sends `Settings` to the meter: channel and mode, input
/// configuration, times and levels, averaging on or off, the repeat of gate 1, the active gate,
/// gates 1 to 4 with their fences, markers. Then asks whether the meter has completed it all; an
/// answer other than 1 shows a message, no answer shows nothing. Progress shows in `frmPleaseWait`.
/// Not sent: averaging count, display of the gates, measurement type, measurement of the delta
/// marker, number of points. With both channels active averaging cannot be sent: that is a `Fault`,
/// after everything before it was sent.
void WriteMeterConfig();

/// Sends the states of a gate (1 to 8, GPGATS) and of its fence (GPFENS), and then the one time
/// (GPTIMST, GPTIMSP, GPFENST or GPFENSP), if there is one.
void WriteGateConfig(int gate, GateTime time);

/// Sends the three settings of the repeat of gate 1 (GP1REPS, GP1REPN, GP1REPT).
void WriteRepeatConfig();

}  // namespace pulsemod
