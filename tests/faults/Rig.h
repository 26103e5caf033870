#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Faults.h"
#include "Outcome.h"
#include "SimulatedMeter.h"
#include "startup/FakeStartUpView.h"
#include "support/FakeCCDFView.h"
#include "support/FakeProfileView.h"
#include "support/FakePropertiesView.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {

/// The program's subsystems with the simulated meter behind either link, and the faults of one run.
class Rig {
 public:
  Rig(bool serial, const std::vector<std::string>& setup, const Faults& faults);
  Rig(const Rig&) = delete;
  Rig& operator=(const Rig&) = delete;

  /// Runs the workflow and tells what it came to.
  Outcome follow(const std::function<void(Rig&)>& workflow);

  /// From here on nothing is spoilt and no call fails.
  void heal() { faults_ = {}; }

  /// A click or the end of an entry: a fault in it is shown to the user.
  static void act(const std::function<void()>& handler);
  /// The user types `text` into the box that `handler` opens.
  void type(const std::string& text, const std::function<void()>& handler);
  /// The link as it is after a start that went well.
  void connect();
  void start(StartChoice choice);

  FakeWorld world;
  FakeProfileView profile;
  FakeCCDFView ccdf;
  FakePropertiesView properties;
  FakeStartUpView startUp;

  /// Every reply as the meter sent it, with its framing, before anything was done to it.
  std::vector<std::string> replies;
  int gpibCalls = 0;
  int messages = 0;
  /// Events that ran while the program waited for a reply that never came.
  int eventsWhileWaiting = 0;

 private:
  std::optional<std::string> answer(const std::string& message);
  void pass(std::string& wire);
  void onMoment(LineMoment moment);
  bool onIdle();
  Outcome gather() const;

  bool serial_;
  SimulatedMeter meter_;
  Faults faults_;
  std::string wire_;
  bool waited_ = false;
};

}  // namespace pulsemod::test
