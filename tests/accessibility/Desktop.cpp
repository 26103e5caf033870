#include "Desktop.h"

#include <chrono>
#include <stdexcept>
#include <thread>

#include "Bench.h"

namespace endtoend {

namespace fs = std::filesystem;

namespace {

constexpr const char* screenProgram = "/usr/bin/Xvfb";
constexpr const char* busProgram = "/usr/bin/dbus-daemon";
constexpr const char* accessibilityService = "/usr/share/dbus-1/services/org.a11y.Bus.service";

/// The first line that a program writes.
std::string firstLine(Process& program, const fs::path& output) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (true) {
    const std::string text = readFile(output);
    if (const auto end = text.find('\n'); end != std::string::npos) return text.substr(0, end);
    if (!program.isRunning() || std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("nothing came in " + output.string());
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

}  // namespace

std::string Desktop::whatIsMissing() {
  for (const char* file : {screenProgram, busProgram, accessibilityService}) {
    if (!fs::exists(file)) return std::string(file) + " is not installed";
  }
  return {};
}

Desktop::Desktop(const fs::path& folder) : folder_(folder) {
  Process::Order order;
  // It writes its number when it is ready.
  order.command = {screenProgram, "-displayfd",   "1",         "-screen",
                   "0",           "1280x1024x24", "-nolisten", "tcp"};
  order.outputFile = folder_ / "screen.out";
  order.errorFile = folder_ / "screen.err";
  screen_.emplace(order);
  display_ = ":" + firstLine(*screen_, order.outputFile);

  order.command = {busProgram, "--session", "--nofork", "--nopidfile", "--print-address=1"};
  // For what the bus starts.
  order.environment = {
      {"DISPLAY", display_}, {"XDG_RUNTIME_DIR", folder_}, {"XDG_CONFIG_HOME", folder_ / "none"}};
  order.withoutVariables = {"AT_SPI_BUS_ADDRESS", "WAYLAND_DISPLAY"};
  order.outputFile = folder_ / "bus.out";
  order.errorFile = folder_ / "bus.err";
  bus_.emplace(order);
  sessionBus_ = firstLine(*bus_, order.outputFile);
}

std::map<std::string, std::string> Desktop::environment() const {
  return {{"QT_QPA_PLATFORM", "xcb"},
          {"DISPLAY", display_},
          {"DBUS_SESSION_BUS_ADDRESS", sessionBus_},
          {"AT_SPI_BUS_ADDRESS", ""},
          {"QT_ACCESSIBILITY", "1"},
          {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}};
}

}  // namespace endtoend
