#include <gtest/gtest.h>

#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

TEST(Delay, OverwritesItsArgumentWithTheClockReadingThatEndsIt) {
  FakeWorld world;
  world.clock.seconds = 3600;
  float delay = 100;
  DelayMs(delay);
  EXPECT_EQ(delay, 3600.0F + 0.1F);
  EXPECT_GE(world.clock.secondsSinceMidnight(), delay);
  EXPECT_NEAR(world.clock.seconds, 3600.1, 0.002);
}

TEST(Delay, LetsTheUserInterfaceRunInsteadOfSleeping) {
  FakeWorld world;
  int handled = 0;
  for (int event = 0; event < 3; ++event) world.events.post([&handled] { ++handled; });
  float delay = 100;
  DelayMs(delay);
  EXPECT_EQ(handled, 3);
  EXPECT_TRUE(world.clock.sleeps.empty());
  EXPECT_GE(world.clock.secondsSinceMidnight(), delay);
}

TEST(Delay, LastsUntilTheTargetHoweverManyEventsCome) {
  FakeWorld world;
  world.clock.seconds = 3600;
  for (int event = 1; event <= 5; ++event) {
    world.events.post([&world] { world.clock.advance(0.01); });
  }
  float delay = 100;
  DelayMs(delay);
  ASSERT_EQ(world.events.deadlines.size(), 6U);
  EXPECT_NEAR(world.events.deadlines.front(), 101, 1);
  EXPECT_NEAR(world.events.deadlines.back(), 51, 1);
  EXPECT_NEAR(world.clock.seconds, 3600.1, 0.002);
}

TEST(Delay, ReachesItsTargetAcrossMidnight) {
  FakeWorld world;
  world.clock.seconds = 86399.95;
  const auto clockGoesTo = [&world](double seconds) {
    world.events.post([&world, seconds] { world.clock.seconds = seconds; });
  };
  clockGoesTo(0.0);
  clockGoesTo(0.03);
  clockGoesTo(0.10);
  float delay = 100;
  DelayMs(delay);
  EXPECT_EQ(delay, 86399.95F + 0.1F);
  EXPECT_EQ(world.events.deadlines.size(), 3U);
  EXPECT_EQ(world.clock.seconds, 0.10);
}

TEST(Delay, EndsLateInTheEveningWhenTheClockIsCoarse) {
  FakeWorld world;
  world.clock.seconds = 86000;
  float delay = 100;
  DelayMs(delay);
  EXPECT_NEAR(world.clock.seconds, 86000.1, 0.01);
}

}  // namespace
}  // namespace pulsemod::test
