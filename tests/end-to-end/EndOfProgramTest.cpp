#include <csignal>

#include "Expected.h"

namespace endtoend {
namespace {

class EndOfProgram : public BenchOnEachLink {
 protected:
  /// The board was taken offline once, and nothing was said after it.
  void expectLinkClosedLast() {
    const Events events = transcript();
    if (GetParam() == Link::serial) return;
    ASSERT_EQ(countKind(events, "OFFLINE"), 1U);
    EXPECT_EQ(happenings(events).back(), "OFFLINE");
  }
};
ON_BOTH_LINKS(EndOfProgram);

TEST_P(EndOfProgram, ClosingTheStoppedWindow) {
  startLoaded(GetParam());
  const Texts said = messages(markTranscript());
  closeMainWindowAndExpectEnd();
  EXPECT_EQ(messages(transcript()), said);
  expectLinkClosedLast();
}

TEST_P(EndOfProgram, ClosingTheWindowWhileItRuns) {
  startLoaded(GetParam());
  clickStart();
  awaitMessages("TR1 1", 3);
  closeMainWindowAndExpectEnd();
  expectLinkClosedLast();
}

TEST_P(EndOfProgram, TheExitItem) {
  startLoaded(GetParam());
  clickStart();
  awaitMessages("TR1 1", 2);
  hands().trigger("frmMain/menuExit");
  expectProgramEnd();
  expectLinkClosedLast();
}

TEST_P(EndOfProgram, TheShortcutOfTheExitItem) {
  startLoaded(GetParam());
  hands().key("frmMain", "Ctrl+Q");
  expectProgramEnd();
  expectLinkClosedLast();
}

// On the serial link the reply stops half way and the rest would take ten minutes: the close comes
// in the middle of it. Over GPIB the library holds the program until the reply is there, and the
// close that came meanwhile comes at one of the next exchanges.

TEST_P(EndOfProgram, ClosingInTheMiddleOfAProfile) {
  const bool serial = GetParam() == Link::serial;
  startLoaded(GetParam(),
              serial ? "fault = PMPO, 4, stall 1000 600000\n" : "fault = PMPBO, 2, late 700\n");
  clickStart();
  awaitMessages(serial ? "PMPO 1" : "PMPBO 1", serial ? 4 : 2);
  const Texts said = messages(transcript());
  closeMainWindowAndExpectEnd();
  const Texts all = messages(transcript());
  if (serial) {
    EXPECT_EQ(all, said);
  }
  EXPECT_EQ(countMessages(transcript(), "TR1 1"), 2U);
  expectLinkClosedLast();
}

TEST_P(EndOfProgram, ClosingDuringTheReadBackOfStart) {
  const bool serial = GetParam() == Link::serial;
  startLoaded(GetParam(),
              serial ? "fault = PMPO, 2, stall 4 600000\n" : "fault = PMPO, 2, late 700\n");
  clickStart();
  awaitMessages("PMPO 1", 2);
  const Texts said = messages(transcript());
  closeMainWindowAndExpectEnd();
  if (serial) {
    EXPECT_EQ(messages(transcript()), said);
  }
  EXPECT_EQ(countMessages(transcript(), "TR1 1"), 0U);
  expectLinkClosedLast();
}

TEST_P(EndOfProgram, StopDuringTheReadBackOfStartCancelsTheStart) {
  startLoaded(GetParam(), "fault = PMPO, 2, late 700\n");
  clickStart();
  awaitMessages("PMPO 1", 2);
  hands().key("frmMain", "Shift+F5");
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  EXPECT_EQ(countMessages(markTranscript(), "TR1 1"), 0U);
  // The read-back itself was finished.
  EXPECT_EQ(countMessages(transcript(), "TRDLYT? 1,PMOD"), 2U);
  EXPECT_TRUE(hands().is("frmMain/menuStart", "enabled"));
  EXPECT_FALSE(hands().is("frmMain/menuStop", "enabled"));
  closeMainWindowAndExpectEnd();
  EXPECT_EQ(countMessages(transcript(), "TR1 1"), 0U);
}

class LostSerialLink : public Bench {};

TEST_F(LostSerialLink, AMeterThatVanishesInAProfileEndsTheProgram) {
  startLoaded(Link::serial, "fault = PMPO, 5, stall 1000 600000\n");
  clickStart();
  awaitMessages("PMPO 1", 5);
  meter().kill();
  // No message: the program ends as when a profile could not be read.
  expectProgramEnd();
}

TEST_F(LostSerialLink, AMeterThatVanishesWhileStoppedLeavesTheWindowUsable) {
  startLoaded(Link::serial);
  clickStart();
  awaitMessages("TR1 1", 2);
  clickStop();
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  markTranscript();
  meter().kill();
  hands().trigger("frmMain/menuFreeRun");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "Pelmora");
  EXPECT_NE(box.text.find("COM1:"), std::string::npos) << box.text;
  EXPECT_TRUE(box.text.ends_with("Plug it in again, then start the program anew.")) << box.text;
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
  // It is told once.
  hands().trigger("frmMain/menudisplayupdate");
  hands().waitUntil("frmMain/menudisplayupdate", "checked", "false");
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
  closeMainWindowAndExpectEnd();
}

TEST_F(LostSerialLink, AMeterThatVanishesAtTheTriggerIsReportedOnceAndStopsTheAcquisition) {
  startLoaded(Link::serial, "fault = TR1, 3, stall 2 600000\n");
  clickStart();
  awaitMessages("TR1 1", 3);
  meter().kill();
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "Pelmora");
  EXPECT_NE(box.text.find("COM1:"), std::string::npos) << box.text;
  hands().key("messageBox", "Return");
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  hands().waitUntil("frmMain/menuStop", "enabled", "false");
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
  closeMainWindowAndExpectEnd();
}

TEST_F(LostSerialLink, AMeterThatVanishesBetweenTheDialogsIsReported) {
  startOn(Link::serial, "fault = *IDN?, every, hang-up\n");
  hands().click("frmConfigureQuestion/cmdLoadPM");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "*IDN? Failure");
  EXPECT_EQ(box.text, identityFailure);
  EXPECT_NE(box.details.find("COM1:"), std::string::npos) << box.details;
  hands().key("messageBox", "Return");
  expectProgramEnd();
}

}  // namespace
}  // namespace endtoend
