#include <cmath>
#include <sstream>

#include "Edges.h"
#include "ProfileBench.h"

namespace endtoend {
namespace {

const std::string dialog = "frmProperties";

/// A control of the dialog, what is typed into the box that its click opens, and what the meter is
/// told.
struct Use {
  std::string control;
  Texts told;
  std::string prompt = {};
  std::string offered = {};
  std::string typed = {};
};

/// "name_index".
std::string element(const std::string& name, int index) {
  return name + "_" + std::to_string(index);
}

class Properties : public ProfileBench {
 protected:
  void openDialog() {
    hands().trigger("frmMain/menuProperties");
    hands().waitVisible(dialog);
  }
  /// Turns to a page by its key, until a control of it is on the screen.
  void turnTo(const std::string& keys, const std::string& control) {
    hands().key(dialog, keys);
    hands().waitVisible(in(control));
  }
  static std::string in(const std::string& control) { return dialog + "/" + control; }
  std::string text(const std::string& control) { return hands().get(in(control), "text"); }
  bool isChecked(const std::string& control) { return hands().is(in(control), "checked"); }

  void use(const Use& used) {
    SCOPED_TRACE(used.control);
    hands().click(in(used.control));
    if (used.typed.empty()) return;
    hands().waitVisible("inputBox");
    EXPECT_EQ(hands().get("inputBox", "windowTitle"), "Properties");
    EXPECT_EQ(hands().get("inputBox/QLabel", "text"), used.prompt);
    EXPECT_EQ(hands().get("inputBox/QLineEdit", "text"), used.offered);
    hands().type("inputBox/QLineEdit", used.typed);
    hands().key("inputBox", "Return");
    hands().waitGone("inputBox");
    hands().waitUntil(in(used.control), "text", used.typed);
  }

  /// A click on the button, and the whole exchange up to its last message.
  void exchangeAll(const std::string& button, const std::string& last) {
    const std::size_t before = countMessages(transcript(), last);
    hands().click(in(button));
    awaitMessages(last, before + 1);
    hands().waitGone("frmPleaseWait");
  }

  /// Each control of a page once, in the order given. The meter gets exactly theirs.
  void useAll(const std::vector<Use>& uses) {
    const std::size_t before = told().size();
    Texts expected;
    for (const Use& used : uses) {
      use(used);
      expected = expected + used.told;
    }
    EXPECT_EQ(toldUntilMark(before), expected);
  }
};
ON_BOTH_LINKS(Properties);

TEST_P(Properties, OpeningTurningPagesAndClosingTellTheMeterNothing) {
  startLoaded(GetParam());
  const std::size_t before = told().size();
  for (int time = 0; time < 2; ++time) {
    openDialog();
    EXPECT_EQ(hands().get(dialog, "windowTitle"), "Properties");
    turnTo("Alt+G", "chkRepeat");
    turnTo("Alt+M", "cmdMarker");
    turnTo("Alt+E", "optMeasurement_0");
    turnTo("Alt+D", "optDisplayPoints_0");
    turnTo("Alt+C", "chkAverage");
    hands().close(dialog);
    hands().waitGone(dialog);
  }
  EXPECT_EQ(toldUntilMark(before), Texts{});
}

TEST_P(Properties, ShowWhatTheMeterWasSetTo) {
  startLoaded(GetParam());
  openDialog();
  EXPECT_EQ(text("Label5"),
            "Channel is the current active channel (1) on the power meter. Press 'Load from Power "
            "meter' button to change.");
  EXPECT_EQ(text("chkAverage"), "Average (16)");
  EXPECT_EQ(text("txtGateInfo_0"), "50us");
  EXPECT_EQ(text("txtGateInfo_15"), "1.25ms");
  EXPECT_EQ(text("txtRepeatCount"), "2");
  EXPECT_EQ(text("txtRepeatOffset"), "1.2ms");
  EXPECT_EQ(text("txtMarker_3"), "1.5ms");
  EXPECT_TRUE(isChecked("chkEnabled_0"));
  EXPECT_FALSE(isChecked("chkEnabled_1"));
  EXPECT_TRUE(isChecked("chkMaker_2"));
  EXPECT_FALSE(isChecked("chkMaker_3"));
  EXPECT_TRUE(isChecked("optDisplayPoints_1"));
}

TEST_P(Properties, EachControlOfTheChannelPageTellsTheMeterItsOwn) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+C", "chkAverage");
  useAll({{"chkAverage", {"PMAVGS 1,ON"}},
          {"chkAverage", {"PMAVGS 1,OFF"}},
          {"scrollAVG", {"PMAVGN 1, 26"}},
          {"optInputConfig_1", {"CHCFG 1, B"}},
          {"optInputConfig_2", {"CHCFG 1, A-B"}},
          {"optInputConfig_3", {"CHCFG 1, B-A"}},
          {"optInputConfig_4", {"CHCFG 1, A/B"}},
          {"optInputConfig_5", {"CHCFG 1, B/A"}},
          {"optInputConfig_0", {"CHCFG 1, A"}}});
  EXPECT_EQ(text("chkAverage"), "Average (26)");
}

/// Nothing is said at the choice; what follows bears the new channel.
TEST_P(Properties, ChannelIsChosenWithoutAWord) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+C", "chkAverage");
  useAll({{"optChannel_2", {}}});
  EXPECT_FALSE(hands().is(in("chkAverage"), "enabled"));
  EXPECT_FALSE(hands().is(in("optInputConfig_0"), "enabled"));
  useAll({{"optChannel_1", {}}, {"chkAverage", {"PMAVGS 2,ON"}}, {"optChannel_0", {}}});
  EXPECT_FALSE(isChecked("chkAverage"));
  useAll({{"optChannel_1", {}}});
  EXPECT_TRUE(isChecked("chkAverage"));
}

TEST_P(Properties, DragOfTheSliderTellsTheMeterWhereItEnds) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+C", "chkAverage");
  const std::size_t before = told().size();
  // The handle is at the left end, for 16 of 1000.
  constexpr int handle = 8;
  const int middle = std::stoi(hands().get(in("scrollAVG"), "height")) / 2;
  hands().mouse("press", in("scrollAVG"), handle, middle);
  for (int step = 1; step <= 20; ++step) {
    hands().mouse("move", in("scrollAVG"), handle + 5 * step, middle);
  }
  const std::string shown = text("chkAverage");
  EXPECT_NE(shown, "Average (16)");
  EXPECT_EQ(toldUntilMark(before), Texts{});
  hands().mouse("release", in("scrollAVG"), handle + 100, middle);
  const std::string count = shown.substr(9, shown.size() - 10);
  EXPECT_EQ(toldUntilMark(before + 1), (Texts{"PMAVGN 1, " + count}));
  EXPECT_EQ(text("chkAverage"), shown);
}

TEST_P(Properties, EachControlOfTheGatesPageTellsTheMeterItsOwn) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+G", "chkRepeat");
  useAll({{"chkDisplayGates", {"GPHIDES 1, ON"}},
          {"chkDisplayGates", {"GPHIDES 1, OFF"}},
          {"chkEnabled_0", {"GPGATS 1, 1, OFF"}},
          {"chkEnabled_2", {"GPGATS 1, 3, ON", "GPACTN 1, 3"}},
          {"chkEnabled_1", {"GPGATS 1, 2, ON"}},
          {"chkEnabled_3", {"GPGATS 1, 4, ON"}},
          {"chkEnabled_0", {"GPGATS 1, 1, ON"}}});
  EXPECT_TRUE(isChecked("optActiveGate_2"));
  useAll({{"optActiveGate_0", {"GPACTN 1,1"}},
          {"optActiveGate_1", {"GPACTN 1,2"}},
          {"optActiveGate_2", {"GPACTN 1,3"}},
          {"optActiveGate_3", {"GPACTN 1,4"}},
          {"lblFence_0", {"GPFENS 1, 1, OFF"}},
          {"lblFence_1", {"GPFENS 1, 2, ON"}},
          {"lblFence_2", {"GPFENS 1, 3, ON"}},
          {"lblFence_3", {"GPFENS 1, 4, ON"}},
          {"lblFence_0", {"GPFENS 1, 1, ON"}}});
  EXPECT_EQ(hands().get(in("lblFence_0"), "toolTip"),
            "Enabled, Click on the FENCE text to disable");
}

TEST_P(Properties, EachTimeOfAGateTellsTheMeterItsOwn) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+G", "chkRepeat");
  const std::vector<std::vector<const char*>> offered = {{"50us", "550us", "220us", "330us"},
                                                         {"1.25ms", "1.75ms", "1.4ms", "1.5ms"},
                                                         {"700us", "1.1ms", "800us", "900us"},
                                                         {"100us", "1.7ms", "550us", "1.25ms"}};
  struct Time {
    const char* mnemonic;
    const char* prompt[2];
    const char* typed;
    const char* number;
  };
  constexpr Time times[] = {{"GPTIMST", {"Enter Gate ", " Start Time"}, "60us", "6E-05"},
                            {"GPTIMSP", {"Enter Gate ", " Stop Time"}, "1.9ms", "0.0019"},
                            {"GPFENST", {"Enter Fence ", " Start Time"}, "200us", "0.0002"},
                            {"GPFENSP", {"Enter Fence ", " Stop Time"}, "1.2ms", "0.0012"}};
  std::vector<Use> uses;
  for (int gate = 0; gate < 4; ++gate) {
    const std::string number = std::to_string(gate + 1);
    for (int place = 0; place < 4; ++place) {
      const Time& time = times[place];
      uses.push_back({element("txtGateInfo", 4 * gate + place),
                      {std::string(time.mnemonic) + " 1, " + number + ", " + time.number},
                      time.prompt[0] + number + time.prompt[1],
                      offered[static_cast<std::size_t>(gate)][static_cast<std::size_t>(place)],
                      time.typed});
    }
  }
  useAll(uses);
}

TEST_P(Properties, ATimeOutsideItsLimitIsRefused) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+G", "chkRepeat");
  const std::size_t before = told().size();
  const std::vector<std::pair<Use, const char*>> refused = {
      {{"txtGateInfo_0", {}, "", "50us", "-201us"},
       "Gate time must be greater than the trigger delay time"},
      {{"txtGateInfo_1", {}, "", "550us", "-201us"},
       "Gate time must be greater than the trigger delay time"},
      {{"txtGateInfo_2", {}, "", "220us", "49us"},
       "Fence time must be greater than the gate start time"},
      {{"txtGateInfo_3", {}, "", "330us", "551us"},
       "Fence time must be less than the gate stop time"}};
  for (const auto& [used, message] : refused) {
    SCOPED_TRACE(used.control);
    hands().click(in(used.control));
    hands().waitVisible("inputBox");
    hands().type("inputBox/QLineEdit", used.typed);
    hands().key("inputBox", "Return");
    const Box box = shownBox(hands());
    EXPECT_EQ(box.title, "Invalid Gate time");
    EXPECT_EQ(box.text, message);
    EXPECT_EQ(box.icon, "Information");
    hands().key("messageBox", "Return");
    hands().waitGone("messageBox");
    EXPECT_EQ(text(used.control), used.offered);
  }
  EXPECT_EQ(toldUntilMark(before), Texts{});
}

TEST_P(Properties, TheRepeatAndItsCountTellTheMeterTheirOwn) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+G", "chkRepeat");
  useAll({{"chkRepeat", {"GP1REPS 1, ON"}}});
  EXPECT_FALSE(hands().is(in("chkEnabled_0"), "enabled"));
  EXPECT_TRUE(isChecked("chkEnabled_1"));
  EXPECT_FALSE(hands().is(in("chkEnabled_4"), "visible"));
  std::size_t before = told().size();
  hands().type(in("txtRepeatCount"), "99");
  EXPECT_EQ(toldUntilMark(before), Texts{});
  before = told().size();
  hands().type(in("txtRepeatCount"), "99");
  hands().key(in("txtRepeatCount"), "Return");
  hands().waitUntil(in("txtRepeatCount"), "text", "8");
  EXPECT_EQ(toldUntilMark(before), Texts{"GP1REPN 1,8"});
  EXPECT_TRUE(hands().is(in("chkEnabled_7"), "visible"));
  useAll({{"txtRepeatOffset", {"GP1REPT 1,0.0003"}, "Enter Repeat Offset", "1.2ms", "300us"}});
  EXPECT_EQ(text("txtGateInfo_4"), "350us");
  EXPECT_EQ(text("txtGateInfo_28"), "2.15ms");
  useAll({{"chkRepeat", {"GP1REPS 1, OFF"}}});
  EXPECT_FALSE(hands().is(in("chkEnabled_4"), "visible"));
  EXPECT_TRUE(hands().is(in("chkEnabled_0"), "enabled"));
}

TEST_P(Properties, EachControlOfTheMarkersPageTellsTheMeterItsOwn) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+M", "cmdMarker");
  useAll({{"chkMaker_0", {"MKSTATE 1,1,OFF"}},
          {"chkMaker_1", {"MKSTATE 1,2,OFF"}},
          {"chkMaker_2", {"MKSTATE 1,3,OFF"}},
          {"chkMaker_3", {"MKSTATE 1,4,ON"}},
          {"chkMaker_4", {"MKDELTS 1,ON", "MKDPOS 1,0.0005"}},
          {"chkMaker_4", {"MKDELTS 1,OFF", "MKDPOS 1,0.0005"}},
          {"chkMaker_0", {"MKSTATE 1,1,ON"}}});
  useAll({{"txtMarker_0",
           {"MKPOS 1,1,0.0011", "MKNO 1,1"},
           "Enter Marker 1 Position",
           "100us",
           "1.1ms"},
          {"txtMarker_1",
           {"MKPOS 1,2,0.0012", "MKNO 1,2"},
           "Enter Marker 2 Position",
           "500us",
           "1.2ms"},
          {"txtMarker_2",
           {"MKPOS 1,3,0.0013", "MKNO 1,3"},
           "Enter Marker 3 Position",
           "900us",
           "1.3ms"},
          {"txtMarker_3",
           {"MKPOS 1,4,0.0014", "MKNO 1,4"},
           "Enter Marker 4 Position",
           "1.5ms",
           "1.4ms"},
          {"txtMarker_4",
           {"MKDPOS 1,0.0006", "MKDO 1"},
           "Enter Marker 5 Position",
           "500us",
           "600us"}});
  useAll({{"optActiveMarker_1", {"MKACTN 1, 2"}},
          {"optActiveMarker_2", {"MKACTN 1, 3"}},
          {"optActiveMarker_3", {"MKACTN 1, 4"}},
          {"optActiveMarker_0", {"MKACTN 1, 1"}},
          {"optDeltaMeas_1", {"MKDMEAS 1, PDIFF"}},
          {"optDeltaMeas_0", {"MKDMEAS 1, PAVG"}}});
}

TEST_P(Properties, ANewPositionBringsTheMarkersReadingToItsWindow) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+M", "cmdMarker");
  useAll({{"cmdMarker", {}}});
  hands().waitVisible("frmMarkers");
  useAll({{"txtMarker_1",
           {"MKPOS 1,2,0.0012", "MKNO 1,2"},
           "Enter Marker 2 Position",
           "500us",
           "1.2ms"}});
  std::istringstream reply(lastReplyTo("MKNO 1,2"));
  std::string head;
  std::string reading;
  std::getline(reply, head, ',');
  std::getline(reply, head, ',');
  std::getline(reply, reading, ',');
  ASSERT_FALSE(reading.empty());
  EXPECT_DOUBLE_EQ(std::stod(hands().get("frmMarkers/lblMarkerPow_1", "text")), std::stod(reading));
  EXPECT_EQ(hands().get("frmMarkers/lblMarkerTime_1", "text"), "1.2ms");
}

TEST_P(Properties, MeasurementAndPointsTellTheMeterTheirOwn) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+E", "optMeasurement_0");
  useAll({{"optMeasurement_1", {"PMMEAS 1,2"}},
          {"optMeasurement_2", {"PMMEAS 1,3"}},
          {"optMeasurement_3", {"PMMEAS 1,4"}},
          {"optMeasurement_0", {"PMMEAS 1,1"}}});
  turnTo("Alt+D", "optDisplayPoints_0");
  useAll({{"optDisplayPoints_0", {"SYDRES 200"}}, {"optDisplayPoints_1", {"SYDRES 400"}}});
}

TEST_P(Properties, ADragOnTheGraphMovesTheTimeInTheDialog) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+G", "chkRepeat");
  std::istringstream place(hands().get(robot::profileGraph, "place"));
  int skipped = 0;
  int width = 0;
  place >> skipped >> skipped >> width;
  // The graph reaches from -200 us over 2 ms; its left edge is the first of 400 points.
  const auto pixelOf = [width](double seconds) {
    return static_cast<int>(std::lround(((seconds + 2e-4) / 2e-3 * 400 - 1) / 400 * width));
  };
  hands().mouse("move", robot::profileGraph, pixelOf(5e-5), 40);
  hands().waitVisible("lblgate");
  hands().mouse("press", robot::profileGraph, pixelOf(5e-5), 40);
  for (const double to : {8e-5, 1.2e-4, 1.6e-4}) {
    hands().mouse("move", robot::profileGraph, pixelOf(to), 40);
    const EdgeLabel label = readEdgeLabel(hands().get("lblgate", "text"));
    EXPECT_EQ(label.edge, "Gate 1 Start");
    EXPECT_NE(label.time, "50us");
    EXPECT_EQ(text("txtGateInfo_0"), label.time);
  }
  const std::string left = text("txtGateInfo_0");
  const std::size_t before = told().size();
  hands().mouse("release", robot::profileGraph, pixelOf(1.6e-4), 40);
  const Texts written = toldUntilMark(before);
  ASSERT_EQ(written.size(), 3U);
  const auto command = edgeCommand(written[2]);
  ASSERT_TRUE(command.has_value());
  EXPECT_TRUE(showsTime(left, numberOf(command->second))) << left << " but " << written[2];
  EXPECT_EQ(text("txtGateInfo_0"), left);
}

TEST_P(Properties, TheWholeConfigurationIsReadAndShown) {
  startLoaded(GetParam());
  openDialog();
  turnTo("Alt+G", "chkRepeat");
  useAll({{"txtGateInfo_0", {"GPTIMST 1, 1, 6E-05"}, "Enter Gate 1 Start Time", "50us", "60us"}});
  const std::size_t before = told().size();
  exchangeAll("cmdLoadPM", configurationTranscript().back());
  EXPECT_EQ(toldUntilMark(before), configurationTranscript());
  EXPECT_EQ(text("txtGateInfo_0"), "60us");
  turnTo("Alt+C", "chkAverage");
  EXPECT_EQ(text("Label5"),
            "Channel is the current active channel (1) on the power meter. Press 'Load from Power "
            "meter' button to change.");
}

TEST_P(Properties, TheWholeConfigurationIsSent) {
  startOn(GetParam());
  hands().click("frmConfigureQuestion/cmdConfig");
  hands().waitVisible("frmMain");
  openDialog();
  for (int time = 0; time < 2; ++time) {
    const std::size_t before = told().size();
    exchangeAll("cmdSavePM", defaultsTranscript().back());
    EXPECT_EQ(toldUntilMark(before), defaultsTranscript());
  }
  EXPECT_EQ(windows().find("messageBox"), std::string::npos);
}

TEST_P(Properties, StartHidesTheDialogAndKeepsItShut) {
  startLoaded(GetParam());
  openDialog();
  runProfiles(1);
  hands().waitGone(dialog);
  EXPECT_FALSE(hands().is("frmMain/menuProperties", "enabled"));
  awaitMoreProfiles(2);
  EXPECT_FALSE(hands().is(dialog, "visible"));
  stopProfiles();
  EXPECT_TRUE(hands().is("frmMain/menuProperties", "enabled"));
  const std::size_t before = told().size();
  openDialog();
  EXPECT_EQ(toldUntilMark(before), Texts{});
}

}  // namespace
}  // namespace endtoend
