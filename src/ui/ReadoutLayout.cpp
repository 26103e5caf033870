#include "ui/ReadoutLayout.h"

#include <algorithm>
#include <cmath>

namespace pulsemod {

int twipsToPixels(int twips, int dotsPerInch) {
  constexpr double twipsPerInch = 1440;
  return static_cast<int>(std::lround(twips * dotsPerInch / twipsPerInch));
}

QRect frameIn(const FrameCell& cell, const QSize& frame, int gap) {
  return {
      QPoint(gap + cell.column * (frame.width() + gap), gap + cell.row * (frame.height() + gap)),
      frame};
}

QSize areaOf(const FrameCells& cells, const QSize& frame, int gap) {
  QSize area(gap, gap);
  for (const FrameCell& cell : cells) {
    const QRect place = frameIn(cell, frame, gap);
    area = area.expandedTo({place.right() + 1 + gap, place.bottom() + 1 + gap});
  }
  return area;
}

const FrameCells& arrangementFor(const QSize& room, const std::vector<FrameCells>& arrangements,
                                 const QSize& frame, int gap) {
  for (const FrameCells& cells : arrangements) {
    const QSize area = areaOf(cells, frame, gap);
    if (area.width() <= room.width() && area.height() <= room.height()) return cells;
  }
  return *std::min_element(arrangements.begin(), arrangements.end(),
                           [&](const FrameCells& one, const FrameCells& other) {
                             return areaOf(one, frame, gap).width() <
                                    areaOf(other, frame, gap).width();
                           });
}

QRect movedInside(const QRect& window, const QRect& room) {
  QRect moved = window;
  moved.moveLeft(std::max(room.left(), std::min(moved.left(), room.right() + 1 - moved.width())));
  moved.moveTop(std::max(room.top(), std::min(moved.top(), room.bottom() + 1 - moved.height())));
  return moved;
}

QPoint placeBeside(const QRect& owner, const QSize& window, const QRect& room, Side side) {
  const bool isRight = side == Side::right;
  const QPoint wanted =
      isRight ? QPoint(owner.right() + 1, owner.top()) : QPoint(owner.left(), owner.bottom() + 1);
  const QPoint opposite = isRight ? QPoint(owner.left() - window.width(), owner.top())
                                  : QPoint(owner.left(), owner.top() - window.height());
  for (const QPoint& place : {wanted, opposite}) {
    const QRect inside = movedInside({place, window}, room);
    if (!inside.intersects(owner)) return inside.topLeft();
  }
  return movedInside({wanted, window}, room).topLeft();
}

}  // namespace pulsemod
