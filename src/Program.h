#pragma once

class QApplication;

namespace pulsemod {

/// The whole program on the real outside world, from the start dialogs to the end of the process,
/// which ends from inside (platform/ProgramEnd.h). The program and the tour share it.
int runProgram(QApplication& application);

}  // namespace pulsemod
