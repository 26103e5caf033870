#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pulsemod {

/// How a message to the meter ends. The numbers are the system's own, those of `Gpib-32.dll`; a
/// library that numbers them otherwise is translated behind this interface.
enum class GpibEnd : int { none = 0, newlineWithEoi = 1, eoi = 2 };

/// `Receive` ends at the byte that comes with EOI.
inline constexpr int gpibStopOnEoi = 0x100;

/// Bit of the status word: the call failed.
inline constexpr int gpibStatusError = 0x8000;

/// The nine calls of the GPIB library, as the library has them. No call here tests anything:
/// `link/GpibCalls.h` wraps each one with the registration of the status variables. They block
/// until the library is done or its time-out has passed, and are called by the user-interface
/// thread alone.
class GpibLibrary {
 public:
  virtual ~GpibLibrary() = default;

  /// Gives the library the addresses of the calling thread's status variables; every later call
  /// writes status word, error code, count and long count through them.
  /// Results: 0 registered; 1 already registered; 2 and 3 refused, but something was registered;
  /// anything else refused. Without a loadable library the result is 4.
  virtual int RegisterGpibGlobalsForThread(int* status, int* error, int* count,
                                           long* longCount) = 0;
  virtual int UnregisterGpibGlobalsForThread() = 0;

  /// Pulses interface clear: the board becomes controller in charge.
  virtual void SendIFC(int board) = 0;
  /// Sends the selected device clear to the instrument at primary `address`, 1 to 30.
  virtual void DevClear(int board, int address) = 0;
  virtual void Send(int board, int address, std::string_view bytes, GpibEnd end) = 0;
  /// Reads up to `size` bytes; the long count tells how many came.
  virtual void Receive(int board, int address, char* buffer, std::size_t size, int termination) = 0;
  /// Serial poll.
  virtual void ReadStatusByte(int board, int address, short* statusByte) = 0;
  /// Opens a board by name; its descriptor, or below 0.
  virtual int ibfindA(const std::string& name) = 0;
  /// Takes a board online (1) or offline (0).
  virtual int ibonl(int descriptor, int online) = 0;

  /// Why the library cannot be used, in words for the user; empty when it can, or when nothing was
  /// tried yet.
  virtual std::string unusableReason() const = 0;
};

}  // namespace pulsemod
