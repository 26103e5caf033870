#pragma once

#include <cstdio>
#include <vector>

#include "Samples.h"

/// Times of single actions of the user, each beside a bare one in the same run, and what they may
/// take at most.

namespace bench {

constexpr double milliseconds = 1e3;

template <typename Work>
double secondsOf(const Work& work) {
  return secondsPerCall(work, 1);
}

/// Prints a row "name  ours  bound  bare  ratio" with the medians of 200 turns each. `ours` and
/// `bare` give the seconds that one turn took.
template <typename Ours, typename Bare>
void compareWithBound(const char* name, double boundMs, const Ours& ours, const Bare& bare) {
  constexpr int turns = 200;
  std::vector<double> ourTimes;
  std::vector<double> bareTimes;
  for (int turn = 0; turn < turns; ++turn) {
    ourTimes.push_back(ours() * milliseconds);
    bareTimes.push_back(bare() * milliseconds);
  }
  const double our = median(ourTimes);
  std::printf("%-34s %8.3f ms, bound %.0f ms: %s   bare %8.3f ms   ratio %.2f\n", name, our,
              boundMs, our < boundMs ? "held  " : "BROKEN", median(bareTimes),
              our / median(bareTimes));
}

}  // namespace bench
