#include "host/SharedGpibLibrary.h"

#include <utility>

namespace pulsemod {

namespace {

constexpr int refused = 4;
constexpr int argumentError = 4;

GpibFunctions::Address busAddress(int address) {
  return static_cast<GpibFunctions::Address>(address);
}

/// The index in a board's name "GPIB0" to "GPIB9".
std::optional<int> boardIndex(const std::string& name) {
  constexpr std::string_view prefix = "GPIB";
  if (name.size() != prefix.size() + 1 || !name.starts_with(prefix)) return std::nullopt;
  const char digit = name.back();
  if (digit < '0' || digit > '9') return std::nullopt;
  return digit - '0';
}

}  // namespace

SharedGpibLibrary::SharedGpibLibrary(Loader load) : load_(std::move(load)) {}

bool SharedGpibLibrary::isUsable() {
  if (!loaded_) loaded_ = load_();
  return loaded_->unusableReason.empty();
}

void SharedGpibLibrary::setStatus(int status, int error, long longCount) {
  if (!variables_) return;
  *variables_->status = status;
  *variables_->error = error;
  *variables_->count = static_cast<int>(longCount);
  *variables_->longCount = longCount;
}

void SharedGpibLibrary::copyStatus() {
  if (functions().threadStatus == nullptr) return;
  setStatus(functions().threadStatus(), functions().threadError(), functions().threadLongCount());
}

int SharedGpibLibrary::RegisterGpibGlobalsForThread(int* status, int* error, int* count,
                                                    long* longCount) {
  if (!isUsable()) return refused;
  variables_ = StatusVariables{status, error, count, longCount};
  if (functions().registerGlobals == nullptr) return 0;
  return functions().registerGlobals(status, error, count, longCount);
}

int SharedGpibLibrary::UnregisterGpibGlobalsForThread() {
  if (!isUsable()) return refused;
  variables_.reset();
  return functions().unregisterGlobals == nullptr ? 0 : functions().unregisterGlobals();
}

void SharedGpibLibrary::SendIFC(int board) {
  if (!isUsable()) return;
  functions().sendInterfaceClear(board);
  copyStatus();
}

void SharedGpibLibrary::DevClear(int board, int address) {
  if (!isUsable()) return;
  functions().deviceClear(board, busAddress(address));
  copyStatus();
}

void SharedGpibLibrary::Send(int board, int address, std::string_view bytes, GpibEnd end) {
  if (!isUsable()) return;
  functions().send(board, busAddress(address), bytes.data(), static_cast<long>(bytes.size()),
                   loaded_->endNumbers.at(static_cast<std::size_t>(end)));
  copyStatus();
}

void SharedGpibLibrary::Receive(int board, int address, char* buffer, std::size_t size,
                                int termination) {
  if (!isUsable()) return;
  functions().receive(board, busAddress(address), buffer, static_cast<long>(size), termination);
  copyStatus();
}

void SharedGpibLibrary::ReadStatusByte(int board, int address, short* statusByte) {
  if (!isUsable()) return;
  functions().readStatusByte(board, busAddress(address), statusByte);
  copyStatus();
}

int SharedGpibLibrary::ibfindA(const std::string& name) {
  if (!isUsable()) return -1;
  const int descriptor = functions().find(name.c_str());
  copyStatus();
  if (descriptor >= 0 || !loaded_->indexIsDescriptor) return descriptor;
  const std::optional<int> index = boardIndex(name);
  if (!index) return descriptor;
  setStatus(0, 0, 0);
  return *index;
}

int SharedGpibLibrary::ibonl(int descriptor, int online) {
  if (!isUsable()) return gpibStatusError;
  if (descriptor < 0) {
    setStatus(gpibStatusError, argumentError, 0);
    return gpibStatusError;
  }
  const int status = functions().online(descriptor, online);
  copyStatus();
  return status;
}

std::string SharedGpibLibrary::unusableReason() const {
  return loaded_ ? loaded_->unusableReason : std::string();
}

}  // namespace pulsemod
