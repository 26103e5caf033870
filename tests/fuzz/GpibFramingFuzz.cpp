// Replies over GPIB in chunks, and what the library reports meanwhile.
#include <string>

#include "FuzzInput.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::fuzz {
namespace {

constexpr auto query = "*IDN?";

/// The last character of each chunk is its terminator.
std::string withoutTerminators(const std::string& bytes, std::size_t chunk) {
  constexpr std::size_t room = 4096;
  const std::size_t step = std::min(chunk, room);
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += step) {
    const std::string piece = bytes.substr(at, step);
    text += piece.substr(0, piece.size() - 1);
  }
  return text;
}

void checkWhole(std::string_view bytes, std::uint8_t choice) {
  test::FakeWorld world;
  world.gpib.chunkSize = choice < 128 ? 1U + choice : 1U << 20U;
  world.gpib.terminator.clear();
  world.meter.replies[query] = std::string(bytes);
  std::string reply = "old";
  const bool answered = choice % 2 == 0 ? QueryMeter(query, reply)
                                        : bytes.empty() || QueryMeterWhenReady(query, reply);
  if (bytes.empty()) return;
  require(answered, "a reply that came is delivered");
  require(reply == withoutTerminators(std::string(bytes), world.gpib.chunkSize),
          "a reply is its chunks without their terminators");
}

/// A library that fails and a meter that reports whatever it likes.
void checkTroubled(FuzzInput input) {
  test::FakeWorld world;
  world.gpib.chunkSize = 1U + input.byte();
  for (const char* call : {"Send", "Receive", "ReadStatusByte"}) {
    if (const std::uint8_t nth = input.byte() % 8; nth != 0) world.gpib.failNext[call] = nth;
  }
  if (const std::uint8_t result = input.byte(); result % 4 == 3) {
    world.gpib.registrationResults = {result % 5, input.byte() % 5};
  }
  for (std::uint8_t polls = input.byte() % 8; polls > 0; --polls) {
    world.gpib.statusBytes.push_back(input.byte());
  }
  world.meter.errorIsReported = input.byte() % 4 == 0;
  const bool whenReady = input.byte() % 2 == 0;
  const std::string bytes(input.rest());
  // What is polled without limit comes to an end here; each chunk of a reply takes a pause or two.
  world.events.always = [&world, most = 2 * bytes.size() + 50] {
    if (world.clock.sleeps.size() + world.events.deadlines.size() > most) {
      throw test::WaitsForEver("polled without limit");
    }
  };
  world.meter.replies[query] = bytes;
  std::string reply = "old";
  try {
    const bool answered = whenReady ? QueryMeterWhenReady(query, reply) : QueryMeter(query, reply);
    require(reply.size() <= bytes.size() + 1, "a reply is no longer than what came");
    require(!answered || world.gpib.timesCalled("Receive 13") > 0, "an answer was received");
    WaitOperationComplete("*CLS");
    ClearMeter();
    linkFailureReason();
  } catch (const test::WaitsForEver&) {
    require(whenReady, "only a meter that may take its time is waited for without limit");
  }
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod::fuzz;
  FuzzInput input(data, size);
  checkTroubled(input);
  const std::uint8_t choice = input.byte();
  checkWhole(input.rest(), choice);
  return 0;
}
