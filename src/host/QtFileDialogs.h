#pragma once

#include "platform/FileDialogs.h"

namespace pulsemod {

/// The system's file dialogs, over the window that is active. Object names: `openFileDialog`,
/// `saveFileDialog`, and `questionBox` for the question whether to replace a file whose name was
/// completed.
class QtFileDialogs : public FileDialogs {
 public:
  std::string askOpenFile(const std::string& title) override;
  std::string askSaveFile(const std::string& title) override;
  std::string askSaveFileOfKind(const std::string& title, std::span<const FileKind> kinds) override;
};

}  // namespace pulsemod
