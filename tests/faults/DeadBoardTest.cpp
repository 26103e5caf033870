#include <gtest/gtest.h>

#include <algorithm>

#include "Workflows.h"
#include "profile/AcquisitionLoop.h"
#include "profile/ParameterEdits.h"

/// A board or a meter that fails each profile must not take the processor.

namespace pulsemod::test {
namespace {

class DeadBoard : public testing::Test {
 protected:
  DeadBoard() { Rig::act(StartAcquisition); }

  /// Runs the loop for a second of the world's clock; how many profiles it has asked for.
  long passesInASecond() {
    const double end = rig.world.clock.seconds + 1;
    int rounds = 0;
    rig.world.events.always = [this, end, &rounds] {
      constexpr int most = 10000;  // where the clock stands, nothing else would end the loop
      if (rig.world.clock.seconds >= end || ++rounds > most) throw ProgramEnded();
    };
    const auto asked = [this] {
      const auto& calls = rig.world.gpib.calls;
      return std::count(calls.begin(), calls.end(), "Send 13 TR1 1");
    };
    const long before = asked();
    EXPECT_THROW(RunAcquisitionLoop(), ProgramEnded);
    return asked() - before;
  }

  void expectSilence() {
    EXPECT_TRUE(rig.world.dialogs.messages.empty());
    EXPECT_EQ(rig.profile.menus, std::vector<std::string>{"started"});
  }

  const std::vector<std::string> setup{"SYDRES 200"};
  Rig rig{false, setup, {}};
};

TEST_F(DeadBoard, MakesAHundredPassesASecondAtMost) {
  for (const char* call : {"Send", "Receive"}) {
    rig.world.gpib.fault = [call](const std::string& name) {
      return name == call ? std::optional(7) : std::nullopt;
    };
    const long passes = passesInASecond();
    EXPECT_LE(passes, 101) << call;
    EXPECT_GE(passes, 95) << call;
  }
  expectSilence();
}

/// Here the pause after the read comes on top.
TEST_F(DeadBoard, ThatCannotBePolledMakesFiftyPassesASecond) {
  rig.world.gpib.fault = [](const std::string& name) {
    return name == "ReadStatusByte" ? std::optional(6) : std::nullopt;
  };
  const long passes = passesInASecond();
  EXPECT_LE(passes, 51);
  EXPECT_GE(passes, 45);
  expectSilence();
}

TEST_F(DeadBoard, AnEventEndsItsPauseAtOnce) {
  rig.world.gpib.fault = [](const std::string&) { return std::optional(7); };
  AcquireProfile();
  bool clicked = false;
  rig.world.events.post([&clicked] { clicked = true; });
  const double before = rig.world.clock.seconds;
  AcquireProfile();
  EXPECT_TRUE(clicked);
  EXPECT_EQ(rig.world.clock.seconds, before);
}

TEST_F(DeadBoard, AnEditIsTriedOnceAndStays) {
  rig.world.gpib.fault = [](const std::string&) { return std::optional(7); };
  rig.type("5", EditReferenceLevel);
  passesInASecond();
  EXPECT_EQ(rig.world.gpib.timesCalled("Send 13 PMPREF 1,DB,5"), 1);
  EXPECT_EQ(Settings.ReferenceLevel, 5);
  expectSilence();
}

}  // namespace
}  // namespace pulsemod::test
