#include "ui/ProfileLayout.h"

#include <algorithm>
#include <initializer_list>

namespace pulsemod {

namespace {

constexpr int ruleHeight = 1;

enum class Side { left, middle, right };

struct Cell {
  QRect& place;
  QSize size;
  Side side;
};

/// Places labels side by side, all as high as the highest; where their row ends.
int placeRow(int top, int width, std::initializer_list<Cell> cells) {
  int height = 0;
  for (const Cell& cell : cells) height = std::max(height, cell.size.height());
  for (const Cell& cell : cells) {
    const int own = cell.size.width();
    const int left = cell.side == Side::left    ? 0
                     : cell.side == Side::right ? width - own
                                                : width / 2 - own / 2;
    cell.place = {left, top, own, height};
  }
  return top + height;
}

bool rateFitsBetween(int areaWidth, const ProfileLabelSizes& labels) {
  const int left = areaWidth / 2 - labels.rate.width() / 2;
  const int right = left + labels.rate.width();
  return left >= labels.reference.width() && right <= areaWidth - labels.scale.width();
}

int widthOfTopRow(const ProfileLabelSizes& labels) {
  return labels.reference.width() + labels.scale.width();
}

int widthOfBottomRow(const ProfileLabelSizes& labels) {
  return labels.capture.width() + 2 * std::max(labels.start.width(), labels.stop.width());
}

/// A caption that is wider than the window is cut. It takes a font too large for the screen.
ProfileLabelSizes cutToWidth(ProfileLabelSizes labels, int width) {
  for (QSize* label : {&labels.reference, &labels.rate, &labels.scale, &labels.start,
                       &labels.capture, &labels.stop}) {
    label->setWidth(std::min(label->width(), width));
  }
  return labels;
}

/// Places what stands above the graph; where the graph begins.
int placeTop(ProfileLayout& layout, int width, const ProfileLabelSizes& labels) {
  const Cell reference{layout.reference, labels.reference, Side::left};
  const Cell rate{layout.rate, labels.rate, Side::middle};
  const Cell scale{layout.scale, labels.scale, Side::right};
  if (rateFitsBetween(width, labels)) return placeRow(ruleHeight, width, {reference, rate, scale});
  const int top = placeRow(ruleHeight, width, {rate});
  if (widthOfTopRow(labels) <= width) return placeRow(top, width, {reference, scale});
  return placeRow(placeRow(top, width, {reference}), width, {scale});
}

/// Places what stands under a graph that ends at `top`; where that ends.
int placeBottom(ProfileLayout& layout, int top, int width, const ProfileLabelSizes& labels) {
  const Cell start{layout.start, labels.start, Side::left};
  const Cell capture{layout.capture, labels.capture, Side::middle};
  const Cell stop{layout.stop, labels.stop, Side::right};
  if (widthOfBottomRow(labels) <= width) return placeRow(top, width, {start, capture, stop});
  const bool endsFit = labels.start.width() + labels.stop.width() <= width;
  const int next = endsFit ? placeRow(top, width, {start, stop})
                           : placeRow(placeRow(top, width, {start}), width, {stop});
  return placeRow(next, width, {capture});
}

}  // namespace

ProfileLayout layOutProfile(const QSize& area, const ProfileLabelSizes& wanted) {
  const int width = area.width();
  const ProfileLabelSizes labels = cutToWidth(wanted, width);
  ProfileLayout layout;
  layout.rule = {0, 0, width, ruleHeight};
  const int graphTop = placeTop(layout, width, labels);
  const int bottomHeight = placeBottom(layout, 0, width, labels);
  const int graphHeight = std::max(0, area.height() - graphTop - bottomHeight);
  layout.graph = {0, graphTop, width, graphHeight};
  placeBottom(layout, graphTop + graphHeight, width, labels);
  return layout;
}

QSize smallestProfileArea(const ProfileLabelSizes& labels, int widest) {
  constexpr int smallestGraphHeight = 160;
  const int wanted =
      std::max({widthOfTopRow(labels), labels.rate.width(), widthOfBottomRow(labels) + 1});
  const int width = std::min(wanted, widest);
  ProfileLayout layout;
  // The rate may need a row of its own before the window has grown.
  const int topHeight = placeTop(layout, width, cutToWidth(labels, width)) +
                        (layout.rate.top() == layout.reference.top() ? labels.rate.height() : 0);
  const int bottomHeight = placeBottom(layout, 0, width, cutToWidth(labels, width));
  return {width, topHeight + smallestGraphHeight + bottomHeight};
}

}  // namespace pulsemod
