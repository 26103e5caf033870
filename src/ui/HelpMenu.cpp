#include "ui/HelpMenu.h"

#include <QAction>
#include <QMainWindow>

#include "ui/AboutBox.h"
#include "ui/GuideWindow.h"
#include "ui/Menus.h"

namespace pulsemod {

namespace {

/// The child of the window that is of this kind.
template <typename Child>
Child& onlyChild(QMainWindow* window) {
  for (QObject* child : window->children()) {
    if (auto* const found = dynamic_cast<Child*>(child)) return *found;
  }
  return *new Child(window);
}

}  // namespace

void addHelpMenu(QMainWindow* window) {
  QMenu* const menu = addMenu(window->menuBar(), QStringLiteral("&Help"));
  connectItem(
      addItem(menu, "menuUserGuide", QStringLiteral("&User Guide"),
              QStringLiteral("How to use this program"), QKeySequence(QKeySequence::HelpContents)),
      [window] { onlyChild<GuideWindow>(window).open(); });
  connectItem(
      addItem(menu, "menuAbout", QStringLiteral("&About Pelmora PulseMod"),
              QStringLiteral("The version of the program, the meter and how it is reached")),
      [window] { onlyChild<AboutBox>(window).present(); });
}

}  // namespace pulsemod
