#include "ui/RateLabel.h"

#include <QPainter>

namespace pulsemod {

RateLabel::RateLabel(QWidget* parent) : QLabel(parent) { setAttribute(Qt::WA_OpaquePaintEvent); }

void RateLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(QPalette::Window));
  painter.setPen(palette().color(QPalette::WindowText));
  const QRect area = contentsRect();
  const QFontMetrics metrics = fontMetrics();
  const int top = area.top() + (area.height() - metrics.height()) / 2;
  painter.drawText(QPoint(area.left(), top + metrics.ascent()), text());
}

}  // namespace pulsemod
