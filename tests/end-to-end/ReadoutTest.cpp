#include <algorithm>
#include <array>
#include <sstream>

#include "ProfileBench.h"

namespace endtoend {
namespace {

constexpr auto gateOneOff = "setup = GPGATS 1,1,OFF\n";
constexpr std::size_t resultsPerGroup = 3;
constexpr std::size_t profileGroup = 0;
/// Where the first result's name stands in the replies: the one for a gate has the gate before it.
constexpr std::size_t profileWord = 2;
constexpr std::size_t gateWord = 3;

struct Result {
  const char* name;
  const char* unit;
  /// As the meter's reply calls it.
  const char* word;
};

struct MeasurementType {
  const char* number;
  std::vector<Result> results;
};
const std::array measurementTypes = {
    MeasurementType{"1", {{"Avg", "dBm", "AVG"}}},
    MeasurementType{"2", {{"Avg", "dBm", "AVG"}, {"Pk", "dBm", "PK"}}},
    MeasurementType{"3", {{"Avg", "dBm", "AVG"}, {"Pk", "dBm", "PK"}, {"Cr", "dB", "CR"}}},
    MeasurementType{"4", {{"Avg", "dBm", "AVG"}, {"Min", "dBm", "MIN"}, {"Max", "dBm", "MAX"}}},
};

Texts fieldsOf(const std::string& reply) {
  Texts fields;
  std::istringstream text(reply.substr(std::min(reply.find(' ') + 1, reply.size())));
  for (std::string field; std::getline(text, field, ',');) fields.push_back(field);
  return fields;
}

/// The meter's three decimals without the zeros at their end, down to `least` decimals.
std::string withoutZeros(std::string number, std::size_t least) {
  const std::size_t point = number.find('.');
  while (number.ends_with('0') && number.size() - point - 1 > least) number.pop_back();
  if (number.ends_with('.')) number.pop_back();
  return number;
}

class Readout : public ProfileBench {
 protected:
  void openInfoBox() {
    hands().trigger("frmMain/menuInfoBox");
    hands().waitVisible("frmInfo");
  }
  void openMarkers() {
    hands().trigger("frmMain/menuMarkers");
    hands().waitVisible("frmMarkers");
  }

  /// The pass with what the info box wants to know before the markers are read.
  Texts passWith(const Texts& questions) const {
    const Texts pass = profilePass(GetParam());
    return part(pass, 0, 2) + questions + part(pass, 2);
  }
  /// What is said from now on is this pass again and again.
  void expectPasses(const Texts& pass) {
    constexpr std::size_t passes = 3;
    std::size_t begin = awaitMark().size();
    awaitMoreProfiles(passes + 1);
    const Texts texts = told();
    for (std::size_t i = 0; i < passes; ++i, begin += pass.size()) {
      EXPECT_EQ(part(texts, begin, pass.size()), pass);
    }
  }

  static std::string element(const char* name, std::size_t group, std::size_t result) {
    return std::string("frmInfo/") + name + "_" + std::to_string(group * resultsPerGroup + result);
  }
  static std::string frameOf(std::size_t group) {
    // The frames of the gates come first, the profile's is the last.
    return "frmInfo/FrameMeas_" + std::to_string(group == profileGroup ? 8 : group - 1);
  }

  /// The frame of the group shows exactly what stands in the reply.
  void expectShown(std::size_t group, const MeasurementType& type, const std::string& query,
                   std::size_t firstWord) {
    const std::string reply = lastReplyTo(query);
    SCOPED_TRACE(reply);
    const Texts fields = fieldsOf(reply);
    ASSERT_EQ(fields.size(), firstWord + 2 * type.results.size());
    for (std::size_t i = 0; i < resultsPerGroup; ++i) {
      SCOPED_TRACE(i);
      const bool isThere = i < type.results.size();
      for (const char* label : {"lblMeasInfo", "lblMeasResult", "lblMeasUnits"}) {
        EXPECT_EQ(hands().is(element(label, group, i), "visible"), isThere) << label;
      }
      if (!isThere) continue;
      const Result& result = type.results[i];
      ASSERT_EQ(fields[firstWord + 2 * i], result.word);
      EXPECT_EQ(hands().get(element("lblMeasInfo", group, i), "text"), result.name);
      EXPECT_EQ(hands().get(element("lblMeasUnits", group, i), "text"), result.unit);
      EXPECT_EQ(hands().get(element("lblMeasResult", group, i), "text"),
                withoutZeros(fields[firstWord + 2 * i + 1], 2));
    }
  }

  /// The frames of the profile and of gates 1 to 4; those of the repeat are hidden.
  void expectFrames(const std::array<bool, 5>& enabled) {
    for (std::size_t group = 0; group < 9; ++group) {
      SCOPED_TRACE(group);
      const bool inUse = group < enabled.size();
      EXPECT_EQ(hands().is(frameOf(group), "visible"), inUse);
      if (inUse) {
        EXPECT_EQ(hands().is(frameOf(group), "enabled"), enabled.at(group));
      }
    }
  }

  void runWithInfoBox(const MeasurementType& type, const char* setup) {
    startLoaded(GetParam(), std::string("setup = PMMEAS 1,") + type.number + "\n" + setup);
    openInfoBox();
    runProfiles(2);
    stopProfiles();
  }
  void expectProfileShown(const MeasurementType& type) {
    runWithInfoBox(type, gateOneOff);
    expectShown(profileGroup, type, "PMRDO 1", profileWord);
    expectFrames({true, false, false, false, false});
  }
  void expectGatesShown(const MeasurementType& type) {
    runWithInfoBox(type, "setup = GPGATS 1,4,ON\n");
    expectShown(1, type, "GPNMO 1,1", gateWord);
    expectShown(4, type, "GPNMO 1,4", gateWord);
    expectFrames({false, true, false, false, true});
  }

  void expectMarkersAsTold() {
    const Texts positions = {"100us", "500us", "900us"};
    for (std::size_t i = 0; i < positions.size(); ++i) {
      const std::string number = std::to_string(i);
      const std::string reply = lastReplyTo("MKNO 1," + std::to_string(i + 1));
      const Texts fields = fieldsOf(reply);
      ASSERT_EQ(fields.size(), 5U) << reply;
      EXPECT_TRUE(hands().is("frmMarkers/frameMarker_" + number, "enabled"));
      EXPECT_EQ(hands().get("frmMarkers/lblMarkerPow_" + number, "text"),
                withoutZeros(fields[2], 0));
      EXPECT_EQ(hands().get("frmMarkers/lblMarkerUnits_" + number, "text"), "dBm");
      EXPECT_EQ(hands().get("frmMarkers/lblMarkerTime_" + number, "text"), positions[i]);
    }
    EXPECT_FALSE(hands().is("frmMarkers/frameMarker_3", "enabled"));
    EXPECT_EQ(hands().get("frmMarkers/lblMarkerPow_3", "text"), "");
  }
};
ON_BOTH_LINKS(Readout);

TEST_P(Readout, WithoutGatesTheInfoBoxAsksForTheProfileInEachPass) {
  startLoaded(GetParam(), gateOneOff);
  runProfiles(1);
  expectPasses(profilePass(GetParam()));
  openInfoBox();
  expectPasses(passWith({"PMRDO 1"}));
}

TEST_P(Readout, WithGatesTheInfoBoxAsksForEachThatIsOn) {
  startLoaded(GetParam(), "setup = GPGATS 1,3,ON\n");
  runProfiles(1);
  openInfoBox();
  expectPasses(passWith({"GPNMO 1,1", "GPNMO 1,3"}));
  stopProfiles();
  expectFrames({false, true, false, true, false});
}

TEST_P(Readout, ClosedByItsCloseBoxTheInfoBoxAsksNoMore) {
  startLoaded(GetParam());
  runProfiles(1);
  openInfoBox();
  expectPasses(passWith({"GPNMO 1,1"}));
  EXPECT_TRUE(hands().is("frmMain/menuInfoBox", "checked"));
  hands().close("frmInfo");
  hands().waitGone("frmInfo");
  EXPECT_FALSE(hands().is("frmMain/menuInfoBox", "checked"));
  expectPasses(profilePass(GetParam()));
}

TEST_P(Readout, TheMarkersAreReadWhetherTheirWindowIsOpenOrNot) {
  startLoaded(GetParam());
  runProfiles(1);
  openMarkers();
  expectPasses(profilePass(GetParam()));
  hands().close("frmMarkers");
  hands().waitGone("frmMarkers");
  expectPasses(profilePass(GetParam()));
}

TEST_P(Readout, TheMarkersWindowShowsWhatTheMeterSaid) {
  startLoaded(GetParam());
  openMarkers();
  runProfiles(2);
  stopProfiles();
  expectMarkersAsTold();
}

TEST_P(Readout, OpenedAgainTheWindowsShowTheLastReadingsAndAskNothing) {
  startLoaded(GetParam(), gateOneOff);
  openInfoBox();
  openMarkers();
  runProfiles(2);
  stopProfiles();
  hands().close("frmInfo");
  hands().close("frmMarkers");
  hands().waitGone("frmInfo");
  hands().waitGone("frmMarkers");
  const std::size_t before = told().size();
  openInfoBox();
  openMarkers();
  expectShown(profileGroup, measurementTypes[2], "PMRDO 1", profileWord);
  expectMarkersAsTold();
  EXPECT_EQ(toldUntilMark(before), Texts{});
}

TEST_P(Readout, AverageOfTheProfile) { expectProfileShown(measurementTypes[0]); }
TEST_P(Readout, AverageAndPeakOfTheProfile) { expectProfileShown(measurementTypes[1]); }
TEST_P(Readout, AveragePeakAndCrestOfTheProfile) { expectProfileShown(measurementTypes[2]); }
TEST_P(Readout, AverageMinimumAndMaximumOfTheProfile) { expectProfileShown(measurementTypes[3]); }

TEST_P(Readout, AverageOfEachGate) { expectGatesShown(measurementTypes[0]); }
TEST_P(Readout, AverageAndPeakOfEachGate) { expectGatesShown(measurementTypes[1]); }
TEST_P(Readout, AveragePeakAndCrestOfEachGate) { expectGatesShown(measurementTypes[2]); }
TEST_P(Readout, AverageMinimumAndMaximumOfEachGate) { expectGatesShown(measurementTypes[3]); }

}  // namespace
}  // namespace endtoend
