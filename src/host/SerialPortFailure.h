#pragma once

#include <string>

namespace pulsemod {

/// What the system lets this user do with a device.
struct DeviceAccess {
  bool exists = false;
  bool permitted = false;
  /// The group whose members may use the device; empty when no group but the administrator's may.
  std::string group;
};
/// `device` is a path. On Windows everything is there and permitted.
DeviceAccess deviceAccess(const std::string& device);

enum class PortProblem { notFound, refused, unusable };

/// Why `device` could not be opened as COM<portNumber>:, in words for the user. A device is refused
/// both to a user without permission and while another program has it; `access` tells which.
/// `systemText` is what the system said.
std::string openFailureReason(int portNumber, const std::string& device, PortProblem problem,
                              const DeviceAccess& access, const std::string& systemText);

/// Why a port that was open is not any more, and what to do, in words for the user.
std::string lossReason(int portNumber, const std::string& device, const std::string& systemText);

}  // namespace pulsemod
