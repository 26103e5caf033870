#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "FakeStartUpView.h"
#include "ccdf/CCDFState.h"
#include "link/Conversation.h"
#include "link/MeterLink.h"
#include "profile/MeasurementSettings.h"
#include "startup/MeterModel.h"
#include "startup/StartUp.h"
#include "support/FakeCCDFView.h"

/// The course "CCDF Mode" of the start.

namespace pulsemod::test {
namespace {

using Lines = std::vector<std::string>;

const ShownBox notComplete{"Invalid response from Power Meter", "Pelmora", MessageIcon::exclamation,
                           ""};

class CCDFStart : public testing::Test {
 protected:
  CCDFStart() {
    storeComms(world, "2");
    view.answers = {StartChoice::ccdfMode};
    world.meter.replies = {
        {"*IDN?", "PELMORA,QX7205A,1234,1.00"},
        {"TTFRO 1", "TTFRO 1,150,50.5,10.25"},
        {"TTPSP? 1", "TTPSP 1,-5"},
        {"TTPST? 1", "TTPST 1,-35.5"},
        {"TTMKS? 1", "TTMKS 1,ON"},
        {"TTMKRO 1", "TTMKRO 1,12.5,-20"},
        {"TTSRC? 1", "TTSRC 1,GATE"},
    };
  }
  static std::string windowWithItsTitle() { return "ccdf \"" + versionCaption() + "\""; }

  /// The loop opens stopped, and no event ever comes.
  void start() { EXPECT_THROW(StartUp(view), WaitsForEver); }

  void expectOrderlyStart() const {
    EXPECT_EQ(view.shown, (Lines{"question", "ccdf is built", windowWithItsTitle()}));
    EXPECT_TRUE(world.dialogs.messages.empty());
    EXPECT_FALSE(world.progress.visible);
    EXPECT_EQ(AcquisitionRunning, False16);
    EXPECT_FALSE(Conversation.open);
    EXPECT_EQ(world.programEnd.ends, 0);
  }

  FakeWorld world;
  FakeCCDFView ccdf;
  FakeStartUpView view;
};

TEST_F(CCDFStart, ConfiguresReadsAndShowsOverGpib) {
  start();
  EXPECT_EQ(world.meter.received, ccdfTranscript(true));
  EXPECT_EQ(world.meter.received,
            (Transcript{"*CLS; *ESE 56; *OPC?", "*IDN?", "PPACQS 1,ON", "PPFUNC 1,STATS",
                        "TTFUNC 1,CCDF", "CHDISPN 1", "CHACTIV 1", "CHMODE 1, PMOD", "CHCFG 1, A",
                        "PMPREF 1,DB,10", "PMPSCAL 1,DB,10", "*OPC?", "TTFRO 1", "TTPSP? 1",
                        "TTPST? 1", "TTMKS? 1", "TTMKRO 1", "TTSRC? 1"}));
  EXPECT_EQ(world.gpib.interruptedQueries, 0);
  expectOrderlyStart();
}

TEST_F(CCDFStart, SendsTheSameBytesOverSerial) {
  storeComms(world, "1");
  world.serial.pieceSize = 3;
  start();
  EXPECT_EQ(world.serial.sent, serialBytes(ccdfTranscript(true)));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_TRUE(world.gpib.calls.empty());
  expectOrderlyStart();
}

TEST_F(CCDFStart, WithoutACursorItIsNotRead) {
  world.meter.replies["TTMKS? 1"] = "TTMKS 1,OFF";
  start();
  EXPECT_EQ(world.meter.received, ccdfTranscript(false));
  EXPECT_FALSE(ccdf.cursorIsShown);
  EXPECT_EQ(ccdf.timesCalled("menus for cursor off"), 1);
  EXPECT_EQ(ccdf.timesCalled("menus for cursor on"), 0);
}

TEST_F(CCDFStart, ItsStateIsThatOfTheMeter) {
  start();
  EXPECT_EQ(MeterModel, 5);
  EXPECT_EQ(Settings.DisplayPoints, 150);
  EXPECT_EQ(ccdf.startPower, "-35.5dBm");
  EXPECT_EQ(ccdf.stopPower, "-5dBm");
  EXPECT_EQ(ccdf.source, "SOURCE:GATE");
  EXPECT_TRUE(ccdf.cursorIsShown);
  EXPECT_EQ(ccdf.cursor.power, "-20dBm");
  EXPECT_EQ(ccdf.cursor.percentage, "0%") << "before the first curve";
  EXPECT_FLOAT_EQ(CCDF.CursorX, 15.5F * 150 / 30.5F);
  EXPECT_EQ(ccdf.picture.timesShown, 0);
}

TEST_F(CCDFStart, StepsComeInTheirOrder) {
  Lines order;
  world.meter.onMessage = [&order](const std::string& message) { order.push_back(message); };
  ccdf.onCall = [&order](const std::string& call) { order.push_back(call); };
  view.onCCDFWindow = [this, &order] { order.push_back(view.shown.back()); };
  start();
  EXPECT_EQ(order, (Lines{"*CLS; *ESE 56; *OPC?",
                          "*IDN?",
                          "ccdf is built",
                          "PPACQS 1,ON",
                          "PPFUNC 1,STATS",
                          "TTFUNC 1,CCDF",
                          "CHDISPN 1",
                          "CHACTIV 1",
                          "CHMODE 1, PMOD",
                          "CHCFG 1, A",
                          "PMPREF 1,DB,10",
                          "PMPSCAL 1,DB,10",
                          "*OPC?",
                          "TTFRO 1",
                          "TTPSP? 1",
                          "stop -5dBm",
                          "TTPST? 1",
                          "start -35.5dBm",
                          "TTMKS? 1",
                          "menus for cursor on",
                          "TTMKRO 1",
                          "TTSRC? 1",
                          "SOURCE:GATE",
                          windowWithItsTitle(),
                          "start -35.5dBm",
                          "stop -5dBm",
                          "cursor -20dBm 0%",
                          "SOURCE:GATE"}));
}

TEST_F(CCDFStart, ProgressTellsTheSteps) {
  start();
  EXPECT_EQ(
      world.progress.texts,
      (Lines{"Please Wait... Configuring...CCDFsetting", "Please Wait... Configuring...Channel",
             "Please Wait... Configuring...pulsemod", "Please Wait... Waiting for response..."}));
  EXPECT_EQ(world.progress.delayed, (std::vector<std::pair<int, std::string>>{
                                        {2000, "Please Wait... Reading Power Meter Identity..."},
                                        {2000, "Please Wait... Reading CCDF Settings..."}}));
  EXPECT_EQ(world.progress.hides, 3);
}

TEST_F(CCDFStart, BarGrowsToItsEndWhileTheMeterIsConfigured) {
  start();
  EXPECT_TRUE(world.progress.barGrewToItsEnd(10));
}

TEST_F(CCDFStart, AMeterThatDeniesCompletionIsToldAndTheStartGoesOn) {
  world.meter.replies["*OPC?"] = "0";
  start();
  EXPECT_EQ(world.dialogs.messages, (std::vector<ShownBox>{notComplete}));
  EXPECT_EQ(world.meter.received, ccdfTranscript(true));
  EXPECT_EQ(view.shown.back(), windowWithItsTitle());
}

TEST_F(CCDFStart, AMeterThatKeepsSilentOnCompletionIsNotTold) {
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "*OPC?") world.gpib.failNext["Receive"] = 1;
  };
  start();
  EXPECT_EQ(world.meter.received, ccdfTranscript(true));
  expectOrderlyStart();
}

TEST_F(CCDFStart, QueriesThatFailLeaveTheDefaults) {
  world.meter.replies = {{"*IDN?", "PELMORA,QX7205A,1234,1.00"}};
  start();
  EXPECT_EQ(world.meter.received, ccdfTranscript(false));
  EXPECT_EQ(ccdf.calls, (Lines{"start 0dBm", "stop 0dBm", "no cursor", "SOURCE:"}));
  EXPECT_EQ(Settings.DisplayPoints, 200);
  expectOrderlyStart();
}

TEST_F(CCDFStart, AFaultOfTheSettingsIsToldAndLeavesNoProgressBehind) {
  world.meter.replies["TTPST? 1"] = "TTPST 1,0";
  world.meter.replies["TTPSP? 1"] = "TTPSP 1,1E-40";
  start();
  EXPECT_EQ(world.dialogs.messages,
            (std::vector<ShownBox>{{"Overflow", "Pelmora", MessageIcon::exclamation, ""}}));
  EXPECT_EQ(world.progress.hides, 3);
  EXPECT_EQ(view.shown.back(), windowWithItsTitle());
}

TEST_F(CCDFStart, ItsLoopReadsCurvesAsSoonAsTheAcquisitionRuns) {
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "TTFRO 1" && AcquisitionRunning != False16) {
      world.events.post([] { throw ProgramEnded(); });
    }
  };
  view.onCCDFWindow = [this] {
    if (view.shown.back() == windowWithItsTitle()) {
      world.events.post([] { AcquisitionRunning = True16; });
    }
  };
  EXPECT_THROW(StartUp(view), ProgramEnded);
  Transcript expected = ccdfTranscript(true);
  expected.insert(expected.end(), {"PPACQRT 1", "TTFRO 1"});
  EXPECT_EQ(world.meter.received, expected);
}

TEST_F(CCDFStart, OtherCoursesBuildNoCCDFWindow) {
  view.answers = {StartChoice::justStart};
  StartUp(view);
  EXPECT_EQ(view.shown, (Lines{"question", "main \"\""}));
  EXPECT_TRUE(ccdf.calls.empty());
}

TEST_F(CCDFStart, AMeterThatIsNotSupportedIsRefusedBeforeAnyWindow) {
  world.meter.replies["*IDN?"] = "OTHER,1";
  EXPECT_THROW(StartUp(view), ProgramEnded);
  EXPECT_EQ(world.meter.received, startTranscript());
  EXPECT_EQ(view.shown, (Lines{"question"}));
}

/// A meter over RS232 that falls silent at one of the queries.
class SilentCCDFMeter : public CCDFStart, public testing::WithParamInterface<const char*> {
 protected:
  SilentCCDFMeter() {
    storeComms(world, "1");
    world.store.values[{"Comms", "RS232Port"}] = "2";
    const std::string query = GetParam();
    world.meter.replies.erase(query);
    if (query == "*OPC?") world.meter.rejected.insert(query);
    for (int event = 0; event < 3; ++event) world.events.post([] {});
  }
  std::string lastLine() const { return GetParam() + std::string("\r"); }
};

INSTANTIATE_TEST_SUITE_P(Queries, SilentCCDFMeter,
                         testing::Values("*OPC?", "TTFRO 1", "TTPST? 1", "TTMKRO 1", "TTSRC? 1"),
                         [](const auto& tested) {
                           std::string name = tested.param;
                           std::erase_if(name, [](char letter) { return letter < 'A'; });
                           std::erase(name, '?');
                           return name;
                         });

TEST_P(SilentCCDFMeter, IsWaitedForWithoutLimit) {
  start();
  EXPECT_TRUE(world.serial.sent.ends_with(lastLine()));
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(view.shown, (Lines{"question", "ccdf is built"}));
}

TEST_P(SilentCCDFMeter, IsGivenUpWhenTheUserClosesTheProgressWindow) {
  world.events.always = [this] {
    if (world.serial.sent.ends_with(lastLine())) world.progress.dismissedByUser = true;
  };
  EXPECT_THROW(StartUp(view), ProgramEnded);
  EXPECT_EQ(world.dialogs.messages,
            (std::vector<ShownBox>{
                {"The power meter does not answer any more\r\n\r\nProgram will exit.", "CCDF Mode",
                 MessageIcon::exclamation, "No power meter answers at COM2:."}}));
  EXPECT_EQ(view.shown, (Lines{"question", "ccdf is built"}));
  EXPECT_FALSE(world.progress.visible);
  EXPECT_EQ(world.progress.hides, 3);
  EXPECT_EQ(world.programEnd.ends, 1);
}

TEST_F(CCDFStart, TheLoopItselfDoesNotGiveUpASilentMeter) {
  storeComms(world, "1");
  start();
  EXPECT_FALSE(ReplyMayBeGivenUp);
}

}  // namespace
}  // namespace pulsemod::test
