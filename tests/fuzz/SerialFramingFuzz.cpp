// Bytes of a serial line in arbitrary pieces, taken apart into replies.
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::fuzz {
namespace {

constexpr std::size_t queries = 3;

/// The line as a whole: what stands between each "R" and the line feed after it.
std::vector<std::string> repliesIn(std::string_view line) {
  std::vector<std::string> replies;
  while (true) {
    const std::size_t start = line.find('R');
    if (start == std::string_view::npos) return replies;
    const std::size_t end = line.find('\n', start);
    if (end == std::string_view::npos) return replies;
    replies.emplace_back(line.substr(start + 1, end - start - 1));
    line.remove_prefix(end + 1);
  }
}

void sendInPieces(test::FakeSerial& serial, std::string_view line, std::uint8_t seed) {
  unsigned random = seed;
  while (!line.empty()) {
    random = random * 1103515245U + 12345U;
    const std::size_t length =
        std::min<std::size_t>(1 + (random >> 16U) % (1U + seed % 32U), line.size());
    serial.incoming.emplace_back(line.substr(0, length));
    line.remove_prefix(length);
  }
}

enum class End { silence, givenUp, lost };

/// False when the line fell silent.
bool query(std::string& reply, bool& answered) {
  try {
    answered = QueryMeter("*IDN?", reply);
  } catch (const test::WaitsForEver&) {
    return false;
  }
  return true;
}

/// A wait that the user has given up, and all that is asked after it.
void checkGivenUp(test::FakeWorld& world, End end) {
  require(end != End::givenUp || LinkGivenUp, "the link is given up");
  require(end != End::lost || linkIsLost(), "the link is lost");
  const std::string sent = world.serial.sent;
  std::string reply = "old";
  require(!QueryMeter("*IDN?", reply) && reply.empty(), "a link that is gone answers nothing");
  require(world.serial.sent == sent, "and is told nothing");
}

void prepareEnd(test::FakeWorld& world, End end) {
  if (end == End::givenUp) {
    ReplyMayBeGivenUp = true;
    world.progress.dismissedByUser = true;
  } else if (end == End::lost) {
    world.events.always = [&world] {
      if (world.serial.incoming.empty() && world.serial.outputCount() == 0) world.serial.lose();
    };
  }
}

void checkReplies(std::string_view line, std::uint8_t seed, End end) {
  test::FakeWorld world;
  world.useSerial();
  prepareEnd(world, end);
  sendInPieces(world.serial, line, seed);
  const std::vector<std::string> expected = repliesIn(line);
  for (std::size_t number = 0; number < queries; ++number) {
    std::string reply = "old";
    bool answered = false;
    if (!query(reply, answered)) {
      require(end == End::silence && number == expected.size(), "a reply that came is delivered");
      return;
    }
    if (!answered) {
      require(end == End::lost || number == expected.size(), "a reply that came is delivered");
      require(reply.find('\n') == std::string::npos, "a part of a reply has no line end");
      return checkGivenUp(world, end);
    }
    require(number < expected.size() && reply == expected[number],
            "a reply stands between R and line feed");
  }
  require(!LinkGivenUp, "a link that answers is not given up");
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod::fuzz;
  FuzzInput input(data, size);
  const std::uint8_t seed = input.byte();
  checkReplies(input.rest(), seed, static_cast<End>(seed % 3));
  return 0;
}
