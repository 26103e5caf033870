#include "GpibBus.h"

#include <algorithm>
#include <cstring>
#include <thread>

#include "NumberText.h"

namespace simmeter {
namespace {

constexpr int kBoard = 0;
constexpr std::string_view kBoardName = "GPIB0";

// Primary address in the low byte, secondary above it.
bool isAddress(std::uint16_t address) { return (address & 0xFF) <= 30; }

}  // namespace

GpibBus::GpibBus(const Scenario& scenario, Transcript& transcript)
    : scenario_(scenario), exchange_(scenario, kGpibFraming, transcript) {
  transcript.write("ONLINE", kBoardName);
}

CallStatus GpibBus::finish(CallStatus status) {
  if (inCharge_) status.status |= ibsta::kInCharge;
  if (exchange_.requestsService(Clock::now())) status.status |= ibsta::kServiceRequest;
  return status;
}

CallStatus GpibBus::fail(int error, long count) {
  return finish({ibsta::kError | ibsta::kComplete, error, count});
}

CallStatus GpibBus::failAfterTimeOut(TimePoint began, long count) {
  std::this_thread::sleep_until(began + scenario_.boardTimeOut);
  CallStatus status = fail(iberr::kAborted, count);
  status.status |= ibsta::kTimeOut;
  return status;
}

bool GpibBus::isListening(std::uint16_t address) const { return address == scenario_.address; }

GpibBus::Entry GpibBus::enter(std::string_view call, int board, bool needsCharge) {
  Entry entry;
  if (board != kBoard) {
    entry.status = fail(iberr::kDriver);
    return entry;
  }
  for (const FaultRule* rule : exchange_.faults().onCall(call)) {
    exchange_.transcript().write("FAULT", rule->written);
    if (rule->kind == FaultKind::kHangUp) exchange_.hangUp();
    if (rule->kind == FaultKind::kStatus) entry.statusOverride = static_cast<int>(rule->amount);
    if (rule->kind == FaultKind::kTimeOut) {
      entry.status = failAfterTimeOut(Clock::now(), 0);
      return entry;
    }
    if (rule->kind == FaultKind::kError) {
      entry.status = fail(static_cast<int>(rule->amount));
      return entry;
    }
  }
  if (!online_ || exchange_.hungUp()) {
    entry.status = fail(iberr::kNotOnline);
    return entry;
  }
  if (needsCharge && !inCharge_) {
    entry.status = fail(iberr::kNotInCharge);
    return entry;
  }
  entry.go = true;
  return entry;
}

CallStatus GpibBus::sendInterfaceClear(int board) {
  Entry entry = enter("SendIFC", board, false);
  if (!entry.go) return entry.status;
  inCharge_ = true;
  exchange_.transcript().write("IFC", "");
  return finish({});
}

CallStatus GpibBus::deviceClear(int board, std::uint16_t address) {
  Entry entry = enter("DevClear", board, true);
  if (!entry.go) return entry.status;
  if (!isAddress(address)) return fail(iberr::kArgument);
  // The meter takes the command bytes from the bus even when it is not the one addressed.
  if (isListening(address)) exchange_.deviceClear();
  return finish({});
}

CallStatus GpibBus::send(int board, std::uint16_t address, const void* data, long count, int end) {
  Entry entry = enter("Send", board, true);
  if (!entry.go) return entry.status;
  const bool knownEnd = end == kSendNoEnd || end == kSendEoi || end == kSendNewLineEoi;
  if (!isAddress(address) || count < 0 || (data == nullptr && count > 0) || !knownEnd) {
    return fail(iberr::kArgument);
  }
  if (!isListening(address)) return fail(iberr::kNoListener);
  const std::string_view text(static_cast<const char*>(data), static_cast<std::size_t>(count));
  const TimePoint now = Clock::now();
  if (!text.empty()) exchange_.receive(text, end == kSendEoi, now);
  if (end == kSendNewLineEoi) exchange_.receive("\n", true, now);
  return finish({ibsta::kComplete, 0, count});
}

CallStatus GpibBus::receive(int board, std::uint16_t address, void* buffer, long count,
                            int termination) {
  Entry entry = enter("Receive", board, true);
  if (!entry.go) return entry.status;
  const bool knownStop = termination == kStopOnEnd || (termination >= 0 && termination <= 255);
  if (!isAddress(address) || count < 0 || (buffer == nullptr && count > 0) || !knownStop) {
    return fail(iberr::kArgument);
  }
  const TimePoint began = Clock::now();
  if (!isListening(address)) return failAfterTimeOut(began, 0);
  const TimePoint deadline = began + scenario_.boardTimeOut;
  char* target = static_cast<char*>(buffer);
  long got = 0;
  if (exchange_.reply() == nullptr) exchange_.readInVain();
  while (got < count) {
    Reply* reply = exchange_.reply();
    if (reply == nullptr) return failAfterTimeOut(began, got);
    const TimePoint now = Clock::now();
    const std::size_t ready =
        std::min(reply->available(now), static_cast<std::size_t>(count - got));
    std::string_view chunk(reply->bytes.data() + reply->taken, ready);
    const std::size_t stop = termination == kStopOnEnd ? std::string_view::npos
                                                       : chunk.find(static_cast<char>(termination));
    if (stop != std::string_view::npos) chunk = chunk.substr(0, stop + 1);
    if (!chunk.empty()) std::memcpy(target + got, chunk.data(), chunk.size());
    got += static_cast<long>(chunk.size());
    reply->taken += chunk.size();
    if (reply->allTaken()) {
      const bool ends = reply->ends;
      exchange_.replyFinished();
      if (ends) return finish({ibsta::kComplete | ibsta::kEnd, 0, got});
      continue;
    }
    if (stop != std::string_view::npos || got == count) break;
    const TimePoint next = reply->leaves(reply->taken);
    if (next > deadline || now >= deadline) {
      exchange_.readTimedOut();
      return failAfterTimeOut(began, got);
    }
    std::this_thread::sleep_until(next);
  }
  return finish({ibsta::kComplete, 0, got});
}

CallStatus GpibBus::readStatusByte(int board, std::uint16_t address, short* result) {
  Entry entry = enter("ReadStatusByte", board, true);
  if (!entry.go) return entry.status;
  if (!isAddress(address) || result == nullptr) return fail(iberr::kArgument);
  if (!isListening(address)) return failAfterTimeOut(Clock::now(), 0);
  const int status = exchange_.serialPoll(Clock::now());
  *result = static_cast<short>(entry.statusOverride >= 0 ? entry.statusOverride : status);
  return finish({ibsta::kComplete, 0, 1});
}

CallStatus GpibBus::find(const char* name, int& descriptor) {
  descriptor = -1;
  Entry entry = enter("ibfind", kBoard, false);
  // A board that is offline is found all the same: that is how it is brought back.
  if (!entry.go && online_) return entry.status;
  if (name == nullptr || !equalIgnoringCase(name, kBoardName)) return fail(iberr::kDriver);
  descriptor = kBoard;
  return finish({});
}

CallStatus GpibBus::setOnline(int descriptor, bool online) {
  Entry entry = enter("ibonl", descriptor, false);
  if (!entry.go && (descriptor != kBoard || online_ || exchange_.hungUp())) return entry.status;
  exchange_.transcript().write(online ? "ONLINE" : "OFFLINE", kBoardName);
  online_ = online;
  inCharge_ = false;
  return finish({});
}

}  // namespace simmeter
