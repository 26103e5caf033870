#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "ccdf/CCDFState.h"
#include "support/FakeCCDFView.h"
#include "support/WorldTest.h"

namespace pulsemod::test {

using Calls = std::vector<std::string>;

/// An outside world with a CCDF window, and a meter at GPIB address 13. The axis goes from -30 to 0
/// dBm in 200 points; the meter's cursor stands at -15 dBm, in the middle.
class CCDFTest : public WorldTest {
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

  FakeCCDFView view;
};

}  // namespace pulsemod::test
