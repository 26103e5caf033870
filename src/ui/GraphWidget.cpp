#include "ui/GraphWidget.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/Look.h"

namespace pulsemod {

namespace {

/// The rasteriser's own limit is 32767 device pixels; lines stay well below it.
constexpr double farthestPixel = 16000;

/// No screen shows more than 60 pictures a second.
constexpr int paintIntervalMs = 16;

/// An event after which the release of a button goes elsewhere.
bool losesMouse(QEvent::Type type) {
  return type == QEvent::WindowDeactivate || type == QEvent::WindowBlocked || type == QEvent::Hide;
}

QColor toQt(Colour colour) { return QColor(colour.red, colour.green, colour.blue); }

/// Cosmetic: in device pixels, whatever the transformation.
QPen linePen(const QColor& colour, int width) {
  QPen pen(colour);
  pen.setWidth(width);
  pen.setCosmetic(true);
  return pen;
}

int toPixel(double value) {
  return static_cast<int>(std::lround(std::clamp(value, -farthestPixel, farthestPixel)));
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

GraphWidget::GraphWidget(QWidget* parent)
    : QWidget(parent), recorder_([this] { return textHeightShare(); }, [this] { paintInTime(); }) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  paintTimer_.setSingleShot(true);
  paintTimer_.setTimerType(Qt::PreciseTimer);
  paintTimer_.callOnTimeout(this, [this] { update(); });
}

void GraphWidget::paintInTime() {
  if (!sincePaint_.isValid() || sincePaint_.hasExpired(paintIntervalMs)) {
    update();
  } else if (!paintTimer_.isActive()) {
    paintTimer_.start(static_cast<int>(paintIntervalMs - sincePaint_.elapsed()));
  }
}

void GraphWidget::placeLines(std::vector<VerticalLine> lines) {
  if (lines == lines_) return;
  lines_ = std::move(lines);
  update();
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
  if (pressed_ && losesMouse(event->type())) endPressLater();
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
  if (!event->buttons().testFlag(Qt::LeftButton)) endPress();
  if (mouse_.move) mouse_.move(userPoint(event->position()));
}

void GraphWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) endPress();
}

void GraphWidget::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  if (mouse_.leave) mouse_.leave();
}

void GraphWidget::endPress() {
  if (!std::exchange(pressed_, false)) return;
  qApp->removeEventFilter(this);
  mouse_.release();
}

void GraphWidget::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) {
    backgroundIsStale_ = true;
    preparedTexts_.clear();
    update();
  }
  QWidget::changeEvent(event);
}

double GraphWidget::textHeightShare() const {
  return static_cast<double>(fontMetrics().height()) / std::max(1, height());
}

void GraphWidget::paintEvent(QPaintEvent* /*event*/) {
  sincePaint_.start();
  paintTimer_.stop();
  ratio_ = devicePixelRatioF();
  penWidth_ = std::max(1, static_cast<int>(std::lround(ratio_)));
  const QSize deviceSize(static_cast<int>(std::ceil(width() * ratio_)),
                         static_cast<int>(std::ceil(height() * ratio_)));
  prepareBackground(deviceSize);

  const Drawing& drawing = recorder_.shown();
  const DeviceScale scale(drawing.scale, deviceSize.width(), deviceSize.height());
  QPainter painter(this);
  // At a broken ratio the widget may begin and end between two device pixels.
  if (penWidth_ != ratio_) painter.fillRect(rect(), look::graphBackground);
  painter.scale(1 / ratio_, 1 / ratio_);
  painter.drawPixmap(0, 0, background_);
  paintSteps(painter, scale, drawing.backgroundSteps, drawing.steps.size());
  paintLines(painter, scale, deviceSize);
}

void GraphWidget::prepareBackground(const QSize& deviceSize) {
  const Drawing& drawing = recorder_.shown();
  if (!backgroundIsStale_ && background_.size() == deviceSize &&
      sameBackground(drawing, backgroundDrawing_)) {
    return;
  }
  if (background_.size() != deviceSize) background_ = QPixmap(deviceSize);
  background_.fill(look::graphBackground);
  QPainter painter(&background_);
  painter.setFont(font());
  paintSteps(painter, DeviceScale(drawing.scale, deviceSize.width(), deviceSize.height()), 0,
             drawing.backgroundSteps);
  backgroundDrawing_ = drawing;
  backgroundIsStale_ = false;
}

void GraphWidget::paintSteps(QPainter& painter, const DeviceScale& scale, std::size_t first,
                             std::size_t last) {
  const std::vector<DrawingStep>& steps = recorder_.shown().steps;
  for (std::size_t index = first; index < last; ++index) {
    if (steps[index].kind == DrawingStep::Kind::text) {
      paintText(painter, scale, steps[index]);
    } else {
      paintPolyline(painter, scale, steps[index]);
    }
  }
}

void GraphWidget::paintPolyline(QPainter& painter, const DeviceScale& scale,
                                const DrawingStep& step) {
  const PicturePoint* point = recorder_.shown().points.data() + step.firstPoint;
  run_.clear();
  for (std::size_t index = 0; index < step.pointCount; ++index) {
    QPoint pixel;
    if (scale.map(point[index], pixel)) {
      run_.push_back(pixel);
    } else {
      // No line leads to or from a value that is no number.
      paintRun(painter, step.colour);
      run_.clear();
    }
  }
  paintRun(painter, step.colour);
}

void GraphWidget::paintRun(QPainter& painter, Colour colour) {
  if (run_.empty()) return;
  if (run_.size() == 1) {
    painter.fillRect(QRect(run_.front(), QSize(penWidth_, penWidth_)), toQt(colour));
    return;
  }
  painter.setPen(linePen(toQt(colour), penWidth_));
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

void GraphWidget::paintText(QPainter& painter, const DeviceScale& scale, const DrawingStep& step) {
  const Drawing& drawing = recorder_.shown();
  QPoint pixel;
  if (!scale.map(drawing.points[step.firstPoint], pixel)) return;
  if (preparedTexts_.size() <= step.text) preparedTexts_.resize(step.text + 1);
  PreparedText& prepared = preparedTexts_[step.text];
  if (prepared.source != drawing.texts[step.text]) {
    prepared.source = drawing.texts[step.text];
    prepared.text.setTextFormat(Qt::PlainText);
    prepared.text.setText(QString::fromStdString(prepared.source));
  }
  painter.setPen(toQt(step.colour));
  if (ratio_ == 1) {
    painter.drawStaticText(pixel, prepared.text);
    return;
  }
  const QTransform devicePixels = painter.worldTransform();
  painter.setWorldTransform(devicePixels * QTransform::fromScale(ratio_, ratio_));
  painter.drawStaticText(QPointF(pixel) / ratio_, prepared.text);
  painter.setWorldTransform(devicePixels);
}

void GraphWidget::paintLines(QPainter& painter, const DeviceScale& scale, const QSize& surface) {
  constexpr int dash = 7;
  constexpr int gap = 5;
  for (const VerticalLine& line : lines_) {
    QPoint pixel;
    if (!scale.map({line.x, recorder_.shown().scale.top}, pixel)) continue;
    // The right edge itself lies beside the last pixel.
    if (pixel.x() == surface.width()) pixel.rx() -= penWidth_;
    const int x = pixel.x() + penWidth_ / 2;
    painter.setPen(linePen(line.colour, penWidth_));
    if (!line.dashed) {
      painter.drawLine(x, 0, x, surface.height());
      continue;
    }
    segments_.clear();
    for (int top = 0; top < surface.height(); top += (dash + gap) * penWidth_) {
      segments_.emplace_back(x, top, x, top + dash * penWidth_ - 1);
    }
    painter.drawLines(segments_.data(), static_cast<int>(segments_.size()));
  }
}

}  // namespace pulsemod
