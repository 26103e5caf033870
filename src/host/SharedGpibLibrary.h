#pragma once

#include <functional>
#include <optional>

#include "host/GpibLoader.h"
#include "platform/GpibLibrary.h"

namespace pulsemod {

/// The system's GPIB library behind the calls that the program knows. It is loaded by the first
/// call, once. A library that keeps the status itself (see `GpibFunctions`) gets registration here:
/// after each call its status is copied into the registered variables.
///
/// Without a usable library, registration gives 4, `ibfindA` gives -1, and the others do nothing.
class SharedGpibLibrary : public GpibLibrary {
 public:
  using Loader = std::function<LoadedGpib()>;

  explicit SharedGpibLibrary(Loader load = [] { return loadGpibLibrary(gpibLibraryName); });

  int RegisterGpibGlobalsForThread(int* status, int* error, int* count, long* longCount) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void DevClear(int board, int address) override;
  void Send(int board, int address, std::string_view bytes, GpibEnd end) override;
  void Receive(int board, int address, char* buffer, std::size_t size, int termination) override;
  void ReadStatusByte(int board, int address, short* statusByte) override;
  /// A board "GPIB0" to "GPIB9" that the configuration does not name so is found by its index, if
  /// the library takes indices for descriptors.
  int ibfindA(const std::string& name) override;
  /// A descriptor below 0 never reaches the library: the call fails with an argument error.
  int ibonl(int descriptor, int online) override;
  std::string unusableReason() const override;

 private:
  struct StatusVariables {
    int* status;
    int* error;
    int* count;
    long* longCount;
  };

  bool isUsable();
  const GpibFunctions& functions() const { return loaded_->functions; }
  void setStatus(int status, int error, long longCount);
  void copyStatus();

  Loader load_;
  std::optional<LoadedGpib> loaded_;
  std::optional<StatusVariables> variables_;
};

}  // namespace pulsemod
