#include "link/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

#include "link/ReplyText.h"

namespace pulsemod {

namespace {

constexpr int significantDigits = 7;
/// As many tell any two singles apart.
constexpr int sufficientDigits = 9;

std::string generalText(float value, int digits) {
  if (value == 0) return "0";
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                    static_cast<double>(value), std::chars_format::general, digits);
  std::string text(buffer.data(), result.ptr);
  const std::size_t exponent = text.find('e');
  if (exponent != std::string::npos) text[exponent] = 'E';
  return text;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

std::size_t skipDigits(std::string_view text, std::size_t position) {
  while (position < text.size() && isDigit(text[position])) ++position;
  return position;
}

/// End of the decimal number that starts at the head of `text` (no sign), or 0 when there is none.
std::size_t decimalNumberEnd(std::string_view text) {
  const std::size_t wholeEnd = skipDigits(text, 0);
  std::size_t end = wholeEnd;
  if (end < text.size() && text[end] == '.') {
    const std::size_t fractionEnd = skipDigits(text, end + 1);
    const bool hasDigits = wholeEnd > 0 || fractionEnd > end + 1;
    if (!hasDigits) return 0;
    end = fractionEnd;
  }
  if (end == 0) return 0;
  if (end < text.size() && (text[end] == 'E' || text[end] == 'e')) {
    std::size_t digits = end + 1;
    if (digits < text.size() && (text[digits] == '+' || text[digits] == '-')) ++digits;
    const std::size_t exponentEnd = skipDigits(text, digits);
    if (exponentEnd > digits) end = exponentEnd;
  }
  return end;
}

/// The value of a decimal number that overflows or underflows a double: the place of its first
/// significant digit and its exponent together tell which.
double outOfRangeValue(std::string_view number) {
  const std::size_t exponentAt = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, exponentAt);
  const std::string_view exponentText = number.substr(std::min(exponentAt + 1, number.size()));
  const auto point = static_cast<double>(std::min(mantissa.find('.'), mantissa.size()));
  const auto digit = static_cast<double>(mantissa.find_first_not_of("0."));
  // As a double, so that an exponent of any length has a size.
  const double exponent = exponentText.empty() ? 0 : leadingNumber(exponentText);
  return point - digit + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

}  // namespace

std::string numberText(float value) { return generalText(value, significantDigits); }

std::string exactText(float value) {
  std::string text;
  for (int digits = significantDigits; digits <= sufficientDigits; ++digits) {
    text = generalText(value, digits);
    if (leadingSingle(text) == value) break;
  }
  return text;
}

std::string fixedText(double value, int minimumDecimals, int maximumDecimals) {
  constexpr double largestExact = 1e15;
  const double scale = std::pow(10.0, maximumDecimals);
  const bool roundable = std::fabs(value) * scale < largestExact;
  const double rounded = roundable ? std::round(value * scale) / scale : value;
  std::array<char, 400> buffer{};
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), rounded == 0 ? 0.0 : rounded,
                    std::chars_format::fixed, maximumDecimals);
  std::string text(buffer.data(), result.ptr);
  for (int removable = maximumDecimals - minimumDecimals; removable > 0 && text.back() == '0';
       --removable) {
    text.pop_back();
  }
  if (text.back() == '.') text.pop_back();
  return text;
}

double throughShortestText(float value) {
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return leadingNumber(std::string_view(buffer.data(), result.ptr));
}

double throughText(float value) { return leadingNumber(numberText(value)); }

double leadingNumber(std::string_view text) {
  while (text.starts_with(' ') || text.starts_with('\t')) text.remove_prefix(1);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const std::string_view number = text.substr(0, decimalNumberEnd(text));
  if (number.empty()) return 0;
  double value = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  if (result.ec == std::errc::result_out_of_range) value = outOfRangeValue(number);
  return negative ? -value : value;
}

bool fitsSingle(double value) {
  // Halfway from the largest single to the next power of two: all below is rounded down to it.
  constexpr double firstTooLarge = 0x1.ffffffp127;
  return std::fabs(value) < firstTooLarge;
}

std::optional<float> leadingSingle(std::string_view text) {
  const double number = leadingNumber(text);
  if (!fitsSingle(number)) return std::nullopt;
  return static_cast<float>(number);
}

std::optional<float> wholeSingle(std::string_view text) {
  const std::string_view signedNumber = trimmed(text);
  std::string_view number = signedNumber;
  if (number.starts_with('-') || number.starts_with('+')) number.remove_prefix(1);
  if (number.empty() || decimalNumberEnd(number) != number.size()) return std::nullopt;
  return leadingSingle(signedNumber);
}

}  // namespace pulsemod
