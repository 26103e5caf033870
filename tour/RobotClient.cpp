#include "RobotClient.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

namespace robot {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

RobotClient::RobotClient(int socket) : socket_(socket) {}

RobotClient::~RobotClient() { ::close(socket_); }

bool RobotClient::receive(Fields& fields, milliseconds limit) {
  const auto deadline = Clock::now() + limit;
  std::string line;
  while (!takeLine(received_, line)) {
    const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    pollfd waiting{socket_, POLLIN, 0};
    const int ready = ::poll(&waiting, 1, static_cast<int>(left.count()));
    if (ready <= 0) continue;
    std::array<char, 4096> buffer{};
    const ssize_t count = ::recv(socket_, buffer.data(), buffer.size(), 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) throw RobotError("the program has ended");
    received_.append(buffer.data(), static_cast<std::size_t>(count));
  }
  fields = decodeLine(line);
  return true;
}

std::string RobotClient::ask(const Fields& request) {
  const std::string what = encodeLine(request);
  if (!sendAll(socket_, what)) throw RobotError("the program has ended");
  Fields reply;
  if (!receive(reply, limit_)) {
    // Told to give up, the robot says what it was waiting for, unless the program stands still.
    constexpr milliseconds patience{10000};
    sendAll(socket_, encodeLine({"cancel"}));
    if (!receive(reply, patience)) {
      throw RobotError("the program does not react any more, asked for " + what);
    }
  }
  std::string text = reply.size() > 1 ? reply[1] : std::string();
  if (reply[0] != "ok") throw RobotRefusal(what + text);
  return text;
}

void RobotClient::giveUpAt(const std::string& window) { ask({"give-up-at", window}); }

std::string RobotClient::get(const std::string& name, const std::string& property) {
  return ask({"get", name, property});
}

bool RobotClient::is(const std::string& name, const std::string& property) {
  return get(name, property) == "true";
}

void RobotClient::waitUntil(const std::string& name, const std::string& property,
                            const std::string& value) {
  ask({"until", name, property, value});
}

void RobotClient::waitWhile(const std::string& name, const std::string& property,
                            const std::string& value) {
  ask({"while", name, property, value});
}

std::string RobotClient::windows() { return ask({"windows"}); }

std::string RobotClient::waitAny(const Fields& names) {
  Fields request{"any"};
  request.insert(request.end(), names.begin(), names.end());
  return ask(request);
}

void RobotClient::click(const std::string& name) { ask({"click", name}); }

void RobotClient::mouse(const std::string& step, const std::string& name, int x, int y) {
  ask({"mouse", step, name, std::to_string(x), std::to_string(y)});
}

void RobotClient::trigger(const std::string& action) { ask({"trigger", action}); }

void RobotClient::openMenuOf(const std::string& action) { ask({"open-menu", action}); }

void RobotClient::closeMenu() { ask({"close-menu"}); }

void RobotClient::type(const std::string& name, const std::string& text) {
  ask({"type", name, text});
}

void RobotClient::key(const std::string& window, const std::string& keys) {
  ask({"key", window, keys});
}

void RobotClient::chooseFile(const std::string& dialog, const std::string& path) {
  // A list of completions that opens meanwhile takes a Return for itself.
  constexpr int mostReturns = 5;
  constexpr milliseconds soon{1000};
  const std::string edit = dialog + "/fileNameEdit";
  type(edit, path);
  const milliseconds limit = limit_;
  for (int returns = 1; is(dialog, "visible"); ++returns) {
    key(edit, "Return");
    if (returns < mostReturns) limit_ = soon;
    try {
      waitGone(dialog);
    } catch (const RobotError&) {
      limit_ = limit;
      if (returns == mostReturns) throw;
    }
    limit_ = limit;
  }
}

void RobotClient::activate(const std::string& window) { ask({"activate", window}); }

void RobotClient::close(const std::string& window) { ask({"close", window}); }

void RobotClient::resize(const std::string& window, int width, int height) {
  ask({"resize", window, std::to_string(width), std::to_string(height)});
}

void RobotClient::grab(const std::string& name, const std::string& file) {
  ask({"grab", name, file});
}

void RobotClient::grabWhen(const std::string& name, const std::string& file,
                           const std::string& control, const std::string& property,
                           const std::string& value) {
  ask({"grab-when", control, property, value, name, file});
}

void RobotClient::picture(const std::string& file, const std::string& name) {
  ask({"picture", file, name});
}

}  // namespace robot
