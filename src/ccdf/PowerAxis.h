#pragma once

#include <cstdint>

/// The two ends of the CCDF's power axis.

namespace pulsemod {

/// How many edits each end has had. An exchange that finds its edit followed by another does not
/// store its read-back: the newer edit's own exchange is on its way.
struct PowerEditCounts {
  std::uint32_t StartPower = 0;
  std::uint32_t StopPower = 0;
};
extern PowerEditCounts PowerEdits;

/// Each end as number text, directly followed by "dBm" ("-30dBm"), into its label.
void UpdatePowerLabels();

/// Queries the meter's end of the axis (TTPST, TTPSP) into the state and its label. A failed query,
/// and a number that does not fit, leave both.
void ReadStartPower();
void ReadStopPower();

/// Clicks on `lblStartPower` and `lblStopPower`: ask for a power and store it; text that is no
/// number is 0, an empty answer changes nothing, and nothing is refused: the meter is the judge.
/// While the acquisition runs the edit becomes pending; else it is sent (TTPST, TTPSP) when the
/// link is free, and the meter's read-back is stored and shown; one that fails leaves the power as
/// it was entered. A power, in dBm, beyond single precision is a `Fault` and changes nothing.
void EditStartPower();
void EditStopPower();

/// Takes the power range of a file, in dBm. While the acquisition runs it becomes pending; else
/// both ends are sent when the link is free, unless they were edited meanwhile, and nothing is read
/// back.
void ReplacePowerRange(float startPower, float stopPower);

/// Carries out `StartPowerPending` and then `StopPowerPending`.
void CarryOutPowerEdits();

/// Carries out `PowerRangePending`: both ends are sent, then both are read back.
void CarryOutPowerRange();

}  // namespace pulsemod
