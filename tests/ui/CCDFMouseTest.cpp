#include <QAccessible>
#include <QDialog>
#include <QMenu>
#include <functional>

#include "CCDFWindowBench.h"
#include "profile/MeasurementSettings.h"
#include "ui/Look.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// The cursor's line is dragged from x = 66 to x = 100, which is -15 dBm.
void beginDrag(CCDFBench& bench) {
  bench.move(bench.at(66));
  bench.press(bench.at(66));
  bench.move(bench.at(100));
}

const Transcript afterTheDrag{"TTMKPOS 1,-15"};

}  // namespace

using PressEnd = std::function<void(CCDFBench&)>;
Q_DECLARE_METATYPE(PressEnd)

class CCDFMouseTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

  void lineIsHitWithinTwoPoints();
  void hoverOnThePaintedLineItself();
  void noLineNoArrow();
  void leavingTheGraphBringsTheUsualPointerBack();
  void dragMovesLineAndLabels();
  void dragOutsideTheGraph();
  void dragBesideTheLine();
  void otherButtonsDoNothing();
  void acquisitionPausesForTheDrag();
  void pressEndsOnce_data();
  void pressEndsOnce();
  void manyQueuedMoves();

  void powerLabelsOpenTheirBoxes_data();
  void powerLabelsOpenTheirBoxes();
  void keyboardReachesBothLabels();
  void powerLabelsAreSpoken();
};

void CCDFMouseTest::lineIsHitWithinTwoPoints() {
  CCDFBench bench;
  bench.showWithCursor();
  for (const auto& [x, hit] : {std::pair{66.0, true}, std::pair{90.0, false}, std::pair{64.0, true},
                               std::pair{63.5, false}, std::pair{68.0, true},
                               std::pair{68.5, false}, std::pair{63.75, false}}) {
    bench.move(bench.at(x));
    QVERIFY2(bench.sizing() == hit, qPrintable(QString::number(x)));
    if (!hit) QCOMPARE(bench.graph().cursor().shape(), Qt::ArrowCursor);
  }
  QVERIFY(bench.received().empty());
}

void CCDFMouseTest::hoverOnThePaintedLineItself() {
  CCDFBench bench;
  bench.showWithCursor();
  for (const QSize size : {QSize(863, 600), QSize(480, 360), QSize(641, 479)}) {
    bench.resize(size.width(), size.height());
    const QList<int> columns = bench.columnsOf(look::cursorLine);
    QVERIFY(!columns.isEmpty());
    for (const int column : columns) {
      bench.move({10, 10});
      QVERIFY(!bench.sizing());
      bench.move({static_cast<int>(column / bench.graph().devicePixelRatioF()), 100});
      QVERIFY(bench.sizing());
    }
  }
}

void CCDFMouseTest::noLineNoArrow() {
  CCDFBench bench;
  bench.showWithCursor();
  bench.move(bench.at(66));
  QVERIFY(bench.sizing());
  bench.item("menuOFF").trigger();
  bench.move(bench.at(66, 210));
  QVERIFY(!bench.sizing());
}

void CCDFMouseTest::leavingTheGraphBringsTheUsualPointerBack() {
  CCDFBench bench;
  bench.showWithCursor();
  bench.move(bench.at(66));
  QVERIFY(bench.sizing());
  bench.move({bench.at(66).x(), -5});
  QVERIFY(!bench.sizing());
  // A drag keeps it.
  beginDrag(bench);
  bench.move({bench.at(100).x(), -5});
  QVERIFY(bench.sizing());
  bench.release({bench.at(100).x(), -5});
}

void CCDFMouseTest::dragMovesLineAndLabels() {
  CCDFBench bench;
  bench.showWithCursor();
  QVERIFY(bench.lineIsPaintedAt(66, look::cursorLine));
  beginDrag(bench);
  QCOMPARE(bench.text("lblCursorPower"), "-15dBm");
  QVERIFY(bench.lineIsPaintedAt(100, look::cursorLine));
  bench.move(bench.at(120.5));
  QCOMPARE(bench.text("lblCursorPower"), "-11.925dBm");
  QCOMPARE(bench.text("lblCursorPercentage"), "5%");
  QVERIFY(bench.lineIsPaintedAt(120.5, look::cursorLine));
  QVERIFY(bench.sizing());
  QVERIFY(bench.received().empty());
  bench.release(bench.at(120.5));
  QCOMPARE(bench.received(), Transcript{"TTMKPOS 1,-11.925"});
  bench.move(bench.at(90));
  QCOMPARE(bench.text("lblCursorPower"), "-11.925dBm");
  QVERIFY(!bench.sizing());
  bench.move(bench.at(120.5));
  QVERIFY(bench.sizing());
  QCOMPARE(bench.received().size(), std::size_t{1});
}

void CCDFMouseTest::dragOutsideTheGraph() {
  CCDFBench bench;
  bench.showWithCursor();
  beginDrag(bench);
  for (const int x : {-200, 0, 800, 3000}) {
    bench.move({x, 200});
    QCOMPARE(bench.text("lblCursorPower"), "-15dBm");
    QVERIFY(bench.lineIsPaintedAt(100, look::cursorLine));
  }
  // Above and below the graph the line still follows.
  for (const int y : {-40, bench.graph().height() + 10}) {
    bench.move(bench.at(120, y));
    QCOMPARE(bench.text("lblCursorPower"), "-12dBm");
    bench.move(bench.at(100, y));
    QCOMPARE(bench.text("lblCursorPower"), "-15dBm");
  }
  bench.release(bench.at(100, bench.graph().height() + 10));
  QCOMPARE(bench.received(), afterTheDrag);
  QVERIFY(bench.world.dialogs.inputs.empty());
}

void CCDFMouseTest::dragBesideTheLine() {
  CCDFBench bench;
  bench.showWithCursor();
  bench.move(bench.at(80));
  bench.press(bench.at(80));
  bench.move(bench.at(66));
  bench.move(bench.at(100));
  QVERIFY(bench.lineIsPaintedAt(66, look::cursorLine));
  bench.release(bench.at(100));
  QCOMPARE(bench.received(), Transcript{"TTMKPOS 1,-20.1"});
}

void CCDFMouseTest::otherButtonsDoNothing() {
  CCDFBench bench;
  bench.showWithCursor();
  AcquisitionRunning = True16;
  for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
    bench.move(bench.at(66));
    bench.press(bench.at(66), button);
    QCOMPARE(AcquisitionRunning, True16);
    QCOMPARE(CCDF.CursorDragging, False16);
    bench.move(bench.at(100));
    bench.release(bench.at(100), button);
    QCOMPARE(bench.text("lblCursorPower"), "-20.1dBm");
    QVERIFY(bench.lineIsPaintedAt(66, look::cursorLine));
  }
  QVERIFY(bench.received().empty());
}

void CCDFMouseTest::acquisitionPausesForTheDrag() {
  CCDFBench bench;
  bench.showWithCursor();
  AcquisitionRunning = True16;
  beginDrag(bench);
  QCOMPARE(AcquisitionRunning, False16);
  QCOMPARE(CCDF.CursorDragging, True16);
  bench.release(bench.at(100));
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(CCDF.CursorDragging, False16);
  QCOMPARE(bench.received(), afterTheDrag);
}

void CCDFMouseTest::pressEndsOnce_data() {
  QTest::addColumn<PressEnd>("end");
  QTest::newRow("modal box") << PressEnd([](CCDFBench& bench) {
    QDialog box(&bench.window);
    QTimer::singleShot(50, &box, &QDialog::accept);
    box.exec();
  });
  QTest::newRow("modal box of nobody") << PressEnd([](CCDFBench&) {
    QDialog box;
    QTimer::singleShot(50, &box, &QDialog::accept);
    box.exec();
  });
  QTest::newRow("menu") << PressEnd([](CCDFBench& bench) {
    QMenu menu(&bench.window);
    menu.addAction("An item");
    menu.popup(bench.window.mapToGlobal(QPoint(100, 100)));
    CCDFBench::settle();
    menu.close();
  });
  QTest::newRow("hidden window") << PressEnd([](CCDFBench& bench) { bench.window.hide(); });
  QTest::newRow("minimised window")
      << PressEnd([](CCDFBench& bench) { bench.window.showMinimized(); });
}

void CCDFMouseTest::pressEndsOnce() {
  QFETCH(PressEnd, end);
  CCDFBench bench;
  bench.showWithCursor();
  AcquisitionRunning = True16;
  beginDrag(bench);
  end(bench);
  CCDFBench::settle();
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(CCDF.CursorDragging, False16);
  QCOMPARE(bench.received(), afterTheDrag);
  // What still comes belongs to no press.
  bench.window.showNormal();
  CCDFBench::settle();
  bench.release(bench.at(150));
  bench.move(bench.at(160));
  QCOMPARE(bench.received(), afterTheDrag);
  QCOMPARE(bench.text("lblCursorPower"), "-15dBm");
}

void CCDFMouseTest::manyQueuedMoves() {
  CCDFBench bench;
  bench.showWithCursor();
  beginDrag(bench);
  const QRect frame = bench.part("FrameCursor").geometry();
  for (int i = 0; i < 300; ++i) bench.move(bench.at(20 + i % 150, 50 + i));
  bench.move(bench.at(100));
  QVERIFY(bench.received().empty());
  QCOMPARE(bench.part("FrameCursor").geometry(), frame);
  bench.release(bench.at(100));
  QCOMPARE(bench.received(), afterTheDrag);
  QVERIFY(bench.lineIsPaintedAt(100, look::cursorLine));
}

void CCDFMouseTest::powerLabelsOpenTheirBoxes_data() {
  QTest::addColumn<QByteArray>("name");
  QTest::addColumn<QString>("prompt");
  QTest::addColumn<QString>("title");
  QTest::addColumn<QString>("defaultText");
  QTest::addColumn<QString>("mnemonic");
  QTest::newRow("start") << QByteArray("lblStartPower") << "Enter new Starting Power in dBm"
                         << "Starting Power"
                         << "-30"
                         << "TTPST";
  QTest::newRow("stop") << QByteArray("lblStopPower") << "Enter new Stoping Power in dBm"
                        << "Stoping Power "
                        << "0"
                        << "TTPSP";
}

void CCDFMouseTest::powerLabelsOpenTheirBoxes() {
  QFETCH(QByteArray, name);
  QFETCH(QString, prompt);
  QFETCH(QString, title);
  QFETCH(QString, defaultText);
  QFETCH(QString, mnemonic);
  CCDFBench bench;
  bench.show();
  QCOMPARE(bench.label(name).cursor().shape(), Qt::PointingHandCursor);
  QVERIFY(bench.label(name).toolTip().endsWith("Click to change it."));
  // An empty answer changes nothing.
  bench.click(name);
  QCOMPARE(bench.world.dialogs.inputs.size(), std::size_t{1});
  const AskedText asked = bench.world.dialogs.inputs.front();
  QCOMPARE(QString::fromStdString(asked.prompt), prompt);
  QCOMPARE(QString::fromStdString(asked.title), title);
  QCOMPARE(QString::fromStdString(asked.defaultText), defaultText);
  QVERIFY(bench.received().empty());

  const std::string command = mnemonic.toStdString();
  bench.world.dialogs.textAnswers = {"-7.25"};
  bench.world.meter.replies[command + "? 1"] = command + " 1,-7.3";
  bench.click(name);
  QCOMPARE(bench.received(), (Transcript{command + " 1,-7.25", command + "? 1"}));
  QCOMPARE(bench.text(name), "-7.3dBm");
}

void CCDFMouseTest::keyboardReachesBothLabels() {
  CCDFBench bench;
  bench.show();
  bench.key(Qt::Key_Return);
  QVERIFY(bench.world.dialogs.inputs.empty());
  for (const char* name :
       {"CCDFGraphPic", "lblStartPower", "lblStopPower", "CCDFGraphPic", "lblStartPower"}) {
    bench.key(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget()->objectName(), name);
  }
  bench.key(Qt::Key_Return);
  bench.key(Qt::Key_Tab);
  bench.key(Qt::Key_Space);
  QCOMPARE(bench.world.dialogs.inputs.size(), std::size_t{2});
  QCOMPARE(bench.world.dialogs.inputs[0].title, "Starting Power");
  QCOMPARE(bench.world.dialogs.inputs[1].title, "Stoping Power ");
}

void CCDFMouseTest::powerLabelsAreSpoken() {
  CCDFBench bench;
  bench.show();
  const auto spoken = [&bench](const char* name) {
    return QAccessible::queryAccessibleInterface(&bench.label(name))->text(QAccessible::Name);
  };
  QCOMPARE(spoken("lblStartPower"), "Start power, -30dBm");
  QCOMPARE(spoken("lblStopPower"), "Stop power, 0dBm");
}

QTEST_MAIN(CCDFMouseTest)
#include "CCDFMouseTest.moc"
