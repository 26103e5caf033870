#pragma once

namespace pulsemod::test {

/// Checks the convention of each of the library's calls: its type, and that the stack stands after
/// the call where it stood before. Compiled without optimisation, so that the stack is cleared
/// right after each call, and with a frame pointer, so that a wrong one is survived and reported.
void checkCallingConvention();

}  // namespace pulsemod::test
