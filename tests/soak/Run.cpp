#include "Run.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>

#include "link/Conversation.h"
#include "profile/AcquisitionControl.h"

namespace soak {

using namespace std::chrono_literals;

namespace {

/// Into so many parts the run is divided; memory is looked at after each.
constexpr int samples = 10;
constexpr long mostResidentGrowth = 2'000'000;
constexpr long mostAllocatedGrowth = 200'000;
constexpr int mostFailuresTold = 20;

QWidget* visibleWindow(const char* name) {
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (QWidget* window : windows) {
    if (window->objectName() == QLatin1String(name) && window->isVisible()) return window;
  }
  return nullptr;
}

}  // namespace

Run::Run(const Plan& plan, SimulatedTime& time, MeterLine& line, Ledger& ledger,
         TraceReader& reader)
    : plan_(plan), time_(time), line_(line), ledger_(ledger), reader_(reader), sightings_{ledger} {
  sightings_.onStopped = [this] {
    // The pass after the box draws nothing. One that the user stops is finished first.
    if (boxes_ > 0 && fault_ && fault_->fate == Fate::notice) ledger_.excuse();
  };
}

// Time.

void Run::processPending() {
  QCoreApplication::processEvents();
  line_.deliver();
  act();
}

void Run::processUntilEvent() {
  const Time before = time_.now();
  processPending();
  if (time_.now() != before) return;
  std::optional<Time> next = line_.nextArrival();
  if (!next && pulsemod::Conversation.open) {
    expect(false, "the program waits for bytes that nobody sends");
    endProgram();
  }
  if (!agenda_.empty()) next = std::min(next.value_or(Time::max()), agenda_.begin()->first);
  if (!next) return;
  time_.advanceTo(*next);
  processPending();
}

void Run::processUntilEventOr(int milliseconds) {
  processPending();
  if (milliseconds <= 0) return;
  if (time_.now() > end_ + 1min && window_ != nullptr) {
    expect(false, "the program does not come to its end");
    endProgram();
  }
  time_.advance(std::chrono::milliseconds(milliseconds));
}

void Run::act() {
  if (acting_) return;
  if (window_ == nullptr) {
    QWidget* const window = visibleWindow(plan_.kind == Kind::ccdf ? "frmCCDF" : "frmMain");
    if (window == nullptr) return;
    begin(*window);
  }
  acting_ = true;
  while (!agenda_.empty() && agenda_.begin()->first <= time_.now()) {
    const std::function<void()> what = std::move(agenda_.begin()->second);
    agenda_.erase(agenda_.begin());
    what();
  }
  acting_ = false;
}

// The user.

void Run::begin(QWidget& window) {
  window_ = &window;
  // What was read at the start-up is no trace.
  ledger_ = Ledger();
  start_ = window.findChild<QAction*>(QStringLiteral("menuStart"));
  stop_ = window.findChild<QAction*>(QStringLiteral("menuStop"));
  if (plan_.kind == Kind::ccdf) {
    ccdfOnlooker_ = std::make_unique<CCDFOnlooker>(pulsemod::ccdfView(), sightings_);
  } else {
    profileOnlooker_ = std::make_unique<ProfileOnlooker>(pulsemod::profileView(), sightings_);
  }
  if (plan_.kind == Kind::readouts) {
    window.findChild<QAction*>(QStringLiteral("menuInfoBox"))->trigger();
    window.findChild<QAction*>(QStringLiteral("menuMarkers"))->trigger();
  }
  const Time now = time_.now();
  at(now, [this] { start(); });
  at(now + plan_.betweenFaults, [this] { nextFault(); });
  for (int part = 1; part <= samples; ++part) {
    at(now + plan_.length * part / samples, [this] { takeSample(); });
  }
  if (plan_.kind == Kind::gpib) {
    // Midnight comes in the wait of a start; else in the middle of a pass.
    at(time_.firstMidnight() - 2s, [this] { stop(); });
    at(time_.firstMidnight() - 50ms, [this] { start(); });
  }
  end_ = now + plan_.length;
  at(end_, [this] { finish(); });
}

void Run::start() {
  if (!start_->isEnabled()) return;
  ledger_.allowRedraw();
  start_->trigger();
}

void Run::stop() {
  if (stop_->isEnabled()) stop_->trigger();
}

void Run::nextFault() {
  checkLastFault();
  const std::span<const Fault> all = faultsOf(plan_.kind);
  fault_ = all[faultsLaid_++ % all.size()];
  const auto rule = simmeter::parseFault(fault_->rule);
  expect(rule.has_value(), std::string("no fault is called ") + fault_->rule);
  if (rule) line_.faults() = simmeter::FaultPlan({*rule});
  reader_.expectFate(fault_->fate);
  if (fault_->atStart) {
    stop();
    after(1s, [this] { start(); });
  }
  if (time_.now() + plan_.betweenFaults < end_) {
    after(plan_.betweenFaults, [this] { nextFault(); });
  }
}

void Run::checkLastFault() {
  const std::uint64_t drawn = ledger_.shownOnce();
  expect(drawn > drawnBefore_, "nothing new was shown");
  drawnBefore_ = drawn;
  checkLedger();
  if (!fault_) return;
  expect(line_.faults().strikes() == 1, "it did not strike");
  expect(boxes_ == (fault_->fate == Fate::notice ? 1 : 0), std::to_string(boxes_) + " boxes");
  boxes_ = 0;
}

void Run::checkLedger() {
  expect(ledger_.lost() == lostBefore_, "a trace was lost");
  expect(ledger_.doubled() == doubledBefore_, "a trace was shown twice or out of order");
  lostBefore_ = ledger_.lost();
  doubledBefore_ = ledger_.doubled();
}

void Run::finish() {
  checkLastFault();
  stop();
  after(2s, [this] { window_->close(); });
}

void Run::showMessage(const std::string& text, const std::string& /*title*/,
                      pulsemod::MessageIcon /*icon*/, const std::string& details) {
  ++boxes_;
  ++notices_;
  const bool expected = fault_ && fault_->fate == Fate::notice;
  expect(expected, "the box: " + text + " " + details);
  after(2s, [this] { start(); });
}

bool Run::askYesNo(const std::string& text, const std::string& /*title*/,
                   pulsemod::MessageIcon /*icon*/) {
  expect(false, "the question: " + text);
  return false;
}

std::string Run::askText(const std::string& prompt, const std::string& /*title*/,
                         const std::string& /*defaultText*/) {
  expect(false, "the question: " + prompt);
  return {};
}

// The books.

void Run::expect(bool holds, const std::string& what) {
  if (holds) return;
  ++failures_;
  if (failures_ > mostFailuresTold) return;
  const auto seconds = std::chrono::floor<std::chrono::seconds>(time_.now()).count();
  std::cout << "FAILED at " << seconds << " s, fault \"" << (fault_ ? fault_->rule : "none")
            << "\": " << what << "\n";
}

void Run::takeSample() { samples_.push_back({memoryNow(), openDescriptors()}); }

void Run::checkSamples() {
  if (samples_.size() != samples) return expect(false, "the program ended before its time");
  const Sample& first = samples_.front();
  const Sample& last = samples_.back();
  expect(last.memory.allocated - first.memory.allocated < mostAllocatedGrowth,
         "the allocated memory grew");
  if (residentMemoryIsMeaningful) {
    expect(last.memory.resident - first.memory.resident < mostResidentGrowth,
           "the resident memory grew");
  }
  for (const Sample& sample : samples_) {
    expect(sample.descriptors == first.descriptors, "the number of file descriptors changed");
  }
}

void Run::endProgram() {
  checkSamples();
  checkLedger();
  expect(sightings_.oddRates == 0, "a rate that no pass has was shown");
  expect(faultsLaid_ >= faultsOf(plan_.kind).size(), "there was no time for every kind of fault");
  expect(time_.isPastMidnight(), "midnight was not crossed");
  report();
  std::cout.flush();
  std::_Exit(failures_ == 0 ? 0 : 1);
}

void Run::report() const {
  const std::chrono::duration<double> simulated = time_.now();
  const std::chrono::duration<double> real = std::chrono::steady_clock::now() - began_;
  std::cout << std::fixed << std::setprecision(2);
  std::cout << "simulated " << simulated.count() / 3600 << " h in " << real.count() << " s\n"
            << "traces sent whole " << ledger_.sentWhole() << ", "
            << static_cast<double>(ledger_.sentWhole()) / simulated.count() << " a second\n"
            << "shown once and in order " << ledger_.shownOnce() << ", lost " << ledger_.lost()
            << ", doubled " << ledger_.doubled() << ", in part " << ledger_.shownInPart()
            << ", not drawable and told " << ledger_.excused() << "\n"
            << "faults " << faultsLaid_ << " of " << faultsOf(plan_.kind).size()
            << " kinds, notices " << notices_ << "\n"
            << "after each tenth: resident MB, allocated kB, descriptors\n";
  for (const Sample& sample : samples_) {
    std::cout << "  " << static_cast<double>(sample.memory.resident) / 1e6 << "  "
              << static_cast<double>(sample.memory.allocated) / 1e3 << "  " << sample.descriptors
              << "\n";
  }
}

}  // namespace soak
