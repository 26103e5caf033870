#include "Program.h"

#include <QApplication>

#include "host/Host.h"
#include "host/SerialPortNames.h"
#include "platform/Services.h"
#include "startup/StartUp.h"
#include "ui/Windows.h"

namespace pulsemod {

int runProgram(QApplication& application, Clock* clock) {
  // Dialogs come and go before the first main window, and none of them may end the program.
  application.setQuitOnLastWindowClosed(false);
  Windows windows(portDeviceText);
  const Host host(windows.pleaseWait(), clock);
  const ServicesGuard guard(host.services());
  StartUp(windows);
  return QApplication::exec();
}

}  // namespace pulsemod
