#pragma once

#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/EventQueue.h"
#include "platform/FileDialogs.h"
#include "platform/GpibLibrary.h"
#include "platform/ProgramEnd.h"
#include "platform/Progress.h"
#include "platform/SerialPort.h"
#include "platform/SettingsStore.h"

namespace pulsemod {

/// The outside world, process-wide. The program installs the real one at its start, a test its own.
struct Services {
  Clock& clock;
  EventQueue& events;
  GpibLibrary& gpib;
  SerialPort& serial;
  SettingsStore& settings;
  Dialogs& dialogs;
  FileDialogs& fileDialogs;
  Progress& progress;
  ProgramEnd& programEnd;
};

/// The installed outside world. Calling it before one is installed ends the process.
const Services& services();

/// Installs an outside world for as long as it lives and brings back the one before.
class ServicesGuard {
 public:
  explicit ServicesGuard(const Services& installed);
  ~ServicesGuard();
  ServicesGuard(const ServicesGuard&) = delete;
  ServicesGuard& operator=(const ServicesGuard&) = delete;

 private:
  const Services* previous_;
};

}  // namespace pulsemod
