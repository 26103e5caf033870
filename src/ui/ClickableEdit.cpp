#include "ui/ClickableEdit.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include "ui/ReadableWhileDisabled.h"

namespace pulsemod {

ClickableEdit::ClickableEdit(QWidget* parent) : QLineEdit(parent) {
  // In this order, since the first call changes the pointer as well.
  setReadOnly(true);
  setCursor(Qt::PointingHandCursor);
  new ReadableWhileDisabled(this, QPalette::Text);
}

// The toolkit's line edit sees none of the mouse: a click here selects nothing.

void ClickableEdit::mousePressEvent(QMouseEvent* event) { click_.press(*event); }

void ClickableEdit::mouseMoveEvent(QMouseEvent* /*event*/) {}

void ClickableEdit::mouseReleaseEvent(QMouseEvent* event) {
  if (click_.release(*event, *this)) onClick_();
}

/// The first click of the two has asked already.
void ClickableEdit::mouseDoubleClickEvent(QMouseEvent* /*event*/) {}

void ClickableEdit::keyPressEvent(QKeyEvent* event) {
  if (!isClickKey(*event)) {
    QLineEdit::keyPressEvent(event);
    return;
  }
  // A key that is held down asks once.
  if (!event->isAutoRepeat()) onClick_();
}

}  // namespace pulsemod
