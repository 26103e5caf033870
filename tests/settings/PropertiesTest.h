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
  /// The user types `text` into the box that `click` opens; empty is Cancel.
  void answer(const std::string& text, const std::function<void()>& click) {
    world.dialogs.textAnswers.push_back(text);
    click();
  }

  FakePropertiesView properties;
};

}  // namespace pulsemod::test
