#pragma once

#include "host/HostClock.h"
#include "host/HostEventQueue.h"
#include "host/HostProgramEnd.h"
#include "host/HostSerialPort.h"
#include "host/QtDialogs.h"
#include "host/QtFileDialogs.h"
#include "host/QtFiles.h"
#include "host/QtSettingsStore.h"
#include "host/SharedGpibLibrary.h"
#include "platform/Services.h"

namespace pulsemod {

/// The real outside world. To make one touches nothing of it: files, ports and libraries are opened
/// by their first use. The application object must live by then.
class Host {
 public:
  /// With a clock of the caller's where one is given.
  explicit Host(Progress& progress, Clock* clock = nullptr);
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  const Services& services() const { return services_; }

 private:
  HostClock clock_;
  HostEventQueue events_;
  SharedGpibLibrary gpib_;
  HostSerialPort serial_;
  QtSettingsStore settings_;
  QtDialogs dialogs_;
  QtFileDialogs fileDialogs_;
  QtFiles files_;
  HostProgramEnd programEnd_;
  Services services_;
};

}  // namespace pulsemod
