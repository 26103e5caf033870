#include <gtest/gtest.h>

#include <algorithm>

#include "Workflows.h"
#include "ccdf/CCDFLoop.h"
#include "profile/AcquisitionLoop.h"

/// The device of the serial port is pulled before, during and after every exchange: the program
/// ends up as the oracle says, and the user is told once.

namespace pulsemod::test {
namespace {

constexpr auto lossBox = "Pelmora|The serial port was lost.|exclamation|";

class SerialLoss : public testing::TestWithParam<OnLink> {
 protected:
  void expectAsTheOracleSays(const LossPlan& plan) {
    const Workflow& workflow = *GetParam().workflow;
    const Faults faults{.spoil = {}, .gpib = {}, .loss = plan};
    Rig rig(true, workflow.setup, faults);
    const Outcome actual = rig.follow(workflow.run);
    const std::string where = "message " + std::to_string(plan.message) + ", moment " +
                              std::to_string(static_cast<int>(plan.moment));
    EXPECT_EQ(differences(expected(workflow, true, faults), actual), "") << where;
    const auto told = std::count(actual.boxes.begin(), actual.boxes.end(), lossBox);
    if (actual.end == Outcome::End::ended) {
      EXPECT_EQ(told, 0) << where;
    } else if (!rig.world.serial.isOpen()) {
      ++told_;
      EXPECT_EQ(told, 1) << where;
      EXPECT_FALSE(actual.running) << where;
      expectAStartToSayWhy(rig, where);
    }
  }

  /// Nothing reaches the meter any more, and a start says why it cannot be.
  void expectAStartToSayWhy(Rig& rig, const std::string& where) {
    const Outcome before = rig.follow([](Rig&) {});
    const Outcome after = rig.follow([](Rig&) {
      Rig::act(isCcdf() ? StartCCDF : StartAcquisition);
      isCcdf() ? AcquireCCDF() : AcquireProfile();
    });
    EXPECT_EQ(after.sent, before.sent) << where;
    EXPECT_FALSE(after.running) << where;
    EXPECT_EQ(after.end, Outcome::End::returned) << where;
    EXPECT_EQ(after.drawings, before.drawings) << where;
    ASSERT_EQ(after.boxes.size(), before.boxes.size() + 1) << where;
    EXPECT_EQ(after.boxes.back(), lossBox) << where;
    ASSERT_EQ(after.menus.size(), before.menus.size() + 2) << where;
    EXPECT_EQ(after.menus.back(), "stopped") << where;
  }

  static bool isCcdf() {
    const std::string name = GetParam().workflow->name;
    return name == "CCDF" || name == "Curves";
  }

  int told_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Workflows, SerialLoss, testing::ValuesIn(everyWorkflow(false, true)),
                         [](const auto& tested) { return nameOf(tested.param); });

TEST_P(SerialLoss, AtEachMomentOfEachExchange) {
  const Workflow& workflow = *GetParam().workflow;
  Rig clean(true, workflow.setup, {});
  clean.follow(workflow.run);
  ASSERT_GE(clean.messages, 5);
  using enum LossPlan::Moment;
  for (int message = 0; message < clean.messages; ++message) {
    for (const auto moment : {before, leaving, left, midReply, afterReply}) {
      expectAsTheOracleSays({message, moment});
    }
  }
  EXPECT_GT(told_, 0);
}

class PortThatDoesNotOpen : public testing::TestWithParam<StartChoice> {};

INSTANTIATE_TEST_SUITE_P(Courses, PortThatDoesNotOpen,
                         testing::Values(StartChoice::loadFromMeter, StartChoice::configureMeter,
                                         StartChoice::ccdfMode, StartChoice::justStart));

TEST_P(PortThatDoesNotOpen, EndsTheStartWithItsReason) {
  const std::vector<std::string> setup;
  Rig rig(true, setup, {});
  rig.world.serial.opens = false;
  rig.world.serial.reason = "The port is not there.";
  const Outcome outcome = rig.follow([](Rig& started) { started.start(GetParam()); });
  EXPECT_EQ(outcome.end, Outcome::End::ended);
  EXPECT_TRUE(outcome.sent.empty());
  EXPECT_EQ(outcome.boxes,
            std::vector<std::string>{"*IDN? Failure|Could not read Power Meter Identity\r\n\r\n"
                                     "Program will exit.|exclamation|The port is not there."});
}

}  // namespace
}  // namespace pulsemod::test
