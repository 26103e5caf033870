#include "CCDFTest.h"
#include "ccdf/CCDFCursor.h"
#include "link/Conversation.h"
#include "link/Fault.h"

namespace pulsemod::test {
namespace {

class CCDFCursorTest : public CCDFTest {
 protected:
  CCDFCursorTest() { showCursorOn(); }
  void expectCursor(float power, float percent) const {
    EXPECT_EQ(CCDF.CursorPower, power);
    EXPECT_EQ(CCDF.CursorPercent, percent);
  }
};

TEST_F(CCDFCursorTest, IsReadShareFirst) {
  ReadCursor();
  EXPECT_EQ(received(), (Transcript{"TTMKRO 1"}));
  expectCursor(-15, 12.5F);
  EXPECT_EQ(CCDF.CursorX, 100);
}

TEST_F(CCDFCursorTest, IsNotReadWhileItIsOff) {
  CCDF.CursorOn = False16;
  ReadCursor();
  EXPECT_TRUE(received().empty());
  expectCursor(-20, 5);
}

TEST_F(CCDFCursorTest, StaysWithoutAUsableReply) {
  const float before = CCDF.CursorX;
  for (const char* reply : {"TTMKRO 1,12.5", "TTMKRO 1,12.5,", "TTMKRO 1,,-15", "TTMKRO 12.5,-15",
                            "TTMKRO 1,1E99,-15", "TTMKRO 1,12.5,1E99", "OK", ""}) {
    world.meter.replies["TTMKRO 1"] = reply;
    ReadCursor();
    expectCursor(-20, 5);
    EXPECT_EQ(CCDF.CursorX, before) << reply;
  }
  world.meter.replies.erase("TTMKRO 1");
  ReadCursor();
  expectCursor(-20, 5);
  EXPECT_EQ(CCDF.CursorX, before);
}

TEST_F(CCDFCursorTest, ItsLineMayStandBesideTheGraph) {
  world.meter.replies["TTMKRO 1"] = "TTMKRO 1,0,3";
  ReadCursor();
  EXPECT_EQ(CCDF.CursorX, 220);
}

TEST_F(CCDFCursorTest, ItsLineStaysOnAnAxisWithoutLength) {
  CCDF.StopPower = -30;
  const float before = CCDF.CursorX;
  ReadCursor();
  expectCursor(-15, 12.5F);
  EXPECT_EQ(CCDF.CursorX, before);
}

TEST_F(CCDFCursorTest, ItsPositionIsSentAsNumberText) {
  for (const auto& [power, text] :
       {std::pair{-20.0F, "-20"}, std::pair{0.125F, "0.125"}, std::pair{-1E-5F, "-1E-05"}}) {
    CCDF.CursorPower = power;
    received().clear();
    SendCursorPosition();
    EXPECT_EQ(received(), (Transcript{std::string("TTMKPOS 1,") + text}));
  }
}

TEST_F(CCDFCursorTest, LabelsShowItWhileItIsOn) {
  CCDF.CursorPower = -14.982F;
  CCDF.CursorPercent = 12.5F;
  CCDF.CursorX = 100.125F;
  UpdateCursorLabels();
  EXPECT_EQ(view.cursor, (FakeCCDFView::Cursor{"-14.982dBm", "12.5%", 100.125}));
  EXPECT_TRUE(view.cursorIsShown);
  CCDF.CursorOn = False16;
  UpdateCursorLabels();
  EXPECT_FALSE(view.cursorIsShown);
  EXPECT_TRUE(received().empty());
}

TEST_F(CCDFCursorTest, BelongsToTheActiveChannel) {
  Settings.ActiveChannel = 3;
  world.meter.replies["TTMKRO 1&2"] = "TTMKRO 1&2,12.5,-15";
  ReadCursor();
  expectCursor(-15, 12.5F);
  SendCursorPosition();
  EXPECT_EQ(received(), (Transcript{"TTMKRO 1&2", "TTMKPOS 1&2,-15"}));
}

TEST_F(CCDFCursorTest, PositionIsAskedWithThePresentOne) {
  EditCursorPosition();
  ASSERT_EQ(world.dialogs.inputs.size(), 1U);
  EXPECT_EQ(world.dialogs.inputs[0].prompt, "Enter the required Posistion of the Cursor");
  EXPECT_EQ(world.dialogs.inputs[0].title, "Setting the cursor Position ");
  EXPECT_EQ(world.dialogs.inputs[0].defaultText, "-20");
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(view.calls.empty());
  expectCursor(-20, 5);
  EXPECT_EQ(CCDFPending.CursorPositionPending, False16);
}

TEST_F(CCDFCursorTest, StoppedEditIsSentReadBackAndShown) {
  for (const bool serial : {false, true}) {
    if (serial) world.useSerial();
    received().clear();
    answer("-14.9 dBm");
    EditCursorPosition();
    EXPECT_EQ(received(), (Transcript{"TTMKPOS 1,-14.9", "TTMKRO 1"}));
    EXPECT_EQ(view.cursor, (FakeCCDFView::Cursor{"-15dBm", "12.5%", 100}));
  }
  EXPECT_EQ(world.serial.sent, "TTMKPOS 1,-14.9\rTTMKRO 1\r");
}

TEST_F(CCDFCursorTest, EditThatIsNoNumberIsZero) {
  answer("abc");
  EditCursorPosition();
  EXPECT_EQ(received().front(), "TTMKPOS 1,0");
}

TEST_F(CCDFCursorTest, EditThatDoesNotFitIsAFaultAndChangesNothing) {
  answer("1E99");
  EXPECT_THROW(EditCursorPosition(), Fault);
  expectCursor(-20, 5);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(CCDFPending.CursorPositionPending, False16);
}

TEST_F(CCDFCursorTest, RunningEditBecomesPending) {
  AcquisitionRunning = True16;
  answer("-14.9");
  EditCursorPosition();
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(CCDF.CursorPower, -14.9F);
  EXPECT_EQ(CCDFPending.CursorPositionPending, True16);
}

TEST_F(CCDFCursorTest, PendingPositionIsSentAndReadBackPowerFirst) {
  CCDFPending.CursorPositionPending = True16;
  world.meter.replies["TTMKPOS? 1"] = "TTMKPOS 1,-19.5,6.25";
  CarryOutCursorRequests();
  CarryOutCursorRequests();
  EXPECT_EQ(received(), (Transcript{"TTMKPOS 1,-20", "TTMKPOS? 1"}));
  expectCursor(-19.5F, 6.25F);
  EXPECT_EQ(view.cursor.power, "-19.5dBm");
  EXPECT_EQ(view.cursor.percentage, "6.25%");
}

TEST_F(CCDFCursorTest, PositionWithoutAReadBackStays) {
  CCDFPending.CursorPositionPending = True16;
  world.meter.replies.erase("TTMKPOS? 1");
  CarryOutCursorRequests();
  expectCursor(-20, 5);
  EXPECT_EQ(CCDFPending.CursorPositionPending, False16);
}

/// The meter answers after the user has placed the cursor elsewhere.
TEST_F(CCDFCursorTest, ReadBackDoesNotMoveWhatTheUserPlacedMeanwhile) {
  world.useSerial();
  AcquisitionRunning = True16;
  duringReplyTo("TTMKRO 1", [this] {
    answer("-3");
    EditCursorPosition();
  });
  converse(ReadCursor);
  expectCursor(-3, 5);
  EXPECT_EQ(CCDFPending.CursorPositionPending, True16);
}

TEST_F(CCDFCursorTest, ReadBackDoesNotMoveTheCursorOfADragThatGoesOn) {
  world.useSerial();
  CCDFMouse.SizingPointer = True16;
  duringReplyTo("TTMKRO 1", [] { CCDFButtonDown(); });
  converse(ReadCursor);
  expectCursor(-20, 5);
}

TEST_F(CCDFCursorTest, ReadBackDoesNotMoveTheCursorOfADragThatEnded) {
  world.useSerial();
  CCDFMouse.SizingPointer = True16;
  duringReplyTo("TTMKRO 1", [] {
    CCDFButtonDown();
    CCDFMouseMove({120, 0});
    CCDFButtonUp();
  });
  converse(ReadCursor);
  expectCursor(-12, 5);
  EXPECT_EQ(received(), (Transcript{"TTMKRO 1", "TTMKPOS 1,-12"}));
}

TEST_F(CCDFCursorTest, EditDuringTheReadBackOfAnOlderOneIsSentNext) {
  world.useSerial();
  AcquisitionRunning = True16;
  CCDFPending.CursorPositionPending = True16;
  duringReplyTo("TTMKPOS? 1", [this] {
    answer("-3");
    EditCursorPosition();
  });
  converse(CarryOutCursorRequests);
  expectCursor(-3, 5);
  converse(CarryOutCursorRequests);
  EXPECT_EQ(received(), (Transcript{"TTMKPOS 1,-20", "TTMKPOS? 1", "TTMKPOS 1,-3", "TTMKPOS? 1"}));
}

TEST_F(CCDFCursorTest, StoppedEditsThatWaitSendTheNewestOnly) {
  answer("-3");
  answer("-4");
  converse([] {
    EditCursorPosition();
    EditCursorPosition();
  });
  EXPECT_EQ(received(), (Transcript{"TTMKPOS 1,-4", "TTMKRO 1"}));
}

TEST_F(CCDFCursorTest, StoppedEditThatWaitsIsSentThoughTheMeterAnsweredItsOldPlace) {
  world.useSerial();
  duringReplyTo("TTMKRO 1", [this] {
    answer("-3");
    EditCursorPosition();
  });
  converse([] {
    ReadCursor();
    ReadCursor();
  });
  EXPECT_EQ(received(), (Transcript{"TTMKRO 1", "TTMKRO 1", "TTMKPOS 1,-3", "TTMKRO 1"}));
}

}  // namespace
}  // namespace pulsemod::test
