#pragma once

class QApplication;

namespace pulsemod {

class Clock;

/// The whole program on the real outside world, from the start dialogs to the end of the process,
/// which ends from inside (platform/ProgramEnd.h). The program and the tour share it; the tour may
/// bring a clock of its own, which must live as long as the process.
int runProgram(QApplication& application, Clock* clock = nullptr);

}  // namespace pulsemod
