#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Bench.h"
#include "Signal.h"

namespace simmeter {
namespace {

TEST(Signal, IsOffBeforeTheTriggerAndOnAfterIt) {
  EXPECT_NEAR(sensorLevel(false, -1e-4), pulse::kOffLevel, 0.01);
  EXPECT_NEAR(sensorLevel(false, 0), pulse::kOffLevel, 0.01);
  EXPECT_NEAR(sensorLevel(false, 3e-4), pulse::kTopA, 0.5);
  EXPECT_NEAR(sensorLevel(false, 1.1e-3), pulse::kOffLevel, 0.01);
}

TEST(Signal, RepeatsWithItsPeriod) {
  for (const double t : {-1e-3, 1e-5, 4e-4, 6.1e-4, 1e-3}) {
    EXPECT_NEAR(sensorLevel(false, t), sensorLevel(false, t + pulse::kPeriod), 1e-6) << t;
  }
}

TEST(Signal, IsAsWideAsItSays) {
  // Width at half the power, against the stated width and the edges' time constants.
  const double half = pulse::kTopA - pulse::kDroop - 3.01;
  double first = 0;
  double last = 0;
  for (double t = -1e-4; t < 1e-3; t += 1e-7) {
    if (sensorLevel(false, t) < half) continue;
    if (first == 0) first = t;
    last = t;
  }
  EXPECT_GT(first, 0);
  EXPECT_LT(first, 2 * pulse::kRiseConstant);
  EXPECT_NEAR(last, pulse::kWidth + pulse::kFallConstant * std::log(2.0), 1e-6);
}

TEST(Signal, OvershootsAndDroops) {
  double highest = -200;
  for (double t = 0; t < 5e-5; t += 1e-7) highest = std::max(highest, sensorLevel(false, t));
  EXPECT_NEAR(highest, pulse::kTopA + pulse::kOvershoot, 0.25);
  const double early = sensorLevel(false, 2.5e-4);
  const double late = sensorLevel(false, 5.5e-4);
  EXPECT_NEAR(early - late, pulse::kDroop * 3e-4 / pulse::kWidth, 0.01);
}

TEST(Signal, FallsExponentially) {
  const double a = sensorLevel(false, pulse::kWidth + 2e-5);
  const double b = sensorLevel(false, pulse::kWidth + 3e-5);
  EXPECT_NEAR(a - b, 10 / std::log(10.0) * 1e-5 / pulse::kFallConstant, 0.01);
}

TEST(Signal, InputConfigurationsCombineTheSensors) {
  const double t = 3e-4;
  const double a = sensorLevel(false, t);
  const double b = sensorLevel(true, t);
  EXPECT_NEAR(a - b, pulse::kTopA - pulse::kTopB, 0.01);
  EXPECT_EQ(channelLevel(kInputA, t), a);
  EXPECT_EQ(channelLevel(kInputB, t), b);
  EXPECT_NEAR(milliwatts(channelLevel(kInputAMinusB, t)), milliwatts(a) - milliwatts(b), 1e-9);
  EXPECT_EQ(channelLevel(kInputBMinusA, t), kNoReading);
  EXPECT_NEAR(channelLevel(kInputAOverB, t), a - b, 1e-12);
  EXPECT_NEAR(channelLevel(kInputBOverA, t), b - a, 1e-12);
}

TEST(Noise, IsTheSameForTheSameSeedEverywhere) {
  Noise noise(1);
  // From std::mt19937(1), whose first outputs the standard fixes: 1791095845, 4282876139.
  const double sum =
      (1791095845u & 0xFFFFu) + (1791095845u >> 16) + (4282876139u & 0xFFFFu) + (4282876139u >> 16);
  EXPECT_DOUBLE_EQ(noise.bell(), (sum - 131070.0) * std::sqrt(3.0) / 65536.0);
}

TEST(Noise, HasMeanZeroAndDeviationOne) {
  Noise noise(7);
  double sum = 0;
  double squares = 0;
  constexpr int kCount = 100000;
  for (int i = 0; i < kCount; ++i) {
    const double x = noise.bell();
    ASSERT_LT(std::fabs(x), 3.47);
    sum += x;
    squares += x * x;
  }
  EXPECT_NEAR(sum / kCount, 0, 0.01);
  EXPECT_NEAR(squares / kCount, 1, 0.01);
}

TEST(TraceOfSignal, AgreesWithTheSignalWithinItsNoise) {
  Bench bench;
  const std::vector<double> trace = levels(bench.ask("PMPO 1"));
  ASSERT_EQ(trace.size(), 400u);
  for (int i = 1; i <= 400; ++i) {
    const double level = sensorLevel(false, -2e-4 + i * 2e-3 / 400);
    EXPECT_NEAR(trace[static_cast<std::size_t>(i - 1)], level, 3.5 * noiseDeviation(level) + 0.001);
  }
}

double scatter(const std::vector<double>& trace, std::size_t from, std::size_t to) {
  double sum = 0;
  double squares = 0;
  for (std::size_t i = from; i < to; ++i) {
    sum += trace[i];
    squares += trace[i] * trace[i];
  }
  const auto n = static_cast<double>(to - from);
  return std::sqrt(squares / n - sum / n * (sum / n));
}

TEST(TraceOfSignal, AveragingLowersTheNoise) {
  Bench bench;
  bench.tell("TRDLYT 1,PMOD,-0.0005;TRCAPT 1,PMOD,0.0004");  // off level all over
  const double single = scatter(levels(bench.ask("PMPO 1")), 0, 400);
  bench.tell("PMAVGN 1, 100;PMAVGS 1,ON");
  const double averaged = scatter(levels(bench.ask("PMPO 1")), 0, 400);
  EXPECT_NEAR(single, pulse::kNoiseOff, 0.15);
  EXPECT_NEAR(averaged, pulse::kNoiseOff / 10, 0.015);
}

std::size_t riseIndex(const std::vector<double>& trace) {
  const auto at = std::find_if(trace.begin(), trace.end(), [](double v) { return v > -20; });
  return static_cast<std::size_t>(at - trace.begin());
}

TEST(TraceOfSignal, TheTriggerDelayShiftsThePicture) {
  Bench bench;
  bench.tell("TRDLYT 1,PMOD,-0.0002");
  EXPECT_NEAR(static_cast<double>(riseIndex(levels(bench.ask("PMPO 1")))), 40, 1);
  bench.tell("TRDLYT 1,PMOD,-0.0004");
  EXPECT_NEAR(static_cast<double>(riseIndex(levels(bench.ask("PMPO 1")))), 80, 1);
  bench.tell("TRDLYT 1,PMOD,0.0003");  // begins inside the pulse
  EXPECT_EQ(riseIndex(levels(bench.ask("PMPO 1"))), 0u);
}

TEST(TraceOfSignal, TheCaptureTimeStretchesThePicture) {
  Bench bench;
  bench.tell("TRDLYT 1,PMOD,0");
  const auto onPoints = [&] {
    const std::vector<double> trace = levels(bench.ask("PMPO 1"));
    return std::count_if(trace.begin(), trace.end(), [](double v) { return v > 0; });
  };
  bench.tell("TRCAPT 1,PMOD,0.0012");
  EXPECT_NEAR(static_cast<double>(onPoints()), 200, 3);
  bench.tell("TRCAPT 1,PMOD,0.0006");
  EXPECT_NEAR(static_cast<double>(onPoints()), 400, 3);
}

TEST(TraceOfSignal, IsTheSameForTheSameSeedAndDiffersFromTraceToTrace) {
  Bench one("seed = 42\n");
  Bench two("seed = 42\n");
  Bench other("seed = 43\n");
  const std::string first = one.ask("PMPO 1");
  EXPECT_EQ(first, two.ask("PMPO 1"));
  EXPECT_NE(first, other.ask("PMPO 1"));
  EXPECT_NE(first, one.ask("PMPO 1"));
}

TEST(StillNoise, EveryTraceIsTheFirstOne) {
  Bench still("noise = still\nseed = 42\n");
  Bench moving("seed = 42\n");
  const std::string first = moving.ask("PMPO 1");
  EXPECT_EQ(still.ask("PMPO 1"), first);
  EXPECT_EQ(still.ask("PMPO 1"), first);
  still.tell("PPACQS 1,ON");
  still.ask("TTFRO 1");
  EXPECT_EQ(still.ask("PMPO 1"), first);
}

TEST(StillNoise, EveryCurveIsTheFirstOne) {
  Bench still("noise = still\nseed = 42\n");
  Bench moving("seed = 42\n");
  for (Bench* each : {&still, &moving}) each->tell("PPACQS 1,ON");
  const std::string first = moving.ask("TTFRO 1");
  EXPECT_NE(moving.ask("TTFRO 1"), first);
  EXPECT_EQ(still.ask("TTFRO 1"), first);
  EXPECT_EQ(still.ask("TTFRO 1"), first);
  const std::string share = still.ask("TTMKRO 1");
  still.ask("PMPO 1");
  still.tell("PPACQRT 1");
  EXPECT_EQ(still.ask("TTFRO 1"), first);
  EXPECT_EQ(still.ask("TTMKRO 1"), share);
}

}  // namespace
}  // namespace simmeter
