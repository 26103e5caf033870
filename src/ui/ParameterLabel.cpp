#include "ui/ParameterLabel.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
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

}  // namespace

ParameterLabel::ParameterLabel(QWidget* parent) : QLabel(parent) {
  QAccessible::installFactory(accessibleLabel);
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::PointingHandCursor);
}

void ParameterLabel::mousePressEvent(QMouseEvent* event) { click_.press(*event); }

void ParameterLabel::mouseReleaseEvent(QMouseEvent* event) {
  if (click_.release(*event, *this)) click();
}

void ParameterLabel::keyPressEvent(QKeyEvent* event) {
  if (!isClickKey(*event)) {
    QLabel::keyPressEvent(event);
    return;
  }
  // A key that is held down asks once.
  if (!event->isAutoRepeat()) click();
}

void ParameterLabel::paintEvent(QPaintEvent* event) {
  QLabel::paintEvent(event);
  paintFocus(look::focusFrame);
}

void ParameterLabel::paintFocus(const QColor& colour) {
  if (!hasFocus()) return;
  QPainter painter(this);
  painter.setPen(colour);
  painter.drawRect(rect().adjusted(1, 1, -2, -2));
}

}  // namespace pulsemod
