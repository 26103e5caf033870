#include "Life.h"

#include <sys/time.h>
#include <unistd.h>

#include <QApplication>
#include <QDesktopServices>
#include <cmath>
#include <cstdlib>
#include <string>

#include "Chance.h"
#include "Hand.h"
#include "MeterFaults.h"
#include "NoBrowser.h"
#include "Playground.h"
#include "Rest.h"
#include "Scenario.h"
#include "Watch.h"
#include "World.h"
#include "host/QtFiles.h"
#include "link/MeterLink.h"
#include "profile/MeasurementSettings.h"
#include "startup/StartUp.h"
#include "support/FakeWorld.h"
#include "ui/Windows.h"

namespace randomuse {

using namespace std::chrono_literals;

namespace {

std::string anyScenario(Chance& chance) {
  const auto onOff = [&chance] { return chance.oneIn(2) ? ",ON\n" : ",OFF\n"; };
  std::string text =
      "number-traces = on\nboard-timeout = 1\nseed = " + std::to_string(chance.below(1000)) + "\n";
  text += chance.oneIn(2) ? "setup = SYDRES 400\n" : "setup = SYDRES 200\n";
  for (const char* number : {"1", "2", "3", "4"}) {
    for (const char* command : {"MKSTATE", "GPGATS", "GPFENS"}) {
      text += std::string("setup = ") + command + " 1," + number + onOff();
    }
  }
  text += std::string("setup = TTMKS 1") + onOff();
  text += std::string("setup = GP1REPS 1") + onOff();
  if (chance.oneIn(10)) text += "setup = CHACTIV 1&2\n";
  if (chance.oneIn(50)) text += "model = QX9999\n";
  return text;
}

/// What the program finds of the run before.
void fillStore(Chance& chance, const Plan& plan, pulsemod::test::FakeSettingsStore& store) {
  if (chance.oneIn(20)) return;
  store.write("Comms", "CommsType", plan.overSerial ? "1" : "2");
  store.write("Comms", "GPIBAddress", chance.oneIn(40) ? "5" : "13");
  store.write("Comms", "RS232Baud", chance.oneIn(20) ? "odd" : "57600");
  store.write("Comms", "RS232Port", "1");
  if (chance.oneIn(20)) store.failure = "The disk is full.";
}

Time anyStartOfDay(Chance& chance) {
  return chance.oneIn(4) ? 24h - std::chrono::seconds(chance.between(1, 60))
                         : std::chrono::seconds(chance.below(86'000));
}

/// An act that keeps the processor for 20 s, or is not over after two minutes on a busy machine,
/// ends the process.
void limitAct() {
  constexpr unsigned longest = 120;
  constexpr itimerval busy{{0, 0}, {20, 0}};
  alarm(longest);
  setitimer(ITIMER_PROF, &busy, nullptr);
}

/// Everything of a life, and the user's mind.
class Life {
 public:
  Life(const Plan& plan, std::uint64_t seed, Record& record);
  [[noreturn]] void run();

 private:
  void turn(bool mustAnswer);
  Time gap();
  void setUpHand();

  const Plan& plan_;
  Record& record_;
  Chance chance_;
  soak::SimulatedTime time_;
  simmeter::Scenario scenario_;
  soak::Ledger ledger_;
  soak::TraceReader reader_{ledger_};
  soak::MeterOnGpib gpib_;
  soak::MeterOnSerial serial_;
  pulsemod::Windows windows_;
  World world_;
  Hand hand_;
  Watch watch_;
  MeterFaults faults_;
  Rest rest_;
  pulsemod::test::FakeSettingsStore store_;
  pulsemod::QtFiles files_;
  bool hasLoop_ = true;
};

Life::Life(const Plan& plan, std::uint64_t seed, Record& record)
    : plan_(plan),
      record_(record),
      chance_(seed),
      time_(anyStartOfDay(chance_)),
      scenario_(simmeter::parseScenario(anyScenario(chance_))),
      gpib_(scenario_, time_, reader_),
      serial_(scenario_, time_, reader_),
      windows_([](int port) { return port == 1 ? std::string("a port") : std::string(); }),
      world_(record, time_, serial_, windows_.pleaseWait()),
      hand_(chance_, record),
      watch_(record, world_, gpib_, serial_),
      faults_(chance_, record, gpib_, serial_),
      rest_(record, time_, world_, hand_, watch_, faults_) {
  for (const std::string& problem : scenario_.problems) record_.fail(problem);
  fillStore(chance_, plan, store_);
  setUpHand();
  world_.setHooks({[this](bool mustAnswer) { turn(mustAnswer); }, [this] { return gap(); },
                   [this](const Box& box) { watch_.box(box); }, [this] { watch_.end(); }});
}

void Life::setUpHand() {
  if (plan_.isCCDF) {
    hand_.prefer("frmConfigureQuestion", {"cmdCCDF"});
  } else {
    hand_.prefer("frmConfigureQuestion",
                 {"cmdLoadPM", "cmdLoadPM", "cmdLoadPM", "cmdConfig", "cmdConfig", "cmdjuststart"});
  }
  hand_.prefer("frmComms", {plan_.overSerial ? "optComms_1" : "optComms_0", "cmdSave", "cmdSave"});
  hand_.spare({"frmMain/menuExit", "frmMain/close", "frmCCDF/close"});
}

Time Life::gap() {
  constexpr double meanMs = 60;
  constexpr double smallest = 1e-4;
  if (chance_.oneIn(50)) return std::chrono::milliseconds(chance_.between(500, 4000));
  const double share = std::max(smallest, chance_.below(10'000) / 10'000.0);
  return std::chrono::microseconds(static_cast<long>(-std::log(share) * meanMs * 1000));
}

void Life::turn(bool mustAnswer) {
  constexpr int actsBetweenRests = 150;
  limitAct();
  watch_.look();
  const QWidget* const modal = QApplication::activeModalWidget();
  const bool isBox = modal != nullptr && modal->objectName() == QLatin1String("messageBox");
  if (!isBox && (modal != nullptr || !rest_.isOn())) watch_.act();
  if (rest_.isOn()) return rest_.step();
  Figures& figures = record_.figures();
  if (figures.acts >= plan_.mostActs || std::chrono::steady_clock::now() >= plan_.end) {
    record_.line("time is up");
    _exit(EXIT_SUCCESS);
  }
  const bool canRest = hasLoop_ && Watch::mainWindow() != nullptr && !mustAnswer;
  if (canRest && chance_.oneIn(actsBetweenRests)) return rest_.begin();
  ++figures.acts;
  // The link is not chosen yet while the first dialogs are open.
  const bool overSerial = Watch::mainWindow() == nullptr
                              ? plan_.overSerial
                              : pulsemod::LinkSettings.commsType == pulsemod::commsTypeRS232;
  ++(overSerial ? figures.onSerial : figures.onGpib);
  faults_.maybe(plan_.isCCDF);
  if (mustAnswer) {
    hand_.answer();
  } else {
    hand_.act();
  }
  watch_.look();
}

void Life::run() {
  pulsemod::InitMeasurementSettings();
  const pulsemod::Services services{time_,  world_, gpib_,  serial_, store_,
                                    world_, world_, files_, world_,  world_};
  const pulsemod::ServicesGuard guard(services);
  Playground::fill();
  pulsemod::StartUp(windows_);
  hasLoop_ = false;
  world_.runEventLoop();
}

Record* warned = nullptr;

/// What the toolkit warns of is a fault of the program, but for what this platform and its fonts
/// cannot do, and what its own print dialog does with an empty name.
void takeWarning(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
  for (const char* known : {"This plugin does not support", "OpenType support missing",
                            "QFSFileEngine::open: No file name specified"}) {
    if (text.contains(QLatin1String(known))) return;
  }
  warned->line("QT: " + text.toStdString());
  if (type != QtDebugMsg && type != QtInfoMsg) warned->fail("the toolkit: " + text.toStdString());
}

}  // namespace

void live(const Plan& plan, std::uint64_t seed, Record& record) {
  warned = &record;
  qInstallMessageHandler(takeWarning);
  int count = 1;
  std::string name = "random-use";
  char* arguments[] = {name.data(), nullptr};
  QApplication application(count, arguments);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  // A list that a click has opened takes no release for so long, in real time.
  QApplication::setDoubleClickInterval(1);
  NoBrowser noBrowser;
  for (const char* scheme : {"http", "https", "mailto"}) {
    QDesktopServices::setUrlHandler(QLatin1String(scheme), &noBrowser, "open");
  }
  Life(plan, seed, record).run();
}

}  // namespace randomuse
