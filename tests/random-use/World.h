#pragma once

#include <QObject>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Record.h"
#include "host/QtDialogs.h"
#include "platform/Services.h"
#include "soak/MeterOnSerial.h"
#include "soak/SimulatedTime.h"

namespace randomuse {

using soak::Time;

struct Box {
  std::string text;
  std::string title;
  std::string details;
};

/// The outside world of a life: the program's events, boxes, file questions, progress window and
/// end. Whenever the program lets events run, in its own waits and in the event loop of a dialog,
/// the user may have a turn; a wait moves the simulated time on. All boxes are the toolkit's own;
/// the file dialog is a plain one that asks for a name, since the toolkit's lists the folder in a
/// thread of its own, which no seed repeats.
class World : public QObject,
              public pulsemod::EventQueue,
              public pulsemod::Dialogs,
              public pulsemod::FileDialogs,
              public pulsemod::Progress,
              public pulsemod::ProgramEnd {
 public:
  struct Hooks {
    /// `mustAnswer`: only what closes a dialog, since too many turns are in each other already.
    std::function<void(bool mustAnswer)> turn;
    /// The gap until the turn after the one that begins.
    std::function<Time()> gap;
    std::function<void(const Box&)> box;
    std::function<void()> end;
  };

  World(Record& record, soak::SimulatedTime& time, soak::MeterOnSerial& serial,
        pulsemod::Progress& progressWindow);
  /// Before any event runs.
  void setHooks(Hooks hooks) { hooks_ = std::move(hooks); }
  /// The next turn comes so much later.
  void pause(Time time) { nextTurn_ = time_.now() + time; }
  /// The program waits for bytes, and none are on their way.
  bool waitsInVain() const { return waitsInVain_; }
  /// Turns that are in each other; 1 in a turn that is in none.
  int depth() const { return depth_; }
  /// Lets the toolkit's own event loop run until the program ends, as after a start without a loop.
  [[noreturn]] void runEventLoop();

  void processPending() override;
  void processUntilEvent() override;
  void processUntilEventOr(int milliseconds) override;

  void showMessage(const std::string& text, const std::string& title, pulsemod::MessageIcon icon,
                   const std::string& details) override;
  bool askYesNo(const std::string& text, const std::string& title,
                pulsemod::MessageIcon icon) override;
  std::string askText(const std::string& prompt, const std::string& title,
                      const std::string& defaultText) override;

  std::string askOpenFile(const std::string& title) override { return askName(title, {}); }
  std::string askSaveFile(const std::string& title) override { return askName(title, ".txt"); }
  std::string askSaveFileOfKind(const std::string& title,
                                std::span<const pulsemod::FileKind> kinds) override;

  // The delay counts in simulated time.
  void show(const std::string& text) override;
  void showAfter(int milliseconds, const std::string& text) override;
  void setText(const std::string& text) override;
  void setDone(int done, int whole) override { progressWindow_.setDone(done, whole); }
  void hide() override;
  bool dismissed() const override { return progressWindow_.dismissed(); }

  [[noreturn]] void endProgram() override;

 protected:
  /// In the event loop of a dialog.
  void timerEvent(QTimerEvent* event) override;

 private:
  std::string askName(const std::string& title, const std::string& suffix);
  void runToolkit();
  void showProgressInTime();
  void takeTurn(bool inDialog);

  Record& record_;
  soak::SimulatedTime& time_;
  soak::MeterOnSerial& serial_;
  pulsemod::Progress& progressWindow_;
  pulsemod::QtDialogs boxes_;
  Hooks hooks_;

  Time nextTurn_{};
  int depth_ = 0;
  bool waitsInVain_ = false;
  /// The event loops of the toolkit that belong to waits and turns under way.
  int loopsBelow_ = 0;
  int timer_ = 0;
  Time lastMove_{};
  int standstill_ = 0;
  std::optional<Time> progressDue_;
  std::string progressText_;
};

}  // namespace randomuse
