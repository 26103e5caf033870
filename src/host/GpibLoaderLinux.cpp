#include <dlfcn.h>

#include "host/GpibLoader.h"

namespace pulsemod {

const char* const gpibLibraryName = "libgpib.so.0";

namespace {

class Resolver {
 public:
  explicit Resolver(void* library) : library_(library) {}

  template <typename Function>
  void operator()(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(library_, name));
    if (function == nullptr && missing_.empty()) missing_ = name;
  }

  /// The first function that was not found.
  const std::string& missing() const { return missing_; }

 private:
  void* library_;
  std::string missing_;
};

std::string loaderMessage() {
  const char* message = dlerror();
  return message == nullptr ? std::string() : " (" + std::string(message) + ")";
}

}  // namespace

LoadedGpib loadGpibLibrary(const char* libraryName) {
  LoadedGpib loaded;
  // This library numbers the two ends with EOI the other way round.
  loaded.endNumbers = {0, 2, 1};
  loaded.indexIsDescriptor = true;

  void* library = dlopen(libraryName, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    loaded.unusableReason = "The GPIB library " + std::string(libraryName) +
                            " could not be loaded" + loaderMessage() +
                            ". Install linux-gpib and the driver of the GPIB board.";
    return loaded;
  }

  GpibFunctions& functions = loaded.functions;
  Resolver resolve(library);
  resolve(functions.threadStatus, "ThreadIbsta");
  resolve(functions.threadError, "ThreadIberr");
  resolve(functions.threadLongCount, "ThreadIbcntl");
  resolve(functions.find, "ibfind");
  resolveBusCalls(resolve, functions);
  if (!resolve.missing().empty()) {
    loaded.unusableReason = "The GPIB library " + std::string(libraryName) + " has no function " +
                            resolve.missing() + ". Install a current linux-gpib.";
  }
  return loaded;
}

}  // namespace pulsemod
