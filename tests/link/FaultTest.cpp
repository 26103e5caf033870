#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "link/ConfigProgress.h"
#include "link/ExchangeCount.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

std::string faultOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const Fault& fault) {
    return fault.what();
  }
  return "no fault";
}

TEST(Faults, AreReportedOnceInABoxOfTheirOwn) {
  FakeWorld world;
  EXPECT_FALSE(reportFaults([] { throw Fault("Subscript out of range"); }));
  EXPECT_EQ(
      world.dialogs.messages,
      (std::vector<ShownBox>{{"Subscript out of range", "Pelmora", MessageIcon::exclamation, ""}}));
}

TEST(Faults, AHandlerWithoutAFaultShowsNothing) {
  FakeWorld world;
  bool ran = false;
  EXPECT_TRUE(reportFaults([&ran] { ran = true; }));
  EXPECT_TRUE(ran);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST(Faults, TheEndOfTheProgramIsNoFault) {
  FakeWorld world;
  EXPECT_THROW(reportFaults([] { throw ProgramEnded(); }), ProgramEnded);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST(Faults, CheckedQuotient) {
  EXPECT_EQ(checkedQuotient(1, 4), 0.25);
  EXPECT_EQ(checkedQuotient(0, -4), 0);
  EXPECT_EQ(faultOf([] { checkedQuotient(1, 0); }), "Division by zero");
  EXPECT_EQ(faultOf([] { checkedQuotient(0, -0.0); }), "Division by zero");
  EXPECT_EQ(faultOf([] { checkedQuotient(1e300, 1e-300); }), "Overflow");
  EXPECT_EQ(faultOf([] { checkedQuotient(std::nan(""), 1); }), "Overflow");
}

TEST(Faults, CheckedSingle) {
  const double largest = static_cast<double>(std::numeric_limits<float>::max());
  EXPECT_EQ(checkedSingle(0.0046), 0.0046F);
  EXPECT_EQ(checkedSingle(-largest), std::numeric_limits<float>::lowest());
  EXPECT_EQ(faultOf([] { checkedSingle(3.5e38); }), "Overflow");
  EXPECT_EQ(faultOf([] { checkedSingle(-3.5e38); }), "Overflow");
  EXPECT_EQ(faultOf([] { checkedSingle(std::nan("")); }), "Overflow");
}

TEST(ConfigurationProgress, ShowsItsStepsAndHidesAtTheEnd) {
  FakeWorld world;
  {
    const ConfigProgress progress("Setting Active Channel...");
    EXPECT_TRUE(world.progress.visible);
    progress.step("Reading Gates...3");
    EXPECT_EQ(world.progress.hides, 0);
  }
  EXPECT_EQ(world.progress.texts,
            (std::vector<std::string>{"Please Wait... Setting Active Channel...",
                                      "Please Wait... Reading Gates...3"}));
  EXPECT_EQ(world.progress.hides, 1);
  EXPECT_FALSE(world.progress.visible);
}

TEST(ConfigurationProgress, HidesWhenAFaultLeavesTheRoutine) {
  FakeWorld world;
  EXPECT_FALSE(reportFaults([] {
    const ConfigProgress progress("First...");
    throw Fault("broken");
  }));
  EXPECT_EQ(world.progress.hides, 1);
}

TEST(ConfigurationProgress, StaysOnTheScreenWhenAsked) {
  FakeWorld world;
  {
    ConfigProgress progress("First...");
    progress.leaveOnScreen();
  }
  EXPECT_TRUE(world.progress.visible);
  EXPECT_EQ(world.progress.hides, 0);
}

TEST(ConfigurationProgress, BarGrowsWithEachExchangeAndNotBeyondItsEnd) {
  FakeWorld world;
  {
    ConfigProgress progress("First...");
    SendCommand("CHDISPN 1");
    EXPECT_TRUE(world.progress.bars.empty());
    progress.expect(2);
    for (int exchange = 0; exchange < 3; ++exchange) SendCommand("CHDISPN 1");
  }
  SendCommand("CHDISPN 1");
  EXPECT_EQ(world.progress.bars,
            (std::vector<std::pair<int, int>>{{0, 2}, {1, 2}, {2, 2}, {2, 2}}));
}

TEST(ConfigurationProgress, ShowsNoStepOfARoutineThatIsOnlyCounted) {
  FakeWorld world;
  const ConfigProgress progress("First...");
  countExchanges([&progress] { progress.step("Second..."); });
  EXPECT_EQ(world.progress.texts, (std::vector<std::string>{"Please Wait... First..."}));
  progress.step("Second...");
  EXPECT_EQ(world.progress.texts.back(), "Please Wait... Second...");
}

}  // namespace
}  // namespace pulsemod::test
