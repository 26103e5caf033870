#include "Hand.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDir>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QTabBar>
#include <QTextEdit>
#include <QUrl>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>
#include <array>

#include "Hands.h"
#include "Playground.h"
#include "ui/GraphWidget.h"

namespace randomuse {

namespace {

/// The toolkit's own file dialog, which lists folders in a thread of its own, is behind it.
constexpr const char* leftOut = "fileBrowser";

constexpr std::array<const char*, 22> someKeys{
    "Tab",  "Shift+Tab", "Escape", "Return", "Space",    "Left",   "Right", "Up",
    "Down", "PgUp",      "PgDown", "Home",   "End",      "Delete", "F1",    "F5",
    "F6",   "F7",        "F8",     "F9",     "Shift+F5", "Ctrl+A"};

constexpr std::array<const char*, 22> someTexts{
    "1", "0.5", "-3",  "10",    "13", "2ms",  "500us",  "4.6 ms", "100ns",       "1.2e-3",   "20",
    "0", "-0",  "1,5", "1.5.2", "--", "1e39", "-1e-50", "nan",    "1 kilometre", "<b>x</b>", " 7 "};

std::string textOf(const QString& text) { return text.toStdString(); }

std::string windowName(const QWidget& widget) {
  const QWidget& window = *widget.window();
  const QString name = window.objectName();
  return name.isEmpty() ? window.metaObject()->className() : textOf(name);
}

bool isInternal(const QWidget& widget) {
  const QWidget* parent = widget.parentWidget();
  return qobject_cast<const QAbstractSpinBox*>(parent) != nullptr ||
         qobject_cast<const QComboBox*>(parent) != nullptr;
}

/// What a user can act on; the areas that only hold others have no focus.
bool isControl(const QWidget& widget) {
  if (isInternal(widget) || widget.objectName() == QLatin1String(leftOut)) return false;
  if (qobject_cast<const QMenuBar*>(&widget) != nullptr) return false;
  return widget.focusPolicy() != Qt::NoFocus ||
         qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
         qobject_cast<const QAbstractSlider*>(&widget) != nullptr ||
         qobject_cast<const QTabBar*>(&widget) != nullptr;
}

std::string actionName(const QAction& action) {
  return textOf(action.objectName().isEmpty() ? action.text() : action.objectName());
}

QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

/// The character behind the ampersand, as the user presses it with Alt.
QString mnemonic(const QString& text) {
  const QKeySequence sequence = QKeySequence::mnemonic(text);
  return sequence.toString(QKeySequence::PortableText);
}

}  // namespace

void Hand::prefer(const std::string& window, std::vector<std::string> controls) {
  preferred_[window] = std::move(controls);
}

std::string Hand::nameOf(const QWidget& widget) {
  QString name = widget.objectName();
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget);
      button && name.isEmpty()) {
    name = button->text();
  }
  if (name.isEmpty() && widget.parentWidget() != nullptr && !widget.isWindow()) {
    name = widget.parentWidget()->objectName() + "." + widget.metaObject()->className();
  }
  return windowName(widget) + "/" + textOf(name);
}

/// Those that no dialog blocks, in the order in which they were made.
std::vector<QWidget*> Hand::windowsInReach() {
  const QWidget* modal = QApplication::activeModalWidget();
  std::vector<QWidget*> windows;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (!window->isVisible() || window->windowHandle() == nullptr) continue;
    if (window->windowType() == Qt::Popup || window->windowType() == Qt::ToolTip) continue;
    if (modal == nullptr || modal == window || modal->isAncestorOf(window)) {
      windows.push_back(window);
    }
  }
  std::sort(windows.begin(), windows.end(), [](const QWidget* one, const QWidget* next) {
    return one->windowHandle()->winId() < next->windowHandle()->winId();
  });
  return windows;
}

void Hand::collectActions(const QList<QAction*>& actions, QWidget* bar,
                          std::vector<Target>& targets) {
  for (QAction* action : actions) {
    if (action->isSeparator() || !action->isVisible()) continue;
    if (action->menu() != nullptr) {
      collectActions(action->menu()->actions(), bar, targets);
      continue;
    }
    const std::string name = windowName(*bar) + "/" + actionName(*action);
    record_.saw(name, action->isEnabled());
    if (action->isEnabled()) targets.push_back({bar, action, name});
  }
}

std::vector<Hand::Target> Hand::targetsIn(QWidget* window) {
  std::vector<Target> targets;
  const QList<QWidget*> widgets = window->findChildren<QWidget*>();
  for (QWidget* widget : widgets) {
    if (widget->window() != window || !widget->isVisible()) continue;
    if (auto* const bar = qobject_cast<QMenuBar*>(widget)) {
      collectActions(bar->actions(), bar, targets);
    }
    if (!isControl(*widget) || widget->visibleRegion().isEmpty()) continue;
    const std::string name = nameOf(*widget);
    record_.saw(name, widget->isEnabled());
    // A click on a locked one must do nothing.
    if (widget->isEnabled() || chance_.percent(5)) targets.push_back({widget, nullptr, name});
  }
  return targets;
}

std::vector<Hand::Target> Hand::targetsIn(const std::vector<QWidget*>& windows) {
  std::vector<Target> targets;
  for (QWidget* window : windows) {
    if (window->isMinimized()) continue;
    for (Target& target : targetsIn(window)) targets.push_back(std::move(target));
  }
  return targets;
}

/// Of two, the one that was acted on less.
const Hand::Target& Hand::choose(const std::vector<Target>& targets) {
  const Target& one = chance_.among(targets);
  const Target& other = chance_.among(targets);
  return touches_[one.name] <= touches_[other.name] ? one : other;
}

void Hand::act() {
  if (QMenu* const menu = openMenu()) return actInMenu(menu);
  if (QApplication::activePopupWidget() != nullptr && chance_.percent(50)) {
    return keys(QApplication::activePopupWidget(), chance_.among(someKeys));
  }
  const std::vector<QWidget*> windows = windowsInReach();
  if (held_) return actWithMouseDown(windows);
  if (keyHeld_ && chance_.percent(50)) return letGo();
  if (windows.empty()) return;
  if (QApplication::activeModalWidget() != nullptr && chance_.percent(40)) {
    answer();
    return;
  }
  QWidget* const window = chance_.among(windows);
  if (window->isMinimized() || chance_.percent(8)) return actOnWindow(window);
  const std::vector<Target> targets = targetsIn(windows);
  if (targets.empty()) return actOnWindow(window);
  const Target& target = choose(targets);
  if (!shies(target.name)) actOn(target);
}

/// There is one mouse: until it lets go, the keys alone can do something else, and what they bring
/// up gets the release.
void Hand::actWithMouseDown(const std::vector<QWidget*>& windows) {
  if (QApplication::activeModalWidget() != nullptr) return letGo();
  if (windows.empty() || chance_.percent(70)) return moveHeld();
  std::vector<Target> byKey;
  for (const Target& target : targetsIn(windows)) {
    if (target.action != nullptr && !target.action->shortcut().isEmpty()) byKey.push_back(target);
  }
  if (byKey.empty() || chance_.percent(30)) {
    return keys(chance_.among(windows), chance_.among(someKeys));
  }
  const Target& target = choose(byKey);
  if (shies(target.name)) return;
  note(target);
  pressShortcut(target);
}

/// From what would end the program, most of the time.
bool Hand::shies(const std::string& name) {
  constexpr int ofSpared = 12;
  const bool isSpared = std::find(spared_.begin(), spared_.end(), name) != spared_.end();
  return isSpared && !chance_.oneIn(ofSpared);
}

void Hand::note(const Target& target) {
  record_.touched(target.name);
  ++touches_[target.name];
  record_.line("on " + target.name);
}

void Hand::actOn(const Target& target) {
  note(target);
  target.action != nullptr ? actOnAction(target) : actOnWidget(target.widget);
}

bool Hand::answerAsPreferred(QWidget* window) {
  const auto wanted = preferred_.find(textOf(window->objectName()));
  constexpr int mostly = 85;
  if (wanted == preferred_.end() || !chance_.percent(mostly)) return false;
  const std::string& name = chance_.among(wanted->second);
  auto* const button = window->findChild<QAbstractButton*>(QString::fromStdString(name));
  if (button == nullptr) return false;
  actOn({button, nullptr, nameOf(*button)});
  return true;
}

bool Hand::answer(bool asPreferred) {
  if (QWidget* const popup = QApplication::activePopupWidget()) {
    record_.line("Escape");
    robot::pressKeys(popup, QStringLiteral("Escape"));
    // A list that takes no keys.
    if (QApplication::activePopupWidget() == popup) popup->close();
    return true;
  }
  QWidget* const modal = QApplication::activeModalWidget();
  if (modal == nullptr) return false;
  if (asPreferred && answerAsPreferred(modal)) return true;
  std::vector<Target> buttons;
  for (const Target& target : targetsIn(modal)) {
    auto* const button = qobject_cast<QAbstractButton*>(target.widget);
    const bool ends = button != nullptr && button->inherits("QPushButton") && button->isEnabled();
    if (ends) buttons.push_back(target);
  }
  if (!buttons.empty() && chance_.percent(70)) {
    actOn(chance_.among(buttons));
  } else if (chance_.percent(50)) {
    keys(modal, "Escape");
  } else {
    close(modal);
  }
  return true;
}

void Hand::letGo() {
  if (QWidget* const widget = held_) {
    held_ = nullptr;
    record_.line("lets go of " + nameOf(*widget));
    if (widget->isVisible()) {
      robot::mouseStep(widget, anyPoint(*widget), QEvent::MouseButtonRelease);
    }
  }
  if (QWidget* const widget = keyHeld_) {
    keyHeld_ = nullptr;
    record_.line("lets go of the key");
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Right, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &release);
  }
}

void Hand::moveHeld() {
  constexpr int far = 400;
  if (!held_->isVisible() || chance_.percent(25)) return letGo();
  const QPoint inside = anyPoint(*held_);
  const QPoint to = chance_.percent(85) ? inside : inside * 3 - QPoint(far, far);
  record_.line("drags to " + std::to_string(to.x()) + " " + std::to_string(to.y()));
  robot::mouseStep(held_, to, QEvent::MouseMove);
}

bool Hand::close(QWidget* window) {
  const std::vector<QWidget*> reach = windowsInReach();
  if (std::find(reach.begin(), reach.end(), window) == reach.end()) return false;
  record_.line("closes " + windowName(*window));
  record_.saw(windowName(*window) + "/close", true);
  record_.touched(windowName(*window) + "/close");
  window->close();
  return true;
}

// Menus.

void Hand::pressShortcut(const Target& target) {
  QWidget* const window = target.widget->window();
  window->activateWindow();
  keys(window, textOf(target.action->shortcut().toString(QKeySequence::PortableText)).c_str());
}

void Hand::actOnAction(const Target& target) {
  const QPointer<QAction> action = target.action;
  if (!action->shortcut().isEmpty() && chance_.percent(35)) return pressShortcut(target);
  target.widget->window()->activateWindow();
  auto* const menu = qobject_cast<QMenu*>(action->parent());
  auto* const bar = qobject_cast<QMenuBar*>(target.widget);
  if (menu == nullptr) return action->trigger();
  if (chance_.percent(20)) {
    keys(target.widget->window(), textOf(mnemonic(menu->title())).c_str());
  } else {
    robot::clickAt(bar, bar->actionGeometry(menu->menuAction()).center());
  }
  // Now and then the menu is left open: the next act is in it.
  if (!action || openMenu() != menu || chance_.percent(15)) return;
  if (chance_.percent(20)) {
    menu->setActiveAction(action);
    robot::pressKeys(menu, QStringLiteral("Return"));
  } else {
    robot::clickAt(menu, menu->actionGeometry(action).center());
  }
}

void Hand::actInMenu(QMenu* menu) {
  std::vector<QAction*> items;
  for (QAction* item : menu->actions()) {
    if (item->isVisible() && !item->isSeparator()) items.push_back(item);
  }
  if (items.empty() || chance_.percent(30)) {
    return keys(menu, chance_.percent(50) ? "Escape" : chance_.among(someKeys));
  }
  QAction* const item = chance_.among(items);
  const QWidget* const owner = menu->parentWidget() != nullptr ? menu->parentWidget() : menu;
  const std::string name = windowName(*owner) + "/" + actionName(*item);
  if (shies(name)) return;
  record_.saw(name, item->isEnabled());
  record_.touched(name);
  record_.line("in the menu on " + name);
  robot::clickAt(menu, menu->actionGeometry(item).center());
}

// Controls.

QPoint Hand::anyPoint(const QWidget& widget) {
  return {chance_.below(widget.width()), chance_.below(widget.height())};
}

QString Hand::anyText() {
  if (chance_.percent(60)) return QLatin1String(chance_.among(someTexts));
  switch (chance_.below(6)) {
    case 0:
      return {};
    case 1:
      return QStringLiteral("\u00fc \u6f22 \u0663");
    case 2:
      return QString(300, QLatin1Char('9'));
    default:
      return QString::number(chance_.between(-2000, 6000) / (chance_.oneIn(2) ? 1.0 : 1e5));
  }
}

void Hand::type(QWidget* field) {
  const bool isFileName = field->objectName() == QLatin1String("fileNameEdit");
  const QString text =
      isFileName ? QString::fromStdString(Playground::anyName(chance_)) : anyText();
  record_.line("  types " + textOf(text));
  if (text.size() > 60) {
    field->setFocus(Qt::MouseFocusReason);
    QGuiApplication::clipboard()->setText(text);
    robot::pressKeys(field, QStringLiteral("Ctrl+A"));
    robot::pressKeys(field, QStringLiteral("Ctrl+V"));
  } else {
    robot::typeText(field, text);
  }
  const QPointer<QWidget> still = field;
  if (still && chance_.percent(40)) keys(field, chance_.oneIn(2) ? "Return" : "Tab");
}

void Hand::keys(QWidget* widget, const char* sequence) {
  record_.line(std::string("  presses ") + sequence);
  robot::pressKeys(widget, QLatin1String(sequence));
}

void Hand::rightClick(QWidget* widget) {
  const QPoint at = anyPoint(*widget);
  record_.line("  asks for the context menu");
  QContextMenuEvent menu(QContextMenuEvent::Mouse, at, widget->mapToGlobal(at));
  QCoreApplication::sendEvent(widget, &menu);
}

void Hand::actOnWidget(QWidget* widget) {
  if (auto* const graph = dynamic_cast<pulsemod::GraphWidget*>(widget)) return actOnGraph(graph);
  if (chance_.percent(5)) return rightClick(widget);
  if (auto* const tabs = qobject_cast<QTabBar*>(widget)) {
    const int tab = chance_.below(tabs->count());
    const std::string name = nameOf(*widget) + ":" + textOf(tabs->tabText(tab));
    record_.saw(name, true);
    record_.touched(name);
    return robot::clickAt(tabs, tabs->tabRect(tab).center());
  }
  const auto* const line = qobject_cast<QLineEdit*>(widget);
  const bool takesText = (line != nullptr && !line->isReadOnly()) ||
                         qobject_cast<QAbstractSpinBox*>(widget) != nullptr;
  if (takesText && widget->isEnabled() && chance_.percent(75)) return type(widget);
  if (chance_.percent(15) && widget->focusPolicy() != Qt::NoFocus) {
    widget->setFocus(Qt::TabFocusReason);
    return keys(widget, chance_.among(someKeys));
  }
  // The whole of a list or a page takes the mouse; a button's caption does.
  const auto* const area = qobject_cast<QAbstractScrollArea*>(widget);
  QWidget* const face = area != nullptr ? area->viewport() : widget;
  const bool anywhere = area != nullptr || qobject_cast<QAbstractSlider*>(widget) != nullptr ||
                        qobject_cast<QAbstractSpinBox*>(widget) != nullptr;
  robot::clickAt(face, anywhere ? anyPoint(*face) : robot::clickPoint(face));
}

void Hand::actOnGraph(pulsemod::GraphWidget* graph) {
  QPoint at = anyPoint(*graph);
  const auto& lines = graph->shownLines();
  if (!lines.empty() && chance_.percent(70)) {
    at.setX(graph->pixelAt({chance_.among(lines).x, 0}).x() + chance_.between(-1, 1));
  }
  const std::string place = std::to_string(at.x()) + " " + std::to_string(at.y());
  switch (chance_.below(8)) {
    case 0: {
      record_.line("  turns the wheel");
      QWheelEvent wheel(at, graph->mapToGlobal(at), {}, {0, chance_.between(-240, 240)},
                        Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
      QCoreApplication::sendEvent(graph, &wheel);
      return;
    }
    case 1:
      record_.line("  hovers at " + place);
      return robot::mouseStep(graph, at, QEvent::MouseMove);
    case 2:
      record_.line("  clicks at " + place);
      return robot::clickAt(graph, at);
    case 3: {
      graph->setFocus(Qt::TabFocusReason);
      record_.line("  holds the key Right");
      keyHeld_ = graph;
      QKeyEvent press(QEvent::KeyPress, Qt::Key_Right,
                      chance_.oneIn(2) ? Qt::ShiftModifier : Qt::NoModifier);
      QCoreApplication::sendEvent(graph, &press);
      return;
    }
    case 4:
      graph->setFocus(Qt::TabFocusReason);
      return keys(graph, chance_.among(someKeys));
    default: {
      record_.line("  presses at " + place);
      const QPointer<QWidget> still = graph;
      held_ = graph;
      robot::mouseStep(graph, at, QEvent::MouseMove);
      if (still) robot::mouseStep(graph, at, QEvent::MouseButtonPress);
    }
  }
}

// Windows.

void Hand::drop(QWidget* window) {
  const std::string name = Playground::anyName(chance_);
  record_.line("drops " + name + " on " + windowName(*window));
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QDir::current().filePath(QString::fromStdString(name)))});
  const QPoint at = anyPoint(*window);
  QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window, &enter);
  if (!enter.isAccepted()) return;
  QDropEvent dropped(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window, &dropped);
}

void Hand::actOnWindow(QWidget* window) {
  const std::string name = windowName(*window);
  constexpr int minimise = 1;
  // A minimised window can be shown or closed, no more.
  constexpr int mostlyShown = 80;
  if (window->isMinimized() && !chance_.percent(mostlyShown)) {
    close(window);
    return;
  }
  switch (window->isMinimized() ? minimise : chance_.below(9)) {
    case 0: {
      const QSize size(chance_.between(50, 1500), chance_.between(50, 1200));
      record_.line("resizes " + name);
      // As a window manager does, which keeps to the limits.
      window->resize(size.expandedTo(window->minimumSize()).boundedTo(window->maximumSize()));
      return;
    }
    case minimise:
      record_.line("minimises or shows " + name);
      window->setWindowState(window->windowState() ^ Qt::WindowMinimized);
      return;
    case 2:
      record_.line("maximises or not " + name);
      window->setWindowState(window->windowState() ^ Qt::WindowMaximized);
      return;
    case 3:
      record_.line("moves " + name);
      return window->move(chance_.between(-300, 900), chance_.between(-300, 900));
    case 4:
      record_.line("goes to " + name);
      return window->activateWindow();
    case 5:
      if (window->acceptDrops()) return drop(window);
      return rightClick(window);
    case 6:
      if (std::find(spared_.begin(), spared_.end(), name + "/close") != spared_.end() &&
          !chance_.oneIn(2)) {
        return;
      }
      close(window);
      return;
    default:
      record_.line("on " + name);
      keys(window, chance_.among(someKeys));
  }
}

}  // namespace randomuse
