#pragma once

#include "platform/Picture.h"
#include "profile/ProfileView.h"

/// The drawing of the pulse profile in `GraphPic`, in the coordinates of profile/GraphScale.h.
///
/// A fault (a capture time, a scale or a number of points of zero, more than 400 points) leaves
/// before anything of the new drawing becomes visible.

namespace pulsemod {

inline constexpr Colour gridColour{200, 200, 200};
inline constexpr Colour liveTraceColour{255, 255, 0};
inline constexpr Colour secondProfileColour{0, 255, 100};
inline constexpr Colour activeMarkerColour{255, 0, 0};
inline constexpr Colour markerColour{0, 255, 255};

/// Clears the picture, sets its user scale and draws the grid of 10 by 10 divisions.
void DrawGraphGrid();

/// Computes the x columns of all gates and places their lines.
void PositionGateLines();

/// The captions of the five labels around the graph, then `PositionGateLines`.
void UpdateGraphLabels();

/// Draws `SecondProfileTrace`.
void DrawSecondProfile();

/// Prints the labels of the markers that are on. A label hangs below its marker's reading; the
/// delta marker's stands at the live trace.
void DrawMarkers();

/// The whole plot area from the model and the traces. Lets no event run: the acquisition loop does
/// that after it, and a resize must not.
void RedrawProfile();

/// `RedrawProfile`, with a fault reported once and not at each call: the old picture stays. False
/// when there was a fault.
bool RefreshPicture();

/// `RedrawProfile` with labels and gate lines: for everything that changed outside the acquisition
/// loop (a resize, a configuration read) or by an edit.
void DrawGraph();

/// `DrawGraph`, with a fault reported as in `RefreshPicture`.
bool RefreshGraph();

}  // namespace pulsemod
