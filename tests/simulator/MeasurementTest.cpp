// Measurements against a second computation from the trace that was sent.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Bench.h"
#include "Measurements.h"

namespace simmeter {
namespace {

struct Expected {
  double average, peak, minimum;
  int count;
};

// Points of a 2 ms capture with 400 points and -0.2 ms delay that a condition on their time keeps.
template <typename Keeps>
Expected expect(const std::vector<double>& trace, Keeps keeps) {
  Expected result{0, -1000, 1000, 0};
  for (std::size_t i = 0; i < trace.size(); ++i) {
    const double time = -2e-4 + 5e-6 * static_cast<double>(i + 1);
    if (!keeps(time)) continue;
    result.average += std::pow(10, trace[i] / 10);
    result.peak = std::max(result.peak, trace[i]);
    result.minimum = std::min(result.minimum, trace[i]);
    ++result.count;
  }
  result.average = 10 * std::log10(result.average / result.count);
  return result;
}

TEST(Measurement, ProfileIsMeasuredOnTheTraceThatWasSent) {
  Bench bench;
  const Expected all = expect(levels(bench.ask("PMPO 1")), [](double) { return true; });
  const std::string three = bench.ask("PMRDO 1");
  EXPECT_NEAR(numberAt(three, 3), all.average, 0.0006);
  EXPECT_NEAR(numberAt(three, 5), all.peak, 1e-9);
  EXPECT_NEAR(numberAt(three, 7), all.peak - all.average, 0.0006);
  bench.tell("PMMEAS 1,4");
  const std::string four = bench.ask("PMRDO 1");
  EXPECT_NEAR(numberAt(four, 3), all.average, 0.0006);
  EXPECT_NEAR(numberAt(four, 5), all.minimum, 1e-9);
  EXPECT_NEAR(numberAt(four, 7), all.peak, 1e-9);
}

TEST(Measurement, GateLeavesOutItsFence) {
  Bench bench;
  // Half a point away from the points, so that rounding of an edge cannot matter.
  bench.tell("GPTIMST 1,1,-0.0000525;GPTIMSP 1,1,0.0005525");
  bench.tell("GPFENST 1,1,0.0001025;GPFENSP 1,1,0.0002025;GPFENS 1,1,ON;PMMEAS 1,4");
  const std::vector<double> trace = levels(bench.ask("PMPO 1"));
  const auto inGate = [](double t) { return t > -0.0000525 && t < 0.0005525; };
  const auto inFence = [](double t) { return t > 0.0001025 && t < 0.0002025; };
  const Expected fenced = expect(trace, [&](double t) { return inGate(t) && !inFence(t); });
  const Expected whole = expect(trace, inGate);
  EXPECT_EQ(fenced.count, 101);
  EXPECT_EQ(whole.count, 121);
  std::string reply = bench.ask("GPNMO 1,1");
  EXPECT_NEAR(numberAt(reply, 4), fenced.average, 0.0006);
  EXPECT_NEAR(numberAt(reply, 6), fenced.minimum, 1e-9);
  EXPECT_NEAR(numberAt(reply, 8), fenced.peak, 1e-9);
  bench.tell("GPFENS 1,1,OFF");
  reply = bench.ask("GPNMO 1,1");
  EXPECT_NEAR(numberAt(reply, 4), whole.average, 0.0006);
  EXPECT_GT(std::fabs(whole.average - fenced.average), 0.01);
}

TEST(Measurement, RepeatedGatesAreGateOneMoved) {
  Bench bench;
  bench.tell("GPTIMST 1,1,-0.0001025;GPTIMSP 1,1,-0.0000525;GPFENS 1,1,OFF;PMMEAS 1,4");
  bench.tell("GP1REPT 1,0.0002;GP1REPN 1,8;GP1REPS 1,ON");
  const std::vector<double> trace = levels(bench.ask("PMPO 1"));
  for (int gate = 1; gate <= 8; ++gate) {
    const double shift = 0.0002 * (gate - 1);
    const Expected one =
        expect(trace, [&](double t) { return t > -0.0001025 + shift && t < -0.0000525 + shift; });
    ASSERT_EQ(one.count, 10);
    const std::string reply = bench.ask("GPNMO 1," + std::to_string(gate));
    EXPECT_NEAR(numberAt(reply, 4), one.average, 0.0006) << gate;
    EXPECT_NEAR(numberAt(reply, 8), one.peak, 1e-9) << gate;
  }
}

TEST(Measurement, RepeatReachesOnlyItsCount) {
  Bench bench;
  bench.tell("*CLS;GP1REPN 1,6;GP1REPS 1,ON");
  EXPECT_NE(bench.ask("GPNMO 1,6"), "");
  EXPECT_EQ(bench.ask("GPNMO 1,7"), "");
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  bench.tell("GP1REPN 1,2");
  const std::string own = bench.ask("GPNMO 1,3");  // gate 3 is on its own again
  EXPECT_NE(own, "");
}

TEST(Measurement, GateOutsideTheTraceHasNoReading) {
  Bench bench;
  bench.tell("GPTIMST 1,2,1;GPTIMSP 1,2,1.5;PMMEAS 1,4");
  const std::string reply = bench.ask("GPNMO 1,2");
  EXPECT_EQ(numberAt(reply, 4), kNoReading);
  EXPECT_EQ(numberAt(reply, 6), kNoReading);
}

TEST(Measurement, MarkersReadTheTraceThatWasSent) {
  Bench bench;
  const std::vector<double> trace = levels(bench.ask("PMPO 1"));
  for (const int point : {1, 57, 200, 399, 400}) {
    std::string command = "MKPOS 1,1,";
    appendNumber(command, -2e-4 + 5e-6 * point);
    bench.tell(command);
    EXPECT_EQ(numberAt(bench.ask("MKNO 1,1"), 2), trace[static_cast<std::size_t>(point - 1)])
        << point;
  }
  bench.tell("MKPOS 1,1,0.0019");
  EXPECT_EQ(numberAt(bench.ask("MKNO 1,1"), 2), kNoReading);
}

TEST(Measurement, DeltaMarkerComparesWithTheActiveOne) {
  Bench bench;
  bench.tell("MKACTN 1,1;MKPOS 1,1,0.0001;MKDPOS 1,0.0009;MKDMEAS 1,PDIFF");
  const std::vector<double> trace = levels(bench.ask("PMPO 1"));
  EXPECT_NEAR(numberAt(bench.ask("MKDO 1"), 2), trace[219] - trace[59], 1e-9);
  bench.tell("MKPOS 1,1,0.0001025;MKDPOS 1,0.0009025;MKDMEAS 1,PAVG");
  const Expected between = expect(trace, [](double t) { return t > 0.0001025 && t < 0.0009025; });
  EXPECT_NEAR(numberAt(bench.ask("MKDO 1"), 2), between.average, 0.0006);
}

TEST(Measurement, NewTimingIsMeasuredOnANewTrace) {
  Bench bench;
  bench.ask("PMPO 1");
  bench.tell("TRDLYT 1,PMOD,0.7e-3;TRCAPT 1,PMOD,0.0004");  // off level only
  EXPECT_NEAR(numberAt(bench.ask("PMRDO 1"), 3), pulse::kOffLevel, 1);
}

}  // namespace
}  // namespace simmeter
