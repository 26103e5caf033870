#include "profile/AcquisitionControl.h"

#include "link/NumberText.h"
#include "platform/Services.h"

namespace pulsemod {

std::uint32_t AcquisitionRequests = 0;
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
  (paused ? AcquisitionPause.SavedRunning : AcquisitionRunning) = boolean16(running);
}

void letEventsRun(bool lastReadFailed) {
  constexpr int pauseAfterFailureMs = 10;
  EventQueue& events = services().events;
  if (AcquisitionRunning == False16) {
    events.processUntilEvent();
  } else if (lastReadFailed) {
    events.processUntilEventOr(pauseAfterFailureMs);
  } else {
    events.processPending();
  }
}

std::optional<std::string> rateText(float start) {
  const float elapsed = onDayOf(start, services().clock.secondsSinceMidnight()) - start;
  // The clock's steps are longer than a fast pass late in the day: no rate can be told then.
  if (elapsed <= 0) return std::nullopt;
  return "Profile/Second: " + fixedText(1.0 / static_cast<double>(elapsed), 1, 2);
}

}  // namespace pulsemod
