#include <cstdio>

/// Shows that this machine can run programs for Windows at all, with nothing of the program in it.
int main() {
  std::puts("alive");
  return 0;
}
