#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pulsemod::test {

/// The lines of a file, or those of its beginning, without their ends.
using FileLines = std::vector<std::string>;

inline std::string fileOf(const FileLines& lines, const std::string& lineEnd = "\r\n") {
  std::string text;
  for (const std::string& line : lines) text += line + lineEnd;
  return text;
}

/// Each line must have its end.
inline FileLines linesOf(const std::string& text, const std::string& lineEnd = "\r\n") {
  FileLines lines;
  std::size_t start = 0;
  for (std::size_t end = text.find(lineEnd); end != std::string::npos;
       end = text.find(lineEnd, start)) {
    lines.push_back(text.substr(start, end - start));
    start = end + lineEnd.size();
  }
  EXPECT_EQ(start, text.size());
  return lines;
}

}  // namespace pulsemod::test
