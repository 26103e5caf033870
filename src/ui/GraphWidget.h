#pragma once

#include <QColor>
#include <QElapsedTimer>
#include <QLine>
#include <QPixmap>
#include <QPoint>
#include <QStaticText>
#include <QTimer>
#include <QWidget>
#include <functional>
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

 private:
  double xFactor_;
  double xOffset_;
  double yFactor_;
  double yOffset_;
};

/// What the mouse does over a graph; points are in its user units. A handler may open a box.
struct GraphMouseHandlers {
  /// The left button goes down.
  std::function<void()> press;
  /// The pointer moves, with or without the button; with it also outside the graph.
  std::function<void(PicturePoint)> move;
  /// The left button goes up, or the press ends otherwise: a modal window or a menu opens, the
  /// window is hidden or no longer the active one. Once for each press.
  std::function<void()> release;
  /// The pointer leaves the graph.
  std::function<void()> leave;
};

/// A line over the full height of a graph, at a place in its user units.
struct VerticalLine {
  double x = 0;
  QColor colour;
  bool dashed = false;
  friend bool operator==(const VerticalLine&, const VerticalLine&) = default;
};

/// A graph: shows the last finished drawing of `picture()` and, above it, vertical lines. An expose
/// paints both again without asking anybody. Drawings that follow each other faster than a screen
/// shows pictures are not all painted; the last one always is.
class GraphWidget : public QWidget {
 public:
  explicit GraphWidget(QWidget* parent = nullptr);

  Picture& picture() { return recorder_; }
  /// They stay until the next call, whatever is drawn meanwhile.
  void placeLines(std::vector<VerticalLine> lines);
  void setMouseHandlers(GraphMouseHandlers handlers);
  /// A left-right arrow, or the default pointer.
  void setSizingPointer(bool sizing);

  /// Between pixels of this widget and user units of the drawing that is shown.
  PicturePoint userPoint(const QPointF& pixel) const;
  QPoint pixelAt(const PicturePoint& point) const;
  PictureSize userSize(const QSize& pixels) const;

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void endPress();
  /// When the present change of the windows is complete: the release may let events run while it
  /// tells the meter, and a window that is half hidden or half blocked cannot stand that.
  void endPressLater();
  /// A drawing is finished: paints it, at the latest when the next picture is due.
  void paintInTime();
  double textHeightShare() const;
  void prepareBackground(const QSize& deviceSize);
  void paintSteps(QPainter& painter, const DeviceScale& scale, std::size_t first, std::size_t last);
  void paintPolyline(QPainter& painter, const DeviceScale& scale, const DrawingStep& step);
  void paintRun(QPainter& painter, Colour colour);
  void paintText(QPainter& painter, const DeviceScale& scale, const DrawingStep& step);
  void paintLines(QPainter& painter, const DeviceScale& scale, const QSize& surface);

  DrawingRecorder recorder_;
  std::vector<VerticalLine> lines_;
  GraphMouseHandlers mouse_;
  bool pressed_ = false;

  QElapsedTimer sincePaint_;
  QTimer paintTimer_;

  QPixmap background_;
  /// What `background_` shows.
  Drawing backgroundDrawing_;
  bool backgroundIsStale_ = true;

  /// Of the paint in progress.
  double ratio_ = 1;
  int penWidth_ = 1;

  /// Kept from paint to paint to spare allocations.
  std::vector<QPoint> run_;
  std::vector<QLine> segments_;
  struct PreparedText {
    std::string source;
    QStaticText text;
  };
  std::vector<PreparedText> preparedTexts_;
};

}  // namespace pulsemod
