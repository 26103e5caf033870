#include "host/HostClock.h"

#include <algorithm>
#include <cmath>
#include <thread>

namespace pulsemod {

namespace {

struct LocalTime {
  std::tm time{};
  std::chrono::nanoseconds fraction{};
};

LocalTime localTime() {
  using std::chrono::system_clock;
  const auto now = system_clock::now();
  const auto second = std::chrono::floor<std::chrono::seconds>(now);
  const std::time_t count = system_clock::to_time_t(second);
  LocalTime result;
  result.fraction = now - second;
#ifdef _WIN32
  localtime_s(&result.time, &count);
#else
  localtime_r(&count, &result.time);
#endif
  return result;
}

std::string digits(int number, std::size_t width) {
  std::string text = std::to_string(number);
  if (text.size() < width) text.insert(0, width - text.size(), '0');
  return text;
}

}  // namespace

float secondsOfDay(const std::tm& time, std::chrono::nanoseconds fraction) {
  const double seconds = time.tm_hour * 3600.0 + time.tm_min * 60.0 + time.tm_sec +
                         std::chrono::duration<double>(fraction).count();
  const float lastReading = std::nextafter(86400.0F, 0.0F);
  return std::min(static_cast<float>(seconds), lastReading);
}

std::string dateText(const std::tm& time) {
  return digits(time.tm_year + 1900, 4) + "-" + digits(time.tm_mon + 1, 2) + "-" +
         digits(time.tm_mday, 2);
}

std::string timeText(const std::tm& time) {
  return digits(time.tm_hour, 2) + ":" + digits(time.tm_min, 2) + ":" + digits(time.tm_sec, 2);
}

float HostClock::secondsSinceMidnight() const {
  const LocalTime now = localTime();
  return secondsOfDay(now.time, now.fraction);
}

void HostClock::sleep(int milliseconds) {
  using std::chrono::steady_clock;
  // A sleeper is woken 0.1 to 0.2 ms late. Twice a pass that would be some percent of the rate, so
  // the last stretch is waited out awake.
  constexpr std::chrono::microseconds awake(250);
  // The end is fixed beforehand: an interrupted sleep goes on and does not drift.
  const auto end = steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (steady_clock::now() < end - awake) std::this_thread::sleep_until(end - awake);
  while (steady_clock::now() < end) std::this_thread::yield();
}

std::string HostClock::dateText() const { return pulsemod::dateText(localTime().time); }

std::string HostClock::timeText() const { return pulsemod::timeText(localTime().time); }

}  // namespace pulsemod
