#include "CCDFBench.h"

namespace endtoend {
namespace {

using pulsemod::test::ccdfConfigurationTranscript;
using pulsemod::test::ccdfSettingsTranscript;

class CCDFStart : public CCDFBench {
 protected:
  /// The board was taken offline once, and nothing was said after it.
  void expectLinkClosedLast() {
    if (GetParam() == Link::serial) return;
    const Events events = transcript();
    ASSERT_EQ(countKind(events, "OFFLINE"), 1U);
    EXPECT_EQ(happenings(events).back(), "OFFLINE");
  }
};
ON_BOTH_LINKS(CCDFStart);

TEST_P(CCDFStart, TheMeterIsBroughtIntoTheModeAndAskedForItsSettings) {
  startCCDF(GetParam());
  awaitMark();
  const Events events = transcript();
  EXPECT_EQ(messages(events), ccdfTranscript(true) + ccdfMark());
  const Texts opened = GetParam() == Link::gpib ? Texts{"ONLINE", "IFC", "CLEAR"} : Texts{"ONLINE"};
  EXPECT_EQ(happenings(events), opened + messages(events));
  const std::string end = GetParam() == Link::gpib ? "NL+EOI" : "CR";
  for (const Event& event : events) {
    if (event.kind != "<") continue;
    EXPECT_EQ(event.end, end) << event.text;
  }
}

TEST_P(CCDFStart, TheWindowShowsWhatTheMeterSaid) {
  startCCDF(GetParam(),
            "setup = TTPST 1,-22.5\n"
            "setup = TTPSP 1,17.25\n"
            "setup = TTMKPOS 1,-3.5\n"
            "setup = TTSRC 1,GATE\n");
  EXPECT_EQ(windows(), "frmCCDF|Pelmora v" PULSEMOD_VERSION);
  EXPECT_FALSE(hands().is("frmMain", "visible"));
  EXPECT_FALSE(hands().is("frmPleaseWait", "visible"));
  EXPECT_EQ(caption("lblStartPower"), "-22.5dBm");
  EXPECT_EQ(caption("lblStopPower"), "17.25dBm");
  EXPECT_EQ(caption("lblMeasSource"), "SOURCE:GATE");
  EXPECT_TRUE(hands().is("frmCCDF/FrameCursor", "visible"));
  EXPECT_EQ(caption("lblCursorPower"), "-3.5dBm");
  // The share is read with the first curve.
  EXPECT_EQ(caption("lblCursorPercentage"), "0%");
  EXPECT_EQ(caption("lblgraphspeed1"), "Profile/Second: 0.00");
  const Texts decades = {"100%", "10%", "1%", ".1%", ".01%", ".001%"};
  for (std::size_t i = 0; i < decades.size(); ++i) {
    EXPECT_EQ(caption("lblPer" + std::to_string(i + 1)), decades[i]);
  }
}

TEST_P(CCDFStart, ItOpensStoppedWithItsMenusAccordingly) {
  struct Item {
    const char* name;
    bool whileCursorOn;
    bool whileCursorOff;
  };
  const Item items[] = {{"menuStart", true, true},
                        {"menuStop", false, false},
                        {"MenuRestart", true, true},
                        {"menuOn", false, true},
                        {"menuOFF", true, false},
                        {"menuSetCursorPosition", true, false},
                        {"menuMeasSourceGate", true, true},
                        {"menuMeasSourceActiveMarker", true, true},
                        {"menuMeasSourceChannel", true, true}};
  startCCDF(GetParam());
  for (const Item& item : items) EXPECT_EQ(isEnabled(item.name), item.whileCursorOn) << item.name;
  choose("menuOFF");
  for (const Item& item : items) EXPECT_EQ(isEnabled(item.name), item.whileCursorOff) << item.name;
  const Texts silent = awaitMark();
  giveItTime();
  EXPECT_EQ(told(), silent + ccdfMark());
}

TEST_P(CCDFStart, ACursorThatIsOffIsNeitherAskedForNorShown) {
  startCCDF(GetParam(), "setup = TTMKS 1,OFF\n");
  EXPECT_EQ(awaitMark(), ccdfTranscript(false));
  EXPECT_FALSE(hands().is("frmCCDF/FrameCursor", "visible"));
  EXPECT_TRUE(isEnabled("menuOn"));
  EXPECT_FALSE(isEnabled("menuOFF"));
  EXPECT_FALSE(isEnabled("menuSetCursorPosition"));
}

TEST_P(CCDFStart, ItTellsWhenTheMeterDeniesCompletionAndGoesOn) {
  startOn(GetParam(), "fault = *OPC?, every, replace 0\n");
  hands().click("frmConfigureQuestion/cmdCCDF");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "Pelmora");
  EXPECT_EQ(box.text, "Invalid response from Power Meter");
  EXPECT_EQ(box.icon, "Warning");
  EXPECT_EQ(told(), startTranscript() + ccdfConfigurationTranscript());
  hands().key("messageBox", "Return");
  hands().waitVisible("frmCCDF");
  EXPECT_FALSE(hands().is("frmPleaseWait", "visible"));
  EXPECT_EQ(awaitMark(), ccdfTranscript(true));
  runCurves(2);
}

TEST_P(CCDFStart, ItShowsItsProgress) {
  // Slow enough that the window can be looked at.
  startOn(GetParam(), "fault = *OPC?, 1, late 500\n");
  hands().click("frmConfigureQuestion/cmdCCDF");
  hands().waitUntil("frmPleaseWait/lblMessage", "text", "Please Wait... Waiting for response...");
  hands().waitVisible("frmCCDF");
  EXPECT_FALSE(hands().is("frmPleaseWait", "visible"));
}

TEST_P(CCDFStart, ASettingThatIsNotAnsweredRightKeepsItsValue) {
  startCCDF(GetParam(),
            "fault = TTPST?, 1, replace TTPST 1,1e99\n"
            "fault = TTFRO, 1, replace OK\n");
  EXPECT_EQ(caption("lblStartPower"), "0dBm");
  EXPECT_EQ(caption("lblStopPower"), "20dBm");
  runCurves(2);
  EXPECT_EQ(windows(), "frmCCDF|Pelmora v" PULSEMOD_VERSION);
}

TEST_P(CCDFStart, AStoppedProgramCostsNoProcessorTime) {
  startCCDF(GetParam());
  runCurves(1);
  stopCurves();
  const double before = program().processorSeconds();
  EXPECT_EQ(program().awaitEnd(std::chrono::seconds(3)), std::nullopt);
  // A loop that spins would take all of the three seconds that the machine has to give.
  EXPECT_LT(program().processorSeconds() - before, 0.3);
}

TEST_P(CCDFStart, ClosingTheStoppedWindowEndsTheProgram) {
  startCCDF(GetParam());
  awaitMark();
  const Texts said = told();
  expectProgramEndsByClose();
  EXPECT_EQ(told(), said);
  expectLinkClosedLast();
}

TEST_P(CCDFStart, ClosingTheWindowWhileItRunsEndsTheProgram) {
  startCCDF(GetParam());
  runCurves(3);
  expectProgramEndsByClose();
  expectLinkClosedLast();
}

// On the serial link the curve stops half way and the rest would take ten minutes: the close comes
// in the middle of it. Over GPIB the library holds the program until the reply is there.
TEST_P(CCDFStart, ClosingInTheMiddleOfACurveEndsTheProgram) {
  const bool serial = GetParam() == Link::serial;
  startCCDF(GetParam(),
            serial ? "fault = TTFRO, 3, stall 1000 600000\n" : "fault = TTFRO, 3, late 700\n");
  choose("menuStart");
  awaitMessages("TTFRO 1", 3);
  const Texts said = told();
  expectProgramEndsByClose();
  if (serial) {
    EXPECT_EQ(told(), said);
  }
  EXPECT_EQ(curvesSoFar(), 3U);
  expectLinkClosedLast();
}

/// The meter outlives the program on the serial link.
class AfterCCDF : public Bench {};

TEST_F(AfterCCDF, TheNextStartOfTheProfileStopsTheStatistics) {
  startCCDF(Link::serial);
  hands().close("frmCCDF");
  expectProgramEnd();
  const std::size_t said = messages(transcript()).size();
  startProgram();
  hands().click("frmConfigureQuestion/cmdLoadPM");
  hands().waitVisible("frmMain");
  EXPECT_EQ(part(messages(transcript()), said, 5),
            startTranscript() + (Texts{"PPACQS? 1", "PPACQS 1,OFF", "CHACTIV?"}));
}

}  // namespace
}  // namespace endtoend
