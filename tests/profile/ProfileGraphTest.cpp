#include "ProfileTest.h"
#include "profile/ProfileGraph.h"

namespace pulsemod::test {
namespace {

using Line = RecordingPicture::Line;
using Text = RecordingPicture::Text;

class ProfileGraphTest : public ProfileTest {
 protected:
  static MarkerSettings& marker(std::size_t number) { return Settings.Markers[number - 1]; }

  static void putMarker(std::size_t number, float position, float reading = 0) {
    marker(number).Enabled = True16;
    marker(number).Position = position;
    marker(number).Reading = reading;
  }

  static void fillTraces() {
    for (std::size_t index = 0; index < tracePoints; ++index) {
      ProfileTrace[index] = -0.25F * static_cast<float>(index);
      SecondProfileTrace[index] = -100 + 0.25F * static_cast<float>(index);
    }
  }

  /// The first `count` points of `trace`, in the columns 1, 2, ...
  static std::vector<PicturePoint> columnsOf(const Trace& trace, std::size_t count) {
    std::vector<PicturePoint> points;
    for (std::size_t index = 0; index < count; ++index) {
      points.push_back({static_cast<double>(index + 1), static_cast<double>(trace[index])});
    }
    return points;
  }
};

TEST_F(ProfileGraphTest, ColoursAreFixed) {
  EXPECT_EQ(gridColour, (Colour{200, 200, 200}));
  EXPECT_EQ(liveTraceColour, (Colour{255, 255, 0}));
  EXPECT_EQ(secondProfileColour, (Colour{0, 255, 100}));
  EXPECT_EQ(activeMarkerColour, (Colour{255, 0, 0}));
  EXPECT_EQ(markerColour, (Colour{0, 255, 255}));
}

TEST_F(ProfileGraphTest, GridFor200Points) {
  DrawGraphGrid();
  const Colour grey{200, 200, 200};
  std::vector<Line> expected;
  for (const double x : {20.0, 40.0, 60.0, 80.0, 100.0, 120.0, 140.0, 160.0, 180.0}) {
    expected.push_back({{x, 10}, {x, -90}, grey});
  }
  for (const double y : {0.0, -10.0, -20.0, -30.0, -40.0, -50.0, -60.0, -70.0, -80.0}) {
    expected.push_back({{1, y}, {200, y}, grey});
  }
  EXPECT_EQ(view.picture.drawn.lines, expected);
  EXPECT_EQ(view.picture.drawn.scale, (PictureScale{1, 10, 200, -100}));
}

TEST_F(ProfileGraphTest, GridForOtherSettings) {
  struct Case {
    float reference, perDivision;
    std::int16_t points;
    double columns, bottom;
  };
  const std::vector<Case> cases = {
      {-20.0F, 5.0F, 400, 40, -70}, {0.0F, 0.5F, 200, 20, -5}, {20.0F, 20.0F, 50, 5, -180}};
  for (const Case& c : cases) {
    Settings.ReferenceLevel = c.reference;
    Settings.ScalePerDivision = c.perDivision;
    Settings.DisplayPoints = c.points;
    const double top = static_cast<double>(c.reference);
    const double points = static_cast<double>(c.points);
    const double step = static_cast<double>(c.perDivision);
    DrawGraphGrid();
    std::vector<Line> expected;
    for (int i = 1; i <= 9; ++i) {
      expected.push_back({{c.columns * i, top}, {c.columns * i, c.bottom}, {200, 200, 200}});
    }
    for (int i = 1; i <= 9; ++i) {
      expected.push_back({{1, top - step * i}, {points, top - step * i}, {200, 200, 200}});
    }
    EXPECT_EQ(view.picture.drawn.lines, expected) << c.points << " points";
    EXPECT_EQ(view.picture.drawn.scale, (PictureScale{1, top, points, c.bottom - top}));
  }
}

TEST_F(ProfileGraphTest, LiveTraceStandsInColumnsFromOne) {
  fillTraces();
  for (const std::int16_t points : std::initializer_list<std::int16_t>{1, 200, 400}) {
    Settings.DisplayPoints = points;
    RedrawProfile();
    ASSERT_EQ(view.picture.shown.polylines.size(), 1U);
    EXPECT_EQ(view.picture.shown.polylines[0].points,
              columnsOf(ProfileTrace, static_cast<std::size_t>(points)));
    EXPECT_EQ(view.picture.shown.polylines[0].colour, (Colour{255, 255, 0}));
  }
}

TEST_F(ProfileGraphTest, SecondProfileLiesUnderTheLiveOne) {
  fillTraces();
  view.secondProfileShown = true;
  RedrawProfile();
  const auto& drawn = view.picture.shown.polylines;
  ASSERT_EQ(drawn.size(), 2U);
  EXPECT_EQ(drawn[0].points, columnsOf(SecondProfileTrace, 200));
  EXPECT_EQ(drawn[0].colour, (Colour{0, 255, 100}));
  EXPECT_EQ(drawn[1].points, columnsOf(ProfileTrace, 200));
  EXPECT_EQ(drawn[1].colour, (Colour{255, 255, 0}));
}

TEST_F(ProfileGraphTest, OneDrawingIsBuiltFromTheGridUpAndThenShown) {
  view.secondProfileShown = true;
  putMarker(1, 0.001F);
  RedrawProfile();
  std::vector<std::string> expected = {"clear", "scale"};
  expected.insert(expected.end(), 18, "line");
  for (const char* call : {"background", "polyline", "text", "polyline", "show"}) {
    expected.emplace_back(call);
  }
  EXPECT_EQ(view.picture.calls, expected);
}

TEST_F(ProfileGraphTest, EachRedrawStartsAnew) {
  putMarker(1, 0.001F);
  RedrawProfile();
  marker(1).Enabled = False16;
  ProfileTrace[7] = -3;
  RedrawProfile();
  EXPECT_EQ(view.picture.timesShown, 2);
  EXPECT_EQ(view.picture.shown.lines.size(), 18U);
  EXPECT_TRUE(view.picture.shown.texts.empty());
  ASSERT_EQ(view.picture.shown.polylines.size(), 1U);
  EXPECT_EQ(view.picture.shown.polylines[0].points[7].y, -3);
}

TEST_F(ProfileGraphTest, MarkerLabelsHangBelowTheirReadings) {
  view.picture.heightOfText = 4;
  putMarker(1, 0.0023F, -30);
  putMarker(2, 0.00069F, 5);
  putMarker(4, 0.0046F, -90);
  DrawMarkers();
  EXPECT_EQ(view.picture.drawn.texts, (std::vector<Text>{{{100, -34}, "1", {255, 0, 0}},
                                                         {{30, 1}, "2", {0, 255, 255}},
                                                         {{200, -94}, "4", {0, 255, 255}}}));
  EXPECT_TRUE(view.picture.drawn.lines.empty());
  EXPECT_TRUE(view.picture.drawn.polylines.empty());
}

TEST_F(ProfileGraphTest, MarkerLabelFollowsTheHeightOfItsText) {
  view.picture.heightOfText = 2.5;
  putMarker(1, 0.0023F, -30);
  DrawMarkers();
  EXPECT_EQ(view.picture.drawn.texts, (std::vector<Text>{{{100, -32.5}, "1", {255, 0, 0}}}));
}

TEST_F(ProfileGraphTest, MarkersThatAreOffAreNotDrawn) {
  DrawMarkers();
  EXPECT_TRUE(view.picture.drawn.texts.empty());
}

TEST_F(ProfileGraphTest, ActiveMarkerIsRed) {
  const Colour red{255, 0, 0};
  const Colour cyan{0, 255, 255};
  for (std::size_t number = 1; number <= markerCount; ++number) putMarker(number, 0.001F);
  for (std::size_t active = 1; active <= markerCount; ++active) {
    for (std::size_t number = 1; number <= markerCount; ++number) {
      marker(number).IsActive = number == active ? True16 : False16;
    }
    view.picture.clear();
    DrawMarkers();
    ASSERT_EQ(view.picture.drawn.texts.size(), markerCount);
    for (std::size_t number = 1; number <= markerCount; ++number) {
      EXPECT_EQ(view.picture.drawn.texts[number - 1].colour, number == active ? red : cyan);
    }
  }
}

TEST_F(ProfileGraphTest, MarkerColumnsAreClampedToTheGraph) {
  Settings.TriggerDelay = 0.001F;
  putMarker(1, 0.0005F, -30);
  putMarker(2, 1.0F, -30);
  DrawMarkers();
  ASSERT_EQ(view.picture.drawn.texts.size(), 2U);
  EXPECT_EQ(view.picture.drawn.texts[0].topLeft, (PicturePoint{0, -34}));
  EXPECT_EQ(view.picture.drawn.texts[1].topLeft, (PicturePoint{200, -34}));
}

TEST_F(ProfileGraphTest, DeltaLabelStandsAtTheLiveTraceInItsColumn) {
  struct Case {
    const char* what;
    float position, delay;
    std::int16_t points;
    double x;
    std::size_t element;
  };
  const std::vector<Case> cases = {
      {"in the middle", 0.0023F, 0.0F, 200, 100, 99},
      {"a round column", 0.00069F, 0.0F, 200, 30, 29},
      {"first point", 0.000023F, 0.0F, 200, 1, 0},
      {"before the first point", 0.0000115F, 0.0F, 200, 0.5, 0},
      {"at the delay", 0.001F, 0.001F, 200, 0, 0},
      {"before the delay", 0.0F, 0.001F, 200, 0, 0},
      {"at the end", 0.0046F, 0.0F, 200, 200, 199},
      {"past the end", 1.0F, 0.0F, 200, 200, 199},
      {"past the end of 400 points", 1.0F, 0.0F, 400, 400, 399},
      {"between two columns", 0.0023115F, 0.0F, 200, 100.5, 99},
      {"beyond the trace", 1.0F, 0.0F, 32767, 32767, 399},
  };
  fillTraces();
  for (const Case& c : cases) {
    Settings.TriggerDelay = c.delay;
    Settings.DisplayPoints = c.points;
    putMarker(5, c.position, -55);
    view.picture.clear();
    DrawMarkers();
    ASSERT_EQ(view.picture.drawn.texts.size(), 1U) << c.what;
    const Text& label = view.picture.drawn.texts[0];
    EXPECT_EQ(label.text, "D") << c.what;
    EXPECT_NEAR(label.topLeft.x, c.x, 0.0001) << c.what;
    EXPECT_EQ(label.topLeft.y, static_cast<double>(ProfileTrace[c.element])) << c.what;
    EXPECT_EQ(label.colour, (Colour{0, 255, 255})) << c.what;
  }
}

TEST_F(ProfileGraphTest, RedrawingLetsNoEventRun) {
  bool ran = false;
  world.events.post([&ran] { ran = true; });
  RedrawProfile();
  EXPECT_TRUE(RefreshPicture());
  EXPECT_TRUE(RefreshGraph());
  EXPECT_FALSE(ran);
  EXPECT_EQ(world.events.pendingCalls, 0);
  EXPECT_EQ(world.events.waits, 0);
  EXPECT_TRUE(world.events.deadlines.empty());
  EXPECT_TRUE(received().empty());
}

TEST_F(ProfileGraphTest, RefreshingTheGraphRenewsPictureLabelsAndGateLines) {
  Settings.ReferenceLevel = 5;
  EXPECT_TRUE(RefreshGraph());
  EXPECT_EQ(view.labels[GraphLabel::reference], "Ref: 5.00 dBm");
  EXPECT_EQ(view.picture.shown.scale.top, 5);
  EXPECT_EQ(view.picture.shown.lines.size(), 18U);
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_GE(view.timesGateLinesPlaced, 1);
}

TEST_F(ProfileGraphTest, RefreshingThePictureLeavesLabelsAndGateLines) {
  EXPECT_TRUE(RefreshPicture());
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_TRUE(view.labels.empty());
  EXPECT_EQ(view.timesGateLinesPlaced, 0);
}

}  // namespace
}  // namespace pulsemod::test
