#include "ui/ReadableWhileDisabled.h"

#include <QEvent>
#include <QWidget>

namespace pulsemod {

ReadableWhileDisabled::ReadableWhileDisabled(QWidget* widget, QPalette::ColorRole role)
    : QObject(widget), widget_(widget), role_(role) {
  apply();
  widget->installEventFilter(this);
}

bool ReadableWhileDisabled::eventFilter(QObject* /*watched*/, QEvent* event) {
  if (event->type() == QEvent::PaletteChange) apply();
  return false;
}

void ReadableWhileDisabled::apply() {
  QPalette palette = widget_->palette();
  const QColor text = palette.color(QPalette::Active, role_);
  // A change calls this again.
  if (palette.color(QPalette::Disabled, role_) == text) return;
  palette.setColor(QPalette::Disabled, role_, text);
  widget_->setPalette(palette);
}

}  // namespace pulsemod
