#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

/// How replies are to be read, written down a second time. Nothing here uses the program's own
/// routines; the C library's number reading runs in the C locale.

namespace pulsemod::test {

inline std::string stripped(const std::string& text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  const auto padding = [&](std::size_t at) {
    return text[at] == ' ' || text[at] == '\t' || text[at] == '\r' || text[at] == '\n';
  };
  while (begin < end && padding(begin)) ++begin;
  while (end > begin && padding(end - 1)) --end;
  return text.substr(begin, end - begin);
}

/// What stands between the commas `index` and `index` + 1 of the arguments.
inline std::string argument(const std::string& reply, int index) {
  std::size_t at = 0;
  if (const auto tab = reply.find('\t'); tab != std::string::npos) {
    at = tab + 1;
  } else if (const auto blank = reply.find(' '); blank != std::string::npos) {
    at = blank + 1;
  }
  int commas = 0;
  std::string field;
  for (; at < reply.size(); ++at) {
    if (reply[at] == ',') {
      if (++commas > index) break;
    } else if (commas == index) {
      field += reply[at];
    }
  }
  return stripped(field);
}

/// The characters of the decimal number at the head of a text: sign, digits, point, exponent.
inline std::string numberAtHead(const std::string& text, std::size_t at) {
  std::string number;
  const auto digits = [&] {
    std::string run;
    while (at + run.size() < text.size() && text[at + run.size()] >= '0' &&
           text[at + run.size()] <= '9') {
      run += text[at + run.size()];
    }
    at += run.size();
    return run;
  };
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) number = text[at++];
  const std::string whole = digits();
  std::string fraction;
  bool point = false;
  if (at < text.size() && text[at] == '.') {
    ++at;
    point = true;
    fraction = digits();
  }
  if (whole.empty() && fraction.empty()) return {};
  number += whole + (point ? "." + fraction : "");
  if (at < text.size() && (text[at] == 'E' || text[at] == 'e')) {
    ++at;
    std::string exponent = "E";
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) exponent += text[at++];
    const std::string run = digits();
    if (!run.empty()) number += exponent + run;
  }
  return number;
}

inline double numberOf(const std::string& text) {
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  const std::string number = numberAtHead(text, at);
  return number.empty() ? 0 : std::strtod(number.c_str(), nullptr);
}

inline std::optional<float> singleOf(const std::string& text) {
  const auto single = static_cast<float>(numberOf(text));
  return std::isinf(single) ? std::nullopt : std::optional(single);
}

/// Nothing unless the whole text is the number.
inline std::optional<float> strictSingleOf(const std::string& text) {
  const std::string number = numberAtHead(text, 0);
  const std::size_t consumed = number.size();
  if (number.empty() || consumed != text.size()) return std::nullopt;
  return singleOf(text);
}

inline std::optional<std::int16_t> wholeOf(const std::string& text) {
  const double rounded = std::nearbyint(numberOf(text));
  if (!(rounded >= -32768 && rounded <= 32767)) return std::nullopt;
  return static_cast<std::int16_t>(rounded);
}

inline std::string shortText(float value) {
  if (value == 0) return "0";  // minus zero too
  char buffer[40];
  const int length = std::snprintf(buffer, sizeof buffer, "%.7g", static_cast<double>(value));
  std::string text(buffer, static_cast<std::size_t>(length));
  if (const auto e = text.find('e'); e != std::string::npos) text[e] = 'E';
  return text;
}

inline bool holds(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

}  // namespace pulsemod::test
