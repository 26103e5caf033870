#include "ui/Menus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <utility>

#include "link/Fault.h"

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

void connectItem(QAction* item, std::function<void()> act) {
  QObject::connect(item, &QAction::triggered, item, [act = std::move(act)] { reportFaults(act); });
}

}  // namespace pulsemod
