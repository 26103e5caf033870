// A GPIB board with one meter on its bus, as the calls of the GPIB library see it.
#pragma once

#include <cstdint>
#include <string_view>

#include "MessageExchange.h"

namespace simmeter {

namespace ibsta {
constexpr int kError = 0x8000;
constexpr int kTimeOut = 0x4000;
constexpr int kEnd = 0x2000;
constexpr int kServiceRequest = 0x1000;
constexpr int kComplete = 0x0100;
constexpr int kInCharge = 0x0020;
}  // namespace ibsta

namespace iberr {
constexpr int kDriver = 0;       // EDVR: no such board or descriptor
constexpr int kNotInCharge = 1;  // ECIC: no SendIFC yet
constexpr int kNoListener = 2;   // ENOL: nobody at that address
constexpr int kArgument = 4;     // EARG
constexpr int kAborted = 6;      // EABO: the time-out passed
constexpr int kNotOnline = 7;    // ENEB: the board is offline, or gone
}  // namespace iberr

constexpr int kStopOnEnd = 0x100;
enum SendEnd { kSendNoEnd = 0, kSendEoi = 1, kSendNewLineEoi = 2 };

// What a call leaves for ThreadIbsta, ThreadIberr and ThreadIbcntl.
struct CallStatus {
  int status = ibsta::kComplete;
  int error = 0;
  long count = 0;
};

// Board 0. Each call blocks as a real one does, up to the scenario's board time-out. One call at a
// time: the caller keeps threads apart. Scenario and transcript must outlive it.
class GpibBus {
 public:
  GpibBus(const Scenario& scenario, Transcript& transcript);

  CallStatus sendInterfaceClear(int board);
  CallStatus deviceClear(int board, std::uint16_t address);
  CallStatus send(int board, std::uint16_t address, const void* data, long count, int end);
  CallStatus receive(int board, std::uint16_t address, void* buffer, long count, int termination);
  CallStatus readStatusByte(int board, std::uint16_t address, short* result);
  // A descriptor, -1 for a name that is not the board's.
  CallStatus find(const char* name, int& descriptor);
  CallStatus setOnline(int descriptor, bool online);

  // The scenario's faults; another plan takes effect with the next call.
  FaultPlan& faults() { return exchange_.faults(); }

 private:
  struct Entry {
    CallStatus status;
    bool go = false;
    int statusOverride = -1;
  };
  // The checks that every call makes, and the scenario's faults for it.
  Entry enter(std::string_view call, int board, bool needsCharge);
  CallStatus finish(CallStatus status);
  CallStatus fail(int error, long count = 0);
  CallStatus failAfterTimeOut(TimePoint began, long count);
  bool isListening(std::uint16_t address) const;

  const Scenario& scenario_;
  MessageExchange exchange_;
  bool online_ = true;
  bool inCharge_ = false;
};

}  // namespace simmeter
