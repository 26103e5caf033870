#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "MeterScript.h"
#include "link/Completion.h"
#include "link/Fault.h"
#include "profile/MeasurementSettings.h"
#include "startup/WriteMeterConfig.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

class WriteConfig : public testing::Test {
 protected:
  WriteConfig() { world.meter.replies["PPACQS? 1"] = "PPACQS 1,OFF"; }

  long told(const std::string& beginning) const {
    return std::count_if(
        world.meter.received.begin(), world.meter.received.end(),
        [&beginning](const std::string& message) { return message.starts_with(beginning); });
  }
  void expectTold(const std::string& message) const { EXPECT_EQ(told(message), 1) << message; }

  FakeWorld world;
};

TEST_F(WriteConfig, TranscriptOfTheDefaultsOnGpib) {
  WriteMeterConfig();
  EXPECT_EQ(world.meter.received, defaultsTranscript());
  EXPECT_EQ(world.gpib.lastEnd, GpibEnd::newlineWithEoi);
  EXPECT_EQ(world.gpib.interruptedQueries, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(WriteConfig, TranscriptOfTheDefaultsOnSerial) {
  world.useSerial();
  WriteMeterConfig();
  EXPECT_EQ(world.serial.sent, serialBytes(defaultsTranscript()));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(WriteConfig, RunningStatisticsAreStoppedBeforeAnythingElse) {
  world.meter.replies["PPACQS? 1"] = "PPACQS 1,ON";
  WriteMeterConfig();
  Transcript expected = defaultsTranscript();
  expected.insert(expected.begin() + 1, "PPACQS 1,OFF");
  EXPECT_EQ(world.meter.received, expected);
}

TEST_F(WriteConfig, EverySettingIsSentAsItStands) {
  Settings.ActiveChannel = 2;
  Settings.CaptureTime = 5e-6F;
  Settings.TriggerDelay = -0.0002F;
  Settings.ReferenceLevel = -34.56789F;
  Settings.ScalePerDivision = 2.5F;
  Settings.ActiveGate = 4;
  Settings.RepeatEnabled = True16;
  Settings.RepeatCount = 8;
  Settings.RepeatOffset = 0.00125F;
  Settings.Channels[1].InputConfig = 4;
  Settings.Channels[1].AveragingOn = True16;
  Settings.Channels[1].AveragingCount = 16;
  Settings.Gates[2].Enabled = True16;
  Settings.Gates[1].FenceEnabled = True16;
  Settings.Gates[3].StopTime = 0.0123F;
  Settings.Markers[2].Enabled = True16;
  Settings.Markers[3].Position = 0.0007F;
  Settings.Markers[4].Enabled = True16;
  Settings.Markers[4].Position = 0.0009F;
  WriteMeterConfig();
  for (const char* message :
       {"CHACTIV 2", "CHMODE 2, PMOD", "CHCFG 2, A/B", "TRCAPT 2,PMOD,5E-06",
        "TRDLYT 2,PMOD,-0.0002", "PMPREF 2,DB,-34.56789", "PMPSCAL 2,DB,2.5", "PMAVGS 2,ON",
        "GP1REPS 2,ON", "GP1REPN 2, 8", "GP1REPT 2, 0.00125", "GPACTN 2,4", "GPTIMSP 2, 4, 0.0123",
        "MKSTATE 2,3,ON", "MKPOS 2,4,0.0007", "MKDELTS 2,ON", "MKDPOS 2,0.0009"}) {
    expectTold(message);
  }
  EXPECT_EQ(told("GPGATS 2, 3, ON"), 4);
  EXPECT_EQ(told("GPGATS 2, 2, OFF"), 4);
  EXPECT_EQ(told("GPFENS 2, 2, ON"), 4);
  EXPECT_EQ(told("GPFENS 2, 3, OFF"), 4);
}

TEST_F(WriteConfig, WhatOtherEditorsSendIsNotSentHere) {
  Settings.GatesVisible = False16;
  Settings.DeltaMeasurement = 1;
  WriteMeterConfig();
  for (const char* mnemonic : {"PMAVGN", "GPHIDES", "MKDMEAS", "PMMEAS", "SYDRES"}) {
    EXPECT_EQ(told(mnemonic), 0) << mnemonic;
  }
}

TEST_F(WriteConfig, StatesOfEachGateStandBeforeEachOfItsFourTimes) {
  WriteMeterConfig();
  EXPECT_EQ(told("GPGATS "), 16);
  EXPECT_EQ(told("GPFENS "), 16);
  EXPECT_EQ(told("GPTIMST ") + told("GPTIMSP ") + told("GPFENST ") + told("GPFENSP "), 16);
}

TEST_F(WriteConfig, GatesOfTheRepeatAreNeverSent) {
  for (GateSettings& gate : Settings.Gates) gate.Enabled = True16;
  WriteMeterConfig();
  for (int gate = 5; gate <= 8; ++gate) EXPECT_EQ(told("GPGATS 1, " + std::to_string(gate)), 0);
}

TEST_F(WriteConfig, WithoutAnActiveMarkerNoneIsMadeActive) {
  Settings.Markers[0].IsActive = False16;
  WriteMeterConfig();
  EXPECT_EQ(told("MKACTN"), 0);
  EXPECT_EQ(world.meter.received.size(), defaultsTranscript().size() - 1);
}

TEST_F(WriteConfig, EveryActiveMarkerIsSentAndTheDeltaMarkerNever) {
  Settings.Markers[2].IsActive = True16;
  Settings.Markers[4].IsActive = True16;
  WriteMeterConfig();
  expectTold("MKACTN 1, 1");
  expectTold("MKACTN 1, 3");
  EXPECT_EQ(told("MKACTN"), 2);
}

TEST_F(WriteConfig, ProgressTextsInTheirOrder) {
  WriteMeterConfig();
  std::vector<std::string> expected;
  for (const char* step :
       {"Configuring...Channel", "Configuring...PulseMod", "Configuring...Gates",
        "Configuring...Gates 1", "Configuring...Gates 2", "Configuring...Gates 3",
        "Configuring...Gates 4", "Configuring...Markers 1", "Configuring...Markers 2",
        "Configuring...Markers 3", "Configuring...Markers 4", "Waiting for response..."}) {
    expected.push_back(std::string("Please Wait... ") + step);
  }
  EXPECT_EQ(world.progress.texts, expected);
  EXPECT_FALSE(world.progress.visible);
  EXPECT_EQ(world.progress.hides, 1);
}

TEST_F(WriteConfig, BarGrowsToItsEndWithEachCommand) {
  WriteMeterConfig();
  EXPECT_TRUE(world.progress.barGrewToItsEnd(world.meter.received.size() - 1));
  EXPECT_EQ(world.progress.bars.size(), 74U);
}

TEST_F(WriteConfig, BarCountsTheCommandsOfTheseSettings) {
  for (const Boolean16 active : {False16, True16}) {
    FakeWorld fresh;
    for (MarkerSettings& marker : Settings.Markers) marker.IsActive = active;
    WriteMeterConfig();
    EXPECT_TRUE(fresh.progress.barGrewToItsEnd(active != False16 ? 76 : 72));
    EXPECT_EQ(fresh.meter.received.size(), active != False16 ? 77U : 73U);
  }
}

TEST_F(WriteConfig, EachProgressTextStandsBeforeItsCommands) {
  std::vector<std::string> seen;
  world.meter.onMessage = [this, &seen](const std::string& message) {
    if (!world.progress.visible) return seen.push_back(message + " before");
    seen.push_back(message + " during " + world.progress.texts.back());
  };
  WriteMeterConfig();
  const auto expectSeen = [&seen](const std::string& line) {
    EXPECT_EQ(std::count(seen.begin(), seen.end(), line), 1) << line;
  };
  expectSeen("PPACQS? 1 before");
  expectSeen("CHCFG 1, A during Please Wait... Configuring...Channel");
  expectSeen("PMAVGS 1,OFF during Please Wait... Configuring...PulseMod");
  expectSeen("GPACTN 1,1 during Please Wait... Configuring...Gates");
  expectSeen("GPTIMSP 1, 2, 0.000577 during Please Wait... Configuring...Gates 2");
  expectSeen("MKPOS 1,4,0.0004 during Please Wait... Configuring...Markers 4");
  expectSeen("*OPC? during Please Wait... Waiting for response...");
}

TEST_F(WriteConfig, BothChannelsFailAtTheAveragingAfterAllBeforeItWasSent) {
  world.meter.replies["PPACQS? 1&2"] = "PPACQS 1&2,OFF";
  Settings.ActiveChannel = 3;
  EXPECT_THROW(WriteMeterConfig(), Fault);
  EXPECT_EQ(world.meter.received,
            (Transcript{"PPACQS? 1&2", "CHDISPN 1", "CHACTIV 1&2", "CHMODE 1&2, PMOD",
                        "CHCFG 1&2, ", "TRCAPT 1&2,PMOD,0.0046", "TRDLYT 1&2,PMOD,0",
                        "PMPREF 1&2,DB,10", "PMPSCAL 1&2,DB,10"}));
  EXPECT_FALSE(world.progress.visible);
  EXPECT_TRUE(world.progress.barGrewToItsEnd(8));
}

struct CompletionCase {
  const char* reply;
  bool accepted;
};

class Completion : public testing::TestWithParam<CompletionCase> {
 protected:
  void expectAnswer() {
    CheckCompleted();
    const std::vector<ShownBox> box{
        {"Invalid response from Power Meter", "Pelmora", MessageIcon::exclamation, ""}};
    EXPECT_EQ(world.dialogs.messages, GetParam().accepted ? std::vector<ShownBox>{} : box);
    EXPECT_EQ(world.meter.received, (Transcript{"*OPC?"}));
  }
  FakeWorld world;
};

TEST_P(Completion, IsCheckedByTheLeadingNumberOnGpib) {
  world.meter.replies["*OPC?"] = GetParam().reply;
  expectAnswer();
}

TEST_P(Completion, IsCheckedByTheLeadingNumberOnSerial) {
  world.useSerial();
  world.meter.replies["*OPC?"] = GetParam().reply;
  expectAnswer();
}

INSTANTIATE_TEST_SUITE_P(Replies, Completion,
                         testing::Values(CompletionCase{"1", true}, CompletionCase{"+1", true},
                                         CompletionCase{"1.0", true}, CompletionCase{" 1 ", true},
                                         CompletionCase{"0", false}, CompletionCase{"2", false},
                                         CompletionCase{"1.5", false}, CompletionCase{"", false},
                                         CompletionCase{"OK", false}));

TEST_F(WriteConfig, NoAnswerAboutCompletionIsNotReported) {
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "*OPC?") world.gpib.failNext["Receive"] = 1;
  };
  WriteMeterConfig();
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_FALSE(world.progress.visible);
}

TEST_F(WriteConfig, TheModelIsNotChanged) {
  Settings.Gates[0].Enabled = True16;
  Settings.RepeatEnabled = True16;
  WriteMeterConfig();
  EXPECT_EQ(Settings.Gates[1].Enabled, False16);
  EXPECT_EQ(Settings.Gates[1].StartTime, 0.0001F);
}

TEST_F(WriteConfig, OneGateIsSentWithItsStatesAndOneTime) {
  GateSettings& gate = Settings.Gates[6];
  gate = {0.001F, 0.002F, 0.003F, 0.004F, 0, 0, 0, 0, True16, False16};
  const auto timeSent = [this](GateTime time) {
    world.meter.received.clear();
    WriteGateConfig(7, time);
    EXPECT_EQ(world.meter.received.at(0), "GPGATS 1, 7, OFF");
    EXPECT_EQ(world.meter.received.at(1), "GPFENS 1, 7, ON");
    return world.meter.received.size() == 3 ? world.meter.received[2] : std::string();
  };
  EXPECT_EQ(timeSent(GateTime::start), "GPTIMST 1, 7, 0.001");
  EXPECT_EQ(timeSent(GateTime::fenceStart), "GPFENST 1, 7, 0.002");
  EXPECT_EQ(timeSent(GateTime::fenceStop), "GPFENSP 1, 7, 0.003");
  EXPECT_EQ(timeSent(GateTime::stop), "GPTIMSP 1, 7, 0.004");
  EXPECT_EQ(timeSent(static_cast<GateTime>(5)), "");
  EXPECT_EQ(world.meter.received.size(), 2U);
}

TEST_F(WriteConfig, TheRepeatIsSentInThreeCommands) {
  Settings.RepeatEnabled = True16;
  WriteRepeatConfig();
  EXPECT_EQ(world.meter.received,
            (Transcript{"GP1REPS 1,ON", "GP1REPN 1, 3", "GP1REPT 1, 0.0006"}));
}

}  // namespace
}  // namespace pulsemod::test
