#pragma once

#include <span>
#include <string>

namespace pulsemod {

/// A kind of file that a dialog offers: "PNG picture" with the suffix "png".
struct FileKind {
  std::string name;
  std::string suffix;
};

/// The system's file dialogs, for plain text files ("*.txt") unless kinds are given. Paths are
/// UTF-8. Modal, as the boxes of platform/Dialogs.h.
class FileDialogs {
 public:
  virtual ~FileDialogs() = default;

  /// The file to read, as a path; empty when the user cancelled.
  virtual std::string askOpenFile(const std::string& title) = 0;

  /// The file to write, as a path; empty when the user cancelled. A typed name without a suffix
  /// gets ".txt"; the dialog has asked before an existing file is replaced.
  virtual std::string askSaveFile(const std::string& title) = 0;

  /// The same for a file of one of several kinds, the first of which is offered first. A typed name
  /// without the suffix of any of them gets that of the kind that the user chose.
  virtual std::string askSaveFileOfKind(const std::string& title,
                                        std::span<const FileKind> kinds) = 0;
};

}  // namespace pulsemod
