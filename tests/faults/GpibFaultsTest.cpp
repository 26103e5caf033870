#include <gtest/gtest.h>

#include "Workflows.h"
#include "ccdf/CCDFLoop.h"
#include "profile/AcquisitionLoop.h"

/// Every call of the GPIB library that a workflow makes fails, once or from there on, with every
/// error code: the program ends up as the oracle says, and can be started again when the link is
/// well.

namespace pulsemod::test {
namespace {

constexpr int codes = 17;  // EDVR to ESAC

class GpibFaults : public testing::TestWithParam<OnLink> {
 protected:
  void expectAsTheOracleSays(const GpibPlan& plan) {
    const Workflow& workflow = *GetParam().workflow;
    const Faults faults{.spoil = {}, .gpib = plan, .loss = {}};
    Rig rig(false, workflow.setup, faults);
    const Outcome actual = rig.follow(workflow.run);
    const std::string where = "call " + std::to_string(plan.first) +
                              (plan.forEver ? " and all after it, code " : ", code ") +
                              std::to_string(plan.code);
    EXPECT_EQ(differences(expected(workflow, false, faults), actual), "") << where;
    if (actual.end == Outcome::End::returned) expectToBeStartedAgain(rig, where);
  }

  /// A loop that is stopped says nothing, and one that is started with a healthy link works.
  void expectToBeStartedAgain(Rig& rig, const std::string& where) {
    rig.heal();
    if (AcquisitionRunning != False16) rig.follow([](Rig&) { stop(); });
    const std::size_t sent = rig.world.meter.received.size();
    rig.follow([](Rig&) { pass(); });
    EXPECT_EQ(rig.world.meter.received.size(), sent) << where;
    const Outcome before = rig.follow([](Rig&) {});
    const Outcome after = rig.follow([](Rig&) {
      start();
      pass();
    });
    EXPECT_EQ(after.end, Outcome::End::returned) << where;
    EXPECT_TRUE(after.running) << where;
    EXPECT_EQ(after.menus.back(), "started") << where;
    EXPECT_EQ(after.drawings, before.drawings + (isCcdf() ? 1 : 2)) << where;
    EXPECT_EQ(after.boxes, before.boxes) << where;
  }

  static bool isCcdf() {
    const std::string name = GetParam().workflow->name;
    return name == "CCDF" || name == "Curves";
  }
  static void start() { Rig::act(isCcdf() ? StartCCDF : StartAcquisition); }
  static void stop() { Rig::act(isCcdf() ? StopCCDF : StopAcquisition); }
  static void pass() { isCcdf() ? AcquireCCDF() : AcquireProfile(); }

  static int callsOfTheCleanRun() {
    const Workflow& workflow = *GetParam().workflow;
    Rig rig(false, workflow.setup, {});
    rig.follow(workflow.run);
    return rig.gpibCalls;
  }
};

INSTANTIATE_TEST_SUITE_P(Workflows, GpibFaults, testing::ValuesIn(everyWorkflow(true, false)),
                         [](const auto& tested) { return nameOf(tested.param); });

/// Which code it is matters to the start alone; so each call meets another one.
TEST_P(GpibFaults, OnceAtEachCall) {
  const int calls = callsOfTheCleanRun();
  EXPECT_GT(calls, 10);
  for (int call = 0; call < calls; ++call) expectAsTheOracleSays({call, false, call % codes});
}

TEST_P(GpibFaults, FromEachCallOn) {
  const int calls = callsOfTheCleanRun();
  for (int call = 0; call < calls; ++call) expectAsTheOracleSays({call, true, call % codes});
}

TEST_P(GpibFaults, EachCodeAtTheFirstTheSecondAndTheTenthCall) {
  for (const int call : {0, 1, 9}) {
    for (int code = 0; code < codes; ++code) {
      expectAsTheOracleSays({call, false, code});
      expectAsTheOracleSays({call, true, code});
    }
  }
}

}  // namespace
}  // namespace pulsemod::test
