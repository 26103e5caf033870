#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The GPIB library's calls as the link uses them. Each one registers the status variables for the
/// thread if that was not done yet, calls the library, and copies its status into `Gpib`. Only the
/// user-interface thread ever calls.
///
/// Registration results: 0 registered; 1 unregister and register again; 2 and 3 unregister and
/// fail; any other fails. A failed registration sets the status word to ERR, the error code to 0
/// and the long count to `gpibNotRegisteredCount`, and the library is not called.

namespace pulsemod {

/// Marks a long count that no transfer has set.
inline constexpr std::int32_t gpibNotRegisteredCount = static_cast<std::int32_t>(0xDEAD37F0U);

inline constexpr int gpibBoard = 0;
inline constexpr auto gpibBoardName = "GPIB0";

struct GpibVariables {
  /// Status word of the last call; below 0 when bit 0x8000 (ERR) is set.
  std::int16_t status = 0;
  /// Error code of the last call, as the library numbers them; of no meaning without ERR.
  std::int16_t error = 0;
  /// `longCount`, cut to 16 bits.
  std::int16_t count = 0;
  /// Bytes moved by the last call.
  std::int32_t longCount = 0;
  /// True (-1) once the library writes the variables below for this thread.
  std::int16_t registered = 0;

  int libraryStatus = 0;
  int libraryError = 0;
  int libraryCount = 0;
  long libraryLongCount = 0;
};
extern GpibVariables Gpib;

/// The last call failed.
bool gpibFailed();

/// Why the last call failed, in words for the user; empty when it did not. `address` is the one
/// that was called.
std::string gpibFailureReason(int address);

/// Interface clear, and the selected device clear to the instrument at `address`.
void SendIFC(int board);
void DevClear(int board, int address);
/// Sends `command`, ended by newline with EOI.
void Send(int board, int address, std::string_view command);
/// Reads into `buffer` until EOI or `size` bytes; `Gpib.longCount` tells how many came.
void Receive(int board, int address, char* buffer, std::size_t size);
/// The status byte of a serial poll; 0 when the call failed.
int ReadStatusByte(int board, int address);
/// Descriptor of a board; below 0 when there is none.
int ibfindA(const std::string& name);
/// Takes a board online (1) or offline (0).
void ibonl(int descriptor, int online);

}  // namespace pulsemod
