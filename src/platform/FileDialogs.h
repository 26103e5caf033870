#pragma once

#include <string>

namespace pulsemod {

/// The system's file dialogs, for plain text files ("*.txt").
class FileDialogs {
 public:
  virtual ~FileDialogs() = default;

  /// The file to read, as a path; empty when the user cancelled.
  virtual std::string askOpenFile(const std::string& title) = 0;

  /// The file to write, as a path; empty when the user cancelled. A typed name without a suffix
  /// gets
  /// ".txt"; the dialog has asked before an existing file is replaced.
  virtual std::string askSaveFile(const std::string& title) = 0;
};

}  // namespace pulsemod
