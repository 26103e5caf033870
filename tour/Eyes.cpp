#include "Eyes.h"

#include <QApplication>
#include <QMetaProperty>
#include <QPainter>
#include <QPixmap>
#include <QStringList>
#include <algorithm>

namespace robot {

namespace {

bool isCalled(const QObject* object, const QString& name) {
  return object->objectName() == name || object->inherits(name.toLatin1().constData());
}

/// The front one first: the menu opened last, other menus, the modal window, the active window.
QWidgetList windowsFrontFirst() {
  QWidgetList windows = QApplication::topLevelWidgets();
  const auto rank = [](const QWidget* window) {
    if (window == QApplication::activePopupWidget()) return 0;
    if (!window->isVisible()) return 5;
    if (window->windowType() == Qt::Popup) return 1;
    if (window == QApplication::activeModalWidget()) return 2;
    return window == QApplication::activeWindow() ? 3 : 4;
  };
  std::stable_sort(windows.begin(), windows.end(),
                   [&rank](const QWidget* a, const QWidget* b) { return rank(a) < rank(b); });
  return windows;
}

bool isUsable(const QWidget* widget) { return widget->isVisible(); }
bool isUsable(const QAction* action) { return action->isVisible(); }

template <typename Object>
Object* findIn(QWidget* window, const QString& name) {
  Object* hidden = nullptr;
  for (Object* object : window->findChildren<Object*>()) {
    if (!isCalled(object, name)) continue;
    if (isUsable(object)) return object;
    if (hidden == nullptr) hidden = object;
  }
  return hidden;
}

template <typename Object>
Object* findAnywhere(const QString& name) {
  const QStringList path = name.split('/');
  Object* hidden = nullptr;
  for (QWidget* window : windowsFrontFirst()) {
    if (path.size() > 1 && !isCalled(window, path.first())) continue;
    Object* object = nullptr;
    if constexpr (std::is_same_v<Object, QWidget>) {
      if (path.size() == 1 && isCalled(window, name)) object = window;
    }
    if (object == nullptr) object = findIn<Object>(window, path.last());
    if (object == nullptr) continue;
    if (isUsable(object)) return object;
    if (hidden == nullptr) hidden = object;
  }
  return hidden;
}

QString rectangleText(const QRect& rectangle) {
  return QStringLiteral("%1 %2 %3 %4")
      .arg(rectangle.x())
      .arg(rectangle.y())
      .arg(rectangle.width())
      .arg(rectangle.height());
}

QString propertyText(const QObject* object, const QByteArray& name) {
  const QVariant value = object->property(name.constData());
  if (value.typeId() == QMetaType::QRect) return rectangleText(value.toRect());
  const int index = object->metaObject()->indexOfProperty(name.constData());
  if (index >= 0) {
    const QMetaProperty property = object->metaObject()->property(index);
    if (property.isEnumType() && !property.isFlagType()) {
      return QLatin1String(property.enumerator().valueToKey(value.toInt()));
    }
  }
  return value.toString();
}

}  // namespace

QWidget* findWidget(const QString& name) { return findAnywhere<QWidget>(name); }

QAction* findAction(const QString& name) { return findAnywhere<QAction>(name); }

std::optional<QString> report(const QString& name, const QString& property) {
  const QWidget* const widget = findWidget(name);
  const QObject* const object =
      widget != nullptr ? static_cast<const QObject*>(widget) : findAction(name);
  if (property == "exists") return object != nullptr ? "true" : "false";
  if (object == nullptr) {
    return property == "visible" ? std::optional<QString>("false") : std::nullopt;
  }
  if (widget != nullptr && property == "place") {
    return rectangleText(QRect(widget->mapTo(widget->window(), QPoint()), widget->size()));
  }
  return propertyText(object, property.toLatin1());
}

QString whyNotClickable(QWidget* widget, QPoint at) {
  const QString name = widget->objectName();
  if (!widget->isVisible()) return name + " is not visible";
  if (!widget->isEnabled()) return name + " is not enabled";
  QWidget* const window = widget->window();
  const QWidget* const modal = QApplication::activeModalWidget();
  if (modal != nullptr && window != modal && !modal->isAncestorOf(window)) {
    return name + " is behind the modal window " + modal->objectName();
  }
  if (window->windowHandle() == nullptr) return name + " is in no window of the system";
  if (widget->visibleRegion().isEmpty()) return name + " is clipped or covered";
  QWidget* const hit = window->childAt(widget->mapTo(window, at));
  if (widget != window && hit != widget && !widget->isAncestorOf(hit)) {
    return name + " is covered by " + (hit != nullptr ? hit->objectName() : QString("nothing"));
  }
  return {};
}

QString visibleWindows() {
  QStringList lines;
  for (const QWidget* window : windowsFrontFirst()) {
    if (window->isVisible()) lines << window->objectName() + "|" + window->windowTitle();
  }
  return lines.join('\n');
}

bool grabWidget(QWidget* widget, const QString& file) { return widget->grab().save(file); }

bool grabAllWindows(const QString& file) {
  QWidgetList windows = windowsFrontFirst();
  windows.removeIf([](const QWidget* window) { return !window->isVisible(); });
  std::reverse(windows.begin(), windows.end());
  QRect all;
  for (const QWidget* window : windows) all |= window->geometry();
  if (all.isEmpty()) return false;
  const qreal ratio = qApp->devicePixelRatio();
  QPixmap picture((QSizeF(all.size()) * ratio).toSize());
  picture.setDevicePixelRatio(ratio);
  picture.fill(QColor(0x30, 0x40, 0x50));
  QPainter painter(&picture);
  for (QWidget* window : windows) {
    painter.drawPixmap(window->geometry().topLeft() - all.topLeft(), window->grab());
  }
  painter.end();
  return picture.save(file);
}

}  // namespace robot
