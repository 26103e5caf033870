#include "host/SerialPortFailure.h"

#ifndef _WIN32
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace pulsemod {

namespace {

std::string portText(int portNumber, const std::string& device) {
  return "COM" + std::to_string(portNumber) + ": (" + device + ")";
}

std::string permissionReason(const std::string& device, const std::string& group) {
  if (group.empty()) {
    return "Only the administrator may use " + device + ". Its permissions must be changed first.";
  }
  return "Your user is not in the group " + group + ", which may use " + device +
         ". Add it with: sudo adduser $USER " + group + ", then log in again.";
}

}  // namespace

DeviceAccess deviceAccess([[maybe_unused]] const std::string& device) {
#ifdef _WIN32
  // A port that is there and refused is in use: the system keeps no permissions for ports.
  return {true, true, {}};
#else
  DeviceAccess result;
  struct stat status {};
  if (stat(device.c_str(), &status) != 0) return result;
  result.exists = true;
  result.permitted = access(device.c_str(), R_OK | W_OK) == 0;
  constexpr mode_t groupReadWrite = S_IRGRP | S_IWGRP;
  const bool groupMayUse = (status.st_mode & groupReadWrite) == groupReadWrite;
  if (groupMayUse && status.st_gid != 0) {
    const group* entry = getgrgid(status.st_gid);
    result.group = entry != nullptr ? entry->gr_name : std::to_string(status.st_gid);
  }
  return result;
#endif
}

std::string openFailureReason(int portNumber, const std::string& device, PortProblem problem,
                              const DeviceAccess& access, const std::string& systemText) {
  const std::string port = portText(portNumber, device);
  if (problem == PortProblem::notFound || !access.exists) {
    return "The port " + port + " is not there. Is its adapter plugged in?";
  }
  if (problem == PortProblem::refused && !access.permitted) {
    return permissionReason(device, access.group);
  }
  if (problem == PortProblem::refused) {
    return "The port " + port + " is in use by another program.";
  }
  return "The port " + port + " could not be opened: " + systemText + ".";
}

std::string lossReason(int portNumber, const std::string& device, const std::string& systemText) {
  return "The port " + portText(portNumber, device) +
         " was lost while it was in use: " + systemText +
         ". Plug it in again, then start the program anew.";
}

}  // namespace pulsemod
