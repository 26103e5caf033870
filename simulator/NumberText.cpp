#include "NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace simmeter {
namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

std::string_view trimBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
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
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  double value = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc{} || result.ptr != end || !std::isfinite(value)) return std::nullopt;
  return value == 0 ? 0.0 : value;  // never a negative zero
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
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
