#pragma once

#include "platform/FileDialogs.h"

namespace pulsemod {

/// The system's file dialogs, over the window that is active. Object names: `openFileDialog`,
/// `saveFileDialog`.
class QtFileDialogs : public FileDialogs {
 public:
  std::string askOpenFile(const std::string& title) override;
  std::string askSaveFile(const std::string& title) override;
};

}  // namespace pulsemod
