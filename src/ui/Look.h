#pragma once

#include <QColor>

#include "platform/Picture.h"

namespace pulsemod {

/// A colour of a drawing, as the toolkit has it.
inline constexpr QColor toQt(Colour colour) { return {colour.red, colour.green, colour.blue}; }

}  // namespace pulsemod

/// The colours of the instrument's face. It is dark on light and dark desktops alike, since the
/// colours of the traces are made for a dark ground; every text on it keeps a contrast of 4.5 to 1
/// or better.
namespace pulsemod::look {

inline constexpr QColor graphBackground{10, 14, 20};
inline constexpr QColor surround{30, 35, 43};
inline constexpr QColor label{226, 232, 240};
inline constexpr QColor quietLabel{166, 176, 190};
inline constexpr QColor rule{70, 80, 96};

/// The frame of a label or a graph that has the keyboard focus.
inline constexpr QColor focusFrame{120, 190, 255};

/// The label of an edge under the mouse, over the graph.
inline constexpr QColor edgeLabelGround{44, 52, 64};
inline constexpr QColor edgeLabelText{255, 255, 255};

/// Apart from both traces in hue and from each other in style as well.
inline constexpr QColor gateLine{255, 140, 0};
inline constexpr QColor fenceLine{206, 130, 255};
inline constexpr QColor cursorLine{255, 140, 0};

}  // namespace pulsemod::look
