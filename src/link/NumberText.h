#pragma once

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

/// Numbers on the wire, in files and on screen. None of these sees a locale.

namespace pulsemod {

/// The general text of a single-precision number: at most 7 significant digits, no trailing zeros,
/// no leading blank, "-" for negatives, and an exponent ("5E-06") below 1E-04 and from 1E+07 on.
/// Minus zero is "0".
std::string numberText(float value);

/// As `numberText`, but with up to 9 digits where it takes them to read the same single back.
std::string exactText(float value);

/// `value` with `minimumDecimals` to `maximumDecimals` decimals, rounded half away from zero, at
/// least one digit before the point: 5.2 with 2 to 3 is "5.20". A value that rounds to zero has no
/// sign.
std::string fixedText(double value, int minimumDecimals, int maximumDecimals);

/// `value` through its general text and back, as a double: what a reader of the text would compute
/// with, free of single-precision noise.
double throughText(float value);

/// As `throughText`, with as many digits as it takes to read the same single back. Some singles
/// just under 0.001 have no 7-digit text of their own, so scaling a time starts here.
double throughShortestText(float value);

/// The number at the start of a text, after blanks: sign, digits, decimal point, exponent. What
/// follows is ignored; text without a leading number gives 0. A number beyond the range of a double
/// gives infinity.
double leadingNumber(std::string_view text);

/// True when `value` becomes a finite single.
bool fitsSingle(double value);

/// As `leadingNumber`; nothing when the number does not fit a finite single.
std::optional<float> leadingSingle(std::string_view text);

/// The single that `text` is from end to end, but for blanks around it; nothing for any other text,
/// and when the number does not fit.
std::optional<float> wholeSingle(std::string_view text);

/// As `leadingNumber`, rounded to the nearest whole number (halves to even); nothing when that does
/// not fit `Whole`.
template <typename Whole>
std::optional<Whole> leadingWhole(std::string_view text) {
  const double rounded = std::nearbyint(leadingNumber(text));
  using Limits = std::numeric_limits<Whole>;
  if (!(rounded >= static_cast<double>(Limits::min()) &&
        rounded <= static_cast<double>(Limits::max()))) {
    return std::nullopt;
  }
  return static_cast<Whole>(rounded);
}

}  // namespace pulsemod
