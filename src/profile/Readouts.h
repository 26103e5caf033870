#pragma once

namespace pulsemod {

/// Reads the power and the position of each marker 1 to 4 that is on (MKNO), and its graph column.
/// A failed query, and a reply that ends before the position, leave the marker as it was. The delta
/// marker is not read.
void ReadMarkerReadings();

}  // namespace pulsemod
