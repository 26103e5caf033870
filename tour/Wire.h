#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace robot {

/// One line of the conversation between a script and the robot: fields with tabs between them. In a
/// field a backslash stands before n, r, t and itself, so that any text fits in one line.
using Fields = std::vector<std::string>;

/// The line, with its line feed.
std::string encodeLine(const Fields& fields);

/// The fields of a line without its line feed; there is always at least one.
Fields decodeLine(std::string_view line);

/// Sends all of `bytes`; false when the other side has gone.
bool sendAll(int socket, std::string_view bytes);

/// Takes the first whole line out of `received`; false when there is none yet.
bool takeLine(std::string& received, std::string& line);

}  // namespace robot
