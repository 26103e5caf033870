#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "profile/MeasurementSettings.h"

/// What the two acquisition loops share: starting, stopping and pausing, their wait, their rate.

namespace pulsemod {

/// Counts the starts and stops that the user asked for. A start whose exchange finds the count
/// moved on was overtaken by a stop or another start, and does not set `AcquisitionRunning`.
extern std::uint32_t AcquisitionRequests;

/// While the mouse holds something on a graph no data are fetched: `AcquisitionRunning` is False,
/// and what it will be afterwards stands here. Written by the functions below alone.
struct AcquisitionPauseState {
  Boolean16 Paused = False16;
  Boolean16 SavedRunning = False16;
};
extern AcquisitionPauseState AcquisitionPause;

/// A button went down on a graph. A second pause before the first one's end changes nothing.
void PauseAcquisition();

/// The button is up: the acquisition goes on if it was running, or was started meanwhile, and was
/// not stopped.
void ResumeAcquisition();

/// Start and Stop. During a pause this takes effect when the pause ends.
void SetAcquisitionRunning(bool running);

/// The head of a loop's pass: lets the user interface run. While the acquisition does not run this
/// waits for an event, and after a failed read for one or for 10 ms, so that a dead board does not
/// take the processor.
void letEventsRun(bool lastReadFailed);

/// "Profile/Second: 48.31", with one or two decimals, from the clock's reading (seconds since
/// midnight) at the start of the pass until now; nothing when the clock has not moved.
std::optional<std::string> rateText(float start);
inline constexpr auto rateToolTip =
    "Update speed of the GPIB, not the update speed of this display";

}  // namespace pulsemod
