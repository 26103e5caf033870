#include "settings/PropertyEdits.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "link/TimeText.h"
#include "platform/Services.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "profile/Readouts.h"
#include "settings/PropertiesView.h"

namespace pulsemod {

namespace {

// The separators are part of the protocol. Some differ from those of the whole write
// (startup/WriteMeterConfig.cpp): the meter takes both, and its users' records show these.

constexpr auto boxTitle = "Properties";

void sendWhenFree(const std::string& command) {
  whenLinkIsFree([command] { SendCommand(command); });
}

GateSettings& gateSettings(int gate) { return Settings.Gates[static_cast<std::size_t>(gate - 1)]; }

MarkerSettings& markerSettings(int marker) {
  return Settings.Markers[static_cast<std::size_t>(marker - 1)];
}

std::string numbered(int number) { return std::to_string(number); }

/// Gate 1 takes the repeated gates with it.
void showGates() {
  ExpandRepeatGates();
  propertiesView().refreshGatePage();
  UpdateInfoBox();
  RefreshGraph();
}

void showMarkers() {
  propertiesView().refreshMarkerPage();
  UpdateMarkersWindow();
  RefreshGraph();
}

/// One of the meter's own gates is on, and no other.
bool isOnlyGate(int gate) {
  for (int other = 1; other <= meterGates; ++other) {
    if ((gateSettings(other).Enabled != False16) != (other == gate)) return false;
  }
  return true;
}

struct GateTimeControl {
  GateTime time;
  const char* mnemonic;
  /// The prompt around the gate's number.
  const char* promptHead;
  const char* promptTail;
};

// By the place of the box among the four of its gate.
constexpr GateTimeControl gateTimeControls[] = {
    {GateTime::start, "GPTIMST ", "Enter Gate ", " Start Time"},
    {GateTime::stop, "GPTIMSP ", "Enter Gate ", " Stop Time"},
    {GateTime::fenceStart, "GPFENST ", "Enter Fence ", " Start Time"},
    {GateTime::fenceStop, "GPFENSP ", "Enter Fence ", " Stop Time"},
};
static_assert(std::size(gateTimeControls) == timesPerGate);

/// What speaks against a time, empty for nothing. A time on its limit passes, whatever the words
/// say: the meter takes it.
const char* objectionTo(const GateSettings& gate, GateTime time, float seconds) {
  if (time == GateTime::fenceStart) {
    return seconds < gate.StartTime ? "Fence time must be greater than the gate start time" : "";
  }
  if (time == GateTime::fenceStop) {
    return seconds > gate.StopTime ? "Fence time must be less than the gate stop time" : "";
  }
  return seconds < Settings.TriggerDelay ? "Gate time must be greater than the trigger delay time"
                                         : "";
}

/// Asks for a time; nothing when the user cancelled.
std::optional<float> askTime(const std::string& prompt, float present) {
  const std::string answer = services().dialogs.askText(prompt, boxTitle, FormatTime(present));
  if (answer.empty()) return std::nullopt;
  return ParseTime(answer, true);
}

void takeRepeatCount(const std::string& text) {
  const double count = std::nearbyint(leadingNumber(text));
  Settings.RepeatCount =
      static_cast<std::int16_t>(std::clamp(count, 1.0, static_cast<double>(gateCount)));
  propertiesView().showRepeatCount();
}

/// Gate 1 of a repeat, the gates that follow it, and those that it does not reach.
enum class RepeatRole { none, first, follower };

RepeatRole repeatRole(int gate) {
  if (Settings.RepeatEnabled == False16) return RepeatRole::none;
  if (gate == 1) return RepeatRole::first;
  return gate <= Settings.RepeatCount ? RepeatRole::follower : RepeatRole::none;
}

/// The reading of a marker at its new place.
void readMarker(int marker, const std::string& channel) {
  constexpr int readingField = 2;
  std::string reply;
  if (!QueryMeter("MKNO " + channel + "," + numbered(marker), reply)) return;
  const std::string text = SplitReply(reply, readingField);
  const auto reading = leadingSingle(text);
  if (text.empty() || !reading) return;
  markerSettings(marker).Reading = *reading;
  showMarkers();
}

}  // namespace

void SwitchAveraging(bool on) {
  activeChannelSettings().AveragingOn = boolean16(on);
  sendWhenFree("PMAVGS " + ChannelText() + "," + onOffText(boolean16(on)));
}

void SetAveragingCount(std::int16_t count) {
  activeChannelSettings().AveragingCount = count;
  sendWhenFree("PMAVGN " + ChannelText() + ", " + numbered(count));
}

std::string averagingCaption(int count) { return "Average (" + numbered(count) + ")"; }

void ChooseChannel(std::int16_t channel) {
  Settings.ActiveChannel = channel;
  propertiesView().refreshChannelPage();
}

void ChooseInputConfig(std::int32_t code) {
  activeChannelSettings().InputConfig = code;
  sendWhenFree("CHCFG " + ChannelText() + ", " + InputConfigText());
}

std::string channelSentence() {
  return "Channel is the current active channel (" + ChannelText() +
         ") on the power meter. Press 'Load from Power meter' button to change.";
}

void ShowGates(bool shown) {
  Settings.GatesVisible = boolean16(shown);
  sendWhenFree("GPHIDES " + ChannelText() + ", " + onOffText(boolean16(!shown)));
  RefreshGraph();
}

void SwitchGate(int gate, bool on) {
  gateSettings(gate).Enabled = boolean16(on);
  const std::string arguments = ChannelText() + ", " + numbered(gate);
  sendWhenFree("GPGATS " + arguments + ", " + onOffText(boolean16(on)));
  if (on && isOnlyGate(gate)) {
    Settings.ActiveGate = static_cast<std::int16_t>(gate);
    sendWhenFree("GPACTN " + arguments);
  }
  showGates();
}

void ToggleFence(int gate) {
  Boolean16& fence = gateSettings(gate).FenceEnabled;
  fence = boolean16(fence == False16);
  sendWhenFree("GPFENS " + ChannelText() + ", " + numbered(gate) + ", " + onOffText(fence));
  showGates();
}

std::string fenceToolTip(bool enabled) {
  return enabled ? "Enabled, Click on the FENCE text to disable"
                 : "Disabled, Click on the FENCE text to enable";
}

void EditGateTime(std::size_t index) {
  const int gate = static_cast<int>(index / timesPerGate) + 1;
  const GateTimeControl& control = gateTimeControls[index % timesPerGate];
  GateSettings& settings = gateSettings(gate);
  float& time = settings.*gateTimeField(control.time);
  const auto typed = askTime(control.promptHead + numbered(gate) + control.promptTail, time);
  if (!typed) return;
  const std::string objection = objectionTo(settings, control.time, *typed);
  if (!objection.empty()) {
    services().dialogs.showMessage(objection, "Invalid Gate time", MessageIcon::information);
    return;
  }
  time = *typed;
  sendWhenFree(control.mnemonic + ChannelText() + ", " + numbered(gate) + ", " + numberText(time));
  showGates();
}

void ChooseActiveGate(int gate) {
  Settings.ActiveGate = static_cast<std::int16_t>(gate);
  sendWhenFree("GPACTN " + ChannelText() + "," + numbered(gate));
}

void SwitchRepeat(bool on, const std::string& countText) {
  Settings.RepeatEnabled = boolean16(on);
  takeRepeatCount(countText);
  SetGatesEnabled();
  sendWhenFree("GP1REPS " + ChannelText() + ", " + onOffText(boolean16(on)));
  showGates();
}

void EnterRepeatCount(const std::string& countText) {
  takeRepeatCount(countText);
  SetGatesEnabled();
  sendWhenFree("GP1REPN " + ChannelText() + "," + numbered(Settings.RepeatCount));
  showGates();
}

void EditRepeatOffset() {
  const auto typed = askTime("Enter Repeat Offset", Settings.RepeatOffset);
  if (!typed) return;
  Settings.RepeatOffset = *typed;
  sendWhenFree("GP1REPT " + ChannelText() + "," + numberText(*typed));
  showGates();
}

void SetGatesEnabled() {
  for (int gate = meterGates + 1; gate <= static_cast<int>(gateCount); ++gate) {
    if (repeatRole(gate) == RepeatRole::none) gateSettings(gate).Enabled = False16;
  }
  propertiesView().refreshGatePage();
}

GateControls gateControls(int gate) {
  const RepeatRole role = repeatRole(gate);
  const bool ownGate = gate <= meterGates;
  const bool on = gateSettings(gate).Enabled != False16;
  GateControls controls;
  controls.shown = ownGate || role == RepeatRole::follower;
  controls.switchable = ownGate && role == RepeatRole::none;
  controls.checked = on || role != RepeatRole::none;
  controls.editable = ownGate && role != RepeatRole::follower;
  controls.activatable = ownGate && controls.checked;
  return controls;
}

void SwitchMarker(int marker, bool on) {
  MarkerSettings& settings = markerSettings(marker);
  settings.Enabled = boolean16(on);
  const std::string channel = ChannelText();
  if (isDeltaMarker(marker)) {
    sendWhenFree("MKDELTS " + channel + "," + onOffText(settings.Enabled));
    sendWhenFree("MKDPOS " + channel + "," + numberText(settings.Position));
  } else {
    sendWhenFree("MKSTATE " + channel + "," + numbered(marker) + "," + onOffText(settings.Enabled));
  }
  showMarkers();
}

void EditMarkerPosition(int marker) {
  MarkerSettings& settings = markerSettings(marker);
  const auto typed = askTime("Enter Marker " + numbered(marker) + " Position", settings.Position);
  if (!typed) return;
  settings.Position = *typed;
  PositionMarker(settings);
  showMarkers();
  const std::string channel = ChannelText();
  const std::string value = numberText(*typed);
  if (isDeltaMarker(marker)) {
    whenLinkIsFree([channel, value] {
      SendCommand("MKDPOS " + channel + "," + value);
      std::string unused;
      QueryMeter("MKDO " + channel, unused);
    });
  } else {
    whenLinkIsFree([marker, channel, value] {
      SendCommand("MKPOS " + channel + "," + numbered(marker) + "," + value);
      readMarker(marker, channel);
    });
  }
}

void ChooseActiveMarker(int marker) {
  for (int other = 1; !isDeltaMarker(other); ++other) {
    markerSettings(other).IsActive = boolean16(other == marker);
  }
  sendWhenFree("MKACTN " + ChannelText() + ", " + numbered(marker));
  showMarkers();
}

void ChooseDeltaMeasurement(std::int32_t index) {
  Settings.DeltaMeasurement = index;
  sendWhenFree("MKDMEAS " + ChannelText() + (index == 0 ? ", PAVG" : ", PDIFF"));
}

void ChooseMeasurement(std::int32_t type) {
  Settings.MeasurementType = type;
  sendWhenFree("PMMEAS " + ChannelText() + "," + numbered(type));
  UpdateInfoBox();
}

void ChooseDisplayPoints(std::int16_t points) {
  Settings.DisplayPoints = points;
  sendWhenFree("SYDRES " + numbered(points));
  RefreshGraph();
}

}  // namespace pulsemod
