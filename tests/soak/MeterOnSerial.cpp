#include "MeterOnSerial.h"

#include <algorithm>
#include <utility>

namespace soak {

namespace {

constexpr Time serialByteTime = std::chrono::nanoseconds(1'000'000'000LL * 10 / 57600);
/// What a port gathers before it tells the program.
constexpr std::size_t burst = 64;

}  // namespace

MeterOnSerial::MeterOnSerial(const simmeter::Scenario& scenario, SimulatedTime& time,
                             TraceReader& reader)
    : exchange_(scenario, simmeter::kSerialFraming, transcript_), time_(time), reader_(reader) {
  exchange_.setBytePace(serialByteTime);
}

void MeterOnSerial::write(std::string_view bytes) {
  if (!isOpen_) return;
  outgoing_ += bytes;
  lastLeaves_ = time_.now() + serialByteTime * static_cast<Time::rep>(outgoing_.size());
}

void MeterOnSerial::lose(const std::string& reason) {
  failure_ = reason;
  isOpen_ = false;
  outgoing_.clear();
}

std::optional<Time> MeterOnSerial::nextArrival() const {
  if (!outgoing_.empty()) return lastLeaves_;
  const simmeter::Reply* reply = exchange_.reply();
  if (reply == nullptr) return std::nullopt;
  const std::size_t last = std::min(reply->taken + burst, reply->bytes.size()) - 1;
  return reply->leaves(last).time_since_epoch();
}

void MeterOnSerial::deliver() {
  if (!outgoing_.empty() && time_.now() >= lastLeaves_) {
    reader_.message(std::string_view(outgoing_).substr(0, outgoing_.size() - 1));
    ended_ = false;
    exchange_.receive(outgoing_, false, meterTime());
    outgoing_.clear();
  }
  simmeter::Reply* reply = exchange_.reply();
  if (reply == nullptr) return;
  const std::size_t ready = reply->available(meterTime());
  arrived_.append(reply->bytes, reply->taken, ready);
  reply->taken += ready;
  if (!reply->allTaken()) return;
  reader_.reply(reply->bytes);
  ended_ = true;
  exchange_.replyFinished();
}

std::optional<char> MeterOnSerial::input() {
  if (read_ == arrived_.size()) return std::nullopt;
  const char next = arrived_[read_++];
  if (read_ == arrived_.size()) {
    arrived_.clear();
    read_ = 0;
    if (std::exchange(ended_, false)) reader_.accepted();
  }
  return next;
}

}  // namespace soak
