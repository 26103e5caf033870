#pragma once

#include <functional>
#include <optional>
#include <string>

/// Which device a numbered serial port (COM1: to COM10:) stands for. On Windows port n is COMn.
/// Elsewhere it is the first that is there of
///  1. the device that the link `ports/com<n>` in the user's configuration folder of the program
///     points to (the link decides, even when its device is not plugged in),
///  2. /dev/ttyS<n-1>, if a real port is behind it,
///  3. /dev/ttyUSB<n-1>,
///  4. /dev/ttyACM<n-1>.

namespace pulsemod {

/// Where devices are looked for.
struct SerialPortPlaces {
  std::string linkFolder;
  std::string deviceFolder;
  /// Tells a built-in port from one of the many names that a system has in reserve.
  std::function<bool(const std::string& name)> isRealPort;
};
SerialPortPlaces systemSerialPortPlaces();

/// The device of port `portNumber`; nothing when there is none.
std::optional<std::string> devicePath(int portNumber);
std::optional<std::string> devicePath(int portNumber, const SerialPortPlaces& places);

/// As `devicePath`, for a tool tip; "" when there is none.
std::string portDeviceText(int portNumber);

/// Says that port `portNumber` does not exist, and which devices were looked for.
std::string missingPortReason(int portNumber, const SerialPortPlaces& places);

}  // namespace pulsemod
