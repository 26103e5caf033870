#pragma once

#include <cstdint>
#include <string>

#include "platform/Picture.h"
#include "profile/MeasurementSettings.h"

/// Gate and fence edges under the mouse, or chosen by keys. Positions are in the graph's user units
/// (profile/GraphScale.h): x counts trace points, y is dBm.

namespace pulsemod {

/// One edge of a gate or its fence, or none.
struct GrabbedEdge {
  GateTime edge = GateTime::none;
  /// 1 to 8, 0 for none.
  std::int16_t gate = 0;
  friend bool operator==(const GrabbedEdge&, const GrabbedEdge&) = default;
};

/// Written by the handlers below alone.
struct GraphMouseState {
  Boolean16 ButtonDown = False16;
  /// The button is down and may move the grabbed edge.
  Boolean16 Dragging = False16;
  /// As the last hover test left it; a press takes it from there.
  GrabbedEdge Grabbed;
  /// What the keys move.
  GrabbedEdge Chosen;
  /// While a key is down: what was grabbed before.
  GrabbedEdge UnderPointer;
};
extern GraphMouseState GraphMouse;

/// An edge is hit within this many trace points on either side, both ends included.
inline constexpr double edgeHitTolerance = 3;

/// The edge at graph x, by the columns that `PositionGateLines` stored. All edges of fences that
/// are on and of gates that are on are tested, gate by gate, fence before gate and start before
/// stop; the last match counts. The fence of a gate that is off is tested too.
GrabbedEdge edgeAt(double x);

/// The edge may stand at `seconds`: strictly between its neighbours (the other end of the gate, a
/// fence that is on, the ends of the graph).
bool edgeMayMoveTo(const GrabbedEdge& grabbed, float seconds);

/// "Gate 1 Start 100us" and the like, without the mark of a drag.
std::string edgeCaption(const GrabbedEdge& grabbed);

/// Top left corner of the label `lblgate` for a pointer, on a graph of the scale `scale`: kept
/// inside the right edge; one label height under the pointer, or, where it would pass the bottom,
/// two heights above it. The label's size is positive.
PicturePoint edgeLabelPlace(PicturePoint pointer, const PictureSize& label,
                            const PictureScale& scale);

/// Left button down: the acquisition pauses until the release, whether an edge is grabbed or not.
/// A press while the button is down already does nothing.
void GraphButtonDown();

/// The pointer is at `pointer`, with or without the button: hover test, or a move of the grabbed
/// edge in the model and on the graph; the meter learns nothing yet. A position outside the limits
/// leaves the edge where it was last. A graph that cannot be computed (no capture time, no scale)
/// is reported once, as drawing it is.
void GraphMouseMove(PicturePoint pointer);

/// The pointer left the graph: without a press, the label goes.
void GraphMouseLeave();

/// Button up, and whatever else ends a press (a box opens, the window loses the mouse). Pointer and
/// acquisition come back at once; the grabbed edge is written to the meter as soon as the link is
/// free.
void GraphButtonUp();

/// Chooses the next (1) or previous (-1) of the edges whose lines are shown, by their times, round
/// and round, and shows its label; the first or the last one when none is chosen.
void ChooseEdge(int step);

/// A key goes down or repeats: moves the chosen edge by so many points as the mouse would, with its
/// limits and its pause; chooses one when none is chosen. The mouse must not be followed meanwhile.
void MoveChosenEdge(double points);

/// The key is up: as `GraphButtonUp`, but for the label, which stays.
void ReleaseChosenEdge();

/// No edge is chosen any more.
void LeaveEdges();

}  // namespace pulsemod
