#include "Memory.h"

#include <malloc.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>

#if defined(__SANITIZE_ADDRESS__)
#define SOAK_UNDER_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SOAK_UNDER_SANITIZER
#endif
#endif

#ifdef SOAK_UNDER_SANITIZER
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace soak {

#ifdef SOAK_UNDER_SANITIZER
const bool residentMemoryIsMeaningful = false;
#else
const bool residentMemoryIsMeaningful = true;
#endif

namespace {

long allocatedNow() {
#ifdef SOAK_UNDER_SANITIZER
  return static_cast<long>(__sanitizer_get_current_allocated_bytes());
#else
  const struct mallinfo2 all = mallinfo2();
  return static_cast<long>(all.uordblks + all.hblkhd);
#endif
}

}  // namespace

Memory memoryNow() {
  std::ifstream file("/proc/self/statm");
  long total = 0;
  long resident = 0;
  file >> total >> resident;
  return {resident * ::sysconf(_SC_PAGESIZE), allocatedNow()};
}

int openDescriptors() {
  const auto entries = [](const char* folder) {
    const auto all = std::filesystem::directory_iterator(folder);
    return static_cast<int>(std::distance(begin(all), end(all)));
  };
  // One of them is that of the listing itself.
  const int descriptors = entries("/proc/self/fd") - 1;
  const int furtherThreads = entries("/proc/self/task") - 1;
  return descriptors - furtherThreads;
}

}  // namespace soak
