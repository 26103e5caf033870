#pragma once

#include <QAction>
#include <QString>
#include <QWidget>
#include <optional>

namespace robot {

/// The control of that object name or class, in the front window first, then in the visible ones,
/// then in the hidden ones; within a window a visible one first. `window/control` looks in the
/// windows of that name alone. Nothing when there is none.
QWidget* findWidget(const QString& name);
QAction* findAction(const QString& name);

/// A property of a control or menu item as text; nothing when it does not exist.
std::optional<QString> report(const QString& name, const QString& property);

/// Why the user could not click there now; empty when he could.
QString whyNotClickable(QWidget* widget, QPoint at);

/// `name|title` of each visible window, the front one first.
QString visibleWindows();

/// False when the file could not be written.
bool grabWidget(QWidget* widget, const QString& file);
bool grabAllWindows(const QString& file);

}  // namespace robot
