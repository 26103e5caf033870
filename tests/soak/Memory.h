#pragma once

namespace soak {

/// What the process holds, in bytes: resident, and handed out by the allocator. Under
/// AddressSanitizer the first grows by freed memory that is kept for a while, the second does not.
struct Memory {
  long resident = 0;
  long allocated = 0;
};
Memory memoryNow();
extern const bool residentMemoryIsMeaningful;

/// Open file descriptors, but for the one that each further thread has for its events: the toolkit
/// paints in threads that come and go.
int openDescriptors();

}  // namespace soak
