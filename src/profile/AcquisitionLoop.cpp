#include "profile/AcquisitionLoop.h"

#include <algorithm>
#include <cstdint>

#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "platform/Services.h"
#include "profile/AcquisitionControl.h"
#include "profile/MeasurementSettings.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileGraph.h"
#include "profile/ProfileParameters.h"
#include "profile/ProfileReader.h"
#include "profile/ProfileView.h"
#include "profile/Readouts.h"

namespace pulsemod {

bool ProfileReadFailed = false;

namespace {

bool aMarkerIsOn() {
  return std::any_of(Settings.Markers.begin(), Settings.Markers.begin() + deltaMarker,
                     [](const MarkerSettings& marker) { return marker.Enabled != False16; });
}

void refreshReadouts() {
  if (profileView().infoBox() != nullptr) {
    ReadGateMeasurements(presentGateMeasurementMode());
    UpdateInfoBox();
  }
  if (aMarkerIsOn()) {
    ReadMarkerReadings();
    UpdateMarkersWindow();
  }
}

/// A profile that came whole is shown, also when the port was lost after it.
void acquire() {
  const float start = services().clock.secondsSinceMidnight();
  ProfileReadFailed = !ReadProfile();
  CarryOutPendingEdits();
  if (ProfileReadFailed) return;
  if (!linkIsLost()) {
    if (const auto rate = rateText(start)) profileView().showRate(*rate, rateToolTip);
    refreshReadouts();
  }
  if (!RefreshPicture()) StopAcquisition();
  services().events.processPending();
}

/// A port that is lost in the middle of a pass stops the acquisition; the conversation's end tells.
void acquireOrStop() {
  acquire();
  if (linkIsLost()) StopAcquisition();
}

/// The capture time is read twice, before and after the progress text, as the meter's users know
/// it.
void readBackAtStart() {
  if (ReadDisplayPoints() == ProfileReadout::notAProfile) return;
  ReadParameter(captureTimeParameter);
  ReadParameter(referenceLevelParameter);
  ReadParameter(scaleParameter);
  services().progress.setText("Please Wait... Reading Capture Period...");
  ReadParameter(captureTimeParameter);
  ReadParameter(triggerDelayParameter);
}

void startWhenLinkIsFree(std::uint32_t request) {
  if (request != AcquisitionRequests) return;
  try {
    ClearMeter();
    readBackAtStart();
  } catch (const Fault&) {
    StopAcquisition();
    throw;
  }
  if (linkIsLost()) return StopAcquisition();
  RefreshGraph();
  if (request == AcquisitionRequests) SetAcquisitionRunning(true);
}

}  // namespace

void RunAcquisitionLoop() {
  while (true) AcquireProfile();
}

void AcquireProfile() {
  letEventsRun(ProfileReadFailed);
  if (AcquisitionRunning == False16) return;
  try {
    converse(acquireOrStop);
  } catch (const Fault& fault) {
    StopAcquisition();
    reportFault(fault.what());
  }
}

void StartAcquisition() {
  profileView().showAcquisitionStarted();
  Conversation.lossTold = false;
  whenLinkIsFree([request = ++AcquisitionRequests] { startWhenLinkIsFree(request); });
}

void StopAcquisition() {
  profileView().showAcquisitionStopped();
  ++AcquisitionRequests;
  SetAcquisitionRunning(false);
  whenLinkIsFree(CarryOutPendingEdits);
}

void SetTriggerFreeRun() {
  whenLinkIsFree([] { SendCommand("TR3"); });
}

void SetMeterDisplayStopped(bool stopped) {
  whenLinkIsFree([stopped] { SendCommand(stopped ? "SYDISP OFF" : "SYDISP ON"); });
}

}  // namespace pulsemod
