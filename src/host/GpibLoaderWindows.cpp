#include <windows.h>

#include "host/GpibLoader.h"

namespace pulsemod {

const char* const gpibLibraryName = "Gpib-32.dll";

namespace {

class Resolver {
 public:
  explicit Resolver(HMODULE library) : library_(library) {}

  template <typename Function>
  void operator()(Function& function, const char* name) {
    // By way of a function type without arguments, which the compiler lets through unwarned.
    using Untyped = void (*)();
    function =
        reinterpret_cast<Function>(reinterpret_cast<Untyped>(GetProcAddress(library_, name)));
    if (function == nullptr && missing_.empty()) missing_ = name;
  }

  /// The first function that was not found.
  const std::string& missing() const { return missing_; }

 private:
  HMODULE library_;
  std::string missing_;
};

}  // namespace

LoadedGpib loadGpibLibrary(const char* libraryName) {
  LoadedGpib loaded;
  loaded.endNumbers = {0, 1, 2};

  const HMODULE library = LoadLibraryA(libraryName);
  if (library == nullptr) {
    const DWORD error = GetLastError();
    loaded.unusableReason = "The GPIB library " + std::string(libraryName) +
                            " could not be loaded (error " + std::to_string(error) +
                            "). Install the driver of the GPIB board.";
    return loaded;
  }

  GpibFunctions& functions = loaded.functions;
  Resolver resolve(library);
  resolve(functions.registerGlobals, "RegisterGpibGlobalsForThread");
  resolve(functions.unregisterGlobals, "UnregisterGpibGlobalsForThread");
  resolve(functions.find, "ibfindA");
  resolveBusCalls(resolve, functions);
  if (!resolve.missing().empty()) {
    loaded.unusableReason = "The GPIB library " + std::string(libraryName) + " has no function " +
                            resolve.missing() + ". Install a current driver of the GPIB board.";
  }
  return loaded;
}

}  // namespace pulsemod
