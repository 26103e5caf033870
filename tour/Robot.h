#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <deque>
#include <functional>
#include <string>

#include "Wire.h"

class QString;

namespace robot {

/// Works the program that it lives in: takes requests from a socket, one at a time, and answers
/// each with `ok` and a text or `no` and a reason.
///
/// It never wakes the program up. A request that cannot be carried out yet is tried again whenever
/// the event loop, whichever is running, has handled its events; so a wait that the program would
/// sleep through is slept through here too. Input is delivered from the event queue after its
/// request was answered, since a click may open a modal window and return much later.
class Robot : public QObject {
 public:
  /// A connected socket; stays open for the life of the process.
  explicit Robot(int socket, QObject* parent = nullptr);

 private:
  struct Outcome {
    enum class Kind { later, done, refused };
    Kind kind = Kind::later;
    std::string text;
    /// Input to deliver, after the answer when there is one.
    std::function<void()> action;
  };
  using Handler = Outcome (*)(Fields&);
  struct Verb;
  static const Verb* findVerb(const std::string& name);

  static Outcome get(Fields& request);
  static Outcome until(Fields& request);
  static Outcome whilst(Fields& request);
  static Outcome windows(Fields& request);
  static Outcome any(Fields& request);
  static Outcome click(Fields& request);
  static Outcome mouse(Fields& request);
  static Outcome trigger(Fields& request);
  static Outcome openMenu(Fields& request);
  static Outcome closeMenu(Fields& request);
  static Outcome type(Fields& request);
  static Outcome key(Fields& request);
  static Outcome activate(Fields& request);
  static Outcome close(Fields& request);
  static Outcome resize(Fields& request);
  static Outcome grab(Fields& request);
  static Outcome grabWhen(Fields& request);
  static Outcome picture(Fields& request);
  static Outcome menuStep(Fields& request, bool choose);

  void readRequests();
  void attempt();
  /// Carries out the oldest of `actions_`.
  void customEvent(QEvent* event) override;
  void answer(const char* how, const std::string& text);
  /// A window that ends all waiting stands on the screen.
  bool hasToGiveUp() const;

  int socket_;
  QSocketNotifier notifier_;
  std::string received_;
  Fields request_;
  Handler handler_ = nullptr;
  bool attempting_ = false;
  std::string giveUpAt_;
  /// Input that is to be delivered, one event of its own for each.
  std::deque<std::function<void()>> actions_;
};

}  // namespace robot
