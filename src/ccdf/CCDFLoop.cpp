#include "ccdf/CCDFLoop.h"

#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFReader.h"
#include "ccdf/CCDFState.h"
#include "ccdf/CCDFView.h"
#include "ccdf/MeasurementSource.h"
#include "ccdf/PowerAxis.h"
#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "platform/Services.h"
#include "profile/AcquisitionControl.h"

namespace pulsemod {

namespace {

/// A curve that came whole is shown, also when the port was lost after it.
void acquire() {
  const float start = services().clock.secondsSinceMidnight();
  const bool read = ReadCCDFData();
  CarryOutCCDFRequests();
  if (ccdfView().cursorFrameIsShown() && CCDF.CursorDragging == False16) {
    ReadCursor();
    UpdateCursorLabels();
  }
  if (read && !linkIsLost()) {
    if (const auto rate = rateText(start)) ccdfView().showRate(*rate, rateToolTip);
  }
  if (!RefreshCCDFGraph()) StopCCDF();
}

/// A port that is lost in the middle of a pass stops the acquisition; the conversation's end tells.
void acquireOrStop() {
  acquire();
  if (linkIsLost()) StopCCDF();
}

void startWhenLinkIsFree(std::uint32_t request) {
  if (request != AcquisitionRequests) return;
  ClearMeter();
  if (linkIsLost()) return StopCCDF();
  if (request == AcquisitionRequests) SetAcquisitionRunning(true);
}

}  // namespace

void RunCCDFLoop() {
  while (true) AcquireCCDF();
}

void AcquireCCDF() {
  letEventsRun(false);
  if (AcquisitionRunning == False16) return;
  try {
    converse(acquireOrStop);
  } catch (const Fault& fault) {
    StopCCDF();
    reportFault(fault.what());
  }
}

void CarryOutCCDFRequests() {
  CarryOutPowerEdits();
  CarryOutSourceRequests();
  CarryOutCursorRequests();
  CarryOutPowerRange();
}

void StartCCDF() {
  ccdfView().showAcquisitionStarted();
  Conversation.lossTold = false;
  whenLinkIsFree([request = ++AcquisitionRequests] { startWhenLinkIsFree(request); });
}

void StopCCDF() {
  ccdfView().showAcquisitionStopped();
  ++AcquisitionRequests;
  SetAcquisitionRunning(false);
  whenLinkIsFree(CarryOutCCDFRequests);
}

void RestartStatistics() {
  if (AcquisitionRunning != False16) {
    CCDFPending.RestartPending = True16;
    return;
  }
  whenLinkIsFree([] { SendCommand("PPACQRT " + ChannelText()); });
}

}  // namespace pulsemod
