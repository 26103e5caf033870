// Numbers from texts and texts of numbers, against the C library's own.
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include "FuzzInput.h"
#include "PlainReading.h"
#include "link/NumberText.h"

namespace pulsemod::fuzz {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

bool isSame(double one, double other) {
  return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

template <typename Whole>
void checkWhole(std::string_view text, double number) {
  const double rounded = std::nearbyint(number);
  const bool fits =
      rounded >= std::numeric_limits<Whole>::min() && rounded <= std::numeric_limits<Whole>::max();
  const auto whole = leadingWhole<Whole>(text);
  require(whole.has_value() == fits, "a whole number is there when it fits");
  require(!whole || *whole == rounded, "a whole number is the nearest one");
}

void checkReading(std::string_view text) {
  const double number = leadingNumber(text);
  require(isSame(number, libraryNumber(text)), "a number reads as the library reads it");
  const auto single = leadingSingle(text);
  require(single.has_value() == std::isfinite(static_cast<float>(number)),
          "a single is there when it fits");
  require(!single || *single == static_cast<float>(number), "a single is the nearest one");
  checkWhole<std::int16_t>(text, number);
  checkWhole<std::int32_t>(text, number);
}

/// The number that a text is from its first to its last character, but for blanks around it.
std::optional<float> wholeLibraryNumber(const std::string& text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t start = std::min(text.find_first_not_of(blanks), text.size());
  const std::string bare = text.substr(start);
  if (bare.find_first_not_of("+-.0123456789eE \t\r\n") != std::string::npos) return {};
  char* end = nullptr;
  const double number = std::strtod(bare.c_str(), &end);
  const std::string_view rest = end;
  if (end == bare.c_str() || rest.find_first_not_of(blanks) != std::string_view::npos) return {};
  return singleOf(number);
}

void checkWholeText(std::string_view text) {
  require(wholeSingle(text) == wholeLibraryNumber(std::string(text)),
          "a number and nothing else is that number");
}

std::string sevenDigits(float value) {
  std::array<char, 40> digits{};
  std::snprintf(digits.data(), digits.size(), "%.7G", static_cast<double>(value));
  return value == 0 ? "0" : digits.data();
}

void checkGeneralText(float value) {
  const std::string text = numberText(value);
  require(text == sevenDigits(value), "a text has 7 digits");
  require(isSame(throughText(value), libraryNumber(text)), "a number through its text");
  const auto read = static_cast<float>(leadingNumber(text));
  // Mostly the same text again, but not beside a power of ten: 1E+34 is nearest to a single below
  // it, which has 7 digits of its own.
  require(numberText(read) == sevenDigits(read), "what was read has 7 digits");
}

void checkExactText(float value) {
  const std::string text = exactText(value);
  require(leadingSingle(text) == value, "the exact text reads as the same single");
  require(text == numberText(value) || leadingSingle(numberText(value)) != value,
          "it is no longer than it must be");
  require(static_cast<float>(throughShortestText(value)) == value, "the shortest text is exact");
}

void checkFixedText(double value, int least, int most) {
  const std::string text = fixedText(value, least, most);
  const std::size_t point = text.find('.');
  const std::size_t decimals = point == std::string::npos ? 0 : text.size() - point - 1;
  require(decimals >= static_cast<std::size_t>(least) && decimals <= static_cast<std::size_t>(most),
          "the decimals are as many as asked for");
  const std::size_t first = text.starts_with('-') ? 1 : 0;
  require(text.find_first_not_of("0123456789.", first) == std::string::npos &&
              text.find_first_of("0123456789") == first,
          "a digit stands before the point");
  const double read = libraryNumber(text);
  require(first == 0 || read < 0, "zero has no sign");
  const double unit = std::pow(10.0, -most);
  require(std::fabs(read - value) <= 0.5 * unit + std::fabs(value) * 1e-15, "it is the number");
}

float singleIn(std::string_view bytes) {
  float value = 0;
  std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
  return std::isfinite(value) ? value : 0;
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod::fuzz;
  const std::string_view text = FuzzInput(data, size).rest();
  checkReading(text);
  checkWholeText(text);
  // Both singles that the bytes hold, and the one that the text reads as.
  const float value = singleIn(text);
  checkGeneralText(value);
  checkExactText(value);
  checkFixedText(static_cast<double>(value), 2, 2);
  checkFixedText(static_cast<double>(value), 2, 3);
  const double number = pulsemod::leadingNumber(text);
  if (pulsemod::fitsSingle(number)) {
    checkGeneralText(static_cast<float>(number));
    checkExactText(static_cast<float>(number));
  }
  if (std::fabs(number) < infinity) checkFixedText(number, 0, 3);
  return 0;
}
