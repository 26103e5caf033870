#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/SerialPort.h"
#include "support/FakeMeter.h"

namespace pulsemod::test {

/// What happens on the line, for a test that pulls the port: bytes are written, are about to leave,
/// have reached the meter, a piece of a reply has arrived.
enum class LineMoment { write, leaving, left, piece };

/// A serial port with one meter behind it. What is written leaves, and what comes back arrives,
/// while the events run: one step for each call of `progress`.
class FakeSerial : public SerialPort {
 public:
  explicit FakeSerial(FakeMeter& meter) : meter_(meter) {}

  void setPortNumber(int number) override { calls.push_back("port " + std::to_string(number)); }
  void setSettings(std::string_view settings) override {
    calls.push_back("settings " + std::string(settings));
  }
  bool isOpen() const override { return isOpen_; }
  bool open() override {
    calls.emplace_back("open");
    isOpen_ = opens;
    return isOpen_;
  }
  void close() override {
    calls.emplace_back("close");
    isOpen_ = false;
  }
  void write(std::string_view bytes) override {
    note(LineMoment::write);
    if (isOpen_) outgoing_ += bytes;
  }
  std::size_t outputCount() const override { return isOpen_ ? outgoing_.size() : 0; }
  std::optional<char> input() override {
    if (arrived_.empty()) return std::nullopt;
    const char next = arrived_.front();
    arrived_.pop_front();
    return next;
  }
  std::string failureReason() const override { return reason; }

  /// Moves the line on by one step; false when nothing is on its way.
  bool progress() {
    if (!isOpen_) return false;
    if (!outgoing_.empty()) {
      if (stalledSteps > 0) {
        --stalledSteps;
        return true;
      }
      note(LineMoment::leaving);
      if (!isOpen_) return true;
      deliver();
      note(LineMoment::left);
      return true;
    }
    if (incoming.empty()) return false;
    const std::string piece = incoming.front();
    incoming.pop_front();
    arrived_.insert(arrived_.end(), piece.begin(), piece.end());
    note(LineMoment::piece);
    return true;
  }

  /// The port is pulled: it closes itself.
  void lose() {
    isOpen_ = false;
    reason = "The serial port was lost.";
  }

  std::vector<std::string> calls;
  bool opens = true;
  std::string reason;
  /// Pieces of replies that are still to come, with their framing.
  std::deque<std::string> incoming;
  /// Replies come in pieces of this many characters.
  std::size_t pieceSize = 1U << 20U;
  /// Messages that came while a reply was still on its way.
  int interruptedQueries = 0;
  /// So many steps pass before what was written leaves.
  int stalledSteps = 0;
  /// Every byte that left, terminators included.
  std::string sent;
  /// May change a reply, with its framing, before it is on its way.
  std::function<void(std::string&)> onReply;
  std::function<void(LineMoment)> onMoment;

 private:
  void note(LineMoment moment) {
    if (onMoment) onMoment(moment);
  }
  void deliver() {
    sent += outgoing_;
    if (!incoming.empty() || !arrived_.empty()) ++interruptedQueries;
    std::size_t end = 0;
    while ((end = outgoing_.find('\r')) != std::string::npos) {
      const auto reply = meter_.receive(outgoing_.substr(0, end));
      outgoing_.erase(0, end + 1);
      if (reply) queueReply("R" + *reply + "\r\n");
    }
    outgoing_.clear();
  }
  void queueReply(std::string text) {
    if (onReply) onReply(text);
    for (std::size_t at = 0; at < text.size(); at += pieceSize) {
      incoming.push_back(text.substr(at, pieceSize));
    }
  }

  FakeMeter& meter_;
  bool isOpen_ = false;
  std::string outgoing_;
  std::deque<char> arrived_;
};

}  // namespace pulsemod::test
