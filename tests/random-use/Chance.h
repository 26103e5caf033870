#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace randomuse {

/// What chance decides in a life: the same for a seed on every machine.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : state_(seed) {}

  /// The next number of SplitMix64.
  std::uint64_t next() {
    std::uint64_t mixed = state_ += 0x9E3779B97F4A7C15U;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
  }
  /// 0 to `count` - 1; 0 for a count below 1.
  int below(int count) {
    return count < 1 ? 0 : static_cast<int>(next() % static_cast<std::uint64_t>(count));
  }
  int between(int first, int last) { return first + below(last - first + 1); }
  bool oneIn(int times) { return below(times) == 0; }
  bool percent(int share) { return below(100) < share; }

  template <typename Items>
  auto& among(Items& items) {
    return items[static_cast<std::size_t>(below(static_cast<int>(std::size(items))))];
  }

 private:
  std::uint64_t state_;
};

}  // namespace randomuse
