#pragma once

#include <string>
#include <vector>

namespace endtoend {

/// Reads what the program said to the meter since its main window appeared as a row of whole
/// exchanges: passes of the acquisition, read-backs at a start, edits with their read-backs, gate
/// writes, single commands. Says where an exchange was broken into, or begun and not brought to its
/// end; empty when none was. Channel 1; markers 1 to 3 are on.
std::string brokenExchanges(const std::vector<std::string>& messages);

}  // namespace endtoend
