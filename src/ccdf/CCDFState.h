#pragma once

#include <string>

#include "profile/MeasurementSettings.h"

/// The program's copy of the meter's CCDF: for each power the share of time during which the signal
/// lies above it. It lives for the whole run. Powers are dBm, shares percent.

namespace pulsemod {

/// The live curve: element i - 1 is point i, the share at the power
/// StartPower + i (StopPower - StartPower) / DisplayPoints. The point count is
/// `Settings.DisplayPoints`, which every curve sets.
extern Trace CCDFData;

/// Base-10 logarithms of the points of `CCDFData` that were drawn; others keep their values.
extern Trace CCDFLogData;

/// The curve that was opened from a file, drawn under the live one.
extern Trace SecondCCDFData;

struct CCDFSettings {
  float StartPower = 0;  ///< left end of the power axis (TTPST)
  float StopPower = 0;   ///< right end of the power axis (TTPSP)
  /// "CHANNEL", "GATE" or "MARKER", as the meter last said (TTSRC).
  std::string MeasurementSource;
  Boolean16 CursorOn = False16;        ///< TTMKS
  Boolean16 CursorDragging = False16;  ///< the mouse button is down on the graph
  float CursorPower = 0;               ///< TTMKPOS
  float CursorPercent = 0;             ///< the share at the cursor
  float CursorX = 0;                   ///< where the cursor's line stands, in graph x units
};
extern CCDFSettings CCDF;

/// Requests that were made while the acquisition ran. The loop carries each out between two curves.
struct CCDFRequests {
  Boolean16 StartPowerPending = False16;
  Boolean16 StopPowerPending = False16;
  Boolean16 SourceMarkerPending = False16;
  Boolean16 SourceGatePending = False16;
  Boolean16 SourceChannelPending = False16;
  Boolean16 CursorOnPending = False16;
  Boolean16 CursorOffPending = False16;
  Boolean16 CursorPositionPending = False16;
  Boolean16 PowerRangePending = False16;
  /// Nobody reads this: every curve restarts the statistics by itself, so that a restart that is
  /// asked for while curves are read is done already.
  Boolean16 RestartPending = False16;
};
extern CCDFRequests CCDFPending;

}  // namespace pulsemod
