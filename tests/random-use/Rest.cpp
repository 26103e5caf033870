#include "Rest.h"

#include <QAction>
#include <QApplication>
#include <string>

namespace randomuse {

using namespace std::chrono_literals;

namespace {

/// A reply may come so late, and another one byte by byte.
constexpr Time longestExchange = 60s;
constexpr Time untilTraces = 20s;
constexpr int mostAnswers = 60;

bool somethingIsOpen() {
  return QApplication::activePopupWidget() != nullptr ||
         QApplication::activeModalWidget() != nullptr;
}

}  // namespace

void Rest::enter(Phase phase, Time limit) {
  phase_ = phase;
  limit_ = time_.now() + limit;
}

void Rest::begin() {
  record_.line("REST");
  ++record_.figures().rests;
  faults_.none();
  answers_ = 0;
  enter(Phase::handsOff, longestExchange);
}

void Rest::step() {
  switch (phase_) {
    case Phase::handsOff:
      return takeHandsOff();
    case Phase::stopping:
      return awaitStop();
    case Phase::silent:
      return awaitSilence();
    case Phase::starting:
      return awaitTraces();
    case Phase::closing:
      record_.fail("the window was closed and the program goes on");
    case Phase::off:
      break;
  }
}

void Rest::takeHandsOff() {
  hand_.letGo();
  if (somethingIsOpen()) {
    record_.expect(answers_++ < mostAnswers, "the dialogs come to no end");
    hand_.answer(false);
    return;
  }
  if (world_.waitsInVain()) return leave();
  // A turn within an act's exchange: it goes on when that is over.
  if (world_.depth() > 1) {
    record_.expect(time_.now() < limit_, "an exchange comes to no end");
    return world_.pause(1s);
  }
  QWidget* const window = Watch::mainWindow();
  if (window->isMinimized()) window->setWindowState(Qt::WindowNoState);
  record_.line("REST: stop");
  if (Watch::menu("menuStop")->isEnabled()) Watch::menu("menuStop")->trigger();
  enter(Phase::stopping, longestExchange);
  world_.pause(1s);
}

/// Over RS232 a reply that is missing is waited for without an end, by rule: all that is left is
/// the end of the program.
void Rest::leave() {
  record_.line("REST: the meter is silent");
  enter(Phase::closing, 1s);
  hand_.close(Watch::mainWindow());
}

void Rest::awaitStop() {
  if (somethingIsOpen()) return enter(Phase::handsOff, longestExchange);
  if (world_.waitsInVain()) return leave();
  if (!watch_.isQuiet()) {
    record_.expect(time_.now() < limit_, "it does not come to rest");
    return world_.pause(1s);
  }
  watch_.atRest();
  mark_ = watch_.messages();
  enter(Phase::silent, 0s);
  world_.pause(2s);
}

void Rest::awaitSilence() {
  record_.expect(watch_.messages() == mark_, "it has stopped and goes on asking the meter");
  record_.line("REST: start");
  mark_ = watch_.traces();
  enter(Phase::starting, untilTraces);
  world_.pause(500ms);
  Watch::menu("menuStart")->trigger();
}

void Rest::awaitTraces() {
  constexpr std::uint64_t enough = 3;
  if (watch_.traces() >= mark_ + enough && !somethingIsOpen()) {
    watch_.expectLabels();
    return give(true);
  }
  if (somethingIsOpen()) {
    hand_.answer(false);
    return give(false);
  }
  record_.expect(time_.now() < limit_, "a start brings no traces and no box");
  world_.pause(500ms);
}

void Rest::give(bool wasLive) {
  record_.line(wasLive ? "REST: there are traces" : "REST: a box says why there are none");
  ++(wasLive ? record_.figures().live : record_.figures().told);
  phase_ = Phase::off;
}

}  // namespace randomuse
