// The C calls of the GPIB library, on one simulated board with one simulated meter.
// SIMULATED_METER_SCENARIO and SIMULATED_METER_TRANSCRIPT name the scenario and transcript files.

#include <cstdint>
#include <cstdlib>
#include <mutex>

#include "GpibBus.h"

namespace {

using simmeter::CallStatus;

// The results of the last call of each thread, as the library's users expect.
thread_local CallStatus lastCall;

struct World {
  World() : scenario(readScenarioFromEnvironment()), opened(openTranscript()) {}

  static simmeter::Scenario readScenarioFromEnvironment() {
    const char* path = std::getenv("SIMULATED_METER_SCENARIO");
    return path != nullptr && *path != '\0' ? simmeter::readScenario(path) : simmeter::Scenario{};
  }

  bool openTranscript() {
    const char* path = std::getenv("SIMULATED_METER_TRANSCRIPT");
    return path != nullptr && *path != '\0' && transcript.open(path);
  }

  simmeter::Transcript transcript;
  simmeter::Scenario scenario;
  bool opened;
  std::mutex mutex;
  simmeter::GpibBus bus{scenario, transcript};
};

// Built at the first call. Never destroyed: a program may end while another thread is inside.
World& world() {
  static World& instance = *new World;
  return instance;
}

template <typename Call>
void perform(Call call) {
  World& all = world();
  const std::lock_guard lock(all.mutex);
  lastCall = call(all.bus);
}

}  // namespace

#define SIMMETER_API extern "C" __attribute__((visibility("default")))

SIMMETER_API void SendIFC(int board) {
  perform([&](simmeter::GpibBus& bus) { return bus.sendInterfaceClear(board); });
}

SIMMETER_API void DevClear(int board, std::uint16_t address) {
  perform([&](simmeter::GpibBus& bus) { return bus.deviceClear(board, address); });
}

SIMMETER_API void Send(int board, std::uint16_t address, const void* data, long count, int end) {
  perform([&](simmeter::GpibBus& bus) { return bus.send(board, address, data, count, end); });
}

SIMMETER_API void Receive(int board, std::uint16_t address, void* buffer, long count,
                          int termination) {
  perform([&](simmeter::GpibBus& bus) {
    return bus.receive(board, address, buffer, count, termination);
  });
}

SIMMETER_API void ReadStatusByte(int board, std::uint16_t address, short* result) {
  perform([&](simmeter::GpibBus& bus) { return bus.readStatusByte(board, address, result); });
}

SIMMETER_API int ibfind(const char* name) {
  int descriptor = -1;
  perform([&](simmeter::GpibBus& bus) { return bus.find(name, descriptor); });
  return descriptor;
}

SIMMETER_API int ibonl(int descriptor, int online) {
  perform([&](simmeter::GpibBus& bus) { return bus.setOnline(descriptor, online != 0); });
  return lastCall.status;
}

SIMMETER_API int ThreadIbsta(void) { return lastCall.status; }
SIMMETER_API int ThreadIberr(void) { return lastCall.error; }
SIMMETER_API long ThreadIbcntl(void) { return lastCall.count; }
