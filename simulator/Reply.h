// A reply on its way out: its bytes and when each of them may leave.
#pragma once

#include <cstddef>
#include <string>

#include "Clock.h"

namespace simmeter {

struct Reply {
  std::string bytes;      // with prefix and terminator
  std::size_t taken = 0;  // bytes already handed over
  bool ends = true;       // false: nothing comes after the bytes, not even an end
  TimePoint due{};        // the first byte may leave now, or one byte time later
  Duration perByte{};     // time that each byte takes; zero: all at once
  std::size_t stallAfter = std::string::npos;  // bytes before a pause
  Duration stall{};

  // When the byte at this place may leave.
  TimePoint leaves(std::size_t place) const;
  // Bytes beyond `taken` that may leave by now.
  std::size_t available(TimePoint now) const;
  bool allTaken() const { return taken == bytes.size(); }
};

}  // namespace simmeter
