#include "ui/GraphSheet.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "profile/ProfileGraph.h"
#include "ui/Look.h"

namespace pulsemod {

namespace {

/// In pixels of the font.
constexpr double margin = 10;
constexpr double entryGap = 22;
constexpr double rowGap = 5;
constexpr double labelGap = 6;
constexpr double sampleWidth = 26;
constexpr double smallestGraphWidth = 160;
constexpr double smallestGraphHeight = 100;

struct SheetColours {
  QColor ground;
  QColor graphGround;
  QColor text;
  QColor frame;
};

SheetColours coloursOn(Ground ground) {
  if (ground == Ground::white) {
    return {Qt::white, Qt::white, onWhite(look::label), onWhite(look::rule)};
  }
  return {look::surround, look::graphBackground, look::label, look::rule};
}

/// The same size in every format: points would be measured in the format's own dots.
QFont inPixels(const QFont& font) {
  QFont sized = font;
  sized.setPixelSize(std::max(1, QFontInfo(font).pixelSize()));
  // A hinted text is wider in some sizes than in others.
  sized.setHintingPreference(QFont::PreferNoHinting);
  // A ligature would hide "profile" from those who search a document; any spacing keeps it away.
  constexpr double leastSpacing = 1.0 / 64;
  if (font.letterSpacing() == 0) sized.setLetterSpacing(QFont::AbsoluteSpacing, leastSpacing);
  return sized;
}

QFont bold(QFont font) {
  font.setBold(true);
  return font;
}

double textWidth(const QFont& font, const QString& text) {
  return std::ceil(QFontMetricsF(font).horizontalAdvance(text)) + 1;
}

double textHeight(const QFont& font) { return std::ceil(QFontMetricsF(font).height()); }

struct PlacedEntry {
  const SheetEntry* entry;
  QPointF place;
  QFont font;
};

/// Entries side by side in as many rows as they take.
struct Flow {
  std::vector<PlacedEntry> entries;
  double width = 0;
  double height = 0;
};

double entryWidth(const SheetEntry& entry, const QFont& font) {
  return textWidth(font, entry.text) + (entry.line ? sampleWidth + labelGap : 0);
}

Flow layOutFlow(const std::vector<SheetEntry>& entries, const QFont& first, const QFont& others,
                double room) {
  Flow flow;
  const double row = std::max(textHeight(first), textHeight(others));
  double x = 0;
  for (std::size_t index = 0; index < entries.size(); ++index) {
    const QFont& font = index == 0 ? first : others;
    const double width = entryWidth(entries[index], font);
    if (flow.entries.empty()) {
      flow.height = row;
    } else if (x + width > room) {
      x = 0;
      flow.height += row;
    }
    flow.entries.push_back({&entries[index], {x, flow.height - row}, font});
    flow.width = std::max(flow.width, x + width);
    x += width + entryGap;
  }
  return flow;
}

/// Where everything stands, in pixels of the font.
class SheetLayout {
 public:
  SheetLayout(const GraphSheet& sheet, const QSizeF& size)
      : font_(inPixels(sheet.font)), graphFont_(inPixels(sheet.graphFont)) {
    const double room = size.width() - 2 * margin;
    heading = layOutFlow(sheet.heading, bold(font_), font_, room);
    foot = layOutFlow(sheet.foot, font_, font_, room);
    const double label = textHeight(graphFont_);

    double left = margin;
    double lastLabel = 0;
    double labelRise = 0;
    if (!sheet.leftLabels.empty()) {
      double widest = 0;
      for (const QString& text : sheet.leftLabels) {
        widest = std::max(widest, textWidth(graphFont_, text));
      }
      left += widest + labelGap;
      labelRise = label / 2;
      lastLabel = label / 2;
    }

    topRow = margin + heading.height + rowGap;
    const double top = topRow + label + std::max(rowGap, labelRise);
    const double footHeight = foot.entries.empty() ? 0 : foot.height + rowGap;
    const double bottom = size.height() - margin - footHeight - std::max(rowGap + label, lastLabel);
    graph = {QPointF(left, top), QPointF(size.width() - margin, bottom)};
    bottomRow = bottom + rowGap;
    footTop = size.height() - margin - foot.height;
    fits_ = heading.width <= room && foot.width <= room && graph.width() >= smallestGraphWidth &&
            graph.height() >= smallestGraphHeight && labelsFit(sheet);
  }

  bool fits() const { return fits_; }
  const QFont& font() const { return font_; }
  const QFont& graphFont() const { return graphFont_; }

  Flow heading;
  Flow foot;
  double topRow = 0;
  QRectF graph;
  double bottomRow = 0;
  double footTop = 0;

 private:
  bool labelsFit(const GraphSheet& sheet) const {
    const auto gaps = static_cast<double>(sheet.leftLabels.size()) - 1;
    if (graph.height() < gaps * textHeight(graphFont_)) return false;
    const auto width = [this](const QString& text) { return textWidth(graphFont_, text); };
    const double sides = std::max(width(sheet.bottomLeft), width(sheet.bottomRight));
    return width(sheet.topLeft) + entryGap + width(sheet.topRight) <= graph.width() &&
           width(sheet.bottomCentre) + 2 * (sides + entryGap) <= graph.width();
  }

  QFont font_;
  QFont graphFont_;
  bool fits_ = false;
};

class SheetPainter {
 public:
  SheetPainter(QPainter& painter, const GraphSheet& sheet, const SheetArea& area)
      : painter_(painter), sheet_(sheet), area_(area), colours_(coloursOn(area.ground)) {}

  void paint() {
    const double ratio = fittingRatio();
    const SheetLayout layout(sheet_, QSizeF(area_.size) / ratio);
    painter_.fillRect(QRect(QPoint(), area_.size), colours_.ground);
    const QRect graph =
        QRectF(layout.graph.topLeft() * ratio, layout.graph.size() * ratio).toRect();
    paintGraph(graph, ratio, layout.graphFont());
    painter_.save();
    painter_.scale(ratio, ratio);
    paintTexts(layout);
    painter_.restore();
  }

 private:
  /// The wanted one, or the next smaller one at which nothing is cut.
  double fittingRatio() const {
    constexpr double step = 0.97;
    constexpr double smallest = 0.02;
    double ratio = area_.ratio;
    while (ratio > smallest && !SheetLayout(sheet_, QSizeF(area_.size) / ratio).fits()) {
      ratio *= step;
    }
    return ratio;
  }

  void paintGraph(const QRect& place, double ratio, const QFont& font) {
    Drawing drawing = sheet_.drawing;
    std::vector<VerticalLine> lines = sheet_.lines;
    if (area_.ground == Ground::white) {
      for (DrawingStep& step : drawing.steps) {
        const QColor colour = onWhite(toQt(step.colour));
        step.colour = {static_cast<std::uint8_t>(colour.red()),
                       static_cast<std::uint8_t>(colour.green()),
                       static_cast<std::uint8_t>(colour.blue())};
      }
      for (VerticalLine& line : lines) line.colour = onWhite(line.colour);
    }
    painter_.save();
    painter_.setClipRect(place);
    painter_.translate(place.topLeft());
    painter_.setFont(font);
    painter_.fillRect(QRect(QPoint(), place.size()), colours_.graphGround);
    DrawingPainter graph;
    graph.setArea({place.size(), ratio, area_.surface});
    graph.paintSteps(painter_, drawing, 0, drawing.steps.size());
    graph.paintLines(painter_, drawing.scale, lines);
    painter_.restore();
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(QPen(colours_.frame, std::max(1.0, std::round(ratio))));
    painter_.drawRect(place);
  }

  void paintTexts(const SheetLayout& layout) {
    painter_.setPen(colours_.text);
    paintFlow(layout.heading, margin);
    paintFlow(layout.foot, layout.footTop);
    painter_.setFont(layout.graphFont());
    const QRectF& graph = layout.graph;
    const double top = layout.topRow;
    paintText({graph.left(), top}, sheet_.topLeft);
    paintText({graph.right() - width(sheet_.topRight), top}, sheet_.topRight);
    const double bottom = layout.bottomRow;
    paintText({graph.left(), bottom}, sheet_.bottomLeft);
    paintText({graph.center().x() - width(sheet_.bottomCentre) / 2, bottom}, sheet_.bottomCentre);
    paintText({graph.right() - width(sheet_.bottomRight), bottom}, sheet_.bottomRight);
    paintLeftLabels(graph);
  }

  void paintLeftLabels(const QRectF& graph) {
    const auto count = sheet_.leftLabels.size();
    for (std::size_t index = 0; index < count; ++index) {
      const QString& text = sheet_.leftLabels[index];
      const double share = static_cast<double>(index) / static_cast<double>(count - 1);
      const double middle = graph.top() + share * graph.height();
      paintText({graph.left() - labelGap - width(text), middle - textHeight(painter_.font()) / 2},
                text);
    }
  }

  void paintFlow(const Flow& flow, double top) {
    for (const PlacedEntry& placed : flow.entries) {
      QPointF place = placed.place + QPointF(margin, top);
      painter_.setFont(placed.font);
      if (placed.entry->line) {
        paintSample(*placed.entry, place);
        place.rx() += sampleWidth + labelGap;
      }
      paintText(place, placed.entry->text);
    }
  }

  void paintSample(const SheetEntry& entry, const QPointF& place) {
    painter_.save();
    QPen pen(area_.ground == Ground::white ? onWhite(*entry.line) : *entry.line, 2);
    pen.setCapStyle(Qt::FlatCap);
    if (entry.dashed) pen.setDashPattern({3.5, 2.5});
    painter_.setPen(pen);
    const double y = std::round(place.y() + textHeight(painter_.font()) / 2);
    painter_.drawLine(QPointF(place.x(), y), QPointF(place.x() + sampleWidth, y));
    painter_.restore();
  }

  double width(const QString& text) const { return textWidth(painter_.font(), text); }

  void paintText(const QPointF& topLeft, const QString& text) {
    if (text.isEmpty()) return;
    painter_.drawText(topLeft + QPointF(0, QFontMetricsF(painter_.font()).ascent()), text);
  }

  QPainter& painter_;
  const GraphSheet& sheet_;
  const SheetArea& area_;
  SheetColours colours_;
};

}  // namespace

QColor onWhite(const QColor& colour) {
  struct Pair {
    QColor dark;
    QColor light;
  };
  static const Pair pairs[] = {
      {toQt(gridColour), {190, 194, 200}},
      {toQt(liveTraceColour), {0, 70, 190}},
      {toQt(secondProfileColour), {0, 120, 50}},
      {toQt(activeMarkerColour), {195, 0, 0}},
      {toQt(markerColour), {0, 100, 125}},
      {look::gateLine, {175, 85, 0}},
      {look::fenceLine, {125, 40, 190}},
      {look::label, {20, 24, 32}},
      {look::rule, {100, 108, 120}},
  };
  for (const Pair& pair : pairs) {
    if (pair.dark == colour) return pair.light;
  }
  return Qt::black;
}

void paintSheet(QPainter& painter, const GraphSheet& sheet, const SheetArea& area) {
  SheetPainter(painter, sheet, area).paint();
}

}  // namespace pulsemod
