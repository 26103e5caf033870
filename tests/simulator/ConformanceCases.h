// The rules of IEEE 488.2 that the simulated meter keeps, each as a short conversation with it.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace simmeter {

enum class End { kNone, kEoi, kNewLineEoi };

// One step of a controller, and what it must see.
struct Step {
  enum class Kind {
    kTell,            // sends `text` with the link's end; nothing is read
    kSend,            // GPIB: sends exactly these bytes with `end`. Line: exactly these bytes
    kAsk,             // as kTell; the whole reply must be `reply` and CR LF
    kRead,            // the rest of the reply must be `reply` and CR LF; when empty, LF alone
    kReadPart,        // GPIB: reads `number` bytes, which must be `reply`, without an end
    kReadBlock,       // as kTell; the reply must be a block of `number` bytes
    kNothing,         // a read must run into the time-out without a byte
    kPoll,            // GPIB: the serial poll must give `number`
    kService,         // GPIB: service must be requested (`number` 1) or not (0)
    kDeviceClear,     // GPIB: of the meter; of the address `number` when that is not 0
    kInterfaceClear,  // GPIB
  };
  Kind kind{};
  std::string text;
  std::string reply;
  int number = 0;
  End end = End::kNone;
};

enum class Links { kGpib, kLine, kBoth };

struct ConformanceCase {
  const char* name;
  const char* rule;  // for the table of the documentation
  Links links;
  std::vector<Step> steps;
  std::string scenario{};
};

std::span<const ConformanceCase> conformanceCases();

}  // namespace simmeter
