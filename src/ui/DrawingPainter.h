#pragma once

#include <QColor>
#include <QFont>
#include <QLine>
#include <QLineF>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <QStaticText>
#include <optional>
#include <string>
#include <vector>

#include "platform/Picture.h"
#include "ui/Drawing.h"

class QPainter;

namespace pulsemod {

/// From user units to device pixels of a surface of `width` by `height` device pixels.
struct DeviceScale {
  DeviceScale(const PictureScale& scale, int width, int height);
  /// Rounded, and kept within what the rasteriser can take; false for a value that is no number.
  bool map(const PicturePoint& point, QPoint& pixel) const;
  /// As it is, and kept within what arithmetic can take.
  bool map(const PicturePoint& point, QPointF& place) const;

 private:
  double xFactor_;
  double xOffset_;
  double yFactor_;
  double yOffset_;
};

/// A line over the full height of a graph, at a place in its user units.
struct VerticalLine {
  double x = 0;
  QColor colour;
  bool dashed = false;
  friend bool operator==(const VerticalLine&, const VerticalLine&) = default;
};

/// What a graph is painted on.
enum class Surface {
  screen,  ///< whole pixels: quick, each line as wide as every other, each colour exact
  image,   ///< pixels of a picture: curves are smooth, straight lines keep to the pixels
  vector   ///< no pixels: every line at its exact place
};

/// The size of a surface in device pixels, how many of them are one of the pixels that fonts and
/// lines are measured in, and its kind.
struct SurfaceArea {
  QSize size;
  double ratio = 1;
  Surface surface = Surface::screen;
};

/// Paints drawings on any surface. The painter's units are device pixels; its font is that of the
/// texts. Nothing is painted beside the area of an image or of vectors; a screen clips by itself.
class DrawingPainter {
 public:
  void setArea(const SurfaceArea& area);

  /// The steps `first` to `last` - 1.
  void paintSteps(QPainter& painter, const Drawing& drawing, std::size_t first, std::size_t last);
  /// Over a drawing of that scale.
  void paintLines(QPainter& painter, const PictureScale& scale,
                  const std::vector<VerticalLine>& lines);

  /// No pixel of a screen outside of these is touched; empty for nothing.
  QRect extent(const Drawing& drawing, std::size_t first, std::size_t last, const QFont& font);
  QRect lineExtent(const PictureScale& scale, const VerticalLine& line) const;

  /// The font has changed.
  void forgetTexts() { preparedTexts_.clear(); }

 private:
  QRect pathExtent(const DeviceScale& scale, const Drawing& drawing, const DrawingStep& step) const;
  QRect textExtent(const DeviceScale& scale, const Drawing& drawing, const DrawingStep& step,
                   const QFont& font);
  /// Of a vertical line, in device pixels; nothing for one beside the area.
  std::optional<int> firstColumn(const PictureScale& scale, const VerticalLine& line) const;
  bool isExact(const DrawingStep& step) const;
  void paintRounded(QPainter& painter, const DeviceScale& scale, const Drawing& drawing,
                    const DrawingStep& step);
  void paintExact(QPainter& painter, const DeviceScale& scale, const Drawing& drawing,
                  const DrawingStep& step);
  void paintRun(QPainter& painter, const QColor& colour);
  void paintExactRun(QPainter& painter, const QColor& colour);
  QStaticText& preparedText(const Drawing& drawing, const DrawingStep& step);
  void paintText(QPainter& painter, const DeviceScale& scale, const Drawing& drawing,
                 const DrawingStep& step);
  void paintLine(QPainter& painter, const VerticalLine& line, double x);
  double lineWidth() const;
  QPointF keptInside(const QPointF& place, const QSizeF& size) const;

  SurfaceArea area_;
  int penWidth_ = 1;

  /// Kept from paint to paint to spare allocations.
  std::vector<QPoint> run_;
  std::vector<QLine> segments_;
  std::vector<QPointF> exactRun_;
  std::vector<QPointF> insideRun_;
  struct PreparedText {
    std::string source;
    QStaticText text;
  };
  std::vector<PreparedText> preparedTexts_;
};

}  // namespace pulsemod
