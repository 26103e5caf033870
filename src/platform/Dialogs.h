#pragma once

#include <string>

namespace pulsemod {

enum class MessageIcon { none, information, exclamation, question };

/// Modal boxes. Each call returns when the user has answered; the acquisition loop, if it is on the
/// stack below, stands still meanwhile.
class Dialogs {
 public:
  virtual ~Dialogs() = default;

  /// A message with an OK button. `details` stands under the text in smaller type; empty for none.
  virtual void showMessage(const std::string& text, const std::string& title, MessageIcon icon,
                           const std::string& details = {}) = 0;

  /// A question with Yes and No; true for Yes. Closing the box is No.
  virtual bool askYesNo(const std::string& text, const std::string& title, MessageIcon icon) = 0;

  /// A line of text; empty when the user cancelled or cleared it.
  virtual std::string askText(const std::string& prompt, const std::string& title,
                              const std::string& defaultText) = 0;
};

}  // namespace pulsemod
