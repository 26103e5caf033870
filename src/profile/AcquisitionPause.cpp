#include "profile/AcquisitionPause.h"

namespace pulsemod {

AcquisitionPauseState AcquisitionPause;

void PauseAcquisition() {
  if (AcquisitionPause.Paused != False16) return;
  AcquisitionPause = {True16, AcquisitionRunning};
  AcquisitionRunning = False16;
}

void ResumeAcquisition() {
  if (AcquisitionPause.Paused == False16) return;
  AcquisitionRunning = AcquisitionPause.SavedRunning;
  AcquisitionPause = {};
}

void SetAcquisitionRunning(bool running) {
  const bool paused = AcquisitionPause.Paused != False16;
  (paused ? AcquisitionPause.SavedRunning : AcquisitionRunning) = running ? True16 : False16;
}

}  // namespace pulsemod
