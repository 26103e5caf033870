#include "TraceFiles.h"
#include "link/Conversation.h"
#include "profile/GraphFault.h"
#include "profile/ParameterEdits.h"

namespace pulsemod::test {
namespace {

constexpr auto otherPointsFirst =
    "display points is Different|The number of display points and capture time of the saved file "
    "are not the same as the current setting\r\n\r\nhence the saved trace will not be displayed"
    "|information";

std::string otherPointsSecond(const std::string& capturePeriod) {
  return " Display points and Capture period are Different|To display the saved graph you have to "
         "do one of the following\r\n 1- Go to PulseMod menu, select stop and reopen the saved "
         "trace\r\n2- Change the capture period of the current setting to the saved graph capture "
         "time\r\n the saved graph capture period = " +
         capturePeriod + "s|information";
}

class OpenTraceTest : public TraceFileTest {
 protected:
  void expectSilent() const {
    EXPECT_TRUE(shownBoxes().empty());
    EXPECT_TRUE(shownQuestions().empty());
  }
};

class OpenWhileRunning : public OpenTraceTest {
 protected:
  OpenWhileRunning() { AcquisitionRunning = True16; }
};

// The dialog.

TEST_F(OpenTraceTest, AsksForAFile) {
  world.fileDialogs.openAnswer = path;
  world.files.contents[path] = traceFile(200);
  OpenProfileTrace();
  expectOpened(200);
  EXPECT_EQ(world.fileDialogs.titles, (std::vector<std::string>{"Open Second Profile"}));
}

TEST_F(OpenTraceTest, CancelledDialogEndsSilently) {
  OpenProfileTrace();
  EXPECT_EQ(world.fileDialogs.titles.size(), 1U);
  expectNotOpened();
  expectSilent();
  EXPECT_EQ(view.picture.timesShown, 0);
}

TEST_F(OpenTraceTest, AFileThatCannotBeReadIsReported) {
  world.fileDialogs.openAnswer = path;
  EXPECT_FALSE(reportFaults(OpenProfileTrace));
  EXPECT_EQ(
      shownBoxes(),
      (Boxes{"Pelmora|/data/trace.txt cannot be read: No such file or directory|exclamation"}));
  expectNotOpened();
  EXPECT_EQ(Settings.DisplayPoints, 200);
}

// While the acquisition does not run.

TEST_F(OpenTraceTest, StoppedTakesOverPointsAndCapturePeriodWithoutACommand) {
  open(traceFile(400, "0.01"));
  expectOpened(400);
  EXPECT_EQ(Settings.DisplayPoints, 400);
  EXPECT_EQ(Settings.CaptureTime, 0.01F);
  EXPECT_EQ(view.graphLabel(GraphLabel::capture), "10ms");
  EXPECT_EQ(view.graphLabel(GraphLabel::stop), "10ms");
  EXPECT_TRUE(view.secondProfileShown);
  EXPECT_TRUE(received().empty());
  expectSilent();
}

TEST_F(OpenTraceTest, StoppedDrawsTheSecondProfileAtOnce) {
  open(traceFile(400, "0.01"));
  const auto& drawn = view.picture.shown;
  EXPECT_EQ(drawn.scale.width, 400);
  ASSERT_EQ(drawn.polylines.size(), 2U);
  EXPECT_EQ(drawn.polylines[0].colour, (Colour{0, 255, 100}));
  ASSERT_EQ(drawn.polylines[0].points.size(), 400U);
  EXPECT_EQ(drawn.polylines[0].points[1], (PicturePoint{2, -10.25}));
}

TEST_F(OpenTraceTest, FewerPointsLeaveTheRestOfTheOldProfile) {
  open(traceFile(3));
  expectOpened(3);
  EXPECT_EQ(Settings.DisplayPoints, 3);
}

TEST_F(OpenTraceTest, OnePointAndFourHundredAreTheLimits) {
  for (const std::size_t points : {std::size_t{1}, std::size_t{400}}) {
    SecondProfileTrace.fill(-1);
    open(traceFile(points));
    expectOpened(points);
  }
  expectSilent();
}

TEST_F(OpenTraceTest, AReadBackUnderWayDoesNotOverwriteTheCapturePeriod) {
  world.meter.replies["TRCAPT? 1,PMOD"] = "TRCAPT 1,PMOD,0.009";
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "TRCAPT? 1,PMOD") open(traceFile(200, "0.01"));
  };
  world.dialogs.textAnswers.emplace_back("9ms");
  EditCaptureTime();
  EXPECT_EQ(Settings.CaptureTime, 0.01F);
  EXPECT_EQ(view.graphLabel(GraphLabel::capture), "10ms");
}

TEST_F(OpenTraceTest, StoppedATickedMenuItemStaysTicked) {
  view.secondProfileShown = true;
  open(traceFile(200));
  EXPECT_TRUE(view.secondProfileShown);
}

TEST_F(OpenTraceTest, TheLiveProfileIsNotTouched) {
  ProfileTrace.fill(-5);
  Trace before = ProfileTrace;
  open(traceFile(400));
  EXPECT_EQ(ProfileTrace, before);
  EXPECT_EQ(AcquisitionRunning, False16);
}

// While it runs.

TEST_F(OpenWhileRunning, TheSamePointsAndPeriodAreLoadedWithoutAWord) {
  open(traceFile(200));
  expectOpened(200);
  EXPECT_TRUE(view.secondProfileShown);
  expectSilent();
  EXPECT_TRUE(received().empty());
  // The loop draws.
  EXPECT_EQ(view.picture.timesShown, 0);
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(OpenWhileRunning, OtherPointsAreRefusedWithTwoMessages) {
  struct Row {
    std::string points;
    std::string period;
    std::string shownPeriod;
  };
  const Row rows[] = {{"400", "0.01", "0.01"},
                      {"199", "0.0046", "0.0046"},
                      {"70000", "5E-06", "5E-06"},
                      {"401", "0.00460", "0.0046"},
                      {"1", "1.23456789", "1.234568"}};
  for (const Row& row : rows) {
    world.dialogs.messages.clear();
    open(fileOf(traceLines(row.points, row.period, pointLines(400)), "\n"));
    EXPECT_EQ(shownBoxes(), (Boxes{otherPointsFirst, otherPointsSecond(row.shownPeriod)}));
    expectNotOpened();
    EXPECT_TRUE(shownQuestions().empty());
    EXPECT_EQ(Settings.DisplayPoints, 200);
    EXPECT_EQ(Settings.CaptureTime, 0.0046F);
    EXPECT_TRUE(received().empty());
  }
}

TEST_F(OpenWhileRunning, AnotherPeriodAsksAndYesChangesTheMeter) {
  world.dialogs.yesNoAnswers = {true};
  open(traceFile(200, "0.01"));
  EXPECT_EQ(shownQuestions(), (Boxes{otherPeriodQuestion}));
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.01"}));
  EXPECT_EQ(Settings.CaptureTime, 0.01F);
  EXPECT_EQ(view.graphLabel(GraphLabel::capture), "10ms");
  EXPECT_EQ(PendingEdits.CaptureTime, False16);
  expectOpened(200);
  EXPECT_TRUE(view.secondProfileShown);
  EXPECT_TRUE(shownBoxes().empty());
  EXPECT_EQ(view.picture.timesShown, 0);
}

TEST_F(OpenWhileRunning, YesSpeaksTheSameBytesOverSerial) {
  world.useSerial();
  Settings.ActiveChannel = 3;
  world.dialogs.yesNoAnswers = {true};
  open(traceFile(200, "5E-06"));
  EXPECT_EQ(world.serial.sent, "TRCAPT 1&2,PMOD,5E-06\r");
  expectOpened(200);
}

TEST_F(OpenWhileRunning, NoKeepsThePeriodAndLoadsThePointsAllTheSame) {
  world.dialogs.yesNoAnswers = {false};
  open(traceFile(200, "0.01"));
  EXPECT_EQ(shownQuestions(), (Boxes{otherPeriodQuestion}));
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(Settings.CaptureTime, 0.0046F);
  EXPECT_EQ(view.graphLabel(GraphLabel::capture), "");
  expectOpened(200);
  EXPECT_TRUE(view.secondProfileShown);
}

TEST_F(OpenWhileRunning, YesIsSentWhenTheLinkIsFree) {
  world.dialogs.yesNoAnswers = {true};
  converse([this] {
    open(traceFile(200, "0.01"));
    EXPECT_TRUE(received().empty());
    EXPECT_EQ(Settings.CaptureTime, 0.01F);
    EXPECT_EQ(view.graphLabel(GraphLabel::capture), "10ms");
    expectOpened(200);
  });
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.01"}));
}

TEST_F(OpenWhileRunning, ANewerEditWinsOverTheFile) {
  world.dialogs.yesNoAnswers = {true};
  converse([this] {
    open(traceFile(200, "0.01"));
    world.dialogs.textAnswers.emplace_back("9ms");
    EditCaptureTime();
  });
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(Settings.CaptureTime, 0.009F);
  EXPECT_EQ(PendingEdits.CaptureTime, True16);
}

TEST_F(OpenWhileRunning, OfTwoFilesTheLaterOneReachesTheMeter) {
  world.dialogs.yesNoAnswers = {true, true};
  converse([this] {
    open(traceFile(200, "0.01"));
    open(traceFile(200, "0.02"));
  });
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.02"}));
}

TEST_F(OpenWhileRunning, AReadBackUnderWayDoesNotOverwriteTheFile) {
  PendingEdits.CaptureTime = True16;
  world.meter.replies["TRCAPT? 1,PMOD"] = "TRCAPT 1,PMOD,0.009";
  world.dialogs.yesNoAnswers = {true};
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "TRCAPT? 1,PMOD") open(traceFile(200, "0.01"));
  };
  converse(CarryOutPendingEdits);
  EXPECT_EQ(Settings.CaptureTime, 0.01F);
  EXPECT_EQ(received(),
            (Transcript{"TRCAPT 1,PMOD,0.0046", "TRCAPT? 1,PMOD", "TRCAPT 1,PMOD,0.01"}));
}

TEST_F(OpenWhileRunning, PeriodsAreComparedThroughTheirTexts) {
  struct Row {
    float present;
    const char* saved;
    bool asks;
  };
  const Row rows[] = {
      {0.00123456789F, "0.001234568", false},
      {0.0046F, "0.0046", false},
      {0.0046F, "4.6E-03", false},
      {0.0046F, " 0.0046 s", false},
      {0.0046F, "0.004600001", true},
      {0.0046F, "0.0046001", true},
      {0.0046F, "0", true},
      {0.0046F, "", true},
      {0.0046F, "0,0046", true},
      {0.0046F, "-0.0046", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.saved);
    world.dialogs.questions.clear();
    Settings.CaptureTime = row.present;
    open(traceFile(200, row.saved));
    EXPECT_EQ(shownQuestions(), row.asks ? Boxes{otherPeriodQuestion} : Boxes{});
    EXPECT_EQ(Settings.CaptureTime, row.present);
  }
}

TEST_F(OpenWhileRunning, ATimeThatCannotBeDrawnIsReportedAndLoadsAllTheSame) {
  world.dialogs.yesNoAnswers = {true};
  open(traceFile(200, "0"));
  EXPECT_EQ(shownBoxes(), (Boxes{"Pelmora|Division by zero: the capture time is 0|exclamation"}));
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0"}));
  expectOpened(200);
}

TEST_F(OpenWhileRunning, ATickedMenuItemStaysTicked) {
  view.secondProfileShown = true;
  open(traceFile(200));
  EXPECT_TRUE(view.secondProfileShown);
}

// How lines are read, whether it runs or not.

class ReadTraceLines : public OpenTraceTest, public ::testing::WithParamInterface<Boolean16> {
 protected:
  ReadTraceLines() { AcquisitionRunning = GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Acquisition, ReadTraceLines, ::testing::Values(False16, True16),
                         [](const auto& tested) {
                           return tested.param == False16 ? "Stopped" : "Running";
                         });

TEST_P(ReadTraceLines, EitherLineEndAndNoneAtTheLastLine) {
  const FileLines lines = traceLines("200", "0.0046", pointLines(200));
  for (const char* end : {"\n", "\r\n"}) {
    std::string text = fileOf(lines, end);
    for (const std::size_t cut : {std::size_t{0}, std::string(end).size()}) {
      SecondProfileTrace.fill(-1);
      open(text.substr(0, text.size() - cut));
      expectOpened(200);
      expectSilent();
    }
  }
}

TEST_P(ReadTraceLines, DateAndTimeMayHaveAnyForm) {
  for (const char* date : {"Date\t21,11,2026", "Datum: Samstag, 21. November 2026",
                           "\xD0\x94\xD0\xB0\xD1\x82\xD0\xB0\t21.11.2026",
                           "Date\t\xE5\xB9\xB4\xE6\x9C\x88", "\xFF\xFE", "", "\t\t\t"}) {
    SecondProfileTrace.fill(-1);
    FileLines lines = traceLines("200", "0.0046", pointLines(200));
    lines[0] = lines[1] = lines[2] = date;
    open(fileOf(lines, "\n"));
    expectOpened(200);
    expectSilent();
  }
}

TEST_P(ReadTraceLines, NamesBeforeTheTabsAreNotRead) {
  FileLines lines = traceLines("200", "0.0046", pointLines(200));
  lines[3] = "Anzahl der Punkte, 7\t200, 8\t9";
  lines[4] = "\t0.0046";
  open(fileOf(lines, "\n"));
  expectOpened(200);
  expectSilent();
}

TEST_P(ReadTraceLines, TwoNumbersStandApartByBlanksOrTabs) {
  FileLines lines = traceLines("200", "0.0046", pointLines(200));
  const std::vector<std::pair<std::string, float>> points = {
      {"2.3E-05 -34.567", -34.567F}, {"  1   -2.5  ", -2.5F}, {"1\t \t3", 3.0F}, {"1\t1E1", 10.0F},
      {"1 -1.5e-3", -1.5E-3F},       {"x y", 0.0F},           {"1\t2\t3", 2.0F}, {"1 +4", 4.0F},
      {"1 -34,567", -34.0F},         {"1E400 5", 5.0F},
  };
  for (std::size_t point = 0; point < points.size(); ++point)
    lines[5 + point] = points[point].first;
  open(fileOf(lines, "\n"));
  expectSilent();
  for (std::size_t point = 0; point < points.size(); ++point) {
    EXPECT_EQ(SecondProfileTrace[point], points[point].second) << points[point].first;
  }
  EXPECT_EQ(SecondProfileTrace[points.size()], levels(200)[points.size()]);
}

TEST_P(ReadTraceLines, LinesAfterThePointsAreNotRead) {
  open(traceFile(200) + "no point\n\n" + std::string(100000, 'x'));
  expectOpened(200);
  expectSilent();
}

TEST_P(ReadTraceLines, APointCountIsALeadingWholeNumber) {
  for (const char* count : {"200", " 200 ", "200.4", "199.6", "2E2", "200 points", "+200"}) {
    SecondProfileTrace.fill(-1);
    open(fileOf(traceLines(count, "0.0046", pointLines(200)), "\n"));
    expectOpened(200);
    expectSilent();
  }
}

}  // namespace
}  // namespace pulsemod::test
