#include "startup/ReadMeterConfig.h"

#include <string>

#include "ccdf/StatisticsAcquisition.h"
#include "link/ConfigProgress.h"
#include "link/ExchangeCount.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileParameters.h"

namespace pulsemod {

namespace {

void readSingle(const std::string& query, int field, float& value) {
  std::string reply;
  if (!QueryMeter(query, reply)) return;
  if (const auto number = leadingSingle(SplitReply(reply, field))) value = *number;
}

void readWhole(const std::string& query, int field, std::int16_t& value) {
  std::string reply;
  if (!QueryMeter(query, reply)) return;
  if (const auto number = leadingWhole<std::int16_t>(SplitReply(reply, field))) value = *number;
}

/// The channel is the last character of the reply alone, so "CHACTIV 1&2" counts as channel 2.
void readActiveChannel() {
  std::string reply;
  if (!QueryMeter("CHACTIV?", reply)) return;
  const std::string_view text = trimmed(reply);
  const std::string_view last = text.empty() ? text : text.substr(text.size() - 1);
  Settings.ActiveChannel = leadingWhole<std::int16_t>(last).value_or(0);
}

void readRepeat() {
  std::string reply;
  if (QueryMeter("GP1REPS? " + ChannelText(), reply)) {
    Settings.RepeatEnabled = boolean16(SplitReply(reply, 1) == "ON");
  }
  readSingle("GP1REPT? " + ChannelText(), 1, Settings.RepeatOffset);
  readWhole("GP1REPN? " + ChannelText(), 1, Settings.RepeatCount);
}

void readGates(const ConfigProgress& progress) {
  progress.step("Reading Gates...");
  readWhole("GPACTN? " + ChannelText(), 1, Settings.ActiveGate);
  readRepeat();
  for (int gate = 1; gate <= meterGates; ++gate) {
    progress.step("Reading Gates..." + std::to_string(gate));
    ReadGateConfig(gate);
  }
  ExpandRepeatGates();
}

void readMarker(int number) {
  MarkerSettings& marker = Settings.Markers[static_cast<std::size_t>(number - 1)];
  const std::string arguments = ChannelText() + "," + std::to_string(number);
  std::string reply;
  if (QueryMeter("MKSTATE? " + arguments, reply)) {
    marker.Enabled = boolean16(SplitReply(reply, 2) != "OFF");
    marker.IsActive = False16;
  }
  readSingle("MKPOS? " + arguments, 2, marker.Position);
}

void readMarkers(const ConfigProgress& progress) {
  for (int marker = 1; marker <= static_cast<int>(deltaMarker); ++marker) {
    progress.step("Reading Markers..." + std::to_string(marker));
    readMarker(marker);
  }
  std::string reply;
  if (QueryMeter("MKACTN? " + ChannelText(), reply)) {
    const int active = leadingWhole<std::int16_t>(SplitReply(reply, 1)).value_or(0);
    if (active >= 1 && active <= static_cast<int>(markerCount)) {
      Settings.Markers[static_cast<std::size_t>(active - 1)].IsActive = True16;
    }
  }
  if (QueryMeter("MKDELTS? " + ChannelText(), reply)) {
    Settings.Markers[deltaMarker].Enabled = boolean16(SplitReply(reply, 1) != "OFF");
  }
}

void readAveraging() {
  std::string reply;
  if (QueryMeter("PMAVGS? " + ChannelText(), reply)) {
    activeChannelSettings().AveragingOn = boolean16(SplitReply(reply, 1) == "ON");
  }
  if (QueryMeter("PMAVGN? " + ChannelText(), reply)) {
    const auto count = leadingWhole<std::int16_t>(SplitReply(reply, 1));
    if (count) activeChannelSettings().AveragingCount = *count;
  }
}

void readLevelsAndTimes(const ConfigProgress& progress) {
  progress.step("Reading Reference...");
  ReadParameter(referenceLevelParameter);
  ReadParameter(scaleParameter);
  progress.step("Reading Capture Period...");
  ReadParameter(captureTimeParameter);
  ReadParameter(triggerDelayParameter);
}

ProfileReadout readConfig(const ConfigProgress& progress) {
  readActiveChannel();
  SendCommand("CHDISPN 1");
  progress.step("Going to PulseMod...");
  SendCommand("CHMODE " + ChannelText() + ",PMOD");
  SendCommand("PMDTYP " + ChannelText() + ",PRF");
  readGates(progress);
  readMarkers(progress);
  readLevelsAndTimes(progress);
  readAveraging();
  return ReadDisplayPoints();
}

int exchangesOfRead(const ConfigProgress& progress) {
  // The gates of a repeat are derived while the exchanges are counted, from what is about to
  // change.
  const MeasurementSettings before = Settings;
  const int exchanges = countExchanges([&progress] { readConfig(progress); });
  Settings = before;
  return exchanges;
}

}  // namespace

void ReadGateConfig(int gate) {
  GateSettings& settings = Settings.Gates[static_cast<std::size_t>(gate - 1)];
  const std::string arguments = ChannelText() + ", " + std::to_string(gate);
  const auto readState = [&arguments](const std::string& mnemonic, Boolean16& state) {
    std::string reply;
    if (!QueryMeter(mnemonic + "? " + arguments, reply)) return;
    state = boolean16(reply.find("OFF") == std::string::npos);
  };
  // A time reply has a head of fixed length: seven letters, blank, channel, comma, gate, comma.
  const auto readTime = [&arguments](const std::string& mnemonic, float& time) {
    constexpr std::size_t headLength = 12;
    std::string reply;
    if (!QueryMeter(mnemonic + "? " + arguments, reply)) return;
    const std::string value = reply.size() > headLength ? reply.substr(headLength) : std::string();
    if (const auto number = leadingSingle(value)) time = *number;
  };
  readState("GPGATS", settings.Enabled);
  readTime("GPTIMST", settings.StartTime);
  readTime("GPTIMSP", settings.StopTime);
  readState("GPFENS", settings.FenceEnabled);
  readTime("GPFENST", settings.FenceStart);
  readTime("GPFENSP", settings.FenceStop);
}

void ReadMeterConfig() {
  StopStatisticsAcquisition();
  ConfigProgress progress("Setting Active Channel...");
  progress.expect(exchangesOfRead(progress));
  if (readConfig(progress) == ProfileReadout::notAProfile) progress.leaveOnScreen();
}

}  // namespace pulsemod
