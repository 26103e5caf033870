#include "OracleLink.h"

#include <algorithm>

namespace pulsemod::test {

namespace {
constexpr std::size_t bufferSize = 4096;
constexpr std::size_t completionBuffer = 50;
constexpr int aborted = 6;
}  // namespace

std::optional<std::string> OracleLink::wireOf(const std::string& text) {
  sent.push_back(text);
  auto wire = meter_.tell(text);
  chunk_ = bufferSize;
  if (!wire) return wire;
  if (serial_) *wire = "R" + *wire;
  if (replies_++ == faults_.spoil.reply) {
    if (faults_.spoil.kind == Spoil::Kind::pieces) chunk_ = faults_.spoil.place;
    spoilWire(faults_.spoil, *wire, serial_ ? 1 : 0);
  }
  return wire;
}

// GPIB.

bool OracleLink::call() {
  const bool fails = faults_.gpib.strikes(calls_++);
  lastCode_ = fails ? std::optional(faults_.gpib.code) : std::nullopt;
  return !fails;
}

void OracleLink::open() {
  if (serial_) return;
  call();
  output_.clear();
  call();
}

void OracleLink::clearMeter() {
  if (serial_) return;
  output_.clear();
  call();
}

bool OracleLink::send(const std::string& text) {
  if (!call()) return false;
  output_ = wireOf(text).value_or("");
  return true;
}

/// Of each piece that is read the last character is the terminator.
bool OracleLink::receive(std::string& reply, std::size_t room) {
  const std::string piece = output_.substr(0, std::min(room, chunk_));
  output_.erase(0, piece.size());
  if (!call()) return false;
  if (piece.empty()) {
    lastCode_ = aborted;  // nothing to read: the board's time passes
    return false;
  }
  reply += piece.substr(0, piece.size() - 1);
  return true;
}

std::optional<int> OracleLink::poll() {
  if (!call()) return std::nullopt;
  return (output_.empty() ? 0 : 0x10) | (meter_.errorIsReported ? 0x20 : 0);
}

std::optional<std::string> OracleLink::askGpib(const std::string& query) {
  if (!send(query)) return std::nullopt;
  std::string reply;
  while (true) {
    if (!receive(reply, bufferSize)) return std::nullopt;
    const auto status = poll();
    if (!status) return std::nullopt;
    if ((*status & 0x20) != 0) {
      askCompletion("*CLS");
      return std::nullopt;
    }
    if (*status == 0) return reply;
  }
}

// RS232.

/// False when the port is not there any more after it.
bool OracleLink::deliver(const std::string& text) {
  if (lost_) return false;
  const bool strikes = messages_++ == faults_.loss.message;
  const auto moment = faults_.loss.moment;
  if (strikes && (moment == LossPlan::Moment::before || moment == LossPlan::Moment::leaving)) {
    lost_ = true;
    return false;
  }
  const auto wire = wireOf(text);
  if (strikes && moment == LossPlan::Moment::left) lost_ = true;
  if (lost_) return false;
  if (!wire) return true;
  if (strikes) lost_ = true;
  // What had arrived before the port was lost is read all the same.
  line_ +=
      strikes && moment == LossPlan::Moment::midReply ? wire->substr(0, pieceBeforeLoss) : *wire;
  return true;
}

std::optional<std::string> OracleLink::readLine() {
  const std::size_t start = line_.find('R');
  const std::size_t end = start == std::string::npos ? start : line_.find('\n', start);
  if (end != std::string::npos) {
    const std::string reply = line_.substr(start + 1, end - start - 1);
    line_.erase(0, end + 1);
    return reply;
  }
  if (!lost_) throw WaitsForEver{};
  line_.clear();
  return std::nullopt;
}

// Both.

void OracleLink::say(const std::string& command) {
  if (serial_) {
    deliver(command);
  } else {
    send(command);
  }
}

std::optional<std::string> OracleLink::ask(const std::string& query) {
  if (!serial_) return askGpib(query);
  if (!deliver(query)) return std::nullopt;
  return readLine();
}

void OracleLink::askCompletion(const std::string& command) {
  const std::string text = command + "; *OPC?";
  if (serial_) {
    ask(text);
    return;
  }
  std::string unused;
  if (send(text)) receive(unused, completionBuffer);
}

std::string OracleLink::failureReason() const {
  if (serial_) return lost_ ? "The serial port was lost." : "No power meter answers at COM1:.";
  if (!lastCode_) return "";
  if (*lastCode_ == 0 || *lastCode_ == 1 || *lastCode_ == 7) {
    return "The GPIB board \"GPIB0\" is not there, or is not configured as the system controller.";
  }
  return "No power meter answers at GPIB address 13.";
}

}  // namespace pulsemod::test
