#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace endtoend {

/// One line of the simulated meter's transcript.
struct Event {
  double seconds = 0;
  std::string kind;  // "<" a message, ">" a reply, "IFC", "CLEAR", "OFFLINE", ...
  /// Of a message its text, of a reply its bytes as far as they are shown, otherwise the rest of
  /// the line.
  std::string text;
  std::string end;  // of a message: "NL+EOI", "CR", ...
};

using Events = std::vector<Event>;

/// Every whole line of the file; none while it does not exist.
Events readTranscript(const std::string& path);

/// The texts of the messages, in order.
std::vector<std::string> messages(const Events& events);

/// Kinds and messages in one list, for order across both: a message as its text, all else as its
/// kind. Replies are left out.
std::vector<std::string> happenings(const Events& events);

std::size_t countMessages(const Events& events, std::string_view text);
std::size_t countKind(const Events& events, std::string_view kind);

/// Events that a rightly working program never causes, one a line: an interrupted or needless
/// query, a command that the meter refused, a line of the scenario that was not understood.
std::string offences(const Events& events);

}  // namespace endtoend
