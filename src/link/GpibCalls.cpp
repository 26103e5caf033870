#include "link/GpibCalls.h"

#include "platform/Services.h"

namespace pulsemod {

GpibVariables Gpib;

namespace {

void markFailure() {
  Gpib.libraryStatus = gpibStatusError;
  Gpib.libraryError = 0;
  Gpib.libraryLongCount = gpibNotRegisteredCount;
}

bool registerVariables() {
  GpibLibrary& library = services().gpib;
  const auto registerThread = [&library] {
    return library.RegisterGpibGlobalsForThread(&Gpib.libraryStatus, &Gpib.libraryError,
                                                &Gpib.libraryCount, &Gpib.libraryLongCount);
  };
  switch (registerThread()) {
    case 0:
      break;
    case 1:
      library.UnregisterGpibGlobalsForThread();
      registerThread();
      break;
    case 2:
    case 3:
      library.UnregisterGpibGlobalsForThread();
      return false;
    default:
      return false;
  }
  Gpib.registered = -1;
  return true;
}

void copyStatus() {
  Gpib.status = static_cast<std::int16_t>(Gpib.libraryStatus);
  Gpib.error = static_cast<std::int16_t>(Gpib.libraryError);
  Gpib.count = static_cast<std::int16_t>(Gpib.libraryCount);
  Gpib.longCount = static_cast<std::int32_t>(Gpib.libraryLongCount);
}

template <typename LibraryCall>
void callRegistered(const LibraryCall& call) {
  if (Gpib.registered != 0 || registerVariables()) {
    call(services().gpib);
  } else {
    markFailure();
  }
  copyStatus();
}

}  // namespace

bool gpibFailed() { return (Gpib.status & gpibStatusError) != 0; }

std::string gpibFailureReason(int address) {
  std::string libraryReason = services().gpib.unusableReason();
  if (!libraryReason.empty()) return libraryReason;
  if (!gpibFailed()) return {};
  enum LibraryError { systemError = 0, notInCharge = 1, noListener = 2, aborted = 6, noBoard = 7 };
  switch (Gpib.error) {
    case systemError:
    case notInCharge:
    case noBoard:
      return "The GPIB board \"GPIB0\" is not there, or is not configured as the system "
             "controller.";
    case noListener:
    case aborted:
    default:
      return "No power meter answers at GPIB address " + std::to_string(address) + ".";
  }
}

void SendIFC(int board) {
  callRegistered([board](GpibLibrary& library) { library.SendIFC(board); });
}

void DevClear(int board, int address) {
  callRegistered([board, address](GpibLibrary& library) { library.DevClear(board, address); });
}

void Send(int board, int address, std::string_view command) {
  callRegistered([board, address, command](GpibLibrary& library) {
    library.Send(board, address, command, GpibEnd::newlineWithEoi);
  });
}

void Receive(int board, int address, char* buffer, std::size_t size) {
  callRegistered([board, address, buffer, size](GpibLibrary& library) {
    library.Receive(board, address, buffer, size, gpibStopOnEoi);
  });
}

int ReadStatusByte(int board, int address) {
  short statusByte = 0;
  callRegistered([board, address, &statusByte](GpibLibrary& library) {
    library.ReadStatusByte(board, address, &statusByte);
  });
  return gpibFailed() ? 0 : statusByte;
}

int ibfindA(const std::string& name) {
  int descriptor = -1;
  callRegistered(
      [&name, &descriptor](GpibLibrary& library) { descriptor = library.ibfindA(name); });
  return descriptor;
}

void ibonl(int descriptor, int online) {
  callRegistered([descriptor, online](GpibLibrary& library) { library.ibonl(descriptor, online); });
}

}  // namespace pulsemod
