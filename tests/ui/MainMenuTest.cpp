#include <sys/wait.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QAction>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSet>

#include "WindowTest.h"
#include "profile/AcquisitionLoop.h"
#include "profile/MeasurementSettings.h"
#include "profile/Readouts.h"
#include "settings/PropertiesView.h"
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
    const Services exiting{
        world.clock,   world.events,      world.gpib,  world.serial,   world.store,
        world.dialogs, world.fileDialogs, world.files, world.progress, end};
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
  void itemsHaveToolTips();
  void initialStates();
  void acquisitionChangesStates();
  void startAndStop();
  void freeRun();
  void displayUpdate();
  void secondProfile();
  void savedProfileIsOpened();
  void commsAreShown();
  void propertiesFollowTheMenu();
  void startHidesProperties();
  void propertiesOpenTheMarkers();
  void propertiesFollowTheGraph();
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
  QCOMPARE(main.itemsOf("&File"),
           (QStringList{"menuOpen", "menuSave", "-", "menuSavePicture", "menuCopyPicture",
                        "menuCopyData", "menuPrint", "-", "menuExit"}));
  QStringList pulseMod = main.itemsOf("&PulseMod");
  pulseMod.removeAll("-");
  QCOMPARE(pulseMod, (QStringList{"menuStart", "menuStop", "menuFreeRun", "menuSecondProfile",
                                  "menudisplayupdate"}));
  QCOMPARE(main.itemsOf("&Settings"), (QStringList{"menuProperties", "menuComs", "menuGraphFont"}));
  QCOMPARE(main.itemsOf("&View"), (QStringList{"menuInfoBox", "menuMarkers"}));
  QCOMPARE(main.itemsOf("&Help"), (QStringList{"menuUserGuide", "menuAbout"}));
  QCOMPARE(main.window.menuBar()->actions().size(), 5);
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

/// More than the name, which the toolkit puts there by itself.
void MainMenuTest::itemsHaveToolTips() {
  Main main;
  int items = 0;
  for (const QAction* entry : main.window.menuBar()->actions()) {
    QVERIFY(entry->menu()->toolTipsVisible());
    for (const QAction* item : entry->menu()->actions()) {
      if (item->isSeparator()) continue;
      QString name = item->text();
      name.remove('&').remove("...");
      QVERIFY2(item->toolTip() != name, qPrintable(name));
      QVERIFY2(item->toolTip().size() > 10, qPrintable(name));
      ++items;
    }
  }
  QVERIFY(items >= 18);
}

void MainMenuTest::shortcutsDoNotClash() {
  Main main;
  QSet<QKeySequence> seen;
  for (const QAction* entry : main.window.menuBar()->actions()) {
    seen << QKeySequence(Qt::ALT | Qt::Key(mnemonicOf(entry->text()).toUpper().unicode()));
  }
  QCOMPARE(seen.size(), 5);
  for (const QAction* action : main.window.findChildren<QAction*>()) {
    for (const QKeySequence& shortcut : action->shortcuts()) {
      QVERIFY2(!seen.contains(shortcut), qPrintable(shortcut.toString()));
      seen << shortcut;
    }
  }
  QCOMPARE(main.item("menuStart").shortcut(), QKeySequence("F5"));
  QCOMPARE(main.item("menuStop").shortcut(), QKeySequence("Shift+F5"));
  QCOMPARE(main.item("menuExit").shortcut(), QKeySequence("Ctrl+Q"));
  QCOMPARE(main.item("menuSavePicture").shortcut(), QKeySequence("Ctrl+Shift+S"));
  QCOMPARE(main.item("menuCopyPicture").shortcut(), QKeySequence("Ctrl+C"));
  QCOMPARE(main.item("menuCopyData").shortcut(), QKeySequence("Ctrl+Shift+C"));
  QCOMPARE(main.item("menuPrint").shortcut(), QKeySequence("Ctrl+P"));
  QCOMPARE(main.item("menuUserGuide").shortcut(), QKeySequence("F1"));
}

void MainMenuTest::initialStates() {
  Main main;
  const QSet<QString> off{"menuStop"};
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
  QCOMPARE(items, 19);
}

void MainMenuTest::acquisitionChangesStates() {
  Main main;
  const auto states = [&main] {
    QList<bool> enabled;
    for (const char* name : {"menuStart", "menuStop", "menuFreeRun", "menuProperties", "menuComs",
                             "menuOpen", "menuSave", "menuGraphFont", "menuSavePicture",
                             "menuCopyPicture", "menuCopyData", "menuPrint"}) {
      enabled << main.item(name).isEnabled();
    }
    return enabled;
  };
  main.window.showAcquisitionStarted();
  QCOMPARE(states(), (QList<bool>{false, true, false, false, false, true, true, true, true, true,
                                  true, true}));
  main.window.showAcquisitionStopped();
  QCOMPARE(states(),
           (QList<bool>{true, false, true, true, true, true, true, true, true, true, true, true}));
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

void MainMenuTest::savedProfileIsOpened() {
  Main main;
  main.world.fileDialogs.saveAnswer = "/data/profile.txt";
  main.world.fileDialogs.openAnswer = "/data/profile.txt";
  ProfileTrace[199] = -12.5F;
  main.item("menuSave").trigger();
  QVERIFY(main.world.files.contents.at("/data/profile.txt").starts_with("Date\t2026-11-21"));
  main.item("menuOpen").trigger();
  QCOMPARE(SecondProfileTrace[199], -12.5F);
  QVERIFY(main.item("menuSecondProfile").isChecked());
  QCOMPARE(main.world.fileDialogs.titles,
           (std::vector<std::string>{"Save Profile", "Open Second Profile"}));
  // A file that cannot be read is a fault of the handler.
  main.world.fileDialogs.openAnswer = "/data/none.txt";
  main.item("menuOpen").trigger();
  QCOMPARE(main.world.dialogs.messages.size(), std::size_t{1});
  QVERIFY(main.world.meter.received.empty());
}

void MainMenuTest::propertiesFollowTheMenu() {
  Main main;
  main.window.show();
  main.item("menuProperties").trigger();
  auto* const properties = main.window.findChild<QDialog*>("frmProperties");
  QVERIFY(properties != nullptr);
  QVERIFY(properties->isVisible());
  QVERIFY(!properties->isModal());
  QCOMPARE(&propertiesView(), dynamic_cast<PropertiesView*>(properties));
  auto* const averaging = properties->findChild<QAbstractButton*>("chkAverage");
  QCOMPARE(averaging->text(), "Average (1)");
  properties->close();
  Settings.Channels[0].AveragingCount = 40;
  main.item("menuProperties").trigger();
  QVERIFY(properties->isVisible());
  QCOMPARE(averaging->text(), "Average (40)");
  QCOMPARE(main.window.findChildren<QDialog*>("frmProperties").size(), 1);
  QVERIFY(main.world.meter.received.empty());
}

void MainMenuTest::startHidesProperties() {
  Main main;
  main.window.show();
  main.item("menuProperties").trigger();
  auto* const properties = main.window.findChild<QDialog*>("frmProperties");
  main.item("menuStart").trigger();
  QVERIFY(!properties->isVisible());
  QVERIFY(!main.item("menuProperties").isEnabled());
  main.item("menuStop").trigger();
  QVERIFY(!properties->isVisible());
  QVERIFY(main.item("menuProperties").isEnabled());
}

void MainMenuTest::propertiesOpenTheMarkers() {
  Main main;
  main.window.show();
  main.item("menuProperties").trigger();
  auto* const properties = main.window.findChild<QDialog*>("frmProperties");
  auto* const button = properties->findChild<QAbstractButton*>("cmdMarker");
  for (int time = 0; time < 2; ++time) {
    button->click();
    QVERIFY(main.window.findChild<QWidget*>("frmMarkers")->isVisible());
    QVERIFY(main.item("menuMarkers").isChecked());
  }
  QVERIFY(main.world.meter.received.empty());
}

/// An edge that is dragged tells the open dialog, and spares the closed one.
void MainMenuTest::propertiesFollowTheGraph() {
  Main main;
  main.window.show();
  main.window.refreshGatePage();
  main.item("menuProperties").trigger();
  auto* const properties = main.window.findChild<QDialog*>("frmProperties");
  auto* const start = properties->findChild<QLineEdit*>("txtGateInfo_0");
  QCOMPARE(start->text(), "100us");
  Settings.Gates[0].StartTime = 0.00015F;
  main.window.refreshGatePage();
  QCOMPARE(start->text(), "150us");
  properties->close();
  Settings.Gates[0].StartTime = 0.0002F;
  main.window.refreshGatePage();
  QCOMPARE(start->text(), "150us");
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
  QVERIFY_THROWS_EXCEPTION(ProgramEnded, MainWindow::unload());
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
