#pragma once

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QString>
#include <QWidget>

namespace robot {

/// Input as the window system delivers it: it passes through the modal and popup rules, the
/// shortcut map and the hit test of the toolkit.

void mouseStep(QWidget* widget, QPoint at, QEvent::Type type);
void clickAt(QWidget* widget, QPoint at);

/// Where a click on the control takes effect: a check box or radio button takes none on the empty
/// part of its row.
QPoint clickPoint(const QWidget* widget);

/// The key combination as `QKeySequence` reads it; false when it cannot.
bool pressKeys(QWidget* window, const QString& keys);
void typeText(QWidget* widget, const QString& text);

/// What must be clicked next to reach a menu item that is not in the open menu: the menu bar or an
/// open menu, and where. Nothing (a null widget) when no way leads there now; `why` then says so.
struct MenuStep {
  QWidget* widget = nullptr;
  QPoint at;
  bool isItemItself = false;
  QString why;
};
MenuStep nextMenuStep(const QAction* action);

}  // namespace robot
