#include "link/CommsSettings.h"

#include <charconv>
#include <limits>
#include <string>

#include "link/NumberText.h"
#include "platform/Services.h"

namespace pulsemod {

CommsSettings EditedComms;

namespace {

constexpr auto section = "Comms";
constexpr auto keyCommsType = "CommsType";
constexpr auto keyGpibAddress = "GPIBAddress";
constexpr auto keyRS232Baud = "RS232Baud";
constexpr auto keyRS232Port = "RS232Port";

/// The stored number, `missing` when there is no such key, 0 when it does not fit.
std::int32_t storedNumber(const char* key, std::int32_t missing) {
  const auto text = services().settings.read(section, key);
  if (!text) return missing;
  return leadingWhole<std::int32_t>(*text).value_or(0);
}

std::int16_t narrowAddress(std::int32_t number) {
  using Limits = std::numeric_limits<std::int16_t>;
  const bool fits = number >= Limits::min() && number <= Limits::max();
  return fits ? static_cast<std::int16_t>(number) : std::int16_t{0};
}

}  // namespace

bool ReadCommsSettings() {
  const std::int32_t commsType = storedNumber(keyCommsType, 0);
  if (commsType == 0) return false;
  const CommsSettings defaults;
  EditedComms.commsType = commsType;
  EditedComms.gpibAddress = narrowAddress(storedNumber(keyGpibAddress, defaults.gpibAddress));
  EditedComms.rs232Baud = storedNumber(keyRS232Baud, defaults.rs232Baud);
  EditedComms.rs232Port = storedNumber(keyRS232Port, defaults.rs232Port);
  if (EditedComms.rs232Port == 0) EditedComms.rs232Port = 1;
  return true;
}

bool SaveCommsSettings() {
  constexpr int lowestAddress = 1;
  constexpr int highestAddress = 30;
  if (EditedComms.gpibAddress < lowestAddress || EditedComms.gpibAddress > highestAddress) {
    services().dialogs.showMessage("Illegal GPIB Address, only 1 to 30 allowed.", "GPIB Address",
                                   MessageIcon::information);
    return false;
  }
  if (EditedComms.rs232Port == 0) EditedComms.rs232Port = 1;
  SettingsStore& store = services().settings;
  store.write(section, keyCommsType, std::to_string(EditedComms.commsType));
  store.write(section, keyGpibAddress, std::to_string(EditedComms.gpibAddress));
  store.write(section, keyRS232Baud, std::to_string(EditedComms.rs232Baud));
  store.write(section, keyRS232Port, std::to_string(EditedComms.rs232Port));
  if (store.flush()) return true;
  services().dialogs.showMessage("The communications settings could not be saved.", "Pelmora",
                                 MessageIcon::exclamation, store.failureReason());
  return false;
}

void setGpibAddressText(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  std::int16_t address = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), address);
  const bool whole = error == std::errc{} && end == text.data() + text.size();
  EditedComms.gpibAddress = whole ? address : std::int16_t{0};
}

}  // namespace pulsemod
