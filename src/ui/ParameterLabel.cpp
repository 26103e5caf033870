#include "ui/ParameterLabel.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

#include "ui/Look.h"

namespace pulsemod {

namespace {

class AccessibleParameterLabel : public QAccessibleWidget {
 public:
  explicit AccessibleParameterLabel(ParameterLabel& label)
      : QAccessibleWidget(&label, QAccessible::Button), label_(label) {}

  QString text(QAccessible::Text kind) const override {
    if (kind != QAccessible::Name) return QAccessibleWidget::text(kind);
    return label_.meaning() + QStringLiteral(", ") + label_.text();
  }
  QStringList actionNames() const override {
    return QStringList(pressAction()) + QAccessibleWidget::actionNames();
  }
  void doAction(const QString& name) override {
    if (name != pressAction()) {
      QAccessibleWidget::doAction(name);
      return;
    }
    // Later, since the caller waits for this call to return, and a click may open a box.
    QTimer::singleShot(0, &label_, &ParameterLabel::click);
  }

 private:
  ParameterLabel& label_;
};

QAccessibleInterface* accessibleLabel(const QString& /*className*/, QObject* object) {
  auto* label = dynamic_cast<ParameterLabel*>(object);
  return label == nullptr ? nullptr : new AccessibleParameterLabel(*label);
}

bool isChosenBy(const QKeyEvent& event) {
  const bool plain = (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  return plain && (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter ||
                   event.key() == Qt::Key_Space);
}

}  // namespace

ParameterLabel::ParameterLabel(QWidget* parent) : QLabel(parent) {
  QAccessible::installFactory(accessibleLabel);
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::PointingHandCursor);
}

void ParameterLabel::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) pressed_ = true;
}

void ParameterLabel::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !pressed_) return;
  // First, since a click may open a box and return much later.
  pressed_ = false;
  if (rect().contains(event->position().toPoint())) click();
}

void ParameterLabel::keyPressEvent(QKeyEvent* event) {
  if (!isChosenBy(*event)) {
    QLabel::keyPressEvent(event);
    return;
  }
  // A key that is held down asks once.
  if (!event->isAutoRepeat()) click();
}

void ParameterLabel::paintEvent(QPaintEvent* event) {
  QLabel::paintEvent(event);
  if (!hasFocus()) return;
  QPainter painter(this);
  painter.setPen(look::focusFrame);
  painter.drawRect(rect().adjusted(1, 1, -2, -2));
}

}  // namespace pulsemod
