#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text files of the program: read whole and line by line, written whole or not at all.

namespace pulsemod {

/// The whole file. A `Fault` that says why it cannot be read, with its name.
std::string readTextFile(const std::string& path);

/// Makes `text` the content of the file. A `Fault` that says why it cannot be written, with its
/// name; the old file is then as it was.
void writeFile(const std::string& path, std::string_view text);

/// The lines of a text one after the other, with either line end (LF, CR LF) taken off. The last
/// line needs none. The text must outlive this.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : rest_(text) {}

  bool atEnd() const { return rest_.empty(); }
  /// At the end of the text: a `Fault`.
  std::string_view next();
  /// The same, but an empty line at the end of the text.
  std::string_view nextOrEmpty() { return atEnd() ? std::string_view() : next(); }
  /// Of the line that was read last, from 1.
  std::size_t lineNumber() const { return lineNumber_; }

 private:
  std::string_view rest_;
  std::size_t lineNumber_ = 0;
};

/// `Fault`s about the line that `reader` has read last name it by this: "line 5".
std::string lineName(const LineReader& reader);

/// The number at the start of a text (link/NumberText.h), from a file: one that does not fit is a
/// `Fault` that names the line.
float fileSingle(const LineReader& reader, std::string_view text);

/// The value of a line that begins with a name and a tab, up to a comma; empty when it has no tab.
std::string namedValue(std::string_view line);

/// Point i of a trace or curve in a file: two numbers with blanks or tabs between them. The first
/// is of no use and need only be there. A line without two fields is a `Fault`.
float secondNumber(const LineReader& reader, std::string_view line);

}  // namespace pulsemod
