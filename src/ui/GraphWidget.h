#pragma once

#include <QLine>
#include <QPixmap>
#include <QPoint>
#include <QStaticText>
#include <QWidget>
#include <string>
#include <vector>

#include "platform/Picture.h"
#include "profile/ProfileView.h"
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

/// A graph: shows the last finished drawing of `picture()` and, above it, gate lines. An expose
/// paints both again without asking anybody.
class GraphWidget : public QWidget {
 public:
  explicit GraphWidget(QWidget* parent = nullptr);

  Picture& picture() { return recorder_; }
  void placeGateLines(const GateLineArray& lines);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  double textHeightShare() const;
  void prepareBackground(const QSize& deviceSize);
  void paintSteps(QPainter& painter, const DeviceScale& scale, std::size_t first, std::size_t last);
  void paintPolyline(QPainter& painter, const DeviceScale& scale, const DrawingStep& step);
  void paintRun(QPainter& painter, Colour colour);
  void paintText(QPainter& painter, const DeviceScale& scale, const DrawingStep& step);
  void paintGateLines(QPainter& painter, const DeviceScale& scale, int height);

  DrawingRecorder recorder_;
  GateLineArray gateLines_{};

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
