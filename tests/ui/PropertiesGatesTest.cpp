#include <QAccessible>

#include "PropertiesBench.h"
#include "settings/PropertyEdits.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

constexpr int gates = 8;
constexpr int times = 32;

QList<int> range(int first, int last) {
  QList<int> indices;
  for (int index = first; index <= last; ++index) indices << index;
  return indices;
}

/// The indices of `txtGateInfo` that belong to the gates of these indices.
QList<int> timesOf(const QList<int>& rows) {
  QList<int> indices;
  for (const int row : rows) indices << range(4 * row, 4 * row + 3);
  return indices;
}

}  // namespace

class PropertiesGatesTest : public QObject {
  Q_OBJECT

 private slots:
  void rowsFollowTheRepeat_data();
  void rowsFollowTheRepeat();
  void rowsComeAndGoInTheirPlaces();
  void lockedRowsTakeNoClick();
  void lockedRowsStayReadable();
  void onlyGateBecomesTheActiveOne();
  void activeGateThatIsOffIsHidden();
  void fenceTellsItsState();
  void fenceByKeyboard();
  void countIsTakenByEnter_data();
  void countIsTakenByEnter();
  void countIsLeftAloneWithoutEnter();
  void enterInTheCountDoesNothingElse();
  void repeatTakesTheCountInTheBox_data();
  void repeatTakesTheCountInTheBox();
  void repeatedGatesAreShown();
};

void PropertiesGatesTest::rowsFollowTheRepeat_data() {
  QTest::addColumn<int>("count");
  QTest::addColumn<QList<int>>("shownRows");
  QTest::addColumn<QList<int>>("switchable");
  QTest::addColumn<QList<int>>("on");
  QTest::addColumn<QList<int>>("editable");
  QTest::addColumn<QList<int>>("activatable");
  // Gate 3 is on by itself; its row follows when the repeat takes it.
  QTest::newRow("no repeat") << 0 << range(0, 3) << range(0, 3) << QList<int>{2} << range(0, 3)
                             << QList<int>{2};
  QTest::newRow("1") << 1 << range(0, 3) << range(1, 3) << QList<int>{0, 2} << range(0, 3)
                     << QList<int>{0, 2};
  QTest::newRow("3") << 3 << range(0, 3) << QList<int>{3} << range(0, 2) << QList<int>{0, 3}
                     << range(0, 2);
  QTest::newRow("8") << 8 << range(0, 7) << QList<int>{} << range(0, 7) << QList<int>{0}
                     << range(0, 3);
}

void PropertiesGatesTest::rowsFollowTheRepeat() {
  QFETCH(int, count);
  QFETCH(QList<int>, shownRows);
  QFETCH(QList<int>, switchable);
  QFETCH(QList<int>, on);
  QFETCH(QList<int>, editable);
  QFETCH(QList<int>, activatable);
  PropertiesBench bench;
  Settings.Gates[2].Enabled = True16;
  bench.present();
  if (count != 0) {
    bench.type("txtRepeatCount", QString::number(count));
    bench.click("chkRepeat");
  }
  QCOMPARE(bench.shown("chkEnabled", gates), shownRows);
  QCOMPARE(bench.shown("lblFence", gates), shownRows);
  QCOMPARE(bench.shown("txtGateInfo", times), timesOf(shownRows));
  const auto ofThose = [&shownRows](const QList<int>& enabled) {
    QList<int> those;
    for (const int row : enabled) {
      if (shownRows.contains(row)) those << row;
    }
    return those;
  };
  QCOMPARE(ofThose(bench.enabled("chkEnabled", gates)), switchable);
  QCOMPARE(bench.checked("chkEnabled", gates), on);
  QCOMPARE(ofThose(bench.enabled("lblFence", gates)), editable);
  QCOMPARE(bench.enabled("txtGateInfo", times), timesOf(editable));
  QCOMPARE(bench.shown("optActiveGate", gates), activatable);
  QCOMPARE(bench.part("txtGateInfo_4").toolTip(), editable.contains(1)
                                                      ? "Gate 2 start: click to change"
                                                      : "Follows gate 1 while it is repeated");
  if (count == 0) return;
  bench.click("chkRepeat");
  QCOMPARE(bench.shown("chkEnabled", gates), range(0, 3));
  QCOMPARE(bench.enabled("chkEnabled", 4), range(0, 3));
}

void PropertiesGatesTest::rowsComeAndGoInTheirPlaces() {
  PropertiesBench bench;
  bench.present();
  const auto places = [&bench] {
    QList<QRect> all{bench.window.geometry()};
    for (const QWidget* widget : bench.tabs().findChildren<QWidget*>()) {
      if (!widget->objectName().isEmpty() && widget->objectName().contains('_')) {
        all << widget->geometry();
      }
    }
    return all;
  };
  bench.reveal(bench.part("chkRepeat"));
  const QList<QRect> before = places();
  bench.type("txtRepeatCount", "8");
  bench.click("chkRepeat");
  bench.click("lblFence_0");
  bench.window.adjustSize();
  QCOMPARE(places(), before);
}

void PropertiesGatesTest::lockedRowsTakeNoClick() {
  PropertiesBench bench;
  Settings.RepeatEnabled = True16;
  Settings.RepeatCount = 8;
  bench.present();
  for (const char* name : {"chkEnabled_0", "chkEnabled_1", "lblFence_1", "txtGateInfo_4",
                           "txtGateInfo_31", "lblFence_7", "chkEnabled_7"}) {
    bench.click(name);
  }
  QVERIFY(bench.received().empty());
  QVERIFY(bench.world.dialogs.inputs.empty());
  bench.world.dialogs.textAnswers = {"150us"};
  bench.click("txtGateInfo_0");
  QCOMPARE(bench.received(), Transcript{"GPTIMST 1, 1, 0.00015"});
}

void PropertiesGatesTest::lockedRowsStayReadable() {
  PropertiesBench bench;
  Settings.RepeatEnabled = True16;
  bench.present();
  QPalette palette = bench.window.palette();
  for (const QColor colour : {QColor(Qt::black), QColor(Qt::white)}) {
    palette.setColor(QPalette::Active, QPalette::Text, colour);
    palette.setColor(QPalette::Active, QPalette::WindowText, colour);
    palette.setColor(QPalette::Disabled, QPalette::Text, Qt::gray);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, Qt::gray);
    bench.window.setPalette(palette);
    QCOMPARE(bench.part("txtGateInfo_4").palette().color(QPalette::Disabled, QPalette::Text),
             colour);
    QCOMPARE(bench.part("chkEnabled_1").palette().color(QPalette::Disabled, QPalette::WindowText),
             colour);
  }
}

void PropertiesGatesTest::onlyGateBecomesTheActiveOne() {
  PropertiesBench bench;
  bench.present();
  bench.click("chkEnabled_2");
  QCOMPARE(bench.received(), (Transcript{"GPGATS 1, 3, ON", "GPACTN 1, 3"}));
  QCOMPARE(bench.checked("optActiveGate", gates), QList<int>{2});
  QCOMPARE(bench.shown("optActiveGate", gates), QList<int>{2});
  bench.received().clear();
  bench.click("chkEnabled_0");
  QCOMPARE(bench.received(), Transcript{"GPGATS 1, 1, ON"});
  QCOMPARE(bench.checked("optActiveGate", gates), QList<int>{2});
  QCOMPARE(bench.shown("optActiveGate", gates), (QList<int>{0, 2}));
}

/// The Tab key then comes to the first option that is there.
void PropertiesGatesTest::activeGateThatIsOffIsHidden() {
  PropertiesBench bench;
  Settings.Gates[1].Enabled = True16;
  Settings.Gates[2].Enabled = True16;
  Settings.ActiveGate = 4;
  bench.present();
  QCOMPARE(bench.shown("optActiveGate", gates), (QList<int>{1, 2}));
  bench.focus("txtGateInfo_7");
  bench.key(Qt::Key_Tab);
  QCOMPARE(QApplication::focusWidget()->objectName(), "optActiveGate_1");
  bench.key(Qt::Key_Space);
  QCOMPARE(bench.received(), Transcript{"GPACTN 1,2"});
  bench.key(Qt::Key_Down);
  QCOMPARE(bench.received(), (Transcript{"GPACTN 1,2", "GPACTN 1,3"}));
}

void PropertiesGatesTest::fenceTellsItsState() {
  PropertiesBench bench;
  bench.present();
  auto& fence = bench.part<QLabel>("lblFence_2");
  bench.reveal(fence);
  QCOMPARE(fence.text(), "FENCE");
  const QString spoken = QAccessible::queryAccessibleInterface(&fence)->text(QAccessible::Name);
  QCOMPARE(spoken, "Fence of gate 3 off, FENCE");
  QCOMPARE(fence.toolTip(), "Disabled, Click on the FENCE text to enable");
  const QImage off = fence.grab().toImage();
  bench.click("lblFence_2");
  QCOMPARE(fence.toolTip(), "Enabled, Click on the FENCE text to disable");
  QCOMPARE(QAccessible::queryAccessibleInterface(&fence)->text(QAccessible::Name),
           "Fence of gate 3 on, FENCE");
  QCOMPARE(fence.text(), "FENCE");
  QVERIFY(fence.font().bold());
  fence.clearFocus();
  const QImage on = fence.grab().toImage();
  const QPoint ground(on.width() / 2, on.height() / 6);
  QCOMPARE(on.pixelColor(ground), fence.palette().color(QPalette::Active, QPalette::Highlight));
  QVERIFY(off.pixelColor(ground) != on.pixelColor(ground));
  bench.click("lblFence_2");
  QCOMPARE(fence.toolTip(), "Disabled, Click on the FENCE text to enable");
  QVERIFY(!fence.font().bold());
  QCOMPARE(bench.received(), (Transcript{"GPFENS 1, 3, ON", "GPFENS 1, 3, OFF"}));
}

void PropertiesGatesTest::fenceByKeyboard() {
  PropertiesBench bench;
  bench.present();
  bench.focus("lblFence_0");
  const QImage focused = bench.part("lblFence_0").grab().toImage();
  bench.key(Qt::Key_Space);
  bench.key(Qt::Key_Return);
  QCOMPARE(bench.received(), (Transcript{"GPFENS 1, 1, ON", "GPFENS 1, 1, OFF"}));
  bench.part("lblFence_0").clearFocus();
  QVERIFY(bench.part("lblFence_0").grab().toImage() != focused);
}

void PropertiesGatesTest::countIsTakenByEnter_data() {
  QTest::addColumn<QString>("typed");
  QTest::addColumn<int>("count");
  QTest::newRow("in range") << "5" << 5;
  QTest::newRow("beyond the gates") << "9" << 8;
  QTest::newRow("beyond 16 bits") << "70000" << 8;
  QTest::newRow("zero") << "0" << 1;
  QTest::newRow("negative") << "-3" << 1;
  QTest::newRow("no number") << "abc" << 1;
  QTest::newRow("empty") << "" << 1;
}

void PropertiesGatesTest::countIsTakenByEnter() {
  QFETCH(QString, typed);
  QFETCH(int, count);
  for (const int key : {Qt::Key_Return, Qt::Key_Enter}) {
    PropertiesBench bench;
    bench.present();
    bench.type("txtRepeatCount", typed);
    QVERIFY(bench.received().empty());
    bench.key(key, key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
    QCOMPARE(bench.received(), Transcript{"GP1REPN 1," + std::to_string(count)});
    QCOMPARE(static_cast<int>(Settings.RepeatCount), count);
    QCOMPARE(bench.text("txtRepeatCount"), QString::number(count));
  }
}

void PropertiesGatesTest::countIsLeftAloneWithoutEnter() {
  PropertiesBench bench;
  bench.present();
  bench.type("txtRepeatCount", "7");
  bench.key(Qt::Key_Tab);
  QVERIFY(!bench.part("txtRepeatCount").hasFocus());
  bench.window.refreshGatePage();
  bench.click("chkEnabled_1");
  QCOMPARE(bench.text("txtRepeatCount"), "7");
  QCOMPARE(Settings.RepeatCount, std::int16_t{3});
  QCOMPARE(bench.received(), (Transcript{"GPGATS 1, 2, ON", "GPACTN 1, 2"}));
  bench.window.refresh();
  QCOMPARE(bench.text("txtRepeatCount"), "3");
}

/// No button of the dialog takes the key as its own.
void PropertiesGatesTest::enterInTheCountDoesNothingElse() {
  PropertiesBench bench;
  bench.present();
  for (const char* before : {"cmdLoadPM", "cmdLoadFile", "cmdMarker"}) {
    bench.focus(before);
    bench.focus("txtRepeatCount");
    bench.key(Qt::Key_Return);
  }
  QCOMPARE(bench.received(), (Transcript{"GP1REPN 1,3", "GP1REPN 1,3", "GP1REPN 1,3"}));
  QVERIFY(bench.world.fileDialogs.titles.empty());
  QVERIFY(bench.window.isVisible());
  QVERIFY(bench.part("txtRepeatCount").hasFocus());
}

void PropertiesGatesTest::repeatTakesTheCountInTheBox_data() {
  QTest::addColumn<QString>("typed");
  QTest::addColumn<int>("count");
  QTest::newRow("in range") << "5" << 5;
  QTest::newRow("beyond the gates") << "50" << 8;
  QTest::newRow("empty") << "" << 1;
}

void PropertiesGatesTest::repeatTakesTheCountInTheBox() {
  QFETCH(QString, typed);
  QFETCH(int, count);
  PropertiesBench bench;
  bench.present();
  bench.type("txtRepeatCount", typed);
  bench.click("chkRepeat");
  QCOMPARE(bench.received(), Transcript{"GP1REPS 1, ON"});
  QVERIFY(Settings.RepeatEnabled == True16);
  QCOMPARE(static_cast<int>(Settings.RepeatCount), count);
  QCOMPARE(bench.text("txtRepeatCount"), QString::number(count));
}

void PropertiesGatesTest::repeatedGatesAreShown() {
  PropertiesBench bench;
  bench.present();
  bench.type("txtRepeatCount", "6");
  bench.click("chkRepeat");
  QCOMPARE(bench.text("txtGateInfo_20"), "3.1ms");
  bench.world.dialogs.textAnswers = {"200us", "1ms"};
  bench.click("txtGateInfo_0");
  QCOMPARE(bench.text("txtGateInfo_20"), "3.2ms");
  bench.click("txtRepeatOffset");
  QCOMPARE(bench.text("txtGateInfo_20"), "5.2ms");
}

QTEST_MAIN(PropertiesGatesTest)
#include "PropertiesGatesTest.moc"
