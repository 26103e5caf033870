#include "startup/WriteMeterConfig.h"

#include <array>
#include <string>

#include "ccdf/StatisticsAcquisition.h"
#include "link/Completion.h"
#include "link/ConfigProgress.h"
#include "link/ExchangeCount.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "profile/ProfileParameters.h"

namespace pulsemod {

namespace {

// The separators are part of the protocol: some commands have a blank after the comma and some have
// none.

void writeParameter(const ProfileParameter& parameter) {
  SendParameter(parameter, Settings.*parameter.value);
}

void writePulseMode(const ConfigProgress& progress) {
  progress.step("Configuring...PulseMod");
  writeParameter(captureTimeParameter);
  writeParameter(triggerDelayParameter);
  writeParameter(referenceLevelParameter);
  writeParameter(scaleParameter);
  SendCommand("PMAVGS " + ChannelText() + "," + onOffText(activeChannelSettings().AveragingOn));
}

/// Each time is sent with the states of its gate freshly set before it.
void writeGates(const ConfigProgress& progress) {
  progress.step("Configuring...Gates");
  WriteRepeatConfig();
  SendCommand("GPACTN " + ChannelText() + "," + std::to_string(Settings.ActiveGate));
  for (int gate = 1; gate <= meterGates; ++gate) {
    progress.step("Configuring...Gates " + std::to_string(gate));
    for (const GateTime time :
         {GateTime::start, GateTime::stop, GateTime::fenceStart, GateTime::fenceStop}) {
      WriteGateConfig(gate, time);
    }
  }
}

void writeMarker(std::size_t index) {
  const MarkerSettings& marker = Settings.Markers[index];
  const std::string channel = ChannelText();
  const std::string number = std::to_string(index + 1);
  if (marker.IsActive != False16) SendCommand("MKACTN " + channel + ", " + number);
  SendCommand("MKSTATE " + channel + "," + number + "," + onOffText(marker.Enabled));
  SendCommand("MKPOS " + channel + "," + number + "," + numberText(marker.Position));
}

void writeMarkers(const ConfigProgress& progress) {
  for (std::size_t index = 0; index < deltaMarker; ++index) {
    progress.step("Configuring...Markers " + std::to_string(index + 1));
    writeMarker(index);
  }
  const std::string channel = ChannelText();
  const MarkerSettings& delta = Settings.Markers[deltaMarker];
  SendCommand("MKDELTS " + channel + "," + onOffText(delta.Enabled));
  SendCommand("MKDPOS " + channel + "," + numberText(delta.Position));
}

void writeConfig(const ConfigProgress& progress) {
  SelectPulseMode();
  writePulseMode(progress);
  writeGates(progress);
  writeMarkers(progress);
  progress.step("Waiting for response...");
  CheckCompleted();
}

}  // namespace

void WriteGateConfig(int gate, GateTime time) {
  constexpr std::array mnemonics = {"", "GPTIMST ", "GPTIMSP ", "GPFENST ", "GPFENSP "};
  const GateSettings& settings = Settings.Gates[static_cast<std::size_t>(gate - 1)];
  const std::string arguments = ChannelText() + ", " + std::to_string(gate) + ", ";
  SendCommand("GPGATS " + arguments + onOffText(settings.Enabled));
  SendCommand("GPFENS " + arguments + onOffText(settings.FenceEnabled));
  const auto field = gateTimeField(time);
  if (field == nullptr) return;
  SendCommand(mnemonics[static_cast<std::size_t>(time)] + arguments + numberText(settings.*field));
}

void WriteRepeatConfig() {
  const std::string channel = ChannelText();
  SendCommand("GP1REPS " + channel + "," + onOffText(Settings.RepeatEnabled));
  SendCommand("GP1REPN " + channel + ", " + std::to_string(Settings.RepeatCount));
  SendCommand("GP1REPT " + channel + ", " + numberText(Settings.RepeatOffset));
}

void WriteMeterConfig() {
  StopStatisticsAcquisition();
  ConfigProgress progress("Configuring...Channel");
  progress.expect(countExchanges([&progress] { writeConfig(progress); }));
  writeConfig(progress);
}

}  // namespace pulsemod
