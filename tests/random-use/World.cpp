#include "World.h"

#include <unistd.h>

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QThread>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdlib>

#include "link/Conversation.h"

namespace randomuse {

namespace {

/// Turns in each other: an act during the exchange that another act has brought about, and so on.
constexpr int mostTurns = 5;
constexpr int mostTurnsWithAnswers = 40;

int toolkitLoops() { return QThread::currentThread()->loopLevel(); }

}  // namespace

World::World(Record& record, soak::SimulatedTime& time, soak::MeterOnSerial& serial,
             pulsemod::Progress& progressWindow)
    : record_(record), time_(time), serial_(serial), progressWindow_(progressWindow) {
  timer_ = startTimer(0);
}

// Time.

void World::runToolkit() {
  const QScopedValueRollback<int> own(loopsBelow_, toolkitLoops());
  QCoreApplication::processEvents();
}

void World::processPending() {
  constexpr int mostCallsAtOnce = 100'000;
  runToolkit();
  serial_.deliver();
  showProgressInTime();
  standstill_ = time_.now() == lastMove_ ? standstill_ + 1 : 0;
  lastMove_ = time_.now();
  record_.expect(standstill_ < mostCallsAtOnce, "the program is busy and no time goes by");
  takeTurn(false);
}

void World::processUntilEvent() {
  const Time before = time_.now();
  processPending();
  if (time_.now() != before) return;
  const std::optional<Time> arrival = serial_.nextArrival();
  waitsInVain_ = !arrival && pulsemod::Conversation.open;
  Time next = std::min(arrival.value_or(nextTurn_), nextTurn_);
  if (progressDue_) next = std::min(next, *progressDue_);
  time_.advanceTo(next);
  processPending();
  waitsInVain_ = false;
}

void World::processUntilEventOr(int milliseconds) {
  const Time end = time_.now() + std::chrono::milliseconds(milliseconds);
  processPending();
  if (milliseconds <= 0 || time_.now() >= end) return;
  time_.advanceTo(std::min(end, std::max(nextTurn_, time_.now())));
}

void World::timerEvent(QTimerEvent* event) {
  // A timer whose event is being handled would not come in the loops of what follows.
  killTimer(event->timerId());
  timer_ = startTimer(0);
  if (toolkitLoops() <= loopsBelow_) return;
  time_.advanceTo(nextTurn_);
  serial_.deliver();
  showProgressInTime();
  takeTurn(true);
}

void World::takeTurn(bool inDialog) {
  if (time_.now() < nextTurn_) return;
  nextTurn_ = time_.now() + hooks_.gap();
  const bool tooMany = depth_ >= mostTurns;
  if (tooMany && !inDialog) return;
  const QScopedValueRollback<int> deeper(depth_, depth_ + 1);
  const QScopedValueRollback<int> own(loopsBelow_, toolkitLoops());
  record_.setTime(static_cast<std::uint64_t>(
      std::chrono::floor<std::chrono::milliseconds>(time_.now()).count()));
  record_.expect(depth_ < mostTurnsWithAnswers, "each answer brings up another dialog");
  Figures& figures = record_.figures();
  if (inDialog) ++figures.inModal;
  if (pulsemod::Conversation.open) ++figures.inExchange;
  hooks_.turn(tooMany);
}

void World::runEventLoop() {
  QApplication::exec();
  record_.fail("the toolkit's event loop ended");
}

// Boxes.

void World::showMessage(const std::string& text, const std::string& title,
                        pulsemod::MessageIcon icon, const std::string& details) {
  record_.line("BOX \"" + title + "\": " + text + " | " + details);
  hooks_.box({text, title, details});
  boxes_.showMessage(text, title, icon, details);
}

bool World::askYesNo(const std::string& text, const std::string& title,
                     pulsemod::MessageIcon icon) {
  record_.line("QUESTION \"" + title + "\": " + text);
  hooks_.box({text, title, {}});
  return boxes_.askYesNo(text, title, icon);
}

std::string World::askText(const std::string& prompt, const std::string& title,
                           const std::string& defaultText) {
  record_.line("INPUT \"" + title + "\": " + prompt);
  return boxes_.askText(prompt, title, defaultText);
}

std::string World::askSaveFileOfKind(const std::string& title,
                                     std::span<const pulsemod::FileKind> kinds) {
  return askName(title, "." + kinds.front().suffix);
}

std::string World::askName(const std::string& title, const std::string& suffix) {
  ++record_.figures().files;
  QDialog question(QApplication::activeWindow());
  question.setObjectName(QStringLiteral("fileDialog"));
  question.setWindowTitle(QString::fromStdString(title));
  QLineEdit name;
  name.setObjectName(QStringLiteral("fileNameEdit"));
  // As the toolkit's, which takes no name that the system would not.
  constexpr int longestName = 255;
  name.setMaxLength(longestName);
  QDialogButtonBox buttons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(&buttons, &QDialogButtonBox::accepted, &question, &QDialog::accept);
  connect(&buttons, &QDialogButtonBox::rejected, &question, &QDialog::reject);
  QVBoxLayout layout(&question);
  layout.addWidget(&name);
  layout.addWidget(&buttons);
  const bool chosen = question.exec() == QDialog::Accepted;
  std::string path = name.text().toStdString();
  const bool isComplete = path.find('.') != std::string::npos;
  if (chosen && !path.empty() && !isComplete) path += suffix;
  record_.line("FILE \"" + title + "\": " + (chosen ? path : "cancelled"));
  return chosen ? path : std::string();
}

// The progress window.

void World::show(const std::string& text) {
  progressDue_.reset();
  progressWindow_.show(text);
}

void World::showAfter(int milliseconds, const std::string& text) {
  constexpr int never = 1'000'000;
  progressText_ = text;
  progressDue_ = time_.now() + std::chrono::milliseconds(milliseconds);
  progressWindow_.showAfter(never, text);
}

void World::setText(const std::string& text) {
  progressText_ = text;
  progressWindow_.setText(text);
}

void World::hide() {
  progressDue_.reset();
  progressWindow_.hide();
}

void World::showProgressInTime() {
  if (!progressDue_ || time_.now() < *progressDue_) return;
  progressDue_.reset();
  record_.line("the progress window comes up");
  progressWindow_.showAfter(0, progressText_);
}

void World::endProgram() {
  hooks_.end();
  _exit(EXIT_SUCCESS);
}

}  // namespace randomuse
