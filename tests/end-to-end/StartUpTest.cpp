#include "Expected.h"

namespace endtoend {
namespace {

class StartUp : public BenchOnEachLink {
 protected:
  /// All messages so far, each checked to have ended as its link demands.
  Texts checkedMessages(const Events& events) {
    const std::string end = GetParam() == Link::gpib ? "NL+EOI" : "CR";
    for (const Event& event : events) {
      if (event.kind != "<") continue;
      EXPECT_EQ(event.end, end) << event.text;
    }
    return messages(events);
  }
};
ON_BOTH_LINKS(StartUp);

TEST_P(StartUp, LoadAsksForTheWholeConfigurationInOrder) {
  startLoaded(GetParam());
  const Events events = markTranscript();
  EXPECT_EQ(checkedMessages(events),
            startTranscript() + configurationTranscript() + Texts{"SYDISP OFF"});
  Texts opened = GetParam() == Link::gpib ? Texts{"ONLINE", "IFC", "CLEAR"} : Texts{"ONLINE"};
  EXPECT_EQ(happenings(events), opened + messages(events));
}

TEST_P(StartUp, ConfigureSendsTheProgramsOwnSettingsInOrder) {
  startOn(GetParam());
  hands().click("frmConfigureQuestion/cmdConfig");
  hands().waitVisible("frmMain");
  EXPECT_EQ(checkedMessages(markTranscript()),
            startTranscript() + defaultsTranscript() + Texts{"SYDISP OFF"});
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
  EXPECT_EQ(hands().get("frmMain/lblCapture", "text"), "4.6ms");
}

TEST_P(StartUp, ConfigureTellsWhenTheMeterDeniesCompletion) {
  startOn(GetParam(), "fault = *OPC?, every, replace 0\n");
  hands().click("frmConfigureQuestion/cmdConfig");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "Pelmora");
  EXPECT_EQ(box.text, "Invalid response from Power Meter");
  hands().key("messageBox", "Return");
  hands().waitVisible("frmMain");
  EXPECT_FALSE(hands().is("frmPleaseWait", "visible"));
}

TEST_P(StartUp, LoadStopsTheStatisticsOfTheMeterFirst) {
  startLoaded(GetParam(), "setup = PPACQS 1,ON\n");
  const Texts all = checkedMessages(markTranscript());
  EXPECT_EQ(part(all, 2, 3), (Texts{"PPACQS? 1", "PPACQS 1,OFF", "CHACTIV?"}));
  EXPECT_EQ(part(all, 4), part(configurationTranscript(), 1) + Texts{"SYDISP OFF"});
}

TEST_P(StartUp, LoadFollowsTheActiveChannelOfTheMeter) {
  startLoaded(GetParam(), "setup = CHACTIV 2\n");
  const Texts all = checkedMessages(markTranscript());
  EXPECT_EQ(part(all, 2, 5),
            (Texts{"PPACQS? 1", "CHACTIV?", "CHDISPN 1", "CHMODE 2,PMOD", "PMDTYP 2,PRF"}));
  EXPECT_EQ(all.at(all.size() - 2), "PMPO 2");
}

TEST_P(StartUp, LoadShowsWhatTheMeterSaid) {
  startLoaded(GetParam(),
              "setup = PMPREF 1,DB,5\n"
              "setup = PMPSCAL 1,DB,8\n"
              "setup = TRCAPT 1,PMOD,0.0046\n"
              "setup = TRDLYT 1,PMOD,-0.0001\n");
  EXPECT_EQ(hands().get("frmMain", "windowTitle"), "Pelmora v" PULSEMOD_VERSION);
  EXPECT_EQ(hands().get("frmMain/lblRef", "text"), "Ref: 5.00 dBm");
  EXPECT_EQ(hands().get("frmMain/lblscale", "text"), "Scale: 8.00 dB");
  EXPECT_EQ(hands().get("frmMain/lblStart", "text"), "-100us");
  EXPECT_EQ(hands().get("frmMain/lblCapture", "text"), "4.6ms");
  EXPECT_EQ(hands().get("frmMain/lblStop", "text"), "4.5ms");
  EXPECT_FALSE(hands().is("frmPleaseWait", "visible"));
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
}

TEST_P(StartUp, LoadShowsItsProgress) {
  // Slow enough that the window can be looked at.
  startOn(GetParam(), "fault = GPACTN?, 1, late 500\n");
  hands().click("frmConfigureQuestion/cmdLoadPM");
  hands().waitUntil("frmPleaseWait/lblMessage", "text", "Please Wait... Reading Gates...1");
  hands().waitVisible("frmMain");
  EXPECT_FALSE(hands().is("frmPleaseWait", "visible"));
}

TEST_P(StartUp, JustStartAsksForTheIdentityAlone) {
  startOn(GetParam());
  hands().click("frmConfigureQuestion/cmdjuststart");
  hands().waitVisible("frmMain");
  EXPECT_EQ(hands().get("frmMain", "windowTitle"), "Pelmora PulseMod");
  EXPECT_EQ(hands().get("frmMain/lblRef", "text"), "Ref: 10.00 dBm");
  EXPECT_EQ(hands().get("frmMain/lblCapture", "text"), "4.6ms");
  EXPECT_EQ(checkedMessages(markTranscript()), startTranscript() + Texts{"SYDISP OFF"});
}

TEST_P(StartUp, JustStartNeverAcquires) {
  startOn(GetParam());
  hands().click("frmConfigureQuestion/cmdjuststart");
  hands().waitVisible("frmMain");
  clickStart();
  awaitMessages("TRDLYT? 1,PMOD", 1);
  hands().waitUntil("frmMain/menuStop", "enabled", "true");
  EXPECT_EQ(messages(markTranscript()), startTranscript() + startQuestions() + Texts{"SYDISP OFF"});
  hands().openMenuOf("frmMain/menuStop");
  hands().closeMenu();
  EXPECT_EQ(messages(markTranscript()),
            startTranscript() + startQuestions() + (Texts{"SYDISP OFF", "SYDISP ON"}));
  closeMainWindowAndExpectEnd();
}

TEST_P(StartUp, CommsOptionsComeAsOftenAsAskedForAndTheChoiceComesBack) {
  startOn(GetParam());
  for (int time = 0; time < 3; ++time) {
    hands().click("frmConfigureQuestion/cmdOpenConfig");
    hands().waitVisible("frmComms");
    EXPECT_EQ(windows(), "frmComms|GPIB/RS232 Comms");
    hands().close("frmComms");
    hands().waitVisible("frmConfigureQuestion");
    EXPECT_EQ(windows(), "frmConfigureQuestion|Pelmora PulseMod");
  }
  EXPECT_EQ(messages(transcript()), Texts{});
  hands().click("frmConfigureQuestion/cmdjuststart");
  hands().waitVisible("frmMain");
  EXPECT_EQ(messages(transcript()), startTranscript());
}

TEST_P(StartUp, ExitProgramSaysNothingToTheMeter) {
  startOn(GetParam());
  hands().click("frmConfigureQuestion/Command1");
  expectProgramEnd();
  EXPECT_EQ(happenings(transcript()),
            GetParam() == Link::gpib ? (Texts{"ONLINE", "OFFLINE"}) : (Texts{"ONLINE"}));
}

TEST_P(StartUp, ClosingTheChoiceEndsTheProgram) {
  startOn(GetParam());
  hands().close("frmConfigureQuestion");
  expectProgramEnd();
  EXPECT_EQ(happenings(transcript()),
            GetParam() == Link::gpib ? (Texts{"ONLINE", "OFFLINE"}) : (Texts{"ONLINE"}));
}

TEST_P(StartUp, EscapeAtTheChoiceEndsTheProgram) {
  startOn(GetParam());
  hands().key("frmConfigureQuestion", "Escape");
  expectProgramEnd();
  EXPECT_EQ(messages(transcript()), Texts{});
}

}  // namespace
}  // namespace endtoend
