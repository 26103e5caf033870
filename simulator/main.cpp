// simulated-meter: the simulated meter on a serial line.

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "NumberText.h"
#include "SerialLine.h"

namespace {

constexpr std::string_view kHelp =
    "Usage: simulated-meter [options]\n"
    "A simulated peak power meter on a pseudo-terminal. The first line printed is the path of its\n"
    "device. It runs until it is told to end (SIGTERM, SIGINT).\n"
    "\n"
    "  --link PATH        lay a symbolic link to the device at PATH, and remove it at the end\n"
    "  --baud N           send replies at N baud; 0: as fast as they are read.\n"
    "                     Without it the line's own speed is used.\n"
    "  --scenario FILE    read the scenario from FILE\n"
    "  --transcript FILE  append what happens to FILE\n"
    "  --help             print this text\n"
    "  --version          print the version\n"
    "\n"
    "SIMULATED_METER_SCENARIO and SIMULATED_METER_TRANSCRIPT give the two files where the options\n"
    "do not.\n";

constexpr int kUsageError = 2;
constexpr int kCannotRun = 1;

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int) { stopRequested = 1; }

struct Options {
  simmeter::SerialOptions line;
  std::string scenario;
  std::string transcript;
  std::optional<int> exitCode;  // set when there is nothing to run
};

std::string fromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

Options fail(Options options, const std::string& message) {
  std::cerr << "simulated-meter: " << message << "\n";
  options.exitCode = kUsageError;
  return options;
}

Options readOptions(std::span<char*> arguments) {
  Options options;
  options.scenario = fromEnvironment("SIMULATED_METER_SCENARIO");
  options.transcript = fromEnvironment("SIMULATED_METER_TRANSCRIPT");
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const std::string_view name = arguments[i];
    if (name == "--help" || name == "--version") {
      if (name == "--help") {
        std::cout << kHelp;
      } else {
        std::cout << "simulated-meter " SIMMETER_VERSION "\n";
      }
      options.exitCode = 0;
      return options;
    }
    const bool known =
        name == "--link" || name == "--baud" || name == "--scenario" || name == "--transcript";
    if (!known) return fail(options, "unknown option " + std::string(name));
    if (++i == arguments.size()) return fail(options, std::string(name) + " needs a value");
    const std::string_view value = arguments[i];
    if (name == "--link") options.line.link = value;
    if (name == "--scenario") options.scenario = value;
    if (name == "--transcript") options.transcript = value;
    if (name == "--baud") {
      const auto baud = simmeter::parseInteger(value);
      if (!baud || *baud < 0 || *baud > 10'000'000) return fail(options, "--baud: not a speed");
      options.line.baud = static_cast<long>(*baud);
    }
  }
  return options;
}

// Signals are let in only while the meter sleeps; the mask returned is for that time.
sigset_t catchSignals() {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigaddset(&blocked, SIGINT);
  sigprocmask(SIG_BLOCK, &blocked, &before);
  struct sigaction action {};
  action.sa_handler = requestStop;
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGINT, &action, nullptr);
  sigdelset(&before, SIGTERM);
  sigdelset(&before, SIGINT);
  return before;
}

int run(const Options& options) {
  simmeter::Transcript transcript;
  if (!options.transcript.empty() && !transcript.open(options.transcript)) {
    std::cerr << "simulated-meter: cannot write " << options.transcript << "\n";
    return kCannotRun;
  }
  simmeter::Scenario scenario;
  if (!options.scenario.empty()) scenario = simmeter::readScenario(options.scenario);
  for (const std::string& problem : scenario.problems) {
    std::cerr << "simulated-meter: " << options.scenario << ": " << problem << "\n";
  }
  if (!scenario.problems.empty()) return kUsageError;

  const sigset_t waiting = catchSignals();
  simmeter::SerialLine line(scenario, options.line, transcript);
  const std::string problem = line.open();
  if (!problem.empty()) {
    std::cerr << "simulated-meter: " << problem << "\n";
    return kCannotRun;
  }
  std::cout << line.device() << std::endl;
  line.serve(stopRequested, waiting);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = readOptions({argv, static_cast<std::size_t>(argc)});
  if (options.exitCode) return *options.exitCode;
  return run(options);
}
