#include "ProfileTest.h"
#include "profile/Readouts.h"

namespace pulsemod::test {
namespace {

constexpr float old = -77;

class GateMeasurementsTest : public ProfileTest {
 protected:
  GateMeasurementsTest() { GateReadings.fill(old); }

  static void switchOn(const std::vector<int>& gates) {
    for (const int gate : gates)
      Settings.Gates[static_cast<std::size_t>(gate - 1)].Enabled = True16;
  }
  void readProfile(const std::string& reply) {
    world.meter.replies["PMRDO 1"] = reply;
    ReadGateMeasurements(GateMeasurementMode::profile);
  }
  void readGate(int gate, const std::string& reply) {
    switchOn({gate});
    world.meter.replies["GPNMO 1," + std::to_string(gate)] = reply;
    ReadGateMeasurements(GateMeasurementMode::gates);
  }
  /// The elements of `group` are `expected`, and no other was touched.
  static void expectOnlyGroup(std::size_t group, const std::array<float, 3>& expected) {
    for (std::size_t element = 0; element < GateReadings.size(); ++element) {
      const bool inGroup = element / resultsPerGroup == group;
      EXPECT_EQ(GateReadings[element], inGroup ? expected[element % resultsPerGroup] : old)
          << "element " << element;
    }
  }
};

TEST_F(GateMeasurementsTest, ProfileIsOneQuery) {
  switchOn({1, 2});
  readProfile("PMRDO 1,1,AVG,-12.3");
  EXPECT_EQ(received(), (Transcript{"PMRDO 1"}));
}

TEST_F(GateMeasurementsTest, GatesAreOneQueryForEachThatIsOn) {
  switchOn({2, 4, 5, 8});
  for (const auto mode : {GateMeasurementMode::gates, GateMeasurementMode::gatesAgain}) {
    world.meter.received.clear();
    ReadGateMeasurements(mode);
    EXPECT_EQ(received(), (Transcript{"GPNMO 1,2", "GPNMO 1,4", "GPNMO 1,5", "GPNMO 1,8"}));
  }
}

TEST_F(GateMeasurementsTest, NoGateThatIsOnIsNoQuery) {
  for (const auto mode : {GateMeasurementMode::gates, GateMeasurementMode::gatesAgain}) {
    ReadGateMeasurements(mode);
  }
  EXPECT_TRUE(received().empty());
}

TEST_F(GateMeasurementsTest, QueriesCarryTheActiveChannel) {
  Settings.ActiveChannel = 3;
  switchOn({2});
  world.meter.replies["PMRDO 1&2"] = "PMRDO 1&2,1,AVG,-1.5";
  world.meter.replies["GPNMO 1&2,2"] = "GPNMO 1&2,1,2,AVG,-2.5";
  ReadGateMeasurements(GateMeasurementMode::profile);
  ReadGateMeasurements(GateMeasurementMode::gates);
  EXPECT_EQ(received(), (Transcript{"PMRDO 1&2", "GPNMO 1&2,2"}));
  EXPECT_EQ(GateReadings[0], -1.5F);
  EXPECT_EQ(GateReadings[6], -2.5F);
}

/// A measurement type with what the meter answers and what is stored of it.
struct TypeCase {
  std::int32_t type;
  const char* results;
  std::array<float, 3> stored;
};

const std::vector<TypeCase> types = {
    {1, "AVG,-10.5", {-10.5F, old, old}},
    {2, "AVG,-10.5,PK,-5.2", {-10.5F, -5.2F, old}},
    {3, "AVG,-10.5,PK,-5.2,CR,5.3", {-10.5F, -5.2F, 5.3F}},
    {4, "AVG,-10.5,MIN,-60.25,MAX,-5.2", {-10.5F, -60.25F, -5.2F}},
};

TEST_F(GateMeasurementsTest, ProfileReplyFillsTheFirstGroup) {
  for (const TypeCase& tested : types) {
    SCOPED_TRACE("type " + std::to_string(tested.type));
    GateReadings.fill(old);
    readProfile("PMRDO 1," + std::to_string(tested.type) + "," + tested.results);
    EXPECT_EQ(Settings.MeasurementType, tested.type);
    expectOnlyGroup(0, tested.stored);
  }
}

TEST_F(GateMeasurementsTest, GateReplyFillsTheGroupOfItsGate) {
  for (const TypeCase& tested : types) {
    for (int gate = 1; gate <= 8; ++gate) {
      SCOPED_TRACE("type " + std::to_string(tested.type) + " of gate " + std::to_string(gate));
      InitMeasurementSettings();
      GateReadings.fill(old);
      readGate(gate, "GPNMO 1," + std::to_string(tested.type) + "," + std::to_string(gate) + "," +
                         tested.results);
      EXPECT_EQ(Settings.MeasurementType, tested.type);
      expectOnlyGroup(static_cast<std::size_t>(gate), tested.stored);
    }
  }
}

TEST_F(GateMeasurementsTest, BothModesOfTheGatesStoreTheSame) {
  readGate(3, "GPNMO 1,2,3,AVG,-10.5,PK,-5.2");
  const auto first = GateReadings;
  GateReadings.fill(old);
  Settings.MeasurementType = 1;
  ReadGateMeasurements(GateMeasurementMode::gatesAgain);
  EXPECT_EQ(GateReadings, first);
  EXPECT_EQ(Settings.MeasurementType, 2);
}

TEST_F(GateMeasurementsTest, SerialRepliesKeepTheirReturnAndAreReadAllTheSame) {
  world.useSerial();
  readProfile("PMRDO 1,2,AVG,-10.5,PK,-5.2");
  expectOnlyGroup(0, {-10.5F, -5.2F, old});
  readProfile("PMRDO 1,7");
  EXPECT_EQ(Settings.MeasurementType, 7);
}

TEST_F(GateMeasurementsTest, MoreFieldsThanTheTypeHasAreLeftAlone) {
  readProfile("PMRDO 1,1,AVG,-10.5,PK,-5.2,CR,5.3");
  expectOnlyGroup(0, {-10.5F, old, old});
}

TEST_F(GateMeasurementsTest, UnknownTypesChangeTheTypeAlone) {
  const std::vector<std::pair<std::string, std::int32_t>> cases = {
      {"0", 0}, {"5", 5}, {"9", 9}, {"-1", -1}, {"AVG", 0}, {"32767", 32767}, {"70000", 0}};
  for (const auto& [text, type] : cases) {
    SCOPED_TRACE(text);
    Settings.MeasurementType = 2;
    readProfile("PMRDO 1," + text + ",AVG,-10.5,PK,-5.2,CR,5.3");
    EXPECT_EQ(Settings.MeasurementType, type);
    Settings.MeasurementType = 2;
    readGate(1, "GPNMO 1," + text + ",1,AVG,-10.5,PK,-5.2,CR,5.3");
    EXPECT_EQ(Settings.MeasurementType, type);
    expectOnlyGroup(0, {old, old, old});
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(GateMeasurementsTest, RepliesThatEndTooEarlyChangeNothing) {
  for (const char* rest : {"", ",", ",3", ",3,AVG", ",3,AVG,", ",3,AVG,-10.5", ",3,AVG,-10.5,PK",
                           ",3,AVG,-10.5,PK,-5.2", ",3,AVG,-10.5,PK,-5.2,CR",
                           ",3,AVG,-10.5,PK,-5.2,CR, ", ",3,AVG,,PK,-5.2,CR,5.3"}) {
    SCOPED_TRACE(rest);
    readProfile(std::string("PMRDO 1") + rest);
    std::string ofGate = std::string("GPNMO 1") + rest;
    if (const auto type = ofGate.find(",3"); type != std::string::npos)
      ofGate.insert(type + 2, ",1");
    readGate(1, ofGate);
    EXPECT_EQ(Settings.MeasurementType, 1);
    expectOnlyGroup(0, {old, old, old});
  }
}

TEST_F(GateMeasurementsTest, NumbersThatDoNotFitChangeNothing) {
  readProfile("PMRDO 1,2,AVG,-10.5,PK,1E39");
  EXPECT_EQ(Settings.MeasurementType, 1);
  expectOnlyGroup(0, {old, old, old});
}

TEST_F(GateMeasurementsTest, TextInPlaceOfAResultIsZero) {
  readProfile("PMRDO 1,2,AVG,---,PK,-5.2");
  expectOnlyGroup(0, {0, -5.2F, old});
}

TEST_F(GateMeasurementsTest, FailedQueryChangesNothingAndTheOthersGoOn) {
  ReadGateMeasurements(GateMeasurementMode::profile);
  EXPECT_EQ(received(), (Transcript{"PMRDO 1"}));
  expectOnlyGroup(0, {old, old, old});
  world.meter.received.clear();
  switchOn({1, 2});
  readGate(3, "GPNMO 1,2,3,AVG,-10.5,PK,-5.2");
  EXPECT_EQ(received(), (Transcript{"GPNMO 1,1", "GPNMO 1,2", "GPNMO 1,3"}));
  expectOnlyGroup(3, {-10.5F, -5.2F, old});
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(GateMeasurementsTest, RefusedQueryChangesNothing) {
  world.meter.rejected.insert("PMRDO 1");
  readProfile("PMRDO 1,1,AVG,-10.5");
  expectOnlyGroup(0, {old, old, old});
  EXPECT_EQ(Settings.MeasurementType, 1);
}

TEST_F(GateMeasurementsTest, PresentModeAsksTheGatesWhenOneIsOn) {
  EXPECT_EQ(presentGateMeasurementMode(), GateMeasurementMode::profile);
  for (std::size_t gate = 0; gate < gateCount; ++gate) {
    InitMeasurementSettings();
    Settings.Gates[gate].Enabled = True16;
    EXPECT_EQ(presentGateMeasurementMode(), GateMeasurementMode::gates) << gate;
  }
  InitMeasurementSettings();
  Settings.Gates[0].FenceEnabled = True16;
  EXPECT_EQ(presentGateMeasurementMode(), GateMeasurementMode::profile);
}

TEST_F(GateMeasurementsTest, ResultsOfEachTypeHaveNamesAndUnits) {
  const std::map<std::int32_t, std::vector<std::string>> expected = {
      {-1, {}},
      {0, {}},
      {1, {"Avg dBm"}},
      {2, {"Avg dBm", "Pk dBm"}},
      {3, {"Avg dBm", "Pk dBm", "Cr dB"}},
      {4, {"Avg dBm", "Min dBm", "Max dBm"}},
      {5, {}},
      {32767, {}},
  };
  for (const auto& [type, results] : expected) {
    std::vector<std::string> found;
    for (const MeasurementResult& result : measurementResults(type)) {
      found.push_back(std::string(result.name) + " " + result.unit);
    }
    EXPECT_EQ(found, results) << type;
  }
}

class InfoBoxTest : public GateMeasurementsTest {
 protected:
  InfoBoxTest() { view.infoBoxOpen = true; }

  using Group = FakeInfoBox::Group;
  using Result = FakeInfoBox::Result;

  static std::set<std::size_t> elements(std::initializer_list<std::size_t> hiddenInEachGroup) {
    std::set<std::size_t> all;
    for (std::size_t group = 0; group < readingGroups; ++group) {
      for (const std::size_t element : hiddenInEachGroup) {
        all.insert(group * resultsPerGroup + element);
      }
    }
    return all;
  }
};

TEST_F(InfoBoxTest, ValuesHaveTwoToThreeDecimals) {
  const std::vector<std::pair<float, std::string>> cases = {
      {-34.567F, "-34.567"}, {5.2F, "5.20"},     {-12.3F, "-12.30"}, {0, "0.00"},
      {-0.0004F, "0.00"},    {10, "10.00"},      {0.5F, "0.50"},     {-12.3456F, "-12.346"},
      {-0.0625F, "-0.063"},  {123.45F, "123.45"}};
  for (const auto& [reading, text] : cases) {
    GateReadings[0] = reading;
    UpdateInfoBox();
    EXPECT_EQ(view.info.results[0], (Result{"Avg", text, "dBm"}));
  }
}

TEST_F(InfoBoxTest, ProfileWithoutGatesIsShownAsItWasRead) {
  readProfile("PMRDO 1,1,AVG,-12.3");
  UpdateInfoBox();
  EXPECT_EQ(view.info.results[0], (Result{"Avg", "-12.30", "dBm"}));
  EXPECT_EQ(view.info.groups[0], (Group{true, true}));
}

TEST_F(InfoBoxTest, EachElementHasItsOwnNameValueAndUnit) {
  const std::map<std::int32_t, std::vector<std::pair<std::string, std::string>>> expected = {
      {1, {{"Avg", "dBm"}}},
      {2, {{"Avg", "dBm"}, {"Pk", "dBm"}}},
      {3, {{"Avg", "dBm"}, {"Pk", "dBm"}, {"Cr", "dB"}}},
      {4, {{"Avg", "dBm"}, {"Min", "dBm"}, {"Max", "dBm"}}},
  };
  for (std::size_t element = 0; element < GateReadings.size(); ++element) {
    GateReadings[element] = static_cast<float>(element) + 0.25F;
  }
  for (const auto& [type, names] : expected) {
    Settings.MeasurementType = type;
    UpdateInfoBox();
    for (std::size_t group = 0; group < readingGroups; ++group) {
      for (std::size_t result = 0; result < names.size(); ++result) {
        const std::size_t element = group * resultsPerGroup + result;
        EXPECT_EQ(
            view.info.results[element],
            (Result{names[result].first, std::to_string(element) + ".25", names[result].second}))
            << "type " << type << " element " << element;
      }
    }
  }
}

TEST_F(InfoBoxTest, ResultsThatTheTypeLacksAreHidden) {
  const std::vector<std::pair<std::int32_t, std::set<std::size_t>>> cases = {
      {3, {}},
      {1, elements({1, 2})},
      {2, elements({2})},
      {4, {}},
      {0, elements({0, 1, 2})},
      {9, elements({0, 1, 2})},
      {1, elements({1, 2})}};
  for (const auto& [type, hidden] : cases) {
    Settings.MeasurementType = type;
    UpdateInfoBox();
    EXPECT_EQ(view.info.hidden, hidden) << "type " << type;
  }
}

TEST_F(InfoBoxTest, UnknownTypeFromAReplyHidesAll) {
  readProfile("PMRDO 1,9,AVG,-12.3");
  UpdateInfoBox();
  EXPECT_EQ(view.info.hidden, elements({0, 1, 2}));
  EXPECT_EQ(view.info.timesShown, 0);
}

TEST_F(InfoBoxTest, FramesFollowTheirGates) {
  struct Case {
    std::vector<int> on;
    std::set<std::size_t> inUse;
    std::set<std::size_t> enabled;
  };
  const std::vector<Case> cases = {
      {{}, {0, 1, 2, 3, 4}, {0}},
      {{2}, {0, 1, 2, 3, 4}, {2}},
      {{1, 4}, {0, 1, 2, 3, 4}, {1, 4}},
      {{5}, {0, 1, 2, 3, 4, 5}, {5}},
      {{1, 2, 3, 4, 5, 6, 7, 8}, {0, 1, 2, 3, 4, 5, 6, 7, 8}, {1, 2, 3, 4, 5, 6, 7, 8}},
      {{8}, {0, 1, 2, 3, 4, 8}, {8}},
  };
  for (const Case& c : cases) {
    InitMeasurementSettings();
    switchOn(c.on);
    UpdateInfoBox();
    ASSERT_EQ(view.info.groups.size(), readingGroups);
    for (std::size_t group = 0; group < readingGroups; ++group) {
      EXPECT_EQ(view.info.groups[group],
                (Group{c.inUse.count(group) != 0, c.enabled.count(group) != 0}))
          << "group " << group << ", " << c.on.size() << " gates on";
    }
  }
}

TEST_F(InfoBoxTest, GateThatWentOffKeepsItsResults) {
  readGate(2, "GPNMO 1,1,2,AVG,-10.5");
  UpdateInfoBox();
  Settings.Gates[1].Enabled = False16;
  readGate(3, "GPNMO 1,1,3,AVG,-20.5");
  UpdateInfoBox();
  EXPECT_EQ(view.info.results[6], (Result{"Avg", "-10.50", "dBm"}));
  EXPECT_EQ(view.info.results[9], (Result{"Avg", "-20.50", "dBm"}));
  EXPECT_EQ(view.info.groups[2], (Group{true, false}));
}

TEST_F(InfoBoxTest, ClosedBoxGetsNothing) {
  view.infoBoxOpen = false;
  readProfile("PMRDO 1,1,AVG,-12.3");
  UpdateInfoBox();
  EXPECT_TRUE(view.info.groups.empty());
  EXPECT_TRUE(view.info.results.empty());
  EXPECT_TRUE(view.info.hidden.empty());
}

class MarkersWindowTest : public ProfileTest {
 protected:
  MarkersWindowTest() { view.markersOpen = true; }

  static void putMarker(std::size_t number, float reading, float position) {
    MarkerSettings& marker = Settings.Markers[number - 1];
    marker.Enabled = True16;
    marker.Reading = reading;
    marker.Position = position;
  }
  using Marker = FakeMarkersWindow::Marker;
};

TEST_F(MarkersWindowTest, MarkersThatAreOnShowReadingAndPosition) {
  putMarker(1, -34.56789F, 0.0046F);
  putMarker(2, 0, 0);
  putMarker(4, -20, 0.0001F);
  UpdateMarkersWindow();
  const std::map<std::size_t, Marker> expected = {
      {0, {"-34.56789", "4.6ms"}}, {1, {"0", "0.0s"}}, {3, {"-20", "100us"}}};
  EXPECT_EQ(view.markers.markers, expected);
}

TEST_F(MarkersWindowTest, OneFrameForEachMarkerAndNoneForTheDelta) {
  for (const std::size_t number : {1U, 3U, 5U}) putMarker(number, -20, 0.001F);
  UpdateMarkersWindow();
  const std::map<std::size_t, bool> expected = {{0, true}, {1, false}, {2, true}, {3, false}};
  EXPECT_EQ(view.markers.enabled, expected);
  EXPECT_EQ(view.markers.markers.count(4), 0U);
}

TEST_F(MarkersWindowTest, MarkerThatWentOffKeepsItsTexts) {
  putMarker(1, -20, 0.001F);
  UpdateMarkersWindow();
  putMarker(1, -30, 0.002F);
  Settings.Markers[0].Enabled = False16;
  UpdateMarkersWindow();
  EXPECT_EQ(view.markers.markers[0], (Marker{"-20", "1ms"}));
  EXPECT_FALSE(view.markers.enabled[0]);
}

TEST_F(MarkersWindowTest, ClosedWindowGetsNothing) {
  view.markersOpen = false;
  putMarker(1, -20, 0.001F);
  UpdateMarkersWindow();
  EXPECT_TRUE(view.markers.enabled.empty());
  EXPECT_TRUE(view.markers.markers.empty());
}

TEST_F(MarkersWindowTest, ShowsWhatTheMeterTold) {
  Settings.Markers[1].Enabled = True16;
  world.meter.replies["MKNO 1,2"] = "MKNO 1,2,-34.5,DBM,0.0002";
  ReadMarkerReadings();
  UpdateMarkersWindow();
  EXPECT_EQ(view.markers.markers[1], (Marker{"-34.5", "200us"}));
}

}  // namespace
}  // namespace pulsemod::test
