#pragma once

#include <string>
#include <string_view>

namespace pulsemod {

/// A time in seconds as a short text, cut to three decimals toward minus infinity: 0.0046 is
/// "4.6ms", 0.0000046 "4.6us", 0.0000001 "100ns", 0 "0.0s". Below 1 ns the text is empty.
/// A time of one second or more bears the unit "ms" as well (2.5 s is "2.5ms"): the display of this
/// system has always done so, and its users read it that way.
std::string FormatTime(float seconds);

/// A typed time in seconds. Digits, "-" and "." make the number (its leading number counts, empty
/// is 0), all else makes the unit: ns, us, ms or s in any case, or none for seconds. A blank
/// belongs to the unit, so "5 ms" is not understood and means 5 seconds, as does any unknown unit;
/// `showErrors` tells whether a message says so. Exponents are not understood either. A number
/// beyond single precision is a `Fault`.
float ParseTime(std::string_view text, bool showErrors);

}  // namespace pulsemod
