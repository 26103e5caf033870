#pragma once

#include <QElapsedTimer>
#include <QPixmap>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <vector>

#include "platform/Picture.h"
#include "ui/Drawing.h"
#include "ui/DrawingPainter.h"

namespace pulsemod {

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

/// What the keys do while a graph has the focus. A handler may open a box.
struct GraphKeyHandlers {
  /// Down or Page Down (1), Up or Page Up (-1). May be none.
  std::function<void(int)> choose;
  /// Left or Right goes down, or repeats: one pixel in user units, ten with Shift or Ctrl.
  std::function<void(double)> move;
  /// That key goes up, or the graph loses the keys. Once for each that went down.
  std::function<void()> release;
  /// Escape, or another control gets the focus. May be none.
  std::function<void()> leave;
};

/// A graph: shows the last finished drawing of `picture()` and, above it, vertical lines. An expose
/// paints both again without asking anybody. Drawings that follow each other faster than a screen
/// shows pictures are not all painted; the last one always is.
class GraphWidget : public QWidget {
 public:
  explicit GraphWidget(QWidget* parent = nullptr);

  Picture& picture() { return recorder_; }
  /// What is shown.
  const Drawing& shownDrawing() const { return recorder_.shown(); }
  const std::vector<VerticalLine>& shownLines() const { return lines_; }
  /// They stay until the next call, whatever is drawn meanwhile.
  void placeLines(std::vector<VerticalLine> lines);
  /// From one paint of new drawings to the next, in milliseconds at least. 16 unless set: no screen
  /// shows more than 60 pictures a second.
  void setPaintInterval(int milliseconds) { paintInterval_ = milliseconds; }
  void setMouseHandlers(GraphMouseHandlers handlers);
  /// The graph then takes the focus of the Tab key, and shows it.
  void setKeyHandlers(GraphKeyHandlers handlers);
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
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  /// The end of whatever is held down.
  void endPress();
  void endMousePress();
  void endKeyPress();
  /// False for a key that is none of a graph's.
  bool followKey(const QKeyEvent& event);
  void moveByKey(const QKeyEvent& event);
  /// When the present change of the windows is complete: the release may let events run while it
  /// tells the meter, and a window that is half hidden or half blocked cannot stand that.
  void endPressLater();
  /// A drawing is finished: paints what differs, at the latest when the next picture is due.
  void paintInTime();
  void paintStale();
  double textHeightShare() const;
  QSize deviceSize() const;
  /// Tells the painter of the size and the pixels, which can change at any time.
  void prepareSurface();
  void prepareBackground();
  /// All that the shown drawing has before its background, in whole pixels of this widget.
  QRect foregroundExtent();
  QRect lineExtent(const VerticalLine& line) const;
  /// The device pixels and all that their edges touch.
  QRect widgetPixels(const QRect& devicePixels) const;

  DrawingRecorder recorder_;
  std::vector<VerticalLine> lines_;
  GraphMouseHandlers mouse_;
  bool pressed_ = false;
  GraphKeyHandlers keys_;
  /// The key that moves something while it is down; 0 for none.
  int heldKey_ = 0;

  int paintInterval_ = 16;
  QElapsedTimer sincePaint_;
  QTimer paintTimer_;
  /// What has to be painted when the next picture is due.
  QRect stale_;
  /// Where the drawing that was shown last stands before its background, and on what size.
  QRect foreground_;
  QSize foregroundSize_;

  QPixmap background_;
  /// What `background_` shows.
  Drawing backgroundDrawing_;
  bool backgroundIsStale_ = true;

  DrawingPainter painting_;
};

}  // namespace pulsemod
