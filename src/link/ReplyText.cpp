#include "link/ReplyText.h"

#include <algorithm>

namespace pulsemod {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view padding = " \t\r\n";
  const std::size_t first = text.find_first_not_of(padding);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(padding) - first + 1);
}

std::string SplitReply(std::string_view reply, int field) {
  std::size_t separator = reply.find('\t');
  if (separator == std::string_view::npos) separator = reply.find(' ');
  std::string_view rest = separator == std::string_view::npos ? reply : reply.substr(separator + 1);
  for (int comma = 0; comma < field; ++comma) {
    const std::size_t position = rest.find(',');
    if (position == std::string_view::npos) return {};
    rest.remove_prefix(position + 1);
  }
  return std::string(trimmed(rest.substr(0, rest.find(','))));
}

bool walkClosedFields(std::string_view text, const std::function<bool(std::string_view)>& take) {
  while (!text.empty()) {
    const std::size_t fieldEnd = std::min(text.find(','), text.size() - 1);
    if (!take(text.substr(0, fieldEnd))) return false;
    text.remove_prefix(fieldEnd + 1);
  }
  return true;
}

}  // namespace pulsemod
