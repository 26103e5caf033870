#include "FakeGpib32.h"

#include <cstring>
#include <string>

/// Behaves as the interface maker's library with one board. Its calls are declared here once more,
/// not taken from the loader's header: the two must agree by themselves.

#define FAKE_EXPORT __declspec(dllexport)
#define FAKE_CALL __declspec(dllexport) __stdcall

namespace {

struct StatusVariables {
  int* status = nullptr;
  int* error = nullptr;
  int* count = nullptr;
  long* longCount = nullptr;
};

std::string log;
FakeGpib32State state;
StatusVariables registered;

std::string text(long number) { return std::to_string(number); }

void note(const std::string& call) { log += call + "\n"; }

void publish() {
  if (registered.status == nullptr) return;
  *registered.status = state.status;
  *registered.error = state.error;
  *registered.count = state.count;
  *registered.longCount = state.longCount;
}

void finish(const std::string& call) {
  note(call);
  publish();
}

}  // namespace

extern "C" {

FAKE_EXPORT const char* fakeGpibLog() { return log.c_str(); }
FAKE_EXPORT FakeGpib32State* fakeGpibState() { return &state; }
FAKE_EXPORT void fakeGpibReset() {
  log.clear();
  state = {};
  registered = {};
}

int FAKE_CALL RegisterGpibGlobalsForThread(int* status, int* error, int* count, long* longCount) {
  note("Register");
  if (state.registrationResult == FakeGpib32State::asUsual) {
    if (registered.status != nullptr) return 1;
    registered = {status, error, count, longCount};
    return 0;
  }
  registered = {status, error, count, longCount};
  return state.registrationResult;
}

int FAKE_CALL UnregisterGpibGlobalsForThread() {
  note("Unregister");
  registered = {};
  return 0;
}

int FAKE_CALL ibfindA(const char* name) {
  finish("ibfindA " + std::string(name));
  return state.foundDescriptor;
}

int FAKE_CALL ibonl(int descriptor, int online) {
  finish("ibonl " + text(descriptor) + " " + text(online));
  return state.status;
}

void FAKE_CALL SendIFC(int board) { finish("SendIFC " + text(board)); }

void FAKE_CALL DevClear(int board, unsigned short address) {
  finish("DevClear " + text(board) + " " + text(address));
}

void FAKE_CALL Send(int board, unsigned short address, const void* bytes, long size, int end) {
  finish("Send " + text(board) + " " + text(address) + " [" +
         std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size)) + "] " +
         text(end));
}

#ifndef WITHOUT_RECEIVE
void FAKE_CALL Receive(int board, unsigned short address, void* buffer, long size,
                       int termination) {
  const std::size_t length = std::strlen(state.reply);
  if (length <= static_cast<std::size_t>(size)) std::memcpy(buffer, state.reply, length);
  state.longCount = static_cast<long>(length);
  finish("Receive " + text(board) + " " + text(address) + " " + text(size) + " " +
         text(termination));
}
#endif

void FAKE_CALL ReadStatusByte(int board, unsigned short address, short* statusByte) {
  *statusByte = state.statusByte;
  finish("ReadStatusByte " + text(board) + " " + text(address));
}

}  // extern "C"
