#include "Edges.h"

#include <array>
#include <charconv>
#include <cmath>

namespace endtoend {

namespace {

struct EdgeKind {
  const char* mnemonic;
  const char* owner;
  const char* side;
};
constexpr std::array edgeKinds = {
    EdgeKind{"GPTIMST", "Gate ", " Start"}, EdgeKind{"GPTIMSP", "Gate ", " Stop"},
    EdgeKind{"GPFENST", "Fence ", " Start"}, EdgeKind{"GPFENSP", "Fence ", " Stop"}};

struct Scaled {
  double number;
  const char* unit;
};

/// As the program chooses the unit: a second or more bears "ms" as well.
Scaled scaled(double seconds) {
  if (std::fabs(seconds) >= 1) return {seconds, "ms"};
  if (std::fabs(seconds) >= 1e-3) return {seconds * 1e3, "ms"};
  if (std::fabs(seconds) >= 1e-6) return {seconds * 1e6, "us"};
  return {seconds * 1e9, "ns"};
}

std::string unitOf(const std::string& timeText) {
  const std::size_t begin = timeText.find_first_not_of("-.0123456789E+");
  return begin == std::string::npos ? std::string() : timeText.substr(begin);
}

}  // namespace

double numberOf(const std::string& text) {
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

EdgeLabel readEdgeLabel(std::string caption) {
  EdgeLabel label;
  const std::string mark = "* ";
  label.dragged = caption.starts_with(mark);
  if (label.dragged) caption.erase(0, mark.size());
  const std::size_t blank = caption.rfind(' ');
  if (blank == std::string::npos) return label;
  label.edge = caption.substr(0, blank);
  label.time = caption.substr(blank + 1);
  return label;
}

std::optional<std::pair<std::string, std::string>> edgeCommand(const std::string& message) {
  for (const EdgeKind& kind : edgeKinds) {
    // "GPTIMST 1, 2, 0.0005"
    const std::string head = std::string(kind.mnemonic) + " 1, ";
    if (!message.starts_with(head)) continue;
    const std::size_t comma = message.find(", ", head.size());
    if (comma == std::string::npos) return std::nullopt;
    const std::string gate = message.substr(head.size(), comma - head.size());
    return std::pair(kind.owner + gate + kind.side, message.substr(comma + 2));
  }
  return std::nullopt;
}

EdgeTimes lastEdgeCommands(const std::vector<std::string>& messages) {
  EdgeTimes times;
  for (const std::string& message : messages) {
    if (const auto command = edgeCommand(message))
      times[command->first] = numberOf(command->second);
  }
  return times;
}

double secondsOf(const std::string& timeText) {
  const std::string unit = unitOf(timeText);
  const double factor = unit == "ms" ? 1e-3 : unit == "us" ? 1e-6 : unit == "ns" ? 1e-9 : 1;
  return numberOf(timeText) * factor;
}

bool showsTime(const std::string& timeText, double seconds) {
  if (seconds == 0) return timeText == "0.0s";
  // The text is cut to three decimals, and the number was rounded to seven digits before; at the
  // border of two units the two may differ in the unit.
  constexpr double sevenDigits = 5e-7;
  constexpr double cut = 1.1e-3;
  for (const double nudge : {0.0, -sevenDigits, sevenDigits}) {
    const Scaled expected = scaled(seconds * (1 + nudge));
    const double tolerance = cut + std::fabs(expected.number) * sevenDigits;
    if (unitOf(timeText) == expected.unit &&
        std::fabs(numberOf(timeText) - expected.number) <= tolerance) {
      return true;
    }
  }
  return false;
}

}  // namespace endtoend
