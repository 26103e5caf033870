#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "ccdf/CCDFState.h"
#include "support/FakeCCDFView.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {

using Calls = std::vector<std::string>;
using Boxes = std::vector<std::string>;

/// An outside world with a CCDF window, and a meter at GPIB address 13. The axis goes from -30 to 0
/// dBm in 200 points; the meter's cursor stands at -15 dBm, in the middle.
class CCDFTest : public ::testing::Test {
 protected:
  CCDFTest() {
    world.clock.seconds = 0;  // where the steps of the clock are fine
    CCDF.StartPower = -30;
    CCDF.StopPower = 0;
    world.meter.replies = {
        {"TTFRO 1", "TTFRO 1,3,50.5,10.25,1.5"},
        {"TTPST? 1", "TTPST 1,-30"},
        {"TTPSP? 1", "TTPSP 1,0"},
        {"TTMKS? 1", "TTMKS 1,OFF"},
        {"TTMKRO 1", "TTMKRO 1,12.5,-15"},
        {"TTMKPOS? 1", "TTMKPOS 1,-15,12.5"},
        {"TTSRC? 1", "TTSRC 1,CHANNEL"},
    };
  }

  /// The window as it is with the cursor at -20 dBm.
  void showCursorOn() {
    CCDF.CursorOn = True16;
    CCDF.CursorPower = -20;
    CCDF.CursorPercent = 5;
    CCDF.CursorX = 2.0F * 200 / 6;
    view.cursorIsShown = true;
  }

  /// The meter takes over whatever source it is told.
  void obeySource(const std::string& message) {
    for (const char* word : {"GATE", "MARKER", "CHANNEL"}) {
      if (message == std::string("TTSRC 1,") + word) {
        world.meter.replies["TTSRC? 1"] = std::string("TTSRC 1,") + word;
      }
    }
  }

  /// `event` happens once, while the reply to `message` is under way.
  void duringReplyTo(const std::string& message, std::function<void()> event) {
    world.meter.onMessage = [this, message,
                             waiting = std::move(event)](const std::string& received) mutable {
      if (received == message && waiting) world.events.post(std::exchange(waiting, nullptr));
    };
  }

  /// `event` happens once, while the serial line still holds the message that follows `message` and
  /// its reply.
  void whileTheNextMessageLeaves(const std::string& message, std::function<void()> event) {
    world.events.always = [this, message, waiting = std::move(event)]() mutable {
      const bool next = !received().empty() && received().back() == message &&
                        world.serial.incoming.empty() && world.serial.outputCount() > 0;
      if (next && waiting) std::exchange(waiting, nullptr)();
    };
  }

  void answer(const std::string& text) { world.dialogs.textAnswers.push_back(text); }

  Transcript& received() { return world.meter.received; }
  const Transcript& received() const { return world.meter.received; }

  int timesReceived(const std::string& message) const {
    return static_cast<int>(std::count(received().begin(), received().end(), message));
  }

  /// "title|text|icon" of each message box.
  Boxes shownBoxes() const {
    constexpr std::array<const char*, 4> icons = {"none", "information", "exclamation", "question"};
    Boxes boxes;
    for (const ShownBox& box : world.dialogs.messages) {
      boxes.push_back(box.title + "|" + box.text + "|" + icons[static_cast<std::size_t>(box.icon)]);
    }
    return boxes;
  }

  FakeWorld world;
  FakeCCDFView view;
};

}  // namespace pulsemod::test
