#include "ccdf/CCDFCursor.h"

#include <cmath>
#include <string>

#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFState.h"
#include "ccdf/CCDFView.h"
#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "platform/Services.h"
#include "profile/AcquisitionControl.h"
#include "profile/GraphFault.h"

namespace pulsemod {

CCDFMouseState CCDFMouse;

namespace {

bool cursorIsOn() { return CCDF.CursorOn != False16; }

/// Takes a power and a share from a reply, both or none.
bool storeCursor(const std::string& reply, int powerField, int percentField) {
  const std::string powerText = SplitReply(reply, powerField);
  const std::string percentText = SplitReply(reply, percentField);
  const auto power = leadingSingle(powerText);
  const auto percent = leadingSingle(percentText);
  if (powerText.empty() || percentText.empty() || !power || !percent) return false;
  CCDF.CursorPower = *power;
  CCDF.CursorPercent = *percent;
  return true;
}

/// Queries the cursor and stores its power and share. False when nothing was stored.
bool queryCursor(const std::string& query, int powerField, int percentField) {
  const std::uint32_t edits = CCDFMouse.CursorEdits;
  std::string reply;
  if (!QueryMeter(query + " " + ChannelText(), reply)) return false;
  // A place that the user has chosen, and the meter does not know yet, stays.
  const bool placedMeanwhile = edits != CCDFMouse.CursorEdits || CCDF.CursorDragging != False16 ||
                               CCDFPending.CursorPositionPending != False16;
  if (placedMeanwhile) return false;
  return storeCursor(reply, powerField, percentField);
}

void sendCursorSwitch(const char* state) { SendCommand("TTMKS " + ChannelText() + "," + state); }

void tellCursorOn() {
  sendCursorSwitch("ON");
  ReadCursor();
  UpdateCursorLabels();
}

void tellCursorOff() {
  sendCursorSwitch("OFF");
  UpdateCursorLabels();
}

void setSizingPointer(bool sizing) {
  CCDFMouse.SizingPointer = boolean16(sizing);
  ccdfView().setSizingPointer(sizing);
}

void dragCursor(double x) {
  constexpr float thousandth = 1000;
  // From here on a single has no decimals, and a thousand times as much need not be one.
  constexpr float wholeFrom = 8388608;
  const float power = XToPower(x);
  const bool inside = power > CCDF.StartPower && power < CCDF.StopPower;
  if (!inside || !cursorIsOn() || CCDFMouse.SizingPointer == False16) return;
  CCDF.CursorX = static_cast<float>(x);
  CCDF.CursorPower =
      std::fabs(power) < wholeFrom ? std::round(power * thousandth) / thousandth : power;
  ++CCDFMouse.CursorEdits;
  UpdateCursorLabels();
}

void sendCursorTo(float power) {
  CCDF.CursorPower = power;
  SendCursorPosition();
}

void carryOutPosition() {
  constexpr int powerField = 1;
  constexpr int percentField = 2;
  SendCursorPosition();
  queryCursor("TTMKPOS?", powerField, percentField);
  UpdateCursorLabels();
}

bool takeRequest(Boolean16& pending) {
  const bool requested = pending != False16;
  pending = False16;
  return requested;
}

void followPointer(double x) {
  if (CCDF.CursorDragging != False16) return dragCursor(x);
  const double distance = std::fabs(x - static_cast<double>(CCDF.CursorX));
  setSizingPointer(cursorIsOn() && distance <= cursorHitTolerance);
}

}  // namespace

void ReadCursor() {
  constexpr int percentField = 1;
  constexpr int powerField = 2;
  if (!cursorIsOn() || !queryCursor("TTMKRO", powerField, percentField)) return;
  // Through the texts, as the axis is computed: ends that read the same leave it no length.
  const bool axisHasLength = throughText(CCDF.StartPower) != throughText(CCDF.StopPower);
  if (axisHasLength) CCDF.CursorX = PowerToX(CCDF.CursorPower);
}

void SendCursorPosition() {
  SendCommand("TTMKPOS " + ChannelText() + "," + numberText(CCDF.CursorPower));
}

void UpdateCursorLabels() {
  if (!cursorIsOn()) return ccdfView().hideCursor();
  ccdfView().showCursor(numberText(CCDF.CursorPower) + "dBm", numberText(CCDF.CursorPercent) + "%",
                        static_cast<double>(CCDF.CursorX));
}

void SwitchCursorOn() {
  CCDF.CursorOn = True16;
  if (AcquisitionRunning != False16) {
    CCDFPending.CursorOnPending = True16;
    // Off is carried out after on: an older wish must not win.
    CCDFPending.CursorOffPending = False16;
  } else {
    whenLinkIsFree(tellCursorOn);
  }
  ccdfView().setCursorMenus(true);
  UpdateCursorLabels();
}

void SwitchCursorOff() {
  CCDF.CursorOn = False16;
  if (AcquisitionRunning != False16) {
    CCDFPending.CursorOffPending = True16;
  } else {
    whenLinkIsFree(tellCursorOff);
  }
  ccdfView().setCursorMenus(false);
  UpdateCursorLabels();
}

void EditCursorPosition() {
  const std::string answer =
      services().dialogs.askText("Enter the required Posistion of the Cursor",
                                 "Setting the cursor Position ", numberText(CCDF.CursorPower));
  if (answer.empty()) return;
  const float power = checkedSingle(leadingNumber(answer));
  CCDF.CursorPower = power;
  const std::uint32_t edit = ++CCDFMouse.CursorEdits;
  if (AcquisitionRunning != False16) {
    CCDFPending.CursorPositionPending = True16;
    return;
  }
  whenLinkIsFree([power, edit] {
    if (edit != CCDFMouse.CursorEdits) return;
    sendCursorTo(power);
    ReadCursor();
    UpdateCursorLabels();
  });
}

void CarryOutCursorRequests() {
  if (takeRequest(CCDFPending.CursorOnPending)) tellCursorOn();
  if (takeRequest(CCDFPending.CursorOffPending)) tellCursorOff();
  if (takeRequest(CCDFPending.CursorPositionPending)) carryOutPosition();
}

void CCDFButtonDown() {
  if (CCDF.CursorDragging != False16) return;
  CCDF.CursorDragging = True16;
  PauseAcquisition();
}

void CCDFMouseMove(PicturePoint pointer) {
  try {
    followPointer(pointer.x);
  } catch (const Fault& fault) {
    reportGraphFaultOnce(fault);
  }
}

void CCDFMouseLeave() {
  if (CCDF.CursorDragging == False16) setSizingPointer(false);
}

void CCDFButtonUp() {
  if (CCDF.CursorDragging == False16) return;
  ResumeAcquisition();
  CCDF.CursorDragging = False16;
  if (!cursorIsOn()) return;
  if (Conversation.open && AcquisitionRunning != False16) {
    CCDFPending.CursorPositionPending = True16;
    return;
  }
  whenLinkIsFree([power = CCDF.CursorPower, edit = CCDFMouse.CursorEdits] {
    if (edit == CCDFMouse.CursorEdits) sendCursorTo(power);
  });
}

void MoveCursorBy(double points) {
  if (!cursorIsOn()) return;
  CCDFButtonDown();
  setSizingPointer(true);
  CCDFMouseMove({static_cast<double>(CCDF.CursorX) + points, 0});
}

void EndCursorMove() {
  setSizingPointer(false);
  CCDFButtonUp();
}

}  // namespace pulsemod
