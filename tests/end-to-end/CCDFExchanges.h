#pragma once

#include <string>
#include <vector>

namespace endtoend {

/// Reads what the program said to the meter since the CCDF window appeared as a row of whole
/// exchanges: passes of the loop with the requests that they carried out, in their order, and what
/// is said while stopped. Says where an exchange was broken into, or begun and not brought to its
/// end; empty when none was. Channel 1.
std::string brokenCCDFExchanges(const std::vector<std::string>& messages);

}  // namespace endtoend
