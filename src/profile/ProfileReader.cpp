#include "profile/ProfileReader.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <string>

#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "link/Session.h"
#include "profile/ProfileParameters.h"

namespace pulsemod {

namespace {

constexpr std::size_t bytesPerValue = 4;

void store(const DecodedProfile& profile) {
  std::copy_n(profile.values.begin(), profile.count, ProfileTrace.begin());
}

bool ReadProfileText() {
  std::string reply;
  if (!QueryMeterWhenReady("TR1 " + ChannelText(), reply)) return false;
  if (!QueryMeter(std::string(profileMnemonic) + " " + ChannelText(), reply)) EndSession();
  const auto profile = decodeTextProfile(reply);
  if (!profile) return false;
  Settings.DisplayPoints = profile->statedPoints;
  store(*profile);
  return true;
}

bool ReadProfileBinary() {
  std::string reply;
  if (!QueryMeter("TR1 " + ChannelText(), reply)) return false;
  if (!QueryMeter("PMPBO " + ChannelText(), reply)) return false;
  const auto profile = decodeBlockProfile(reply);
  if (!profile) return false;
  store(*profile);
  return true;
}

/// Appends a field's value; false when there is no room or the value does not fit.
bool appendValue(std::string_view field, DecodedProfile& profile) {
  const auto value = leadingSingle(field);
  if (!value || profile.count == profile.values.size()) return false;
  profile.values[profile.count++] = *value;
  return true;
}

struct BlockHead {
  /// Digits of the byte count.
  std::size_t digits = 0;
  std::size_t dataBytes = 0;
  /// Length of the reply from its start to the end of the block.
  std::size_t end = 0;
};

std::optional<BlockHead> decodeBlockHead(std::string_view reply) {
  const std::size_t hash = reply.find('#');
  if (hash == std::string_view::npos || hash + 1 >= reply.size()) return std::nullopt;
  const char digitsText = reply[hash + 1];
  if (digitsText < '1' || digitsText > '9') return std::nullopt;
  BlockHead head;
  head.digits = static_cast<std::size_t>(digitsText - '0');
  const std::string_view lengthText = reply.substr(hash + 2, head.digits);
  const char* const lengthEnd = lengthText.data() + lengthText.size();
  const auto [parsed, error] = std::from_chars(lengthText.data(), lengthEnd, head.dataBytes);
  if (lengthText.size() != head.digits || error != std::errc{} || parsed != lengthEnd) {
    return std::nullopt;
  }
  head.end = hash + 2 + head.digits + head.dataBytes;
  return head;
}

/// What may follow a block: the line end that the link has left of the terminator.
bool isLineEnd(std::string_view text) { return text.empty() || text == "\r" || text == "\n"; }

float decodeValue(std::string_view bytes) {
  const auto byte = [bytes](std::size_t index) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[index]));
  };
  return std::bit_cast<float>(byte(1) << 24U | byte(0) << 16U | byte(2) << 8U | byte(3));
}

}  // namespace

std::optional<DecodedProfile> decodeTextProfile(std::string_view reply) {
  if (reply.find(profileMnemonic) == std::string_view::npos) return std::nullopt;
  if (reply.size() <= profileHeadLength) return std::nullopt;
  std::string_view rest = reply.substr(profileHeadLength);
  const std::size_t countEnd = rest.find(',');
  if (countEnd == std::string_view::npos) return std::nullopt;
  const auto points = leadingWhole<std::int16_t>(rest.substr(0, countEnd));
  if (!points || *points < 1 || *points > static_cast<int>(tracePoints)) return std::nullopt;
  DecodedProfile profile;
  profile.statedPoints = *points;
  rest.remove_prefix(countEnd + 1);
  const auto append = [&profile](std::string_view field) { return appendValue(field, profile); };
  if (!walkClosedFields(rest, append)) return std::nullopt;
  return profile;
}

std::optional<DecodedProfile> decodeBlockProfile(std::string_view reply) {
  constexpr std::size_t shortestReply = 100;
  if (reply.size() < shortestReply) return std::nullopt;
  const auto head = decodeBlockHead(reply);
  if (!head || head->dataBytes == 0 || head->dataBytes % bytesPerValue != 0 ||
      head->dataBytes > tracePoints * bytesPerValue || head->end > reply.size() ||
      !isLineEnd(reply.substr(head->end))) {
    return std::nullopt;
  }
  const std::string_view data = reply.substr(2 + head->digits, head->dataBytes);
  DecodedProfile profile;
  while (profile.count < head->dataBytes / bytesPerValue) {
    const float value = decodeValue(data.substr(profile.count * bytesPerValue, bytesPerValue));
    if (!std::isfinite(value)) return std::nullopt;
    profile.values[profile.count++] = value;
  }
  return profile;
}

bool ReadProfile() {
  return LinkSettings.commsType == commsTypeRS232 ? ReadProfileText() : ReadProfileBinary();
}

}  // namespace pulsemod
