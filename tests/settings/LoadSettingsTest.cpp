#include <optional>

#include "SettingsFiles.h"
#include "link/Conversation.h"
#include "profile/GraphFault.h"
#include "profile/ParameterEdits.h"
#include "settings/ConfigExchange.h"

namespace pulsemod::test {
namespace {

class LoadSettingsTest : public SettingsFileTest {
 protected:
  /// What a load shows afterwards, whether it came to its end or not.
  void expectWindowsShowTheModel() const {
    EXPECT_EQ(properties.timesRefreshed, 1);
    EXPECT_EQ(view.picture.timesShown, 1);
    EXPECT_EQ(view.picture.shown.scale.top, static_cast<double>(Settings.ReferenceLevel));
    EXPECT_NE(view.graphLabel(GraphLabel::reference), "");
  }
};

// The file dialogs.

TEST_F(LoadSettingsTest, SaveAsksForAFileAndWritesIt) {
  world.fileDialogs.saveAnswer = path;
  world.files.contents[path] = "old";
  Settings.ReferenceLevel = -30;
  SaveSettingsFile();
  FileLines expected = defaultSettingsLines();
  expected[42] = "-30 ";
  EXPECT_EQ(world.files.contents[path], fileOf(expected));
  EXPECT_EQ(world.fileDialogs.titles, (std::vector<std::string>{"Save Settings"}));
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(shownBoxes().empty());
}

TEST_F(LoadSettingsTest, LoadAsksForAFileAndReadsIt) {
  world.fileDialogs.openAnswer = path;
  world.files.contents[path] = fileOf(otherSettingsLines());
  LoadSettingsFile();
  EXPECT_EQ(storedValues(), valuesOf(otherSettingsLines()));
  EXPECT_EQ(world.fileDialogs.titles, (std::vector<std::string>{"Load Settings"}));
}

TEST_F(LoadSettingsTest, CancelledDialogsEndSilently) {
  const std::vector<double> before = storedValues();
  SaveSettingsFile();
  LoadSettingsFile();
  EXPECT_EQ(world.fileDialogs.titles, (std::vector<std::string>{"Save Settings", "Load Settings"}));
  EXPECT_TRUE(world.files.contents.empty());
  EXPECT_EQ(storedValues(), before);
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(shownBoxes().empty());
  EXPECT_EQ(properties.timesRefreshed, 0);
  EXPECT_EQ(view.picture.timesShown, 0);
}

TEST_F(LoadSettingsTest, AFileThatCannotBeWrittenIsReportedAndStays) {
  world.fileDialogs.saveAnswer = path;
  world.files.contents[path] = "old";
  world.files.writeFailure = "Permission denied";
  EXPECT_FALSE(reportFaults(SaveSettingsFile));
  expectOneFault("/data/settings.txt cannot be written: Permission denied");
  EXPECT_EQ(world.files.contents[path], "old");
}

TEST_F(LoadSettingsTest, AFileThatCannotBeReadIsReportedAndChangesNothing) {
  world.fileDialogs.openAnswer = "/data/none.txt";
  Settings.ReferenceLevel = -30;
  const std::vector<double> before = storedValues();
  const std::uint32_t edits = EditCounts.CaptureTime;
  EXPECT_FALSE(reportFaults(LoadSettingsFile));
  expectOneFault("/data/none.txt cannot be read: No such file or directory");
  EXPECT_EQ(storedValues(), before);
  EXPECT_EQ(properties.timesRefreshed, 0);
  EXPECT_EQ(EditCounts.CaptureTime, edits);
  EXPECT_EQ(ConfigExchangeBusy, False16);
}

// What a complete file does.

TEST_F(LoadSettingsTest, TheWholeConfigurationGoesToTheMeterOnGpib) {
  Settings.ReferenceLevel = -30;
  Settings.Gates[0].Enabled = True16;
  Settings.Markers[0].IsActive = False16;
  load(fileOf(defaultSettingsLines()));
  EXPECT_EQ(received(), defaultsTranscript());
  EXPECT_TRUE(shownBoxes().empty());
  EXPECT_EQ(ConfigExchangeBusy, False16);
}

TEST_F(LoadSettingsTest, TheWholeConfigurationGoesToTheMeterOnSerial) {
  world.useSerial();
  Settings.ReferenceLevel = -30;
  load(fileOf(defaultSettingsLines()));
  EXPECT_EQ(world.serial.sent, serialBytes(defaultsTranscript()));
  EXPECT_TRUE(shownBoxes().empty());
}

TEST_F(LoadSettingsTest, EveryLoadedValueIsSent) {
  Settings.ActiveChannel = 2;
  world.meter.replies["PPACQS? 2"] = "PPACQS 2,OFF";
  load(fileOf(otherSettingsLines()));
  for (const char* message : {"CHACTIV 2",           "CHCFG 2, A/B",
                              "TRCAPT 2,PMOD,0.01",  "TRDLYT 2,PMOD,-5E-06",
                              "PMPREF 2,DB,-30",     "PMPSCAL 2,DB,2.5",
                              "PMAVGS 2,ON",         "GP1REPS 2,ON",
                              "GP1REPN 2, 5",        "GP1REPT 2, -0.0007",
                              "GPACTN 2,3",          "GPTIMST 2, 1, 0.011",
                              "GPTIMSP 2, 1, 0.012", "GPFENST 2, 1, 0.013",
                              "GPFENSP 2, 1, 0.014", "GPTIMST 2, 4, 0.041",
                              "GPFENSP 2, 4, 0.044", "MKACTN 2, 2",
                              "MKACTN 2, 3",         "MKACTN 2, 4",
                              "MKSTATE 2,1,ON",      "MKPOS 2,1,0.015",
                              "MKPOS 2,4,0.045",     "MKDELTS 2,ON",
                              "MKDPOS 2,0.0005",     "*OPC?"}) {
    EXPECT_EQ(timesReceived(message), 1) << message;
  }
  EXPECT_EQ(timesReceived("MKACTN 2, 1"), 0);
}

TEST_F(LoadSettingsTest, RepeatedGatesAreSentAsTheFileHasThem) {
  FileLines lines = defaultSettingsLines();
  lines[1] = "True";
  lines[4] = "True";
  lines[11] = " 0.002 ";
  load(fileOf(lines));
  EXPECT_EQ(timesReceived("GP1REPS 1,ON"), 1);
  EXPECT_EQ(timesReceived("GP1REPN 1, 3"), 1);
  EXPECT_EQ(timesReceived("GPTIMST 1, 2, 0.002"), 1);
  EXPECT_EQ(timesReceived("GPTIMST 1, 3, 0.0001"), 1);
  // The windows have not changed it either.
  EXPECT_EQ(Settings.Gates[1].StartTime, 0.002F);
}

TEST_F(LoadSettingsTest, WindowsShowTheNewSettingsBeforeTheMeterGetsThem) {
  view.infoBoxOpen = true;
  view.markersOpen = true;
  std::optional<std::size_t> sentBefore;
  properties.onRefresh = [&] { sentBefore = received().size(); };
  load(fileOf(otherSettingsLines()));
  EXPECT_EQ(sentBefore, 0U);
  expectWindowsShowTheModel();
  EXPECT_EQ(view.graphLabel(GraphLabel::reference), "Ref: -30.00 dBm");
  EXPECT_EQ(view.graphLabel(GraphLabel::scale), "Scale: 2.50 dB");
  EXPECT_EQ(view.graphLabel(GraphLabel::capture), "10ms");
  EXPECT_EQ(view.info.groups[1], (FakeInfoBox::Group{true, true}));
  EXPECT_EQ(view.info.groups[5], (FakeInfoBox::Group{true, true}));
  EXPECT_EQ(view.info.groups[6], (FakeInfoBox::Group{false, false}));
  EXPECT_EQ(view.markers.markers[3].position, "45ms");
}

TEST_F(LoadSettingsTest, GatesBeyondTheRepeatAreOffAfterwards) {
  for (const std::size_t index : {4U, 5U, 6U, 7U}) Settings.Gates[index].Enabled = True16;
  load(fileOf(otherSettingsLines()));  // five gates
  EXPECT_EQ(Settings.Gates[4].Enabled, True16);
  for (const std::size_t index : {5U, 6U, 7U}) EXPECT_EQ(Settings.Gates[index].Enabled, False16);
}

TEST_F(LoadSettingsTest, MarkersStandInTheColumnsOfTheNewTimeAxis) {
  FileLines lines = defaultSettingsLines();
  lines[44] = " 0.001 ";
  lines[33] = " 0.0005 ";
  load(fileOf(lines));
  EXPECT_EQ(Settings.Markers[0].PositionX, 20);
  EXPECT_EQ(Settings.Markers[1].PositionX, 100);
  EXPECT_EQ(Settings.Markers[3].PositionX, 80);
}

TEST_F(LoadSettingsTest, AFileWhoseMarkersHaveNoPlaceReachesTheMeterAllTheSame) {
  for (const char* captureTime : {" 0 ", " 1E-38 "}) {
    SCOPED_TRACE(captureTime);
    world.meter.received.clear();
    world.dialogs.messages.clear();
    GraphFaultReported = false;
    FileLines lines = defaultSettingsLines();
    lines[44] = captureTime;
    lines[30] = " 3E+38 ";
    load(fileOf(lines));
    EXPECT_EQ(received().back(), "*OPC?");
    EXPECT_EQ(timesReceived("MKPOS 1,1,3E+38"), 1);
    EXPECT_EQ(shownBoxes().size(), 1U);
  }
}

TEST_F(LoadSettingsTest, VersionsAreHandedToTheDialogAndChangeNothing) {
  FileLines lines = defaultSettingsLines();
  lines.insert(lines.begin() + valueLines, {"VERSION 2", "", "3 VERSION"});
  load(fileOf(lines));
  EXPECT_EQ(properties.versions, (std::vector<std::int16_t>{0, 3}));
  EXPECT_EQ(received(), defaultsTranscript());
}

TEST_F(LoadSettingsTest, BothChannelsFailInTheWriteAfterAGoodLoad) {
  Settings.ActiveChannel = 3;
  world.meter.replies["PPACQS? 1&2"] = "PPACQS 1&2,OFF";
  load(fileOf(otherSettingsLines()));
  EXPECT_EQ(storedValues(), valuesOf(otherSettingsLines()));
  EXPECT_EQ(properties.timesRefreshed, 1);
  EXPECT_EQ(received().back(), "PMPSCAL 1&2,DB,2.5");
  EXPECT_EQ(shownBoxes(), (std::vector<std::string>{
                              "Pelmora|This setting belongs to one channel, but channel 1&2 is "
                              "selected|exclamation"}));
  EXPECT_EQ(ConfigExchangeBusy, False16);
  EXPECT_FALSE(world.progress.visible);
}

TEST_F(LoadSettingsTest, AnIncompleteAnswerOfTheMeterIsReported) {
  world.meter.operationComplete = "0";
  load(fileOf(defaultSettingsLines()));
  EXPECT_EQ(shownBoxes(),
            (std::vector<std::string>{"Pelmora|Invalid response from Power Meter|exclamation"}));
}

// A file that ends too early.

TEST_F(LoadSettingsTest, WhatWasReadBeforeTheEndOfAShortFileStays) {
  const FileLines all = otherSettingsLines();
  const std::vector<double> defaults = valuesOf(defaultSettingsLines());
  const std::vector<double> others = valuesOf(all);
  for (std::size_t count = 0; count <= valueLines; ++count) {
    for (const bool endsTheLastLine : {true, false}) {
      SCOPED_TRACE("cut after line " + std::to_string(count));
      InitMeasurementSettings();
      world.dialogs.messages.clear();
      properties.timesRefreshed = 0;
      view.picture.timesShown = 0;
      std::string content = fileOf({all.begin(), all.begin() + static_cast<long>(count)});
      // Without its end the last line is one all the same; only an empty one is then not there.
      if (!endsTheLastLine && count > 0) content.erase(content.size() - 2);
      load(content);
      std::vector<double> expected = defaults;
      std::copy_n(others.begin(), count, expected.begin());
      EXPECT_EQ(storedValues(), expected);
      expectOneFault("Input past end of file: it has only " + std::to_string(count) + " lines");
      expectWindowsShowTheModel();
      EXPECT_EQ(ConfigExchangeBusy, False16);
    }
  }
  load(fileOf(all));
  EXPECT_EQ(received().back(), "*OPC?");
}

TEST_F(LoadSettingsTest, AWordThatIsNoTruthValueEndsTheLoad) {
  FileLines lines = otherSettingsLines();
  lines[1] = "maybe";
  load(fileOf(lines));
  expectOneFault("Type mismatch: line 2 is neither True nor False");
  EXPECT_EQ(Settings.ActiveGate, 3);
  EXPECT_EQ(Settings.RepeatEnabled, False16);
  EXPECT_EQ(Settings.RepeatOffset, 0.0006F);
  expectWindowsShowTheModel();
}

TEST_F(LoadSettingsTest, TextWithoutANumberLoadsAsZero) {
  FileLines lines = defaultSettingsLines();
  lines[2] = "abc";
  load(fileOf(lines));
  EXPECT_TRUE(shownBoxes().empty());
  EXPECT_EQ(Settings.RepeatOffset, 0);
  EXPECT_EQ(timesReceived("GP1REPT 1, 0"), 1);
  EXPECT_EQ(received().back(), "*OPC?");
}

TEST_F(LoadSettingsTest, AfterAFailedLoadAnotherOneWorks) {
  load("");
  load(fileOf(otherSettingsLines()));
  EXPECT_EQ(storedValues(), valuesOf(otherSettingsLines()));
  EXPECT_EQ(received().back(), "*OPC?");
}

// Between other exchanges.

TEST_F(LoadSettingsTest, WaitsForTheLink) {
  converse([this] {
    load(fileOf(defaultSettingsLines()));
    EXPECT_TRUE(received().empty());
    EXPECT_EQ(properties.timesRefreshed, 1);
    EXPECT_EQ(ConfigExchangeBusy, True16);
  });
  EXPECT_EQ(received(), defaultsTranscript());
  EXPECT_EQ(ConfigExchangeBusy, False16);
}

TEST_F(LoadSettingsTest, ASecondLoadDuringTheFirstIsIgnored) {
  world.fileDialogs.openAnswer = path;
  world.meter.onMessage = [this](const std::string& message) {
    if (message != "CHMODE 1, PMOD") return;
    LoadSettingsFile();
    world.files.contents["/data/second.txt"] = fileOf(otherSettingsLines());
    LoadSettingsFileFrom("/data/second.txt");
  };
  load(fileOf(defaultSettingsLines()));
  EXPECT_EQ(received(), defaultsTranscript());
  EXPECT_TRUE(world.fileDialogs.titles.empty());
  EXPECT_EQ(storedValues(), valuesOf(defaultSettingsLines()));
}

TEST_F(LoadSettingsTest, SavingDuringAnExchangeWritesWhatStands) {
  world.fileDialogs.saveAnswer = "/data/copy.txt";
  world.meter.onMessage = [](const std::string& message) {
    if (message == "CHMODE 1, PMOD") SaveSettingsFile();
  };
  load(fileOf(defaultSettingsLines()));
  EXPECT_EQ(world.files.contents["/data/copy.txt"], fileOf(defaultSettingsLines()));
  EXPECT_EQ(received(), defaultsTranscript());
}

/// One of the four edited parameters, with its line in the file.
struct Edited {
  const char* name;
  void (*edit)();
  float MeasurementSettings::*value;
  const char* typed;
  const char* query;
  const char* reply;
  std::size_t line;
};

void PrintTo(const Edited& edited, std::ostream* out) { *out << edited.name; }

class LoadAgainstEdit : public LoadSettingsTest, public ::testing::WithParamInterface<Edited> {};

INSTANTIATE_TEST_SUITE_P(
    Parameters, LoadAgainstEdit,
    ::testing::Values(Edited{"Capture", EditCaptureTime, &MeasurementSettings::CaptureTime, "9ms",
                             "TRCAPT? 1,PMOD", "TRCAPT 1,PMOD,0.009", 45},
                      Edited{"Reference", EditReferenceLevel, &MeasurementSettings::ReferenceLevel,
                             "7", "PMPREF? 1,DB", "PMPREF 1,DB,7", 43},
                      Edited{"Delay", EditTriggerDelay, &MeasurementSettings::TriggerDelay, "2ms",
                             "TRDLYT? 1PMOD", "TRDLYT 1,PMOD,0.002", 46},
                      Edited{"Scale", EditGraphScale, &MeasurementSettings::ScalePerDivision, "3",
                             "PMPSCAL? 1,DB", "PMPSCAL 1,DB,3", 44}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(LoadAgainstEdit, AReadBackUnderWayDoesNotOverwriteTheFile) {
  const FileLines lines = otherSettingsLines();
  world.meter.replies[GetParam().query] = GetParam().reply;
  world.meter.onMessage = [this, &lines](const std::string& message) {
    if (message == GetParam().query) load(fileOf(lines));
  };
  world.dialogs.textAnswers.emplace_back(GetParam().typed);
  GetParam().edit();
  EXPECT_EQ(static_cast<double>(Settings.*GetParam().value), valuesOf(lines)[GetParam().line - 1]);
  EXPECT_EQ(received().back(), "*OPC?");
}

TEST_P(LoadAgainstEdit, AReadBackDoesNotOverwriteWhatAShortFileGave) {
  const FileLines all = otherSettingsLines();
  const FileLines lines(all.begin(), all.begin() + static_cast<long>(valueLines));
  world.meter.replies[GetParam().query] = GetParam().reply;
  world.meter.onMessage = [this, &lines](const std::string& message) {
    if (message == GetParam().query) load(fileOf(lines));
  };
  world.dialogs.textAnswers.emplace_back(GetParam().typed);
  GetParam().edit();
  EXPECT_EQ(static_cast<double>(Settings.*GetParam().value), valuesOf(lines)[GetParam().line - 1]);
  EXPECT_EQ(received().size(), 2U);
}

}  // namespace
}  // namespace pulsemod::test
