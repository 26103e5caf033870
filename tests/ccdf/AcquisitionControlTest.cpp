#include <gtest/gtest.h>

#include "profile/AcquisitionControl.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

class AcquisitionControlTest : public ::testing::Test {
 protected:
  FakeWorld world;
};

TEST_F(AcquisitionControlTest, PauseSuspendsAndResumeRestores) {
  for (const Boolean16 running : {True16, False16}) {
    AcquisitionRunning = running;
    PauseAcquisition();
    EXPECT_EQ(AcquisitionRunning, False16);
    EXPECT_EQ(AcquisitionPause.Paused, True16);
    ResumeAcquisition();
    EXPECT_EQ(AcquisitionRunning, running);
    EXPECT_EQ(AcquisitionPause.Paused, False16);
  }
}

TEST_F(AcquisitionControlTest, SecondPauseAndResumeWithoutAPauseChangeNothing) {
  AcquisitionRunning = True16;
  PauseAcquisition();
  PauseAcquisition();
  ResumeAcquisition();
  EXPECT_EQ(AcquisitionRunning, True16);
  ResumeAcquisition();
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(AcquisitionControlTest, StartAndStopTakeEffectAtOnceOrAfterThePause) {
  SetAcquisitionRunning(true);
  EXPECT_EQ(AcquisitionRunning, True16);
  PauseAcquisition();
  SetAcquisitionRunning(false);
  ResumeAcquisition();
  EXPECT_EQ(AcquisitionRunning, False16);
  PauseAcquisition();
  SetAcquisitionRunning(true);
  EXPECT_EQ(AcquisitionRunning, False16);
  ResumeAcquisition();
  EXPECT_EQ(AcquisitionRunning, True16);
  SetAcquisitionRunning(false);
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(AcquisitionControlTest, StoppedLoopWaitsAndRunningLoopDoesNot) {
  EXPECT_THROW(letEventsRun(false), WaitsForEver);
  EXPECT_THROW(letEventsRun(true), WaitsForEver);
  EXPECT_EQ(world.events.waits, 2);
  AcquisitionRunning = True16;
  letEventsRun(false);
  EXPECT_EQ(world.events.waits, 2);
  EXPECT_EQ(world.events.pendingCalls, 1);
  EXPECT_TRUE(world.events.deadlines.empty());
  letEventsRun(true);
  EXPECT_EQ(world.events.pendingCalls, 1);
  EXPECT_EQ(world.events.deadlines, (std::vector<int>{10}));
}

TEST_F(AcquisitionControlTest, RateHasOneOrTwoDecimals) {
  for (const auto& [seconds, text] :
       {std::pair{0.01, "100.0"}, std::pair{0.5, "2.0"}, std::pair{0.8, "1.25"},
        std::pair{0.03, "33.33"}, std::pair{20.0, "0.05"}, std::pair{1000.0, "0.0"}}) {
    world.clock.seconds = seconds;
    EXPECT_EQ(rateText(0), std::string("Profile/Second: ") + text);
  }
}

TEST_F(AcquisitionControlTest, NoRateCanBeToldWhileTheClockStands) {
  world.clock.seconds = 5;
  EXPECT_FALSE(rateText(5));
}

TEST_F(AcquisitionControlTest, RateAcrossMidnightIsPositive) {
  world.clock.seconds = 0.25;
  EXPECT_EQ(rateText(86399.75F), "Profile/Second: 2.0");
}

}  // namespace
}  // namespace pulsemod::test
