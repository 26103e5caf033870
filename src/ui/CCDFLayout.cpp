#include "ui/CCDFLayout.h"

#include <algorithm>
#include <cmath>

namespace pulsemod {

namespace {

constexpr int ruleHeight = 1;
/// Right of the graph and of the cursor's frame.
constexpr int margin = 10;
/// Above and below the cursor's frame.
constexpr int frameGap = 2;
/// The decade labels take at most one such part of the width.
constexpr int decadeShare = 3;

bool rateFitsBetween(int areaWidth, const CCDFPartSizes& parts) {
  const int left = areaWidth / 2 - parts.rate.width() / 2;
  return left >= parts.source.width() &&
         left + parts.rate.width() <= areaWidth - margin - parts.cursor.width();
}

CCDFPartSizes cutToWidth(CCDFPartSizes parts, int width) {
  const auto cut = [](QSize& part, int limit) {
    part.setWidth(std::clamp(part.width(), 0, std::max(0, limit)));
  };
  cut(parts.rate, width);
  cut(parts.cursor, width - margin);
  cut(parts.source, width - margin - parts.cursor.width());
  cut(parts.decade, width / decadeShare);
  const int graphWidth = width - parts.decade.width() - margin;
  cut(parts.startPower, graphWidth / 2);
  cut(parts.stopPower, graphWidth / 2);
  return parts;
}

int topRowHeight(const CCDFPartSizes& parts) {
  return std::max(parts.source.height(), parts.cursor.height() + 2 * frameGap);
}

int bottomRowHeight(const CCDFPartSizes& parts) {
  // The lowest decade label reaches below its line by half of its height.
  return std::max(
      {parts.startPower.height(), parts.stopPower.height(), (parts.decade.height() + 1) / 2});
}

/// How far below the top of the graph a decade's grid line is drawn.
int decadeLine(int graphHeight, int decade) {
  return static_cast<int>(
      std::lround(static_cast<double>(graphHeight) * decade / (decadeLabels - 1)));
}

}  // namespace

CCDFLayout layOutCCDF(const QSize& area, const CCDFPartSizes& wanted) {
  const int width = area.width();
  const CCDFPartSizes parts = cutToWidth(wanted, width);
  CCDFLayout layout;
  layout.rule = {0, 0, width, ruleHeight};

  int top = ruleHeight;
  int rowHeight = topRowHeight(parts);
  const int rateLeft = width / 2 - parts.rate.width() / 2;
  if (rateFitsBetween(width, parts)) {
    rowHeight = std::max(rowHeight, parts.rate.height());
    layout.rate = {rateLeft, top, parts.rate.width(), rowHeight};
  } else {
    layout.rate = {rateLeft, top, parts.rate.width(), parts.rate.height()};
    top += parts.rate.height();
  }
  layout.source = {0, top, parts.source.width(), rowHeight};
  layout.cursor = {width - margin - parts.cursor.width(), top + frameGap, parts.cursor.width(),
                   rowHeight - 2 * frameGap};

  const int graphLeft = parts.decade.width();
  const int graphTop = top + rowHeight + parts.decade.height() / 2;
  const int graphWidth = std::max(0, width - graphLeft - margin);
  const int graphHeight = std::max(0, area.height() - graphTop - bottomRowHeight(parts));
  layout.graph = {graphLeft, graphTop, graphWidth, graphHeight};
  for (int decade = 0; decade < decadeLabels; ++decade) {
    const int line = graphTop + decadeLine(graphHeight, decade);
    layout.decades[static_cast<std::size_t>(decade)] = {0, line - parts.decade.height() / 2,
                                                        graphLeft, parts.decade.height()};
  }

  const int bottom = graphTop + graphHeight;
  layout.startPower = {graphLeft, bottom, parts.startPower.width(), parts.startPower.height()};
  layout.stopPower = {graphLeft + graphWidth - parts.stopPower.width(), bottom,
                      parts.stopPower.width(), parts.stopPower.height()};
  return layout;
}

QSize smallestCCDFArea(const CCDFPartSizes& parts) {
  const int smallestGraphHeight = std::max(160, decadeLabels * parts.decade.height());
  const int topWidth =
      std::max(parts.source.width() + parts.cursor.width() + margin, parts.rate.width());
  const int powerWidth = std::max(parts.startPower.width(), parts.stopPower.width());
  const int bottomWidth = parts.decade.width() + 2 * powerWidth + margin;
  return {std::max({topWidth, bottomWidth, decadeShare * parts.decade.width()}),
          ruleHeight + parts.rate.height() + topRowHeight(parts) + parts.decade.height() / 2 +
              smallestGraphHeight + bottomRowHeight(parts)};
}

}  // namespace pulsemod
