#pragma once

#include <cstddef>
#include <string>

/// What the readouts ask of their windows.

namespace pulsemod {

/// `frmInfo`. Groups and elements are numbered as in `GateReadings` (profile/Readouts.h).
class InfoBoxView {
 public:
  virtual ~InfoBoxView() = default;

  /// The frame of a group. A frame that is not in use takes no room; one that is disabled keeps its
  /// last texts.
  virtual void setGroup(std::size_t group, bool inUse, bool enabled) = 0;
  /// Shows `element` as these three texts.
  virtual void showResult(std::size_t element, const std::string& name, const std::string& value,
                          const std::string& unit) = 0;
  virtual void hideResult(std::size_t element) = 0;
};

/// `frmMarkers`.
class MarkersView {
 public:
  virtual ~MarkersView() = default;

  /// The frame of marker `index` + 1. One that is disabled keeps its last texts.
  virtual void setMarkerEnabled(std::size_t index, bool enabled) = 0;
  /// The number of the reading in dBm, and the position as `FormatTime` gives it.
  virtual void showMarker(std::size_t index, const std::string& reading,
                          const std::string& position) = 0;
};

}  // namespace pulsemod
