#include "Ccdf.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace simmeter {
namespace {

// Number of successes in `trials` with probability p: exact in the mean, Poisson where successes
// (or failures) are few, bell-shaped where they are many.
std::int64_t drawCount(std::int64_t trials, double p, Noise& noise) {
  constexpr double kFew = 20;
  if (trials <= 0 || p <= 0) return 0;
  if (p >= 1) return trials;
  const double mean = static_cast<double>(trials) * p;
  const double missing = static_cast<double>(trials) * (1 - p);
  if (missing < kFew && missing < mean) return trials - drawCount(trials, 1 - p, noise);
  if (mean < kFew) {
    std::int64_t count = 0;
    double term = std::exp(-mean);
    for (double u = noise.uniform() - term; u >= 0 && count < trials; u -= term) {
      ++count;
      term *= mean / static_cast<double>(count);
      if (term < 1e-15) break;
    }
    return count;
  }
  const double drawn = mean + noise.bell() * std::sqrt(mean * (1 - p));
  return std::clamp<std::int64_t>(std::llround(drawn), 0, trials);
}

std::int64_t share(std::int64_t part, std::int64_t total) {
  if (total == 0) return 0;
  return std::llround(static_cast<double>(part) * 1e6 / static_cast<double>(total));
}

}  // namespace

double exceedance(Envelope envelope, double level, double power) {
  if (envelope == Envelope::kFixed) {
    return 0.5 * std::erfc((power - level) / (kFixedDeviation * std::numbers::sqrt2));
  }
  return std::exp(-milliwatts(power - level));
}

double expectedPercent(Envelope envelope, const std::vector<double>& levels, double power) {
  double sum = 0;
  for (const double level : levels) sum += exceedance(envelope, level, power);
  return levels.empty() ? 0 : 100 * sum / static_cast<double>(levels.size());
}

void CcdfCounter::expect(Envelope envelope, const PowerAxis& axis,
                         const std::vector<double>& levels) {
  axis_ = axis;
  for (int i = 1; i <= axis.points; ++i) {
    expected_[static_cast<std::size_t>(i - 1)] =
        expectedPercent(envelope, levels, axis.powerAt(i)) / 100;
  }
  restart();
}

void CcdfCounter::restart() {
  total_ = 0;
  above_.fill(0);
}

void CcdfCounter::addBlock(Noise& noise) {
  // From the highest power down: each point adds the samples between it and the one above.
  const bool rising = axis_.stop >= axis_.start;
  std::int64_t counted = 0;
  double higher = 0;
  for (int n = 0; n < axis_.points; ++n) {
    const auto i = static_cast<std::size_t>(rising ? axis_.points - 1 - n : n);
    const double p = higher < 1 ? (expected_[i] - higher) / (1 - higher) : 0;
    counted += drawCount(kBlock - counted, p, noise);
    above_[i] += counted;
    higher = std::max(higher, expected_[i]);
  }
  total_ += kBlock;
}

std::int64_t CcdfCounter::tenThousandths(int point) const {
  return share(above_[static_cast<std::size_t>(point - 1)], total_);
}

std::int64_t CcdfCounter::tenThousandthsAt(double power) const {
  if (axis_.points == 0) return 0;
  if (axis_.start == axis_.stop) return tenThousandths(1);
  const double place = std::clamp((power - axis_.start) * axis_.points / (axis_.stop - axis_.start),
                                  1.0, static_cast<double>(axis_.points));
  const int left = std::min(static_cast<int>(place), axis_.points - 1);
  const auto a = static_cast<double>(tenThousandths(left));
  const auto b = static_cast<double>(tenThousandths(left + 1));
  return std::llround(a + (b - a) * (place - left));
}

}  // namespace simmeter
