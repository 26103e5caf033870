#include "ProfileTest.h"
#include "link/Fault.h"
#include "profile/ProfileGraph.h"

namespace pulsemod::test {
namespace {

struct Undrawable {
  const char* name;
  std::function<void()> make;
  const char* description;
};

void PrintTo(const Undrawable& tested, std::ostream* out) { *out << tested.name; }

const Undrawable captureOfZero{"CaptureOfZero", [] { Settings.CaptureTime = 0; },
                               "Division by zero: the capture time is 0"};
const Undrawable captureOfZeroWithAMarker{"CaptureOfZeroWithAMarker",
                                          [] {
                                            Settings.CaptureTime = 0;
                                            Settings.Markers[0].Enabled = True16;
                                          },
                                          "Division by zero: the capture time is 0"};
const Undrawable scaleOfZero{"ScaleOfZero", [] { Settings.ScalePerDivision = 0; },
                             "Division by zero: the graph's scale is 0 dB"};
const Undrawable noPoints{"NoPoints", [] { Settings.DisplayPoints = 0; },
                          "The graph has no points to draw"};
const Undrawable tooManyPoints{"TooManyPoints", [] { Settings.DisplayPoints = 401; },
                               "Subscript out of range: a profile has 1 to 400 points, not 401"};

std::string nameOf(const ::testing::TestParamInfo<Undrawable>& tested) { return tested.param.name; }

class UndrawableGraph : public ProfileTest, public ::testing::WithParamInterface<Undrawable> {
 protected:
  UndrawableGraph() {
    RefreshGraph();
    Settings.ReferenceLevel = 3;
    GetParam().make();
  }

  /// The picture from before the fault is on the screen.
  void expectOldPicture() const {
    EXPECT_EQ(view.picture.timesShown, 1);
    EXPECT_EQ(view.picture.shown.scale, (PictureScale{1, 10, 200, -100}));
  }
  void expectToldTimes(std::size_t times) const {
    const std::string box = std::string("Pelmora|") + GetParam().description + "|exclamation";
    EXPECT_EQ(shownBoxes(), std::vector<std::string>(times, box));
  }
};

INSTANTIATE_TEST_SUITE_P(Faults, UndrawableGraph,
                         ::testing::Values(captureOfZero, captureOfZeroWithAMarker, scaleOfZero,
                                           noPoints, tooManyPoints),
                         nameOf);

/// Faults of the picture itself, without labels and gate lines.
class UndrawablePicture : public UndrawableGraph {};

INSTANTIATE_TEST_SUITE_P(Faults, UndrawablePicture,
                         ::testing::Values(captureOfZeroWithAMarker, scaleOfZero, noPoints,
                                           tooManyPoints),
                         nameOf);

TEST_P(UndrawableGraph, IsToldOnceAndTheOldPictureStays) {
  EXPECT_FALSE(RefreshGraph());
  EXPECT_FALSE(RefreshGraph());
  EXPECT_FALSE(RefreshGraph());
  expectToldTimes(1);
  expectOldPicture();
}

TEST_P(UndrawablePicture, IsToldOnceAndTheOldPictureStays) {
  EXPECT_FALSE(RefreshPicture());
  EXPECT_FALSE(RefreshPicture());
  EXPECT_FALSE(RefreshGraph());
  expectToldTimes(1);
  expectOldPicture();
}

TEST_P(UndrawablePicture, RedrawingItWithoutAReportIsAFault) {
  EXPECT_THROW(RedrawProfile(), Fault);
  expectToldTimes(0);
  expectOldPicture();
}

/// The loop draws the picture between two draws of the graph, as a window that is being resized
/// asks for them.
TEST_P(UndrawableGraph, PicturesDrawnInBetweenDoNotMakeItBeToldAgain) {
  RefreshGraph();
  RefreshPicture();
  RefreshGraph();
  RefreshPicture();
  RefreshGraph();
  expectToldTimes(1);
}

TEST_P(UndrawableGraph, IsToldAgainAfterARecovery) {
  const MeasurementSettings faulty = Settings;
  EXPECT_FALSE(RefreshGraph());
  InitMeasurementSettings();
  EXPECT_TRUE(RefreshGraph());
  EXPECT_EQ(view.picture.timesShown, 2);
  Settings = faulty;
  EXPECT_FALSE(RefreshGraph());
  EXPECT_FALSE(RefreshGraph());
  expectToldTimes(2);
  EXPECT_EQ(view.picture.timesShown, 2);
}

TEST_P(UndrawableGraph, DrawingAskedForWhileTheBoxIsOpenOpensNoOther) {
  world.dialogs.whileOpen = [] { RefreshGraph(); };
  EXPECT_FALSE(RefreshGraph());
  expectToldTimes(1);
}

TEST(GraphFaults, GateLinesStayWhenTheirColumnsCannotBeComputed) {
  FakeWorld world;
  FakeProfileView view;
  Settings.Gates[0].Enabled = True16;
  PositionGateLines();
  const GateLineArray placed = view.gateLines;
  Settings.CaptureTime = 0;
  EXPECT_THROW(PositionGateLines(), Fault);
  EXPECT_EQ(view.gateLines, placed);
  EXPECT_EQ(view.timesGateLinesPlaced, 1);
}

}  // namespace
}  // namespace pulsemod::test
