#include "startup/MeterModel.h"

#include "link/ReplyText.h"

namespace pulsemod {

std::int32_t MeterModel = 0;
std::string MeterIdentity;

std::string shownIdentity(std::string_view identity) {
  constexpr std::size_t most = 80;
  std::string shown;
  for (const char letter : identity) shown += letter >= ' ' && letter <= '~' ? letter : ' ';
  return std::string(trimmed(std::string_view(shown).substr(0, most)));
}

std::int32_t modelOfIdentity(std::string_view identity) {
  struct Model {
    std::string_view name;
    std::int32_t code;
  };
  constexpr Model models[] = {
      {"QX7104", 2}, {"QX7105", 1}, {"QX7204", 3}, {"QX7205", 4}, {"QX7205A", 5},
  };
  std::int32_t code = 0;
  for (const Model& model : models) {
    if (identity.find(model.name) != std::string_view::npos) code = model.code;
  }
  return code;
}

}  // namespace pulsemod
