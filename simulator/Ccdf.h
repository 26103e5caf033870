// The complementary cumulative distribution of the power: for each power, how much of the time
// the signal lies above it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "Measurements.h"
#include "Signal.h"

namespace simmeter {

// How the power varies about a level while the signal is there.
enum class Envelope {
  kGaussian,  // a band-limited Gaussian signal: power exponentially distributed, level = mean
  kFixed,     // a constant envelope with a little noise: normal in dB, kFixedDeviation
};
constexpr double kFixedDeviation = 0.1;  // dB

// P(power > `power`) for a signal of that level, both in dBm; from 0 to 1.
double exceedance(Envelope envelope, double level, double power);

// Powers of a curve's points: point i of 1..points stands at start + i * (stop - start) / points.
struct PowerAxis {
  double start = 0;  // dBm
  double stop = 0;   // dBm; below start is allowed, the curve then runs the other way
  int points = 0;

  double powerAt(int point) const { return start + point * (stop - start) / points; }
  bool operator==(const PowerAxis&) const = default;
};

// The mean of the exceedance over a set of equally likely levels, in percent.
double expectedPercent(Envelope envelope, const std::vector<double>& levels, double power);

// Counts samples above each point's power. Each block adds kBlock samples drawn from the
// expected distribution, as that many samples of the signal would scatter about it.
class CcdfCounter {
 public:
  static constexpr std::int64_t kBlock = 1'000'000;

  // A new distribution; forgets what was counted.
  void expect(Envelope envelope, const PowerAxis& axis, const std::vector<double>& levels);
  void restart();
  void addBlock(Noise& noise);

  std::int64_t total() const { return total_; }
  const PowerAxis& axis() const { return axis_; }

  // Ten-thousandths of a percent, 0 to 1,000,000; 0 when nothing was counted.
  std::int64_t tenThousandths(int point) const;
  // Between two points by a straight line; outside the curve its nearest end.
  std::int64_t tenThousandthsAt(double power) const;

 private:
  PowerAxis axis_;
  std::int64_t total_ = 0;
  std::array<double, kMostPoints> expected_{};  // 0 to 1
  std::array<std::int64_t, kMostPoints> above_{};
};

}  // namespace simmeter
