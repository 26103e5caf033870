#pragma once

#include <cstdio>
#include <cstdlib>

#include "platform/ProgramEnd.h"

namespace pulsemod {

/// Ends the process without destructors and exit handlers: loops and windows are still on the
/// stack and would be destroyed under their own feet.
class HostProgramEnd : public ProgramEnd {
 public:
  [[noreturn]] void endProgram() override {
    std::fflush(nullptr);
    std::_Exit(0);
  }
};

}  // namespace pulsemod
