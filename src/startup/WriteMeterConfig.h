#pragma once

#include <cstdint>

namespace pulsemod {

/// Sends the whole of `Settings` to the meter: channel and mode, input configuration, times and
/// levels, averaging, the repeat of gate 1, gates 1 to 4 with their fences, markers. Then asks
/// whether the meter has completed it all; an answer other than 1 shows a message, no answer shows
/// nothing. Progress shows in `frmPleaseWait`. With both channels active averaging cannot be sent:
/// that is a `Fault`, after everything before it was sent.
void WriteMeterConfig();

/// One of the four times of a gate, with the numbers that the editors use.
enum class GateTime : std::int16_t { start = 1, stop = 2, fenceStart = 3, fenceStop = 4 };

/// Sends the states of a gate (1 to 8) and of its fence, and then the one time.
void WriteGateConfig(int gate, GateTime time);

/// Sends the three settings of the repeat of gate 1.
void WriteRepeatConfig();

}  // namespace pulsemod
