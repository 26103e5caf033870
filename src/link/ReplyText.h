#pragma once

#include <functional>
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

/// Calls `take` with each field of a list of values, in order, until it returns false; false then.
/// A comma closes a field, and so does the very last character of `text`, whatever it is: it is the
/// line end that the link has left, and belongs to no field.
bool walkClosedFields(std::string_view text, const std::function<bool(std::string_view)>& take);

}  // namespace pulsemod
