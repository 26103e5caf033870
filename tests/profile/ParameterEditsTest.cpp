#include "ProfileTest.h"
#include "link/Conversation.h"
#include "profile/ParameterEdits.h"

namespace pulsemod::test {
namespace {

struct Edit {
  const char* name;
  Boolean16 PendingEditFlags::*pending;
  float MeasurementSettings::*value;
  const char* command;
  const char* query;
};

void PrintTo(const Edit& tested, std::ostream* out) { *out << tested.name; }

const std::array<Edit, 4> edits = {{
    {"CaptureTime", &PendingEditFlags::CaptureTime, &MeasurementSettings::CaptureTime,
     "TRCAPT 1,PMOD,", "TRCAPT? 1,PMOD"},
    {"ReferenceLevel", &PendingEditFlags::ReferenceLevel, &MeasurementSettings::ReferenceLevel,
     "PMPREF 1,DB,", "PMPREF? 1,DB"},
    {"TriggerDelay", &PendingEditFlags::TriggerDelay, &MeasurementSettings::TriggerDelay,
     "TRDLYT 1,PMOD,", "TRDLYT? 1,PMOD"},
    {"GraphScale", &PendingEditFlags::GraphScale, &MeasurementSettings::ScalePerDivision,
     "PMPSCAL 1,DB,", "PMPSCAL? 1,DB"},
}};

class PendingEditsTest : public ProfileTest {
 protected:
  static void edit(const Edit& edited, float value) {
    Settings.*edited.value = value;
    PendingEdits.*edited.pending = True16;
  }
  void answer(const Edit& edited, const std::string& value) {
    world.meter.replies[edited.query] = edited.command + value;
  }
  static void expectNothingPending() {
    for (const Edit& e : edits) EXPECT_EQ(PendingEdits.*e.pending, False16) << e.name;
  }
};

/// The same for each of the four parameters.
class OnePendingEdit : public PendingEditsTest, public ::testing::WithParamInterface<Edit> {};

INSTANTIATE_TEST_SUITE_P(Parameters, OnePendingEdit, ::testing::ValuesIn(edits),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(PendingEditsTest, NothingPendingSendsAndDrawsNothing) {
  CarryOutPendingEdits();
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(view.picture.calls.empty());
}

TEST_F(PendingEditsTest, AllFourGoInTheirOrder) {
  // Set in another order than that of the exchanges.
  const std::array<std::string, 4> values = {"0.005", "5", "0.0001", "2.5"};
  for (const std::size_t index : {3U, 2U, 1U, 0U}) {
    edit(edits[index], std::stof(values[index]));
    answer(edits[index], values[index]);
  }
  CarryOutPendingEdits();
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.005", "TRCAPT? 1,PMOD", "PMPREF 1,DB,5",
                                    "PMPREF? 1,DB", "TRDLYT 1,PMOD,0.0001", "TRDLYT? 1,PMOD",
                                    "PMPSCAL 1,DB,2.5", "PMPSCAL? 1,DB"}));
  expectNothingPending();
}

TEST_F(PendingEditsTest, ScaleIsDrawnBeforeItIsSentAndTheOthersAreNot) {
  const std::array<int, 4> drawnWhenSent = {0, 0, 0, 1};
  for (std::size_t index = 0; index < edits.size(); ++index) {
    SCOPED_TRACE(edits[index].name);
    InitMeasurementSettings();
    view.picture.timesShown = 0;
    int drawn = -1;
    world.meter.onMessage = [&](const std::string& message) {
      if (message.starts_with(edits[index].command)) drawn = view.picture.timesShown;
    };
    edit(edits[index], 3);
    answer(edits[index], "4");
    CarryOutPendingEdits();
    EXPECT_EQ(drawn, drawnWhenSent[index]);
    EXPECT_EQ(view.picture.timesShown, drawnWhenSent[index] + 1);
  }
}

TEST_F(PendingEditsTest, ScaleIsDrawnAsEnteredAndThenAsAccepted) {
  double heightWhenSent = 0;
  world.meter.onMessage = [&](const std::string& message) {
    if (message == "PMPSCAL 1,DB,3") heightWhenSent = view.picture.shown.scale.height;
  };
  edit(edits[3], 3);
  answer(edits[3], "2");
  CarryOutPendingEdits();
  EXPECT_EQ(heightWhenSent, -30);
  EXPECT_EQ(view.picture.shown.scale.height, -20);
  EXPECT_EQ(view.labels[GraphLabel::scale], "Scale: 2.00 dB");
}

TEST_F(PendingEditsTest, LabelsShowWhatTheMeterAccepted) {
  edit(edits[0], 0.005F);
  answer(edits[0], "0.006");
  edit(edits[2], 0.001F);
  answer(edits[2], "0.002");
  CarryOutPendingEdits();
  EXPECT_EQ(view.labels[GraphLabel::capture], "6ms");
  EXPECT_EQ(view.labels[GraphLabel::start], "2ms");
  EXPECT_EQ(view.labels[GraphLabel::stop], "8ms");
}

TEST_P(OnePendingEdit, IsSentAloneAndTakesTheReadBack) {
  edit(GetParam(), 0.0003F);
  answer(GetParam(), "0.0004");
  CarryOutPendingEdits();
  EXPECT_EQ(received(), (Transcript{GetParam().command + std::string("0.0003"), GetParam().query}));
  EXPECT_EQ(Settings.*GetParam().value, 0.0004F);
  expectNothingPending();
}

TEST_P(OnePendingEdit, FailedReadBackKeepsTheEnteredValueAndIsSentOnce) {
  edit(GetParam(), 3);
  CarryOutPendingEdits();
  CarryOutPendingEdits();
  EXPECT_EQ(received(), (Transcript{GetParam().command + std::string("3"), GetParam().query}));
  EXPECT_EQ(Settings.*GetParam().value, 3.0F);
  expectNothingPending();
  // Nothing was accepted that would have to be drawn; the scale is drawn before it is sent.
  const bool isScale = GetParam().pending == &PendingEditFlags::GraphScale;
  EXPECT_EQ(view.picture.timesShown, isScale ? 1 : 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_P(OnePendingEdit, RefusedCommandFailsTheReadBackToo) {
  edit(GetParam(), 3);
  answer(GetParam(), "4");
  world.meter.rejected.insert(GetParam().command + std::string("3"));
  CarryOutPendingEdits();
  EXPECT_EQ(received(),
            (Transcript{GetParam().command + std::string("3"), GetParam().query, "*CLS; *OPC?"}));
  EXPECT_EQ(Settings.*GetParam().value, 3.0F);
  expectNothingPending();
}

TEST_P(OnePendingEdit, ReadBackThatDoesNotFitKeepsTheEnteredValue) {
  edit(GetParam(), 3);
  answer(GetParam(), "1E39");
  CarryOutPendingEdits();
  EXPECT_EQ(Settings.*GetParam().value, 3.0F);
  expectNothingPending();
}

TEST_P(OnePendingEdit, NewEditDuringTheReadBackIsKeptAndSentNext) {
  edit(GetParam(), 3);
  answer(GetParam(), "3");
  duringReplyTo(GetParam().query, [] { edit(GetParam(), 7); });

  CarryOutPendingEdits();
  EXPECT_EQ(Settings.*GetParam().value, 7.0F);
  EXPECT_EQ(PendingEdits.*GetParam().pending, True16);

  world.meter.received.clear();
  answer(GetParam(), "7");
  CarryOutPendingEdits();
  EXPECT_EQ(received(), (Transcript{GetParam().command + std::string("7"), GetParam().query}));
  EXPECT_EQ(Settings.*GetParam().value, 7.0F);
  expectNothingPending();
}

TEST_P(OnePendingEdit, NewEditWhileTheCommandLeavesIsKeptAndSentNext) {
  world.useSerial();
  edit(GetParam(), 3);
  answer(GetParam(), "3");
  // Runs while the command is on its way out.
  world.events.post([] { edit(GetParam(), 7); });

  CarryOutPendingEdits();
  EXPECT_EQ(received(), (Transcript{GetParam().command + std::string("3"), GetParam().query}));
  EXPECT_EQ(Settings.*GetParam().value, 7.0F);
  EXPECT_EQ(PendingEdits.*GetParam().pending, True16);
  EXPECT_EQ(world.serial.interruptedQueries, 0);
}

TEST_F(PendingEditsTest, EditOfAnotherParameterMeanwhileIsNotLost) {
  edit(edits[3], 3);
  answer(edits[3], "3");
  duringReplyTo(edits[3].query, [] { edit(edits[0], 0.005F); });
  CarryOutPendingEdits();
  EXPECT_EQ(PendingEdits.CaptureTime, True16);
  EXPECT_EQ(PendingEdits.GraphScale, False16);
  EXPECT_EQ(Settings.CaptureTime, 0.005F);
}

TEST_F(PendingEditsTest, ValueThatCannotBeDrawnIsSentAndToldOnce) {
  edit(edits[0], 0);
  answer(edits[0], "0");
  CarryOutPendingEdits();
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0", "TRCAPT? 1,PMOD"}));
  EXPECT_EQ(
      shownBoxes(),
      (std::vector<std::string>{"Pelmora|Division by zero: the capture time is 0|exclamation"}));
  EXPECT_EQ(view.picture.timesShown, 0);
  expectNothingPending();
}

TEST_F(PendingEditsTest, ScaleOfZeroIsToldOnceAlthoughItIsDrawnTwice) {
  edit(edits[3], 0);
  answer(edits[3], "0");
  CarryOutPendingEdits();
  EXPECT_EQ(received(), (Transcript{"PMPSCAL 1,DB,0", "PMPSCAL? 1,DB"}));
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
  EXPECT_EQ(view.picture.timesShown, 0);
}

/// A capture time that comes from a file.
class ReplacedCaptureTime : public PendingEditsTest {
 protected:
  void answerCaptureTime(const std::string& value) { answer(edits[0], value); }
};

TEST_F(ReplacedCaptureTime, IsStoredShownAndSentWithoutAReadBack) {
  answerCaptureTime("0.007");
  for (const bool serial : {false, true}) {
    if (serial) world.useSerial();
    Settings.CaptureTime = 0.0046F;
    world.meter.received.clear();
    ReplaceCaptureTime(0.005F);
    EXPECT_EQ(Settings.CaptureTime, 0.005F);
    EXPECT_EQ(view.labels[GraphLabel::capture], "5ms");
    EXPECT_EQ(view.labels[GraphLabel::stop], "5ms");
    EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.005"}));
  }
  EXPECT_EQ(world.serial.sent, "TRCAPT 1,PMOD,0.005\r");
  expectNothingPending();
}

TEST_F(ReplacedCaptureTime, IsShownAtOnceAndSentWhenTheLinkIsFree) {
  converse([this] {
    ReplaceCaptureTime(0.005F);
    EXPECT_EQ(Settings.CaptureTime, 0.005F);
    EXPECT_EQ(view.labels[GraphLabel::capture], "5ms");
    EXPECT_TRUE(received().empty());
  });
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.005"}));
}

TEST_F(ReplacedCaptureTime, IsNotSentWhenANewerOneCameMeanwhile) {
  converse([] {
    ReplaceCaptureTime(0.005F);
    ReplaceCaptureTime(0.006F);
  });
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.006"}));
  EXPECT_EQ(Settings.CaptureTime, 0.006F);
}

TEST_F(ReplacedCaptureTime, GivesWayToANewerEdit) {
  answerCaptureTime("0.007");
  world.dialogs.textAnswers.push_back("7ms");
  converse([] {
    ReplaceCaptureTime(0.005F);
    EditCaptureTime();
  });
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.007", "TRCAPT? 1,PMOD"}));
  EXPECT_EQ(Settings.CaptureTime, 0.007F);
}

TEST_F(ReplacedCaptureTime, IsNotOverwrittenByTheReadBackOfAnEdit) {
  edit(edits[0], 0.003F);
  answerCaptureTime("0.003");
  duringReplyTo("TRCAPT? 1,PMOD", [] { ReplaceCaptureTime(0.005F); });
  converse(CarryOutPendingEdits);
  EXPECT_EQ(Settings.CaptureTime, 0.005F);
  EXPECT_EQ(received(),
            (Transcript{"TRCAPT 1,PMOD,0.003", "TRCAPT? 1,PMOD", "TRCAPT 1,PMOD,0.005"}));
}

TEST_F(ReplacedCaptureTime, ThatCannotBeDrawnIsSentAndToldOnce) {
  ReplaceCaptureTime(0);
  ReplaceCaptureTime(0);
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0", "TRCAPT 1,PMOD,0"}));
  EXPECT_EQ(
      shownBoxes(),
      (std::vector<std::string>{"Pelmora|Division by zero: the capture time is 0|exclamation"}));
}

TEST_P(OnePendingEdit, ReadBackDoesNotOverwriteAValueFromElsewhere) {
  edit(GetParam(), 3);
  answer(GetParam(), "3");
  duringReplyTo(GetParam().query, [] {
    Settings.*GetParam().value = 7;
    CountParameterEdits();
  });
  CarryOutPendingEdits();
  EXPECT_EQ(Settings.*GetParam().value, 7.0F);
  expectNothingPending();
}

}  // namespace
}  // namespace pulsemod::test
