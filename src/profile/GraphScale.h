#pragma once

#include <cstddef>

#include "platform/Picture.h"

/// The profile graph's coordinates: x counts trace points (left edge 1, width `DisplayPoints`), y
/// is dBm (`ReferenceLevel` at the top, ten divisions of `ScalePerDivision` downward).

namespace pulsemod {

inline constexpr int graphDivisions = 10;

/// How many points of a trace or curve are drawn. Display points outside 1 to 400 are a `Fault`.
std::size_t drawnPoints();

/// Times have a place on the graph: it has a capture time and points.
bool graphHasTimeAxis();

/// Time in seconds to graph x, clamped to 0 ... `DisplayPoints`. So the trigger delay itself lies
/// at x = 0, one point left of the visible edge. A capture time or a number of points of zero is a
/// `Fault`, and so is a column beyond the range of a single before it is clamped.
float TimeToGraphX(float seconds);

/// Graph x to time in seconds, not clamped. Display points of zero are a `Fault`.
float GraphXToTime(float x);

/// Time at the right edge of the graph: trigger delay plus capture time. A sum that does not fit is
/// a `Fault`.
float graphStopTime();

/// The user scale of the profile graph. A `Fault` when the settings leave no area to draw on (no
/// points, no height, no capture time).
PictureScale profileGraphScale();

/// Level at the bottom edge, dBm.
double graphBottomLevel();

}  // namespace pulsemod
