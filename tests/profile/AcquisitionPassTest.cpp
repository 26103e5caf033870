#include "ProfileTest.h"
#include "link/Fault.h"
#include "link/Session.h"
#include "profile/AcquisitionLoop.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileGraph.h"

namespace pulsemod::test {
namespace {

class AcquisitionPassTest : public ProfileTest {
 protected:
  AcquisitionPassTest() {
    world.clock.seconds = 0;  // where the steps of the clock are fine
    AcquisitionRunning = True16;
    answerProfile(levels(200));
  }

  void switchMarkerOn(std::size_t number) {
    Settings.Markers[number - 1].Enabled = True16;
    const std::string text = std::to_string(number);
    world.meter.replies["MKNO 1," + text] = "MKNO 1," + text + ",-20,DBM,0.0023";
  }
  /// The info box is open and the meter answers for `gates` and for the profile.
  void openInfoBox(std::initializer_list<int> gates) {
    view.infoBoxOpen = true;
    world.meter.replies["PMRDO 1"] = "PMRDO 1,1,AVG,-12.3";
    for (const int gate : gates) switchGate(gate, True16);
  }
  void switchGate(int number, Boolean16 on) {
    Settings.Gates[static_cast<std::size_t>(number - 1)].Enabled = on;
    const std::string text = std::to_string(number);
    world.meter.replies["GPNMO 1," + text] = "GPNMO 1,2," + text + ",AVG,-10.5,PK,-5.2";
  }
  static void editReference(float level) {
    Settings.ReferenceLevel = level;
    PendingEdits.ReferenceLevel = True16;
  }
  void expectOneBox(const std::string& text) const {
    EXPECT_EQ(shownBoxes(), (std::vector<std::string>{"Pelmora|" + text + "|exclamation"}));
  }
};

TEST_F(AcquisitionPassTest, ReadsRatesAndDrawsOneProfile) {
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
  EXPECT_EQ(view.timesRateShown, 1);
  EXPECT_EQ(view.picture.timesShown, 1);
  ASSERT_EQ(view.picture.shown.polylines.size(), 1U);
  EXPECT_EQ(view.picture.shown.polylines[0].points[199],
            (PicturePoint{200, static_cast<double>(levels(200)[199])}));
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(AcquisitionPassTest, StepsComeInTheirOrder) {
  switchMarkerOn(3);
  editReference(5);
  std::vector<std::string> order;
  world.meter.onMessage = [&](const std::string& message) {
    order.push_back(message + " after " + std::to_string(view.timesRateShown) + " rates, " +
                    std::to_string(view.picture.timesShown) + " pictures");
  };
  world.meter.replies["PMPREF? 1,DB"] = "PMPREF 1,DB,5";
  AcquireProfile();
  EXPECT_EQ(order,
            (std::vector<std::string>{
                "TR1 1 after 0 rates, 0 pictures", "PMPBO 1 after 0 rates, 0 pictures",
                "PMPREF 1,DB,5 after 0 rates, 0 pictures", "PMPREF? 1,DB after 0 rates, 0 pictures",
                "MKNO 1,3 after 1 rates, 1 pictures"}));
  EXPECT_EQ(view.picture.timesShown, 2);
}

TEST_F(AcquisitionPassTest, MeasurementsComeAfterTheRateAndBeforeTheMarkers) {
  openInfoBox({2, 7});
  view.markersOpen = true;
  switchMarkerOn(3);
  editReference(5);
  world.meter.replies["PMPREF? 1,DB"] = "PMPREF 1,DB,5";
  std::vector<std::string> order;
  world.meter.onMessage = [&](const std::string& message) {
    order.push_back(message + " after " + std::to_string(view.timesRateShown) + " rates, " +
                    std::to_string(view.info.timesShown) + " results, " +
                    std::to_string(view.markers.timesShown) + " markers, " +
                    std::to_string(view.picture.timesShown) + " pictures");
  };
  AcquireProfile();
  EXPECT_EQ(order, (std::vector<std::string>{
                       "TR1 1 after 0 rates, 0 results, 0 markers, 0 pictures",
                       "PMPBO 1 after 0 rates, 0 results, 0 markers, 0 pictures",
                       "PMPREF 1,DB,5 after 0 rates, 0 results, 0 markers, 0 pictures",
                       "PMPREF? 1,DB after 0 rates, 0 results, 0 markers, 0 pictures",
                       "GPNMO 1,2 after 1 rates, 0 results, 0 markers, 1 pictures",
                       "GPNMO 1,7 after 1 rates, 0 results, 0 markers, 1 pictures",
                       // Two results of each of the nine groups.
                       "MKNO 1,3 after 1 rates, 18 results, 0 markers, 1 pictures"}));
  EXPECT_EQ(view.markers.timesShown, 1);
  EXPECT_EQ(view.markers.markers[2].reading, "-20");
  EXPECT_EQ(view.info.results[21].value, "-10.50");
  EXPECT_EQ(view.info.results[22].value, "-5.20");
  EXPECT_EQ(view.picture.timesShown, 2);
}

TEST_F(AcquisitionPassTest, RateLeavesTheMeasurementsOut) {
  openInfoBox({1, 2, 3, 4});
  AcquireProfile();
  EXPECT_EQ(received().size(), 6U);
  EXPECT_EQ(view.rate, "Profile/Second: 50.0");
}

TEST_F(AcquisitionPassTest, NothingIsMeasuredForAClosedInfoBox) {
  openInfoBox({2});
  view.infoBoxOpen = false;
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
  EXPECT_TRUE(view.info.groups.empty());
}

TEST_F(AcquisitionPassTest, MarkersAreReadForAClosedWindow) {
  switchMarkerOn(1);
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", "MKNO 1,1"}));
  EXPECT_TRUE(view.markers.markers.empty());
}

TEST_F(AcquisitionPassTest, MarkersWindowWaitsForAMarkerThatIsOn) {
  view.markersOpen = true;
  Settings.Markers[deltaMarker].Enabled = True16;
  AcquireProfile();
  EXPECT_TRUE(view.markers.enabled.empty());
}

TEST_F(AcquisitionPassTest, GatesSwitchedBetweenPassesChangeWhatIsMeasured) {
  openInfoBox({});
  const auto measured = [this] {
    world.meter.received.clear();
    AcquireProfile();
    return Transcript(received().begin() + 2, received().end());
  };
  EXPECT_EQ(measured(), (Transcript{"PMRDO 1"}));
  EXPECT_EQ(view.info.groups[0], (FakeInfoBox::Group{true, true}));
  EXPECT_EQ(view.info.results[0].value, "-12.30");
  switchGate(2, True16);
  EXPECT_EQ(measured(), (Transcript{"GPNMO 1,2"}));
  EXPECT_EQ(view.info.groups[0], (FakeInfoBox::Group{true, false}));
  EXPECT_EQ(view.info.groups[2], (FakeInfoBox::Group{true, true}));
  EXPECT_EQ(view.info.results[0].value, "-12.30");
  switchGate(2, False16);
  switchGate(8, True16);
  EXPECT_EQ(measured(), (Transcript{"GPNMO 1,8"}));
  EXPECT_EQ(view.info.groups[2], (FakeInfoBox::Group{true, false}));
  EXPECT_EQ(view.info.groups[8], (FakeInfoBox::Group{true, true}));
  switchGate(8, False16);
  EXPECT_EQ(measured(), (Transcript{"PMRDO 1"}));
  EXPECT_EQ(view.info.groups[8], (FakeInfoBox::Group{false, false}));
  view.infoBoxOpen = false;
  EXPECT_EQ(measured(), Transcript{});
}

TEST_F(AcquisitionPassTest, InfoBoxClosedInTheMiddleOfTheQueriesGetsNoMore) {
  openInfoBox({1, 2, 3});
  switchMarkerOn(1);
  duringReplyTo("GPNMO 1,2", [this] { view.infoBoxOpen = false; });
  AcquireProfile();
  EXPECT_EQ(received(),
            (Transcript{"TR1 1", "PMPBO 1", "GPNMO 1,1", "GPNMO 1,2", "GPNMO 1,3", "MKNO 1,1"}));
  EXPECT_EQ(view.info.timesShown, 0);
  EXPECT_EQ(view.picture.timesShown, 1);
  AcquireProfile();
  EXPECT_EQ(timesReceived("GPNMO 1,1"), 1);
}

TEST_F(AcquisitionPassTest, MarkersWindowClosedInTheMiddleOfTheQueriesGetsNoMore) {
  view.markersOpen = true;
  switchMarkerOn(1);
  switchMarkerOn(2);
  duringReplyTo("MKNO 1,1", [this] { view.markersOpen = false; });
  AcquireProfile();
  EXPECT_EQ(timesReceived("MKNO 1,2"), 1);
  EXPECT_EQ(view.markers.timesShown, 0);
  EXPECT_EQ(view.picture.timesShown, 1);
}

TEST_F(AcquisitionPassTest, FailedReadMeasuresNothing) {
  for (const char* unanswered : {"PMPBO 1", "TR1 1"}) {
    openInfoBox({2});
    view.markersOpen = true;
    switchMarkerOn(1);
    world.meter.replies.erase(unanswered);
    AcquireProfile();
    EXPECT_EQ(timesReceived("GPNMO 1,2"), 0);
    EXPECT_EQ(timesReceived("PMRDO 1"), 0);
    EXPECT_EQ(timesReceived("MKNO 1,1"), 0);
    EXPECT_TRUE(view.info.groups.empty());
    EXPECT_TRUE(view.markers.enabled.empty());
  }
}

TEST_F(AcquisitionPassTest, UnansweredMeasurementShowsTheOldResultsAndThePassGoesOn) {
  openInfoBox({2});
  switchMarkerOn(1);
  AcquireProfile();
  world.meter.replies.erase("GPNMO 1,2");
  world.meter.received.clear();
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", "GPNMO 1,2", "MKNO 1,1"}));
  EXPECT_EQ(view.info.results[6].value, "-10.50");
  EXPECT_EQ(view.picture.timesShown, 2);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(AcquisitionPassTest, MarkersAreReadBeforeTheyAreDrawn) {
  switchMarkerOn(1);
  AcquireProfile();
  ASSERT_EQ(view.picture.shown.texts.size(), 1U);
  EXPECT_EQ(view.picture.shown.texts[0].topLeft, (PicturePoint{100, -24}));
}

TEST_F(AcquisitionPassTest, DeltaMarkerAloneAsksForNothing) {
  Settings.Markers[deltaMarker].Enabled = True16;
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
  ASSERT_EQ(view.picture.shown.texts.size(), 1U);
  EXPECT_EQ(view.picture.shown.texts[0].text, "D");
}

TEST_F(AcquisitionPassTest, EventsRunBeforeTheProfileAndAfterTheDrawing) {
  std::vector<int> picturesAtEvents;
  world.events.always = [&] { picturesAtEvents.push_back(view.picture.timesShown); };
  AcquireProfile();
  // At the top, in each of the two exchanges, and at the end.
  EXPECT_EQ(picturesAtEvents, (std::vector<int>{0, 0, 0, 1}));
}

TEST_F(AcquisitionPassTest, FailedReadStillCarriesOutEditsAndSkipsTheRest) {
  for (const char* unanswered : {"TR1 1", "PMPBO 1"}) {
    SCOPED_TRACE(unanswered);
    answerProfile(levels(200));
    world.meter.replies.erase(unanswered);
    world.meter.received.clear();
    switchMarkerOn(1);
    editReference(5);
    AcquireProfile();
    Transcript expected = {"TR1 1"};
    if (std::string(unanswered) != "TR1 1") expected.emplace_back("PMPBO 1");
    expected.insert(expected.end(), {"PMPREF 1,DB,5", "PMPREF? 1,DB"});
    EXPECT_EQ(received(), expected);
    EXPECT_EQ(view.timesRateShown, 0);
    EXPECT_EQ(view.rate, "Profile/Second: 0.00");
    EXPECT_EQ(view.picture.timesShown, 0);
    EXPECT_TRUE(world.dialogs.messages.empty());
    EXPECT_EQ(AcquisitionRunning, True16);
  }
}

TEST_F(AcquisitionPassTest, RejectedProfileSkipsTheRestInSilence) {
  world.meter.replies["PMPBO 1"] = block(blockData(levels(401)));
  switchMarkerOn(1);
  AcquireProfile();
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", "TR1 1", "PMPBO 1"}));
  EXPECT_EQ(view.timesRateShown, 0);
  EXPECT_EQ(view.picture.timesShown, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(AcquisitionPassTest, RateIsOneOverTheTimeUpToTheReadouts) {
  // Each query takes the meter 10 ms.
  AcquireProfile();
  EXPECT_EQ(view.rate, "Profile/Second: 50.0");
  EXPECT_EQ(view.rateToolTip, "Update speed of the GPIB, not the update speed of this display");
}

TEST_F(AcquisitionPassTest, RateLeavesTheMarkersOut) {
  for (const std::size_t number : {1U, 2U, 3U, 4U}) switchMarkerOn(number);
  AcquireProfile();
  EXPECT_EQ(received().size(), 6U);
  EXPECT_EQ(view.rate, "Profile/Second: 50.0");
}

TEST_F(AcquisitionPassTest, RateIncludesPendingEdits) {
  editReference(5);
  world.meter.replies["PMPREF? 1,DB"] = "PMPREF 1,DB,5";
  AcquireProfile();
  EXPECT_EQ(view.rate, "Profile/Second: 33.33");
}

TEST_F(AcquisitionPassTest, RateOfASlowMeterHasOneDecimalAtLeast) {
  const std::vector<std::pair<double, std::string>> cases = {
      {0.48, "2.0"}, {0.38, "2.5"}, {0.78, "1.25"}, {19.98, "0.05"}, {999.98, "0.0"}};
  for (const auto& [delay, text] : cases) {
    world.clock.seconds = 0;
    world.meter.onMessage = [this, delay = delay](const std::string& message) {
      if (message == "TR1 1") world.clock.advance(delay);
    };
    AcquireProfile();
    EXPECT_EQ(view.rate, "Profile/Second: " + text);
  }
}

TEST_F(AcquisitionPassTest, PassWithinOneStepOfTheClockKeepsTheRate) {
  AcquireProfile();
  ASSERT_EQ(view.rate, "Profile/Second: 50.0");
  world.useSerial();  // here the fake meter takes no time at all
  AcquireProfile();
  EXPECT_EQ(received().back(), "PMPO 1");
  EXPECT_EQ(view.rate, "Profile/Second: 50.0");
  EXPECT_EQ(view.timesRateShown, 1);
  EXPECT_EQ(view.picture.timesShown, 2);
}

TEST_F(AcquisitionPassTest, RateAcrossMidnightIsPositive) {
  world.clock.seconds = 86399.75;
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "TR1 1") world.clock.advance(0.48);
  };
  AcquireProfile();
  EXPECT_LT(world.clock.seconds, 1.0);
  // Half a second, on a clock whose step is 7.8 ms by then.
  EXPECT_EQ(view.rate, "Profile/Second: 2.0");
}

TEST_F(AcquisitionPassTest, StoppedPassWaitsWithoutWork) {
  AcquisitionRunning = False16;
  PendingEdits.CaptureTime = True16;
  EXPECT_THROW(AcquireProfile(), WaitsForEver);
  EXPECT_EQ(world.events.waits, 1);
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(view.picture.calls.empty());
  EXPECT_TRUE(world.clock.sleeps.empty());
}

TEST_F(AcquisitionPassTest, StoppedPassEndsAfterOneEvent) {
  AcquisitionRunning = False16;
  int ran = 0;
  world.events.post([&ran] { ++ran; });
  AcquireProfile();
  EXPECT_EQ(ran, 1);
  EXPECT_TRUE(received().empty());
}

TEST_F(AcquisitionPassTest, EventThatSetsTheFlagStartsInTheSamePass) {
  AcquisitionRunning = False16;
  world.events.post([] { AcquisitionRunning = True16; });
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
}

TEST_F(AcquisitionPassTest, RunningPassNeverWaitsForAnEvent) {
  AcquireProfile();
  EXPECT_EQ(world.events.waits, 0);
}

TEST_F(AcquisitionPassTest, EventThatClearsTheFlagAtTheTopRequestsNothing) {
  world.events.post([] { AcquisitionRunning = False16; });
  AcquireProfile();
  EXPECT_TRUE(received().empty());
}

TEST_F(AcquisitionPassTest, FaultIsToldOnceAndStopsTheAcquisition) {
  switchMarkerOn(1);
  Settings.CaptureTime = 0;
  AcquireProfile();
  expectOneBox("Division by zero: the capture time is 0");
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(view.menus, (std::vector<std::string>{"stopped"}));
  EXPECT_THROW(AcquireProfile(), WaitsForEver);
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", "MKNO 1,1"}));
  expectOneBox("Division by zero: the capture time is 0");
}

TEST_F(AcquisitionPassTest, EditThatLeavesNoTimeAxisIsToldOnceAlthoughAMarkerIsOn) {
  switchMarkerOn(1);
  world.meter.replies["TRCAPT? 1,PMOD"] = "TRCAPT 1,PMOD,0";
  PendingEdits.CaptureTime = True16;
  AcquireProfile();
  expectOneBox("Division by zero: the capture time is 0");
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(AcquisitionPassTest, MarkerTooFarAwayForTheGraphIsToldOnceAndStopsTheAcquisition) {
  switchMarkerOn(1);
  world.meter.replies["MKNO 1,1"] = "MKNO 1,1,-34.5,DBM,3.3E38";
  AcquireProfile();
  expectOneBox("Overflow");
  EXPECT_EQ(AcquisitionRunning, False16);

  // Drawn again as it is, and started again, it is told no more.
  RefreshPicture();
  AcquisitionRunning = True16;
  AcquireProfile();
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
}

TEST_F(AcquisitionPassTest, DrawingFaultIsToldOnceAndStopsTheAcquisition) {
  AcquireProfile();
  Settings.DisplayPoints = 500;
  AcquireProfile();
  expectOneBox("Subscript out of range: a profile has 1 to 400 points, not 500");
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(view.menus, (std::vector<std::string>{"stopped"}));
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_EQ(view.picture.shown.scale.width, 200);

  // Started again as it is, it stops again without another box.
  AcquisitionRunning = True16;
  AcquireProfile();
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
}

TEST_F(AcquisitionPassTest, ProgramEndInAnEventLeavesTheLoopAtOnce) {
  int captures = 0;
  world.meter.onMessage = [&](const std::string& message) {
    if (message == "TR1 1" && ++captures == 3) world.events.post([] { EndSession(); });
  };
  EXPECT_THROW(RunAcquisitionLoop(), ProgramEnded);
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", "TR1 1", "PMPBO 1", "TR1 1"}));
  EXPECT_EQ(world.gpib.timesCalled("ibonl 7 0"), 1);
  EXPECT_EQ(view.picture.timesShown, 2);
}

TEST_F(AcquisitionPassTest, OnlyAFailedReadLetsTheNextPassWaitTenMilliseconds) {
  world.meter.replies.erase("PMPBO 1");
  AcquireProfile();
  EXPECT_TRUE(world.events.deadlines.empty());
  answerProfile(levels(200));
  AcquireProfile();
  EXPECT_EQ(world.events.deadlines, (std::vector<int>{10}));
  EXPECT_EQ(view.picture.timesShown, 1);
  AcquireProfile();
  EXPECT_EQ(world.events.deadlines, (std::vector<int>{10}));
}

TEST_F(AcquisitionPassTest, SerialPortLostAtTheTriggerIsToldOnceAndStopsTheAcquisition) {
  world.useSerial();
  world.loseSerialAt("TR1 1");
  AcquireProfile();
  expectOneBox("The serial port was lost.");
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(view.menus, (std::vector<std::string>{"stopped"}));
  EXPECT_EQ(received(), (Transcript{"TR1 1"}));
}

TEST_F(AcquisitionPassTest, SerialPortLostInAPassEndsTheProgramWithoutABox) {
  world.useSerial();
  switchMarkerOn(1);
  editReference(5);
  world.loseSerialAt("PMPO 1");
  EXPECT_THROW(AcquireProfile(), ProgramEnded);
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPO 1"}));
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(view.picture.timesShown, 0);
}

TEST_F(AcquisitionPassTest, SerialPortLostAtAnEditLeavesTheProfileOnTheScreen) {
  world.useSerial();
  openInfoBox({2});
  switchMarkerOn(1);
  editReference(5);
  world.loseSerialAt("PMPREF 1,DB,5");
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPO 1", "PMPREF 1,DB,5"}));
  expectOneBox("The serial port was lost.");
  EXPECT_EQ(view.menus, (std::vector<std::string>{"stopped"}));
  EXPECT_EQ(view.timesRateShown, 0);
  EXPECT_TRUE(view.info.results.empty());
  ASSERT_EQ(view.picture.shown.polylines.size(), 1U);
  EXPECT_EQ(view.picture.shown.polylines[0].points[199],
            (PicturePoint{200, static_cast<double>(levels(200)[199])}));
}

TEST_F(AcquisitionPassTest, SerialPassSetsThePointsThatItDraws) {
  world.useSerial();
  answerProfile(levels(400));
  AcquireProfile();
  EXPECT_EQ(Settings.DisplayPoints, 400);
  EXPECT_EQ(view.picture.shown.scale.width, 400);
  ASSERT_EQ(view.picture.shown.polylines.size(), 1U);
  EXPECT_EQ(view.picture.shown.polylines[0].points.size(), 400U);
}

}  // namespace
}  // namespace pulsemod::test
