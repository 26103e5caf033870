#pragma once

#include "platform/Picture.h"

/// The drawing of the CCDF in `CCDFGraphPic`. Graph x counts points: 0 at the left edge
/// (`StartPower`), `DisplayPoints` at the right one (`StopPower`). Graph y is the exponent of ten
/// of the percentage: 2 (100 %) at the top, -3 (0.001 %) at the bottom.
///
/// A fault (no points, more than 400 points) leaves before anything of the new drawing becomes
/// visible.

namespace pulsemod {

inline constexpr Colour ccdfGridColour{200, 200, 200};
inline constexpr Colour liveCurveColour{255, 255, 0};
inline constexpr Colour secondCurveColour{0, 255, 100};

/// Exponents of ten at the top and the bottom edge.
inline constexpr double ccdfTop = 2;
inline constexpr double ccdfBottom = -3;

/// Graph x to power in dBm. Display points of zero are a `Fault`.
float XToPower(double x);

/// Power in dBm to graph x, not clamped. An axis whose ends are the same is a `Fault`.
float PowerToX(float power);

/// Clears the picture, sets its user scale and draws the grid: a line for each tenth of the power
/// axis and for each decade.
void ScaleCCDFGraph();

/// The whole picture: grid, the second curve if it is shown, the live curve. A point of zero or
/// less is skipped, and a straight line bridges the gap. Lets no event run.
void DrawCCDFGraph();

/// `DrawCCDFGraph`, with a fault reported once and not at each call: the old picture stays. False
/// when it could not be drawn.
bool RefreshCCDFGraph();

}  // namespace pulsemod
