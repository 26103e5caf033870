#pragma once

#include <QAction>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Faults.h"
#include "Ledger.h"
#include "Memory.h"
#include "MeterLine.h"
#include "Onlookers.h"
#include "TraceReader.h"
#include "platform/Services.h"

class QWidget;

namespace soak {

struct Plan {
  Kind kind = Kind::gpib;
  Time length = std::chrono::hours(8);
  Time betweenFaults = std::chrono::seconds(30);
};

/// One run: the user at the windows, who lays out the faults as well, and what must hold in the
/// end. It is the program's event queue, boxes and end.
class Run : public pulsemod::EventQueue, public pulsemod::Dialogs, public pulsemod::ProgramEnd {
 public:
  Run(const Plan& plan, SimulatedTime& time, MeterLine& line, Ledger& ledger, TraceReader& reader);

  // The toolkit's events, the bytes of the line and the user's acts; a wait moves the time on.
  void processPending() override;
  void processUntilEvent() override;
  void processUntilEventOr(int milliseconds) override;

  // The user reads and confirms.
  void showMessage(const std::string& text, const std::string& title, pulsemod::MessageIcon icon,
                   const std::string& details) override;
  bool askYesNo(const std::string& text, const std::string& title,
                pulsemod::MessageIcon icon) override;
  std::string askText(const std::string& prompt, const std::string& title,
                      const std::string& defaultText) override;

  /// The report, and the end of the process: 0 when all held, else 1.
  [[noreturn]] void endProgram() override;

 private:
  struct Sample {
    Memory memory;
    int descriptors = 0;
  };

  void act();
  void at(Time when, std::function<void()> what) { agenda_.emplace(when, std::move(what)); }
  void after(Time wait, std::function<void()> what) { at(time_.now() + wait, std::move(what)); }

  void begin(QWidget& window);
  void start();
  void stop();
  void nextFault();
  void checkLastFault();
  void checkLedger();
  void takeSample();
  void finish();
  void expect(bool holds, const std::string& what);
  void checkSamples();
  void report() const;

  Plan plan_;
  SimulatedTime& time_;
  MeterLine& line_;
  Ledger& ledger_;
  TraceReader& reader_;
  Sightings sightings_;
  std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();

  std::multimap<Time, std::function<void()>> agenda_;
  bool acting_ = false;
  Time end_{};
  QWidget* window_ = nullptr;
  QAction* start_ = nullptr;
  QAction* stop_ = nullptr;
  std::unique_ptr<ProfileOnlooker> profileOnlooker_;
  std::unique_ptr<CCDFOnlooker> ccdfOnlooker_;

  std::size_t faultsLaid_ = 0;
  std::optional<Fault> fault_;
  int boxes_ = 0;  ///< since the last fault was laid out
  std::uint64_t notices_ = 0;
  std::uint64_t drawnBefore_ = 0;
  std::uint64_t lostBefore_ = 0;
  std::uint64_t doubledBefore_ = 0;
  std::vector<Sample> samples_;
  int failures_ = 0;
};

}  // namespace soak
