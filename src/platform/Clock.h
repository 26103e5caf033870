#pragma once

#include <string>

namespace pulsemod {

/// Time as the program sees it: for rates, delays and the heads of files.
class Clock {
 public:
  virtual ~Clock() = default;

  /// Seconds since local midnight, in [0, 86400). Single precision on purpose: the rates on screen
  /// are computed from it, so its spacing grows from 0.24 ms at one o'clock to 7.8 ms in the
  /// evening. Falls back to 0 at midnight; see `onDayOf`.
  virtual float secondsSinceMidnight() const = 0;

  /// Sleeps for `milliseconds`. The user interface stands still meanwhile: only for the pauses that
  /// the meter needs between two bus operations.
  virtual void sleep(int milliseconds) = 0;

  /// Today as yyyy-mm-dd.
  virtual std::string dateText() const = 0;

  /// The time of day as hh:mm:ss.
  virtual std::string timeText() const = 0;
};

/// The reading `now` on the scale of the day of `start`: a reading below the start means that
/// midnight has passed, and a day is added.
inline float onDayOf(float start, float now) {
  constexpr float secondsPerDay = 86400.0F;
  return now < start ? now + secondsPerDay : now;
}

}  // namespace pulsemod
