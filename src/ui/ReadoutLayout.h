#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <vector>

/// Where the frames of a readout window stand, and the window itself.

namespace pulsemod {

/// The pixels of a length in 1/1440 inch.
int twipsToPixels(int twips, int dotsPerInch);

struct FrameCell {
  int row = 0;
  int column = 0;
  friend bool operator==(const FrameCell&, const FrameCell&) = default;
};
/// The cells of the frames of a window, in the order of the frames.
using FrameCells = std::vector<FrameCell>;

/// Frames of one size that stand `gap` apart, and as far from the edges of their area.
QRect frameIn(const FrameCell& cell, const QSize& frame, int gap);
QSize areaOf(const FrameCells& cells, const QSize& frame, int gap);

/// The first arrangement that `room` holds. Where it holds none, the narrowest one, which scrolls
/// downwards only if that is possible at all.
const FrameCells& arrangementFor(const QSize& room, const std::vector<FrameCells>& arrangements,
                                 const QSize& frame, int gap);

/// As close to where it was as `room` allows; its top left corner stays inside in any case.
QRect movedInside(const QRect& window, const QRect& room);

enum class Side { right, below };

/// The top left corner of a window at that side of `owner`; where there is no room for it, at the
/// other side, or else over `owner`.
QPoint placeBeside(const QRect& owner, const QSize& window, const QRect& room, Side side);

}  // namespace pulsemod
