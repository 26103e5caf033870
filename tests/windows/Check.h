#pragma once

#include <iostream>
#include <source_location>

/// The checks of a program that runs where the other tests' library is not at hand.

namespace pulsemod::test {

struct CheckCounts {
  int made = 0;
  int failed = 0;
};
inline CheckCounts checkCounts;

/// One check; `row` tells which row of a table it is about.
template <typename Actual, typename Expected, typename Row = const char*>
void expectEqual(const Actual& actual, const Expected& expected, const Row& row = "",
                 const std::source_location& where = std::source_location::current()) {
  ++checkCounts.made;
  if (actual == expected) return;
  ++checkCounts.failed;
  std::cout << where.file_name() << ":" << where.line() << ": " << row << "\n  is       " << actual
            << "\n  expected " << expected << "\n";
}

}  // namespace pulsemod::test
