#pragma once

#include <cstdint>

#include "platform/Picture.h"
#include "profile/MeasurementSettings.h"

/// The meter's CCDF cursor: a vertical line at a power, with the share of time above it.

namespace pulsemod {

/// Written by the handlers below alone.
struct CCDFMouseState {
  /// The pointer is a left-right arrow: it is over the cursor's line, or a drag of it goes on.
  Boolean16 SizingPointer = False16;
  /// How often the user has placed the cursor. A read-back that finds it moved on is dropped.
  std::uint32_t CursorEdits = 0;
};
extern CCDFMouseState CCDFMouse;

/// The cursor's line is hit within this many points on either side, both ends included.
inline constexpr double cursorHitTolerance = 2;

/// While the cursor is on: its power and its share from the meter (TTMKRO: share first), and where
/// its line stands. A failed query, a reply without both numbers, and one during which the user
/// has placed the cursor, leave all; an axis without length leaves the line.
void ReadCursor();

/// Sends the cursor's power (TTMKPOS).
void SendCursorPosition();

/// Power, share and line while the cursor is on; else `FrameCursor` and the line are hidden.
void UpdateCursorLabels();

/// `menuOn` and `menuOFF`: the window follows at once; the meter is told (TTMKS) when the link is
/// free, or between two curves while the acquisition runs.
void SwitchCursorOn();
void SwitchCursorOff();

/// `menuSetCursorPosition`: asks for a power in dBm; an empty answer changes nothing, text that is
/// no number is 0, and one beyond single precision is a `Fault`. Sent and read back when the link
/// is free, or between two curves while the acquisition runs.
void EditCursorPosition();

/// Carries out `CursorOnPending`, `CursorOffPending` and `CursorPositionPending`, in this order.
void CarryOutCursorRequests();

/// Left button down on the graph: the acquisition pauses until the release.
void CCDFButtonDown();
/// The pointer is at `pointer`, in graph units, of which x alone counts, with or without the
/// button. A drag that began on the line moves it strictly between the ends of the axis; the meter
/// learns nothing yet. A graph that cannot be computed is reported once, as drawing it is.
void CCDFMouseMove(PicturePoint pointer);
/// The pointer left the graph.
void CCDFMouseLeave();
/// Button up, and whatever else ends a press. The acquisition comes back at once; while the cursor
/// is on its position goes to the meter, wherever the press was.
void CCDFButtonUp();

/// A key goes down or repeats: moves the cursor that is on by so many points as a drag of its line
/// would. The mouse must not be followed meanwhile.
void MoveCursorBy(double points);
/// The key is up: as `CCDFButtonUp`.
void EndCursorMove();

}  // namespace pulsemod
