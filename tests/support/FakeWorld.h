#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/Services.h"
#include "support/FakeGpib.h"
#include "support/FakeMeter.h"
#include "support/FakeSerial.h"
#include "support/Transcripts.h"

/// An outside world for tests of the subsystems: a clock that stands still until somebody waits,
/// events that the test queues, a meter behind both links, and a record of all that was shown.

namespace pulsemod::test {

/// Thrown by the fake program end, since code after it must not run.
class ProgramEnded : public std::exception {};

/// Thrown when the program would wait for an event that can never come.
class WaitsForEver : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

class FakeClock : public Clock {
 public:
  float secondsSinceMidnight() const override { return static_cast<float>(seconds); }
  void sleep(int milliseconds) override {
    sleeps.push_back(milliseconds);
    advance(milliseconds / 1000.0);
  }
  std::string dateText() const override { return "2026-11-21"; }
  std::string timeText() const override { return "10:30:00"; }

  void advance(double by) {
    constexpr double day = 86400;
    seconds += by;
    if (seconds >= day) seconds -= day;
  }

  double seconds = 3600;
  std::vector<int> sleeps;
};

/// Events are functions that the test queues. A call that may wait runs at most one; a wait with a
/// deadline lets the clock run to it when nothing is queued. The serial line delivers one piece of
/// a reply for each call, as bytes do arrive while the events run.
class FakeEvents : public EventQueue {
 public:
  FakeEvents(FakeClock& clock, FakeSerial& serial) : clock_(clock), serial_(serial) {}

  void processPending() override {
    ++pendingCalls;
    runOne();
    serial_.progress();
  }
  void processUntilEvent() override {
    ++waits;
    const bool ran = runOne();
    const bool moved = serial_.progress();
    if (!ran && !moved && !(onIdle && onIdle())) throw WaitsForEver("nothing can end this wait");
  }
  void processUntilEventOr(int milliseconds) override {
    if (milliseconds <= 0) return processPending();
    deadlines.push_back(milliseconds);
    if (!runOne()) clock_.advance(milliseconds / 1000.0);
  }

  /// Runs when the program next lets the user interface run; several run one a call, in order.
  void post(std::function<void()> event) { queue_.push_back(std::move(event)); }
  /// Runs at each call of any kind.
  std::function<void()> always;
  /// Runs when nothing can end a wait; true when it has seen to that.
  std::function<bool()> onIdle;

  int pendingCalls = 0;
  int waits = 0;
  int depth = 0;
  std::vector<int> deadlines;

 private:
  bool runOne() {
    if (always) always();
    if (queue_.empty()) return false;
    const std::function<void()> event = std::move(queue_.front());
    queue_.pop_front();
    ++depth;
    event();
    --depth;
    return true;
  }

  FakeClock& clock_;
  FakeSerial& serial_;
  std::deque<std::function<void()>> queue_;
};

class FakeSettingsStore : public SettingsStore {
 public:
  using Key = std::pair<std::string, std::string>;

  std::optional<std::string> read(const std::string& section,
                                  const std::string& key) const override {
    const auto found = values.find({section, key});
    return found == values.end() ? std::nullopt : std::optional(found->second);
  }
  void write(const std::string& section, const std::string& key,
             const std::string& value) override {
    values[{section, key}] = value;
    written.push_back(key + "=" + value);
  }
  bool flush() override {
    ++flushes;
    return failure.empty();
  }
  std::string failureReason() const override { return failure; }

  std::map<Key, std::string> values;
  /// "key=value" in the order of writing.
  std::vector<std::string> written;
  int flushes = 0;
  std::string failure;
};

struct ShownBox {
  std::string text;
  std::string title;
  MessageIcon icon = MessageIcon::none;
  std::string details;
  friend bool operator==(const ShownBox&, const ShownBox&) = default;
};

struct AskedText {
  std::string prompt;
  std::string title;
  std::string defaultText;
};

class FakeDialogs : public Dialogs {
 public:
  void showMessage(const std::string& text, const std::string& title, MessageIcon icon,
                   const std::string& details) override {
    messages.push_back({text, title, icon, details});
    if (whileOpen) whileOpen();
  }
  bool askYesNo(const std::string& text, const std::string& title, MessageIcon icon) override {
    questions.push_back({text, title, icon, {}});
    if (whileOpen) whileOpen();
    return takeAnswer(yesNoAnswers, false);
  }
  std::string askText(const std::string& prompt, const std::string& title,
                      const std::string& defaultText) override {
    inputs.push_back({prompt, title, defaultText});
    if (whileOpen) whileOpen();
    return takeAnswer(textAnswers, std::string());
  }

  std::vector<ShownBox> messages;
  std::vector<ShownBox> questions;
  std::vector<AskedText> inputs;
  std::deque<bool> yesNoAnswers;
  std::deque<std::string> textAnswers;
  /// Runs while a box is on the screen.
  std::function<void()> whileOpen;

 private:
  template <typename Answer>
  static Answer takeAnswer(std::deque<Answer>& answers, Answer none) {
    if (answers.empty()) return none;
    Answer answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

class FakeFileDialogs : public FileDialogs {
 public:
  std::string askOpenFile(const std::string& title) override {
    titles.push_back(title);
    return openAnswer;
  }
  std::string askSaveFile(const std::string& title) override {
    titles.push_back(title);
    return saveAnswer;
  }
  std::string askSaveFileOfKind(const std::string& title,
                                std::span<const FileKind> kinds) override {
    titles.push_back(title);
    suffixes.clear();
    for (const FileKind& kind : kinds) suffixes.push_back(kind.suffix);
    return saveAnswer;
  }

  std::string openAnswer;
  std::string saveAnswer;
  std::vector<std::string> titles;
  /// Those that the last question for a file of a kind offered.
  std::vector<std::string> suffixes;
};

/// Files in memory.
class FakeFiles : public Files {
 public:
  std::string read(const std::string& path, std::string& content) override {
    if (!readFailure.empty()) return readFailure;
    const auto found = contents.find(path);
    if (found == contents.end()) return "No such file or directory";
    content = found->second;
    return {};
  }
  std::string replace(const std::string& path, std::string_view content) override {
    if (!writeFailure.empty()) return writeFailure;
    contents[path] = content;
    return {};
  }

  std::map<std::string, std::string> contents;
  /// What the next calls fail with.
  std::string readFailure;
  std::string writeFailure;
};

class FakeProgress : public Progress {
 public:
  void show(const std::string& text) override {
    visible = true;
    dismissedByUser = false;
    texts.push_back(text);
  }
  void showAfter(int milliseconds, const std::string& text) override {
    delayed.emplace_back(milliseconds, text);
    dismissedByUser = false;
  }
  void setText(const std::string& text) override { texts.push_back(text); }
  void setDone(int done, int whole) override { bars.emplace_back(done, whole); }
  void hide() override {
    visible = false;
    ++hides;
  }
  bool dismissed() const override { return dismissedByUser; }

  /// The bar went from 0 to its end by single steps: one for each of so many exchanges.
  bool barGrewToItsEnd(std::size_t exchanges) const {
    const auto whole = static_cast<int>(exchanges);
    std::vector<std::pair<int, int>> growing;
    for (int done = 0; done <= whole; ++done) growing.emplace_back(done, whole);
    return bars == growing;
  }

  bool visible = false;
  bool dismissedByUser = false;
  int hides = 0;
  std::vector<std::string> texts;
  /// What the bar was told: done, of the whole.
  std::vector<std::pair<int, int>> bars;
  std::vector<std::pair<int, std::string>> delayed;
};

class FakeProgramEnd : public ProgramEnd {
 public:
  [[noreturn]] void endProgram() override {
    ++ends;
    throw ProgramEnded();
  }
  int ends = 0;
};

/// All of it, installed for as long as it lives. Brings the process-wide state of the subsystems
/// back to that of a fresh program first.
class FakeWorld {
 public:
  FakeWorld();
  ~FakeWorld();
  FakeWorld(const FakeWorld&) = delete;
  FakeWorld& operator=(const FakeWorld&) = delete;

  FakeMeter meter;
  FakeClock clock;
  FakeGpib gpib{meter};
  FakeSerial serial{meter};
  FakeEvents events{clock, serial};
  FakeSettingsStore store;
  FakeDialogs dialogs;
  FakeFileDialogs fileDialogs;
  FakeFiles files;
  FakeProgress progress;
  FakeProgramEnd programEnd;

  /// Makes RS232 the link and opens its port.
  void useSerial();
  /// The serial port is lost as soon as the meter has got this message.
  void loseSerialAt(const std::string& message);

 private:
  Services services_{clock,   events,      gpib,  serial,   store,
                     dialogs, fileDialogs, files, progress, programEnd};
  ServicesGuard guard_{services_};
};

}  // namespace pulsemod::test
