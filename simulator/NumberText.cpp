#include "NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace simmeter {
namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool isBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

constexpr std::int64_t kGreatestExponent = 32000;  // a greater one is no number any more

// Of a number that a double cannot hold: is it too large, and not too small?
bool isLarge(std::string_view mantissa, std::int64_t exponent) {
  const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto first = static_cast<std::int64_t>(mantissa.find_first_of("123456789"));
  return exponent + point - first > 0;
}

// A '+' before the number; from_chars knows '-' only.
bool dropPlus(std::string_view& text) {
  if (text.empty() || text.front() != '+') return true;
  text.remove_prefix(1);
  return text.empty() || text.front() != '-';
}

}  // namespace

std::string_view trimBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::size_t findBlank(std::string_view text) {
  const auto found = std::find_if(text.begin(), text.end(), isBlank);
  return found == text.end() ? std::string_view::npos
                             : static_cast<std::size_t>(found - text.begin());
}

std::string upperCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), upper);
  return result;
}

bool startsIgnoringCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && equalIgnoringCase(text.substr(0, prefix.size()), prefix);
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return upper(x) == upper(y); });
}

std::optional<double> parseNumber(std::string_view text) {
  if (!dropPlus(text)) return std::nullopt;
  double value = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc{} || result.ptr != end || !std::isfinite(value)) return std::nullopt;
  return value == 0 ? 0.0 : value;  // never a negative zero
}

std::optional<double> parseDecimal(std::string_view text) {
  const std::size_t letter = std::min(text.find_first_of("eE"), text.size());
  const std::string_view mantissa = trimBlanks(text.substr(0, letter));
  if (mantissa.find_first_not_of("+-.0123456789") != std::string_view::npos) return std::nullopt;
  std::int64_t exponent = 0;
  if (letter < text.size()) {
    const auto parsed = parseInteger(trimBlanks(text.substr(letter + 1)));
    if (!parsed || std::abs(*parsed) > kGreatestExponent) return std::nullopt;
    exponent = *parsed;
  }
  std::string compact(mantissa);
  compact += 'e';
  appendInteger(compact, exponent);
  std::string_view digits = compact;
  if (!dropPlus(digits)) return std::nullopt;
  double value = 0;
  const char* end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, value);
  if (result.ptr != end) return std::nullopt;
  if (result.ec == std::errc::result_out_of_range) {
    if (!isLarge(mantissa, exponent)) return 0.0;
    return mantissa.front() == '-' ? -HUGE_VAL : HUGE_VAL;
  }
  if (result.ec != std::errc{}) return std::nullopt;
  return value == 0 ? 0.0 : value;  // never a negative zero
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
  if (!dropPlus(text)) return std::nullopt;
  std::int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc{} || result.ptr != end) return std::nullopt;
  return value;
}

void appendNumber(std::string& out, double value) {
  // Below this a row of zeros would be longer than an exponent, and above it as well.
  const double magnitude = std::fabs(value);
  const bool plain = value == 0 || (magnitude >= 1e-4 && magnitude < 1e15);
  std::array<char, 40> buffer{};
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                    plain ? std::chars_format::fixed : std::chars_format::scientific);
  for (const char* p = buffer.data(); p != result.ptr; ++p) out += upper(*p);
}

void appendInteger(std::string& out, std::int64_t value) {
  std::array<char, 24> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  out.append(buffer.data(), result.ptr);
}

void appendScaled(std::string& out, std::int64_t value, int decimals) {
  // From the last digit to the first: a curve has hundreds of these.
  std::array<char, 48> buffer{};
  char* const end = buffer.data() + buffer.size();
  char* first = end;
  const bool negative = value < 0;
  auto left = negative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  for (int digit = 0; digit <= decimals || left > 0; ++digit) {
    if (decimals > 0 && digit == decimals) *--first = '.';
    *--first = static_cast<char>('0' + left % 10);
    left /= 10;
  }
  if (negative) *--first = '-';
  out.append(first, end);
}

}  // namespace simmeter
