#include <gtest/gtest.h>

#include <charconv>
#include <limits>
#include <string>
#include <vector>

#include "LocaleTest.h"
#include "link/Fault.h"
#include "link/TimeText.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

class TimeText : public LocaleTest {
 protected:
  FakeWorld world;
};
INSTANTIATE_TEST_SUITE_P(Locale, TimeText, bothDecimalSigns(), decimalSignName);

/// "4.6", "4.65" or "4" for 460, 465, 400.
std::string hundredthsText(int hundredths) {
  std::string text = std::to_string(hundredths / 100) + "." + std::to_string(hundredths / 10 % 10) +
                     std::to_string(hundredths % 10);
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

/// The single that is nearest to a decimal number.
float nearestSingle(const std::string& text) {
  float value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

TEST_P(TimeText, FormatsTimesWithTheirUnits) {
  struct Row {
    float seconds;
    const char* text;
  };
  const Row rows[] = {
      {0.0F, "0.0s"},
      {-0.0F, "0.0s"},
      {0.0046F, "4.6ms"},
      {0.0000046F, "4.6us"},
      {0.0000001F, "100ns"},
      {0.0001F, "100us"},
      {0.000225F, "225us"},
      {0.000321F, "321us"},
      {0.000577F, "577us"},
      {0.0013F, "1.3ms"},
      {0.0163F, "16.3ms"},
      {0.00803F, "8.03ms"},
      {0.00104F, "1.04ms"},
      {0.001F, "1ms"},
      {0.999F, "999ms"},
      {0.9999999F, "999.999ms"},
      {0.000001F, "1us"},
      {1e-9F, "1ns"},
      {1.5e-9F, "1.5ns"},
      {9.99e-10F, ""},
      {1e-10F, ""},
      {-1e-10F, ""},
      {1e-44F, ""},
      {-0.0046F, "-4.6ms"},
      {-0.0000046F, "-4.6us"},
      {0.0046785F, "4.678ms"},
      {-0.0046785F, "-4.679ms"},
  };
  for (const Row& row : rows) EXPECT_EQ(FormatTime(row.seconds), row.text) << row.seconds;
}

TEST_P(TimeText, SecondsBearTheUnitOfMilliseconds) {
  EXPECT_EQ(FormatTime(1), "1ms");
  EXPECT_EQ(FormatTime(2.5F), "2.5ms");
  EXPECT_EQ(FormatTime(-2.5F), "-2.5ms");
  EXPECT_EQ(FormatTime(10), "10ms");
  EXPECT_EQ(FormatTime(1000), "1000ms");
  EXPECT_EQ(FormatTime(1e7F), "1E+07ms");
}

/// A thousand times the value fits no single.
TEST_P(TimeText, LargestTimesHaveATextOfTheirOwn) {
  EXPECT_EQ(FormatTime(std::numeric_limits<float>::max()), "3.402823E+38ms");
  EXPECT_EQ(FormatTime(-std::numeric_limits<float>::max()), "-3.402823E+38ms");
  EXPECT_EQ(FormatTime(4e35F), "4E+35ms");
}

TEST_P(TimeText, EveryTypedTimeOfUpToTwoDecimalsIsShownAsTyped) {
  struct Unit {
    const char* text;
    const char* exponent;
  };
  for (const Unit& unit : {Unit{"ms", "E-3"}, Unit{"us", "E-6"}, Unit{"ns", "E-9"}}) {
    for (int hundredths = 100; hundredths < 100000; ++hundredths) {
      const std::string number = hundredthsText(hundredths);
      const std::string typed = number + unit.text;
      const float parsed = ParseTime(typed, true);
      ASSERT_EQ(parsed, nearestSingle(number + unit.exponent)) << typed;
      ASSERT_EQ(FormatTime(parsed), typed);
    }
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_P(TimeText, ParsesTypedTimes) {
  struct Row {
    const char* text;
    float seconds;
  };
  const Row rows[] = {
      {"", 0.0F},
      {"5ms", 0.005F},
      {"5MS", 0.005F},
      {"5Ms", 0.005F},
      {"10us", 1e-5F},
      {"10uS", 1e-5F},
      {"100ns", 1e-7F},
      {"100NS", 1e-7F},
      {"2s", 2.0F},
      {"2S", 2.0F},
      {"2", 2.0F},
      {"0.0s", 0.0F},
      {"0.009ms", 9e-6F},
      {"0.581ms", 0.000581F},
      {"0.771ms", 0.000771F},
      {"-3ms", -0.003F},
      {"--5ms", 0.0F},
      {"5-ms", 0.005F},
      {".5", 0.5F},
      {"m5s", 0.005F},
      {"ms", 0.0F},
      {"1.2.3ms", 0.0012F},
      {"-", 0.0F},
  };
  for (const Row& row : rows) EXPECT_EQ(ParseTime(row.text, true), row.seconds) << row.text;
  EXPECT_TRUE(world.dialogs.messages.empty());
}

struct Unknown {
  const char* text;
  float seconds;
  const char* unit;
};
const std::vector<Unknown> unknownUnits = {
    {"5 ms", 5, " ms"},
    {"2 s", 2, " s"},
    {"2s ", 2, "s "},
    {"4.6E-3", 4.6F, "E"},
    {"4,6ms", 46, ",ms"},
    {"+3ms", 3, "+ms"},
    {"5\xC2\xB5s", 5, "\xC2\xB5s"},
    {"abc", 0, "abc"},
    {"5Min", 5, "Min"},
    {" ", 0, " "},
    {"5ps", 5, "ps"},
    {"5msms", 5, "msms"},
};

TEST_P(TimeText, AnUnknownUnitIsToldAsTypedAndMeansSeconds) {
  for (const Unknown& row : unknownUnits) {
    world.dialogs.messages.clear();
    EXPECT_EQ(ParseTime(row.text, true), row.seconds) << row.text;
    const std::string message =
        "Do not understand format '" + std::string(row.unit) + "' - reverting to Seconds";
    EXPECT_EQ(world.dialogs.messages,
              (std::vector<ShownBox>{{message, "s, ms, us format", MessageIcon::information, ""}}))
        << row.text;
  }
}

TEST_P(TimeText, AnUnknownUnitMeansSecondsInSilenceToo) {
  for (const Unknown& row : unknownUnits) {
    EXPECT_EQ(ParseTime(row.text, false), row.seconds) << row.text;
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_P(TimeText, ATimeBeyondSinglePrecisionIsAFault) {
  const std::string digits(39, '9');
  EXPECT_THROW(ParseTime(digits, true), Fault);
  EXPECT_THROW(ParseTime("-" + digits, true), Fault);
  EXPECT_THROW(ParseTime(std::string(400, '9') + "ns", true), Fault);
  EXPECT_EQ(ParseTime(digits + "ms", true), nearestSingle("1E36"));
}

}  // namespace
}  // namespace pulsemod::test
