#include "FakeGpibLibrary.h"

#include <cstring>
#include <string>

/// Behaves as a GPIB library with one board, which the configuration names "GPIB0" if the test says
/// so, and keeps the status of the last call.

namespace {

std::string log;
FakeGpibState state;

void note(const std::string& call) { log += call + "\n"; }
std::string text(int number) { return std::to_string(number); }

}  // namespace

extern "C" {

const char* fakeGpibLog() { return log.c_str(); }
FakeGpibState* fakeGpibState() { return &state; }
void fakeGpibReset() {
  log.clear();
  state = {};
}

int ThreadIbsta() { return state.status; }
int ThreadIberr() { return state.error; }
long ThreadIbcntl() { return state.longCount; }

int ibfind(const char* name) {
  note("ibfind " + std::string(name));
  state.status = state.foundDescriptor < 0 ? 0x8000 : 0x100;
  return state.foundDescriptor;
}

int ibonl(int descriptor, int online) {
  note("ibonl " + text(descriptor) + " " + text(online));
  return state.status;
}

void SendIFC(int board) { note("SendIFC " + text(board)); }

void DevClear(int board, unsigned short address) {
  note("DevClear " + text(board) + " " + text(address));
}

void Send(int board, unsigned short address, const void* bytes, long size, int end) {
  note("Send " + text(board) + " " + text(address) + " [" +
       std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size)) + "] " +
       text(end));
}

#ifndef WITHOUT_RECEIVE
void Receive(int board, unsigned short address, void* buffer, long size, int termination) {
  note("Receive " + text(board) + " " + text(address) + " " + std::to_string(size) + " " +
       text(termination));
  const std::size_t length = std::strlen(state.reply);
  std::memcpy(buffer, state.reply, length);
  state.longCount = static_cast<long>(length);
}
#endif

void ReadStatusByte(int board, unsigned short address, short* statusByte) {
  note("ReadStatusByte " + text(board) + " " + text(address));
  *statusByte = state.statusByte;
}

}  // extern "C"
