#pragma once

#include <array>
#include <string>

/// The GPIB library of the system, which is found at run time only: no library is needed to build
/// the program or to start it. No toolkit type here, so that the loaders build without one.

#ifdef _WIN32
#define PULSEMOD_GPIB_CALL __stdcall
#else
#define PULSEMOD_GPIB_CALL
#endif

namespace pulsemod {

/// The library's functions. Either it publishes its status through registered variables
/// (`registerGlobals` and `unregisterGlobals` are there), or it keeps the status of a thread's last
/// call itself (the three `thread...` functions are there).
struct GpibFunctions {
  using Address = unsigned short;

  int(PULSEMOD_GPIB_CALL* registerGlobals)(int*, int*, int*, long*) = nullptr;
  int(PULSEMOD_GPIB_CALL* unregisterGlobals)() = nullptr;

  int(PULSEMOD_GPIB_CALL* threadStatus)() = nullptr;
  int(PULSEMOD_GPIB_CALL* threadError)() = nullptr;
  long(PULSEMOD_GPIB_CALL* threadLongCount)() = nullptr;

  int(PULSEMOD_GPIB_CALL* find)(const char*) = nullptr;
  int(PULSEMOD_GPIB_CALL* online)(int, int) = nullptr;
  void(PULSEMOD_GPIB_CALL* sendInterfaceClear)(int) = nullptr;
  void(PULSEMOD_GPIB_CALL* deviceClear)(int, Address) = nullptr;
  void(PULSEMOD_GPIB_CALL* send)(int, Address, const void*, long, int) = nullptr;
  void(PULSEMOD_GPIB_CALL* receive)(int, Address, void*, long, int) = nullptr;
  void(PULSEMOD_GPIB_CALL* readStatusByte)(int, Address, short*) = nullptr;
};

/// Finds the functions that bear the same names in every library. `resolve(function, name)` looks
/// one up.
template <typename Resolver>
void resolveBusCalls(Resolver& resolve, GpibFunctions& functions) {
  resolve(functions.online, "ibonl");
  resolve(functions.sendInterfaceClear, "SendIFC");
  resolve(functions.deviceClear, "DevClear");
  resolve(functions.send, "Send");
  resolve(functions.receive, "Receive");
  resolve(functions.readStatusByte, "ReadStatusByte");
}

struct LoadedGpib {
  GpibFunctions functions;
  /// The library's own number for each `GpibEnd`: none, newline with EOI, EOI.
  std::array<int, 3> endNumbers{0, 1, 2};
  /// A board's index is a valid descriptor of the board.
  bool indexIsDescriptor = false;
  /// Why the library cannot be used, for the user; empty when every function was found.
  std::string unusableReason;
};

/// The name under which the system's loader knows the library.
extern const char* const gpibLibraryName;

/// Loads the library and never unloads it. What is missing stands in `unusableReason`, and no
/// function may be called then.
LoadedGpib loadGpibLibrary(const char* libraryName);

}  // namespace pulsemod
