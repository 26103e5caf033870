#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "profile/MeasurementSettings.h"

/// The meter's numeric results: gate measurements for `frmInfo`, marker readings for `frmMarkers`
/// and for the labels on the graph.

namespace pulsemod {

inline constexpr std::size_t resultsPerGroup = 3;
/// Group 0 is the whole profile, group g is gate g.
inline constexpr std::size_t readingGroups = 9;

/// The latest results: element 3g + k is the k-th result of group g, in the unit that
/// `measurementResults` tells. A result that the present measurement type lacks keeps its old
/// value.
extern std::array<float, readingGroups * resultsPerGroup> GateReadings;

struct MeasurementResult {
  const char* name;
  const char* unit;
};

/// The results of a measurement type 1 to 4, in their order; none for any other type.
std::span<const MeasurementResult> measurementResults(std::int32_t type);

/// `gatesAgain` asks what `gates` asks.
enum class GateMeasurementMode { profile = 0, gates = 1, gatesAgain = 2 };

/// Reads the results of the whole profile (PMRDO), or of each gate that is on (GPNMO), and the
/// measurement type that each reply names; one without results changes the type alone. A failed
/// query, and a reply that ends before its last value, leave the old type and results.
void ReadGateMeasurements(GateMeasurementMode mode);

/// Gates when one is on, else the whole profile.
GateMeasurementMode presentGateMeasurementMode();

/// The graph column of a marker from its position; a graph without a time axis leaves it. A
/// position so far outside that no single holds its column is a `Fault`.
void PositionMarker(MarkerSettings& marker);

/// Reads the power and the position of each marker 1 to 4 that is on (MKNO), and its graph column.
/// A failed query, and a reply that ends before the position, leave the marker as it was; a
/// position that has no column leaves the old one. The delta marker is not read.
void ReadMarkerReadings();

/// Names, values and units into `frmInfo`, if it is open. The frames of the meter's own gates are
/// always in use, those of the repeat while they are on; a frame is enabled while its gate is on,
/// the frame of the whole profile while none is.
void UpdateInfoBox();

/// Readings and positions of the markers that are on into `frmMarkers`, if it is open.
void UpdateMarkersWindow();

}  // namespace pulsemod
