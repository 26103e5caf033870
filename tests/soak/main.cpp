#include <QApplication>
#include <QPushButton>
#include <QTimer>
#include <charconv>
#include <iostream>
#include <span>
#include <string_view>

#include "MeterOnGpib.h"
#include "MeterOnSerial.h"
#include "Run.h"
#include "Scenario.h"
#include "startup/StartUp.h"
#include "support/FakeWorld.h"
#include "ui/Windows.h"

namespace {

using namespace soak;

constexpr std::string_view kScenario =
    "number-traces = on\n"
    "board-timeout = 1\n"
    "setup = SYDRES 400\n";

std::string scenarioOf(Kind kind) {
  std::string text(kScenario);
  const char* const switched = kind == Kind::readouts ? "ON" : "OFF";
  for (const char* number : {"1", "2", "3", "4"}) {
    for (const char* command : {"MKSTATE", "GPGATS"}) {
      text += std::string("setup = ") + command + " 1," + number + "," + switched + "\n";
    }
  }
  if (kind == Kind::ccdf) text += "setup = TTMKS 1,ON\n";
  return text;
}

struct KindName {
  std::string_view name;
  Kind kind;
};
constexpr KindName kindNames[] = {{"gpib", Kind::gpib},
                                  {"rs232", Kind::rs232},
                                  {"readouts", Kind::readouts},
                                  {"ccdf", Kind::ccdf}};

bool readSeconds(std::string_view text, Time& time) {
  int seconds = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  time = std::chrono::seconds(seconds);
  return error == std::errc() && rest == text.data() + text.size() && seconds > 0;
}

std::optional<Plan> readPlan(std::span<char*> arguments) {
  constexpr std::size_t all = 4;
  if (arguments.size() != all) return std::nullopt;
  Plan plan;
  bool known = false;
  for (const KindName& each : kindNames) {
    if (each.name != arguments[1]) continue;
    plan.kind = each.kind;
    known = true;
  }
  if (!known || !readSeconds(arguments[2], plan.length) ||
      !readSeconds(arguments[3], plan.betweenFaults)) {
    return std::nullopt;
  }
  return plan;
}

/// The first dialog has an event loop of its own: its button is pressed as soon as it is there.
void answerTheQuestion(const char* button) {
  QTimer::singleShot(0, qApp, [button] {
    const QWidget* const dialog = QApplication::activeModalWidget();
    auto* const choice = dialog == nullptr ? nullptr : dialog->findChild<QPushButton*>(button);
    if (choice == nullptr) return answerTheQuestion(button);
    choice->click();
  });
}

/// In the middle of the run it is midnight.
Time startOfDay(const Plan& plan) { return std::chrono::hours(24) - plan.length / 2; }

/// The program's own composition, in a world that is simulated at the interfaces of src/platform.
[[noreturn]] void run(const Plan& plan) {
  using namespace pulsemod;
  const simmeter::Scenario scenario = simmeter::parseScenario(scenarioOf(plan.kind));
  for (const std::string& problem : scenario.problems) std::cout << problem << "\n";
  SimulatedTime time(startOfDay(plan));
  Ledger ledger;
  TraceReader reader(ledger);
  MeterOnGpib gpib(scenario, time, reader);
  MeterOnSerial serial(scenario, time, reader);
  const bool overSerial = plan.kind == Kind::rs232;
  MeterLine& line = overSerial ? static_cast<MeterLine&>(serial) : gpib;
  Run user(plan, time, line, ledger, reader);

  test::FakeSettingsStore store;
  store.write("Comms", "CommsType", overSerial ? "1" : "2");
  store.write("Comms", "GPIBAddress", "13");
  store.write("Comms", "RS232Baud", "57600");
  store.write("Comms", "RS232Port", "1");
  test::FakeFileDialogs fileDialogs;
  test::FakeFiles files;

  QApplication::setQuitOnLastWindowClosed(false);
  Windows windows([](int) { return std::string(); });
  const Services world{
      time, user, gpib, serial, store, user, fileDialogs, files, windows.pleaseWait(), user};
  const ServicesGuard guard(world);
  answerTheQuestion(plan.kind == Kind::ccdf ? "cmdCCDF" : "cmdLoadPM");
  StartUp(windows);
  std::abort();
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  const auto plan = readPlan({argv, static_cast<std::size_t>(argc)});
  if (!plan) {
    std::cerr << "Usage: soak gpib|rs232|readouts|ccdf SECONDS SECONDS-BETWEEN-FAULTS\n";
    return 2;
  }
  run(*plan);
}
