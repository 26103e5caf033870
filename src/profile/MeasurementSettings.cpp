#include "profile/MeasurementSettings.h"

#include <algorithm>

#include "link/Fault.h"
#include "link/NumberText.h"

namespace pulsemod {

MeasurementSettings Settings;
Trace ProfileTrace{};
Trace SecondProfileTrace{};
Boolean16 AcquisitionRunning = False16;

namespace {

/// Moves a time from one repeated gate to the next. The sum is taken as a reader of the two texts
/// would compute it: repeated gates must not gather single-precision noise. False when it
/// overflows.
bool shiftTime(float previous, float& shifted) {
  const double sum = throughText(previous) + throughText(Settings.RepeatOffset);
  if (!fitsSingle(sum)) return false;
  shifted = static_cast<float>(sum);
  return true;
}

}  // namespace

std::string onOffText(Boolean16 value) { return value != False16 ? "ON" : "OFF"; }

float GateSettings::*gateTimeField(GateTime time) {
  switch (time) {
    case GateTime::start:
      return &GateSettings::StartTime;
    case GateTime::stop:
      return &GateSettings::StopTime;
    case GateTime::fenceStart:
      return &GateSettings::FenceStart;
    case GateTime::fenceStop:
      return &GateSettings::FenceStop;
    case GateTime::none:
      break;
  }
  return nullptr;
}

void InitMeasurementSettings() {
  Settings = MeasurementSettings{};
  activeChannelSettings().AveragingCount = 1;
  AcquisitionRunning = False16;
  Settings.Markers[0].IsActive = True16;
  for (std::size_t marker = 0; marker < markerCount; ++marker) {
    constexpr double spacing = 0.0001;
    Settings.Markers[marker].Position =
        static_cast<float>(static_cast<double>(marker + 1) * spacing);
  }
}

std::string ChannelText() {
  return Settings.ActiveChannel == bothChannels ? "1&2" : std::to_string(Settings.ActiveChannel);
}

bool oneChannelIsActive() {
  return Settings.ActiveChannel >= 1 &&
         static_cast<std::size_t>(Settings.ActiveChannel) <= channelCount;
}

std::string InputConfigText() {
  constexpr std::array<const char*, 6> texts = {"A", "B", "A-B", "B-A", "A/B", "B/A"};
  if (!oneChannelIsActive()) return {};
  const std::int32_t code = activeChannelSettings().InputConfig;
  if (code < 0 || static_cast<std::size_t>(code) >= texts.size()) return {};
  return texts[static_cast<std::size_t>(code)];
}

ChannelSettings& activeChannelSettings() {
  if (!oneChannelIsActive()) {
    throw Fault("This setting belongs to one channel, but channel " + ChannelText() +
                " is selected");
  }
  return Settings.Channels[static_cast<std::size_t>(Settings.ActiveChannel - 1)];
}

void ExpandRepeatGates(int first) {
  if (Settings.RepeatEnabled == False16) return;
  if (first == firstRepeatedGate) Settings.Gates[0].Enabled = True16;
  const int count = std::min<int>(Settings.RepeatCount, gateCount);
  for (int number = first; number <= count; ++number) {
    const auto index = static_cast<std::size_t>(number - 1);
    const GateSettings& previous = Settings.Gates[index - 1];
    GateSettings& gate = Settings.Gates[index];
    gate.Enabled = True16;
    for (const auto time : {&GateSettings::StartTime, &GateSettings::StopTime,
                            &GateSettings::FenceStart, &GateSettings::FenceStop}) {
      if (!shiftTime(previous.*time, gate.*time)) return;
    }
    gate.FenceEnabled = previous.FenceEnabled;
  }
}

}  // namespace pulsemod
