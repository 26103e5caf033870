#include <sys/wait.h>
#include <unistd.h>

#include <QAction>
#include <QFontDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSet>

#include "WindowTest.h"
#include "profile/AcquisitionLoop.h"
#include "profile/MeasurementSettings.h"
#include "support/FakeWorld.h"
#include "ui/MainWindow.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// `frmMain` in a world of fakes, as the view of the profile.
struct Main {
  FakeWorld world;
  int commsShown = 0;
  MainWindow window{[this] { ++commsShown; }};
  ProfileViewGuard isTheView{window};

  QAction& item(const char* name) { return *window.findChild<QAction*>(name); }
  QStringList itemsOf(const QString& caption) {
    for (const QAction* entry : window.menuBar()->actions()) {
      if (entry->text() != caption) continue;
      QStringList names;
      for (const QAction* action : entry->menu()->actions()) {
        names << (action->isSeparator() ? "-" : action->objectName());
      }
      return names;
    }
    return {};
  }
};

QChar mnemonicOf(const QString& caption) {
  const auto at = caption.indexOf('&');
  return at < 0 ? QChar() : caption.at(at + 1).toLower();
}

/// Ends the process at once, as the real one does, with a status that tells it from a crash.
struct ExitingEnd : ProgramEnd {
  static constexpr int status = 42;
  [[noreturn]] void endProgram() override { _exit(status); }
};

/// Runs `act` in a process of its own with `world` and a program end that ends it; its status.
int statusOfProcess(FakeWorld& world, const std::function<void()>& act) {
  const pid_t child = fork();
  if (child == 0) {
    ExitingEnd end;
    const Services exiting{world.clock,       world.events,   world.gpib,
                           world.serial,      world.store,    world.dialogs,
                           world.fileDialogs, world.progress, end};
    const ServicesGuard guard(exiting);
    act();
    _exit(1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

class MainMenuTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
  void menus();
  void mnemonicsAreUnique();
  void shortcutsDoNotClash();
  void initialStates();
  void acquisitionChangesStates();
  void startAndStop();
  void freeRun();
  void displayUpdate();
  void secondProfile();
  void commsAreShown();
  void unloadEndsTheSession();
  void exitEndsTheProcess();
  void closingEndsTheProcess();
  void faultOfAHandlerIsReported();
};

void MainMenuTest::menus() {
  Main main;
  QCOMPARE(main.itemsOf("&File"), (QStringList{"menuOpen", "menuSave", "-", "menuExit"}));
  QStringList pulseMod = main.itemsOf("&PulseMod");
  pulseMod.removeAll("-");
  QCOMPARE(pulseMod, (QStringList{"menuStart", "menuStop", "menuFreeRun", "menuSecondProfile",
                                  "menudisplayupdate"}));
  QCOMPARE(main.itemsOf("&Settings"), (QStringList{"menuProperties", "menuComs", "menuGraphFont"}));
  QCOMPARE(main.itemsOf("&View"), (QStringList{"menuInfoBox", "menuMarkers"}));
  QCOMPARE(main.window.menuBar()->actions().size(), 4);
  QCOMPARE(main.item("menuSecondProfile").text(), "&Second Profile");
}

void MainMenuTest::mnemonicsAreUnique() {
  Main main;
  QList<QList<QAction*>> menus{main.window.menuBar()->actions()};
  for (const QAction* entry : main.window.menuBar()->actions()) menus << entry->menu()->actions();
  for (const QList<QAction*>& menu : menus) {
    QSet<QChar> seen;
    for (const QAction* action : menu) {
      if (action->isSeparator()) continue;
      const QChar mnemonic = mnemonicOf(action->text());
      QVERIFY2(!mnemonic.isNull(), qPrintable(action->text()));
      QVERIFY2(!seen.contains(mnemonic), qPrintable(action->text()));
      seen << mnemonic;
    }
  }
}

void MainMenuTest::shortcutsDoNotClash() {
  Main main;
  QSet<QKeySequence> seen;
  for (const QAction* entry : main.window.menuBar()->actions()) {
    seen << QKeySequence(Qt::ALT | Qt::Key(mnemonicOf(entry->text()).toUpper().unicode()));
  }
  QCOMPARE(seen.size(), 4);
  for (const QAction* action : main.window.findChildren<QAction*>()) {
    for (const QKeySequence& shortcut : action->shortcuts()) {
      QVERIFY2(!seen.contains(shortcut), qPrintable(shortcut.toString()));
      seen << shortcut;
    }
  }
  QCOMPARE(main.item("menuStart").shortcut(), QKeySequence("F5"));
  QCOMPARE(main.item("menuStop").shortcut(), QKeySequence("Shift+F5"));
  QCOMPARE(main.item("menuExit").shortcut(), QKeySequence("Ctrl+Q"));
}

void MainMenuTest::initialStates() {
  Main main;
  const QSet<QString> off{"menuStop",       "menuOpen",    "menuSave",
                          "menuProperties", "menuInfoBox", "menuMarkers"};
  int items = 0;
  for (const QAction* action : main.window.findChildren<QAction*>()) {
    if (!action->objectName().startsWith("menu")) continue;
    ++items;
    QCOMPARE(action->isEnabled(), !off.contains(action->objectName()));
    QVERIFY(!action->isChecked());
    const bool isCheckItem =
        action->objectName() == "menuSecondProfile" || action->objectName() == "menudisplayupdate";
    QCOMPARE(action->isCheckable(), isCheckItem);
  }
  QCOMPARE(items, 13);
}

void MainMenuTest::acquisitionChangesStates() {
  Main main;
  const auto states = [&main] {
    QList<bool> enabled;
    for (const char* name : {"menuStart", "menuStop", "menuFreeRun", "menuComs", "menuGraphFont"}) {
      enabled << main.item(name).isEnabled();
    }
    return enabled;
  };
  main.window.showAcquisitionStarted();
  QCOMPARE(states(), (QList<bool>{false, true, false, false, true}));
  main.window.showAcquisitionStopped();
  QCOMPARE(states(), (QList<bool>{true, false, true, true, true}));
}

void MainMenuTest::startAndStop() {
  Main main;
  main.item("menuStart").trigger();
  QVERIFY(AcquisitionRunning != False16);
  QVERIFY(!main.item("menuStart").isEnabled());
  QCOMPARE(main.world.meter.received.front(), std::string("PMPO 1"));
  main.item("menuStop").trigger();
  QCOMPARE(AcquisitionRunning, False16);
  QVERIFY(main.item("menuStart").isEnabled());
}

void MainMenuTest::freeRun() {
  Main main;
  main.item("menuFreeRun").trigger();
  QCOMPARE(main.world.meter.received, Transcript{"TR3"});
}

void MainMenuTest::displayUpdate() {
  Main main;
  QAction& item = main.item("menudisplayupdate");
  item.trigger();
  QVERIFY(item.isChecked());
  QCOMPARE(main.world.meter.received, Transcript{"SYDISP OFF"});
  item.trigger();
  QVERIFY(!item.isChecked());
  QCOMPARE(main.world.meter.received, (Transcript{"SYDISP OFF", "SYDISP ON"}));
}

void MainMenuTest::secondProfile() {
  Main main;
  QVERIFY(!main.window.secondProfileIsShown());
  main.item("menuSecondProfile").trigger();
  QVERIFY(main.item("menuSecondProfile").isChecked());
  QVERIFY(main.window.secondProfileIsShown());
  main.item("menuSecondProfile").trigger();
  QVERIFY(!main.window.secondProfileIsShown());
  QVERIFY(main.world.meter.received.empty());
}

void MainMenuTest::commsAreShown() {
  Main main;
  main.item("menuComs").trigger();
  QCOMPARE(main.commsShown, 1);
}

void MainMenuTest::unloadEndsTheSession() {
  Main main;
  QVERIFY_EXCEPTION_THROWN(MainWindow::unload(), ProgramEnded);
  QCOMPARE(main.world.programEnd.ends, 1);
  QCOMPARE(main.world.gpib.calls.back(), std::string("ibonl 7 0"));
  QVERIFY(main.world.dialogs.questions.empty());
}

void MainMenuTest::exitEndsTheProcess() {
  Main main;
  QCOMPARE(statusOfProcess(main.world, [&main] { main.item("menuExit").trigger(); }),
           ExitingEnd::status);
}

void MainMenuTest::closingEndsTheProcess() {
  Main main;
  QCOMPARE(statusOfProcess(main.world, [&main] { main.window.close(); }), ExitingEnd::status);
}

void MainMenuTest::faultOfAHandlerIsReported() {
  Main main;
  main.world.meter.replies["PMPO 1"] = "PMPO 1";
  main.item("menuStart").trigger();
  QCOMPARE(main.world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(main.world.dialogs.messages[0].title, std::string("Pelmora"));
  QVERIFY(main.item("menuStart").isEnabled());
}

QTEST_MAIN(MainMenuTest)
#include "MainMenuTest.moc"
