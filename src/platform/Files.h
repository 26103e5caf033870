#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pulsemod {

/// Text files on the disk, whole. Paths are UTF-8. Each call returns what went wrong, in words for
/// the user, and an empty text when nothing did.
class Files {
 public:
  virtual ~Files() = default;

  /// Far above the size of any file of this program.
  static constexpr std::size_t largestFile = std::size_t{4} * 1024 * 1024;

  /// Reads a regular file of at most `largestFile` bytes. On failure `content` is as it was.
  virtual std::string read(const std::string& path, std::string& content) = 0;

  /// Makes `content` the file: written under another name beside it, put on the disk, renamed. On
  /// any failure the old file, or its absence, stays as it was. What is there and is no regular
  /// file (a folder, a device) is left alone; a link stays, and the file that it leads to is
  /// replaced.
  virtual std::string replace(const std::string& path, std::string_view content) = 0;
};

/// The line end of text files that other programs of this system read as well.
#ifdef _WIN32
inline constexpr std::string_view platformLineEnd = "\r\n";
#else
inline constexpr std::string_view platformLineEnd = "\n";
#endif

}  // namespace pulsemod
