#include <gtest/gtest.h>
#include <sys/time.h>

#include <cmath>
#include <csignal>
#include <ctime>

#include "TestHelp.h"
#include "host/HostClock.h"

namespace pulsemod::test {
namespace {

std::tm timeOfDay(int hour, int minute, int second) {
  std::tm time{};
  time.tm_hour = hour;
  time.tm_min = minute;
  time.tm_sec = second;
  return time;
}

/// Sets the time zone for as long as it lives.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  ~TimeZone() {
    unsetenv("TZ");
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;
};

TEST(Clock, TimeOfDayIsRoundedToSinglePrecision) {
  EXPECT_EQ(secondsOfDay(timeOfDay(0, 0, 0), 0ns), 0.0F);
  EXPECT_EQ(secondsOfDay(timeOfDay(1, 2, 3), 500ms), 3723.5F);
  EXPECT_EQ(secondsOfDay(timeOfDay(18, 30, 0), 1ms), 66600.0F);
  EXPECT_EQ(secondsOfDay(timeOfDay(18, 30, 0), 7ms), 66600.0078125F);
}

TEST(Clock, TimeOfDayStaysBelowADay) {
  EXPECT_LT(secondsOfDay(timeOfDay(23, 59, 59), 999999999ns), 86400.0F);
  EXPECT_LT(secondsOfDay(timeOfDay(23, 59, 60), 0ns), 86400.0F);
}

TEST(Clock, TextsArePaddedWithZeros) {
  std::tm time = timeOfDay(4, 5, 6);
  time.tm_year = 126;
  time.tm_mon = 0;
  time.tm_mday = 9;
  EXPECT_EQ(dateText(time), "2026-01-09");
  EXPECT_EQ(timeText(time), "04:05:06");
}

TEST(Clock, TellsLocalTime) {
  const HostClock clock;
  const auto hoursAhead = [&clock](const char* zone) {
    const TimeZone here(zone);
    return clock.secondsSinceMidnight() / 3600.0F;
  };
  const float ahead = std::fmod(hoursAhead("XXX-6") - hoursAhead("XXX0") + 24.0F, 24.0F);
  EXPECT_NEAR(ahead, 6.0F, 0.01F);
}

TEST(Clock, TextsTellTheTimeOfTheSystem) {
  const HostClock clock;
  const auto systemText = [] {
    const std::time_t now = std::time(nullptr);
    char text[32] = {};
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&now));
    return std::string(text);
  };
  const std::string before = systemText();
  const std::string told = clock.dateText() + " " + clock.timeText();
  EXPECT_LE(before, told);
  EXPECT_LE(told, systemText());
}

TEST(Clock, SecondsHaveFractionsThatAdvance) {
  HostClock clock;
  const float start = clock.secondsSinceMidnight();
  clock.sleep(300);
  const float elapsed = onDayOf(start, clock.secondsSinceMidnight()) - start;
  EXPECT_GE(elapsed, 0.28F);
  EXPECT_LT(elapsed, 0.9F);
}

TEST(Clock, SleepIsNotCutShortBySignals) {
  struct sigaction ignored {};
  ignored.sa_handler = [](int) {};
  struct sigaction previous {};
  sigaction(SIGALRM, &ignored, &previous);
  const itimerval every5ms{{0, 5000}, {0, 5000}};
  setitimer(ITIMER_REAL, &every5ms, nullptr);

  HostClock clock;
  const double slept = durationMs([&clock] { clock.sleep(100); });

  const itimerval never{};
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &previous, nullptr);
  EXPECT_GE(slept, 100.0);
  EXPECT_LT(slept, 400.0);
}

TEST(Clock, SleepOfNothingReturnsAtOnce) {
  HostClock clock;
  EXPECT_LT(durationMs([&clock] { clock.sleep(0); }), 100.0);
  EXPECT_LT(durationMs([&clock] { clock.sleep(-5); }), 100.0);
}

}  // namespace
}  // namespace pulsemod::test
