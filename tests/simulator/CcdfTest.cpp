#include <gtest/gtest.h>

#include <cmath>

#include "Bench.h"
#include "Ccdf.h"

namespace simmeter {
namespace {

std::vector<double> curve(Bench& bench) { return levels(bench.ask("TTFRO 1")); }

// Power of the curve's point i, counted from 1.
double powerOf(int point, double start = -30, double stop = 20) {
  return start + point * (stop - start) / 400;
}

TEST(Ccdf, GaussianEnvelopeHasExponentialPower) {
  EXPECT_NEAR(exceedance(Envelope::kGaussian, 0, 0), std::exp(-1.0), 1e-12);
  EXPECT_NEAR(exceedance(Envelope::kGaussian, 5, 15), std::exp(-10.0), 1e-12);
  EXPECT_NEAR(exceedance(Envelope::kGaussian, 0, -60), 1, 1e-5);
}

TEST(Ccdf, FixedEnvelopeIsAStep) {
  EXPECT_NEAR(exceedance(Envelope::kFixed, 5, 5), 0.5, 1e-12);
  EXPECT_NEAR(exceedance(Envelope::kFixed, 5, 5 - 3 * kFixedDeviation), 0.99865, 1e-5);
  EXPECT_NEAR(exceedance(Envelope::kFixed, 5, 5 + 3 * kFixedDeviation), 0.00135, 1e-5);
}

// What a million samples may differ from the expectation, in percent: five deviations and the
// rounding of the reply.
double tolerance(double percent) {
  const double p = percent / 100;
  return 100 * 5 * std::sqrt(p * (1 - p) / 1e6) + 0.0003;
}

TEST(Ccdf, MarkerSourceFollowsTheFormula) {
  Bench bench("setup = PPACQS 1,ON\nsetup = TTSRC 1,MARKER\n");
  const double level = sensorLevel(false, 1e-4);
  const std::vector<double> points = curve(bench);
  ASSERT_EQ(points.size(), 400u);
  for (int i = 1; i <= 400; ++i) {
    const double expected = 100 * std::exp(-std::pow(10, (powerOf(i) - level) / 10));
    EXPECT_NEAR(points[static_cast<std::size_t>(i - 1)], expected, tolerance(expected)) << i;
  }
}

TEST(Ccdf, ChannelSourceHoldsTheTimeBetweenPulses) {
  Bench bench("setup = PPACQS 1,ON\n");
  const std::vector<double> points = curve(bench);
  // Far below the top: the pulse's share of the period, plus what is left of the falling edge.
  EXPECT_NEAR(points[0], 53.7, 0.4);
  // An independent average over a finer division of the period.
  for (const int i : {100, 200, 260, 300, 330}) {
    double expected = 0;
    for (int k = 0; k < 12000; ++k) {
      const double level = sensorLevel(false, (k + 0.5) * pulse::kPeriod / 12000);
      expected += std::exp(-std::pow(10, (powerOf(i) - level) / 10)) / 120;
    }
    EXPECT_NEAR(points[static_cast<std::size_t>(i - 1)], expected, tolerance(expected) + 0.05) << i;
  }
}

TEST(Ccdf, GateSourceHoldsTheGateOnly) {
  Bench bench("setup = PPACQS 1,ON\n");
  bench.tell("GPTIMST 1,1,0.0002;GPTIMSP 1,1,0.0004;GPFENS 1,1,OFF;TTSRC 1,GATE");
  EXPECT_GT(curve(bench)[0], 99.9);
  // Off time inside the gate shows, and vanishes again behind a fence.
  bench.tell("GPTIMSP 1,1,0.001");
  EXPECT_LT(curve(bench)[0], 60);
  bench.tell("GPFENST 1,1,0.0005;GPFENSP 1,1,0.0011;GPFENS 1,1,ON");
  EXPECT_GT(curve(bench)[0], 99.9);
}

TEST(Ccdf, SourcesDiffer) {
  Bench bench("setup = PPACQS 1,ON\n");
  const double channelShare = curve(bench)[0];
  bench.tell("MKACTN 1,3;TTSRC 1,MARKER");  // between the pulses
  const double markerShare = curve(bench)[0];
  bench.tell("TTSRC 1,GATE");
  const double gateShare = curve(bench)[0];
  EXPECT_NEAR(channelShare, 53.7, 0.4);
  EXPECT_EQ(markerShare, 0);
  EXPECT_GT(gateShare, 99);
}

TEST(Ccdf, FixedEnvelopeScenarioShowsAStepAtTheLevel) {
  Bench bench("envelope = fixed\nsetup = PPACQS 1,ON\nsetup = TTSRC 1,MARKER\n");
  const double level = sensorLevel(false, 1e-4);
  const std::vector<double> points = curve(bench);
  for (int i = 1; i <= 400; ++i) {
    if (powerOf(i) < level - 1) {
      EXPECT_EQ(points[static_cast<std::size_t>(i - 1)], 100);
    }
    if (powerOf(i) > level + 1) {
      EXPECT_EQ(points[static_cast<std::size_t>(i - 1)], 0);
    }
  }
}

TEST(Ccdf, CurveNeverRises) {
  Bench bench("setup = PPACQS 1,ON\n");
  const std::vector<double> points = curve(bench);
  for (std::size_t i = 1; i < points.size(); ++i) EXPECT_LE(points[i], points[i - 1]) << i;
}

TEST(Ccdf, AxisFollowsStartAndStopPower) {
  Bench bench("setup = PPACQS 1,ON\nsetup = TTSRC 1,MARKER\n");
  bench.tell("TTPST 1,0;TTPSP 1,10");
  const double level = sensorLevel(false, 1e-4);
  const std::vector<double> points = curve(bench);
  for (const int i : {1, 200, 400}) {
    const double expected = 100 * std::exp(-std::pow(10, (powerOf(i, 0, 10) - level) / 10));
    EXPECT_NEAR(points[static_cast<std::size_t>(i - 1)], expected, tolerance(expected)) << i;
  }
}

TEST(Ccdf, CrossedAxisRunsTheOtherWay) {
  Bench bench("setup = PPACQS 1,ON\nsetup = TTSRC 1,MARKER\n");
  bench.tell("TTPST 1,20;TTPSP 1,-30");
  const std::vector<double> points = curve(bench);
  EXPECT_EQ(points.front(), 0);
  EXPECT_GT(points.back(), 99.9);
}

TEST(Ccdf, SamplesAccumulateUntilARestart) {
  const std::vector<double> level{0};
  const PowerAxis axis{-10, 10, 200};
  CcdfCounter counter;
  Noise noise(3);
  counter.expect(Envelope::kGaussian, axis, level);
  EXPECT_EQ(counter.tenThousandths(100), 0);
  counter.addBlock(noise);
  counter.addBlock(noise);
  EXPECT_EQ(counter.total(), 2 * CcdfCounter::kBlock);
  EXPECT_NEAR(static_cast<double>(counter.tenThousandths(100)), 1e6 * std::exp(-1.0), 2000);
  counter.restart();
  EXPECT_EQ(counter.total(), 0);
}

TEST(Ccdf, ScatterShrinksAsSamplesAccumulate) {
  const PowerAxis axis{-10, 10, 200};
  double one = 0;
  double many = 0;
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    CcdfCounter counter;
    Noise noise(seed);
    counter.expect(Envelope::kGaussian, axis, {0});
    counter.addBlock(noise);
    one += std::pow(static_cast<double>(counter.tenThousandths(100)) - 1e6 * std::exp(-1.0), 2);
    for (int i = 1; i < 100; ++i) counter.addBlock(noise);
    many += std::pow(static_cast<double>(counter.tenThousandths(100)) - 1e6 * std::exp(-1.0), 2);
  }
  EXPECT_NEAR(std::sqrt(one / 40), 1e6 * std::sqrt(0.3679 * 0.6321 / 1e6), 200);
  EXPECT_LT(std::sqrt(many / 40), 100);
}

TEST(Ccdf, RareEventsKeepTheirMean) {
  // 5 in a million: seen in few blocks' worth of samples, right on average.
  const PowerAxis axis{0, 10 * std::log10(-std::log(5e-6)), 1};
  CcdfCounter counter;
  Noise noise(11);
  counter.expect(Envelope::kGaussian, axis, {0});
  for (int i = 0; i < 2000; ++i) counter.addBlock(noise);
  EXPECT_NEAR(static_cast<double>(counter.tenThousandths(1)), 5, 1);
}

TEST(Ccdf, IsFrozenWhileAcquisitionIsOff) {
  Bench bench;
  EXPECT_EQ(curve(bench)[0], 0);  // nothing was ever counted
  bench.tell("PPACQS 1,ON");
  const std::string first = bench.ask("TTFRO 1");
  bench.tell("PPACQS 1,OFF");
  EXPECT_EQ(bench.ask("TTFRO 1"), first);
  bench.tell("PPACQRT 1");
  EXPECT_EQ(curve(bench)[0], 0);
}

TEST(Ccdf, RestartGivesAFreshCurve) {
  Bench bench("setup = PPACQS 1,ON\n");
  const std::string first = bench.ask("TTFRO 1");
  bench.tell("PPACQRT 1");
  EXPECT_NE(bench.ask("TTFRO 1"), first);
}

TEST(Ccdf, CursorReadsTheCurveThatWasSent) {
  Bench bench("setup = PPACQS 1,ON\n");
  bench.tell("TTMKPOS 1,5");  // point 280 exactly
  const std::vector<double> points = curve(bench);
  EXPECT_EQ(numberAt(bench.ask("TTMKRO 1"), 1), points[279]);
  bench.tell("TTMKPOS 1,5.0625");  // half way to the next
  EXPECT_NEAR(numberAt(bench.ask("TTMKRO 1"), 1), (points[279] + points[280]) / 2, 0.0002);
}

}  // namespace
}  // namespace simmeter
