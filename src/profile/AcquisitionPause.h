#pragma once

#include "profile/MeasurementSettings.h"

namespace pulsemod {

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

}  // namespace pulsemod
