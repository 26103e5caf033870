#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Transcript.h"

namespace endtoend {

/// Gate and fence edges by the names that the program shows them under: "Gate 1 Start",
/// "Fence 2 Stop".
using EdgeTimes = std::map<std::string, double>;

/// What the label at the pointer says.
struct EdgeLabel {
  bool dragged = false;
  std::string edge;
  std::string time;
};
EdgeLabel readEdgeLabel(std::string caption);

/// The edge and the number's text of a command that sets an edge's time; nothing for any other.
std::optional<std::pair<std::string, std::string>> edgeCommand(const std::string& message);

/// The time that each edge was set to last.
EdgeTimes lastEdgeCommands(const std::vector<std::string>& messages);

/// The value of a number's text.
double numberOf(const std::string& text);

/// A time text of the program in seconds. Times of a second or more are not told apart from
/// milliseconds.
double secondsOf(const std::string& timeText);

/// The program would show `seconds`, a number of seven digits, as `timeText`.
bool showsTime(const std::string& timeText, double seconds);

}  // namespace endtoend
