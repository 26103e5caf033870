#include "PropertiesBench.h"
#include "startup/MeterScript.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// Every setting of the dialog away from its default, so that a control that shows it wrong shows.
void chooseUnusualSettings() {
  Settings.ActiveChannel = 2;
  Settings.Channels[1] = {4, 250, True16};
  Settings.GatesVisible = False16;
  Settings.ActiveGate = 3;
  Settings.Gates[2].Enabled = True16;
  Settings.Gates[2].StartTime = 0.0012F;
  Settings.Gates[2].FenceEnabled = True16;
  Settings.RepeatCount = 5;
  Settings.RepeatOffset = 0.0007F;
  Settings.Markers[0].IsActive = False16;
  Settings.Markers[1].IsActive = True16;
  Settings.Markers[3].Enabled = True16;
  Settings.Markers[3].Position = 0.0025F;
  Settings.Markers[4].Enabled = True16;
  Settings.DeltaMeasurement = 1;
  Settings.MeasurementType = 4;
  Settings.DisplayPoints = 400;
}

}  // namespace

class PropertiesEditsTest : public QObject {
  Q_OBJECT

 private slots:
  void fillingSendsNothing();
  void showsTheModel();
  void eachControlSendsItsCommand_data();
  void eachControlSendsItsCommand();
  void aChosenOptionSendsAgain();
  void clicksChangeTheModel();
  void timesAreAskedWithTheirPrompts_data();
  void timesAreAskedWithTheirPrompts();
  void cancelledTimeChangesNothing();
  void keysOpenTheBoxOfATime();
  void pressThatLeavesATimeIsNoClick();
  void unknownValuesTickNothing();
  void faultSetsTheControlsBack();
  void editsWaitForTheLink();
  void wholeConfiguration();
  void markersAreOpened();
};

void PropertiesEditsTest::fillingSendsNothing() {
  PropertiesBench bench;
  bench.present();
  chooseUnusualSettings();
  const MeasurementSettings before = Settings;
  bench.window.refresh();
  bench.window.present();
  bench.window.refreshChannelPage();
  bench.window.refreshGatePage();
  bench.window.refreshMarkerPage();
  bench.window.showRepeatCount();
  bench.window.LoadFileSettings(2);
  QVERIFY(bench.received().empty());
  QVERIFY(bench.world.dialogs.inputs.empty());
  QCOMPARE(Settings.Channels[1].AveragingCount, before.Channels[1].AveragingCount);
  QCOMPARE(Settings.ActiveGate, before.ActiveGate);
  QCOMPARE(Settings.RepeatCount, before.RepeatCount);
  QCOMPARE(Settings.Gates[2].Enabled, before.Gates[2].Enabled);
}

void PropertiesEditsTest::showsTheModel() {
  PropertiesBench bench;
  chooseUnusualSettings();
  bench.present();
  QCOMPARE(bench.checked("optChannel", 3), QList<int>{1});
  QVERIFY(bench.button("chkAverage").isChecked());
  QCOMPARE(bench.button("chkAverage").text(), "Average (250)");
  QCOMPARE(bench.slider().value(), 250);
  QCOMPARE(bench.checked("optInputConfig", 6), QList<int>{4});
  QVERIFY(!bench.button("chkDisplayGates").isChecked());
  QCOMPARE(bench.checked("chkEnabled", 8), QList<int>{2});
  QCOMPARE(bench.checked("optActiveGate", 8), QList<int>{2});
  QCOMPARE(bench.text("txtGateInfo_8"), "1.2ms");
  QCOMPARE(bench.text("txtGateInfo_9"), "577us");
  QCOMPARE(bench.text("txtGateInfo_10"), "225us");
  QCOMPARE(bench.text("txtGateInfo_11"), "321us");
  QVERIFY(!bench.button("chkRepeat").isChecked());
  QCOMPARE(bench.text("txtRepeatCount"), "5");
  QCOMPARE(bench.text("txtRepeatOffset"), "700us");
  QCOMPARE(bench.checked("chkMaker", 5), (QList<int>{3, 4}));
  QCOMPARE(bench.text("txtMarker_3"), "2.5ms");
  QCOMPARE(bench.text("txtMarker_4"), "500us");
  QCOMPARE(bench.checked("optActiveMarker", 4), QList<int>{1});
  QCOMPARE(bench.checked("optDeltaMeas", 2), QList<int>{1});
  QCOMPARE(bench.checked("optMeasurement", 4), QList<int>{3});
  QCOMPARE(bench.checked("optDisplayPoints", 2), QList<int>{1});
}

void PropertiesEditsTest::eachControlSendsItsCommand_data() {
  QTest::addColumn<QString>("control");
  QTest::addColumn<QString>("answer");
  QTest::addColumn<QStringList>("commands");
  const auto row = [](const char* control, const QStringList& commands, const char* answer = "") {
    QTest::newRow(control) << QString(control) << QString(answer) << commands;
  };
  row("chkAverage", {"PMAVGS 1,ON"});
  row("optChannel_0", {});
  row("optChannel_1", {});
  row("optChannel_2", {});
  row("optInputConfig_0", {"CHCFG 1, A"});
  row("optInputConfig_1", {"CHCFG 1, B"});
  row("optInputConfig_2", {"CHCFG 1, A-B"});
  row("optInputConfig_3", {"CHCFG 1, B-A"});
  row("optInputConfig_4", {"CHCFG 1, A/B"});
  row("optInputConfig_5", {"CHCFG 1, B/A"});
  row("chkDisplayGates", {"GPHIDES 1, ON"});
  row("chkEnabled_0", {"GPGATS 1, 1, ON"});
  row("chkEnabled_1", {"GPGATS 1, 2, OFF"});
  row("chkEnabled_2", {"GPGATS 1, 3, ON"});
  row("chkEnabled_3", {"GPGATS 1, 4, ON"});
  row("lblFence_0", {"GPFENS 1, 1, ON"});
  row("lblFence_3", {"GPFENS 1, 4, ON"});
  row("txtGateInfo_0", {"GPTIMST 1, 1, 0.00015"}, "150us");
  row("txtGateInfo_5", {"GPTIMSP 1, 2, 0.0008"}, "800us");
  row("txtGateInfo_10", {"GPFENST 1, 3, 0.00025"}, "250us");
  row("txtGateInfo_15", {"GPFENSP 1, 4, 0.0003"}, "300us");
  row("optActiveGate_1", {"GPACTN 1,2"});
  row("chkRepeat", {"GP1REPS 1, ON"});
  row("txtRepeatOffset", {"GP1REPT 1,0.0007"}, "700us");
  row("chkMaker_0", {"MKSTATE 1,1,ON"});
  row("chkMaker_3", {"MKSTATE 1,4,ON"});
  row("chkMaker_4", {"MKDELTS 1,ON", "MKDPOS 1,0.0005"});
  row("txtMarker_1", {"MKPOS 1,2,0.00015", "MKNO 1,2"}, "150us");
  row("txtMarker_4", {"MKDPOS 1,0.0006", "MKDO 1"}, "600us");
  row("optActiveMarker_2", {"MKACTN 1, 3"});
  row("optDeltaMeas_0", {"MKDMEAS 1, PAVG"});
  row("optDeltaMeas_1", {"MKDMEAS 1, PDIFF"});
  row("optMeasurement_0", {"PMMEAS 1,1"});
  row("optMeasurement_1", {"PMMEAS 1,2"});
  row("optMeasurement_2", {"PMMEAS 1,3"});
  row("optMeasurement_3", {"PMMEAS 1,4"});
  row("optDisplayPoints_0", {"SYDRES 200"});
  row("optDisplayPoints_1", {"SYDRES 400"});
}

void PropertiesEditsTest::eachControlSendsItsCommand() {
  QFETCH(QString, control);
  QFETCH(QString, answer);
  QFETCH(QStringList, commands);
  PropertiesBench bench;
  bench.world.meter.replies = {{"MKNO 1,2", "MKNO 1,2,-12.5,DBM,0.00015"}, {"MKDO 1", "MKDO 1,-3"}};
  Settings.Gates[1].Enabled = True16;
  bench.present();
  bench.world.dialogs.textAnswers = {answer.toStdString()};
  bench.click(control);
  QStringList received;
  for (const std::string& message : bench.received()) received << QString::fromStdString(message);
  QCOMPARE(received, commands);
  QCOMPARE(bench.world.dialogs.inputs.size(), answer.isEmpty() ? std::size_t{0} : std::size_t{1});
  QVERIFY(bench.world.dialogs.messages.empty());
  // The box shows what was typed.
  if (!answer.isEmpty()) QCOMPARE(bench.text(control), answer);
}

void PropertiesEditsTest::aChosenOptionSendsAgain() {
  PropertiesBench bench;
  bench.present();
  for (int time = 0; time < 2; ++time) bench.click("optMeasurement_2");
  QCOMPARE(bench.received(), (Transcript{"PMMEAS 1,3", "PMMEAS 1,3"}));
  QCOMPARE(bench.checked("optMeasurement", 4), QList<int>{2});
}

void PropertiesEditsTest::clicksChangeTheModel() {
  PropertiesBench bench;
  bench.present();
  bench.click("chkAverage");
  QVERIFY(Settings.Channels[0].AveragingOn == True16);
  bench.click("chkAverage");
  QVERIFY(Settings.Channels[0].AveragingOn == False16);
  bench.click("chkDisplayGates");
  QVERIFY(Settings.GatesVisible == False16);
  bench.click("chkMaker_2");
  QVERIFY(Settings.Markers[2].Enabled == True16);
  bench.click("optActiveMarker_3");
  QVERIFY(Settings.Markers[3].IsActive == True16);
  QVERIFY(Settings.Markers[0].IsActive == False16);
  bench.click("optDisplayPoints_1");
  QCOMPARE(Settings.DisplayPoints, std::int16_t{400});
  bench.click("optChannel_1");
  QCOMPARE(Settings.ActiveChannel, std::int16_t{2});
  bench.click("optInputConfig_3");
  QCOMPARE(Settings.Channels[1].InputConfig, 3);
  QCOMPARE(Settings.Channels[0].InputConfig, 0);
  QCOMPARE(bench.received().back(), std::string("CHCFG 2, B-A"));
}

void PropertiesEditsTest::timesAreAskedWithTheirPrompts_data() {
  QTest::addColumn<QString>("control");
  QTest::addColumn<QString>("prompt");
  QTest::addColumn<QString>("offered");
  const auto row = [](const char* control, const char* prompt, const char* offered) {
    QTest::newRow(control) << QString(control) << QString(prompt) << QString(offered);
  };
  row("txtGateInfo_0", "Enter Gate 1 Start Time", "100us");
  row("txtGateInfo_9", "Enter Gate 3 Stop Time", "577us");
  row("txtGateInfo_14", "Enter Fence 4 Start Time", "225us");
  row("txtGateInfo_7", "Enter Fence 2 Stop Time", "321us");
  row("txtRepeatOffset", "Enter Repeat Offset", "600us");
  row("txtMarker_2", "Enter Marker 3 Position", "300us");
  row("txtMarker_4", "Enter Marker 5 Position", "500us");
}

void PropertiesEditsTest::timesAreAskedWithTheirPrompts() {
  QFETCH(QString, control);
  QFETCH(QString, prompt);
  QFETCH(QString, offered);
  PropertiesBench bench;
  bench.present();
  bench.click(control);
  QCOMPARE(bench.world.dialogs.inputs.size(), std::size_t{1});
  const AskedText& asked = bench.world.dialogs.inputs.front();
  QCOMPARE(QString::fromStdString(asked.prompt), prompt);
  QCOMPARE(asked.title, std::string("Properties"));
  QCOMPARE(QString::fromStdString(asked.defaultText), offered);
  QCOMPARE(bench.text(control), offered);
  QVERIFY(bench.received().empty());
}

void PropertiesEditsTest::cancelledTimeChangesNothing() {
  PropertiesBench bench;
  bench.present();
  bench.click("txtGateInfo_0");
  QCOMPARE(Settings.Gates[0].StartTime, 0.0001F);
  bench.world.dialogs.textAnswers = {"900us"};
  bench.click("txtGateInfo_3");
  QCOMPARE(bench.world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(bench.world.dialogs.messages[0].title, std::string("Invalid Gate time"));
  QCOMPARE(bench.text("txtGateInfo_3"), "321us");
  QVERIFY(bench.received().empty());
}

void PropertiesEditsTest::keysOpenTheBoxOfATime() {
  PropertiesBench bench;
  bench.present();
  for (const char* name : {"txtGateInfo_0", "txtRepeatOffset", "txtMarker_4"}) {
    bench.focus(name);
    QVERIFY(bench.box(name).isReadOnly());
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
      bench.world.dialogs.inputs.clear();
      bench.key(key, key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
      QCOMPARE(bench.world.dialogs.inputs.size(), std::size_t{1});
    }
    bench.world.dialogs.inputs.clear();
    bench.key(Qt::Key_7);
    bench.key(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(bench.world.dialogs.inputs.empty());
    // A key that is held down asks once.
    for (const bool repeats : {false, true, true}) {
      QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), repeats);
      QCoreApplication::sendEvent(&bench.part(name), &event);
    }
    QCOMPARE(bench.world.dialogs.inputs.size(), std::size_t{1});
    QVERIFY(bench.window.isVisible());
  }
}

void PropertiesEditsTest::pressThatLeavesATimeIsNoClick() {
  PropertiesBench bench;
  bench.present();
  QWidget& box = bench.part("txtMarker_0");
  bench.reveal(box);
  const QPoint inside = bench.targetOf(box);
  bench.press(inside);
  QVERIFY(bench.world.dialogs.inputs.empty());
  bench.release(inside + QPoint(0, 3 * box.height()));
  QVERIFY(bench.world.dialogs.inputs.empty());
  QTest::mouseClick(bench.window.windowHandle(), Qt::RightButton, {}, inside);
  // It may open a menu for copying.
  if (QWidget* menu = QApplication::activePopupWidget()) menu->close();
  QVERIFY(bench.world.dialogs.inputs.empty());
  bench.press(inside);
  bench.release(inside + QPoint(5, 2));
  QCOMPARE(bench.world.dialogs.inputs.size(), std::size_t{1});
  // The second click of a double click asks no more.
  QTest::mouseDClick(&box, Qt::LeftButton);
  QTest::mouseRelease(&box, Qt::LeftButton);
  QCOMPARE(bench.world.dialogs.inputs.size(), std::size_t{1});
  QVERIFY(!bench.box("txtMarker_0").hasSelectedText());
}

void PropertiesEditsTest::unknownValuesTickNothing() {
  PropertiesBench bench;
  Settings.Channels[0].InputConfig = 9;
  Settings.MeasurementType = 7;
  Settings.DisplayPoints = 57;
  Settings.DeltaMeasurement = -1;
  Settings.ActiveGate = 0;
  for (MarkerSettings& marker : Settings.Markers) marker.IsActive = False16;
  bench.present();
  QCOMPARE(bench.checked("optInputConfig", 6), QList<int>());
  QCOMPARE(bench.checked("optMeasurement", 4), QList<int>());
  QCOMPARE(bench.checked("optDisplayPoints", 2), QList<int>());
  QCOMPARE(bench.checked("optDeltaMeas", 2), QList<int>());
  QCOMPARE(bench.checked("optActiveGate", 8), QList<int>());
  QCOMPARE(bench.checked("optActiveMarker", 4), QList<int>());
}

void PropertiesEditsTest::faultSetsTheControlsBack() {
  PropertiesBench bench;
  bench.present();
  // Behind the window's back.
  Settings.ActiveChannel = 3;
  bench.click("chkAverage");
  QCOMPARE(bench.world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(bench.world.dialogs.messages[0].title, std::string("Pelmora"));
  QVERIFY(!bench.button("chkAverage").isChecked());
  QVERIFY(!bench.button("chkAverage").isEnabled());
  QCOMPARE(bench.checked("optChannel", 3), QList<int>{2});
  QVERIFY(bench.received().empty());
}

/// An edit in the middle of an exchange stands at once and is sent after it.
void PropertiesEditsTest::editsWaitForTheLink() {
  PropertiesBench bench;
  bench.present();
  bench.world.meter.replies["MKDO 1"] = "MKDO 1,-3";
  bool clicked = false;
  bench.world.meter.onMessage = [&](const std::string& message) {
    if (message != "MKDO 1") return;
    bench.world.events.post([&] {
      bench.click("optMeasurement_1");
      clicked = Settings.MeasurementType == 2 && bench.received().back() == "MKDO 1";
    });
  };
  bench.world.dialogs.textAnswers = {"600us"};
  bench.click("txtMarker_4");
  QVERIFY(clicked);
  QCOMPARE(bench.received(), (Transcript{"MKDPOS 1,0.0006", "MKDO 1", "PMMEAS 1,2"}));
}

void PropertiesEditsTest::wholeConfiguration() {
  PropertiesBench bench;
  answerConfiguration(bench.world.meter);
  bench.present();
  bench.click("cmdSavePM");
  QCOMPARE(bench.received(), defaultsTranscript());
  bench.received().clear();
  bench.click("cmdLoadPM");
  QCOMPARE(bench.received(), configurationTranscript());
  QVERIFY(bench.world.dialogs.messages.empty());
  // All pages show what the meter has said.
  QCOMPARE(bench.button("chkAverage").text(), "Average (16)");
  QVERIFY(bench.button("chkAverage").isChecked());
  QCOMPARE(bench.slider().value(), 16);
  QCOMPARE(bench.checked("chkEnabled", 8), (QList<int>{0, 1, 2, 3}));
  QCOMPARE(bench.checked("optActiveGate", 8), QList<int>{2});
  QCOMPARE(bench.text("txtGateInfo_15"), "4.4ms");
  QCOMPARE(bench.text("txtRepeatCount"), "1");
  QCOMPARE(bench.checked("optActiveMarker", 4), QList<int>{1});
  QCOMPARE(bench.checked("chkMaker", 5), (QList<int>{0, 1, 2, 3, 4}));
}

void PropertiesEditsTest::markersAreOpened() {
  PropertiesBench bench;
  bench.present();
  bench.click("cmdMarker");
  QCOMPARE(bench.markersOpened, 1);
  // Enter elsewhere on its page is not for it.
  bench.focus("optActiveMarker_0");
  bench.key(Qt::Key_Return);
  QCOMPARE(bench.markersOpened, 1);
  QVERIFY(bench.received().empty());
}

QTEST_MAIN(PropertiesEditsTest)
#include "PropertiesEditsTest.moc"
