#include "Hands.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenuBar>
#include <QRadioButton>
#include <QWindow>

// Exported by the toolkit for tests, declared in none of its public headers.
Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                      Qt::MouseButtons state, Qt::MouseButton button,
                                      QEvent::Type type, Qt::KeyboardModifiers modifiers,
                                      int timestamp);
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key,
                                    Qt::KeyboardModifiers modifiers, const QString& text,
                                    bool autoRepeat, ushort count);
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* receiver, ulong timestamp, int key,
                                               Qt::KeyboardModifiers modifiers, const QString& text,
                                               bool autoRepeat, ushort count);

namespace robot {

namespace {

/// Far enough apart that two clicks are never a double click; a million clicks later they begin
/// anew.
int nextTimestamp() {
  static int timestamp = 0;
  constexpr int apartMs = 2000;
  constexpr int last = 2'000'000'000;
  timestamp = timestamp < last ? timestamp + apartMs : apartMs;
  return timestamp;
}

void pressKey(QWidget* widget, int key, Qt::KeyboardModifiers modifiers, const QString& text) {
  const QPointer<QWindow> window = widget->window()->windowHandle();
  const auto timestamp = static_cast<ulong>(nextTimestamp());
  if (qt_sendShortcutOverrideEvent(window, timestamp, key, modifiers, text, false, 1)) return;
  qt_handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text, false, 1);
  if (window) qt_handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text, false, 1);
}

/// The menus from the bar to the one that holds the action, as the actions that open them.
bool findWay(const QList<QAction*>& items, const QAction* action, QList<QAction*>& way) {
  for (QAction* item : items) {
    if (item == action) return true;
    if (item->menu() == nullptr) continue;
    way.append(item);
    if (findWay(item->menu()->actions(), action, way)) return true;
    way.removeLast();
  }
  return false;
}

}  // namespace

void mouseStep(QWidget* widget, QPoint at, QEvent::Type type) {
  static Qt::MouseButtons held;
  if (type == QEvent::MouseButtonPress) held = Qt::LeftButton;
  if (type == QEvent::MouseButtonRelease) held = Qt::NoButton;
  const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  QWidget* const window = widget->window();
  qt_handleMouseEvent(window->windowHandle(), widget->mapTo(window, QPointF(at)),
                      widget->mapToGlobal(QPointF(at)), held, button, type, Qt::NoModifier,
                      nextTimestamp());
}

void clickAt(QWidget* widget, QPoint at) {
  const QPointer<QWidget> target = widget;
  mouseStep(widget, at, QEvent::MouseMove);
  if (target) mouseStep(widget, at, QEvent::MouseButtonPress);
  if (target) mouseStep(widget, at, QEvent::MouseButtonRelease);
}

QPoint clickPoint(const QWidget* widget) {
  constexpr int insideIndicator = 8;
  const bool hasIndicator = qobject_cast<const QRadioButton*>(widget) != nullptr ||
                            qobject_cast<const QCheckBox*>(widget) != nullptr;
  const QPoint centre = widget->rect().center();
  return hasIndicator ? QPoint(insideIndicator, centre.y()) : centre;
}

bool pressKeys(QWidget* window, const QString& keys) {
  const QKeySequence sequence(keys, QKeySequence::PortableText);
  if (sequence.isEmpty() || window->window()->windowHandle() == nullptr) return false;
  const QKeyCombination first = sequence[0];
  const bool isCharacter =
      first.key() < Qt::Key_Escape && first.keyboardModifiers() == Qt::NoModifier;
  pressKey(window, first.key(), first.keyboardModifiers(),
           isCharacter ? QString(QChar(static_cast<char16_t>(first.key()))) : QString());
  return true;
}

void typeText(QWidget* widget, const QString& text) {
  widget->setFocus(Qt::MouseFocusReason);
  pressKey(widget, Qt::Key_A, Qt::ControlModifier, {});
  if (text.isEmpty()) pressKey(widget, Qt::Key_Delete, Qt::NoModifier, {});
  for (const QChar character : text) {
    pressKey(widget, character.toUpper().unicode(), Qt::NoModifier, QString(character));
  }
}

MenuStep nextMenuStep(const QAction* action) {
  auto* const popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  const auto stepIn = [](auto* menu, QAction* item, bool isItemItself) {
    return MenuStep{menu, menu->actionGeometry(item).center(), isItemItself, {}};
  };
  for (const QWidget* window : QApplication::topLevelWidgets()) {
    auto* const bar = window->isVisible() ? window->findChild<QMenuBar*>() : nullptr;
    QList<QAction*> way;
    if (bar == nullptr || !findWay(bar->actions(), action, way)) continue;
    if (popup == nullptr) return stepIn(bar, way.isEmpty() ? nullptr : way.first(), way.isEmpty());
    for (qsizetype i = 0; i < way.size(); ++i) {
      if (way[i]->menu() != popup) continue;
      const bool last = i + 1 == way.size();
      return stepIn(popup, last ? const_cast<QAction*>(action) : way[i + 1], last);
    }
    return {nullptr, {}, false, "another menu is open"};
  }
  return {nullptr, {}, false, "no menu bar of a visible window leads to it"};
}

}  // namespace robot
