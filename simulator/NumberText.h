// Numbers as they stand on the wire: decimal, a point, never a locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace simmeter {

// Blanks are all control characters as well: on the wire they separate and mean nothing else.
std::string_view trimBlanks(std::string_view text);
// The place of the first blank; npos when there is none.
std::size_t findBlank(std::string_view text);

// ASCII letters only.
std::string upperCase(std::string_view text);
bool equalIgnoringCase(std::string_view a, std::string_view b);
bool startsIgnoringCase(std::string_view text, std::string_view prefix);

// The whole text must be one finite decimal number; an exponent and a leading "+" are allowed,
// blanks are not. Numbers too large for a double are refused.
std::optional<double> parseNumber(std::string_view text);

// A number in a message: as above, but blanks may stand about the letter of the exponent, a number
// too small for a double is zero, and one too large is infinite. An exponent beyond 32000 is no
// number.
std::optional<double> parseDecimal(std::string_view text);

// Decimal digits only, after an optional sign.
std::optional<std::int64_t> parseInteger(std::string_view text);

// Shortest text that reads back to the same double: "0.0046", "-30", "5E-06".
void appendNumber(std::string& out, double value);

void appendInteger(std::string& out, std::int64_t value);

// value / 10^decimals with exactly that many decimals: (-34567, 3) is "-34.567".
void appendScaled(std::string& out, std::int64_t value, int decimals);

}  // namespace simmeter
