#pragma once

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <QWidget>
#include <QtTest>
#include <functional>

namespace pulsemod::test {

/// The window of that object name, shown or not; null when there is none.
inline QWidget* windowNamed(const char* name) {
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (QWidget* window : windows) {
    if (window->objectName() == QLatin1String(name)) return window;
  }
  return nullptr;
}

/// Runs `act` on a modal window as soon as it is on the screen. The window must be closed by `act`.
template <typename Window>
void whenModalIsShown(const char* name, std::function<void(Window&)> act) {
  QTimer::singleShot(0, qApp, [name, act] {
    auto* window = dynamic_cast<Window*>(QApplication::activeModalWidget());
    if (window == nullptr || window->objectName() != QLatin1String(name) ||
        !window->isActiveWindow()) {
      whenModalIsShown<Window>(name, act);
      return;
    }
    act(*window);
  });
}

}  // namespace pulsemod::test
