#include "ProfileTest.h"
#include "profile/AcquisitionControl.h"

namespace pulsemod::test {
namespace {

class AcquisitionPauseTest : public ProfileTest {};

TEST_F(AcquisitionPauseTest, EndsAsItBegan) {
  for (const Boolean16 running : {True16, False16}) {
    AcquisitionRunning = running;
    PauseAcquisition();
    EXPECT_EQ(AcquisitionRunning, False16);
    ResumeAcquisition();
    EXPECT_EQ(AcquisitionRunning, running);
  }
}

TEST_F(AcquisitionPauseTest, SecondPauseRemembersWhatTheFirstFound) {
  AcquisitionRunning = True16;
  PauseAcquisition();
  PauseAcquisition();
  EXPECT_EQ(AcquisitionRunning, False16);
  ResumeAcquisition();
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(AcquisitionPauseTest, EndWithoutAPauseChangesNothing) {
  AcquisitionRunning = True16;
  ResumeAcquisition();
  EXPECT_EQ(AcquisitionRunning, True16);
  PauseAcquisition();
  ResumeAcquisition();
  SetAcquisitionRunning(false);
  ResumeAcquisition();
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(AcquisitionPauseTest, StartAndStopTakeEffectAtItsEnd) {
  for (const bool running : {true, false}) {
    SetAcquisitionRunning(!running);
    PauseAcquisition();
    SetAcquisitionRunning(running);
    EXPECT_EQ(AcquisitionRunning, False16);
    ResumeAcquisition();
    EXPECT_EQ(AcquisitionRunning, running ? True16 : False16);
  }
}

TEST_F(AcquisitionPauseTest, StartAndStopOutsideAPauseTakeEffectAtOnce) {
  SetAcquisitionRunning(true);
  EXPECT_EQ(AcquisitionRunning, True16);
  SetAcquisitionRunning(false);
  EXPECT_EQ(AcquisitionRunning, False16);
}

}  // namespace
}  // namespace pulsemod::test
