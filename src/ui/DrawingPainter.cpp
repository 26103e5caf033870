#include "ui/DrawingPainter.h"

#include <QPainter>
#include <QPen>
#include <QRectF>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "ui/Look.h"

namespace pulsemod {

namespace {

/// The rasteriser's own limit is 32767 device pixels; lines stay well below it.
constexpr double farthestPixel = 16000;
/// A line that is clipped keeps its slope, so that its ends may lie much farther away.
constexpr double farthestPlace = 1e9;

/// Of a curve in a picture, in the pixels of the font.
constexpr double curveWidth = 1.5;

/// Cosmetic: in device pixels, whatever the transformation.
QPen linePen(const QColor& colour, int width) {
  QPen pen(colour);
  pen.setWidth(width);
  pen.setCosmetic(true);
  return pen;
}

QPen exactPen(const QColor& colour, double width) {
  return {colour, width, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin};
}

int toPixel(double value) {
  return static_cast<int>(std::lround(std::clamp(value, -farthestPixel, farthestPixel)));
}

/// Cuts a line down to what lies within the range of one coordinate, in shares of its length.
bool cutToRange(double from, double step, double least, double most, double& begin, double& end) {
  if (step == 0) return from >= least && from <= most;
  const double atLeast = (least - from) / step;
  const double atMost = (most - from) / step;
  begin = std::max(begin, std::min(atLeast, atMost));
  end = std::min(end, std::max(atLeast, atMost));
  return begin <= end;
}

/// The part of a line that lies inside; false for none.
bool clipLine(QLineF& line, const QRectF& inside) {
  double begin = 0;
  double end = 1;
  if (!cutToRange(line.x1(), line.dx(), inside.left(), inside.right(), begin, end)) return false;
  if (!cutToRange(line.y1(), line.dy(), inside.top(), inside.bottom(), begin, end)) return false;
  // An end that lies inside stays as it is, so that the next line of a curve meets it.
  const QLineF whole = line;
  if (begin > 0) line.setP1(whole.pointAt(begin));
  if (end < 1) line.setP2(whole.pointAt(end));
  return true;
}

}  // namespace

DeviceScale::DeviceScale(const PictureScale& scale, int width, int height)
    : xFactor_(width / scale.width),
      xOffset_(-scale.left * xFactor_),
      yFactor_(height / scale.height),
      yOffset_(-scale.top * yFactor_) {}

bool DeviceScale::map(const PicturePoint& point, QPoint& pixel) const {
  const double x = point.x * xFactor_ + xOffset_;
  const double y = point.y * yFactor_ + yOffset_;
  // A scale without width or height ends here as well.
  if (std::isnan(x) || std::isnan(y)) return false;
  pixel = {toPixel(x), toPixel(y)};
  return true;
}

bool DeviceScale::map(const PicturePoint& point, QPointF& place) const {
  const double x = point.x * xFactor_ + xOffset_;
  const double y = point.y * yFactor_ + yOffset_;
  if (std::isnan(x) || std::isnan(y)) return false;
  place = {std::clamp(x, -farthestPlace, farthestPlace),
           std::clamp(y, -farthestPlace, farthestPlace)};
  return true;
}

void DrawingPainter::setArea(const SurfaceArea& area) {
  area_ = area;
  penWidth_ = std::max(1, static_cast<int>(std::lround(area.ratio)));
}

void DrawingPainter::paintSteps(QPainter& painter, const Drawing& drawing, std::size_t first,
                                std::size_t last) {
  const DeviceScale scale(drawing.scale, area_.size.width(), area_.size.height());
  for (std::size_t index = first; index < last; ++index) {
    const DrawingStep& step = drawing.steps[index];
    if (step.kind == DrawingStep::Kind::text) {
      paintText(painter, scale, drawing, step);
    } else if (isExact(step)) {
      paintExact(painter, scale, drawing, step);
    } else {
      paintRounded(painter, scale, drawing, step);
    }
  }
}

QRect DrawingPainter::extent(const Drawing& drawing, std::size_t first, std::size_t last,
                             const QFont& font) {
  const DeviceScale scale(drawing.scale, area_.size.width(), area_.size.height());
  QRect extent;
  for (std::size_t index = first; index < last; ++index) {
    const DrawingStep& step = drawing.steps[index];
    if (step.kind == DrawingStep::Kind::text) {
      extent |= textExtent(scale, drawing, step, font);
    } else {
      extent |= pathExtent(scale, drawing, step);
    }
  }
  return extent;
}

QRect DrawingPainter::pathExtent(const DeviceScale& scale, const Drawing& drawing,
                                 const DrawingStep& step) const {
  if (step.pointCount == 0) return {};
  constexpr double infinity = std::numeric_limits<double>::infinity();
  PicturePoint least{infinity, infinity};
  PicturePoint most{-infinity, -infinity};
  const PicturePoint* point = drawing.points.data() + step.firstPoint;
  for (std::size_t index = 0; index < step.pointCount; ++index) {
    // In this order a value that is no number changes nothing.
    least = {std::min(least.x, point[index].x), std::min(least.y, point[index].y)};
    most = {std::max(most.x, point[index].x), std::max(most.y, point[index].y)};
  }
  QPoint one;
  QPoint other;
  if (!scale.map(least, one) || !scale.map(most, other)) return {QPoint(), area_.size};
  const QPoint topLeft(std::min(one.x(), other.x()), std::min(one.y(), other.y()));
  const QPoint bottomRight(std::max(one.x(), other.x()), std::max(one.y(), other.y()));
  return QRect(topLeft, bottomRight).adjusted(0, 0, penWidth_ - 1, penWidth_ - 1);
}

QRect DrawingPainter::textExtent(const DeviceScale& scale, const Drawing& drawing,
                                 const DrawingStep& step, const QFont& font) {
  QPoint pixel;
  if (!scale.map(drawing.points[step.firstPoint], pixel)) return {};
  QStaticText& text = preparedText(drawing, step);
  text.prepare(QTransform(), font);
  // Letters may hang over the sides.
  const QSizeF size = text.size() * area_.ratio;
  const double overhang = size.height() / 2;
  return QRectF(pixel, size).adjusted(-overhang, 0, overhang, 0).toAlignedRect();
}

QRect DrawingPainter::lineExtent(const PictureScale& scale, const VerticalLine& line) const {
  const std::optional<int> column = firstColumn(scale, line);
  return column ? QRect(*column, 0, penWidth_, area_.size.height()) : QRect();
}

std::optional<int> DrawingPainter::firstColumn(const PictureScale& scale,
                                               const VerticalLine& line) const {
  const int width = area_.size.width();
  QPoint pixel;
  if (!DeviceScale(scale, width, area_.size.height()).map({line.x, scale.top}, pixel)) return {};
  if (pixel.x() < 0 || pixel.x() > width) return {};
  // The right edge itself lies beside the last pixel.
  return pixel.x() == width ? width - penWidth_ : pixel.x();
}

bool DrawingPainter::isExact(const DrawingStep& step) const {
  if (area_.surface == Surface::vector) return true;
  return area_.surface == Surface::image && step.kind == DrawingStep::Kind::polyline;
}

void DrawingPainter::paintRounded(QPainter& painter, const DeviceScale& scale,
                                  const Drawing& drawing, const DrawingStep& step) {
  const PicturePoint* point = drawing.points.data() + step.firstPoint;
  const QColor colour = toQt(step.colour);
  run_.clear();
  for (std::size_t index = 0; index < step.pointCount; ++index) {
    QPoint pixel;
    if (scale.map(point[index], pixel)) {
      run_.push_back(pixel);
    } else {
      // No line leads to or from a value that is no number.
      paintRun(painter, colour);
      run_.clear();
    }
  }
  paintRun(painter, colour);
}

void DrawingPainter::paintRun(QPainter& painter, const QColor& colour) {
  if (run_.empty()) return;
  if (run_.size() == 1) {
    painter.fillRect(QRect(run_.front(), QSize(penWidth_, penWidth_)), colour);
    return;
  }
  painter.setPen(linePen(colour, penWidth_));
  if (penWidth_ == 1) {
    painter.drawPolyline(run_.data(), static_cast<int>(run_.size()));
    return;
  }
  // A wide polyline is stroked as one outline, which takes three times as long as its segments.
  segments_.clear();
  const QPoint penCentre(penWidth_ / 2, penWidth_ / 2);
  for (std::size_t index = 1; index < run_.size(); ++index) {
    segments_.emplace_back(run_[index - 1] + penCentre, run_[index] + penCentre);
  }
  painter.drawLines(segments_.data(), static_cast<int>(segments_.size()));
}

void DrawingPainter::paintExact(QPainter& painter, const DeviceScale& scale, const Drawing& drawing,
                                const DrawingStep& step) {
  const PicturePoint* point = drawing.points.data() + step.firstPoint;
  const bool isCurve = step.kind == DrawingStep::Kind::polyline;
  painter.setPen(exactPen(toQt(step.colour), isCurve ? curveWidth * area_.ratio : lineWidth()));
  painter.setRenderHint(QPainter::Antialiasing);
  exactRun_.clear();
  for (std::size_t index = 0; index < step.pointCount; ++index) {
    QPointF place;
    if (scale.map(point[index], place)) {
      exactRun_.push_back(place);
    } else {
      paintExactRun(painter, toQt(step.colour));
      exactRun_.clear();
    }
  }
  paintExactRun(painter, toQt(step.colour));
  painter.setRenderHint(QPainter::Antialiasing, false);
}

/// The parts of the run that lie inside: not every format can clip.
void DrawingPainter::paintExactRun(QPainter& painter, const QColor& colour) {
  const QRectF inside(QPointF(), area_.size);
  if (exactRun_.size() == 1 && inside.contains(exactRun_.front())) {
    const double width = curveWidth * area_.ratio;
    painter.fillRect(QRectF(exactRun_.front(), QSizeF(width, width)), colour);
  }
  insideRun_.clear();
  const auto paintInside = [&] {
    if (!insideRun_.empty()) {
      painter.drawPolyline(insideRun_.data(), static_cast<int>(insideRun_.size()));
    }
    insideRun_.clear();
  };
  for (std::size_t index = 1; index < exactRun_.size(); ++index) {
    QLineF line(exactRun_[index - 1], exactRun_[index]);
    if (!clipLine(line, inside)) continue;
    if (insideRun_.empty() || insideRun_.back() != line.p1()) {
      paintInside();
      insideRun_.push_back(line.p1());
    }
    insideRun_.push_back(line.p2());
  }
  paintInside();
}

QStaticText& DrawingPainter::preparedText(const Drawing& drawing, const DrawingStep& step) {
  if (preparedTexts_.size() <= step.text) preparedTexts_.resize(step.text + 1);
  PreparedText& prepared = preparedTexts_[step.text];
  if (prepared.source != drawing.texts[step.text]) {
    prepared.source = drawing.texts[step.text];
    prepared.text.setTextFormat(Qt::PlainText);
    prepared.text.setText(QString::fromStdString(prepared.source));
  }
  return prepared.text;
}

void DrawingPainter::paintText(QPainter& painter, const DeviceScale& scale, const Drawing& drawing,
                               const DrawingStep& step) {
  QPoint pixel;
  if (!scale.map(drawing.points[step.firstPoint], pixel)) return;
  QStaticText& text = preparedText(drawing, step);
  QPointF place = pixel;
  if (area_.surface != Surface::screen) {
    text.prepare(QTransform(), painter.font());
    const QSizeF size = text.size() * area_.ratio;
    const double hangs = drawing.textHeightShare * area_.size.height();
    const QRectF textAndOwner = QRectF(place, size).adjusted(0, -hangs, 0, 0);
    if (!QRectF(QPointF(), area_.size).intersects(textAndOwner)) return;
    place = keptInside(place, size);
  }
  painter.setPen(toQt(step.colour));
  if (area_.ratio == 1) {
    painter.drawStaticText(place, text);
    return;
  }
  const QTransform devicePixels = painter.worldTransform();
  painter.setWorldTransform(QTransform::fromScale(area_.ratio, area_.ratio) * devicePixels);
  painter.drawStaticText(place / area_.ratio, text);
  painter.setWorldTransform(devicePixels);
}

/// A picture stands alone: nobody can resize it to see the rest of a text.
QPointF DrawingPainter::keptInside(const QPointF& place, const QSizeF& size) const {
  const double right = std::max(0.0, area_.size.width() - size.width());
  const double bottom = std::max(0.0, area_.size.height() - size.height());
  return {std::clamp(place.x(), 0.0, right), std::clamp(place.y(), 0.0, bottom)};
}

void DrawingPainter::paintLines(QPainter& painter, const PictureScale& scale,
                                const std::vector<VerticalLine>& lines) {
  const DeviceScale device(scale, area_.size.width(), area_.size.height());
  for (const VerticalLine& line : lines) {
    const std::optional<int> column = firstColumn(scale, line);
    if (!column) continue;
    const int middle = *column + penWidth_ / 2;
    QPointF place(middle, 0);
    if (area_.surface == Surface::vector) device.map({line.x, scale.top}, place);
    paintLine(painter, line, place.x());
  }
}

void DrawingPainter::paintLine(QPainter& painter, const VerticalLine& line, double x) {
  constexpr int dash = 7;
  constexpr int gap = 5;
  const int height = area_.size.height();
  if (area_.surface == Surface::vector) {
    QPen pen = exactPen(line.colour, lineWidth());
    if (line.dashed) pen.setDashPattern({dash, gap});
    painter.setPen(pen);
    painter.drawLine(QLineF(x, 0, x, height));
    return;
  }
  const int column = static_cast<int>(x);
  painter.setPen(linePen(line.colour, penWidth_));
  if (!line.dashed) {
    painter.drawLine(column, 0, column, height);
    return;
  }
  segments_.clear();
  for (int top = 0; top < height; top += (dash + gap) * penWidth_) {
    segments_.emplace_back(column, top, column, top + dash * penWidth_ - 1);
  }
  painter.drawLines(segments_.data(), static_cast<int>(segments_.size()));
}

double DrawingPainter::lineWidth() const {
  return area_.surface == Surface::vector ? area_.ratio : penWidth_;
}

}  // namespace pulsemod
