// The commands that are no settings: captures, traces, measurements and statistics.
#pragma once

#include <string>
#include <string_view>

#include "Meter.h"

namespace simmeter {

struct Readout {
  std::string_view mnemonic;  // as sent, with its question mark where it has one
  bool takesChannel;
  int elements;  // 0: none; otherwise a gate or marker number from 1 to this follows the channel
  // Answers, or carries out; called with checked arguments.
  Refusal (*run)(Meter& meter, int channel, int element, std::string& answer);
  bool answersBlock;
  bool echo;         // the answer begins with the mnemonic and the channel
  bool reachesBoth;  // `1&2` means both channels; otherwise channel 1 answers for both
};

// nullptr for an unknown mnemonic; upper or lower case.
const Readout* findReadout(std::string_view header);

Refusal runReadout(Meter& meter, const Readout& readout, std::string_view arguments,
                   std::string& answer, bool& isBlock);

}  // namespace simmeter
