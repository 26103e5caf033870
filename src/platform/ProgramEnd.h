#pragma once

namespace pulsemod {

/// The end of the program, at once and with status 0. No code after the call runs, whatever loops
/// and windows are on the stack. Tests make it throw.
class ProgramEnd {
 public:
  virtual ~ProgramEnd() = default;
  [[noreturn]] virtual void endProgram() = 0;
};

}  // namespace pulsemod
