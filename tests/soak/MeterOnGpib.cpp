#include "MeterOnGpib.h"

namespace soak {

namespace {

constexpr Time callTime = std::chrono::microseconds(50);
constexpr Time gpibByteTime = std::chrono::nanoseconds(500);
/// The time-out of the board that the program believes in.
constexpr Time boardTimeOut = std::chrono::seconds(1);

std::uint16_t busAddress(int address) { return static_cast<std::uint16_t>(address); }

}  // namespace

MeterOnGpib::MeterOnGpib(const simmeter::Scenario& scenario, SimulatedTime& time,
                         TraceReader& reader)
    : address_(scenario.address), bus_(scenario, transcript_), time_(time), reader_(reader) {}

bool MeterOnGpib::finish(const simmeter::CallStatus& done) {
  *status_ = done.status;
  *error_ = done.error;
  *count_ = static_cast<int>(done.count);
  *longCount_ = done.count;
  time_.advance(callTime + gpibByteTime * done.count);
  if ((done.status & simmeter::ibsta::kTimeOut) != 0) time_.advance(boardTimeOut);
  return (done.status & simmeter::ibsta::kError) == 0;
}

int MeterOnGpib::RegisterGpibGlobalsForThread(int* status, int* error, int* count,
                                              long* longCount) {
  status_ = status;
  error_ = error;
  count_ = count;
  longCount_ = longCount;
  return 0;
}

void MeterOnGpib::SendIFC(int board) { finish(bus_.sendInterfaceClear(board)); }

void MeterOnGpib::DevClear(int board, int address) {
  finish(bus_.deviceClear(board, busAddress(address)));
}

void MeterOnGpib::Send(int board, int address, std::string_view bytes, pulsemod::GpibEnd end) {
  reader_.message(bytes);
  reply_.clear();
  const int sendEnd =
      end == pulsemod::GpibEnd::newlineWithEoi ? simmeter::kSendNewLineEoi : simmeter::kSendEoi;
  finish(bus_.send(board, busAddress(address), bytes.data(), static_cast<long>(bytes.size()),
                   sendEnd));
}

void MeterOnGpib::Receive(int board, int address, char* buffer, std::size_t size, int termination) {
  const simmeter::CallStatus done =
      bus_.receive(board, busAddress(address), buffer, static_cast<long>(size), termination);
  reply_.append(buffer, static_cast<std::size_t>(done.count));
  if (finish(done) && (done.status & simmeter::ibsta::kEnd) != 0) reader_.reply(reply_);
}

void MeterOnGpib::ReadStatusByte(int board, int address, short* statusByte) {
  const bool read = finish(bus_.readStatusByte(board, busAddress(address), statusByte));
  if (read && (*statusByte & (messageAvailable | eventStatus)) == 0) {
    reader_.accepted();
  } else {
    reader_.failed();
  }
}

bool MeterOnGpib::holdsOutput() {
  short status = 0;
  bus_.readStatusByte(0, busAddress(address_), &status);
  return (status & messageAvailable) != 0;
}

int MeterOnGpib::ibfindA(const std::string& name) {
  int descriptor = -1;
  finish(bus_.find(name.c_str(), descriptor));
  return descriptor;
}

int MeterOnGpib::ibonl(int descriptor, int online) {
  finish(bus_.setOnline(descriptor, online != 0));
  return *status_;
}

}  // namespace soak
