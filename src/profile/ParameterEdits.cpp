#include "profile/ParameterEdits.h"

#include <optional>
#include <string>

#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "link/TimeText.h"
#include "platform/Services.h"
#include "profile/GraphFault.h"
#include "profile/ProfileGraph.h"
#include "profile/ProfileParameters.h"
#include "profile/ProfileView.h"

namespace pulsemod {

PendingEditFlags PendingEdits;
ParameterEditCounts EditCounts;

namespace {

/// One parameter as its label edits it.
struct EditedParameter {
  const ProfileParameter& parameter;
  Boolean16& pending;
  std::uint32_t& count;
  /// Between channel and unit of the query that follows an edit at once.
  const char* queryUnit;
  /// A read-back that is no number counts as 0.
  bool takesAnyText;
};

const EditedParameter captureTime{captureTimeParameter, PendingEdits.CaptureTime,
                                  EditCounts.CaptureTime, ",PMOD", true};
const EditedParameter referenceLevel{referenceLevelParameter, PendingEdits.ReferenceLevel,
                                     EditCounts.ReferenceLevel, ",DB", false};
// Without a comma after the channel: the query of an edit at once has always had this form, and the
// one of the loop has the comma.
const EditedParameter triggerDelay{triggerDelayParameter, PendingEdits.TriggerDelay,
                                   EditCounts.TriggerDelay, "PMOD", false};
const EditedParameter graphScale{scaleParameter, PendingEdits.GraphScale, EditCounts.GraphScale,
                                 ",DB", false};

float& valueOf(const EditedParameter& edited) { return Settings.*edited.parameter.value; }

std::optional<float> queryAtOnce(const EditedParameter& edited) {
  constexpr int valueField = 2;
  std::string reply;
  if (!QueryMeter(std::string(edited.parameter.mnemonic) + "? " + ChannelText() + edited.queryUnit,
                  reply)) {
    return std::nullopt;
  }
  const std::string text = SplitReply(reply, valueField);
  return edited.takesAnyText ? leadingSingle(text) : wholeSingle(text);
}

void tellMeterAtOnce(const EditedParameter& edited, float value, std::uint32_t count) {
  if (count != edited.count) return;
  // The read-back of a start may have come in between.
  valueOf(edited) = value;
  SendParameter(edited.parameter, value);
  const std::optional<float> accepted = queryAtOnce(edited);
  if (!accepted || count != edited.count) return;
  valueOf(edited) = *accepted;
  RefreshGraph();
}

void edit(const EditedParameter& edited, float value) {
  valueOf(edited) = value;
  const std::uint32_t count = ++edited.count;
  if (AcquisitionRunning != False16) {
    edited.pending = True16;
    return;
  }
  whenLinkIsFree([&edited, value, count] { tellMeterAtOnce(edited, value, count); });
}

/// A time goes through its text, as all times do that the user types.
void editTime(const EditedParameter& edited, GraphLabel label, const std::string& prompt) {
  const std::string answer =
      services().dialogs.askText(prompt, "Time", profileView().graphLabel(label));
  if (answer.empty()) return;
  edit(edited, static_cast<float>(throughText(ParseTime(answer, true))));
}

void editLevel(const EditedParameter& edited, const std::string& prompt) {
  // The scale's box bears this title too.
  const std::string answer =
      services().dialogs.askText(prompt, "Reference", numberText(valueOf(edited)));
  if (answer.empty()) return;
  edit(edited, checkedSingle(leadingNumber(answer)));
}

void carryOut(const EditedParameter& edited) {
  const std::uint32_t count = edited.count;
  float accepted = valueOf(edited);
  edited.pending = False16;
  SendParameter(edited.parameter, accepted);
  if (!QueryParameter(edited.parameter, accepted)) return;
  if (edited.pending != False16 || count != edited.count) return;
  valueOf(edited) = accepted;
  RefreshGraph();
}

}  // namespace

void EditCaptureTime() { editTime(captureTime, GraphLabel::capture, "Enter new Capture Period"); }

void EditReferenceLevel() { editLevel(referenceLevel, "Enter new reference level (dBm)"); }

void EditGraphScale() { editLevel(graphScale, "Enter new graph scale (dB)"); }

void EditTriggerDelay() { editTime(triggerDelay, GraphLabel::start, "Enter new trigger delay"); }

void ReplaceCaptureTime(float seconds) {
  Settings.CaptureTime = seconds;
  const std::uint32_t count = ++EditCounts.CaptureTime;
  drawOrReportOnce(UpdateGraphLabels);
  whenLinkIsFree([seconds, count] {
    if (count == EditCounts.CaptureTime) SendParameter(captureTimeParameter, seconds);
  });
}

void CountParameterEdits() {
  ++EditCounts.CaptureTime;
  ++EditCounts.ReferenceLevel;
  ++EditCounts.TriggerDelay;
  ++EditCounts.GraphScale;
}

void ExplainStopTime() {
  services().dialogs.showMessage("Please edit the Capture Time", "", MessageIcon::information);
}

void CarryOutPendingEdits() {
  if (captureTime.pending != False16) carryOut(captureTime);
  if (referenceLevel.pending != False16) carryOut(referenceLevel);
  if (triggerDelay.pending != False16) carryOut(triggerDelay);
  if (graphScale.pending != False16) {
    RefreshGraph();
    carryOut(graphScale);
  }
}

}  // namespace pulsemod
