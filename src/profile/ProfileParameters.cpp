#include "profile/ProfileParameters.h"

#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"

namespace pulsemod {

void SendParameter(const ProfileParameter& parameter, float value) {
  SendCommand(std::string(parameter.mnemonic) + " " + ChannelText() + "," + parameter.unit + "," +
              numberText(value));
}

// Some commands have a blank after the comma and some have none.
void SelectPulseMode() {
  const std::string channel = ChannelText();
  SendCommand("CHDISPN 1");
  SendCommand("CHACTIV " + channel);
  SendCommand("CHMODE " + channel + ", PMOD");
  SendCommand("CHCFG " + channel + ", " + InputConfigText());
}

bool QueryParameter(const ProfileParameter& parameter, float& value) {
  constexpr int valueField = 2;
  std::string reply;
  const std::string query =
      std::string(parameter.mnemonic) + "? " + ChannelText() + "," + parameter.unit;
  if (!QueryMeter(query, reply)) return false;
  const auto number = leadingSingle(SplitReply(reply, valueField));
  if (!number) return false;
  value = *number;
  return true;
}

void ReadParameter(const ProfileParameter& parameter) {
  QueryParameter(parameter, Settings.*parameter.value);
}

ProfileReadout ReadDisplayPoints() {
  std::string reply;
  if (!QueryMeter(std::string(profileMnemonic) + " " + ChannelText(), reply)) {
    return ProfileReadout::noReply;
  }
  if (reply.find(profileMnemonic) == std::string::npos) return ProfileReadout::notAProfile;
  reply.erase(0, profileHeadLength);
  const std::size_t comma = reply.find(',');
  if (comma == std::string::npos) throw Fault("The meter's profile readout has no point count");
  if (const auto points = leadingWhole<std::int16_t>(reply.substr(0, comma))) {
    Settings.DisplayPoints = *points;
  }
  return ProfileReadout::read;
}

}  // namespace pulsemod
