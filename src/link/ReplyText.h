#pragma once

#include <string>
#include <string_view>

namespace pulsemod {

/// The field of a reply after its `field`-th comma, trimmed of blanks, tabs and line ends. Counting
/// starts after the first tab anywhere in the reply, or without one after the first blank, or
/// without either at its start. So field 0 of "TRCAPT 1,PMOD,0.0046" is the channel "1", field 2
/// the value. A field that is not there is empty.
std::string SplitReply(std::string_view reply, int field);

/// `text` without the blanks, tabs and line ends at both ends. Replies over RS232 keep their
/// carriage return; this is where it goes.
std::string_view trimmed(std::string_view text);

}  // namespace pulsemod
