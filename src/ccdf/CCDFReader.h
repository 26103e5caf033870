#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "profile/MeasurementSettings.h"

/// Reading one CCDF curve from the meter. A curve is decoded whole before `CCDFData` is touched.

namespace pulsemod {

struct DecodedCurve {
  /// Shares in percent.
  Trace values{};
  /// How many of `values`, from the first on, the curve holds.
  std::size_t count = 0;
  /// The point count that the reply states; it is not compared with `count`.
  std::int16_t statedPoints = 0;
};

/// Decodes "TTFRO 1,3,50.5,10.25,1.5\r". Exactly 8 characters are dropped from the head, whatever
/// the channel's text. The very last character belongs to no value: it is the line end that the
/// link has left. Fields that are no numbers are 0. Nothing when the reply has no mnemonic or no
/// point count. More than 400 values, a count beyond 16 bits and a value that does not fit a single
/// are a `Fault`.
std::optional<DecodedCurve> decodeCurve(std::string_view reply);

/// Restarts the meter's statistics, so that the curve is fresh (PPACQRT), and reads it (TTFRO) into
/// `CCDFData` and `DisplayPoints`. False when the reply is no curve; old curve and count stay then,
/// and at a fault. A failed query ends the program.
bool ReadCCDFData();

/// The meter's point count into `DisplayPoints`, from the head of a curve (TTFRO). A failed query,
/// and a reply that is no curve or whose count does not fit, leave it.
void ReadCCDFPoints();

}  // namespace pulsemod
