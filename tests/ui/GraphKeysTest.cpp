#include <QAccessible>
#include <QDialog>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <cmath>

#include "CCDFWindowBench.h"
#include "profile/GraphMouse.h"
#include "profile/MeasurementSettings.h"
#include "ui/Look.h"
#include "ui/MainWindow.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// The window with gate 1 from point 50 to point 130 and the focus in its graph, which is 800
/// pixels wide, so that a pixel is a quarter of a point. All input goes to the window.
struct Main {
  FakeWorld world;
  MainWindow window{[] {}};
  ProfileViewGuard isTheView{window};

  Main() {
    Settings.Gates[0].Enabled = True16;
    Settings.Gates[0].StartTime = 0.00115F;
    Settings.Gates[0].StopTime = 0.00299F;
    AcquisitionRunning = True16;
    window.resize(800, 600);
    window.show();
    window.activateWindow();
    QCoreApplication::processEvents();
    for (int tab = 0; tab < 3; ++tab) strike(Qt::Key_Tab);
  }

  QWidget& graph() { return *window.findChild<QWidget*>("GraphPic"); }
  QLabel& label() { return *window.findChild<QLabel*>("lblgate"); }
  QString description() {
    return QAccessible::queryAccessibleInterface(&graph())->text(QAccessible::Description);
  }
  void strike(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window.windowHandle(), key, modifiers);
  }
  void press(Qt::Key key) { QTest::keyPress(window.windowHandle(), key); }
  void release(Qt::Key key) { QTest::keyRelease(window.windowHandle(), key); }
  /// What the window system sends while a key stays down.
  void repeat(Qt::Key key) {
    for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
      QKeyEvent event(type, key, Qt::NoModifier, QString(), true);
      QCoreApplication::sendEvent(window.windowHandle(), &event);
    }
  }
  static float timeAt(double point) { return static_cast<float>(point * 0.0046 / 200); }
  static Transcript startAt(const char* time) {
    return {"GPGATS 1, 1, ON", "GPFENS 1, 1, OFF", std::string("GPTIMST 1, 1, ") + time};
  }
};

}  // namespace

class GraphKeysTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

  void tabComesToTheGraph();
  void aClickLeavesTheFocus();
  void focusIsShown();
  void upAndDownChoose();
  void arrowsMoveByPixels_data();
  void arrowsMoveByPixels();
  void aHeldKeyPausesAndIsWrittenOnce();
  void escapeForgetsTheChoice();
  void leavingTheGraphForgetsTheChoice();
  void otherKeysAreNotTaken();
  void theHoldEnds_data();
  void theHoldEnds();
  void theMouseIsNotFollowedDuringAHold();
  void keysDoNothingWhileTheMouseHoldsAnEdge();
  void theLastOfTwoKeysCounts();
  void theChosenEdgeIsSpoken();
  void arrowsMoveTheCursor();
};

void GraphKeysTest::tabComesToTheGraph() {
  Main main;
  QCOMPARE(QApplication::focusWidget(), &main.graph());
}

void GraphKeysTest::aClickLeavesTheFocus() {
  Main main;
  main.strike(Qt::Key_Tab);
  QCOMPARE(QApplication::focusWidget()->objectName(), "lblStart");
  QTest::mouseClick(main.window.windowHandle(), Qt::LeftButton, {},
                    main.graph().mapTo(&main.window, QPoint(300, 100)));
  QVERIFY(!main.graph().hasFocus());
}

void GraphKeysTest::focusIsShown() {
  Main main;
  const auto border = [&main] {
    const QImage image = main.graph().grab().toImage();
    const QList<QPoint> places = {{0, 0},
                                  {image.width() - 1, image.height() - 1},
                                  {image.width() / 3, 0},
                                  {0, image.height() / 3}};
    int framed = 0;
    for (const QPoint& place : places) framed += QColor(image.pixel(place)) == look::focusFrame;
    return framed;
  };
  QCOMPARE(border(), 4);
  main.strike(Qt::Key_Tab);
  QCOMPARE(border(), 0);
}

void GraphKeysTest::upAndDownChoose() {
  Main main;
  Settings.Gates[0].FenceEnabled = True16;
  Settings.Gates[0].FenceStart = 0.00184F;
  Settings.Gates[0].FenceStop = 0.0023F;
  QVERIFY(main.label().isHidden());
  for (const auto& [key, caption] : {std::pair{Qt::Key_Down, "Gate 1 Start 1.15ms"},
                                     std::pair{Qt::Key_Down, "Fence 1 Start 1.84ms"},
                                     std::pair{Qt::Key_PageDown, "Fence 1 Stop 2.3ms"},
                                     std::pair{Qt::Key_PageUp, "Fence 1 Start 1.84ms"},
                                     std::pair{Qt::Key_Up, "Gate 1 Start 1.15ms"},
                                     std::pair{Qt::Key_Up, "Gate 1 Stop 2.99ms"}}) {
    main.strike(key);
    QVERIFY(main.label().isVisible());
    QCOMPARE(main.label().text(), caption);
  }
  const int column = static_cast<int>(std::lround(129.0 / 200 * main.graph().width()));
  QCOMPARE(main.label().pos().x(), main.graph().pos().x() + column);
  QVERIFY(main.world.meter.received.empty());
  QCOMPARE(AcquisitionRunning, True16);
}

void GraphKeysTest::arrowsMoveByPixels_data() {
  QTest::addColumn<int>("key");
  QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
  QTest::addColumn<double>("point");
  QTest::addColumn<QString>("caption");
  using Modifiers = Qt::KeyboardModifiers;
  QTest::newRow("right") << int(Qt::Key_Right) << Modifiers() << 50.25 << "Gate 1 Start 1.155ms";
  QTest::newRow("left") << int(Qt::Key_Left) << Modifiers() << 49.75 << "Gate 1 Start 1.144ms";
  QTest::newRow("keypad") << int(Qt::Key_Left) << Modifiers(Qt::KeypadModifier) << 49.75
                          << "Gate 1 Start 1.144ms";
  QTest::newRow("far right") << int(Qt::Key_Right) << Modifiers(Qt::ShiftModifier) << 52.5
                             << "Gate 1 Start 1.207ms";
  QTest::newRow("far left") << int(Qt::Key_Left) << Modifiers(Qt::ControlModifier) << 47.5
                            << "Gate 1 Start 1.092ms";
}

void GraphKeysTest::arrowsMoveByPixels() {
  QFETCH(int, key);
  QFETCH(Qt::KeyboardModifiers, modifiers);
  QFETCH(double, point);
  QFETCH(QString, caption);
  Main main;
  main.strike(Qt::Key_Down);
  main.strike(static_cast<Qt::Key>(key), modifiers);
  QVERIFY(std::abs(Settings.Gates[0].StartTime - Main::timeAt(point)) < 1e-8F);
  QCOMPARE(main.label().text().left(18), caption.left(18));
  QVERIFY(main.label().isVisible());
  QCOMPARE(main.world.meter.received.size(), std::size_t{3});
}

void GraphKeysTest::aHeldKeyPausesAndIsWrittenOnce() {
  Main main;
  main.strike(Qt::Key_Down);
  main.press(Qt::Key_Right);
  QCOMPARE(AcquisitionRunning, False16);
  for (int times = 1; times < 40; ++times) main.repeat(Qt::Key_Right);
  QCOMPARE(Settings.Gates[0].StartTime, 0.00138F);
  QCOMPARE(main.label().text(), "* Gate 1 Start 1.38ms");
  QVERIFY(main.world.meter.received.empty());
  QCOMPARE(AcquisitionRunning, False16);
  main.release(Qt::Key_Right);
  QCOMPARE(main.world.meter.received, Main::startAt("0.00138"));
  QCOMPARE(main.label().text(), "Gate 1 Start 1.38ms");
  QCOMPARE(AcquisitionRunning, True16);
}

void GraphKeysTest::escapeForgetsTheChoice() {
  Main main;
  main.strike(Qt::Key_Up);
  main.press(Qt::Key_Left);
  main.strike(Qt::Key_Escape);
  QCOMPARE(main.world.meter.received.size(), std::size_t{3});
  QCOMPARE(AcquisitionRunning, True16);
  QVERIFY(main.label().isHidden());
  QVERIFY(main.graph().hasFocus());
  main.release(Qt::Key_Left);
  QCOMPARE(main.world.meter.received.size(), std::size_t{3});
  main.strike(Qt::Key_Down);
  QCOMPARE(main.label().text(), "Gate 1 Start 1.15ms");
}

void GraphKeysTest::leavingTheGraphForgetsTheChoice() {
  Main main;
  main.strike(Qt::Key_Up);
  main.strike(Qt::Key_Tab);
  QVERIFY(main.label().isHidden());
  QCOMPARE(GraphMouse.Chosen, GrabbedEdge{});
}

void GraphKeysTest::otherKeysAreNotTaken() {
  Main main;
  for (const Qt::Key key : {Qt::Key_Home, Qt::Key_A, Qt::Key_Return, Qt::Key_Space}) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&main.graph(), &event);
    QVERIFY(!event.isAccepted());
  }
  QVERIFY(main.label().isHidden());
}

using HoldEnd = std::function<void(Main&)>;
Q_DECLARE_METATYPE(HoldEnd)

void GraphKeysTest::theHoldEnds_data() {
  QTest::addColumn<HoldEnd>("end");
  const auto row = [](const char* name, HoldEnd end) { QTest::newRow(name) << std::move(end); };
  row("focus goes to another control", [](Main& main) { main.strike(Qt::Key_Tab); });
  row("another key chooses", [](Main& main) { main.strike(Qt::Key_Down); });
  row("mouse button", [](Main& main) {
    const QPoint place = main.graph().mapTo(&main.window, QPoint(300, 100));
    QTest::mousePress(main.window.windowHandle(), Qt::LeftButton, {}, place);
    QCoreApplication::processEvents();
    QTest::mouseRelease(main.window.windowHandle(), Qt::LeftButton, {}, place);
  });
  row("menu", [](Main& main) {
    QMenu menu(&main.window);
    menu.addAction("one");
    menu.popup(main.window.mapToGlobal(QPoint(40, 40)));
    QTRY_COMPARE(AcquisitionRunning, True16);
    menu.close();
  });
  row("box", [](Main& main) {
    QDialog box(&main.window);
    box.open();
    QTRY_COMPARE(AcquisitionRunning, True16);
  });
  row("modal box that does not become active", [](Main& main) {
    QDialog box(&main.window, Qt::ToolTip);
    box.setModal(true);
    box.show();
    QTRY_COMPARE(AcquisitionRunning, True16);
  });
  row("window is hidden", [](Main& main) {
    main.window.hide();
    QTRY_COMPARE(AcquisitionRunning, True16);
  });
}

void GraphKeysTest::theHoldEnds() {
  QFETCH(HoldEnd, end);
  Main main;
  main.strike(Qt::Key_Down);
  main.press(Qt::Key_Right);
  for (int times = 1; times < 40; ++times) main.repeat(Qt::Key_Right);
  QCOMPARE(AcquisitionRunning, False16);
  end(main);
  QTRY_COMPARE(AcquisitionRunning, True16);
  QCOMPARE(main.world.meter.received, Main::startAt("0.00138"));
  main.release(Qt::Key_Right);
  QCOMPARE(main.world.meter.received.size(), std::size_t{3});
}

void GraphKeysTest::theMouseIsNotFollowedDuringAHold() {
  Main main;
  main.strike(Qt::Key_Down);
  main.press(Qt::Key_Right);
  const float moved = Settings.Gates[0].StartTime;
  for (const int x : {250, 300}) {
    QTest::mouseMove(main.window.windowHandle(), main.graph().mapTo(&main.window, QPoint(x, 99)));
  }
  QCOMPARE(Settings.Gates[0].StartTime, moved);
  QCOMPARE(AcquisitionRunning, False16);
  QVERIFY(main.label().isVisible());
  main.release(Qt::Key_Right);
  QCOMPARE(AcquisitionRunning, True16);
}

void GraphKeysTest::keysDoNothingWhileTheMouseHoldsAnEdge() {
  Main main;
  main.strike(Qt::Key_Down);
  const auto place = [&main](double point) {
    const double x = (point - 1) / 200 * main.graph().width();
    return main.graph().mapTo(&main.window, QPoint(static_cast<int>(std::lround(x)), 100));
  };
  QTest::mouseMove(main.window.windowHandle(), place(130));
  QTest::mousePress(main.window.windowHandle(), Qt::LeftButton, {}, place(130));
  QTest::mouseMove(main.window.windowHandle(), place(140));
  for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Down}) main.strike(key);
  QCOMPARE(AcquisitionRunning, False16);
  QTest::mouseMove(main.window.windowHandle(), place(150));
  QTest::mouseRelease(main.window.windowHandle(), Qt::LeftButton, {}, place(150));
  QCOMPARE(Settings.Gates[0].StartTime, 0.00115F);
  QCOMPARE(Settings.Gates[0].StopTime, 0.00345F);
  QCOMPARE(main.world.meter.received.size(), std::size_t{3});
}

void GraphKeysTest::theLastOfTwoKeysCounts() {
  Main main;
  main.strike(Qt::Key_Down);
  main.press(Qt::Key_Right);
  main.press(Qt::Key_Left);
  main.release(Qt::Key_Right);
  QCOMPARE(AcquisitionRunning, False16);
  QVERIFY(main.world.meter.received.empty());
  main.release(Qt::Key_Left);
  QCOMPARE(main.world.meter.received, Main::startAt("0.00115"));
}

void GraphKeysTest::theChosenEdgeIsSpoken() {
  Main main;
  const QString keys = "Up and Down choose an edge of a gate, Left and Right move it.";
  QCOMPARE(main.description(), keys);
  main.strike(Qt::Key_Down);
  QCOMPARE(main.description(), "Gate 1 Start 1.15ms");
  main.strike(Qt::Key_Escape);
  QCOMPARE(main.description(), keys);
}

void GraphKeysTest::arrowsMoveTheCursor() {
  CCDFBench bench;
  bench.showWithCursor();
  AcquisitionRunning = True16;
  bench.key(Qt::Key_Tab);
  QVERIFY(bench.graph().hasFocus());
  QTest::keyPress(bench.window.windowHandle(), Qt::Key_Right, Qt::ShiftModifier);
  QCOMPARE(bench.text("lblCursorPower"), "-19.725dBm");
  QCOMPARE(AcquisitionRunning, False16);
  QVERIFY(bench.received().empty());
  QTest::keyRelease(bench.window.windowHandle(), Qt::Key_Right, Qt::ShiftModifier);
  QCOMPARE(bench.received(), (Transcript{"TTMKPOS 1,-19.725"}));
  QCOMPARE(AcquisitionRunning, True16);
  bench.key(Qt::Key_Down);
  QCOMPARE(bench.received().size(), std::size_t{1});
}

QTEST_MAIN(GraphKeysTest)
#include "GraphKeysTest.moc"
