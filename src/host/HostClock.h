#pragma once

#include <chrono>
#include <ctime>

#include "platform/Clock.h"

namespace pulsemod {

/// The system's clock in local time.
class HostClock : public Clock {
 public:
  float secondsSinceMidnight() const override;
  /// Never shorter than asked, signals or not.
  void sleep(int milliseconds) override;
  std::string dateText() const override;
  std::string timeText() const override;
};

/// The time of day in single precision, kept below 86400 where rounding would reach it.
float secondsOfDay(const std::tm& time, std::chrono::nanoseconds fraction);
/// yyyy-mm-dd, whatever the locale.
std::string dateText(const std::tm& time);
/// hh:mm:ss, whatever the locale.
std::string timeText(const std::tm& time);

}  // namespace pulsemod
