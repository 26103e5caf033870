#include "Reply.h"

namespace simmeter {

TimePoint Reply::leaves(std::size_t place) const {
  TimePoint when = due + perByte * (static_cast<Duration::rep>(place) + 1);
  if (place >= stallAfter) when += stall;
  return when;
}

std::size_t Reply::available(TimePoint now) const {
  std::size_t left = taken;
  std::size_t right = bytes.size();
  while (left < right) {  // the places are in order of time: the first that may not leave yet
    const std::size_t middle = left + (right - left) / 2;
    if (leaves(middle) <= now) {
      left = middle + 1;
    } else {
      right = middle;
    }
  }
  return left - taken;
}

}  // namespace simmeter
