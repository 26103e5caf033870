#include "ConformanceRun.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>

#include <map>
#include <stdexcept>

#include "Bench.h"
#include "GpibBus.h"
#include "GpibCalls.h"
#include "MeterProgram.h"

namespace simmeter {
namespace {

constexpr int kAddress = 13;
constexpr unsigned kLongestCase = 20;                   // s; then the meter hangs
constexpr int kLinePatience = 2000;                     // ms for a reply over RS232
constexpr int kBrokenPatience = 300;                    // ms, where none may come at all
constexpr int kLineSilence = 150;                       // ms without a byte: there is no reply
constexpr const char* kQuick = "board-timeout = 40\n";  // silence shows soon

// What a step saw that it should not have seen; empty when all is well.
using Finding = std::string;

std::string shown(std::string_view bytes) {
  std::string text;
  appendQuoted(text, bytes, 120);
  return text;
}

Finding compare(std::string_view seen, std::string_view expected) {
  return seen == expected ? Finding{} : shown(seen) + " instead of " + shown(expected);
}

Finding compare(std::string_view what, int seen, int expected) {
  if (seen == expected) return {};
  return std::string(what) + " " + std::to_string(seen) + " instead of " + std::to_string(expected);
}

// `#`, the count of digits, the length, the bytes, and then the end.
Finding checkBlock(std::string_view reply, std::string_view prefix, int bytes) {
  const std::string length = std::to_string(bytes);
  const std::string head = std::string(prefix) + "#" + std::to_string(length.size()) + length;
  if (Finding wrong = compare(reply.substr(0, head.size()), head); !wrong.empty()) return wrong;
  const auto whole = head.size() + static_cast<std::size_t>(bytes) + 1;
  if (reply.size() != whole || reply.back() != '\n') {
    return std::to_string(reply.size()) + " bytes instead of " + std::to_string(whole) +
           " that end with NL";
  }
  return {};
}

class Controller {
 public:
  virtual ~Controller() = default;
  virtual Finding perform(const Step& step) = 0;
};

class GpibController : public Controller {
 public:
  explicit GpibController(const GpibCalls& calls) : calls_(calls) { calls_.SendIFC(0); }

  Finding perform(const Step& step) override {
    switch (step.kind) {
      case Step::Kind::kTell:
        return send(step.text, kSendNewLineEoi);
      case Step::Kind::kSend:
        return send(step.text, step.end == End::kNone  ? kSendNoEnd
                               : step.end == End::kEoi ? kSendEoi
                                                       : kSendNewLineEoi);
      case Step::Kind::kAsk:
        if (Finding wrong = send(step.text, kSendNewLineEoi); !wrong.empty()) return wrong;
        return expect(receive(), step.reply + "\r\n");
      case Step::Kind::kRead:
        return expect(receive(), step.reply + (step.reply.empty() ? "\n" : "\r\n"));
      case Step::Kind::kReadPart: {
        const std::string bytes = receive(step.number);
        if (ended()) return "an end after " + shown(bytes);
        return compare(bytes, step.reply);
      }
      case Step::Kind::kReadBlock: {
        if (Finding wrong = send(step.text, kSendNewLineEoi); !wrong.empty()) return wrong;
        const std::string reply = receive();
        return ended() ? checkBlock(reply, "", step.number) : "no end after " + shown(reply);
      }
      case Step::Kind::kNothing: {
        const std::string bytes = receive();
        if (!bytes.empty()) return shown(bytes) + " instead of nothing";
        return compare("error", calls_.ThreadIberr(), iberr::kAborted);
      }
      case Step::Kind::kPoll: {
        short status = -1;
        calls_.ReadStatusByte(0, kAddress, &status);
        return compare("status", status, step.number);
      }
      case Step::Kind::kService: {
        calls_.ibfind("GPIB0");  // a call that touches nothing, for its status
        const int seen = (calls_.ThreadIbsta() & ibsta::kServiceRequest) != 0 ? 1 : 0;
        return compare("request", seen, step.number);
      }
      case Step::Kind::kDeviceClear:
        calls_.DevClear(0, static_cast<std::uint16_t>(step.number != 0 ? step.number : kAddress));
        return failure("device clear");
      case Step::Kind::kInterfaceClear:
        calls_.SendIFC(0);
        return failure("interface clear");
    }
    return "no such step";
  }

 private:
  Finding failure(std::string_view what) const {
    if ((calls_.ThreadIbsta() & ibsta::kError) == 0) return {};
    return std::string(what) + " failed with " + std::to_string(calls_.ThreadIberr());
  }
  Finding send(std::string_view bytes, int end) {
    calls_.Send(0, kAddress, bytes.data(), static_cast<long>(bytes.size()), end);
    return failure("Send");
  }
  std::string receive(long most = 100000) {
    std::string buffer(static_cast<std::size_t>(most), '\0');
    calls_.Receive(0, kAddress, buffer.data(), most, kStopOnEnd);
    buffer.resize(static_cast<std::size_t>(calls_.ThreadIbcntl()));
    return buffer;
  }
  bool ended() const { return (calls_.ThreadIbsta() & ibsta::kEnd) != 0; }
  Finding expect(std::string_view seen, std::string_view expected) const {
    if (Finding wrong = compare(seen, expected); !wrong.empty()) return wrong;
    return ended() ? Finding{} : "no end after " + shown(seen);
  }

  const GpibCalls& calls_;
};

class LineController : public Controller {
 public:
  LineController(const std::string& device, int patience)
      : line_(::open(device.c_str(), O_RDWR | O_NOCTTY)), patience_(patience) {
    termios settings{};
    ::tcgetattr(line_, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(line_, TCSANOW, &settings);
  }
  LineController(const LineController&) = delete;
  LineController& operator=(const LineController&) = delete;
  ~LineController() override {
    if (line_ >= 0) ::close(line_);
  }

  Finding perform(const Step& step) override {
    switch (step.kind) {
      case Step::Kind::kTell:
        return write(step.text + "\r");
      case Step::Kind::kSend:
        return write(step.text);
      case Step::Kind::kAsk:
        if (Finding wrong = write(step.text + "\r"); !wrong.empty()) return wrong;
        return expectText(step.reply);
      case Step::Kind::kRead:
        return expectText(step.reply);
      case Step::Kind::kReadBlock: {
        if (Finding wrong = write(step.text + "\r"); !wrong.empty()) return wrong;
        const std::size_t whole =
            3 + std::to_string(step.number).size() + static_cast<std::size_t>(step.number) + 1;
        return checkBlock(
            read(patience_, [&](const std::string& seen) { return seen.size() >= whole; }), "R",
            step.number);
      }
      case Step::Kind::kNothing: {
        const std::string bytes =
            read(kLineSilence, [](const std::string& seen) { return !seen.empty(); });
        return bytes.empty() ? Finding{} : shown(bytes) + " instead of nothing";
      }
      default:
        return "no such step on this link";
    }
  }

 private:
  Finding write(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t count = ::write(line_, bytes.data(), bytes.size());
      if (count <= 0) return "the line took no bytes";
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
  }
  template <typename Done>
  std::string read(int patience, Done done) {
    std::string bytes;
    while (!done(bytes)) {
      pollfd events{line_, POLLIN, 0};
      if (::poll(&events, 1, patience) <= 0) break;
      std::array<char, 4096> buffer{};
      const ssize_t count = ::read(line_, buffer.data(), buffer.size());
      if (count <= 0) break;
      bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return bytes;
  }
  Finding expectText(const std::string& text) {
    const std::string whole = "R" + text + "\r\n";
    return compare(read(patience_,
                        [&](const std::string& seen) {
                          return seen.size() >= whole.size() ||
                                 (!seen.empty() && seen.back() == '\n');
                        }),
                   whole);
  }

  int line_;
  int patience_;
};

Finding converse(const ConformanceCase& one, Controller& controller) {
  for (std::size_t i = 0; i < one.steps.size(); ++i) {
    const Finding wrong = controller.perform(one.steps[i]);
    if (wrong.empty()) continue;
    return "step " + std::to_string(i + 1) + " " + shown(one.steps[i].text.substr(0, 60)) + ": " +
           wrong;
  }
  return {};
}

// Loaded before the processes part, and first called after it: each has a meter of its own.
const GpibCalls& callsOf(const std::string& library) {
  static std::map<std::string, GpibCalls> loaded;
  const auto [at, isNew] = loaded.try_emplace(library);
  if (isNew) {
    if (const std::string missing = at->second.loadFrom(library); !missing.empty()) {
      throw std::runtime_error(missing);
    }
  }
  return at->second;
}

Finding converseInThisProcess(const ConformanceCase& one, Link link, const MeterBuild& build,
                              const std::string& folder) {
  const std::string scenario = folder + "/scenario";
  writeFile(scenario, kQuick + one.scenario);
  if (build.brokenRule.empty()) {
    ::unsetenv("SIMULATED_METER_BROKEN_RULE");
  } else {
    ::setenv("SIMULATED_METER_BROKEN_RULE", build.brokenRule.c_str(), 1);
  }
  if (link == Link::kGpib) {
    ::setenv("SIMULATED_METER_SCENARIO", scenario.c_str(), 1);
    ::unsetenv("SIMULATED_METER_TRANSCRIPT");
    GpibController controller(callsOf(build.library));
    return converse(one, controller);
  }
  MeterProgram program(build.program, {"--scenario", scenario, "--baud", "0"}, folder + "/errors");
  const std::string device = program.firstLine();
  if (device.empty()) return "the meter does not start";
  LineController controller(device, build.brokenRule.empty() ? kLinePatience : kBrokenPatience);
  const Finding wrong = converse(one, controller);
  program.signal(SIGTERM);
  const int code = program.wait();
  return code == 0 ? wrong : "the meter ended with " + std::to_string(code);
}

}  // namespace

bool usesLink(const ConformanceCase& one, Link link) {
  return one.links == Links::kBoth || (one.links == Links::kGpib) == (link == Link::kGpib);
}

std::string runCase(const ConformanceCase& one, Link link, const MeterBuild& build) {
  if (link == Link::kGpib) callsOf(build.library);
  const TemporaryFolder folder;
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return "no pipe";
  const pid_t process = ::fork();
  if (process == 0) {
    ::alarm(kLongestCase);
    const Finding wrong = converseInThisProcess(one, link, build, folder / ".");
    [[maybe_unused]] const ssize_t written = ::write(ends[1], wrong.data(), wrong.size());
    ::_exit(wrong.empty() ? 0 : 1);
  }
  ::close(ends[1]);
  std::string finding;
  std::array<char, 1024> buffer{};
  for (ssize_t count = 0; (count = ::read(ends[0], buffer.data(), buffer.size())) > 0;) {
    finding.append(buffer.data(), static_cast<std::size_t>(count));
  }
  ::close(ends[0]);
  int status = 0;
  ::waitpid(process, &status, 0);
  if (WIFSIGNALED(status)) return "ended by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) != 0 && finding.empty()) return "the process failed";
  return finding;
}

}  // namespace simmeter
