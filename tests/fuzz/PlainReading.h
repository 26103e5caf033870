#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the program reads, read a second time in the plainest way: the targets compare the two.

namespace pulsemod::fuzz {

/// What `strtod` makes of the start of a text, kept from the words and hexadecimal numbers that it
/// knows as well.
inline double libraryNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  const std::size_t end = text.find_first_not_of("+-.0123456789eE");
  return std::strtod(std::string(text.substr(0, end)).c_str(), nullptr);
}

/// Without their line ends.
inline std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  for (const char character : text) {
    if (lines.empty() || lines.back().ends_with('\n')) lines.emplace_back();
    lines.back() += character;
  }
  for (std::string& line : lines) {
    if (line.ends_with('\n')) line.pop_back();
    if (line.ends_with('\r')) line.pop_back();
  }
  return lines;
}

/// A line of a file by its number, the first being 1; a line that is not there is empty.
inline std::string lineAt(const std::vector<std::string>& lines, std::size_t number) {
  return number <= lines.size() ? lines[number - 1] : std::string();
}

/// The number behind the tab of a line such as "Graph Points"; 0 without one.
inline double numberBehindTab(const std::string& line) {
  const std::size_t tab = line.find('\t');
  if (tab == std::string::npos) return 0;
  std::string value = line.substr(tab + 1);
  value.erase(0, std::min(value.find_first_not_of(" \t\r"), value.size()));
  return libraryNumber(value);
}

/// Nothing for a number that no single can hold.
inline std::optional<float> singleOf(double number) {
  const auto single = static_cast<float>(number);
  return std::isfinite(single) ? std::optional(single) : std::nullopt;
}

/// The second number of the lines from `first` on; nothing when one of them has none.
inline std::optional<std::vector<float>> secondNumbers(const std::vector<std::string>& lines,
                                                       std::size_t first, std::size_t count) {
  std::vector<float> numbers;
  for (std::size_t number = first; number < first + count; ++number) {
    const std::string line = lineAt(lines, number);
    const std::size_t start = line.find_first_not_of(" \t\r");
    const std::size_t gap = line.find_first_of(" \t", std::min(start, line.size()));
    const std::size_t second = line.find_first_not_of(" \t", std::min(gap, line.size()));
    // A line end in the middle is no blank, at the end it is none either.
    const bool some =
        second != std::string::npos && line.find_first_not_of(" \t\r", second) != std::string::npos;
    const auto value = some ? singleOf(libraryNumber(line.substr(second))) : std::nullopt;
    if (!value) return std::nullopt;
    numbers.push_back(*value);
  }
  return numbers;
}

}  // namespace pulsemod::fuzz
