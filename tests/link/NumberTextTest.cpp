#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "LocaleTest.h"
#include "link/NumberText.h"

namespace pulsemod::test {
namespace {

class NumberText : public LocaleTest {};
INSTANTIATE_TEST_SUITE_P(Locale, NumberText, bothDecimalSigns(), decimalSignName);

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST_P(NumberText, GeneralTextOfSingles) {
  struct Row {
    float value;
    const char* text;
  };
  const Row rows[] = {
      {0.0F, "0"},
      {-0.0F, "0"},
      {10.0F, "10"},
      {-30.0F, "-30"},
      {100.0F, "100"},
      {0.5F, "0.5"},
      {-0.5F, "-0.5"},
      {0.0046F, "0.0046"},
      {0.0006F, "0.0006"},
      {0.0002F, "0.0002"},
      {0.0001F, "0.0001"},
      {0.000225F, "0.000225"},
      {0.000577F, "0.000577"},
      {0.00009F, "9E-05"},
      {0.00001F, "1E-05"},
      {5e-6F, "5E-06"},
      {4.6e-6F, "4.6E-06"},
      {-4.6e-6F, "-4.6E-06"},
      {1e-7F, "1E-07"},
      {1e-30F, "1E-30"},
      {1.0F / 3.0F, "0.3333333"},
      {-34.56789F, "-34.56789"},
      {1234567.0F, "1234567"},
      {9999999.0F, "9999999"},
      {1e7F, "1E+07"},
      {16777216.0F, "1.677722E+07"},
      {std::numeric_limits<float>::max(), "3.402823E+38"},
  };
  for (const Row& row : rows) EXPECT_EQ(numberText(row.value), row.text);
}

TEST_P(NumberText, ExactTextHasAsManyDigitsAsReadTheSameSingleBack) {
  struct Row {
    float value;
    const char* text;
  };
  const Row rows[] = {
      {0.0F, "0"},
      {-0.0F, "0"},
      {-30.0F, "-30"},
      {0.0046F, "0.0046"},
      {0.1F, "0.1"},
      {5e-6F, "5E-06"},
      {1e7F, "1E+07"},
      // Eight digits, and nine.
      {-30.1234567F, "-30.123457"},
      {1.0F / 3.0F, "0.33333334"},
      {16777216.0F, "16777216"},
      {0.123456791F, "0.12345679"},
      {1.00000012F, "1.0000001"},
      {-13.0565815F, "-13.0565815"},
      {1007.47784F, "1007.47784"},
      {std::numeric_limits<float>::max(), "3.4028235E+38"},
      {std::numeric_limits<float>::denorm_min(), "1.401298E-45"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(exactText(row.value), row.text);
    EXPECT_EQ(leadingSingle(exactText(row.value)), row.value);
  }
}

TEST_P(NumberText, ExactTextReadsBackForAnySingleAndIsTheGeneralTextWhereThatDoes) {
  std::mt19937 random(20261121);
  int longer = 0;
  for (int round = 0; round < 100000; ++round) {
    const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (!std::isfinite(value)) continue;
    const std::string text = exactText(value);
    ASSERT_EQ(leadingSingle(text), value) << text;
    const bool sevenDigitsDo = leadingSingle(numberText(value)) == value;
    ASSERT_EQ(text == numberText(value), sevenDigitsDo) << text;
    if (!sevenDigitsDo) ++longer;
  }
  EXPECT_GT(longer, 10000);
}

TEST_P(NumberText, FixedTextRoundsHalfAwayFromZeroAndKeepsItsDecimals) {
  struct Row {
    double value;
    int minimum;
    int maximum;
    const char* text;
  };
  const Row rows[] = {
      {50, 1, 2, "50.0"},
      {12.34, 1, 2, "12.34"},
      {12.3, 1, 2, "12.3"},
      {0.125, 1, 2, "0.13"},
      {-0.125, 1, 2, "-0.13"},
      {0.375, 1, 2, "0.38"},
      {5.2, 2, 2, "5.20"},
      {10, 2, 2, "10.00"},
      {-5, 2, 2, "-5.00"},
      {5.2, 2, 3, "5.20"},
      {-34.567, 2, 3, "-34.567"},
      {-12.0625, 2, 3, "-12.063"},
      {12.0625, 2, 3, "12.063"},
      {0, 2, 3, "0.00"},
      {-0.001, 2, 2, "0.00"},
      {-0.0, 1, 2, "0.0"},
      {-0.0004, 2, 3, "0.00"},
      {0.5, 2, 2, "0.50"},
      {999.999, 2, 2, "1000.00"},
      {2.5, 0, 0, "3"},
      {100, 0, 0, "100"},
      {100, 0, 2, "100"},
      {1234567.5, 1, 2, "1234567.5"},
      {1e15, 1, 2, "1000000000000000.0"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(fixedText(row.value, row.minimum, row.maximum), row.text)
        << row.value << " with " << row.minimum << " to " << row.maximum;
  }
}

TEST_P(NumberText, LeadingNumberReadsTheHeadOfAText) {
  struct Row {
    const char* text;
    double number;
  };
  const Row rows[] = {
      {"", 0},          {" ", 0},        {"0", 0},      {"1", 1},
      {"+1", 1},        {"-1", -1},      {"1.0", 1},    {" 7 ", 7},
      {"\t7", 7},       {"12abc", 12},   {"abc", 0},    {"nan", 0},
      {"inf", 0},       {"infinity", 0}, {"-.5", -0.5}, {".5", 0.5},
      {"5.", 5},        {".", 0},        {"-", 0},      {"+", 0},
      {"--5", 0},       {"+-5", 0},      {"- 5", 0},    {"1E-05", 1e-5},
      {"1e3", 1000},    {"1E+3", 1000},  {"1E", 1},     {"1E+", 1},
      {"1E-x", 1},      {"1D5", 1},      {"0x1F", 0},   {"1.5.2", 1.5},
      {"4.6-3", 4.6},   {"4,6", 4},      {"1 2", 1},    {"-34.567\r", -34.567},
      {"007", 7},       {".E5", 0},      {"E5", 0},     {"0.0046", 0.0046},
      {"200,-30", 200},
  };
  for (const Row& row : rows) EXPECT_EQ(leadingNumber(row.text), row.number) << row.text;
}

TEST_P(NumberText, LeadingNumberBeyondADouble) {
  EXPECT_EQ(leadingNumber("1E400"), infinity);
  EXPECT_EQ(leadingNumber("-1E400"), -infinity);
  EXPECT_EQ(leadingNumber(std::string(400, '9')), infinity);
  EXPECT_EQ(leadingNumber("1E-400"), 0);
  EXPECT_EQ(leadingNumber("-1E-400"), 0);
}

TEST_P(NumberText, TheSizeOfALongNumberCountsAndNotTheSignOfItsExponent) {
  const std::string zeros(400, '0');
  EXPECT_EQ(leadingNumber("0." + zeros + "1"), 0);
  EXPECT_EQ(leadingNumber("-0." + zeros + "1"), 0);
  EXPECT_EQ(leadingNumber("0." + zeros + "1E5"), 0);
  EXPECT_EQ(leadingNumber("1" + zeros + "E-50"), infinity);
}

TEST_P(NumberText, ThroughTextDropsTheNoiseOfSingles) {
  EXPECT_EQ(throughText(0.0046F), 0.0046);
  EXPECT_EQ(throughText(0.1F), 0.1);
  EXPECT_EQ(throughText(-34.567F), -34.567);
  EXPECT_EQ(throughText(5e-6F), 5e-6);
  EXPECT_EQ(throughText(0.0F), 0);
  EXPECT_NE(static_cast<double>(0.0046F), 0.0046);
}

TEST_P(NumberText, LeadingSingleRefusesWhatDoesNotFit) {
  EXPECT_EQ(leadingSingle("0.0046"), 0.0046F);
  EXPECT_EQ(leadingSingle("-34.567\r"), -34.567F);
  EXPECT_EQ(leadingSingle("abc"), 0.0F);
  EXPECT_EQ(leadingSingle(""), 0.0F);
  EXPECT_EQ(leadingSingle("3.4E38"), 3.4E38F);
  EXPECT_EQ(leadingSingle("-3.4E38"), -3.4E38F);
  EXPECT_EQ(leadingSingle("3.5E38"), std::nullopt);
  EXPECT_EQ(leadingSingle("-3.5E38"), std::nullopt);
  EXPECT_EQ(leadingSingle("1E400"), std::nullopt);
  EXPECT_EQ(leadingSingle("1E-60"), 0.0F);
}

TEST_P(NumberText, WholeSingleTakesNumbersFromEndToEndOnly) {
  struct Row {
    const char* text;
    std::optional<float> number;
  };
  const Row rows[] = {
      {"7", 7.0F},
      {"+7", 7.0F},
      {"-7", -7.0F},
      {" 7 ", 7.0F},
      {"\t7\r\n", 7.0F},
      {"0", 0.0F},
      {"0.0046", 0.0046F},
      {".5", 0.5F},
      {"-.5", -0.5F},
      {"5.", 5.0F},
      {"1E-05", 1E-05F},
      {"1e3", 1000.0F},
      {"-34.567\r", -34.567F},
      {"3.4E38", 3.4E38F},
      {"1E-60", 0.0F},
      {"", {}},
      {" ", {}},
      {"\r", {}},
      {"abc", {}},
      {"10dBm", {}},
      {"10 dBm", {}},
      {"1 2", {}},
      {"1,2", {}},
      {"4,6", {}},
      {"1.5.2", {}},
      {"--5", {}},
      {"+-5", {}},
      {"-+5", {}},
      {"- 5", {}},
      {"-", {}},
      {"+", {}},
      {".", {}},
      {"E5", {}},
      {".E5", {}},
      {"1E", {}},
      {"1E+", {}},
      {"1Ex", {}},
      {"0x1F", {}},
      {"nan", {}},
      {"inf", {}},
      {"-inf", {}},
      {"1D5", {}},
      {"3.5E38", {}},
      {"-3.5E38", {}},
      {"1E400", {}},
  };
  for (const Row& row : rows) EXPECT_EQ(wholeSingle(row.text), row.number) << row.text;
  using namespace std::string_view_literals;
  EXPECT_EQ(wholeSingle("7\0"sv), std::nullopt);
  EXPECT_EQ(wholeSingle("\r\n7\r\n"), 7.0F);
}

TEST_P(NumberText, LeadingWholeRoundsHalvesToEvenAndRefusesWhatDoesNotFit) {
  struct Row {
    const char* text;
    std::optional<std::int16_t> number;
  };
  const Row rows[] = {
      {"200", 200},       {"199.6", 200},       {"0.5", 0},       {"1.5", 2},
      {"2.5", 2},         {"3.5", 4},           {"-0.5", 0},      {"-1.5", -2},
      {"-2.5", -2},       {"12.49", 12},        {"12abc", 12},    {"", 0},
      {"x", 0},           {"1E2", 100},         {"32767", 32767}, {"32767.4", 32767},
      {"-32768", -32768}, {"-32768.5", -32768}, {"32767.5", {}},  {"32768", {}},
      {"-32769", {}},     {"70000", {}},        {"1E400", {}},    {"-1E400", {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(leadingWhole<std::int16_t>(row.text), row.number) << row.text;
  }
  EXPECT_EQ(leadingWhole<std::int32_t>("70000"), 70000);
  EXPECT_EQ(leadingWhole<std::int32_t>("2147483647"), 2147483647);
  EXPECT_EQ(leadingWhole<std::int32_t>("2147483648"), std::nullopt);
}

TEST_P(NumberText, OnlyFiniteSinglesFit) {
  const double largest = static_cast<double>(std::numeric_limits<float>::max());
  EXPECT_TRUE(fitsSingle(0));
  EXPECT_TRUE(fitsSingle(largest));
  EXPECT_TRUE(fitsSingle(-largest));
  EXPECT_FALSE(fitsSingle(largest * 1.001));
  EXPECT_FALSE(fitsSingle(infinity));
  EXPECT_FALSE(fitsSingle(-infinity));
  EXPECT_FALSE(fitsSingle(std::nan("")));
}

}  // namespace
}  // namespace pulsemod::test
