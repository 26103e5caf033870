#pragma once

#include <QKeySequence>
#include <QString>
#include <functional>

class QAction;
class QMenu;
class QMenuBar;

namespace pulsemod {

/// A menu whose items show their tool tips.
QMenu* addMenu(QMenuBar* bar, const QString& caption);

/// An item with its object name; it stays in its menu on every platform.
QAction* addItem(QMenu* menu, const char* name, const QString& caption, const QString& toolTip,
                 const QKeySequence& shortcut = {});

/// Calls `act` when the item is chosen; a fault in it is reported.
void connectItem(QAction* item, std::function<void()> act);

}  // namespace pulsemod
