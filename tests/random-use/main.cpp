#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "Chance.h"
#include "Life.h"
#include "Playground.h"
#include "Record.h"

namespace {

using namespace randomuse;

struct Options {
  Plan plan;
  std::uint64_t firstLife = 1;
};

bool readNumber(std::string_view text, std::uint64_t& number) {
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && rest == text.data() + text.size();
}

std::uint64_t seedOfTheClock() {
  return static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()) %
         1'000'000'000;
}

std::optional<Options> readOptions(std::span<char*> arguments) {
  constexpr std::size_t first = 3;
  if (arguments.size() < first || arguments.size() % 2 == 0) return std::nullopt;
  const std::string_view link = arguments[1];
  const std::string_view view = arguments[2];
  if ((link != "gpib" && link != "rs232") || (view != "profile" && view != "ccdf")) {
    return std::nullopt;
  }
  Options options;
  Plan& plan = options.plan;
  plan.overSerial = link == "rs232";
  plan.isCCDF = view == "ccdf";
  plan.seed = seedOfTheClock();
  plan.mostActs = UINT64_MAX;
  for (std::size_t i = first; i < arguments.size(); i += 2) {
    const std::string_view name = arguments[i];
    std::uint64_t number = 0;
    if (!readNumber(arguments[i + 1], number)) return std::nullopt;
    if (name == "--seconds") {
      plan.end = std::chrono::steady_clock::now() + std::chrono::seconds(number);
    } else if (name == "--actions") {
      plan.mostActs = number;
    } else if (name == "--seed") {
      plan.seed = number;
    } else if (name == "--from") {
      options.firstLife = number;
    } else {
      return std::nullopt;
    }
  }
  return options;
}

/// Empty when the process ended well.
std::string reasonOf(int status, const Record& record) {
  if (!record.failure().empty()) return record.failure();
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    if (signal == SIGALRM || signal == SIGPROF) return "an act came to no end";
    return "signal " + std::to_string(signal);
  }
  return WEXITSTATUS(status) == EXIT_SUCCESS ? "" : "status " + std::to_string(WEXITSTATUS(status));
}

void report(const Figures& figures, std::uint64_t lives, double seconds) {
  std::cout << "acts " << figures.acts << " (" << figures.onGpib << " with GPIB, "
            << figures.onSerial << " with RS232), in dialogs " << figures.inModal
            << ", in exchanges " << figures.inExchange << "\n"
            << "lives " << lives << ", boxes " << figures.boxes << ", file dialogs "
            << figures.files << ", faults that struck " << figures.faults << "\n"
            << "rests " << figures.rests << ", with traces after it " << figures.live
            << ", with a box " << figures.told << "\n"
            << "simulated time " << figures.simulatedMs / 1000 << " s, real time "
            << static_cast<long>(seconds) << " s\n";
}

bool hasTime(const Plan& plan, const Figures& figures) {
  return figures.acts < plan.mostActs && std::chrono::steady_clock::now() < plan.end;
}

int run(const Options& options) {
  const Plan& plan = options.plan;
  const auto began = std::chrono::steady_clock::now();
  std::cout << "seed " << plan.seed << std::endl;
  const Playground playground;
  Record record;
  std::uint64_t lives = 0;
  std::uint64_t digest = 0;
  for (std::uint64_t life = options.firstLife; hasTime(plan, record.figures()); ++life) {
    ++lives;
    record.beginLife();
    Chance seeds(plan.seed ^ life << 32U);
    const std::uint64_t seed = seeds.next();
    std::cout << "life " << life << ", seed " << seed << ", after " << record.figures().acts
              << " acts" << std::endl;
    const pid_t child = fork();
    if (child == 0) live(plan, seed, record);
    int status = 0;
    waitpid(child, &status, 0);
    record.endLife();
    const std::string reason = reasonOf(status, record);
    digest = digest * 31 + record.digest();
    if (reason.empty()) continue;
    constexpr std::size_t told = 60;
    std::cout << record.lastLines(told) << "FAILED in life " << life << " after "
              << record.figures().acts << " acts: " << reason << "\nrepeat it with --seed "
              << plan.seed << " --from " << life << "\n";
    return EXIT_FAILURE;
  }
  const std::chrono::duration<double> real = std::chrono::steady_clock::now() - began;
  report(record.figures(), lives, real.count());
  std::cout << record.coverage() << "\ndigest " << std::hex << digest << std::endl;
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  // Before the toolkit: what differs from run to run otherwise.
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("QT_NO_GLIB", "1", 1);
  setenv("QT_HASH_SEED", "0", 1);
  const auto options = readOptions({argv, static_cast<std::size_t>(argc)});
  if (!options) {
    std::cerr << "Usage: random-use gpib|rs232 profile|ccdf [--seconds N] [--actions N] [--seed S]"
                 " [--from LIFE]\n";
    return 2;
  }
  return run(*options);
}
