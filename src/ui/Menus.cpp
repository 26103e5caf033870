#include "ui/Menus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace pulsemod {

QMenu* addMenu(QMenuBar* bar, const QString& caption) {
  QMenu* menu = bar->addMenu(caption);
  menu->setToolTipsVisible(true);
  return menu;
}

QAction* addItem(QMenu* menu, const char* name, const QString& caption, const QString& toolTip,
                 const QKeySequence& shortcut) {
  QAction* item = menu->addAction(caption);
  item->setObjectName(QLatin1String(name));
  item->setToolTip(toolTip);
  item->setShortcut(shortcut);
  // The menu bar of some platforms moves such items elsewhere by their captions.
  item->setMenuRole(QAction::NoRole);
  return item;
}

}  // namespace pulsemod
