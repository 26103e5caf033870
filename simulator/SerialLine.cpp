#include "SerialLine.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace simmeter {
namespace {

// Bytes leave in bursts of this length: fine enough to look steady, coarse enough to cost nothing.
constexpr auto kBurst = std::chrono::milliseconds(1);

struct Speed {
  speed_t code;
  long baud;
};
constexpr std::array kSpeeds = {
    Speed{B300, 300},     Speed{B600, 600},       Speed{B1200, 1200},     Speed{B2400, 2400},
    Speed{B4800, 4800},   Speed{B9600, 9600},     Speed{B19200, 19200},   Speed{B38400, 38400},
    Speed{B57600, 57600}, Speed{B115200, 115200}, Speed{B230400, 230400},
};
constexpr long kDefaultBaud = 9600;

std::string failure(std::string_view what) {
  return std::string(what) + ": " + std::strerror(errno);
}

}  // namespace

SerialLine::SerialLine(const Scenario& scenario, SerialOptions options, Transcript& transcript)
    : options_(std::move(options)),
      transcript_(transcript),
      exchange_(scenario, kSerialFraming, transcript) {}

SerialLine::~SerialLine() {
  removeLink();
  if (slave_ >= 0) ::close(slave_);
  if (master_ >= 0) ::close(master_);
  if (!device_.empty()) transcript_.write("OFFLINE", device_);
}

std::string SerialLine::open() {
  master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
  if (master_ < 0) return failure("no pseudo-terminal");
  if (::grantpt(master_) != 0 || ::unlockpt(master_) != 0) return failure("no pseudo-terminal");
  std::array<char, 128> name{};
  if (::ptsname_r(master_, name.data(), name.size()) != 0) return failure("no pseudo-terminal");
  slave_ = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (slave_ < 0) return failure(name.data());
  termios line{};
  if (::tcgetattr(slave_, &line) != 0) return failure(name.data());
  ::cfmakeraw(&line);
  ::cfsetspeed(&line, B9600);
  if (::tcsetattr(slave_, TCSANOW, &line) != 0) return failure(name.data());
  device_ = name.data();
  std::string problem = layLink();
  if (!problem.empty()) {
    options_.link.clear();  // not ours to remove
    return problem;
  }
  transcript_.write("ONLINE", device_);
  return {};
}

std::string SerialLine::layLink() {
  namespace fs = std::filesystem;
  if (options_.link.empty()) return {};
  const fs::path path(options_.link);
  std::error_code error;
  const fs::file_status status = fs::symlink_status(path, error);
  if (fs::exists(status) && !fs::is_symlink(status)) {
    return options_.link + ": exists and is not a symbolic link";
  }
  if (path.has_parent_path()) {
    fs::create_directories(path.parent_path(), error);
    if (error) return path.parent_path().string() + ": " + error.message();
  }
  // Made beside the old link and moved over it, so that a reader always finds one of the two.
  const fs::path fresh = options_.link + "." + std::to_string(::getpid());
  fs::remove(fresh, error);
  fs::create_symlink(device_, fresh, error);
  if (error) return options_.link + ": " + error.message();
  fs::rename(fresh, path, error);
  if (error) return options_.link + ": " + error.message();
  return {};
}

void SerialLine::removeLink() const {
  namespace fs = std::filesystem;
  if (options_.link.empty()) return;
  std::error_code error;
  // Another simulator may have taken the link over.
  if (fs::read_symlink(options_.link, error) == device_) fs::remove(options_.link, error);
}

Duration SerialLine::bytePace() const {
  long baud = options_.baud;
  if (baud == 0) return Duration::zero();
  if (baud < 0) {
    baud = kDefaultBaud;
    termios line{};
    if (::tcgetattr(master_, &line) == 0) {
      const speed_t code = ::cfgetospeed(&line);
      for (const Speed& speed : kSpeeds) {
        if (speed.code == code) baud = speed.baud;
      }
    }
  }
  return std::chrono::nanoseconds(1'000'000'000LL * kBitsPerByte / baud);
}

void SerialLine::readInput() {
  std::array<char, 1024> buffer{};
  const ssize_t count = ::read(master_, buffer.data(), buffer.size());
  if (count <= 0) return;
  // A program may claim the line for itself and end without giving it back. On a real port the
  // claim ends with the program; here the line stays open, so it is lifted once it has served.
  ::ioctl(slave_, TIOCNXCL);
  exchange_.setBytePace(bytePace());
  exchange_.receive({buffer.data(), static_cast<std::size_t>(count)}, false, Clock::now());
}

void SerialLine::writeReply() {
  Reply* reply = exchange_.reply();
  if (reply == nullptr) return;
  blocked_ = false;
  const std::size_t ready = reply->available(Clock::now());
  if (ready > 0) {
    const ssize_t count = ::write(master_, reply->bytes.data() + reply->taken, ready);
    if (count > 0) reply->taken += static_cast<std::size_t>(count);
    blocked_ = count < static_cast<ssize_t>(ready);
  }
  if (reply->allTaken()) exchange_.replyFinished();
}

bool SerialLine::nextWrite(TimePoint& when) {
  Reply* reply = exchange_.reply();
  if (reply == nullptr || blocked_) return false;
  when = reply->leaves(reply->taken);
  // In the middle of a paced reply bytes are gathered into a burst; the last one is not delayed.
  if (reply->perByte < kBurst && reply->taken > 0) {
    const TimePoint burst = std::min(when + kBurst, reply->leaves(reply->bytes.size() - 1));
    when = std::max(when, burst);
  }
  return true;
}

void SerialLine::serve(const volatile std::sig_atomic_t& stop, const sigset_t& waiting) {
  while (stop == 0 && !exchange_.hungUp()) {
    TimePoint when;
    timespec wait{};
    const bool timed = nextWrite(when);
    if (timed) {
      const auto left =
          std::max(std::chrono::duration_cast<std::chrono::nanoseconds>(when - Clock::now()),
                   std::chrono::nanoseconds::zero());
      wait.tv_sec = static_cast<time_t>(left.count() / 1'000'000'000);
      wait.tv_nsec = static_cast<long>(left.count() % 1'000'000'000);
    }
    pollfd events{master_, POLLIN, 0};
    if (blocked_) events.events |= POLLOUT;
    if (::ppoll(&events, 1, timed ? &wait : nullptr, &waiting) < 0 && errno != EINTR) return;
    // What came in is looked at first: a command before the last byte has left is an interruption.
    if ((events.revents & POLLIN) != 0) readInput();
    if ((events.revents & POLLOUT) != 0) blocked_ = false;
    if (!blocked_) writeReply();
  }
}

}  // namespace simmeter
