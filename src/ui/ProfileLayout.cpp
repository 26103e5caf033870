#include "ui/ProfileLayout.h"

#include <algorithm>

namespace pulsemod {

namespace {

constexpr int ruleHeight = 1;

QRect centred(int areaWidth, int top, int width, int height) {
  return {areaWidth / 2 - width / 2, top, width, height};
}

bool rateFitsBetween(int areaWidth, const ProfileLabelSizes& labels) {
  const int left = areaWidth / 2 - labels.rate.width() / 2;
  const int right = left + labels.rate.width();
  return left >= labels.reference.width() && right <= areaWidth - labels.scale.width();
}

/// Captions that do not fit side by side are cut rather than drawn over each other. It takes a font
/// too large for the screen.
ProfileLabelSizes cutToWidth(ProfileLabelSizes labels, int width) {
  const auto cut = [](QSize& label, int limit) { label.setWidth(std::min(label.width(), limit)); };
  if (labels.reference.width() + labels.scale.width() > width) {
    cut(labels.scale, std::max(width / 2, width - labels.reference.width()));
    cut(labels.reference, width - labels.scale.width());
  }
  const int sides = std::max(labels.start.width(), labels.stop.width());
  if (labels.capture.width() + 2 * sides > width) {
    for (QSize* label : {&labels.start, &labels.capture, &labels.stop}) cut(*label, width / 3);
  }
  cut(labels.rate, width);
  return labels;
}

int bottomRowHeight(const ProfileLabelSizes& labels) {
  return std::max({labels.start.height(), labels.capture.height(), labels.stop.height()});
}

}  // namespace

ProfileLayout layOutProfile(const QSize& area, const ProfileLabelSizes& wanted) {
  const int width = area.width();
  const ProfileLabelSizes labels = cutToWidth(wanted, width);
  ProfileLayout layout;
  layout.rule = {0, 0, width, ruleHeight};

  int top = ruleHeight;
  int rowHeight = std::max(labels.reference.height(), labels.scale.height());
  if (rateFitsBetween(width, labels)) {
    rowHeight = std::max(rowHeight, labels.rate.height());
    layout.rate = centred(width, top, labels.rate.width(), rowHeight);
  } else {
    layout.rate = centred(width, top, labels.rate.width(), labels.rate.height());
    top += labels.rate.height();
  }
  layout.reference = {0, top, labels.reference.width(), rowHeight};
  layout.scale = {width - labels.scale.width(), top, labels.scale.width(), rowHeight};

  const int bottomHeight = bottomRowHeight(labels);
  const int graphTop = top + rowHeight;
  const int graphHeight = std::max(0, area.height() - graphTop - bottomHeight);
  layout.graph = {0, graphTop, width, graphHeight};

  const int bottom = graphTop + graphHeight;
  layout.start = {0, bottom, labels.start.width(), bottomHeight};
  layout.capture = centred(width, bottom, labels.capture.width(), bottomHeight);
  layout.stop = {width - labels.stop.width(), bottom, labels.stop.width(), bottomHeight};
  return layout;
}

QSize smallestProfileArea(const ProfileLabelSizes& labels) {
  constexpr int smallestGraphHeight = 160;
  const int topWidth =
      std::max(labels.reference.width() + labels.scale.width(), labels.rate.width());
  const int bottomWidth =
      labels.capture.width() + 2 * std::max(labels.start.width(), labels.stop.width()) + 1;
  const int topHeight =
      std::max(labels.reference.height(), labels.scale.height()) + labels.rate.height();
  return {std::max(topWidth, bottomWidth),
          ruleHeight + topHeight + smallestGraphHeight + bottomRowHeight(labels)};
}

}  // namespace pulsemod
