#pragma once

#include <cstdint>
#include <string_view>

namespace pulsemod {

inline constexpr std::int32_t commsTypeRS232 = 1;
inline constexpr std::int32_t commsTypeGPIB = 2;

/// How the meter is reached.
struct CommsSettings {
  /// 1 = RS232, 2 = GPIB. Any other value makes every link operation fail.
  std::int32_t commsType = commsTypeGPIB;
  /// GPIB primary address, 1 to 30. 0 stands for a text that was no address.
  std::int16_t gpibAddress = 13;
  /// Serial port 1 to 10 (COM1: to COM10:).
  std::int32_t rs232Port = 1;
  /// Bits a second. The dialog offers 1200 to 57600; any other stored number is tried as it is.
  std::int32_t rs232Baud = 9600;
};

/// The settings that the user edits and that are saved. The link uses a copy that start-up takes
/// (`LinkSettings` of link/MeterLink.h), so that later edits take effect at the next start.
extern CommsSettings EditedComms;

/// Reads the four values from the per-user store: section Comms, keys CommsType, GPIBAddress,
/// RS232Baud, RS232Port. False when the store holds no comms type (missing, no number, or 0); then
/// nothing else is read. A missing value gets its default, a port of 0 becomes 1, an address that
/// is no 16-bit number becomes 0.
bool ReadCommsSettings();

/// Writes the four values to the store and puts them on the disk; true when that was done. An
/// address outside 1 to 30 (whatever the link) shows a message and writes nothing; a store that
/// cannot be written shows the reason. A port of 0 becomes 1 first.
bool SaveCommsSettings();

/// Takes an address as the user types it. Text that is no whole 16-bit number gives the address 0,
/// which is not legal, so that it cannot be saved by mistake.
void setGpibAddressText(std::string_view text);

}  // namespace pulsemod
