#pragma once

#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/EventQueue.h"
#include "platform/FileDialogs.h"
#include "platform/Files.h"
#include "platform/GpibLibrary.h"
#include "platform/Installed.h"
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
  Files& files;
  Progress& progress;
  ProgramEnd& programEnd;
};

using ServicesGuard = Installed<const Services>;
inline const Services& services() { return ServicesGuard::get(); }

}  // namespace pulsemod
