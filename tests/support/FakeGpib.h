#pragma once

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/GpibLibrary.h"
#include "support/FakeMeter.h"

namespace pulsemod::test {

/// A GPIB library with one meter on its bus. Records each call in words ("Send 13 *IDN?").
class FakeGpib : public GpibLibrary {
 public:
  explicit FakeGpib(FakeMeter& meter) : meter_(meter) {}

  int RegisterGpibGlobalsForThread(int* status, int* error, int* count, long* longCount) override {
    calls.push_back("Register");
    const int result = registrationResults.empty() ? 0 : registrationResults.front();
    if (!registrationResults.empty()) registrationResults.erase(registrationResults.begin());
    if (result == 0) {
      status_ = status;
      error_ = error;
      count_ = count;
      longCount_ = longCount;
    }
    return result;
  }
  int UnregisterGpibGlobalsForThread() override {
    calls.push_back("Unregister");
    return 0;
  }
  void SendIFC(int board) override { call("SendIFC", "SendIFC " + std::to_string(board), 0); }
  void DevClear(int board, int address) override {
    output.clear();
    call("DevClear", "DevClear " + std::to_string(board) + " " + std::to_string(address), 0);
  }
  void Send(int board, int address, std::string_view bytes, GpibEnd end) override {
    const std::string text(bytes);
    lastBoard = board;
    lastEnd = end;
    if (!call("Send", "Send " + std::to_string(address) + " " + text,
              static_cast<long>(bytes.size()))) {
      return;
    }
    if (!output.empty()) ++interruptedQueries;
    output.clear();
    const auto reply = meter_.receive(text);
    if (!reply) return;
    output = *reply + terminator;
    if (onReply) onReply(output);
  }
  void Receive(int board, int address, char* buffer, std::size_t size, int termination) override {
    lastBoard = board;
    lastSize = size;
    const std::size_t chunk = std::min({size, output.size(), chunkSize});
    std::memcpy(buffer, output.data(), chunk);
    lastTermination = termination;
    const bool silent = output.empty() && failOnSilence;
    output.erase(0, chunk);
    if (silent) failNext["Receive"] = 1;
    call("Receive", "Receive " + std::to_string(address), static_cast<long>(chunk));
  }
  void ReadStatusByte(int board, int address, short* statusByte) override {
    lastBoard = board;
    if (!call("ReadStatusByte", "ReadStatusByte " + std::to_string(address), 0)) return;
    if (!statusBytes.empty()) {
      *statusByte = statusBytes.front();
      statusBytes.erase(statusBytes.begin());
      return;
    }
    constexpr int messageAvailable = 0x10;
    constexpr int eventStatus = 0x20;
    *statusByte = static_cast<short>((output.empty() ? 0 : messageAvailable) |
                                     (meter_.errorIsReported ? eventStatus : 0));
  }
  int ibfindA(const std::string& name) override {
    call("ibfindA", "ibfindA " + name, 0);
    return boardDescriptor;
  }
  int ibonl(int descriptor, int online) override {
    call("ibonl", "ibonl " + std::to_string(descriptor) + " " + std::to_string(online), 0);
    return 0;
  }
  std::string unusableReason() const override { return reason; }

  int timesCalled(const std::string& call) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), call));
  }

  std::vector<std::string> calls;
  std::vector<int> registrationResults;
  /// Fails the n-th next call of a name (1 = the next one).
  std::map<std::string, int> failNext;
  int failureCode = 6;
  /// Scripted results of serial polls; when used up, the real state is told.
  std::vector<short> statusBytes;
  std::string terminator = "\r\n";
  std::size_t chunkSize = 1U << 20U;
  /// A read with nothing to come times out, as on a real bus; else it moves no byte.
  bool failOnSilence = true;
  int boardDescriptor = 7;
  std::string reason;
  std::string output;
  /// May change a reply, with its terminator, before it is read.
  std::function<void(std::string&)> onReply;
  /// Runs in each call that names an address or a board; the call fails with the code it returns.
  std::function<std::optional<int>(const std::string& name)> fault;
  GpibEnd lastEnd = GpibEnd::none;
  int lastTermination = 0;
  /// Board of the last transfer or poll, and room in the buffer of the last Receive.
  int lastBoard = -1;
  std::size_t lastSize = 0;
  int interruptedQueries = 0;

 private:
  bool call(const std::string& name, const std::string& text, long moved) {
    calls.push_back(text);
    bool fails = false;
    if (const auto found = failNext.find(name); found != failNext.end() && --found->second == 0) {
      failNext.erase(found);
      fails = true;
    }
    int code = failureCode;
    if (const auto faultCode = fault ? fault(name) : std::nullopt) {
      fails = true;
      code = *faultCode;
    }
    constexpr int complete = 0x0100;
    if (status_ != nullptr) {
      *status_ = complete | (fails ? gpibStatusError : 0);
      *error_ = fails ? code : 0;
      *count_ = static_cast<int>(moved);
      *longCount_ = moved;
    }
    return !fails;
  }

  FakeMeter& meter_;
  int* status_ = nullptr;
  int* error_ = nullptr;
  int* count_ = nullptr;
  long* longCount_ = nullptr;
};

}  // namespace pulsemod::test
