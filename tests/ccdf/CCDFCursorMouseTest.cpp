#include "CCDFTest.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFLoop.h"
#include "link/Conversation.h"

namespace pulsemod::test {
namespace {

/// A cursor at -20 dBm whose line stands at x = 66.
class CCDFMouseTest : public CCDFTest {
 protected:
  CCDFMouseTest() {
    showCursorOn();
    CCDF.CursorX = 66;
  }
  static void moveTo(double x) { CCDFMouseMove({x, 0}); }
  static void pressAt(double x) {
    moveTo(x);
    CCDFButtonDown();
  }
  static void drag(double from, double to) {
    pressAt(from);
    moveTo(to);
    CCDFButtonUp();
  }
};

TEST_F(CCDFMouseTest, LineIsHitWithinTwoPoints) {
  for (const auto& [x, hit] :
       {std::pair{66.0, true}, std::pair{64.0, true}, std::pair{68.0, true}, std::pair{63.5, false},
        std::pair{68.5, false}, std::pair{63.99, false}, std::pair{68.01, false}}) {
    moveTo(x);
    EXPECT_EQ(view.sizingPointer, hit) << x;
  }
}

TEST_F(CCDFMouseTest, LineIsNotHitWhileTheCursorIsOff) {
  CCDF.CursorOn = False16;
  view.sizingPointer = true;
  moveTo(66);
  EXPECT_FALSE(view.sizingPointer);
}

TEST_F(CCDFMouseTest, PointerLeavingTheGraphIsTheDefaultOne) {
  moveTo(66);
  CCDFMouseLeave();
  EXPECT_FALSE(view.sizingPointer);
  CCDFButtonDown();
  moveTo(80);
  EXPECT_EQ(CCDF.CursorX, 66) << "the press was not on the line";
}

TEST_F(CCDFMouseTest, PointerLeavingTheGraphDuringADragKeepsIt) {
  pressAt(66);
  CCDFMouseLeave();
  EXPECT_TRUE(view.sizingPointer);
  moveTo(80);
  EXPECT_EQ(CCDF.CursorX, 80);
}

TEST_F(CCDFMouseTest, DragMovesLineAndPowerAndAsksTheMeterNothing) {
  pressAt(67);
  moveTo(100);
  EXPECT_EQ(CCDF.CursorX, 100);
  EXPECT_EQ(CCDF.CursorPower, -15);
  EXPECT_EQ(CCDF.CursorPercent, 5) << "until the meter is read again";
  EXPECT_EQ(view.cursor, (FakeCCDFView::Cursor{"-15dBm", "5%", 100}));
  EXPECT_TRUE(received().empty());
}

TEST_F(CCDFMouseTest, PowerOfADragHasThreeDecimals) {
  for (const auto& [x, text] : {std::pair{100.123, "-14.982dBm"}, std::pair{100.004, "-14.999dBm"},
                                std::pair{100.002, "-15dBm"}, std::pair{1.0 / 3, "-29.95dBm"}}) {
    pressAt(static_cast<double>(CCDF.CursorX));
    moveTo(x);
    CCDFButtonUp();
    EXPECT_EQ(view.cursor.power, text);
    EXPECT_EQ(CCDF.CursorX, static_cast<float>(x));
  }
}

TEST_F(CCDFMouseTest, PowerOfADragOnTheLongestAxisIsANumber) {
  CCDF.StopPower = 3e38F;
  pressAt(66);
  for (const auto& [x, text] : {std::pair{100.0, "1.5E+38dBm"}, std::pair{190.0, "2.85E+38dBm"}}) {
    moveTo(x);
    EXPECT_EQ(view.cursor.power, text);
  }
}

TEST_F(CCDFMouseTest, DragEndsStrictlyWithinTheAxis) {
  pressAt(66);
  for (const double x : {0.0, 200.0, -0.5, 200.5, -1000.0}) {
    moveTo(x);
    EXPECT_EQ(CCDF.CursorX, 66) << x;
    EXPECT_EQ(CCDF.CursorPower, -20) << x;
  }
  EXPECT_TRUE(view.calls.empty());
  moveTo(0.1);
  EXPECT_EQ(CCDF.CursorPower, -29.985F);
  moveTo(199.9);
  EXPECT_EQ(CCDF.CursorPower, -0.015F);
}

TEST_F(CCDFMouseTest, AxisUpsideDownHasNothingToDragTo) {
  CCDF.StartPower = 0;
  CCDF.StopPower = -30;
  pressAt(66);
  for (const double x : {-1.0, 50.0, 100.0, 201.0}) moveTo(x);
  EXPECT_EQ(CCDF.CursorX, 66);
  EXPECT_EQ(CCDF.CursorPower, -20);
}

TEST_F(CCDFMouseTest, DragThatBeganOffTheLineMovesNothing) {
  pressAt(100);
  moveTo(66);
  moveTo(80);
  EXPECT_EQ(CCDF.CursorX, 66);
  EXPECT_EQ(CCDF.CursorPower, -20);
  EXPECT_TRUE(view.calls.empty());
  EXPECT_FALSE(view.sizingPointer);
}

TEST_F(CCDFMouseTest, CursorThatIsSwitchedOffInADragIsMovedNoFurther) {
  pressAt(66);
  SwitchCursorOff();
  moveTo(80);
  EXPECT_EQ(CCDF.CursorX, 66);
  EXPECT_FALSE(view.cursorIsShown);
}

TEST_F(CCDFMouseTest, ReleaseWhileStoppedSendsThePosition) {
  drag(66, 100);
  EXPECT_EQ(received(), (Transcript{"TTMKPOS 1,-15"}));
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(CCDF.CursorDragging, False16);
  EXPECT_EQ(CCDFPending.CursorPositionPending, False16);
}

TEST_F(CCDFMouseTest, ReleaseOverSerialSendsTheSameBytes) {
  world.useSerial();
  drag(66, 100);
  EXPECT_EQ(world.serial.sent, "TTMKPOS 1,-15\r");
}

TEST_F(CCDFMouseTest, ClickFarFromTheLineSendsTheOldPosition) {
  pressAt(150);
  CCDFButtonUp();
  EXPECT_EQ(received(), (Transcript{"TTMKPOS 1,-20"}));
}

TEST_F(CCDFMouseTest, ClickWhileTheCursorIsOffSendsNothing) {
  CCDF.CursorOn = False16;
  AcquisitionRunning = True16;
  pressAt(66);
  EXPECT_EQ(AcquisitionRunning, False16);
  CCDFButtonUp();
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_EQ(CCDFPending.CursorPositionPending, False16);
}

TEST_F(CCDFMouseTest, PressPausesAndReleaseRestores) {
  for (const Boolean16 running : {True16, False16}) {
    AcquisitionRunning = running;
    pressAt(150);
    EXPECT_EQ(AcquisitionRunning, False16);
    EXPECT_EQ(CCDF.CursorDragging, True16);
    CCDFButtonUp();
    EXPECT_EQ(AcquisitionRunning, running);
    EXPECT_EQ(CCDF.CursorDragging, False16);
  }
}

TEST_F(CCDFMouseTest, SecondPressAndSecondReleaseAreIgnored) {
  AcquisitionRunning = True16;
  pressAt(66);
  CCDFButtonDown();
  CCDFButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
  CCDFButtonUp();
  EXPECT_EQ(received(), (Transcript{"TTMKPOS 1,-20"}));
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(CCDFMouseTest, StopDuringAPressStaysStopped) {
  AcquisitionRunning = True16;
  pressAt(66);
  StopCCDF();
  CCDFButtonUp();
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(CCDFMouseTest, StartDuringAPressRunsFromTheRelease) {
  pressAt(66);
  StartCCDF();
  EXPECT_EQ(AcquisitionRunning, False16);
  CCDFButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(CCDFMouseTest, NoCurveIsReadDuringAPress) {
  AcquisitionRunning = True16;
  pressAt(66);
  world.events.post([] {});
  AcquireCCDF();
  EXPECT_TRUE(received().empty());
}

/// The loop reads curves over a serial line, and the button acts while a reply is under way.
class RunningMouse : public CCDFMouseTest {
 protected:
  RunningMouse() {
    world.useSerial();
    AcquisitionRunning = True16;
  }
};

TEST_F(RunningMouse, DragDuringACurveIsSentAfterItAndReadBack) {
  duringReplyTo("TTFRO 1", [] {
    drag(66, 100);
    EXPECT_EQ(CCDFPending.CursorPositionPending, True16);
    EXPECT_EQ(AcquisitionRunning, True16);
  });
  world.meter.replies["TTFRO 1"] = "TTFRO 1,200,50.5,10.25";
  AcquireCCDF();
  EXPECT_EQ(received(),
            (Transcript{"PPACQRT 1", "TTFRO 1", "TTMKPOS 1,-15", "TTMKPOS? 1", "TTMKRO 1"}));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
}

TEST_F(RunningMouse, DragDuringTheCursorsReadoutIsSentInTheNextPass) {
  duringReplyTo("TTMKRO 1", [] { drag(66, 120); });
  world.meter.replies["TTFRO 1"] = "TTFRO 1,200,50.5,10.25";
  AcquireCCDF();
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1", "TTFRO 1", "TTMKRO 1"}));
  EXPECT_EQ(CCDF.CursorPower, -12);
  EXPECT_EQ(CCDF.CursorX, 120);
  received().clear();
  AcquireCCDF();
  EXPECT_EQ(received(),
            (Transcript{"PPACQRT 1", "TTFRO 1", "TTMKPOS 1,-12", "TTMKPOS? 1", "TTMKRO 1"}));
}

TEST_F(RunningMouse, PressDuringACurveLeavesTheCursorUnreadAndFinishesThePass) {
  duringReplyTo("TTFRO 1", [] { pressAt(66); });
  AcquireCCDF();
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1", "TTFRO 1"}));
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(RunningMouse, DragBetweenTwoCurvesIsSentAtOnceAndReadInThePass) {
  world.events.post([] { drag(66, 100); });
  world.meter.replies["TTFRO 1"] = "TTFRO 1,200,50.5,10.25";
  AcquireCCDF();
  EXPECT_EQ(received(), (Transcript{"TTMKPOS 1,-15", "PPACQRT 1", "TTFRO 1", "TTMKRO 1"}));
}

TEST_F(RunningMouse, DragAfterAStopInThePassIsSentAloneWhenThePassIsOver) {
  duringReplyTo("TTFRO 1", [] {
    StopCCDF();
    drag(66, 100);
  });
  world.meter.replies["TTFRO 1"] = "TTFRO 1,200,50.5,10.25";
  AcquireCCDF();
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1", "TTFRO 1", "TTMKRO 1", "TTMKPOS 1,-15"}));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
}

/// Two drags while one exchange goes on: the first one's position must not come back over the
/// second one's.
TEST_F(CCDFMouseTest, DragsThatWaitLeaveTheNewestPosition) {
  converse([] {
    drag(66, 100);
    pressAt(100);
    moveTo(120);
  });
  EXPECT_EQ(CCDF.CursorPower, -12);
  CCDFButtonUp();
  ASSERT_FALSE(received().empty());
  EXPECT_EQ(received().back(), "TTMKPOS 1,-12");
}

TEST_F(CCDFMouseTest, GraphWithoutPointsIsToldOnceInADrag) {
  pressAt(66);
  Settings.DisplayPoints = 0;
  moveTo(67);
  moveTo(68);
  EXPECT_EQ(shownBoxes().size(), 1U);
  EXPECT_EQ(shownBoxes()[0], "Pelmora|Division by zero|exclamation");
  EXPECT_EQ(CCDF.CursorX, 66);
}

TEST_F(CCDFMouseTest, KeysMoveTheLineAsADragDoesAndTheReleaseWrites) {
  AcquisitionRunning = True16;
  MoveCursorBy(30);
  MoveCursorBy(4);
  EXPECT_EQ(CCDF.CursorX, 100);
  EXPECT_EQ(CCDF.CursorPower, -15);
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_TRUE(world.meter.received.empty());
  EndCursorMove();
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_FALSE(view.sizingPointer);
  EXPECT_EQ(world.meter.received, (Transcript{"TTMKPOS 1,-15"}));
  EndCursorMove();
  EXPECT_EQ(world.meter.received.size(), 1U);
}

TEST_F(CCDFMouseTest, KeysKeepTheLineBetweenTheEndsOfTheAxis) {
  for (const double points : {-66.0, 200.0}) {
    MoveCursorBy(points);
    EXPECT_EQ(CCDF.CursorX, 66) << points;
    EndCursorMove();
  }
}

TEST_F(CCDFMouseTest, KeysDoNothingWhileTheCursorIsOff) {
  CCDF.CursorOn = False16;
  AcquisitionRunning = True16;
  MoveCursorBy(1);
  EXPECT_EQ(AcquisitionRunning, True16);
  EndCursorMove();
  EXPECT_EQ(CCDF.CursorX, 66);
  EXPECT_TRUE(world.meter.received.empty());
}

}  // namespace
}  // namespace pulsemod::test
