#include "ccdf/PowerAxis.h"

#include <string>

#include "ccdf/CCDFState.h"
#include "ccdf/CCDFView.h"
#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "platform/Services.h"

namespace pulsemod {

PowerEditCounts PowerEdits;

namespace {

struct AxisEnd {
  const char* mnemonic;
  float& power;
  Boolean16& pending;
  std::uint32_t& count;
  void (CCDFView::*setLabel)(const std::string& caption);
  const char* prompt;
  const char* title;
};

// The spelling and the blank at the end are those that the meter's users know.
const AxisEnd startEnd{"TTPST",
                       CCDF.StartPower,
                       CCDFPending.StartPowerPending,
                       PowerEdits.StartPower,
                       &CCDFView::setStartPowerLabel,
                       "Enter new Starting Power in dBm",
                       "Starting Power"};
const AxisEnd stopEnd{"TTPSP",
                      CCDF.StopPower,
                      CCDFPending.StopPowerPending,
                      PowerEdits.StopPower,
                      &CCDFView::setStopPowerLabel,
                      "Enter new Stoping Power in dBm",
                      "Stoping Power "};

void updateLabel(const AxisEnd& end) { (ccdfView().*end.setLabel)(numberText(end.power) + "dBm"); }

void send(const AxisEnd& end) {
  SendCommand(std::string(end.mnemonic) + " " + ChannelText() + "," + numberText(end.power));
}

/// A read-back that arrives after a newer edit than the `count`-th is that of the older one.
void readBack(const AxisEnd& end, std::uint32_t count) {
  constexpr int powerField = 1;
  std::string reply;
  if (!QueryMeter(std::string(end.mnemonic) + "? " + ChannelText(), reply)) return;
  const auto power = leadingSingle(SplitReply(reply, powerField));
  if (!power || count != end.count) return;
  end.power = *power;
  updateLabel(end);
}

void tellMeter(const AxisEnd& end) {
  // Before the command, since events run while it leaves.
  const std::uint32_t count = end.count;
  send(end);
  UpdatePowerLabels();
  readBack(end, count);
}

void edit(const AxisEnd& end) {
  const std::string answer =
      services().dialogs.askText(end.prompt, end.title, numberText(end.power));
  if (answer.empty()) return;
  end.power = checkedSingle(leadingNumber(answer));
  const std::uint32_t count = ++end.count;
  if (AcquisitionRunning != False16) {
    end.pending = True16;
    return;
  }
  whenLinkIsFree([&end, count] {
    if (count == end.count) tellMeter(end);
  });
}

void carryOut(const AxisEnd& end) {
  if (end.pending == False16) return;
  end.pending = False16;
  tellMeter(end);
}

}  // namespace

void UpdatePowerLabels() {
  updateLabel(startEnd);
  updateLabel(stopEnd);
}

void ReadStartPower() { readBack(startEnd, startEnd.count); }

void ReadStopPower() { readBack(stopEnd, stopEnd.count); }

void EditStartPower() { edit(startEnd); }

void EditStopPower() { edit(stopEnd); }

void ReplacePowerRange(float startPower, float stopPower) {
  CCDF.StartPower = startPower;
  CCDF.StopPower = stopPower;
  const std::uint32_t startCount = ++PowerEdits.StartPower;
  const std::uint32_t stopCount = ++PowerEdits.StopPower;
  if (AcquisitionRunning != False16) {
    CCDFPending.PowerRangePending = True16;
    return;
  }
  UpdatePowerLabels();
  whenLinkIsFree([startCount, stopCount] {
    if (startCount == PowerEdits.StartPower) send(startEnd);
    if (stopCount == PowerEdits.StopPower) send(stopEnd);
  });
}

void CarryOutPowerEdits() {
  carryOut(startEnd);
  carryOut(stopEnd);
}

void CarryOutPowerRange() {
  if (CCDFPending.PowerRangePending == False16) return;
  CCDFPending.PowerRangePending = False16;
  const PowerEditCounts counts = PowerEdits;
  send(startEnd);
  send(stopEnd);
  UpdatePowerLabels();
  readBack(startEnd, counts.StartPower);
  readBack(stopEnd, counts.StopPower);
}

}  // namespace pulsemod
