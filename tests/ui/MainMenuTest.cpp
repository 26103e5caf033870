#include <sys/wait.h>
#include <unistd.h>

#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSet>

#include "WindowTest.h"
#include "profile/AcquisitionLoop.h"
#include "profile/MeasurementSettings.h"
#include "profile/Readouts.h"
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
  void infoBoxAndMarkers_data();
  void infoBoxAndMarkers();
  void tickFollowsTheWindow_data();
  void tickFollowsTheWindow();
  void infoBoxOpensWithTheLastResults();
  void markersOpenWithTheLastReadings();
  void shortcutsWorkFromTheReadouts();
  void unloadEndsTheSession();
  void exitEndsTheProcess();
  void closingEndsTheProcess_data();
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
  const QSet<QString> off{"menuStop", "menuOpen", "menuSave", "menuProperties"};
  const QSet<QString> checkItems{"menuSecondProfile", "menudisplayupdate", "menuInfoBox",
                                 "menuMarkers"};
  int items = 0;
  for (const QAction* action : main.window.findChildren<QAction*>()) {
    if (!action->objectName().startsWith("menu")) continue;
    ++items;
    QCOMPARE(action->isEnabled(), !off.contains(action->objectName()));
    QVERIFY(!action->isChecked());
    QCOMPARE(action->isCheckable(), checkItems.contains(action->objectName()));
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

void MainMenuTest::infoBoxAndMarkers_data() {
  QTest::addColumn<QByteArray>("itemName");
  QTest::addColumn<QByteArray>("windowName");
  QTest::newRow("info box") << QByteArray("menuInfoBox") << QByteArray("frmInfo");
  QTest::newRow("markers") << QByteArray("menuMarkers") << QByteArray("frmMarkers");
}

void MainMenuTest::infoBoxAndMarkers() {
  QFETCH(QByteArray, itemName);
  QFETCH(QByteArray, windowName);
  Main main;
  main.window.show();
  QAction& item = main.item(itemName);
  // Only the window of this item is open to the readouts.
  const bool isInfo = windowName == "frmInfo";
  const auto isOpen = [&] {
    const bool other =
        isInfo ? main.window.markersWindow() != nullptr : main.window.infoBox() != nullptr;
    if (other) return false;
    return isInfo ? main.window.infoBox() != nullptr : main.window.markersWindow() != nullptr;
  };
  QCOMPARE(main.window.findChild<QWidget*>(windowName), nullptr);
  QVERIFY(!isOpen());

  item.trigger();
  auto* const window = main.window.findChild<QWidget*>(windowName);
  QVERIFY(window != nullptr);
  for (int time = 0; time < 1000; ++time) {
    QVERIFY(window->isVisible());
    QVERIFY(item.isChecked());
    QVERIFY(isOpen());
    item.trigger();
    QVERIFY(!window->isVisible());
    QVERIFY(!item.isChecked());
    QVERIFY(!isOpen());
    item.trigger();
  }
  QCOMPARE(main.window.findChildren<QWidget*>(windowName), QList<QWidget*>{window});
  QVERIFY(main.world.meter.received.empty());
  QVERIFY(main.world.dialogs.messages.empty());
}

void MainMenuTest::tickFollowsTheWindow_data() { infoBoxAndMarkers_data(); }

void MainMenuTest::tickFollowsTheWindow() {
  QFETCH(QByteArray, itemName);
  QFETCH(QByteArray, windowName);
  Main main;
  main.window.show();
  QAction& item = main.item(itemName);
  item.trigger();
  auto* const window = main.window.findChild<QWidget*>(windowName);
  window->close();
  QVERIFY(!item.isChecked());
  QCOMPARE(main.window.infoBox(), nullptr);
  QCOMPARE(main.window.markersWindow(), nullptr);
  item.trigger();
  QVERIFY(window->isVisible());
  QTest::keyClick(window, Qt::Key_Escape);
  QVERIFY(!item.isChecked());
  item.trigger();
  window->setWindowState(Qt::WindowMinimized);
  QCoreApplication::processEvents();
  QVERIFY(item.isChecked());
  QVERIFY(main.window.infoBox() != nullptr || main.window.markersWindow() != nullptr);
  QVERIFY(main.window.isVisible());
}

void MainMenuTest::infoBoxOpensWithTheLastResults() {
  Main main;
  main.window.show();
  Settings.MeasurementType = 2;
  Settings.Gates[1].Enabled = True16;
  GateReadings[6] = -12.3F;
  GateReadings[7] = 4.5678F;
  main.item("menuInfoBox").trigger();
  const auto text = [&main](const char* name) {
    return main.window.findChild<QLabel*>(name)->text();
  };
  QCOMPARE(text("lblMeasInfo_7"), "Pk");
  QCOMPARE(text("lblMeasResult_6"), "-12.30");
  QCOMPARE(text("lblMeasResult_7"), "4.568");
  QCOMPARE(text("lblMeasUnits_7"), "dBm");
  QVERIFY(main.window.findChild<QLabel*>("lblMeasResult_8")->isHidden());
  QVERIFY(main.window.findChild<QGroupBox*>("FrameMeas_1")->isEnabled());
  QVERIFY(!main.window.findChild<QGroupBox*>("FrameMeas_0")->isEnabled());
  QVERIFY(!main.window.findChild<QGroupBox*>("FrameMeas_8")->isEnabled());
  QVERIFY(main.window.findChild<QGroupBox*>("FrameMeas_4")->isHidden());

  main.item("menuInfoBox").trigger();
  GateReadings[6] = -13.0F;
  UpdateInfoBox();
  QCOMPARE(text("lblMeasResult_6"), "-12.30");
  main.item("menuInfoBox").trigger();
  QCOMPARE(text("lblMeasResult_6"), "-13.00");
}

void MainMenuTest::markersOpenWithTheLastReadings() {
  Main main;
  main.window.show();
  Settings.Markers[2].Enabled = True16;
  Settings.Markers[2].Reading = -34.56789F;
  Settings.Markers[2].Position = 0.0002F;
  main.item("menuMarkers").trigger();
  QCOMPARE(main.window.findChild<QLabel*>("lblMarkerPow_2")->text(), "-34.56789");
  QCOMPARE(main.window.findChild<QLabel*>("lblMarkerTime_2")->text(), "200us");
  QVERIFY(main.window.findChild<QGroupBox*>("frameMarker_2")->isEnabled());
  QVERIFY(!main.window.findChild<QGroupBox*>("frameMarker_3")->isEnabled());
  QCOMPARE(main.window.findChild<QLabel*>("lblMarkerPow_3")->text(), "");
}

void MainMenuTest::shortcutsWorkFromTheReadouts() {
  Main main;
  main.window.show();
  main.item("menuInfoBox").trigger();
  main.item("menuMarkers").trigger();
  QWidget* info = windowNamed("frmInfo");
  info->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(info));
  QTest::keyClick(info, Qt::Key_F6);
  QCOMPARE(main.world.meter.received, Transcript{"TR3"});
  // The menus of both windows have their own letters.
  QTest::keyClick(info, Qt::Key_F, Qt::AltModifier);
  QVERIFY(QApplication::activePopupWidget() != nullptr);
  QCOMPARE(QApplication::activePopupWidget()->actions().front()->objectName(), "menuOpen");
  QApplication::activePopupWidget()->close();
  QTest::keyClick(info, Qt::Key_I, Qt::ControlModifier);
  QVERIFY(!info->isVisible());
  QVERIFY(windowNamed("frmMarkers")->isVisible());
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

void MainMenuTest::closingEndsTheProcess_data() {
  QTest::addColumn<bool>("readoutsAreOpen");
  QTest::newRow("alone") << false;
  QTest::newRow("with its readouts open") << true;
}

void MainMenuTest::closingEndsTheProcess() {
  QFETCH(bool, readoutsAreOpen);
  Main main;
  if (readoutsAreOpen) {
    main.item("menuInfoBox").trigger();
    main.item("menuMarkers").trigger();
  }
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
