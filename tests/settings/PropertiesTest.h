#pragma once

#include <functional>
#include <string>

#include "link/Conversation.h"
#include "profile/ProfileTest.h"
#include "settings/PropertyEdits.h"
#include "support/FakePropertiesView.h"

namespace pulsemod::test {

/// A profile window with its properties dialog, and a meter at GPIB address 13.
class PropertiesTest : public ProfileTest {
 protected:
  static GateSettings& gate(int number) {
    return Settings.Gates[static_cast<std::size_t>(number - 1)];
  }
  static MarkerSettings& marker(int number) {
    return Settings.Markers[static_cast<std::size_t>(number - 1)];
  }

  /// The user types `text` into the box that `click` opens; empty is Cancel.
  void answer(const std::string& text, const std::function<void()>& click) {
    world.dialogs.textAnswers.push_back(text);
    click();
  }

  FakePropertiesView properties;
};

}  // namespace pulsemod::test
