#include "MeterRecord.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <utility>

namespace randomuse {

MeterRecord::MeterRecord(simmeter::Transcript& transcript)
    : file_(memfd_create("transcript", MFD_CLOEXEC)) {
  if (!transcript.open("/proc/self/fd/" + std::to_string(file_))) std::abort();
}

void MeterRecord::read() {
  std::array<char, 65536> bytes{};
  ssize_t count = 0;
  while ((count = ::read(file_, bytes.data(), bytes.size())) > 0) {
    unread_.append(bytes.data(), static_cast<std::size_t>(count));
  }
  // What was read is not kept; the meter appends.
  if (ftruncate(file_, 0) != 0 || lseek(file_, 0, SEEK_SET) != 0) std::abort();
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = unread_.find('\n', begin)) != std::string::npos;
       begin = end + 1) {
    take(std::string_view(unread_).substr(begin, end - begin));
  }
  unread_.erase(0, begin);
}

void MeterRecord::take(std::string_view line) {
  line.remove_prefix(line.find(' ') + 1);
  const std::string_view kind = line.substr(0, line.find(' '));
  if (kind == "<") {
    ++messages_;
    lastMessage_ = line.substr(kind.size() + 1);
    if (std::exchange(answered_, false)) struck_ = refused_ = false;
    // What has failed because of it is over with the message after that.
    if (std::exchange(cleared_, lastMessage_.starts_with("\"*CLS"))) {
      faultPending_ = refusalPending_ = false;
    }
  } else if (kind == ">") {
    for (const char* query : {"\"PMPBO ", "\"PMPO ", "\"TTFRO "}) {
      if (lastMessage_.starts_with(query)) ++traces_;
    }
    answered_ = true;
  } else if (kind == "FAULT") {
    ++faults_;
    struck_ = faultPending_ = true;
    answered_ = false;
  } else if (kind == "ERROR") {
    refused_ = refusalPending_ = true;
    answered_ = false;
  } else if (kind == "INTERRUPTED" || kind == "INTERRUPTED-AFTER-TIMEOUT") {
    if (!struck_) complaint_ = std::string(line) + " after " + lastMessage_;
  }
}

}  // namespace randomuse
