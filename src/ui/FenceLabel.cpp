#include "ui/FenceLabel.h"

#include <QEvent>
#include <QFontMetrics>
#include <QPainter>

#include "settings/PropertyEdits.h"

namespace pulsemod {

namespace {

constexpr int padding = 8;
constexpr int cornerRadius = 3;
constexpr float lockedGround = 0.25F;

}  // namespace

FenceLabel::FenceLabel(int gate) : gate_(gate) {
  setText(QStringLiteral("FENCE"));
  reserveWidth();
  setFence(false);
}

/// Room for the bold word, so that a click moves nothing.
void FenceLabel::reserveWidth() {
  QFont bold = font();
  bold.setBold(true);
  const QFontMetrics metrics(bold);
  setMinimumSize(metrics.horizontalAdvance(text()) + 2 * padding, metrics.height() + padding);
}

void FenceLabel::setFence(bool on) {
  isOn_ = on;
  QFont weighted = font();
  weighted.setBold(on);
  setFont(weighted);
  setToolTip(QString::fromStdString(fenceToolTip(on)));
  setMeaning(QStringLiteral("Fence of gate %1 %2")
                 .arg(gate_)
                 .arg(on ? QStringLiteral("on") : QStringLiteral("off")));
  update();
}

void FenceLabel::changeEvent(QEvent* event) {
  ParameterLabel::changeEvent(event);
  if (event->type() == QEvent::FontChange) reserveWidth();
}

/// A locked word is as readable as any other; its ground is fainter.
void FenceLabel::paintEvent(QPaintEvent* /*event*/) {
  const auto active = [this](QPalette::ColorRole role) {
    return palette().color(QPalette::Active, role);
  };
  const QColor word =
      active(isOn_ && isEnabled() ? QPalette::HighlightedText : QPalette::WindowText);
  {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = isOn_ ? active(QPalette::Highlight) : QColor(Qt::transparent);
    if (isOn_ && !isEnabled()) ground.setAlphaF(lockedGround);
    painter.setBrush(ground);
    painter.setPen(active(QPalette::Mid));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                            cornerRadius);
    painter.setPen(word);
    painter.drawText(rect(), Qt::AlignCenter, text());
  }
  paintFocus(word);
}

}  // namespace pulsemod
