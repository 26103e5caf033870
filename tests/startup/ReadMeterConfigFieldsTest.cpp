#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "MeterScript.h"
#include "link/NumberText.h"
#include "profile/MeasurementSettings.h"
#include "startup/ReadMeterConfig.h"
#include "support/FakeWorld.h"

/// Each reading of the configuration stands for itself: one that is missing leaves its own field as
/// it was, and all the others are read.

namespace pulsemod::test {
namespace {

/// The settings by name, as text.
using Fields = std::map<std::string, std::string>;

Fields fieldsOf(const MeasurementSettings& settings) {
  Fields fields = {
      {"CaptureTime", numberText(settings.CaptureTime)},
      {"TriggerDelay", numberText(settings.TriggerDelay)},
      {"ReferenceLevel", numberText(settings.ReferenceLevel)},
      {"ScalePerDivision", numberText(settings.ScalePerDivision)},
      {"ActiveChannel", std::to_string(settings.ActiveChannel)},
      {"ActiveGate", std::to_string(settings.ActiveGate)},
      {"GatesVisible", std::to_string(settings.GatesVisible)},
      {"MeasurementType", std::to_string(settings.MeasurementType)},
      {"DeltaMeasurement", std::to_string(settings.DeltaMeasurement)},
      {"DisplayPoints", std::to_string(settings.DisplayPoints)},
      {"RepeatEnabled", std::to_string(settings.RepeatEnabled)},
      {"RepeatCount", std::to_string(settings.RepeatCount)},
      {"RepeatOffset", numberText(settings.RepeatOffset)},
  };
  for (std::size_t index = 0; index < gateCount; ++index) {
    const GateSettings& gate = settings.Gates[index];
    const std::string name = "Gate" + std::to_string(index + 1);
    fields[name + "Enabled"] = std::to_string(gate.Enabled);
    fields[name + "StartTime"] = numberText(gate.StartTime);
    fields[name + "StopTime"] = numberText(gate.StopTime);
    fields[name + "FenceEnabled"] = std::to_string(gate.FenceEnabled);
    fields[name + "FenceStart"] = numberText(gate.FenceStart);
    fields[name + "FenceStop"] = numberText(gate.FenceStop);
  }
  for (std::size_t index = 0; index < markerCount; ++index) {
    const MarkerSettings& marker = settings.Markers[index];
    const std::string name = "Marker" + std::to_string(index + 1);
    fields[name + "Enabled"] = std::to_string(marker.Enabled);
    fields[name + "IsActive"] = std::to_string(marker.IsActive);
    fields[name + "Position"] = numberText(marker.Position);
  }
  for (std::size_t index = 0; index < channelCount; ++index) {
    const ChannelSettings& channel = settings.Channels[index];
    const std::string name = "Channel" + std::to_string(index + 1);
    fields[name + "AveragingOn"] = std::to_string(channel.AveragingOn);
    fields[name + "AveragingCount"] = std::to_string(channel.AveragingCount);
    fields[name + "InputConfig"] = std::to_string(channel.InputConfig);
  }
  return fields;
}

/// Settings that differ from everything that the meter answers.
MeasurementSettings oldSettings() {
  MeasurementSettings settings;
  settings.RepeatEnabled = True16;
  for (MarkerSettings& marker : settings.Markers) marker.IsActive = True16;
  return settings;
}

/// The fields of `Settings` that are not as expected.
std::string differences(const Fields& expected) {
  std::string text;
  for (const auto& [name, value] : fieldsOf(Settings)) {
    if (value != expected.at(name)) {
      text += name + " is " + value + " and not " + expected.at(name) + "; ";
    }
  }
  return text;
}

/// What the meter's answers make of them.
Fields fieldsThatTheMeterTells() {
  Fields fields = fieldsOf(oldSettings());
  const Fields told = {
      {"CaptureTime", "0.01"},          {"TriggerDelay", "-5E-06"}, {"ReferenceLevel", "5"},
      {"ScalePerDivision", "2.5"},      {"ActiveGate", "3"},        {"DisplayPoints", "400"},
      {"RepeatEnabled", "0"},           {"RepeatCount", "1"},       {"RepeatOffset", "0.0007"},
      {"Marker1IsActive", "0"},         {"Marker2IsActive", "-1"},  {"Marker3IsActive", "0"},
      {"Marker4IsActive", "0"},         {"Marker5Enabled", "-1"},   {"Channel1AveragingOn", "-1"},
      {"Channel1AveragingCount", "16"},
  };
  for (const auto& [name, text] : told) fields[name] = text;
  for (int number = 1; number <= 4; ++number) {
    const std::string digit = std::to_string(number);
    const std::string gate = "Gate" + digit;
    fields[gate + "Enabled"] = "-1";
    fields[gate + "StartTime"] = "0.00" + digit + "1";
    fields[gate + "StopTime"] = "0.00" + digit + "2";
    fields[gate + "FenceEnabled"] = "-1";
    fields[gate + "FenceStart"] = "0.00" + digit + "3";
    fields[gate + "FenceStop"] = "0.00" + digit + "4";
    fields["Marker" + digit + "Enabled"] = "-1";
    fields["Marker" + digit + "Position"] = "0.00" + digit + "5";
  }
  return fields;
}

struct FieldQuery {
  std::string text;
  /// Fields that nothing else sets.
  std::vector<std::string> fields;
  /// The reply's text up to its number; empty for a state.
  std::string numberHead;
};

std::vector<FieldQuery> fieldQueries() {
  std::vector<FieldQuery> all = {
      {"GPACTN? 1", {"ActiveGate"}, "GPACTN 1,"},
      {"GP1REPS? 1", {"RepeatEnabled"}, ""},
      {"GP1REPT? 1", {"RepeatOffset"}, "GP1REPT 1,"},
      {"GP1REPN? 1", {"RepeatCount"}, "GP1REPN 1,"},
      {"MKDELTS? 1", {"Marker5Enabled"}, ""},
      {"PMPREF? 1,DB", {"ReferenceLevel"}, "PMPREF 1,DB,"},
      {"PMPSCAL? 1,DB", {"ScalePerDivision"}, "PMPSCAL 1,DB,"},
      {"TRCAPT? 1,PMOD", {"CaptureTime"}, "TRCAPT 1,PMOD,"},
      {"TRDLYT? 1,PMOD", {"TriggerDelay"}, "TRDLYT 1,PMOD,"},
      {"PMAVGS? 1", {"Channel1AveragingOn"}, ""},
      {"PMAVGN? 1", {"Channel1AveragingCount"}, "PMAVGN 1,"},
      {"PMPO 1", {"DisplayPoints"}, "PMPO 1,"},
      {"PPACQS? 1", {}, ""},
      {"CHACTIV?", {}, ""},
  };
  for (int number = 1; number <= 4; ++number) {
    const std::string digit = std::to_string(number);
    const std::string gate = "Gate" + digit;
    const std::string marker = "Marker" + digit;
    const std::string head = " 1," + digit + ",";
    all.push_back({"GPGATS? 1, " + digit, {gate + "Enabled"}, ""});
    all.push_back({"GPTIMST? 1, " + digit, {gate + "StartTime"}, "GPTIMST" + head});
    all.push_back({"GPTIMSP? 1, " + digit, {gate + "StopTime"}, "GPTIMSP" + head});
    all.push_back({"GPFENS? 1, " + digit, {gate + "FenceEnabled"}, ""});
    all.push_back({"GPFENST? 1, " + digit, {gate + "FenceStart"}, "GPFENST" + head});
    all.push_back({"GPFENSP? 1, " + digit, {gate + "FenceStop"}, "GPFENSP" + head});
    all.push_back({"MKSTATE? 1," + digit, {marker + "Enabled", marker + "IsActive"}, ""});
    all.push_back({"MKPOS? 1," + digit, {marker + "Position"}, "MKPOS" + head});
  }
  return all;
}

Fields fieldsWithout(const FieldQuery& query) {
  Fields fields = fieldsThatTheMeterTells();
  const Fields old = fieldsOf(oldSettings());
  for (const std::string& name : query.fields) fields[name] = old.at(name);
  return fields;
}

TEST(ReadMeterConfigFields, EveryReadingReachesItsFieldOnBothLinks) {
  for (const bool serial : {false, true}) {
    FakeWorld world;
    if (serial) world.useSerial();
    answerConfiguration(world.meter);
    Settings = oldSettings();
    ReadMeterConfig();
    EXPECT_EQ(differences(fieldsThatTheMeterTells()), "") << (serial ? "serial" : "GPIB");
  }
}

TEST(ReadMeterConfigFields, AMissingReplyLeavesItsFieldAndNoOther) {
  for (const FieldQuery& query : fieldQueries()) {
    FakeWorld world;
    answerConfiguration(world.meter);
    ASSERT_EQ(world.meter.replies.erase(query.text), 1U) << query.text;
    Settings = oldSettings();
    ReadMeterConfig();
    EXPECT_EQ(differences(fieldsWithout(query)), "") << query.text;
    EXPECT_EQ(world.meter.received, configurationTranscript()) << query.text;
    EXPECT_TRUE(world.dialogs.messages.empty());
    EXPECT_FALSE(world.progress.visible);
  }
}

TEST(ReadMeterConfigFields, ANumberThatDoesNotFitLeavesItsField) {
  for (const FieldQuery& query : fieldQueries()) {
    if (query.numberHead.empty()) continue;
    FakeWorld world;
    answerConfiguration(world.meter);
    world.meter.replies[query.text] = query.numberHead + "1E39,";
    Settings = oldSettings();
    ReadMeterConfig();
    EXPECT_EQ(differences(fieldsWithout(query)), "") << query.text;
    EXPECT_TRUE(world.dialogs.messages.empty());
  }
}

TEST(ReadMeterConfigFields, AWholeNumberIsNeverWrapped) {
  const std::set<std::string> wholeNumbers = {"GPACTN? 1", "GP1REPN? 1", "PMAVGN? 1", "PMPO 1"};
  for (const FieldQuery& query : fieldQueries()) {
    if (wholeNumbers.count(query.text) == 0) continue;
    FakeWorld world;
    answerConfiguration(world.meter);
    world.meter.replies[query.text] = query.numberHead + "70000,";
    Settings = oldSettings();
    ReadMeterConfig();
    EXPECT_EQ(differences(fieldsWithout(query)), "") << query.text;
  }
}

TEST(ReadMeterConfigFields, ValuesAreNotCheckedAgainstRanges) {
  FakeWorld world;
  answerConfiguration(world.meter);
  world.meter.replies["GPACTN? 1"] = "GPACTN 1,9";
  world.meter.replies["TRCAPT? 1,PMOD"] = "TRCAPT 1,PMOD,-1";
  world.meter.replies["PMPO 1"] = "PMPO 1,999,-30";
  world.meter.replies["PMAVGN? 1"] = "PMAVGN 1,15.5";
  ReadMeterConfig();
  EXPECT_EQ(Settings.ActiveGate, 9);
  EXPECT_EQ(Settings.CaptureTime, -1.0F);
  EXPECT_EQ(Settings.DisplayPoints, 999);
  EXPECT_EQ(Settings.Channels[0].AveragingCount, 16);
}

TEST(ReadMeterConfigFields, TextThatIsNoNumberReadsAsZero) {
  FakeWorld world;
  answerConfiguration(world.meter);
  world.meter.replies["GPACTN? 1"] = "GPACTN 1,none";
  world.meter.replies["PMPREF? 1,DB"] = "PMPREF 1,DB";
  ReadMeterConfig();
  EXPECT_EQ(Settings.ActiveGate, 0);
  EXPECT_EQ(Settings.ReferenceLevel, 0.0F);
}

TEST(ReadMeterConfigFields, AMeterInErrorLosesItsFirstReadingOnly) {
  FakeWorld world;
  answerConfiguration(world.meter);
  world.meter.errorIsReported = true;
  world.meter.replies["PPACQS? 1"] = "PPACQS 1,ON";
  Settings = oldSettings();
  ReadMeterConfig();
  Transcript expected = configurationTranscript();
  expected.insert(expected.begin() + 1, "*CLS; *OPC?");
  EXPECT_EQ(world.meter.received, expected);
  EXPECT_EQ(differences(fieldsThatTheMeterTells()), "");
}

TEST(ReadMeterConfigFields, ARefusedCommandLosesTheReadingAfterIt) {
  FakeWorld world;
  answerConfiguration(world.meter);
  world.meter.rejected = {"PMDTYP 1,PRF"};
  Settings = oldSettings();
  ReadMeterConfig();
  Transcript expected = configurationTranscript();
  expected.insert(expected.begin() + 6, "*CLS; *OPC?");
  EXPECT_EQ(world.meter.received, expected);
  EXPECT_EQ(differences(fieldsWithout({"GPACTN? 1", {"ActiveGate"}, ""})), "");
}

}  // namespace
}  // namespace pulsemod::test
