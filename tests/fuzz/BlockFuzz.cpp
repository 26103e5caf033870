// Binary blocks of profile values.
#include <bit>
#include <cmath>
#include <string>

#include "FuzzInput.h"
#include "profile/ProfileReader.h"

namespace pulsemod::fuzz {
namespace {

std::string blockData(const DecodedProfile& profile) {
  std::string data;
  for (std::size_t index = 0; index < profile.count; ++index) {
    const auto bits = std::bit_cast<std::uint32_t>(profile.values[index]);
    for (const unsigned shift : {16U, 24U, 8U, 0U})
      data += static_cast<char>(bits >> shift & 0xFFU);
  }
  return data;
}

bool isSame(const std::optional<DecodedProfile>& decoded, const DecodedProfile& profile) {
  return decoded && decoded->count == profile.count && decoded->values == profile.values;
}

void checkDecoded(const DecodedProfile& profile) {
  require(profile.count >= 1 && profile.count <= tracePoints, "a block has 1 to 400 values");
  require(profile.statedPoints == 0, "a block states no count");
  for (std::size_t index = 0; index < tracePoints; ++index) {
    require(std::isfinite(profile.values[index]), "the values of a block are finite");
    require(index < profile.count || profile.values[index] == 0, "no value beyond the count");
  }
}

void checkAgain(const DecodedProfile& profile) {
  constexpr std::size_t shortestReply = 100;
  const std::string data = blockData(profile);
  const std::string length = std::to_string(data.size());
  const std::string block = "#" + std::to_string(length.size()) + length + data;
  if (block.size() < shortestReply) return;
  for (const char* end : {"", "\r", "\n"}) {
    require(isSame(decodeBlockProfile(block + end), profile), "a block is decoded as it was made");
  }
  require(!decodeBlockProfile(block + "\r\n"), "nothing but one line end follows a block");
  require(!decodeBlockProfile(std::string_view(block).substr(0, block.size() - 1)),
          "a block that is cut is refused");
}

/// The data stands behind a head of the length's own length, counted from the reply's first byte.
void checkPlace(std::string_view reply, const DecodedProfile& profile) {
  const std::size_t hash = reply.find('#');
  require(hash != std::string_view::npos, "a block has a hash");
  const auto digits = static_cast<std::size_t>(reply[hash + 1] - '0');
  require(reply.substr(2 + digits).starts_with(blockData(profile)), "the data is what came");
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod;
  using namespace pulsemod::fuzz;
  const std::string_view reply = FuzzInput(data, size).rest();
  const auto profile = decodeBlockProfile(reply);
  if (!profile) return 0;
  checkDecoded(*profile);
  checkPlace(reply, *profile);
  checkAgain(*profile);
  return 0;
}
