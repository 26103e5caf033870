// Profiles as text.
#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "FuzzInput.h"
#include "profile/ProfileReader.h"

namespace pulsemod::fuzz {
namespace {

/// A last field that is not closed by a comma is closed by the reply's last character.
std::size_t valuesIn(std::string_view reply) {
  const std::size_t first = reply.find(',', 7) + 1;
  if (first == reply.size()) return 0;
  const std::string_view values = reply.substr(first, reply.size() - first - 1);
  return 1 + static_cast<std::size_t>(std::count(values.begin(), values.end(), ','));
}

void append(std::string& text, float value) {
  std::array<char, 32> buffer{};
  text.append(buffer.data(), std::to_chars(buffer.data(), buffer.end(), value).ptr);
}

std::string textOf(const DecodedProfile& profile) {
  std::string text = "PMPO 1," + std::to_string(profile.statedPoints) + ",";
  for (std::size_t index = 0; index < profile.count; ++index) {
    if (index > 0) text += ',';
    append(text, profile.values[index]);
  }
  return text + (profile.count == 0 ? "" : "\r");
}

void checkDecoded(std::string_view reply, const DecodedProfile& profile) {
  require(reply.find("PMPO") != std::string_view::npos, "a profile has its mnemonic");
  require(profile.statedPoints >= 1 && profile.statedPoints <= 400, "1 to 400 points are stated");
  require(profile.count <= tracePoints, "a profile has at most 400 values");
  require(profile.count == valuesIn(reply), "each field is a value");
  for (std::size_t index = 0; index < tracePoints; ++index) {
    require(std::isfinite(profile.values[index]), "the values of a profile are finite");
    require(index < profile.count || profile.values[index] == 0, "no value beyond the count");
  }
}

void checkAgain(const DecodedProfile& profile) {
  const auto again = decodeTextProfile(textOf(profile));
  require(again && again->count == profile.count && again->values == profile.values &&
              again->statedPoints == profile.statedPoints,
          "a profile is decoded as it was written");
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod;
  using namespace pulsemod::fuzz;
  const std::string_view reply = FuzzInput(data, size).rest();
  const auto profile = decodeTextProfile(reply);
  if (!profile) return 0;
  checkDecoded(reply, *profile);
  checkAgain(*profile);
  return 0;
}
