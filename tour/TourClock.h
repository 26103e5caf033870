#pragma once

#include <cstdint>

#include "host/HostClock.h"
#include "platform/Clock.h"

namespace tour {

/// The clock of pictures that must come out alike on every run: it always is ten o'clock of the
/// same day, and later by what the program has slept since its start.
///
/// Sleeps are real, and each 10 ms of them count as `tick`, since an exchange takes its time as
/// well. A tick is a multiple of what single precision tells apart at that time of day, so that
/// equal passes have equal rates. Who looks again without a sleep waits for time to pass: a tick
/// passes.
class TourClock : public pulsemod::Clock {
 public:
  float secondsSinceMidnight() const override {
    if (wasLookedAt_) ++ticks_;
    wasLookedAt_ = true;
    return tenOClock + static_cast<float>(ticks_) * tick;
  }
  void sleep(int milliseconds) override {
    constexpr int tenMs = 10;
    host_.sleep(milliseconds);
    ticks_ += (milliseconds + tenMs - 1) / tenMs;
    wasLookedAt_ = false;
  }
  std::string dateText() const override { return "2026-03-02"; }
  std::string timeText() const override { return "10:00:00"; }

 private:
  static constexpr float tenOClock = 36000;
  static constexpr float tick = 3.0F / 256;

  pulsemod::HostClock host_;
  mutable std::int64_t ticks_ = 0;
  mutable bool wasLookedAt_ = false;
};

}  // namespace tour
