#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "NumberText.h"

namespace simmeter {
namespace {

std::string text(double value) {
  std::string out;
  appendNumber(out, value);
  return out;
}

std::string scaled(std::int64_t value, int decimals) {
  std::string out;
  appendScaled(out, value, decimals);
  return out;
}

TEST(NumberText, WritesTheShortestText) {
  EXPECT_EQ(text(0), "0");
  EXPECT_EQ(text(10), "10");
  EXPECT_EQ(text(-30), "-30");
  EXPECT_EQ(text(0.0046), "0.0046");
  EXPECT_EQ(text(0.0001), "0.0001");
  EXPECT_EQ(text(5e-6), "5E-06");
  EXPECT_EQ(text(100), "100");
}

TEST(NumberText, WritesScaledNumbersWithAllDecimals) {
  EXPECT_EQ(scaled(-34567, 3), "-34.567");
  EXPECT_EQ(scaled(5, 3), "0.005");
  EXPECT_EQ(scaled(-5, 3), "-0.005");
  EXPECT_EQ(scaled(0, 3), "0.000");
  EXPECT_EQ(scaled(1000, 3), "1.000");
  EXPECT_EQ(scaled(1000000, 4), "100.0000");
}

TEST(NumberText, ReadsWholeNumbersOnly) {
  EXPECT_EQ(parseNumber("5E-06"), 5e-6);
  EXPECT_EQ(parseNumber("+1.5"), 1.5);
  EXPECT_EQ(parseNumber("-.5"), -0.5);
  EXPECT_FALSE(parseNumber(""));
  EXPECT_FALSE(parseNumber("1.5x"));
  EXPECT_FALSE(parseNumber("1,5"));
  EXPECT_FALSE(parseNumber("+-1"));
  EXPECT_FALSE(parseNumber("inf"));
  EXPECT_FALSE(parseNumber("nan"));
  EXPECT_FALSE(parseNumber("1e999"));
}

TEST(NumberText, ReadsTheNumbersOfMessages) {
  EXPECT_EQ(parseDecimal("5E-06"), 5e-6);
  EXPECT_EQ(parseDecimal("+.5 e +1"), 5);
  EXPECT_EQ(parseDecimal("-1E400"), -HUGE_VAL);
  EXPECT_EQ(parseDecimal(std::string(400, '9')), HUGE_VAL);
  EXPECT_EQ(parseDecimal("1E-400"), 0);
  EXPECT_EQ(parseDecimal("0." + std::string(400, '0') + "1"), 0);
  EXPECT_EQ(parseDecimal("0." + std::string(400, '0') + "1E401"), 1);
  EXPECT_EQ(parseDecimal("1E32000"), HUGE_VAL);
  EXPECT_FALSE(parseDecimal("1E32001"));
  EXPECT_FALSE(parseDecimal("1E"));
  EXPECT_FALSE(parseDecimal("+-1"));
  EXPECT_FALSE(parseDecimal("1 2"));
  EXPECT_FALSE(parseDecimal("inf"));
  EXPECT_FALSE(parseDecimal(""));
}

TEST(NumberText, ReadsIntegersWithOneSign) {
  EXPECT_EQ(parseInteger("+12"), 12);
  EXPECT_EQ(parseInteger("-12"), -12);
  EXPECT_FALSE(parseInteger("+-12"));
  EXPECT_FALSE(parseInteger("1.0"));
}

TEST(NumberText, NeverKeepsANegativeZero) { EXPECT_EQ(text(parseNumber("-0").value()), "0"); }

}  // namespace
}  // namespace simmeter
