#pragma once

#include <QRect>
#include <QSize>
#include <array>

namespace pulsemod {

/// From 100 % to 0.001 %.
inline constexpr int decadeLabels = 6;

/// What each part of `frmCCDF` needs for its captions, in pixels.
struct CCDFPartSizes {
  QSize source;
  QSize rate;
  QSize cursor;
  /// The largest of the decade labels.
  QSize decade;
  QSize startPower;
  QSize stopPower;
};

/// Where everything in `frmCCDF` stands, in pixels of the area under the menu bar.
struct CCDFLayout {
  QRect rule;
  QRect source;
  QRect rate;
  QRect cursor;
  QRect graph;
  std::array<QRect, decadeLabels> decades;
  QRect startPower;
  QRect stopPower;
};

/// The source at the left, the rate in the middle and the cursor's frame at the right of the top
/// row, above the graph's right end; a rate that would touch one of its neighbours gets a row of
/// its own above them. Under it the graph, with each decade label left of it at the height of its
/// line, and the two powers under its ends. What does not fit side by side is cut rather than drawn
/// over each other.
CCDFLayout layOutCCDF(const QSize& area, const CCDFPartSizes& wanted);

/// The smallest area in which no part touches another and the graph can still be read.
QSize smallestCCDFArea(const CCDFPartSizes& parts);

}  // namespace pulsemod
