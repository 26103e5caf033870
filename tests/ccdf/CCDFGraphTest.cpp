#include <cmath>

#include "CCDFTest.h"
#include "ccdf/CCDFGraph.h"
#include "link/Fault.h"

namespace pulsemod::test {
namespace {

constexpr Colour gridColour{200, 200, 200};
constexpr Colour yellow{255, 255, 0};
constexpr Colour green{0, 255, 100};

class CCDFGraphTest : public CCDFTest {
 protected:
  static void setCurve(const std::vector<float>& values) {
    Settings.DisplayPoints = static_cast<std::int16_t>(values.size());
    std::copy(values.begin(), values.end(), CCDFData.begin());
  }
  const RecordingPicture::Drawing& shown() const { return view.picture.shown; }
};

TEST_F(CCDFGraphTest, GridOfEveryPointCount) {
  for (const int points : {200, 400, 7, 1}) {
    Settings.DisplayPoints = static_cast<std::int16_t>(points);
    DrawCCDFGraph();
    EXPECT_EQ(shown().scale, (PictureScale{0, 2, static_cast<double>(points), -5}));
    ASSERT_EQ(shown().lines.size(), 15U);
    for (int i = 1; i <= 9; ++i) {
      const double x = points * i / 10.0;
      EXPECT_EQ(shown().lines[static_cast<std::size_t>(i) - 1],
                (RecordingPicture::Line{{x, -6.5}, {x, 2}, gridColour}));
    }
    for (int i = 1; i <= 6; ++i) {
      const double y = 2 - i;
      EXPECT_EQ(shown().lines[static_cast<std::size_t>(i) + 8],
                (RecordingPicture::Line{{1, y}, {static_cast<double>(points), y}, gridColour}));
    }
  }
}

TEST_F(CCDFGraphTest, VerticalLinesOf200PointsStandAtEachTwentieth) {
  Settings.DisplayPoints = 200;
  DrawCCDFGraph();
  std::vector<double> columns;
  for (std::size_t line = 0; line < 9; ++line) columns.push_back(shown().lines[line].from.x);
  EXPECT_EQ(columns, (std::vector<double>{20, 40, 60, 80, 100, 120, 140, 160, 180}));
}

TEST_F(CCDFGraphTest, GridIsTheBackgroundOfOneDrawing) {
  setCurve({100, 10, 1});
  DrawCCDFGraph();
  const auto& calls = view.picture.calls;
  ASSERT_EQ(calls.size(), 20U);
  EXPECT_EQ(calls[0], "clear");
  EXPECT_EQ(calls[1], "scale");
  EXPECT_EQ(std::count(calls.begin() + 2, calls.begin() + 17, "line"), 15);
  EXPECT_EQ(calls[17], "background");
  EXPECT_EQ(calls[18], "polyline");
  EXPECT_EQ(calls[19], "show");
  EXPECT_TRUE(shown().texts.empty());
  EXPECT_EQ(world.events.pendingCalls, 0);
}

TEST_F(CCDFGraphTest, CurveIsTheLogarithmOfEachPoint) {
  setCurve({100, 10, 1, 0.1F, 0.001F, 50});
  DrawCCDFGraph();
  ASSERT_EQ(shown().polylines.size(), 1U);
  EXPECT_EQ(shown().polylines[0].colour, yellow);
  const auto& points = shown().polylines[0].points;
  ASSERT_EQ(points.size(), 6U);
  const double expected[] = {2, 1, 0, -1, -3, std::log10(50.0)};
  for (std::size_t index = 0; index < 6; ++index) {
    EXPECT_EQ(points[index].x, static_cast<double>(index) + 1);
    EXPECT_NEAR(points[index].y, expected[index], 1e-6);
    EXPECT_NEAR(CCDFLogData[index], expected[index], 1e-6);
  }
}

TEST_F(CCDFGraphTest, FirstPointAloneIsADot) {
  setCurve({10});
  DrawCCDFGraph();
  ASSERT_EQ(shown().polylines.size(), 1U);
  EXPECT_EQ(shown().polylines[0].points, (std::vector<PicturePoint>{{1, 1}}));
}

TEST_F(CCDFGraphTest, GapsAreBridged) {
  setCurve({100, 0, -5, 1, 0});
  DrawCCDFGraph();
  ASSERT_EQ(shown().polylines.size(), 1U);
  EXPECT_EQ(shown().polylines[0].points, (std::vector<PicturePoint>{{1, 2}, {4, 0}}));
}

TEST_F(CCDFGraphTest, CurveBeginsAtItsFirstPositivePoint) {
  setCurve({0, 10, 1});
  DrawCCDFGraph();
  ASSERT_EQ(shown().polylines.size(), 1U);
  EXPECT_EQ(shown().polylines[0].points, (std::vector<PicturePoint>{{2, 1}, {3, 0}}));
}

TEST_F(CCDFGraphTest, CurveOfZerosDrawsTheGridOnly) {
  setCurve({0, 0, 0, 0});
  DrawCCDFGraph();
  EXPECT_TRUE(shown().polylines.empty());
  EXPECT_EQ(shown().lines.size(), 15U);
  EXPECT_EQ(view.picture.timesShown, 1);
}

TEST_F(CCDFGraphTest, LogarithmsOfSkippedPointsStay) {
  CCDFLogData[0] = 7;
  CCDFLogData[1] = 8;
  CCDFLogData[2] = 9;
  setCurve({0, 10});
  CCDFData[2] = 100;  // beyond the points that are drawn
  DrawCCDFGraph();
  EXPECT_EQ(CCDFLogData[0], 7);
  EXPECT_EQ(CCDFLogData[1], 1);
  EXPECT_EQ(CCDFLogData[2], 9);
}

TEST_F(CCDFGraphTest, SecondCurveLiesUnderTheLiveOneWhenItIsShown) {
  setCurve({10, 1});
  SecondCCDFData[0] = 0;
  SecondCCDFData[1] = 100;
  DrawCCDFGraph();
  EXPECT_EQ(shown().polylines.size(), 1U);
  view.secondCurveShown = true;
  DrawCCDFGraph();
  ASSERT_EQ(shown().polylines.size(), 2U);
  EXPECT_EQ(shown().polylines[0].colour, green);
  EXPECT_EQ(shown().polylines[0].points, (std::vector<PicturePoint>{{2, 2}}));
  EXPECT_EQ(shown().polylines[1].colour, yellow);
  EXPECT_EQ(shown().polylines[1].points, (std::vector<PicturePoint>{{1, 1}, {2, 0}}));
  EXPECT_EQ(CCDFLogData[1], 0) << "of the live curve";
}

TEST_F(CCDFGraphTest, SecondCurveIsNotDrawnWhenItHasNoPositivePoint) {
  setCurve({0, 10});
  view.secondCurveShown = true;
  DrawCCDFGraph();
  ASSERT_EQ(shown().polylines.size(), 1U);
  EXPECT_EQ(shown().polylines[0].colour, yellow);
  EXPECT_EQ(CCDFLogData[1], 1);
}

TEST_F(CCDFGraphTest, SecondCurveLeavesTheLogarithmsOfTheLiveOne) {
  setCurve({0, 10});
  CCDFLogData[0] = 7;
  SecondCCDFData[0] = 100;
  view.secondCurveShown = true;
  DrawCCDFGraph();
  EXPECT_EQ(view.picture.shown.polylines.size(), 2U);
  EXPECT_EQ(CCDFLogData[0], 7);
}

TEST_F(CCDFGraphTest, FourHundredPointsAreDrawn) {
  setCurve(std::vector<float>(400, 10));
  DrawCCDFGraph();
  ASSERT_EQ(shown().polylines.size(), 1U);
  EXPECT_EQ(shown().polylines[0].points.size(), 400U);
  EXPECT_EQ(shown().polylines[0].points[399], (PicturePoint{400, 1}));
}

TEST_F(CCDFGraphTest, PointCountsThatCannotBeDrawnAreToldOnceAndTheOldPictureStays) {
  setCurve({10, 1});
  ASSERT_TRUE(RefreshCCDFGraph());
  for (const int points : {0, 401, -5}) {
    world.dialogs.messages.clear();
    Settings.DisplayPoints = static_cast<std::int16_t>(points);
    EXPECT_FALSE(RefreshCCDFGraph());
    EXPECT_FALSE(RefreshCCDFGraph());
    EXPECT_EQ(shownBoxes(),
              (Boxes{"Pelmora|Subscript out of range: a profile has 1 to 400 points, not " +
                     std::to_string(points) + "|exclamation"}));
    EXPECT_EQ(shown().scale.width, 2);
    EXPECT_EQ(shown().polylines.size(), 1U);
    EXPECT_THROW(DrawCCDFGraph(), Fault);
    Settings.DisplayPoints = 2;
    EXPECT_TRUE(RefreshCCDFGraph());
  }
}

TEST_F(CCDFGraphTest, PowersAndPositionsOfTheAxis) {
  struct Row {
    float start;
    float stop;
    std::int16_t points;
    double x;
    float power;
  };
  const Row rows[] = {
      {-30, 0, 200, 0, -30},     {-30, 0, 200, 100, -15},    {-30, 0, 200, 200, 0},
      {-30, 0, 200, 1, -29.85F}, {-30, 0, 200, 210, 1.5F},   {-30, 0, 200, -10, -31.5F},
      {0, -30, 200, 50, -7.5F},  {-0.1F, 0.3F, 400, 100, 0}, {5, 15, 10, 2.5, 7.5F}};
  for (const Row& row : rows) {
    CCDF.StartPower = row.start;
    CCDF.StopPower = row.stop;
    Settings.DisplayPoints = row.points;
    EXPECT_FLOAT_EQ(XToPower(row.x), row.power);
    EXPECT_FLOAT_EQ(PowerToX(row.power), static_cast<float>(row.x));
    EXPECT_NEAR(XToPower(static_cast<double>(PowerToX(row.power))), row.power, 1e-5);
  }
}

TEST_F(CCDFGraphTest, DecimalPowersLieOnTheirColumns) {
  CCDF.StartPower = -0.3F;
  CCDF.StopPower = 0.1F;
  Settings.DisplayPoints = 400;
  EXPECT_EQ(PowerToX(0), 300);
  EXPECT_EQ(XToPower(300), 0);
}

TEST_F(CCDFGraphTest, AxisWithoutLengthHasOnePowerAndNoPositions) {
  CCDF.StopPower = CCDF.StartPower;
  EXPECT_EQ(XToPower(100), -30);
  EXPECT_THROW(PowerToX(-30), Fault);
}

TEST_F(CCDFGraphTest, WithoutPointsThereAreNoPowers) {
  Settings.DisplayPoints = 0;
  EXPECT_THROW(XToPower(100), Fault);
}

}  // namespace
}  // namespace pulsemod::test
