#include "ui/GraphWidget.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/Look.h"

namespace pulsemod {

namespace {

/// An event after which the release of a button goes elsewhere.
bool losesMouse(QEvent::Type type) {
  return type == QEvent::WindowDeactivate || type == QEvent::WindowBlocked || type == QEvent::Hide;
}

/// Tools for the disabled pass a widget of no kind by.
QAccessibleInterface* accessibleGraph(const QString& /*className*/, QObject* object) {
  auto* graph = dynamic_cast<GraphWidget*>(object);
  return graph == nullptr ? nullptr : new QAccessibleWidget(graph, QAccessible::Chart);
}

}  // namespace

GraphWidget::GraphWidget(QWidget* parent)
    : QWidget(parent), recorder_([this] { return textHeightShare(); }, [this] { paintInTime(); }) {
  QAccessible::installFactory(accessibleGraph);
  setAttribute(Qt::WA_OpaquePaintEvent);
  paintTimer_.setSingleShot(true);
  paintTimer_.setTimerType(Qt::PreciseTimer);
  paintTimer_.callOnTimeout(this, [this] { paintStale(); });
}

void GraphWidget::paintInTime() {
  prepareSurface();
  if (!sameBackground(recorder_.shown(), backgroundDrawing_)) backgroundIsStale_ = true;
  const QRect before = foreground_;
  foreground_ = foregroundExtent();
  const bool allIsStale = backgroundIsStale_ || foregroundSize_ != deviceSize();
  foregroundSize_ = deviceSize();
  stale_ |= allIsStale ? rect() : before | foreground_;

  // Read once: it runs on, and a timer takes no negative time.
  const qint64 elapsed = sincePaint_.isValid() ? sincePaint_.elapsed() : paintInterval_;
  if (elapsed >= paintInterval_) {
    paintStale();
  } else if (!paintTimer_.isActive()) {
    paintTimer_.start(static_cast<int>(paintInterval_ - elapsed));
  }
}

void GraphWidget::paintStale() {
  paintTimer_.stop();
  update(std::exchange(stale_, {}));
}

void GraphWidget::placeLines(std::vector<VerticalLine> lines) {
  if (lines == lines_) return;
  prepareSurface();
  QRect changed;
  const auto addOthers = [&](const std::vector<VerticalLine>& some,
                             const std::vector<VerticalLine>& kept) {
    for (const VerticalLine& line : some) {
      if (std::find(kept.begin(), kept.end(), line) == kept.end()) changed |= lineExtent(line);
    }
  };
  addOthers(lines_, lines);
  addOthers(lines, lines_);
  lines_ = std::move(lines);
  // What is left of a wide line that is cut may stand a pixel beside the rest.
  if (devicePixelRatioF() > 1 && changed.intersects(foreground_)) changed |= foreground_;
  update(changed);
}

void GraphWidget::setSizingPointer(bool sizing) {
  // At each move of the mouse, and the window system would be told each time.
  if (sizing == testAttribute(Qt::WA_SetCursor)) return;
  if (sizing) {
    setCursor(Qt::SizeHorCursor);
  } else {
    unsetCursor();
  }
}

void GraphWidget::setMouseHandlers(GraphMouseHandlers handlers) {
  mouse_ = std::move(handlers);
  setMouseTracking(true);
}

void GraphWidget::setKeyHandlers(GraphKeyHandlers handlers) {
  keys_ = std::move(handlers);
  // A click leaves the focus where it is.
  setFocusPolicy(Qt::TabFocus);
}

PicturePoint GraphWidget::userPoint(const QPointF& pixel) const {
  const PictureScale& scale = recorder_.shown().scale;
  return {scale.left + pixel.x() / std::max(1, width()) * scale.width,
          scale.top + pixel.y() / std::max(1, height()) * scale.height};
}

QPoint GraphWidget::pixelAt(const PicturePoint& point) const {
  QPoint pixel;
  DeviceScale(recorder_.shown().scale, width(), height()).map(point, pixel);
  return pixel;
}

PictureSize GraphWidget::userSize(const QSize& pixels) const {
  const PictureScale& scale = recorder_.shown().scale;
  return {std::abs(scale.width) * pixels.width() / std::max(1, width()),
          std::abs(scale.height) * pixels.height() / std::max(1, height())};
}

bool GraphWidget::event(QEvent* event) {
  const bool isHeld = pressed_ || heldKey_ != 0;
  if (isHeld && losesMouse(event->type())) endPressLater();
  return QWidget::event(event);
}

bool GraphWidget::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show && watched->isWidgetType() &&
      static_cast<QWidget*>(watched)->windowType() == Qt::Popup) {
    endPressLater();
  }
  return QWidget::eventFilter(watched, event);
}

void GraphWidget::endPressLater() { QTimer::singleShot(0, this, &GraphWidget::endPress); }

void GraphWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !mouse_.press) {
    event->ignore();
    return;
  }
  // The release of the press before went to another window.
  endPress();
  pressed_ = true;
  // A menu that opens gets the release.
  qApp->installEventFilter(this);
  mouse_.press();
}

void GraphWidget::mouseMoveEvent(QMouseEvent* event) {
  // Here as well.
  if (!event->buttons().testFlag(Qt::LeftButton)) endMousePress();
  if (mouse_.move && heldKey_ == 0) mouse_.move(userPoint(event->position()));
}

void GraphWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) endMousePress();
}

void GraphWidget::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  if (mouse_.leave) mouse_.leave();
}

void GraphWidget::keyPressEvent(QKeyEvent* event) {
  if (!keys_.move || !followKey(*event)) QWidget::keyPressEvent(event);
}

bool GraphWidget::followKey(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
      moveByKey(event);
      return true;
    case Qt::Key_Up:
    case Qt::Key_PageUp:
    case Qt::Key_Down:
    case Qt::Key_PageDown: {
      if (!keys_.choose) return false;
      endKeyPress();
      const bool back = event.key() == Qt::Key_Up || event.key() == Qt::Key_PageUp;
      keys_.choose(back ? -1 : 1);
      return true;
    }
    case Qt::Key_Escape:
      endKeyPress();
      if (keys_.leave) keys_.leave();
      return true;
    default:
      return false;
  }
}

void GraphWidget::moveByKey(const QKeyEvent& event) {
  constexpr int manyPixels = 10;
  const bool far = (event.modifiers() & (Qt::ShiftModifier | Qt::ControlModifier)) != 0;
  const double distance = userSize({far ? manyPixels : 1, 0}).width;
  // The mouse holds something.
  if (pressed_) return;
  heldKey_ = event.key();
  keys_.move(event.key() == Qt::Key_Left ? -distance : distance);
}

void GraphWidget::keyReleaseEvent(QKeyEvent* event) {
  // A key that is held down is let go of and pressed again and again.
  if (event->key() != heldKey_ || event->isAutoRepeat()) {
    QWidget::keyReleaseEvent(event);
    return;
  }
  endKeyPress();
}

void GraphWidget::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  update();
}

void GraphWidget::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  update();
  if (heldKey_ != 0) endPressLater();
  const Qt::FocusReason reason = event->reason();
  const bool comesBack = reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
                         reason == Qt::MenuBarFocusReason;
  if (!comesBack && keys_.leave) keys_.leave();
}

void GraphWidget::endPress() {
  endKeyPress();
  endMousePress();
}

void GraphWidget::endKeyPress() {
  if (std::exchange(heldKey_, 0) != 0) keys_.release();
}

void GraphWidget::endMousePress() {
  if (!std::exchange(pressed_, false)) return;
  qApp->removeEventFilter(this);
  mouse_.release();
}

void GraphWidget::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) {
    backgroundIsStale_ = true;
    foregroundSize_ = {};
    painting_.forgetTexts();
    update();
  }
  QWidget::changeEvent(event);
}

void GraphWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  // What it covered now stands elsewhere.
  if (!stale_.isEmpty()) stale_ = rect();
}

double GraphWidget::textHeightShare() const {
  return static_cast<double>(fontMetrics().height()) / std::max(1, height());
}

QSize GraphWidget::deviceSize() const {
  const double ratio = devicePixelRatioF();
  return {static_cast<int>(std::ceil(width() * ratio)),
          static_cast<int>(std::ceil(height() * ratio))};
}

void GraphWidget::prepareSurface() {
  painting_.setArea({deviceSize(), devicePixelRatioF(), Surface::screen});
}

QRect GraphWidget::foregroundExtent() {
  const Drawing& drawing = recorder_.shown();
  return widgetPixels(
      painting_.extent(drawing, drawing.backgroundSteps, drawing.steps.size(), font()));
}

QRect GraphWidget::lineExtent(const VerticalLine& line) const {
  return widgetPixels(painting_.lineExtent(recorder_.shown().scale, line));
}

QRect GraphWidget::widgetPixels(const QRect& devicePixels) const {
  if (devicePixels.isEmpty()) return {};
  const double ratio = devicePixelRatioF();
  const QRectF exact(QPointF(devicePixels.topLeft()) / ratio, QSizeF(devicePixels.size()) / ratio);
  // At a broken ratio the widget itself may begin between two device pixels.
  return exact.toAlignedRect().adjusted(-1, -1, 1, 1) & rect();
}

void GraphWidget::paintEvent(QPaintEvent* /*event*/) {
  sincePaint_.start();
  prepareSurface();
  prepareBackground();

  const double ratio = devicePixelRatioF();
  const Drawing& drawing = recorder_.shown();
  QPainter painter(this);
  // At a broken ratio the widget may begin and end between two device pixels.
  if (std::floor(ratio) != ratio) painter.fillRect(rect(), look::graphBackground);
  painter.scale(1 / ratio, 1 / ratio);
  painter.drawPixmap(0, 0, background_);
  painting_.paintSteps(painter, drawing, drawing.backgroundSteps, drawing.steps.size());
  painting_.paintLines(painter, drawing.scale, lines_);
  if (hasFocus()) {
    painter.resetTransform();
    painter.setPen(QPen(look::focusFrame, 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
  }
}

void GraphWidget::prepareBackground() {
  const Drawing& drawing = recorder_.shown();
  const QSize size = deviceSize();
  if (!backgroundIsStale_ && background_.size() == size) return;
  if (background_.size() != size) background_ = QPixmap(size);
  background_.fill(look::graphBackground);
  QPainter painter(&background_);
  painter.setFont(font());
  painting_.paintSteps(painter, drawing, 0, drawing.backgroundSteps);
  backgroundDrawing_ = drawing;
  backgroundIsStale_ = false;
}

}  // namespace pulsemod
