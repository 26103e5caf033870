#pragma once

#include <optional>
#include <string_view>

#include "profile/MeasurementSettings.h"

/// Reading one profile from the meter. A profile is decoded whole before `ProfileTrace` is touched;
/// one that is rejected leaves it, and the point count, as they were.

namespace pulsemod {

struct DecodedProfile {
  /// dBm.
  Trace values{};
  /// How many of `values`, from the first on, the profile holds.
  std::size_t count = 0;
  /// The point count that the reply states; 0 for a block, which states none.
  std::int16_t statedPoints = 0;
};

/// Decodes "PMPO 1,3,-30.1,-30.2,-30.3\r". Exactly 7 characters are dropped from the head, whatever
/// the channel's text. The very last character belongs to no value (over RS232 it is the carriage
/// return). Fields that are no numbers are 0; fewer values than stated are accepted.
/// Rejected: no mnemonic, no point count, a count outside 1 to 400, more than 400 values, a value
/// that does not fit a single.
std::optional<DecodedProfile> decodeTextProfile(std::string_view reply);

/// Decodes an IEEE 488.2 definite-length block of single-precision values, each as the four bytes
/// b1 b0 b2 b3 of its big-endian bits. The data is addressed from the reply's start as if "#" were
/// its first character.
/// Rejected: a reply under 100 characters, no "#", a length that is no number, is 0, is not a
/// multiple of 4, is above 1600 or differs from what came, a value that is no finite number.
std::optional<DecodedProfile> decodeBlockProfile(std::string_view reply);

/// Arms one capture and reads it into `ProfileTrace`: RS232 as text (TR1, PMPO), which also sets
/// `DisplayPoints`, GPIB as a block (TR1, PMPBO). True when there is a new profile; false when a
/// query failed or the profile was rejected. Over RS232 a failed PMPO query ends the program.
bool ReadProfile();

}  // namespace pulsemod
