#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MeterScript.h"
#include "link/Fault.h"
#include "profile/MeasurementSettings.h"
#include "startup/ReadMeterConfig.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

class ReadConfig : public testing::Test {
 protected:
  ReadConfig() { answerConfiguration(world.meter); }

  std::string& answer(const std::string& query) { return world.meter.replies[query]; }

  FakeWorld world;
};

TEST_F(ReadConfig, TranscriptOnGpib) {
  ReadMeterConfig();
  EXPECT_EQ(world.meter.received, configurationTranscript());
  EXPECT_EQ(world.gpib.interruptedQueries, 0);
  EXPECT_EQ(world.clock.sleeps.size(), 47U);
}

TEST_F(ReadConfig, TranscriptOnSerial) {
  world.useSerial();
  ReadMeterConfig();
  EXPECT_EQ(world.serial.sent, serialBytes(configurationTranscript()));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(ReadConfig, ProgressTextsInTheirOrder) {
  const std::vector<std::string> steps = {
      "Setting Active Channel...", "Going to PulseMod...", "Reading Gates...",
      "Reading Gates...1",         "Reading Gates...2",    "Reading Gates...3",
      "Reading Gates...4",         "Reading Markers...1",  "Reading Markers...2",
      "Reading Markers...3",       "Reading Markers...4",  "Reading Reference...",
      "Reading Capture Period...",
  };
  ReadMeterConfig();
  ASSERT_EQ(world.progress.texts.size(), steps.size());
  for (std::size_t step = 0; step < steps.size(); ++step) {
    EXPECT_EQ(world.progress.texts[step], "Please Wait... " + steps[step]);
  }
  EXPECT_EQ(world.progress.hides, 1);
  EXPECT_FALSE(world.progress.visible);
}

TEST_F(ReadConfig, EachProgressTextStandsBeforeItsExchanges) {
  std::vector<std::string> seen;
  world.meter.onMessage = [this, &seen](const std::string& message) {
    seen.push_back(message + " | " +
                   (world.progress.texts.empty() ? "" : world.progress.texts.back()));
  };
  ReadMeterConfig();
  const auto at = [&seen](std::size_t index) { return seen[index]; };
  EXPECT_EQ(at(0), "PPACQS? 1 | ");
  EXPECT_EQ(at(1), "CHACTIV? | Please Wait... Setting Active Channel...");
  EXPECT_EQ(at(2), "CHDISPN 1 | Please Wait... Setting Active Channel...");
  EXPECT_EQ(at(3), "CHMODE 1,PMOD | Please Wait... Going to PulseMod...");
  EXPECT_EQ(at(5), "GPACTN? 1 | Please Wait... Reading Gates...");
  EXPECT_EQ(at(9), "GPGATS? 1, 1 | Please Wait... Reading Gates...1");
  EXPECT_EQ(at(32), "GPFENSP? 1, 4 | Please Wait... Reading Gates...4");
  EXPECT_EQ(at(33), "MKSTATE? 1,1 | Please Wait... Reading Markers...1");
  EXPECT_EQ(at(42), "MKDELTS? 1 | Please Wait... Reading Markers...4");
  EXPECT_EQ(at(43), "PMPREF? 1,DB | Please Wait... Reading Reference...");
  EXPECT_EQ(at(45), "TRCAPT? 1,PMOD | Please Wait... Reading Capture Period...");
  EXPECT_EQ(at(49), "PMPO 1 | Please Wait... Reading Capture Period...");
}

TEST_F(ReadConfig, BarGrowsToItsEndWithEachExchangeOnEitherLink) {
  for (const bool serial : {false, true}) {
    FakeWorld fresh;
    if (serial) fresh.useSerial();
    answerConfiguration(fresh.meter);
    ReadMeterConfig();
    // Whether a statistics acquisition must be stopped is asked before the window shows.
    EXPECT_TRUE(fresh.progress.barGrewToItsEnd(configurationTranscript().size() - 1));
    EXPECT_EQ(fresh.progress.bars.size(), 50U);
  }
}

TEST_F(ReadConfig, BarReachesItsEndWhateverTheMeterAnswers) {
  for (const char* reply : {"ON", "OFF", "", "3", "1E99"}) {
    FakeWorld fresh;
    answerConfiguration(fresh.meter);
    for (auto& [query, answer] : fresh.meter.replies) {
      if (query != "CHACTIV?" && query != "PMPO 1") answer = answer.substr(0, 8) + ",1," + reply;
    }
    ReadMeterConfig();
    EXPECT_TRUE(fresh.progress.barGrewToItsEnd(49)) << reply;
    FakeWorld silent;
    ReadMeterConfig();
    EXPECT_TRUE(silent.progress.barGrewToItsEnd(49));
  }
}

TEST_F(ReadConfig, BarStandsAtItsExchangeWhileItsReplyIsWaitedFor) {
  std::vector<std::pair<std::string, int>> seen;
  world.meter.onMessage = [this, &seen](const std::string& message) {
    if (!world.progress.bars.empty()) seen.emplace_back(message, world.progress.bars.back().first);
  };
  ReadMeterConfig();
  EXPECT_EQ(seen.front(), (std::pair<std::string, int>{"CHACTIV?", 0}));
  EXPECT_EQ(seen[1], (std::pair<std::string, int>{"CHDISPN 1", 1}));
  EXPECT_EQ(seen.back(), (std::pair<std::string, int>{"PMPO 1", 48}));
}

TEST_F(ReadConfig, CountingChangesNoSetting) {
  Settings.RepeatEnabled = True16;
  Settings.RepeatCount = 8;
  const GateSettings gateFive = Settings.Gates[4];
  answer("GP1REPS? 1") = "GP1REPS 1,OFF";
  ReadMeterConfig();
  EXPECT_EQ(Settings.RepeatEnabled, False16);
  EXPECT_EQ(Settings.Gates[4].Enabled, gateFive.Enabled);
  EXPECT_EQ(Settings.Gates[4].StartTime, gateFive.StartTime);
}

TEST_F(ReadConfig, StatisticsAcquisitionIsStoppedBeforeTheProgressShows) {
  answer("PPACQS? 1") = "PPACQS 1,ON";
  bool stopped = false;
  world.meter.onMessage = [&](const std::string& message) {
    if (message != "PPACQS 1,OFF") return;
    stopped = true;
    EXPECT_FALSE(world.progress.visible);
  };
  ReadMeterConfig();
  EXPECT_TRUE(stopped);
  Transcript expected = configurationTranscript();
  expected.insert(expected.begin() + 1, "PPACQS 1,OFF");
  EXPECT_EQ(world.meter.received, expected);
}

TEST_F(ReadConfig, TheChannelTextChangesOnceTheActiveChannelIsRead) {
  for (auto& [query, reply] : std::map<std::string, std::string>(world.meter.replies)) {
    std::string other = query;
    if (const std::size_t blank = other.find(' '); blank != std::string::npos)
      other[blank + 1] = '2';
    answer(other) = reply;
  }
  answer("CHACTIV?") = "CHACTIV 2";
  ReadMeterConfig();
  Transcript expected = configurationTranscript();
  for (std::size_t line = 3; line < expected.size(); ++line) {
    expected[line][expected[line].find(' ') + 1] = '2';
  }
  EXPECT_EQ(world.meter.received, expected);
  EXPECT_EQ(world.meter.received.front(), "PPACQS? 1");
  EXPECT_EQ(Settings.ActiveChannel, 2);
  EXPECT_EQ(Settings.Channels[1].AveragingOn, True16);
  EXPECT_EQ(Settings.Channels[1].AveragingCount, 16);
  EXPECT_EQ(Settings.Channels[0].AveragingOn, False16);
  EXPECT_EQ(Settings.Channels[0].AveragingCount, 1);
}

TEST_F(ReadConfig, BothChannelsAreOneChannelText) {
  Settings.ActiveChannel = 3;
  world.meter.replies = {};
  ReadMeterConfig();
  EXPECT_EQ(world.meter.received.front(), "PPACQS? 1&2");
  EXPECT_EQ(world.meter.received[3], "CHMODE 1&2,PMOD");
  EXPECT_EQ(world.meter.received[9], "GPGATS? 1&2, 1");
  EXPECT_EQ(world.meter.received[33], "MKSTATE? 1&2,1");
  EXPECT_EQ(world.meter.received.back(), "PMPO 1&2");
  EXPECT_EQ(Settings.ActiveChannel, 3);
}

TEST_F(ReadConfig, TheActiveChannelIsTheLastCharacterAlone) {
  const std::vector<std::pair<std::string, int>> rows = {
      {"CHACTIV 1", 1}, {"CHACTIV 2", 2},  {"CHACTIV 12", 2},    {"CHACTIV 1&2", 2},
      {"2 ", 2},        {"CHACTIV 21", 1}, {"CHACTIV 2\t\r", 2}, {"3", 3},
      {"CHACTIV X", 0}, {"CHACTIV 1.", 0},
  };
  for (const bool serial : {false, true}) {
    for (const auto& [reply, channel] : rows) {
      FakeWorld fresh;
      if (serial) fresh.useSerial();
      fresh.meter.replies["CHACTIV?"] = reply;
      // The rest of the read does not matter here.
      fresh.meter.onMessage = [](const std::string& message) {
        if (message == "CHDISPN 1") throw ProgramEnded();
      };
      fresh.meter.replies["PPACQS? 1"] = "PPACQS 1,OFF";
      EXPECT_THROW(ReadMeterConfig(), ProgramEnded);
      EXPECT_EQ(Settings.ActiveChannel, channel) << reply;
    }
  }
}

TEST_F(ReadConfig, AChannelThatIsNoneIsAFaultAndNoCrash) {
  answer("CHACTIV?") = "CHACTIV X";
  for (const char* query : {"PMAVGS? 0", "PMAVGN? 0"}) {
    answer(query) = "PMAVG 0,ON";
    EXPECT_FALSE(reportFaults(ReadMeterConfig)) << query;
    world.meter.replies.erase(query);
    Settings.ActiveChannel = 1;
  }
  EXPECT_EQ(world.dialogs.messages.size(), 2U);
  EXPECT_EQ(world.dialogs.messages.front().title, "Pelmora");
  EXPECT_FALSE(world.progress.visible);
}

TEST_F(ReadConfig, TimesOfAGateAreCutAtTheirThirteenthCharacter) {
  struct Row {
    std::string reply;
    float time;
  };
  const Row rows[] = {
      {"GPTIMST 1,1,0.0001", 0.0001F},
      {"GPTIMST 1&2,1,0.0001", 1.0F},
      {"GPTIMST 1, 1, 0.0001", 0.0F},
      {"GPTIMST 1,1,", 0.0F},
      {"GPTIMST", 0.0F},
      {"", 0.0F},
      {"123456789012-5E-06s", -5e-6F},
      {"GPTIMST 1,1, 0.5", 0.5F},
  };
  for (const Row& row : rows) {
    for (const char* const mnemonic : {"GPTIMST", "GPTIMSP", "GPFENST", "GPFENSP"}) {
      world.meter.replies = {{std::string(mnemonic) + "? 1, 3", row.reply}};
      Settings = MeasurementSettings{};
      ReadGateConfig(3);
      const GateSettings& gate = Settings.Gates[2];
      const GateSettings old;
      const std::string name = mnemonic;
      EXPECT_EQ(gate.StartTime, name == "GPTIMST" ? row.time : old.StartTime) << row.reply;
      EXPECT_EQ(gate.StopTime, name == "GPTIMSP" ? row.time : old.StopTime) << row.reply;
      EXPECT_EQ(gate.FenceStart, name == "GPFENST" ? row.time : old.FenceStart) << row.reply;
      EXPECT_EQ(gate.FenceStop, name == "GPFENSP" ? row.time : old.FenceStop) << row.reply;
    }
  }
}

TEST_F(ReadConfig, OneGateIsReadWithSixQueries) {
  ReadGateConfig(2);
  EXPECT_EQ(world.meter.received, (Transcript{"GPGATS? 1, 2", "GPTIMST? 1, 2", "GPTIMSP? 1, 2",
                                              "GPFENS? 1, 2", "GPFENST? 1, 2", "GPFENSP? 1, 2"}));
  EXPECT_EQ(Settings.Gates[1].StopTime, 0.0022F);
  EXPECT_EQ(Settings.Gates[0].StopTime, 0.000577F);
  EXPECT_TRUE(world.progress.texts.empty());
}

TEST_F(ReadConfig, StatesHaveThreeKindsOfReading) {
  struct Row {
    const char* value;
    bool gate;    // holds no "OFF" anywhere
    bool repeat;  // is "ON"
    bool marker;  // is not "OFF"
  };
  const Row rows[] = {
      {"ON", true, true, true},   {"OFF", false, false, false},   {"1", true, false, true},
      {"0", true, false, true},   {"COFFEE", false, false, true}, {"on", true, false, true},
      {"off", true, false, true}, {"ONE", true, false, true},     {"", true, false, true},
      {" ON ", true, true, true}, {" OFF ", false, false, false},
  };
  const auto truth = [](bool value) { return value ? True16 : False16; };
  for (const Row& row : rows) {
    for (const bool old : {false, true}) {
      const std::string value = row.value;
      Settings.Gates[0].Enabled = Settings.Gates[0].FenceEnabled = truth(old);
      Settings.RepeatEnabled = Settings.Channels[0].AveragingOn = truth(old);
      Settings.Markers[0].Enabled = Settings.Markers[4].Enabled = truth(old);
      answer("GPGATS? 1, 1") = "GPGATS 1,1," + value;
      answer("GPFENS? 1, 1") = "GPFENS 1,1," + value;
      answer("GP1REPS? 1") = "GP1REPS 1," + value;
      answer("PMAVGS? 1") = "PMAVGS 1," + value;
      answer("MKSTATE? 1,1") = "MKSTATE 1,1," + value;
      answer("MKDELTS? 1") = "MKDELTS 1," + value;
      ReadMeterConfig();
      EXPECT_EQ(Settings.Gates[0].Enabled, truth(row.gate)) << value;
      EXPECT_EQ(Settings.Gates[0].FenceEnabled, truth(row.gate)) << value;
      EXPECT_EQ(Settings.RepeatEnabled, truth(row.repeat)) << value;
      EXPECT_EQ(Settings.Channels[0].AveragingOn, truth(row.repeat)) << value;
      EXPECT_EQ(Settings.Markers[0].Enabled, truth(row.marker)) << value;
      EXPECT_EQ(Settings.Markers[4].Enabled, truth(row.marker)) << value;
    }
  }
}

TEST_F(ReadConfig, OffInsideAGatesReplyHeadCountsToo) {
  answer("GPGATS? 1, 2") = "OFFICE 1,2,ON";
  ReadMeterConfig();
  EXPECT_EQ(Settings.Gates[1].Enabled, False16);
  EXPECT_EQ(Settings.Gates[2].Enabled, True16);
}

TEST_F(ReadConfig, TheActiveMarker) {
  struct Row {
    const char* reply;
    std::vector<int> active;
  };
  const Row rows[] = {
      {"MKACTN 1,1", {1}}, {"MKACTN 1,4", {4}}, {"MKACTN 1,5", {5}},    {"MKACTN 1,0", {}},
      {"MKACTN 1,6", {}},  {"MKACTN 1,-1", {}}, {"MKACTN 1,70000", {}}, {"MKACTN 1,x", {}},
  };
  for (const Row& row : rows) {
    Settings.Markers[4].IsActive = False16;
    answer("MKACTN? 1") = row.reply;
    ReadMeterConfig();
    std::vector<int> active;
    for (int number = 1; number <= 5; ++number) {
      if (Settings.Markers[static_cast<std::size_t>(number - 1)].IsActive == True16) {
        active.push_back(number);
      }
    }
    EXPECT_EQ(active, row.active) << row.reply;
  }
}

TEST_F(ReadConfig, AnAnsweredMarkerLosesItsActivityThoughTheActiveOneStaysUnknown) {
  world.meter.replies.erase("MKACTN? 1");
  world.meter.replies.erase("MKSTATE? 1,3");
  for (MarkerSettings& marker : Settings.Markers) marker.IsActive = True16;
  ReadMeterConfig();
  EXPECT_EQ(Settings.Markers[0].IsActive, False16);
  EXPECT_EQ(Settings.Markers[1].IsActive, False16);
  EXPECT_EQ(Settings.Markers[2].IsActive, True16);
  EXPECT_EQ(Settings.Markers[3].IsActive, False16);
  EXPECT_EQ(Settings.Markers[4].IsActive, True16);
}

TEST_F(ReadConfig, ARepeatOverwritesTheGatesThatWereRead) {
  answer("GP1REPS? 1") = "GP1REPS 1,ON";
  answer("GP1REPN? 1") = "GP1REPN 1,3";
  answer("GPGATS? 1, 1") = "GPGATS 1,1,OFF";
  answer("GPGATS? 1, 3") = "GPGATS 1,3,OFF";
  ReadMeterConfig();
  EXPECT_EQ(Settings.Gates[0].Enabled, True16);
  EXPECT_EQ(Settings.Gates[1].StartTime, 0.0018F);  // 0.0011 + 0.0007
  EXPECT_EQ(Settings.Gates[2].StartTime, 0.0025F);
  EXPECT_EQ(Settings.Gates[2].FenceStop, 0.0028F);
  EXPECT_EQ(Settings.Gates[2].Enabled, True16);
  EXPECT_EQ(Settings.Gates[3].StartTime, 0.0041F);
}

TEST_F(ReadConfig, ARepeatOfMoreGatesThanThereAreFillsAllOfThem) {
  answer("GP1REPS? 1") = "GP1REPS 1,ON";
  answer("GP1REPN? 1") = "GP1REPN 1,12";
  ReadMeterConfig();
  EXPECT_EQ(Settings.RepeatCount, 12);
  EXPECT_EQ(Settings.Gates[7].StartTime, 0.006F);  // 0.0011 + 7 * 0.0007
  EXPECT_EQ(Settings.Gates[7].Enabled, True16);
}

TEST_F(ReadConfig, AReadoutThatIsNoProfileLeavesTheProgressOnTheScreen) {
  for (const char* reply : {"OK", "", "PMP 1,400,"}) {
    answer("PMPO 1") = reply;
    Settings.DisplayPoints = 123;
    world.progress.hides = 0;
    ReadMeterConfig();
    EXPECT_TRUE(world.progress.visible) << reply;
    EXPECT_EQ(world.progress.hides, 0);
    EXPECT_EQ(Settings.DisplayPoints, 123);
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(ReadConfig, AProfileWithoutACommaIsAFaultAndHidesTheProgress) {
  for (const char* reply : {"PMPO 1,400", "PMPO", "PMPO 1,", "PMPO 1, "}) {
    answer("PMPO 1") = reply;
    Settings.DisplayPoints = 123;
    EXPECT_THROW(ReadMeterConfig(), Fault) << reply;
    EXPECT_FALSE(world.progress.visible);
    EXPECT_EQ(Settings.DisplayPoints, 123);
  }
}

TEST_F(ReadConfig, ThePointCountStandsBehindSevenCharacters) {
  answer("PMPO 1") = "xPMPO 1,300,-30";
  ReadMeterConfig();
  EXPECT_EQ(Settings.DisplayPoints, 0);  // what is left is ",300,-30"
  answer("PMPO 1") = "PMPO 1,199.6,-30";
  ReadMeterConfig();
  EXPECT_EQ(Settings.DisplayPoints, 200);
}

}  // namespace
}  // namespace pulsemod::test
