#pragma once

#include "platform/Dialogs.h"

namespace pulsemod {

/// Message and input boxes of the toolkit, over the window that is active. All texts are plain
/// text, and "\r\n" in them is one line break. Of a text of more than 600 characters or 30 lines
/// only the beginning and the end are shown. Object names: `messageBox`, `questionBox`, `inputBox`.
class QtDialogs : public Dialogs {
 public:
  void showMessage(const std::string& text, const std::string& title, MessageIcon icon,
                   const std::string& details) override;
  bool askYesNo(const std::string& text, const std::string& title, MessageIcon icon) override;
  std::string askText(const std::string& prompt, const std::string& title,
                      const std::string& defaultText) override;
};

}  // namespace pulsemod
