#include "files/TextFile.h"

#include "link/Fault.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "platform/Services.h"

namespace pulsemod {

std::string readTextFile(const std::string& path) {
  std::string text;
  const std::string failure = services().files.read(path, text);
  if (!failure.empty()) throw Fault(path + " cannot be read: " + failure);
  return text;
}

void writeFile(const std::string& path, std::string_view text) {
  const std::string failure = services().files.replace(path, text);
  if (!failure.empty()) throw Fault(path + " cannot be written: " + failure);
}

std::string_view LineReader::next() {
  if (atEnd()) {
    throw Fault("Input past end of file: it has only " + std::to_string(lineNumber_) + " lines");
  }
  ++lineNumber_;
  const std::size_t end = rest_.find('\n');
  std::string_view line = rest_.substr(0, end);
  rest_ = end == std::string_view::npos ? std::string_view() : rest_.substr(end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::string lineName(const LineReader& reader) {
  return "line " + std::to_string(reader.lineNumber());
}

float fileSingle(const LineReader& reader, std::string_view text) {
  const auto number = leadingSingle(text);
  if (!number) throw Fault("Overflow: the number in " + lineName(reader) + " does not fit");
  return *number;
}

std::string namedValue(std::string_view line) {
  // A line of another kind of file may be " 3 ", which is no value of this kind.
  return line.find('\t') == std::string_view::npos ? std::string() : SplitReply(line, 0);
}

float secondNumber(const LineReader& reader, std::string_view line) {
  constexpr auto separators = " \t";
  const std::string_view fields = trimmed(line);
  const std::size_t firstEnd = fields.find_first_of(separators);
  if (firstEnd == std::string_view::npos) {
    throw Fault("There are no two numbers in " + lineName(reader) + " of the file");
  }
  return fileSingle(reader, fields.substr(fields.find_first_not_of(separators, firstEnd)));
}

}  // namespace pulsemod
