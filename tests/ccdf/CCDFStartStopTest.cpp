#include "CCDFTest.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFLoop.h"
#include "ccdf/MeasurementSource.h"
#include "link/Conversation.h"

namespace pulsemod::test {
namespace {

class CCDFStartStopTest : public CCDFTest {};

TEST_F(CCDFStartStopTest, StartOverGpibClearsTheMeterAndReadsNothingBack) {
  StartCCDF();
  EXPECT_EQ(world.gpib.calls, (Calls{"Register", "DevClear 0 13"}));
  EXPECT_EQ(world.events.deadlines, (std::vector<int>{100}));
  EXPECT_GE(world.clock.seconds, 0.1);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(view.calls, (Calls{"started"}));
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(CCDFStartStopTest, StartOverSerialClearsNothing) {
  world.useSerial();
  StartCCDF();
  EXPECT_EQ(world.serial.sent, "");
  EXPECT_TRUE(world.gpib.calls.empty());
  EXPECT_TRUE(world.events.deadlines.empty());
  EXPECT_EQ(view.calls, (Calls{"started"}));
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(CCDFStartStopTest, MenusChangeBeforeTheMeterIsCleared) {
  Calls callsInTheClear;
  world.events.post([&] { callsInTheClear = view.calls; });
  StartCCDF();
  EXPECT_EQ(callsInTheClear, (Calls{"started"}));
}

TEST_F(CCDFStartStopTest, StopCancelsAStartInProgress) {
  world.events.post([] { StopCCDF(); });
  StartCCDF();
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(view.calls, (Calls{"started", "stopped"}));
}

TEST_F(CCDFStartStopTest, StopCancelsAStartThatWaits) {
  converse([] {
    StartCCDF();
    StopCCDF();
  });
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(CCDFStartStopTest, StartAfterAStopWins) {
  world.events.post([] {
    StopCCDF();
    StartCCDF();
  });
  StartCCDF();
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_EQ(view.calls, (Calls{"started", "stopped", "started"}));
}

TEST_F(CCDFStartStopTest, StartDuringAnExchangeWaitsForItsEnd) {
  converse([this] {
    StartCCDF();
    EXPECT_EQ(view.calls, (Calls{"started"}));
    EXPECT_EQ(AcquisitionRunning, False16);
    EXPECT_TRUE(world.gpib.calls.empty());
  });
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_EQ(world.gpib.timesCalled("DevClear 0 13"), 1);
}

TEST_F(CCDFStartStopTest, StopLeavesTheMetersStatisticsOn) {
  for (const bool serial : {false, true}) {
    if (serial) world.useSerial();
    AcquisitionRunning = True16;
    StopCCDF();
    EXPECT_EQ(AcquisitionRunning, False16);
  }
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(world.gpib.calls.empty());
  EXPECT_EQ(view.calls, (Calls{"stopped", "stopped"}));
}

TEST_F(CCDFStartStopTest, StopCarriesOutWhatIsPending) {
  AcquisitionRunning = True16;
  CCDFPending.StopPowerPending = True16;
  CCDFPending.CursorOffPending = True16;
  StopCCDF();
  EXPECT_EQ(received(), (Transcript{"TTPSP 1,0", "TTPSP? 1", "TTMKS 1,OFF"}));
}

TEST_F(CCDFStartStopTest, StopInAPassFinishesTheCurveAndReadsNoOther) {
  world.useSerial();
  AcquisitionRunning = True16;
  duringReplyTo("TTFRO 1", [] { StopCCDF(); });
  AcquireCCDF();
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1", "TTFRO 1"}));
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_EQ(CCDFData[0], 50.5F);
  EXPECT_THROW(AcquireCCDF(), WaitsForEver);
  EXPECT_EQ(received().size(), 2U);
}

TEST_F(CCDFStartStopTest, RequestAfterThePassTookItsRequestsIsCarriedOutByTheStop) {
  world.useSerial();
  AcquisitionRunning = True16;
  showCursorOn();
  duringReplyTo("TTMKRO 1", [] {
    RequestMeasurementSource(CCDFSource::channel);
    StopCCDF();
  });
  AcquireCCDF();
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1", "TTFRO 1", "TTMKRO 1", "TTSRC? 1"}));
  EXPECT_EQ(shownBoxes().size(), 1U);
  EXPECT_EQ(world.serial.interruptedQueries, 0);
}

TEST_F(CCDFStartStopTest, RestartWhileStoppedIsSentAtOnce) {
  RestartStatistics();
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1"}));
  EXPECT_EQ(CCDFPending.RestartPending, False16);
  Settings.ActiveChannel = 2;
  RestartStatistics();
  EXPECT_EQ(received().back(), "PPACQRT 2");
}

TEST_F(CCDFStartStopTest, RestartWhileStoppedWaitsForTheLink) {
  converse([this] {
    RestartStatistics();
    EXPECT_TRUE(received().empty());
  });
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1"}));
}

}  // namespace
}  // namespace pulsemod::test
