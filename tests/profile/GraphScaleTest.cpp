#include "ProfileTest.h"
#include "link/Fault.h"
#include "profile/GraphScale.h"

namespace pulsemod::test {
namespace {

using GraphScaleTest = ProfileTest;

TEST_F(GraphScaleTest, TimesBecomeTracePoints) {
  struct Case {
    float time, delay, capture;
    std::int16_t points;
    float x;
  };
  const std::vector<Case> cases = {
      {0.0F, 0.0F, 0.0046F, 200, 0.0F},
      {0.0023F, 0.0F, 0.0046F, 200, 100.0F},
      {0.0023F, 0.0F, 0.0046F, 400, 200.0F},
      // In singles alone this would be just below 30.
      {0.00069F, 0.0F, 0.0046F, 200, 30.0F},
      {0.0625F, 0.0F, 1.0F, 200, 12.5F},
      {0.0025F, 0.001F, 0.003F, 200, 100.0F},
      {0.0F, -0.5F, 1.0F, 200, 100.0F},
  };
  for (const Case& c : cases) {
    Settings.TriggerDelay = c.delay;
    Settings.CaptureTime = c.capture;
    Settings.DisplayPoints = c.points;
    EXPECT_EQ(TimeToGraphX(c.time), c.x) << c.time << " s, " << c.points << " points";
  }
}

TEST_F(GraphScaleTest, SettingsEnterThroughTheirTexts) {
  // The single of 0.001 is above it, that of 0.1 as well: with these, the columns would be less.
  Settings.CaptureTime = 0.001F;
  EXPECT_EQ(TimeToGraphX(0.00045F), 90.0F);
  EXPECT_EQ(GraphXToTime(10.0F), 0.00005F);
  Settings.CaptureTime = 0.125F;
  Settings.TriggerDelay = 0.1F;
  EXPECT_EQ(TimeToGraphX(0.125F), 40.0F);
  Settings.CaptureTime = 0.001F;
  Settings.TriggerDelay = 0.0009F;
  EXPECT_EQ(GraphXToTime(10.0F), 0.00095F);
}

TEST_F(GraphScaleTest, TimesOutsideTheCaptureAreClamped) {
  Settings.TriggerDelay = 0.001F;
  EXPECT_EQ(TimeToGraphX(0.0009F), 0.0F);
  EXPECT_EQ(TimeToGraphX(-1.0F), 0.0F);
  EXPECT_EQ(TimeToGraphX(0.0057F), 200.0F);
  EXPECT_EQ(TimeToGraphX(100.0F), 200.0F);
}

TEST_F(GraphScaleTest, DelayItselfIsColumnZeroAndTheEndTheLastPoint) {
  struct Case {
    float delay, capture, end;
  };
  const std::vector<Case> cases = {{0.0F, 0.0046F, 0.0046F},
                                   {0.001F, 0.0046F, 0.0056F},
                                   {0.0003F, 0.002F, 0.0023F},
                                   {0.1F, 0.0046F, 0.1046F}};
  for (const Case& c : cases) {
    Settings.TriggerDelay = c.delay;
    Settings.CaptureTime = c.capture;
    EXPECT_EQ(TimeToGraphX(c.delay), 0.0F) << c.delay << " s";
    EXPECT_EQ(TimeToGraphX(c.end), 200.0F) << c.end << " s";
  }
}

TEST_F(GraphScaleTest, ZeroCaptureTimeIsAFault) {
  Settings.CaptureTime = 0;
  EXPECT_THROW(TimeToGraphX(0.0F), Fault);
  EXPECT_THROW(TimeToGraphX(0.001F), Fault);
}

TEST_F(GraphScaleTest, NoPointsHaveNoTimes) {
  Settings.DisplayPoints = 0;
  EXPECT_THROW(GraphXToTime(1.0F), Fault);
}

TEST_F(GraphScaleTest, NoPointsHaveNoColumns) {
  Settings.DisplayPoints = 0;
  EXPECT_THROW(TimeToGraphX(0.001F), Fault);
}

TEST_F(GraphScaleTest, ColumnsAndTimesBeyondASingleAreAFault) {
  Settings.CaptureTime = 1E-37F;
  EXPECT_THROW(TimeToGraphX(1E+30F), Fault);
  Settings.CaptureTime = 3E+38F;
  Settings.DisplayPoints = 1;
  EXPECT_THROW(GraphXToTime(3.0F), Fault);
}

TEST_F(GraphScaleTest, ColumnsBecomeTimesUnclamped) {
  struct Case {
    float x, delay;
    float time;
  };
  const std::vector<Case> cases = {{0.0F, 0.0F, 0.0F},        {100.0F, 0.0F, 0.0023F},
                                   {200.0F, 0.0F, 0.0046F},   {30.0F, 0.0F, 0.00069F},
                                   {-100.0F, 0.0F, -0.0023F}, {400.0F, 0.0F, 0.0092F},
                                   {0.0F, 0.001F, 0.001F},    {100.0F, 0.001F, 0.0033F}};
  for (const Case& c : cases) {
    Settings.TriggerDelay = c.delay;
    EXPECT_EQ(GraphXToTime(c.x), c.time) << "x " << c.x << ", delay " << c.delay;
  }
  Settings.TriggerDelay = 0;
  Settings.DisplayPoints = 400;
  EXPECT_EQ(GraphXToTime(100.0F), 0.00115F);
}

TEST_F(GraphScaleTest, ScaleStandsAtOneAndReachesTenDivisionsDown) {
  struct Case {
    float reference, perDivision;
    std::int16_t points;
    PictureScale scale;
    double bottom;
  };
  const std::vector<Case> cases = {
      {10.0F, 10.0F, 200, {1, 10, 200, -100}, -90},
      {-20.0F, 5.0F, 400, {1, -20, 400, -50}, -70},
      {0.0F, 0.5F, 1, {1, 0, 1, -5}, -5},
      {5.0F, -10.0F, 200, {1, 5, 200, 100}, 105},
  };
  for (const Case& c : cases) {
    Settings.ReferenceLevel = c.reference;
    Settings.ScalePerDivision = c.perDivision;
    Settings.DisplayPoints = c.points;
    EXPECT_EQ(profileGraphScale(), c.scale) << c.reference << " dBm, " << c.perDivision << " dB";
    EXPECT_EQ(graphBottomLevel(), c.bottom);
  }
}

TEST_F(GraphScaleTest, NoAreaToDrawOnIsAFault) {
  for (const std::int16_t points : std::initializer_list<std::int16_t>{0, -1, -200}) {
    Settings.DisplayPoints = points;
    EXPECT_THROW(profileGraphScale(), Fault) << points << " points";
  }
  Settings.DisplayPoints = 200;
  Settings.ScalePerDivision = 0;
  EXPECT_THROW(profileGraphScale(), Fault);
}

}  // namespace
}  // namespace pulsemod::test
