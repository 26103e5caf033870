#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "startup/StartUp.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {

/// The windows of the start, with the user's answers. Without an answer the question is closed.
class FakeStartUpView : public StartUpView {
 public:
  void showCommsOptions() override {
    shown.emplace_back("comms");
    if (onComms) onComms();
  }
  StartChoice askHowToBegin() override {
    shown.emplace_back("question");
    if (answers.empty()) return StartChoice::exitProgram;
    const StartChoice answer = answers.front();
    answers.pop_front();
    return answer;
  }
  void showMainWindow(const std::string& title) override {
    shown.push_back("main \"" + title + "\"");
    if (onMainWindow) onMainWindow();
  }
  void prepareCCDFWindow() override {
    shown.emplace_back("ccdf is built");
    if (onCCDFWindow) onCCDFWindow();
  }
  void showCCDFWindow(const std::string& title) override {
    shown.push_back("ccdf \"" + title + "\"");
    if (onCCDFWindow) onCCDFWindow();
  }

  std::deque<StartChoice> answers;
  std::function<void()> onComms;
  std::function<void()> onMainWindow;
  /// When it is built, and when it is shown.
  std::function<void()> onCCDFWindow;
  /// The windows in the order in which they were shown.
  std::vector<std::string> shown;
};

inline void storeComms(FakeWorld& world, const std::string& type) {
  world.store.values[{"Comms", "CommsType"}] = type;
}

}  // namespace pulsemod::test
