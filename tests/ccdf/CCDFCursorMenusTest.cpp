#include "CCDFTest.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFLoop.h"
#include "link/Conversation.h"

namespace pulsemod::test {
namespace {

class CCDFCursorMenusTest : public CCDFTest {
 protected:
  /// What the meter was told of the cursor.
  Transcript switches() const {
    Transcript lines;
    std::copy_if(received().begin(), received().end(), std::back_inserter(lines),
                 [](const std::string& line) { return line.starts_with("TTMKS "); });
    return lines;
  }
};

TEST_F(CCDFCursorMenusTest, OnWhileStoppedTellsTheMeterAndReadsTheCursor) {
  SwitchCursorOn();
  EXPECT_EQ(received(), (Transcript{"TTMKS 1,ON", "TTMKRO 1"}));
  EXPECT_EQ(CCDF.CursorOn, True16);
  EXPECT_EQ(view.timesCalled("menus for cursor on"), 1);
  EXPECT_EQ(view.timesCalled("menus for cursor off"), 0);
  EXPECT_EQ(view.cursor, (FakeCCDFView::Cursor{"-15dBm", "12.5%", 100}));
  EXPECT_TRUE(view.cursorIsShown);
  EXPECT_EQ(CCDFPending.CursorOnPending, False16);
}

TEST_F(CCDFCursorMenusTest, OffWhileStoppedTellsTheMeterOnly) {
  showCursorOn();
  SwitchCursorOff();
  EXPECT_EQ(received(), (Transcript{"TTMKS 1,OFF"}));
  EXPECT_EQ(CCDF.CursorOn, False16);
  EXPECT_EQ(view.timesCalled("menus for cursor off"), 1);
  EXPECT_EQ(view.timesCalled("menus for cursor on"), 0);
  EXPECT_FALSE(view.cursorIsShown);
  EXPECT_EQ(CCDFPending.CursorOffPending, False16);
}

TEST_F(CCDFCursorMenusTest, SpeakTheSameBytesOverSerial) {
  world.useSerial();
  SwitchCursorOn();
  SwitchCursorOff();
  EXPECT_EQ(world.serial.sent, "TTMKS 1,ON\rTTMKRO 1\rTTMKS 1,OFF\r");
}

TEST_F(CCDFCursorMenusTest, OnWhileRunningShowsTheFrameBeforeTheMeterIsTold) {
  AcquisitionRunning = True16;
  SwitchCursorOn();
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(view.cursorIsShown);
  EXPECT_EQ(view.timesCalled("menus for cursor on"), 1);
  EXPECT_EQ(CCDFPending.CursorOnPending, True16);
  CarryOutCursorRequests();
  CarryOutCursorRequests();
  EXPECT_EQ(received(), (Transcript{"TTMKS 1,ON", "TTMKRO 1"}));
  EXPECT_EQ(view.cursor.power, "-15dBm");
}

TEST_F(CCDFCursorMenusTest, OffWhileRunningHidesTheFrameBeforeTheMeterIsTold) {
  AcquisitionRunning = True16;
  showCursorOn();
  SwitchCursorOff();
  EXPECT_TRUE(received().empty());
  EXPECT_FALSE(view.cursorIsShown);
  EXPECT_EQ(view.timesCalled("menus for cursor off"), 1);
  EXPECT_EQ(CCDFPending.CursorOffPending, True16);
  CarryOutCursorRequests();
  CarryOutCursorRequests();
  EXPECT_EQ(received(), (Transcript{"TTMKS 1,OFF"}));
  EXPECT_FALSE(view.cursorIsShown);
}

TEST_F(CCDFCursorMenusTest, LastChoiceWhileRunningReachesTheMeterLast) {
  struct Row {
    const char* name;
    std::vector<void (*)()> choices;
    const char* last;
    Boolean16 on;
  };
  const Row rows[] = {
      {"on, off", {SwitchCursorOn, SwitchCursorOff}, "TTMKS 1,OFF", False16},
      {"off, on", {SwitchCursorOff, SwitchCursorOn}, "TTMKS 1,ON", True16},
      {"on, off, on", {SwitchCursorOn, SwitchCursorOff, SwitchCursorOn}, "TTMKS 1,ON", True16},
      {"off, on, off", {SwitchCursorOff, SwitchCursorOn, SwitchCursorOff}, "TTMKS 1,OFF", False16}};
  for (const Row& row : rows) {
    received().clear();
    AcquisitionRunning = True16;
    for (const auto choice : row.choices) choice();
    CarryOutCursorRequests();
    ASSERT_FALSE(switches().empty());
    EXPECT_EQ(switches().back(), row.last) << row.name;
    EXPECT_EQ(CCDF.CursorOn, row.on) << row.name;
    EXPECT_EQ(view.cursorIsShown, row.on != False16) << row.name;
  }
}

TEST_F(CCDFCursorMenusTest, ChoicesDuringAnExchangeWhileStoppedKeepTheirOrder) {
  converse([] {
    SwitchCursorOn();
    SwitchCursorOff();
    SwitchCursorOn();
  });
  EXPECT_EQ(switches(), (Transcript{"TTMKS 1,ON", "TTMKS 1,OFF", "TTMKS 1,ON"}));
}

TEST_F(CCDFCursorMenusTest, ChoiceBeforeAStopAndOneAfterItKeepTheirOrder) {
  AcquisitionRunning = True16;
  converse([] {
    SwitchCursorOn();
    StopCCDF();
    SwitchCursorOff();
  });
  EXPECT_EQ(switches(), (Transcript{"TTMKS 1,ON", "TTMKS 1,OFF"}));
  EXPECT_FALSE(view.cursorIsShown);
}

TEST_F(CCDFCursorMenusTest, CursorThatIsSwitchedOffWhileItIsReadStaysHidden) {
  world.useSerial();
  duringReplyTo("TTMKRO 1", [] { SwitchCursorOff(); });
  SwitchCursorOn();
  EXPECT_EQ(received(), (Transcript{"TTMKS 1,ON", "TTMKRO 1", "TTMKS 1,OFF"}));
  EXPECT_FALSE(view.cursorIsShown);
}

}  // namespace
}  // namespace pulsemod::test
