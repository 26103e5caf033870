#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/FakeWorld.h"

namespace pulsemod::test {

using Boxes = std::vector<std::string>;

/// An outside world with a meter at GPIB address 13.
class WorldTest : public ::testing::Test {
 protected:
  /// `event` happens once, while the reply to `message` is under way.
  void duringReplyTo(const std::string& message, std::function<void()> event) {
    world.meter.onMessage = [this, message,
                             waiting = std::move(event)](const std::string& received) mutable {
      if (received == message && waiting) world.events.post(std::exchange(waiting, nullptr));
    };
  }

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
};

}  // namespace pulsemod::test
