#include "Robot.h"

#include <sys/socket.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QPointer>
#include <QString>
#include <QWindow>
#include <algorithm>
#include <array>

#include "Eyes.h"
#include "Hands.h"

namespace robot {

struct Robot::Verb {
  const char* name;
  std::size_t arguments;
  Handler handler;
};

const Robot::Verb* Robot::findVerb(const std::string& name) {
  static constexpr std::array verbs = {
      Verb{"get", 2, get},
      Verb{"until", 3, until},
      Verb{"while", 3, whilst},
      Verb{"windows", 0, windows},
      Verb{"any", 1, any},
      Verb{"click", 1, click},
      Verb{"mouse", 4, mouse},
      Verb{"trigger", 1, trigger},
      Verb{"open-menu", 1, openMenu},
      Verb{"close-menu", 0, closeMenu},
      Verb{"type", 2, type},
      Verb{"key", 2, key},
      Verb{"activate", 1, activate},
      Verb{"close", 1, close},
      Verb{"resize", 3, resize},
      Verb{"grab", 2, grab},
      Verb{"grab-when", 5, grabWhen},
      Verb{"picture", 2, picture},
  };
  for (const Verb& verb : verbs) {
    if (name == verb.name) return &verb;
  }
  return nullptr;
}

namespace {

QString argument(const Fields& request, std::size_t index) {
  return QString::fromStdString(request[index]);
}

}  // namespace

Robot::Robot(int socket, QObject* parent)
    : QObject(parent), socket_(socket), notifier_(socket, QSocketNotifier::Read) {
  connect(&notifier_, &QSocketNotifier::activated, this, [this] { readRequests(); });
  const auto* const dispatcher = QAbstractEventDispatcher::instance();
  connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] { attempt(); });
  connect(dispatcher, &QAbstractEventDispatcher::awake, this, [this] { attempt(); });
}

void Robot::readRequests() {
  std::array<char, 4096> buffer{};
  const ssize_t count = ::recv(socket_, buffer.data(), buffer.size(), MSG_DONTWAIT);
  if (count == 0) notifier_.setEnabled(false);
  if (count <= 0) return;
  received_.append(buffer.data(), static_cast<std::size_t>(count));
  std::string line;
  while (takeLine(received_, line)) {
    Fields request = decodeLine(line);
    if (request[0] == "cancel") {
      // The answer may have crossed the cancel on its way.
      if (handler_ == nullptr) continue;
      const Outcome outcome = !actions_.empty() ? Outcome{} : handler_(request_);
      answer("no", outcome.text + "\nwindows on the screen:\n" + visibleWindows().toStdString());
      continue;
    }
    if (request[0] == "give-up-at" && request.size() > 1) {
      giveUpAt_ = request[1];
      answer("ok", {});
      continue;
    }
    const Verb* const verb = findVerb(request[0]);
    if (verb == nullptr || request.size() <= verb->arguments) {
      answer("no", "not a request");
      continue;
    }
    request_ = std::move(request);
    handler_ = verb->handler;
    attempt();
  }
}

void Robot::attempt() {
  if (handler_ == nullptr || attempting_ || !actions_.empty()) return;
  attempting_ = true;
  Outcome outcome = handler_(request_);
  attempting_ = false;
  if (outcome.kind == Outcome::Kind::later && !outcome.action && hasToGiveUp()) {
    outcome = {Outcome::Kind::refused, giveUpAt_ + " is in the way", {}};
  }
  if (outcome.action) {
    actions_.push_back(std::move(outcome.action));
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
  }
  if (outcome.kind == Outcome::Kind::done) answer("ok", outcome.text);
  if (outcome.kind == Outcome::Kind::refused) answer("no", outcome.text);
}

bool Robot::hasToGiveUp() const {
  if (giveUpAt_.empty()) return false;
  const bool isMeant = std::any_of(
      request_.begin(), request_.end(),
      [this](const std::string& field) { return field.find(giveUpAt_) != std::string::npos; });
  if (isMeant) return false;
  const QWidget* const window = findWidget(QString::fromStdString(giveUpAt_));
  return window != nullptr && window->isVisible();
}

void Robot::customEvent(QEvent* /*event*/) {
  const std::function<void()> action = std::move(actions_.front());
  actions_.pop_front();
  action();
}

void Robot::answer(const char* how, const std::string& text) {
  handler_ = nullptr;
  if (!sendAll(socket_, encodeLine({how, text}))) notifier_.setEnabled(false);
}

Robot::Outcome Robot::get(Fields& request) {
  const auto value = report(argument(request, 1), argument(request, 2));
  if (!value) return {Outcome::Kind::later, request[1] + " does not exist", {}};
  return {Outcome::Kind::done, value->toStdString(), {}};
}

Robot::Outcome Robot::until(Fields& request) {
  Outcome outcome = get(request);
  if (outcome.kind != Outcome::Kind::done || outcome.text == request[3]) return outcome;
  return {Outcome::Kind::later, "it is: " + outcome.text, {}};
}

Robot::Outcome Robot::whilst(Fields& request) {
  Outcome outcome = get(request);
  if (outcome.kind != Outcome::Kind::done || outcome.text != request[3]) return outcome;
  return {Outcome::Kind::later, "it still is: " + outcome.text, {}};
}

Robot::Outcome Robot::windows(Fields&) {
  return {Outcome::Kind::done, visibleWindows().toStdString(), {}};
}

Robot::Outcome Robot::any(Fields& request) {
  for (std::size_t i = 1; i < request.size(); ++i) {
    const QWidget* const window = findWidget(argument(request, i));
    if (window != nullptr && window->isVisible()) return {Outcome::Kind::done, request[i], {}};
  }
  return {Outcome::Kind::later, "none of them is visible", {}};
}

Robot::Outcome Robot::click(Fields& request) {
  const QPointer<QWidget> widget = findWidget(argument(request, 1));
  if (!widget) return {Outcome::Kind::later, request[1] + " does not exist", {}};
  const QString why = whyNotClickable(widget, clickPoint(widget));
  if (!why.isEmpty()) return {Outcome::Kind::later, why.toStdString(), {}};
  return {Outcome::Kind::done, {}, [widget] {
            if (widget) clickAt(widget, clickPoint(widget));
          }};
}

Robot::Outcome Robot::mouse(Fields& request) {
  const QEvent::Type type = request[1] == "press"     ? QEvent::MouseButtonPress
                            : request[1] == "release" ? QEvent::MouseButtonRelease
                                                      : QEvent::MouseMove;
  const QPointer<QWidget> widget = findWidget(argument(request, 2));
  if (!widget) return {Outcome::Kind::later, request[2] + " does not exist", {}};
  const QPoint at(argument(request, 3).toInt(), argument(request, 4).toInt());
  const QString why = type == QEvent::MouseButtonPress ? whyNotClickable(widget, at) : QString();
  if (!why.isEmpty()) return {Outcome::Kind::later, why.toStdString(), {}};
  return {Outcome::Kind::done, {}, [widget, at, type] {
            if (widget) mouseStep(widget, at, type);
          }};
}

/// One click on the way to a menu item; `choose` says whether the item itself is clicked, or done
/// when its menu is open.
Robot::Outcome Robot::menuStep(Fields& request, bool choose) {
  const QAction* const action = findAction(argument(request, 1));
  if (action == nullptr) return {Outcome::Kind::later, request[1] + " does not exist", {}};
  const MenuStep step = nextMenuStep(action);
  if (step.widget == nullptr) return {Outcome::Kind::later, step.why.toStdString(), {}};
  if (step.isItemItself && !choose) return {Outcome::Kind::done, {}, {}};
  if (step.isItemItself && !action->isEnabled()) {
    return {Outcome::Kind::later, request[1] + " is not enabled", {}};
  }
  const QString why = whyNotClickable(step.widget, step.at);
  if (!why.isEmpty()) return {Outcome::Kind::later, why.toStdString(), {}};
  const QPointer<QWidget> widget = step.widget;
  const auto clickThere = [widget, at = step.at] {
    if (widget) clickAt(widget, at);
  };
  return {step.isItemItself ? Outcome::Kind::done : Outcome::Kind::later, "opening the menu",
          clickThere};
}

Robot::Outcome Robot::trigger(Fields& request) { return menuStep(request, true); }

Robot::Outcome Robot::openMenu(Fields& request) { return menuStep(request, false); }

Robot::Outcome Robot::closeMenu(Fields&) {
  const QPointer<QWidget> menu = QApplication::activePopupWidget();
  if (!menu) return {Outcome::Kind::done, {}, {}};
  return {Outcome::Kind::later, "a menu is open", [menu] {
            if (menu) pressKeys(menu, "Escape");
          }};
}

Robot::Outcome Robot::type(Fields& request) {
  const QPointer<QWidget> widget = findWidget(argument(request, 1));
  if (!widget) return {Outcome::Kind::later, request[1] + " does not exist", {}};
  const QString why = whyNotClickable(widget, clickPoint(widget));
  if (!why.isEmpty()) return {Outcome::Kind::later, why.toStdString(), {}};
  return {Outcome::Kind::done, {}, [widget, text = argument(request, 2)] {
            if (widget) typeText(widget, text);
          }};
}

Robot::Outcome Robot::key(Fields& request) {
  const QPointer<QWidget> window = findWidget(argument(request, 1));
  if (!window || !window->isVisible()) {
    return {Outcome::Kind::later, request[1] + " is not visible", {}};
  }
  // A window manager would have made it the active one when the dialog before it was closed. Where
  // there is none, the window may or may not become active; its keys work as far as they can.
  constexpr std::size_t mostActivations = 5;
  const bool mayNeedActivation =
      !window->isActiveWindow() && QApplication::activePopupWidget() == nullptr;
  if (mayNeedActivation && request.size() < 3 + mostActivations) {
    request.emplace_back("activated");
    return {Outcome::Kind::later, request[1] + " does not become active", [window] {
              if (window) window->activateWindow();
            }};
  }
  return {Outcome::Kind::done, {}, [window, keys = argument(request, 2)] {
            if (window) pressKeys(window, keys);
          }};
}

Robot::Outcome Robot::activate(Fields& request) {
  const QPointer<QWidget> window = findWidget(argument(request, 1));
  if (!window || !window->isVisible()) {
    return {Outcome::Kind::later, request[1] + " is not visible", {}};
  }
  if (window->isActiveWindow()) return {Outcome::Kind::done, {}, {}};
  const std::string why = request[1] + " does not become active";
  // The window system is asked once and answers later.
  if (request.size() > 2) return {Outcome::Kind::later, why, {}};
  request.emplace_back("asked");
  return {Outcome::Kind::later, why, [window] {
            if (window) window->activateWindow();
          }};
}

Robot::Outcome Robot::close(Fields& request) {
  const QPointer<QWidget> window = findWidget(argument(request, 1));
  if (!window || !window->isVisible() || window->windowHandle() == nullptr) {
    return {Outcome::Kind::later, request[1] + " is not visible", {}};
  }
  // The system's close button of a window behind a modal one does nothing.
  const QWidget* const modal = QApplication::activeModalWidget();
  if (modal != nullptr && modal != window) {
    return {Outcome::Kind::later, request[1] + " is behind a modal window", {}};
  }
  return {Outcome::Kind::done, {}, [window] {
            if (window) window->windowHandle()->close();
          }};
}

Robot::Outcome Robot::resize(Fields& request) {
  const QPointer<QWidget> window = findWidget(argument(request, 1));
  if (!window || !window->isVisible()) {
    return {Outcome::Kind::later, request[1] + " is not visible", {}};
  }
  const QSize size(argument(request, 2).toInt(), argument(request, 3).toInt());
  return {Outcome::Kind::done, {}, [window, size] {
            if (window) window->resize(size);
          }};
}

Robot::Outcome Robot::grab(Fields& request) {
  QWidget* const widget = findWidget(argument(request, 1));
  if (widget == nullptr || !widget->isVisible()) {
    return {Outcome::Kind::later, request[1] + " is not visible", {}};
  }
  if (grabWidget(widget, argument(request, 2))) return {Outcome::Kind::done, {}, {}};
  return {Outcome::Kind::refused, "cannot write " + request[2], {}};
}

Robot::Outcome Robot::grabWhen(Fields& request) {
  Outcome outcome = until(request);
  if (outcome.kind != Outcome::Kind::done) return outcome;
  Fields what{"grab", request[4], request[5]};
  return grab(what);
}

Robot::Outcome Robot::picture(Fields& request) {
  const QWidget* const awaited = request[2].empty() ? nullptr : findWidget(argument(request, 2));
  if (!request[2].empty() && (awaited == nullptr || !awaited->isVisible())) {
    return {Outcome::Kind::later, request[2] + " is not visible", {}};
  }
  if (grabAllWindows(argument(request, 1))) return {Outcome::Kind::done, {}, {}};
  return {Outcome::Kind::refused, "cannot write " + request[1], {}};
}

}  // namespace robot
