#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

/// Interleaved timing: two workloads take turns in short rounds, so that a machine that is slow for
/// a while is slow for both.

namespace bench {

inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// Seconds that one call of `work` takes, as the mean of `calls` calls.
template <typename Work>
double secondsPerCall(const Work& work, int calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int call = 0; call < calls; ++call) work();
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  return taken.count() / calls;
}

/// Prints a row "name  ours  other  ratio" with medians over `rounds` rounds; the ratio is the
/// median of the rounds' own ratios.
template <typename Ours, typename Other>
void compare(const char* name, const Ours& ours, const Other& other, int rounds, int calls) {
  std::vector<double> ourTimes;
  std::vector<double> otherTimes;
  std::vector<double> ratios;
  for (int round = 0; round <= rounds; ++round) {
    const double ourTime = secondsPerCall(ours, calls);
    const double otherTime = secondsPerCall(other, calls);
    if (round == 0) continue;  // warms both up
    ourTimes.push_back(ourTime);
    otherTimes.push_back(otherTime);
    ratios.push_back(ourTime / otherTime);
  }
  constexpr double microseconds = 1e6;
  std::printf("%-44s %10.2f us %10.2f us   ratio %.2f\n", name, median(ourTimes) * microseconds,
              median(otherTimes) * microseconds, median(ratios));
}

}  // namespace bench
