#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "host/HostClock.h"
#include "platform/Clock.h"

namespace soak {

/// Time since the run began.
using Time = std::chrono::nanoseconds;

/// The program's clock. It stands still while the program works and jumps when it waits.
class SimulatedTime : public pulsemod::Clock {
 public:
  /// `startOfDay`: the time of day at which the run begins.
  explicit SimulatedTime(Time startOfDay) : startOfDay_(startOfDay) {}

  Time now() const { return now_; }
  void advance(Time by) { now_ += by; }
  void advanceTo(Time then) {
    if (then > now_) now_ = then;
  }
  Time firstMidnight() const { return day - startOfDay_; }
  bool isPastMidnight() const { return now_ >= firstMidnight(); }

  float secondsSinceMidnight() const override {
    const Time ofDay = (startOfDay_ + now_) % day;
    const auto whole = std::chrono::floor<std::chrono::seconds>(ofDay);
    std::tm time{};
    time.tm_sec = static_cast<int>(whole.count());
    return pulsemod::secondsOfDay(time, ofDay - whole);
  }
  void sleep(int milliseconds) override { advance(std::chrono::milliseconds(milliseconds)); }
  std::string dateText() const override { return "2026-11-21"; }
  std::string timeText() const override { return "10:30:00"; }

 private:
  static constexpr Time day = std::chrono::hours(24);

  Time startOfDay_;
  Time now_{};
};

}  // namespace soak
