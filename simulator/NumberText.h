// Numbers as they stand on the wire: decimal, a point, never a locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace simmeter {

std::string_view trimBlanks(std::string_view text);

// ASCII letters only.
std::string upperCase(std::string_view text);
bool equalIgnoringCase(std::string_view a, std::string_view b);
bool startsIgnoringCase(std::string_view text, std::string_view prefix);

// The whole text must be one finite decimal number; an exponent and a leading "+" are allowed,
// blanks are not. Numbers too large for a double are refused.
std::optional<double> parseNumber(std::string_view text);

// Decimal digits only, after an optional sign.
std::optional<std::int64_t> parseInteger(std::string_view text);

// Shortest text that reads back to the same double: "0.0046", "-30", "5E-06".
void appendNumber(std::string& out, double value);

void appendInteger(std::string& out, std::int64_t value);

// value / 10^decimals with exactly that many decimals: (-34567, 3) is "-34.567".
void appendScaled(std::string& out, std::int64_t value, int decimals);

}  // namespace simmeter
