#pragma once

#include <cstdint>

#include "profile/MeasurementSettings.h"

/// The four parameters that are edited by a click on a label around the graph. The new value stands
/// in `Settings` as soon as the user has typed it.

namespace pulsemod {

/// Edits that were made while the acquisition ran: the loop tells the meter between two profiles.
struct PendingEditFlags {
  Boolean16 CaptureTime = False16;
  Boolean16 ReferenceLevel = False16;
  Boolean16 TriggerDelay = False16;
  Boolean16 GraphScale = False16;
};
extern PendingEditFlags PendingEdits;

/// How many edits each parameter has had. An exchange that finds its edit followed by another does
/// not begin, or does not store its read-back: the newer edit's own exchange is on its way.
struct ParameterEditCounts {
  std::uint32_t CaptureTime = 0;
  std::uint32_t ReferenceLevel = 0;
  std::uint32_t TriggerDelay = 0;
  std::uint32_t GraphScale = 0;
};
extern ParameterEditCounts EditCounts;

/// Clicks on `lblCapture`, `lblRef`, `lblscale` and `lblStart`: ask for a value (a time as
/// `ParseTime` takes it, a level in dBm, a scale in dB) and store it. An empty answer changes
/// nothing; a level that is no number is 0. No value is refused: the meter is the judge. While the
/// acquisition runs the edit becomes pending; else the value is sent when the link is free, and the
/// meter's read-back is stored and shown. A read-back that fails or, but for the capture time, is
/// no number leaves the value as it was entered. A number beyond single precision is a `Fault` and
/// changes nothing. The commands stand in profile/ProfileParameters.h.
void EditCaptureTime();
void EditReferenceLevel();
void EditGraphScale();
void EditTriggerDelay();

/// Takes a capture time from a file: stores it, shows it, and sends it when the link is free. It is
/// not read back. A newer edit meanwhile wins.
void ReplaceCaptureTime(float seconds);

/// The four parameters have new values from elsewhere, which a read-back of an edit must not
/// overwrite.
void CountParameterEdits();

/// Click on `lblStop`: a message says that the right edge follows from the capture time.
void ExplainStopTime();

/// Sends each pending value to the meter and takes the value that the meter reads back, in the
/// order capture time, reference level, trigger delay, scale. A failed read-back leaves the value
/// as it was entered. A value that is edited again during its own exchange stays, pending anew.
void CarryOutPendingEdits();

}  // namespace pulsemod
