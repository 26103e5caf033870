#include "ProfileTest.h"
#include "link/Conversation.h"
#include "link/Fault.h"
#include "profile/AcquisitionLoop.h"
#include "profile/GraphMouse.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileGraph.h"

namespace pulsemod::test {
namespace {

/// A label that is clicked to edit its parameter.
struct EditLabel {
  const char* name;
  void (*click)();
  const char* prompt;
  const char* title;
  Boolean16 PendingEditFlags::*pending;
  float MeasurementSettings::*value;
  /// Up to the channel, and from there on.
  const char* mnemonic;
  const char* unit;
  const char* queryUnit;
  bool takesAnyText;
};

void PrintTo(const EditLabel& tested, std::ostream* out) { *out << tested.name; }

const std::array<EditLabel, 4> editLabels = {{
    {"Capture", EditCaptureTime, "Enter new Capture Period", "Time", &PendingEditFlags::CaptureTime,
     &MeasurementSettings::CaptureTime, "TRCAPT", ",PMOD", ",PMOD", true},
    {"Reference", EditReferenceLevel, "Enter new reference level (dBm)", "Reference",
     &PendingEditFlags::ReferenceLevel, &MeasurementSettings::ReferenceLevel, "PMPREF", ",DB",
     ",DB", false},
    {"Scale", EditGraphScale, "Enter new graph scale (dB)", "Reference",
     &PendingEditFlags::GraphScale, &MeasurementSettings::ScalePerDivision, "PMPSCAL", ",DB", ",DB",
     false},
    {"Start", EditTriggerDelay, "Enter new trigger delay", "Time", &PendingEditFlags::TriggerDelay,
     &MeasurementSettings::TriggerDelay, "TRDLYT", ",PMOD", "PMOD", false},
}};
const EditLabel& captureLabel = editLabels[0];
const EditLabel& referenceLabel = editLabels[1];
const EditLabel& scaleLabel = editLabels[2];
const EditLabel& startLabel = editLabels[3];

class ParameterLabelTest : public ProfileTest {
 protected:
  static std::string command(const EditLabel& label, const std::string& value,
                             const std::string& channel = "1") {
    return std::string(label.mnemonic) + " " + channel + label.unit + "," + value;
  }
  static std::string query(const EditLabel& label, const std::string& channel = "1") {
    return std::string(label.mnemonic) + "? " + channel + label.queryUnit;
  }
  /// The loop's query, which differs for the trigger delay.
  static std::string loopQuery(const EditLabel& label) {
    return std::string(label.mnemonic) + "? 1" + label.unit;
  }
  /// What a click with each of `values` sends and asks.
  static Transcript exchanges(const EditLabel& label, const std::vector<std::string>& values) {
    Transcript expected;
    for (const std::string& value : values) {
      expected.insert(expected.end(), {command(label, value), query(label)});
    }
    return expected;
  }

  void readBack(const EditLabel& label, const std::string& value) {
    world.meter.replies[query(label)] = command(label, value);
    world.meter.replies[loopQuery(label)] = command(label, value);
  }
  void click(const EditLabel& label, const std::string& answer) {
    world.dialogs.textAnswers.push_back(answer);
    EXPECT_TRUE(reportFaults(label.click));
  }

  static float value(const EditLabel& label) { return Settings.*label.value; }
  static bool isPending(const EditLabel& label) { return PendingEdits.*label.pending != False16; }
  static void expectNothingPending() {
    for (const EditLabel& label : editLabels) EXPECT_FALSE(isPending(label)) << label.name;
  }
};

class OneParameterLabel : public ParameterLabelTest,
                          public ::testing::WithParamInterface<EditLabel> {
 protected:
  const EditLabel& label = GetParam();
};

INSTANTIATE_TEST_SUITE_P(Labels, OneParameterLabel, ::testing::ValuesIn(editLabels),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(ParameterLabelTest, BoxesOfferThePresentValues) {
  Settings.CaptureTime = 0.0046785F;
  Settings.ReferenceLevel = -30.5F;
  Settings.ScalePerDivision = 1.0F / 3.0F;
  Settings.TriggerDelay = 0.0000001F;
  RefreshGraph();
  const std::array<const char*, 4> offered = {"4.678ms", "-30.5", "0.3333333", "100ns"};
  for (std::size_t index = 0; index < editLabels.size(); ++index) {
    const EditLabel& label = editLabels[index];
    SCOPED_TRACE(label.name);
    world.dialogs.inputs.clear();
    click(label, "");
    ASSERT_EQ(world.dialogs.inputs.size(), 1U);
    EXPECT_EQ(world.dialogs.inputs[0].prompt, label.prompt);
    EXPECT_EQ(world.dialogs.inputs[0].title, label.title);
    EXPECT_EQ(world.dialogs.inputs[0].defaultText, offered[index]);
  }
}

TEST_F(ParameterLabelTest, TimesAreOfferedAsTheirLabelsReadNow) {
  view.labels[GraphLabel::capture] = "7us";
  view.labels[GraphLabel::start] = "8us";
  click(captureLabel, "");
  click(startLabel, "");
  EXPECT_EQ(world.dialogs.inputs[0].defaultText, "7us");
  EXPECT_EQ(world.dialogs.inputs[1].defaultText, "8us");
}

TEST_P(OneParameterLabel, NoAnswerChangesNothing) {
  RefreshGraph();
  const auto labels = view.labels;
  const float before = value(label);
  for (const Boolean16 running : {False16, True16}) {
    AcquisitionRunning = running;
    click(label, "");
  }
  EXPECT_EQ(value(label), before);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(view.labels, labels);
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_TRUE(world.dialogs.messages.empty());
  expectNothingPending();
}

TEST_P(OneParameterLabel, ValueIsSentAndReadBackAtOnce) {
  for (const bool serial : {false, true}) {
    SCOPED_TRACE(serial ? "RS232" : "GPIB");
    if (serial) world.useSerial();
    world.meter.received.clear();
    view.picture.timesShown = 0;
    readBack(label, "0.0004");
    click(label, "0.0003");
    EXPECT_EQ(received(), exchanges(label, {"0.0003"}));
    EXPECT_EQ(value(label), 0.0004F);
    EXPECT_EQ(view.picture.timesShown, 1);
    expectNothingPending();
  }
  EXPECT_EQ(world.serial.sent, command(label, "0.0003") + "\r" + query(label) + "\r");
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(ParameterLabelTest, MessagesAreTheseToTheLetter) {
  for (const bool serial : {false, true}) {
    if (serial) world.useSerial();
    world.meter.received.clear();
    for (const EditLabel& label : editLabels) readBack(label, "5");
    click(captureLabel, "5ms");
    click(referenceLabel, "5");
    click(scaleLabel, "2.5");
    click(startLabel, "1us");
    EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.005", "TRCAPT? 1,PMOD", "PMPREF 1,DB,5",
                                      "PMPREF? 1,DB", "PMPSCAL 1,DB,2.5", "PMPSCAL? 1,DB",
                                      "TRDLYT 1,PMOD,1E-06", "TRDLYT? 1PMOD"}));
  }
  EXPECT_EQ(world.serial.sent,
            "TRCAPT 1,PMOD,0.005\rTRCAPT? 1,PMOD\rPMPREF 1,DB,5\rPMPREF? 1,DB\r"
            "PMPSCAL 1,DB,2.5\rPMPSCAL? 1,DB\rTRDLYT 1,PMOD,1E-06\rTRDLYT? 1PMOD\r");
}

TEST_F(ParameterLabelTest, MessagesCarryTheActiveChannel) {
  const std::vector<std::pair<std::int16_t, std::string>> channels = {{2, "2"}, {3, "1&2"}};
  for (const auto& [active, channel] : channels) {
    Settings.ActiveChannel = active;
    for (const EditLabel& label : editLabels) {
      world.meter.received.clear();
      world.meter.replies[query(label, channel)] = command(label, "0.25", channel);
      click(label, "0.5");
      EXPECT_EQ(received(), (Transcript{command(label, "0.5", channel), query(label, channel)}));
      EXPECT_EQ(value(label), 0.25F) << label.name;
    }
  }
  EXPECT_EQ(received(), (Transcript{"TRDLYT 1&2,PMOD,0.5", "TRDLYT? 1&2PMOD"}));
}

TEST_F(ParameterLabelTest, FiveMillisecondsAreStoredAndShown) {
  readBack(captureLabel, "0.005");
  readBack(startLabel, "0.0001");
  click(captureLabel, "5ms");
  EXPECT_EQ(Settings.CaptureTime, 0.005F);
  click(startLabel, "100us");
  EXPECT_EQ(Settings.TriggerDelay, 0.0001F);
  EXPECT_EQ(view.labels[GraphLabel::capture], "5ms");
  EXPECT_EQ(view.labels[GraphLabel::start], "100us");
  EXPECT_EQ(view.labels[GraphLabel::stop], "5.1ms");
}

TEST_F(ParameterLabelTest, LabelsShowWhatTheMeterAccepted) {
  readBack(captureLabel, "0.006");
  readBack(referenceLabel, "-5");
  readBack(scaleLabel, "2");
  readBack(startLabel, "0.001");
  for (const EditLabel& label : editLabels) click(label, "3");
  const std::map<GraphLabel, std::string> expected = {{GraphLabel::reference, "Ref: -5.00 dBm"},
                                                      {GraphLabel::scale, "Scale: 2.00 dB"},
                                                      {GraphLabel::capture, "6ms"},
                                                      {GraphLabel::start, "1ms"},
                                                      {GraphLabel::stop, "7ms"}};
  EXPECT_EQ(view.labels, expected);
  EXPECT_EQ(view.picture.shown.scale, (PictureScale{1, -5, 200, -20}));
}

TEST_F(ParameterLabelTest, TimeThatIsConfirmedAsItReadsIsCutToItsText) {
  Settings.CaptureTime = 0.0046785F;
  RefreshGraph();
  readBack(captureLabel, "0.004678");
  click(captureLabel, view.labels[GraphLabel::capture]);
  EXPECT_EQ(received(), exchanges(captureLabel, {"0.004678"}));
  EXPECT_EQ(Settings.CaptureTime, 0.004678F);
}

TEST_F(ParameterLabelTest, TimesGoThroughTheirText) {
  click(captureLabel, "9us");
  EXPECT_EQ(received()[0], "TRCAPT 1,PMOD,9E-06");
  EXPECT_EQ(Settings.CaptureTime, 9E-06F);
  click(captureLabel, "0.12345678");
  EXPECT_EQ(received()[2], "TRCAPT 1,PMOD,0.1234568");
  EXPECT_EQ(Settings.CaptureTime, 0.1234568F);
}

TEST_P(OneParameterLabel, FailedReadBackKeepsTheEnteredValueAndDrawsNothing) {
  RefreshGraph();
  const auto labels = view.labels;
  click(label, "3");
  EXPECT_EQ(received(), exchanges(label, {"3"}));
  EXPECT_EQ(value(label), 3.0F);
  EXPECT_EQ(view.labels, labels);
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_P(OneParameterLabel, RefusedCommandFailsTheReadBackToo) {
  world.meter.rejected = {command(label, "3")};
  readBack(label, "4");
  click(label, "3");
  EXPECT_EQ(received(), (Transcript{command(label, "3"), query(label), "*CLS; *OPC?"}));
  EXPECT_EQ(value(label), 3.0F);
  EXPECT_EQ(view.picture.timesShown, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_P(OneParameterLabel, RefusedQueryKeepsTheEnteredValue) {
  world.meter.rejected = {query(label)};
  readBack(label, "4");
  click(label, "3");
  EXPECT_EQ(value(label), 3.0F);
  EXPECT_EQ(view.picture.timesShown, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_P(OneParameterLabel, ReadBackIsNumericOnlyWhereTextCountsAsZero) {
  struct Row {
    const char* readBack;
    float strict;
    float lenient;
  };
  constexpr float entered = 3;
  const std::vector<Row> rows = {
      {"7", 7, 7},
      {" 7 ", 7, 7},
      {"7\r", 7, 7},

      {"+7", 7, 7},
      {"-7", -7, -7},
      {"7E-02", 0.07F, 0.07F},
      {"7,8", 7, 7},
      {"10dBm", entered, 10},
      {"7 8", entered, 7},
      {"7.", 7, 7},
      {"x", entered, 0},
      {"", entered, 0},
      {"1E39", entered, entered},
      {"--7", entered, 0},
      {"nan", entered, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.readBack);
    readBack(label, row.readBack);
    click(label, "3");
    EXPECT_EQ(value(label), label.takesAnyText ? row.lenient : row.strict);
  }
}

TEST_F(ParameterLabelTest, ReadBackOverSerialKeepsItsReturnAndIsTakenAllTheSame) {
  world.useSerial();
  for (const EditLabel& label : editLabels) {
    readBack(label, "7");
    click(label, "3");
    EXPECT_EQ(value(label), 7.0F) << label.name;
  }
}

TEST_F(ParameterLabelTest, ReadBackThatIsNoNumberIsSilentAndDrawsNothing) {
  for (const EditLabel* label : {&referenceLabel, &scaleLabel, &startLabel}) {
    readBack(*label, "10dBm");
    click(*label, "3");
    EXPECT_EQ(value(*label), 3.0F) << label->name;
  }
  EXPECT_EQ(view.picture.timesShown, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_P(OneParameterLabel, RunningOnlySetsItsFlag) {
  RefreshGraph();
  const auto labels = view.labels;
  readBack(label, "3");
  AcquisitionRunning = True16;
  click(label, "3");
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(value(label), 3.0F);
  EXPECT_EQ(view.labels, labels);
  EXPECT_EQ(view.picture.timesShown, 1);
  for (const EditLabel& other : editLabels) {
    EXPECT_EQ(isPending(other), std::string(other.name) == label.name) << other.name;
  }
}

TEST_P(OneParameterLabel, LastOfTwoEditsWhileRunningIsSentOnce) {
  answerProfile(levels(200));
  AcquisitionRunning = True16;
  readBack(label, "7");
  click(label, "3");
  click(label, "7");
  AcquireProfile();
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", command(label, "7"), loopQuery(label),
                                    "TR1 1", "PMPBO 1"}));
  EXPECT_EQ(value(label), 7.0F);
  expectNothingPending();
}

TEST_P(OneParameterLabel, EditDuringAPassThatRunsIsCarriedOutByIt) {
  answerProfile(levels(200));
  readBack(label, "7");
  AcquisitionRunning = True16;
  duringReplyTo("TR1 1", [this] { click(label, "7"); });
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", command(label, "7"), loopQuery(label)}));
}

TEST_P(OneParameterLabel, EditDuringTheLoopsReadBackReachesTheMeterLast) {
  answerProfile(levels(200));
  AcquisitionRunning = True16;
  click(label, "3");
  world.meter.onceReplies[loopQuery(label)] = {command(label, "3"), command(label, "7")};
  duringReplyTo(loopQuery(label), [this] { click(label, "7"); });
  AcquireProfile();
  EXPECT_EQ(value(label), 7.0F);
  EXPECT_TRUE(isPending(label));
  AcquireProfile();
  EXPECT_EQ(timesReceived(command(label, "7")), 1);
  EXPECT_EQ(value(label), 7.0F);
  expectNothingPending();
}

/// The loop's exchange is under way when a stop and an edit at once come.
TEST_P(OneParameterLabel, StopAndEditDuringTheLoopsReadBackReachTheMeterLast) {
  answerProfile(levels(200));
  AcquisitionRunning = True16;
  click(label, "3");
  readBack(label, "7");
  world.meter.onceReplies[loopQuery(label)] = {command(label, "3")};
  if (query(label) == loopQuery(label)) {
    world.meter.onceReplies[query(label)] = {command(label, "3"), command(label, "7")};
  }
  duringReplyTo(loopQuery(label), [this] {
    StopAcquisition();
    click(label, "7");
    EXPECT_EQ(timesReceived(command(label, "7")), 0);
  });
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", command(label, "3"), loopQuery(label),
                                    command(label, "7"), query(label)}));
  EXPECT_EQ(value(label), 7.0F);
  expectNothingPending();
}

TEST_P(OneParameterLabel, StopAndEditDuringTheLoopsReadBackDoNotShowWhatIsOvertaken) {
  answerProfile(levels(200));
  AcquisitionRunning = True16;
  click(label, "3");
  world.meter.onceReplies[loopQuery(label)] = {command(label, "4")};
  duringReplyTo(loopQuery(label), [this] {
    StopAcquisition();
    click(label, "7");
  });
  AcquireProfile();
  EXPECT_EQ(timesReceived(command(label, "7")), 1);
  EXPECT_EQ(value(label), 7.0F);
  // The pass draws once; a pending scale is drawn before it is sent.
  EXPECT_EQ(view.picture.timesShown, std::string(label.name) == "Scale" ? 2 : 1);
}

TEST_P(OneParameterLabel, EditDuringItsOwnExchangeFollowsIt) {
  for (const bool serial : {false, true}) {
    SCOPED_TRACE(serial ? "RS232" : "GPIB");
    if (serial) world.useSerial();
    world.serial.pieceSize = 8;
    world.meter.received.clear();
    view.picture.timesShown = 0;
    world.meter.onceReplies[query(label)] = {command(label, "3"), command(label, "7")};
    duringReplyTo(query(label), [this] {
      click(label, "7");
      EXPECT_EQ(received(), exchanges(label, {"3"}));
    });
    click(label, "3");
    EXPECT_EQ(received(), exchanges(label, {"3", "7"}));
    EXPECT_EQ(value(label), 7.0F);
    // What the meter said of the edit that is overtaken was never drawn.
    EXPECT_EQ(view.picture.timesShown, 1);
    EXPECT_EQ(world.gpib.interruptedQueries, 0);
    EXPECT_EQ(world.serial.interruptedQueries, 0);
  }
}

TEST_P(OneParameterLabel, EditDuringItsOwnExchangeStaysWithoutAReadBack) {
  world.meter.onceReplies[query(label)] = {command(label, "3")};
  duringReplyTo(query(label), [this] { click(label, "7"); });
  click(label, "3");
  EXPECT_EQ(received(), exchanges(label, {"3", "7"}));
  EXPECT_EQ(value(label), 7.0F);
}

TEST_P(OneParameterLabel, EditsWhileTheLinkIsBusySendTheLastOnce) {
  readBack(label, "8");
  converse([this] {
    for (const char* typed : {"3", "5", "8"}) click(label, typed);
    EXPECT_TRUE(received().empty());
    EXPECT_EQ(value(label), 8.0F);
  });
  EXPECT_EQ(received(), exchanges(label, {"8"}));
}

TEST_F(ParameterLabelTest, EditsOfDifferentLabelsWhileTheLinkIsBusyAreAllSent) {
  converse([this] {
    for (const EditLabel& label : editLabels) click(label, "3");
  });
  Transcript expected;
  for (const EditLabel& label : editLabels) {
    expected.insert(expected.end(), {command(label, "3"), query(label)});
  }
  EXPECT_EQ(received(), expected);
}

TEST_P(OneParameterLabel, EditDuringTheReadBackOfAStartReachesTheMeterAndStays) {
  answerReadBack();
  const Transcript readBackOfStart = {"PMPO 1",        "TRCAPT? 1,PMOD", "PMPREF? 1,DB",
                                      "PMPSCAL? 1,DB", "TRCAPT? 1,PMOD", "TRDLYT? 1,PMOD"};
  Transcript expected = readBackOfStart;
  expected.insert(expected.end(), {command(label, "7"), query(label)});
  // Before the start asks for this value, and after it has.
  for (const char* busyWith : {"PMPO 1", "TRDLYT? 1,PMOD"}) {
    SCOPED_TRACE(busyWith);
    AcquisitionRunning = False16;
    world.meter.received.clear();
    duringReplyTo(busyWith, [this] { click(label, "7"); });
    world.meter.onMessage = [this, forward = world.meter.onMessage](const std::string& message) {
      // The meter reports what it was last told.
      if (message == command(label, "7")) readBack(label, "7");
      forward(message);
    };
    StartAcquisition();
    EXPECT_EQ(received(), expected);
    EXPECT_EQ(value(label), 7.0F);
    EXPECT_EQ(AcquisitionRunning, True16);
    expectNothingPending();
    answerReadBack();
  }
}

TEST_P(OneParameterLabel, StopAndClickBetweenTheHalvesOfAReply) {
  for (const bool serial : {false, true}) {
    SCOPED_TRACE(serial ? "RS232" : "GPIB");
    if (serial) world.useSerial();
    answerProfile(levels(200));
    world.serial.pieceSize = textReadout(levels(200)).size() / 2;
    readBack(label, "5");
    world.meter.received.clear();
    ProfileTrace.fill(0);
    AcquisitionRunning = True16;
    const std::string profile = serial ? "PMPO 1" : "PMPBO 1";
    duringReplyTo(profile, [this] {
      StopAcquisition();
      click(label, "5");
      EXPECT_EQ(received().size(), 2U);
    });
    AcquireProfile();
    EXPECT_EQ(received(), (Transcript{"TR1 1", profile, command(label, "5"), query(label)}));
    EXPECT_EQ(world.serial.interruptedQueries, 0);
    EXPECT_EQ(world.gpib.interruptedQueries, 0);
    EXPECT_EQ(ProfileTrace[0], levels(200)[0]);
    EXPECT_EQ(ProfileTrace[199], levels(200)[199]);
    EXPECT_EQ(value(label), 5.0F);
    EXPECT_EQ(AcquisitionRunning, False16);
    expectNothingPending();
  }
}

TEST_F(ParameterLabelTest, TextThatIsNoNumberIsSentAsZero) {
  for (const EditLabel* label : {&referenceLabel, &scaleLabel}) {
    for (const char* typed : {"abc", " ", "-", "."}) {
      SCOPED_TRACE(std::string(label->name) + " " + typed);
      Settings.*label->value = 10;
      world.meter.received.clear();
      click(*label, typed);
      EXPECT_EQ(received(), exchanges(*label, {"0"}));
      EXPECT_EQ(value(*label), 0.0F);
    }
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(ParameterLabelTest, LevelsAreTheLeadingNumber) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"-5", "-5"},      {" 7 ", "7"},       {"2.5dB", "2.5"}, {"4,6", "4"},
      {"1E20", "1E+20"}, {"1E-20", "1E-20"}, {"-0", "0"},      {"99999999", "1E+08"},
  };
  for (const auto& [typed, sent] : cases) {
    for (const EditLabel* label : {&referenceLabel, &scaleLabel}) {
      world.meter.received.clear();
      click(*label, typed);
      EXPECT_EQ(received(), exchanges(*label, {sent})) << typed;
    }
  }
}

TEST_F(ParameterLabelTest, TimesMayBeNegativeOrLong) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"-3ms", "-0.003"}, {"2s", "2"}, {"100", "100"}, {"10us", "1E-05"}, {"4.6MS", "0.0046"}};
  for (const auto& [typed, sent] : cases) {
    for (const EditLabel* label : {&captureLabel, &startLabel}) {
      world.meter.received.clear();
      click(*label, typed);
      EXPECT_EQ(received(), exchanges(*label, {sent})) << typed;
    }
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(ParameterLabelTest, UnitThatIsNotUnderstoodIsToldAndMeansSeconds) {
  struct Row {
    const char* typed;
    const char* unit;
    const char* sent;
  };
  for (const Row& row : {Row{"5 ms", " ms", "5"}, Row{"abc", "abc", "0"}, Row{" ", " ", "0"},
                         Row{"2 s", " s", "2"}}) {
    for (const EditLabel* label : {&captureLabel, &startLabel}) {
      SCOPED_TRACE(std::string(label->name) + " " + row.typed);
      world.meter.received.clear();
      world.dialogs.messages.clear();
      click(*label, row.typed);
      EXPECT_EQ(received(), exchanges(*label, {row.sent}));
      EXPECT_EQ(shownBoxes(), (std::vector<std::string>{
                                  "s, ms, us format|Do not understand format '" +
                                  std::string(row.unit) + "' - reverting to Seconds|information"}));
    }
  }
}

TEST_P(OneParameterLabel, NumberBeyondASingleIsToldAndChangesNothing) {
  const float before = value(label);
  const bool isTime = std::string(label.title) == "Time";
  world.dialogs.textAnswers.push_back(isTime ? std::string(39, '9') : "1E39");
  EXPECT_FALSE(reportFaults(label.click));
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(value(label), before);
  expectNothingPending();
}

TEST_F(ParameterLabelTest, CaptureTimeOfZeroIsSentAndToldOnce) {
  RefreshGraph();
  readBack(captureLabel, "0");
  click(captureLabel, "0");
  click(captureLabel, "0.0");
  RefreshGraph();
  EXPECT_EQ(received(), exchanges(captureLabel, {"0", "0"}));
  EXPECT_EQ(Settings.CaptureTime, 0.0F);
  EXPECT_EQ(
      shownBoxes(),
      (std::vector<std::string>{"Pelmora|Division by zero: the capture time is 0|exclamation"}));
  EXPECT_EQ(view.picture.timesShown, 1);

  readBack(captureLabel, "0.005");
  click(captureLabel, "5ms");
  EXPECT_EQ(view.picture.timesShown, 2);
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
}

TEST_F(ParameterLabelTest, CaptureTimeOfZeroIsSentWhileRunningAndStopsTheAcquisition) {
  answerProfile(levels(200));
  AcquisitionRunning = True16;
  readBack(captureLabel, "0");
  click(captureLabel, "abc");
  world.dialogs.messages.clear();
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", "TRCAPT 1,PMOD,0", "TRCAPT? 1,PMOD"}));
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(ParameterLabelTest, ScaleOfZeroIsSentAndToldOnce) {
  readBack(scaleLabel, "0");
  click(scaleLabel, "abc");
  click(scaleLabel, "0");
  EXPECT_EQ(received(), exchanges(scaleLabel, {"0", "0"}));
  EXPECT_EQ(shownBoxes(), (std::vector<std::string>{
                              "Pelmora|Division by zero: the graph's scale is 0 dB|exclamation"}));
}

TEST_F(ParameterLabelTest, EditWhileAPressPausesTheAcquisitionIsSentAtOnce) {
  AcquisitionRunning = True16;
  GraphButtonDown();
  readBack(referenceLabel, "5");
  click(referenceLabel, "5");
  EXPECT_EQ(received(), exchanges(referenceLabel, {"5"}));
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
  expectNothingPending();
}

TEST_F(ParameterLabelTest, AcquisitionThatStopsWhileTheBoxIsOpenCountsAsStopped) {
  AcquisitionRunning = True16;
  world.dialogs.whileOpen = StopAcquisition;
  readBack(referenceLabel, "5");
  click(referenceLabel, "5");
  EXPECT_EQ(received(), exchanges(referenceLabel, {"5"}));
  expectNothingPending();
}

TEST_F(ParameterLabelTest, StopTimeExplainsItself) {
  RefreshGraph();
  const auto labels = view.labels;
  ExplainStopTime();
  EXPECT_EQ(shownBoxes(), (std::vector<std::string>{"|Please edit the Capture Time|information"}));
  EXPECT_TRUE(world.dialogs.inputs.empty());
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(view.labels, labels);
  EXPECT_EQ(view.picture.timesShown, 1);
  expectNothingPending();
}

TEST_P(OneParameterLabel, EditDuringTheReadBackOfAStartStaysWithoutAReadBackOfItsOwn) {
  answerReadBack();
  duringReplyTo("PMPO 1", [this] { click(label, "7"); });
  world.meter.onMessage = [this, forward = world.meter.onMessage](const std::string& message) {
    if (message == command(label, "7")) world.meter.replies.erase(query(label));
    forward(message);
  };
  StartAcquisition();
  EXPECT_EQ(timesReceived(command(label, "7")), 1);
  EXPECT_EQ(value(label), 7.0F);
}

}  // namespace
}  // namespace pulsemod::test
