#pragma once

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace pulsemod::test {

/// The two ends of a serial cable: the device that a program opens, and the end of the other side.
class Pty {
 public:
  Pty() {
    char name[128] = {};
    int device = -1;
    if (openpty(&otherEnd_, &device, name, nullptr, nullptr) != 0) std::abort();
    termios attributes{};
    tcgetattr(device, &attributes);
    cfmakeraw(&attributes);
    tcsetattr(device, TCSANOW, &attributes);
    ::close(device);
    fcntl(otherEnd_, F_SETFL, O_NONBLOCK);
    device_ = name;
  }
  ~Pty() { unplug(); }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  const std::string& device() const { return device_; }

  void unplug() {
    if (otherEnd_ >= 0) ::close(otherEnd_);
    otherEnd_ = -1;
  }

  void send(const std::string& text) const {
    if (::write(otherEnd_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
      std::abort();
    }
  }

  /// What has come in until now.
  std::string received() const {
    std::string all;
    char piece[4096];
    while (true) {
      const ssize_t count = ::read(otherEnd_, piece, sizeof piece);
      if (count <= 0) return all;
      all.append(piece, static_cast<std::size_t>(count));
    }
  }

  /// The line settings as the device's user has set them.
  termios attributes() const {
    termios result{};
    tcgetattr(otherEnd_, &result);
    return result;
  }

 private:
  int otherEnd_ = -1;
  std::string device_;
};

}  // namespace pulsemod::test
