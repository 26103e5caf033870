#include <cmath>

#include "CCDFTest.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFLoop.h"
#include "link/Session.h"

namespace pulsemod::test {
namespace {

const Transcript curveLines = {"PPACQRT 1", "TTFRO 1"};

Transcript withCurve(const Transcript& rest) {
  Transcript lines = curveLines;
  lines.insert(lines.end(), rest.begin(), rest.end());
  return lines;
}

class CCDFPassTest : public CCDFTest {
 protected:
  CCDFPassTest() { AcquisitionRunning = True16; }

  static void requestEverything() {
    CCDFPending = {True16, True16, True16, True16, True16, True16, True16, True16, True16, True16};
  }
  static Transcript everything() {
    return withCurve({"TTPST 1,-30",   "TTPST? 1",       "TTPSP 1,0",   "TTPSP? 1",
                      "TTSRC? 1",      "TTSRC 1,MARKER", "TTSRC? 1",    "TTSRC? 1",
                      "TTSRC 1,GATE",  "TTSRC? 1",       "TTSRC? 1",    "TTSRC 1,CHANNEL",
                      "TTSRC? 1",      "TTMKS 1,ON",     "TTMKRO 1",    "TTMKS 1,OFF",
                      "TTMKPOS 1,-20", "TTMKPOS? 1",     "TTPST 1,-30", "TTPSP 1,0",
                      "TTPST? 1",      "TTPSP? 1",       "TTMKRO 1"});
  }
  void letMeterObey() {
    world.meter.onMessage = [this](const std::string& message) { obeySource(message); };
  }
};

TEST_F(CCDFPassTest, WithoutARequestReadsRatesAndDraws) {
  AcquireCCDF();
  EXPECT_EQ(received(), curveLines);
  EXPECT_EQ(Settings.DisplayPoints, 3);
  EXPECT_EQ(view.calls, (Calls{"rate"}));
  EXPECT_EQ(view.picture.timesShown, 1);
  ASSERT_EQ(view.picture.shown.polylines.size(), 1U);
  EXPECT_NEAR(view.picture.shown.polylines[0].points[2].y, std::log10(1.5), 1e-6);
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_EQ(world.events.waits, 0);
}

TEST_F(CCDFPassTest, SpeaksTheSameBytesOverSerial) {
  world.useSerial();
  world.serial.pieceSize = 3;
  AcquireCCDF();
  EXPECT_EQ(world.serial.sent, serialBytes(curveLines));
  EXPECT_EQ(view.picture.timesShown, 1);
}

TEST_F(CCDFPassTest, WithTheCursorReadsItToo) {
  showCursorOn();
  AcquireCCDF();
  EXPECT_EQ(received(), withCurve({"TTMKRO 1"}));
  EXPECT_EQ(view.cursor.power, "-15dBm");
  EXPECT_EQ(view.cursor.percentage, "12.5%");
  EXPECT_EQ(view.cursor.x, 1.5) << "at the point count of the new curve";
}

TEST_F(CCDFPassTest, WithTheFrameHiddenDoesNotReadTheCursor) {
  CCDF.CursorOn = True16;
  AcquireCCDF();
  EXPECT_EQ(received(), curveLines);
}

TEST_F(CCDFPassTest, CarriesOutEveryRequestInTheirOrder) {
  showCursorOn();
  requestEverything();
  letMeterObey();
  AcquireCCDF();
  EXPECT_EQ(received(), everything());
  EXPECT_EQ(shownBoxes(),
            Boxes(3, "Changing Measurement Source|The measurement source is changed|none"));
  received().clear();
  AcquireCCDF();
  EXPECT_EQ(received(), withCurve({"TTMKRO 1"})) << "each is carried out once";
}

TEST_F(CCDFPassTest, CarriesOutEveryRequestWithTheSameBytesOverSerial) {
  world.useSerial();
  showCursorOn();
  requestEverything();
  letMeterObey();
  AcquireCCDF();
  EXPECT_EQ(world.serial.sent, serialBytes(everything()));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
}

TEST_F(CCDFPassTest, CarriesOutEachRequestAlone) {
  struct Row {
    const char* name;
    Boolean16 CCDFRequests::*request;
    Transcript lines;
  };
  const Row rows[] = {
      {"start", &CCDFRequests::StartPowerPending, {"TTPST 1,-30", "TTPST? 1"}},
      {"stop", &CCDFRequests::StopPowerPending, {"TTPSP 1,0", "TTPSP? 1"}},
      {"marker", &CCDFRequests::SourceMarkerPending, {"TTSRC? 1", "TTSRC 1,MARKER", "TTSRC? 1"}},
      {"gate", &CCDFRequests::SourceGatePending, {"TTSRC? 1", "TTSRC 1,GATE", "TTSRC? 1"}},
      {"channel", &CCDFRequests::SourceChannelPending, {"TTSRC? 1"}},
      {"on", &CCDFRequests::CursorOnPending, {"TTMKS 1,ON"}},
      {"off", &CCDFRequests::CursorOffPending, {"TTMKS 1,OFF"}},
      {"position", &CCDFRequests::CursorPositionPending, {"TTMKPOS 1,0", "TTMKPOS? 1"}},
      {"range",
       &CCDFRequests::PowerRangePending,
       {"TTPST 1,-30", "TTPSP 1,0", "TTPST? 1", "TTPSP? 1"}},
      {"restart", &CCDFRequests::RestartPending, {}},
  };
  for (const Row& row : rows) {
    received().clear();
    CCDF.CursorPower = 0;
    CCDFPending = {};
    CCDFPending.*row.request = True16;
    AcquireCCDF();
    EXPECT_EQ(received(), withCurve(row.lines)) << row.name;
    received().clear();
    AcquireCCDF();
    EXPECT_EQ(received(), curveLines) << row.name;
  }
}

TEST_F(CCDFPassTest, RestartSendsNothingNowOrLater) {
  RestartStatistics();
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(CCDFPending.RestartPending, True16);
  AcquireCCDF();
  AcquireCCDF();
  EXPECT_EQ(timesReceived("PPACQRT 1"), 2);
  EXPECT_EQ(received().size(), 4U);
  StopCCDF();
  EXPECT_EQ(received().size(), 4U);
}

TEST_F(CCDFPassTest, ReplyThatIsNoCurveDrawsTheOldOneAndShowsNoRate) {
  AcquireCCDF();
  world.meter.replies["TTFRO 1"] = "OK";
  showCursorOn();
  CCDFPending.StartPowerPending = True16;
  view.calls.clear();
  received().clear();
  AcquireCCDF();
  EXPECT_EQ(received(), withCurve({"TTPST 1,-30", "TTPST? 1", "TTMKRO 1"}));
  EXPECT_EQ(view.timesCalled("rate"), 0);
  EXPECT_EQ(view.picture.timesShown, 2);
  EXPECT_EQ(Settings.DisplayPoints, 3);
  ASSERT_EQ(view.picture.shown.polylines.size(), 1U);
  EXPECT_EQ(view.picture.shown.polylines[0].points.size(), 3U);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(CCDFPassTest, FailedCurveEndsTheProgramWithoutAMessage) {
  world.meter.replies.erase("TTFRO 1");
  requestEverything();
  EXPECT_THROW(RunCCDFLoop(), ProgramEnded);
  EXPECT_EQ(received(), curveLines);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(world.programEnd.ends, 1);
  EXPECT_EQ(world.gpib.timesCalled("ibonl 7 0"), 1);
}

TEST_F(CCDFPassTest, CommandThatTheMeterRefusesFailsTheNextQuery) {
  // Of the request itself: the loop goes on.
  world.meter.rejected.insert("TTPST 1,-30");
  CCDFPending.StartPowerPending = True16;
  AcquireCCDF();
  AcquireCCDF();
  EXPECT_EQ(world.programEnd.ends, 0);
  // Of the next curve: the program ends.
  world.meter.rejected.insert("TTMKS 1,OFF");
  CCDFPending.CursorOffPending = True16;
  AcquireCCDF();
  EXPECT_THROW(AcquireCCDF(), ProgramEnded);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(CCDFPassTest, CurveThatCannotBeDecodedIsToldOnceAndStops) {
  AcquireCCDF();
  std::string tooLong = "TTFRO 1,2";
  for (int value = 0; value < 401; ++value) tooLong += ",1";
  world.meter.replies["TTFRO 1"] = tooLong;
  AcquireCCDF();
  EXPECT_EQ(shownBoxes(), (Boxes{"Pelmora|Subscript out of range: the meter's curve has more than "
                                 "400 values|exclamation"}));
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(view.calls.back(), "stopped");
  EXPECT_EQ(CCDFData[0], 50.5F);
  EXPECT_EQ(Settings.DisplayPoints, 3);
  EXPECT_THROW(AcquireCCDF(), WaitsForEver);
  EXPECT_EQ(shownBoxes().size(), 1U);
}

TEST_F(CCDFPassTest, PointCountThatCannotBeReadIsToldOnceAndStops) {
  world.meter.replies["TTFRO 1"] = "TTFRO 1,70000,1";
  AcquireCCDF();
  EXPECT_EQ(shownBoxes(), (Boxes{"Pelmora|Overflow: the point count of the meter's curve does not "
                                 "fit 16 bits|exclamation"}));
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(CCDFPassTest, RequestsOfAPassWithAFaultReachTheMeter) {
  world.meter.replies["TTFRO 1"] = "TTFRO 1,70000,1";
  CCDFPending.StopPowerPending = True16;
  AcquireCCDF();
  EXPECT_EQ(received(), withCurve({"TTPSP 1,0", "TTPSP? 1"}));
}

TEST_F(CCDFPassTest, PointCountThatCannotBeDrawnIsToldOnceAndStops) {
  for (const char* reply : {"TTFRO 1,0,1", "TTFRO 1,401,1", "TTFRO 1,-1,1"}) {
    world.meter.replies["TTFRO 1"] = "TTFRO 1,3,50.5,10.25,1.5";
    world.dialogs.messages.clear();
    AcquisitionRunning = True16;
    AcquireCCDF();
    const int shown = view.picture.timesShown;
    world.meter.replies["TTFRO 1"] = reply;
    AcquireCCDF();
    EXPECT_EQ(shownBoxes().size(), 1U) << reply;
    EXPECT_EQ(AcquisitionRunning, False16);
    EXPECT_EQ(view.picture.timesShown, shown);
    EXPECT_EQ(view.picture.shown.scale.width, 3);
    // Started again as it is, it stops again without another box.
    AcquisitionRunning = True16;
    AcquireCCDF();
    EXPECT_EQ(AcquisitionRunning, False16);
    EXPECT_EQ(shownBoxes().size(), 1U) << reply;
  }
}

TEST_F(CCDFPassTest, SerialPortLostAtARequestIsToldOnceAndStops) {
  world.useSerial();
  showCursorOn();
  requestEverything();
  world.loseSerialAt("TTPST 1,-30");
  AcquireCCDF();
  EXPECT_EQ(received(), withCurve({"TTPST 1,-30"}));
  EXPECT_EQ(shownBoxes(), (Boxes{"Pelmora|The serial port was lost.|exclamation"}));
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(view.calls.back(), "stopped");
  EXPECT_EQ(view.picture.timesShown, 1) << "the curve had come whole";
  EXPECT_THROW(AcquireCCDF(), WaitsForEver);
  EXPECT_EQ(shownBoxes().size(), 1U);
}

TEST_F(CCDFPassTest, SerialPortLostAtTheCursorLeavesTheCurveOnTheScreen) {
  world.useSerial();
  showCursorOn();
  world.loseSerialAt("TTMKRO 1");
  AcquireCCDF();
  EXPECT_EQ(received(), withCurve({"TTMKRO 1"}));
  EXPECT_EQ(shownBoxes(), (Boxes{"Pelmora|The serial port was lost.|exclamation"}));
  EXPECT_EQ(view.calls, (Calls{"cursor -20dBm 5%", "stopped"})) << "as it was, and no rate";
  EXPECT_EQ(view.picture.timesShown, 1);
  ASSERT_EQ(view.picture.shown.polylines.size(), 1U);
  EXPECT_NEAR(view.picture.shown.polylines[0].points[2].y, std::log10(1.5), 1e-6);
}

TEST_F(CCDFPassTest, SerialPortLostInTheCurveEndsTheProgramWithoutAMessage) {
  world.useSerial();
  for (const char* moment : {"PPACQRT 1", "TTFRO 1"}) {
    world.serial.open();
    AcquisitionRunning = True16;
    world.loseSerialAt(moment);
    EXPECT_THROW(AcquireCCDF(), ProgramEnded) << moment;
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(CCDFPassTest, RateIsThatOfTheReadOverGpib) {
  AcquireCCDF();  // the reply takes 10 ms
  EXPECT_EQ(view.rate, "Profile/Second: 100.0");
  EXPECT_EQ(view.rateToolTip, "Update speed of the GPIB, not the update speed of this display");
}

TEST_F(CCDFPassTest, RateIncludesRequestsBoxesAndTheCursor) {
  showCursorOn();
  CCDFPending.SourceChannelPending = True16;
  world.dialogs.whileOpen = [this] { world.clock.advance(0.01); };
  AcquireCCDF();  // three replies and a box
  EXPECT_EQ(view.rate, "Profile/Second: 25.0");
}

TEST_F(CCDFPassTest, PassOnAClockThatStandsKeepsTheRate) {
  world.useSerial();
  AcquireCCDF();
  EXPECT_EQ(view.timesCalled("rate"), 0);
  EXPECT_EQ(view.rate, "Profile/Second: 0.00");
  EXPECT_EQ(view.picture.timesShown, 1);
}

TEST_F(CCDFPassTest, StepsComeInTheirOrder) {
  showCursorOn();
  std::vector<std::string> order;
  world.meter.onMessage = [&](const std::string& message) {
    order.push_back(message + ", " + std::to_string(view.picture.timesShown) + " pictures");
  };
  view.onCall = [&](const std::string& call) {
    order.push_back(call + ", " + std::to_string(view.picture.timesShown) + " pictures");
  };
  AcquireCCDF();
  EXPECT_EQ(order, (std::vector<std::string>{
                       "PPACQRT 1, 0 pictures", "TTFRO 1, 0 pictures", "TTMKRO 1, 0 pictures",
                       "cursor -15dBm 12.5%, 0 pictures", "rate, 0 pictures"}));
  EXPECT_EQ(view.picture.timesShown, 1);
}

TEST_F(CCDFPassTest, StoppedPassWaitsWithoutWork) {
  AcquisitionRunning = False16;
  requestEverything();
  EXPECT_THROW(AcquireCCDF(), WaitsForEver);
  EXPECT_EQ(world.events.waits, 1);
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(view.picture.calls.empty());
}

TEST_F(CCDFPassTest, EventsRunAtTheHeadOfEachPass) {
  world.events.post([] { AcquisitionRunning = False16; });
  AcquireCCDF();
  EXPECT_TRUE(received().empty());
  world.events.post([] { AcquisitionRunning = True16; });
  AcquireCCDF();
  EXPECT_EQ(received(), curveLines);
}

TEST_F(CCDFPassTest, ProgramEndInAnEventLeavesTheLoopAtOnce) {
  int curves = 0;
  world.meter.onMessage = [&](const std::string& message) {
    if (message == "TTFRO 1" && ++curves == 3) world.events.post([] { EndSession(); });
  };
  EXPECT_THROW(RunCCDFLoop(), ProgramEnded);
  EXPECT_EQ(curves, 3);
  EXPECT_EQ(received().size(), 6U);
  EXPECT_EQ(view.picture.timesShown, 2);
}

}  // namespace
}  // namespace pulsemod::test
