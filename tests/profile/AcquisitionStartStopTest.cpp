#include "ProfileTest.h"
#include "link/Conversation.h"
#include "link/Fault.h"
#include "profile/AcquisitionLoop.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileParameters.h"

namespace pulsemod::test {
namespace {

const Transcript readBack = {"PMPO 1",        "TRCAPT? 1,PMOD", "PMPREF? 1,DB",
                             "PMPSCAL? 1,DB", "TRCAPT? 1,PMOD", "TRDLYT? 1,PMOD"};

class AcquisitionStartStopTest : public ProfileTest {
 protected:
  AcquisitionStartStopTest() { answerReadBack(); }

  /// The transcript `first`, then that of a start.
  static Transcript withStart(Transcript first) {
    first.insert(first.end(), readBack.begin(), readBack.end());
    return first;
  }
  static void editReference(float level) {
    Settings.ReferenceLevel = level;
    PendingEdits.ReferenceLevel = True16;
  }
  void expectMenus(const std::vector<std::string>& expected) const {
    EXPECT_EQ(view.menus, expected);
  }
  /// One pass, with `event` while the reply to `message` is under way.
  void runPass(const std::string& message, std::function<void()> event) {
    AcquisitionRunning = True16;
    duringReplyTo(message, std::move(event));
    AcquireProfile();
  }
};

TEST_F(AcquisitionStartStopTest, StartOverGpibClearsTheMeterAndReadsBack) {
  world.clock.seconds = 0;
  StartAcquisition();
  EXPECT_EQ(received(), readBack);
  EXPECT_EQ(world.gpib.timesCalled("DevClear 0 13"), 1);
  EXPECT_LT(positionOfCall("DevClear 0 13"), positionOfCall("Send 13 PMPO 1"));
  EXPECT_EQ(positionOfCall("SendIFC 0"), -1);
  EXPECT_EQ(world.events.deadlines, (std::vector<int>{100}));
  EXPECT_EQ(AcquisitionRunning, True16);
  expectMenus({"started"});
}

TEST_F(AcquisitionStartStopTest, MeterHas100MillisecondsAfterItsClear) {
  world.clock.seconds = 0;
  double firstQuery = 0;
  world.meter.onMessage = [&](const std::string& message) {
    if (message == "PMPO 1") firstQuery = world.clock.seconds;
  };
  StartAcquisition();
  EXPECT_DOUBLE_EQ(firstQuery, 0.1);
}

TEST_F(AcquisitionStartStopTest, StartOverSerialClearsNothing) {
  world.useSerial();
  StartAcquisition();
  EXPECT_EQ(received(), readBack);
  EXPECT_TRUE(world.gpib.calls.empty());
  EXPECT_TRUE(world.events.deadlines.empty());
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(AcquisitionStartStopTest, MenusChangeBeforeTheMeterIsAsked) {
  std::vector<std::string> menusAtFirstQuery = {"not asked"};
  world.meter.onMessage = [&](const std::string& message) {
    if (message == "PMPO 1") menusAtFirstQuery = view.menus;
  };
  StartAcquisition();
  EXPECT_EQ(menusAtFirstQuery, (std::vector<std::string>{"started"}));
}

TEST_F(AcquisitionStartStopTest, StartTakesWhatTheMeterReports) {
  world.meter.replies["PMPO 1"] = textReadout(levels(100));
  world.meter.replies["TRCAPT? 1,PMOD"] = "TRCAPT 1,PMOD,0.008";
  world.meter.replies["PMPREF? 1,DB"] = "PMPREF 1,DB,5";
  world.meter.replies["PMPSCAL? 1,DB"] = "PMPSCAL 1,DB,2";
  world.meter.replies["TRDLYT? 1,PMOD"] = "TRDLYT 1,PMOD,0.001";
  StartAcquisition();
  EXPECT_EQ(Settings.DisplayPoints, 100);
  EXPECT_EQ(view.picture.shown.scale, (PictureScale{1, 5, 100, -20}));
  const std::map<GraphLabel, std::string> expected = {{GraphLabel::reference, "Ref: 5.00 dBm"},
                                                      {GraphLabel::scale, "Scale: 2.00 dB"},
                                                      {GraphLabel::capture, "8ms"},
                                                      {GraphLabel::start, "1ms"},
                                                      {GraphLabel::stop, "9ms"}};
  EXPECT_EQ(view.labels, expected);
}

TEST_F(AcquisitionStartStopTest, SecondReadingOfTheCaptureTimeCounts) {
  world.meter.onceReplies["TRCAPT? 1,PMOD"] = {"TRCAPT 1,PMOD,0.001", "TRCAPT 1,PMOD,0.002"};
  StartAcquisition();
  EXPECT_EQ(Settings.CaptureTime, 0.002F);
}

TEST_F(AcquisitionStartStopTest, ProgressTextStandsBetweenTheTwoReadings) {
  std::vector<std::string> steps;
  world.meter.onMessage = [&](const std::string& message) {
    steps.push_back(message + " " + std::to_string(world.progress.texts.size()));
  };
  StartAcquisition();
  EXPECT_EQ(world.progress.texts,
            (std::vector<std::string>{"Please Wait... Reading Capture Period..."}));
  EXPECT_EQ(steps[3], "PMPSCAL? 1,DB 0");
  EXPECT_EQ(steps[4], "TRCAPT? 1,PMOD 1");
  EXPECT_FALSE(world.progress.visible);
  EXPECT_TRUE(world.progress.delayed.empty());
}

TEST_F(AcquisitionStartStopTest, UnansweredQueriesKeepTheirFieldsAndGoOn) {
  world.meter.replies.clear();
  Settings.CaptureTime = 0.008F;
  Settings.DisplayPoints = 100;
  StartAcquisition();
  EXPECT_EQ(received(), readBack);
  EXPECT_EQ(Settings.CaptureTime, 0.008F);
  EXPECT_EQ(Settings.TriggerDelay, 0.0F);
  EXPECT_EQ(Settings.ReferenceLevel, 10.0F);
  EXPECT_EQ(Settings.ScalePerDivision, 10.0F);
  EXPECT_EQ(Settings.DisplayPoints, 100);
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(AcquisitionStartStopTest, AnswerThatIsNoProfileEndsTheReadBackOnly) {
  world.meter.replies["PMPO 1"] = "OK";
  StartAcquisition();
  EXPECT_EQ(received(), (Transcript{"PMPO 1"}));
  EXPECT_TRUE(world.progress.texts.empty());
  EXPECT_EQ(view.labels[GraphLabel::capture], "4.6ms");
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(AcquisitionStartStopTest, FaultInTheReadBackIsToldOnceAndDoesNotStart) {
  world.meter.replies["PMPO 1"] = "PMPO 1,200";
  EXPECT_FALSE(reportFaults(StartAcquisition));
  EXPECT_EQ(received(), (Transcript{"PMPO 1"}));
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
  EXPECT_EQ(AcquisitionRunning, False16);
  expectMenus({"started", "stopped"});
}

TEST_F(AcquisitionStartStopTest, LoopAcquiresRightAfterAStartInItsWait) {
  world.events.post(StartAcquisition);
  AcquireProfile();
  EXPECT_EQ(received().size(), readBack.size() + 2);
  EXPECT_EQ(received()[readBack.size()], "TR1 1");
}

TEST_F(AcquisitionStartStopTest, StopInTheMiddleOfAStartCancelsIt) {
  for (const std::string& query : readBack) {
    SCOPED_TRACE(query);
    view.menus.clear();
    world.meter.received.clear();
    duringReplyTo(query, StopAcquisition);
    StartAcquisition();
    EXPECT_EQ(AcquisitionRunning, False16);
    expectMenus({"started", "stopped"});
    EXPECT_THROW(AcquireProfile(), WaitsForEver);
    EXPECT_EQ(timesReceived("TR1 1"), 0);
  }
}

TEST_F(AcquisitionStartStopTest, StopDuringThePauseAfterTheClearCancelsTheStart) {
  world.events.post(StopAcquisition);
  StartAcquisition();
  EXPECT_EQ(AcquisitionRunning, False16);
  expectMenus({"started", "stopped"});
}

TEST_F(AcquisitionStartStopTest, StopAndStartInTheMiddleOfAStartStartOnceMore) {
  duringReplyTo("PMPSCAL? 1,DB", [] {
    StopAcquisition();
    StartAcquisition();
  });
  StartAcquisition();
  EXPECT_EQ(received(), withStart(readBack));
  EXPECT_EQ(AcquisitionRunning, True16);
  expectMenus({"started", "stopped", "started"});
}

TEST_F(AcquisitionStartStopTest, StopDuringAReadFinishesItAndRequestsNoOther) {
  for (const char* query : {"TR1 1", "PMPBO 1"}) {
    SCOPED_TRACE(query);
    world.meter.received.clear();
    ProfileTrace.fill(0);
    view.picture.timesShown = 0;
    runPass(query, StopAcquisition);
    EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
    EXPECT_EQ(ProfileTrace[199], levels(200)[199]);
    EXPECT_EQ(view.picture.timesShown, 1);
    EXPECT_EQ(AcquisitionRunning, False16);
    EXPECT_THROW(AcquireProfile(), WaitsForEver);
    EXPECT_EQ(timesReceived("TR1 1"), 1);
  }
}

TEST_F(AcquisitionStartStopTest, StartDuringAPassWaitsForItsEnd) {
  Settings.Markers[0].Enabled = True16;
  world.meter.replies["MKNO 1,1"] = "MKNO 1,1,-20,DBM,0.0023";
  runPass("TR1 1", [this] {
    StopAcquisition();
    StartAcquisition();
    EXPECT_EQ(AcquisitionRunning, False16);
    expectMenus({"stopped", "started"});
  });
  EXPECT_EQ(received(), withStart({"TR1 1", "PMPBO 1", "MKNO 1,1"}));
  EXPECT_GT(positionOfCall("DevClear 0 13"), positionOfCall("Send 13 MKNO 1,1"));
  EXPECT_EQ(world.gpib.interruptedQueries, 0);
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(AcquisitionStartStopTest, KeptStartIsCancelledByAStop) {
  runPass("TR1 1", [] {
    StopAcquisition();
    StartAcquisition();
    StopAcquisition();
  });
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
  EXPECT_EQ(world.gpib.timesCalled("DevClear 0 13"), 0);
  EXPECT_EQ(AcquisitionRunning, False16);
  expectMenus({"stopped", "started", "stopped"});
}

TEST_F(AcquisitionStartStopTest, StartStopStartGivesOneStart) {
  runPass("TR1 1", [] {
    StopAcquisition();
    StartAcquisition();
    StopAcquisition();
    StartAcquisition();
  });
  EXPECT_EQ(received(), withStart({"TR1 1", "PMPBO 1"}));
  EXPECT_EQ(world.gpib.timesCalled("DevClear 0 13"), 1);
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(AcquisitionStartStopTest, FaultInAKeptStartIsToldOnceAndDoesNotStart) {
  world.meter.replies["PMPO 1"] = "PMPO";
  runPass("TR1 1", [] {
    StopAcquisition();
    StartAcquisition();
  });
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", "PMPO 1"}));
  EXPECT_EQ(shownBoxes(),
            (std::vector<std::string>{
                "Pelmora|The meter's profile readout has no point count|exclamation"}));
  EXPECT_EQ(AcquisitionRunning, False16);
  expectMenus({"stopped", "started", "stopped"});
}

TEST_F(AcquisitionStartStopTest, StopServesEditsThatAreStillPending) {
  AcquisitionRunning = True16;
  editReference(5);
  world.meter.replies["PMPREF? 1,DB"] = "PMPREF 1,DB,5";
  StopAcquisition();
  EXPECT_EQ(received(), (Transcript{"PMPREF 1,DB,5", "PMPREF? 1,DB"}));
  EXPECT_EQ(PendingEdits.ReferenceLevel, False16);
  EXPECT_EQ(AcquisitionRunning, False16);
  expectMenus({"stopped"});
}

TEST_F(AcquisitionStartStopTest, EditThatIsStoppedInTheSamePassIsSentOnce) {
  Settings.Markers[0].Enabled = True16;
  world.meter.replies["MKNO 1,1"] = "MKNO 1,1,-20,DBM,0.0023";
  const std::map<std::string, Transcript> cases = {
      // Before the pass serves edits, and after it has.
      {"TR1 1", {"TR1 1", "PMPBO 1", "PMPREF 1,DB,5", "PMPREF? 1,DB", "MKNO 1,1"}},
      {"MKNO 1,1", {"TR1 1", "PMPBO 1", "MKNO 1,1", "PMPREF 1,DB,5", "PMPREF? 1,DB"}}};
  for (const auto& [query, expected] : cases) {
    world.meter.received.clear();
    runPass(query, [] {
      editReference(5);
      StopAcquisition();
    });
    EXPECT_EQ(received(), expected) << query;
    EXPECT_EQ(PendingEdits.ReferenceLevel, False16);
  }
}

TEST_F(AcquisitionStartStopTest, StopWithNothingPendingAsksNothing) {
  AcquisitionRunning = True16;
  StopAcquisition();
  EXPECT_TRUE(received().empty());
}

TEST_F(AcquisitionStartStopTest, FreeRunAndDisplayHaveTheirCommands) {
  SetTriggerFreeRun();
  SetMeterDisplayStopped(true);
  SetMeterDisplayStopped(false);
  EXPECT_EQ(received(), (Transcript{"TR3", "SYDISP OFF", "SYDISP ON"}));
}

TEST_F(AcquisitionStartStopTest, FreeRunAndDisplayWaitForTheEndOfAnExchange) {
  for (const bool serial : {false, true}) {
    SCOPED_TRACE(serial ? "RS232" : "GPIB");
    if (serial) world.useSerial();
    world.serial.pieceSize = 50;
    world.meter.received.clear();
    runPass(serial ? "PMPO 1" : "PMPBO 1", [] {
      SetMeterDisplayStopped(true);
      SetTriggerFreeRun();
    });
    EXPECT_EQ(received(),
              (Transcript{"TR1 1", serial ? "PMPO 1" : "PMPBO 1", "SYDISP OFF", "TR3"}));
    EXPECT_EQ(ProfileTrace[199], levels(200)[199]);
    EXPECT_EQ(world.gpib.interruptedQueries, 0);
    EXPECT_EQ(world.serial.interruptedQueries, 0);
  }
}

TEST_F(AcquisitionStartStopTest, StopAndAnExchangeBetweenTheHalvesOfASerialReply) {
  world.useSerial();
  world.serial.pieceSize = textReadout(levels(200)).size() / 2;
  world.meter.replies["PMPREF? 1,DB"] = "PMPREF 1,DB,5";
  ProfileTrace.fill(0);
  runPass("PMPO 1", [] {
    StopAcquisition();
    Settings.ReferenceLevel = 5;
    whenLinkIsFree([] {
      SendParameter(referenceLevelParameter, 5);
      ReadParameter(referenceLevelParameter);
    });
  });
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPO 1", "PMPREF 1,DB,5", "PMPREF? 1,DB"}));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_EQ(ProfileTrace[0], levels(200)[0]);
  EXPECT_EQ(ProfileTrace[199], levels(200)[199]);
  EXPECT_EQ(Settings.ReferenceLevel, 5.0F);
  EXPECT_EQ(Settings.DisplayPoints, 200);
}

}  // namespace
}  // namespace pulsemod::test
