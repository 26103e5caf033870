#include "ui/Click.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

namespace pulsemod {

void Click::press(const QMouseEvent& event) {
  if (event.button() == Qt::LeftButton) pressed_ = true;
}

bool Click::release(const QMouseEvent& event, const QWidget& widget) {
  if (event.button() != Qt::LeftButton || !pressed_) return false;
  pressed_ = false;
  return widget.rect().contains(event.position().toPoint());
}

bool isClickKey(const QKeyEvent& event) {
  const bool plain = (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  return plain && (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter ||
                   event.key() == Qt::Key_Space);
}

}  // namespace pulsemod
