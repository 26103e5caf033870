#include <QAction>
#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QWindow>
#include <cmath>
#include <functional>
#include <memory>

#include "WindowTest.h"
#include "profile/GraphMouse.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "support/FakeWorld.h"
#include "ui/Look.h"
#include "ui/MainWindow.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// The window with gate 1 from point 50 to point 130; all input goes to the window, as the window
/// system sends it. Points of the mouse are pixels of the graph.
struct Main {
  FakeWorld world;
  MainWindow window{[] {}};
  ProfileViewGuard isTheView{window};

  explicit Main(QSize size = {800, 600}) {
    Settings.Gates[0].Enabled = True16;
    Settings.Gates[0].StartTime = 0.00115F;
    Settings.Gates[0].StopTime = 0.00299F;
    window.resize(size);
    window.show();
    window.activateWindow();
    settle();
    // A move to where the mouse is already would be none.
    move({1, 1});
  }
  ~Main() {
    if (held_) release({1, 1});
  }

  static void settle() { QCoreApplication::processEvents(); }
  QWidget& graph() { return *window.findChild<QWidget*>("GraphPic"); }
  QLabel& label() { return *window.findChild<QLabel*>("lblgate"); }
  /// Where the label stands on the graph.
  QRect labelRect() {
    return QRect(label().mapTo(&window, QPoint()) - graph().mapTo(&window, QPoint()),
                 label().size());
  }
  QRect graphRect() { return graph().rect(); }
  bool sizing() { return graph().cursor().shape() == Qt::SizeHorCursor; }

  /// The pixel of a trace point.
  int pixelOf(double x) {
    return static_cast<int>(std::lround((x - 1) / Settings.DisplayPoints * graph().width()));
  }
  QPoint at(double x, int y = 200) { return {pixelOf(x), y}; }
  double pointOf(int pixel) {
    return 1 + static_cast<double>(pixel) / graph().width() * Settings.DisplayPoints;
  }

  QPoint inWindow(QPoint onGraph) { return graph().mapTo(&window, onGraph); }
  void move(QPoint pixel) { QTest::mouseMove(window.windowHandle(), inWindow(pixel)); }
  void press(QPoint pixel, Qt::MouseButton button = Qt::LeftButton) {
    if (button == Qt::LeftButton) held_ = true;
    QTest::mousePress(window.windowHandle(), button, {}, inWindow(pixel));
  }
  void release(QPoint pixel, Qt::MouseButton button = Qt::LeftButton) {
    if (button == Qt::LeftButton) held_ = false;
    QTest::mouseRelease(window.windowHandle(), button, {}, inWindow(pixel));
  }
  /// A move that tells that no button is down.
  void moveWithoutButtons(QPoint pixel) {
    const QPointF place = inWindow(pixel);
    QMouseEvent event(QEvent::MouseMove, place, place, window.mapToGlobal(place), Qt::NoButton,
                      Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.windowHandle(), &event);
  }
  /// Presses on the start of gate 1 and drags it to point 60.
  void beginDrag() {
    move(at(50));
    press(at(50));
    move(at(60));
  }

  /// The device columns where a gate line is painted over the whole height.
  QList<int> paintedLines() {
    const QImage image = graph().grab().toImage();
    QList<int> columns;
    for (int x = 0; x < image.width(); ++x) {
      int y = 0;
      while (y < image.height() && QColor(image.pixel(x, y)) == look::gateLine) ++y;
      if (y == image.height()) columns.push_back(x);
    }
    return columns;
  }
  /// The first of the columns that belong to the line of a trace point.
  bool lineIsPaintedAt(double x) {
    const double column = (x - 1) / Settings.DisplayPoints * graph().width();
    return paintedLines().contains(
        static_cast<int>(std::lround(column * graph().devicePixelRatioF())));
  }

  /// What the release of gate 1's start at point 60 tells the meter.
  static Transcript startAtPoint60() {
    return {"GPGATS 1, 1, ON", "GPFENS 1, 1, OFF", "GPTIMST 1, 1, 0.00138"};
  }

 private:
  bool held_ = false;
};

/// Counts the events of one kind that one object gets.
class EventCounter : public QObject {
 public:
  EventCounter(QObject& watched, QEvent::Type type) : type_(type) {
    watched.installEventFilter(this);
  }
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == type_) ++count;
    return false;
  }
  int count = 0;

 private:
  QEvent::Type type_;
};

}  // namespace

class GraphMouseTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

  void hoverShowsTheEdge();
  void hoverOnThePaintedLineItself();
  void hoverKeepsItsPointerShape();
  void followingGateHasTheUsualPointer();
  void leavingTheGraphHidesTheLabel();
  void labelLetsTheMouseThrough();
  void labelGeometry_data();
  void labelGeometry();
  void labelStaysInsideTheGraph_data();
  void labelStaysInsideTheGraph();
  void labelFontIsNotThatOfTheGraph();
  void resizeDuringHover();

  void dragMovesTheEdge();
  void dragOfEachEdge_data();
  void dragOfEachEdge();
  void dragBeyondTheLimits();
  void dragOutsideTheGraph();
  void manyQueuedMoves();
  void pressWithoutAnEdge();
  void otherButtonsDoNothing();
  void rightButtonDuringADrag();
  void doubleClick();

  void pressEndsOnce_data();
  void pressEndsOnce();
  void boxOfThePressItself();
  void releaseTellsTheMeterWhenTheBoxIsOpen();
  void pressAfterALostRelease();
  void menuOpensDuringADrag();
  void leaveDuringADragIsNoEnd();
  void stopDuringADrag();
  void windowDiesDuringADrag();
  void pressBeforeTheFirstDrawing();
  void faultIsShownOnce();
};

void GraphMouseTest::hoverShowsTheEdge() {
  Main main;
  QVERIFY(main.label().isHidden());
  main.move(main.at(90));
  QVERIFY(main.label().isHidden());
  QVERIFY(!main.sizing());
  main.move(main.at(50));
  QVERIFY(main.label().isVisible());
  QCOMPARE(main.label().text(), "Gate 1 Start 1.15ms");
  QVERIFY(main.sizing());
  // Three points to either side, and no more.
  const int farthest = 3 * main.graph().width() / 200;
  const int centre = main.pixelOf(50);
  for (const int distance : {-farthest, farthest}) {
    main.move({centre + distance, 100});
    QVERIFY(main.sizing());
    main.move({centre + distance + (distance > 0 ? 1 : -1), 100});
    QVERIFY(!main.sizing());
    QVERIFY(main.label().isHidden());
  }
  main.move(main.at(130));
  QCOMPARE(main.label().text(), "Gate 1 Stop 2.99ms");
  QVERIFY(main.world.meter.received.empty());
}

void GraphMouseTest::hoverOnThePaintedLineItself() {
  Main main;
  const QList<int> columns = main.paintedLines();
  QVERIFY(columns.size() >= 2);
  for (const int column : columns) {
    main.move({10, 10});
    QVERIFY(main.label().isHidden());
    main.move({static_cast<int>(column / main.graph().devicePixelRatioF()), 300});
    QVERIFY(main.label().isVisible());
    QVERIFY(main.sizing());
  }
}

void GraphMouseTest::hoverKeepsItsPointerShape() {
  Main main;
  main.move(main.at(50));
  const EventCounter changes(main.graph(), QEvent::CursorChange);
  for (int i = 0; i < 10; ++i) main.move(main.at(50, 100 + i));
  QCOMPARE(changes.count, 0);
  main.move(main.at(90));
  QCOMPARE(changes.count, 1);
  for (int i = 0; i < 10; ++i) main.move(main.at(90, 100 + i));
  QCOMPARE(changes.count, 1);
}

void GraphMouseTest::followingGateHasTheUsualPointer() {
  Main main;
  Settings.RepeatEnabled = True16;
  Settings.RepeatOffset = 0.00023F;
  Settings.Gates[0].StopTime = 0.00115F;
  Settings.Gates[0].StartTime = 0.00046F;
  Settings.Gates[1].Enabled = True16;
  ExpandRepeatGates();
  PositionGateLines();
  main.move(main.at(60));
  QCOMPARE(main.label().text(), "Gate 2 Stop 1.38ms");
  QVERIFY(main.label().isVisible());
  QVERIFY(!main.sizing());
  main.press(main.at(60));
  main.move(main.at(70));
  main.release(main.at(70));
  QCOMPARE(Settings.Gates[1].StopTime, 0.00138F);
  QVERIFY(main.world.meter.received.empty());
}

void GraphMouseTest::leavingTheGraphHidesTheLabel() {
  Main main;
  main.move(main.at(50));
  QVERIFY(main.label().isVisible());
  main.move({main.pixelOf(50), -5});
  QVERIFY(main.label().isHidden());
  QVERIFY(!main.sizing());
  main.move(main.at(50));
  QVERIFY(main.label().isVisible());
  QTest::mouseMove(main.window.windowHandle(), {400, 5});
  QVERIFY(main.label().isHidden());
}

void GraphMouseTest::labelLetsTheMouseThrough() {
  Main main;
  const QPoint start = main.at(48);
  main.move(start);
  QVERIFY(main.label().isVisible());
  // Where the label stands now; it goes ahead of a mouse that moves towards it.
  const QRect covered = main.labelRect();
  const EventCounter moves(main.graph(), QEvent::MouseMove);
  const EventCounter leaves(main.graph(), QEvent::Leave);
  int sent = 0;
  for (int step = 1; step <= 14; ++step) {
    main.move(start + QPoint(step, 3 * step));
    ++sent;
    QCOMPARE(moves.count, sent);
    QVERIFY(main.label().isVisible());
    QCOMPARE(main.labelRect().left(), start.x() + step);
  }
  QVERIFY(covered.contains(start + QPoint(14, 3 * 10)));
  // The label is not moved ahead here: the mouse comes to stand over it.
  const QPoint over = main.labelRect().center();
  QVERIFY(main.graphRect().contains(over));
  main.move(over);
  QCOMPARE(moves.count, sent + 1);
  QCOMPARE(leaves.count, 0);
}

void GraphMouseTest::labelGeometry_data() {
  QTest::addColumn<QSize>("size");
  QTest::newRow("usual") << QSize(800, 600);
  QTest::newRow("smallest") << QSize(480, 360);
  QTest::newRow("odd") << QSize(641, 479);
}

/// The pointer's pixel is the left end; the label hangs one height below it, or stands two heights
/// above it near the bottom. At the right it ends one point before the edge.
void GraphMouseTest::labelGeometry() {
  QFETCH(QSize, size);
  Main main(size);
  const double points = Settings.DisplayPoints;
  int flipped = 0;
  int moved = 0;
  for (const double x : {50.0, 130.0, 196.0}) {
    Settings.Gates[0].StopTime = x > 190 ? 0.0045F : 0.00299F;
    PositionGateLines();
    for (int y = 0; y < main.graph().height(); y += 7) {
      const QPoint pointer = main.at(x, y);
      main.move(pointer);
      QVERIFY(main.label().isVisible());
      const QSize label = main.label().size();
      QCOMPARE(label, main.label().sizeHint());
      const bool passesRight =
          main.pointOf(pointer.x()) + label.width() * points / main.graph().width() > points;
      const double onePoint = main.graph().width() / points;
      const int left =
          passesRight
              ? static_cast<int>(std::lround(main.graph().width() - label.width() - onePoint))
              : pointer.x();
      const bool passesBottom = y + 2 * label.height() > main.graph().height();
      const int top = passesBottom ? y - 2 * label.height() : y + label.height();
      QCOMPARE(main.labelRect().topLeft(), QPoint(left, top));
      QVERIFY(main.graphRect().contains(main.labelRect()));
      flipped += passesBottom ? 1 : 0;
      moved += passesRight ? 1 : 0;
    }
  }
  QVERIFY(flipped > 0);
  QVERIFY(moved > 0);
}

void GraphMouseTest::labelStaysInsideTheGraph_data() {
  QTest::addColumn<QPoint>("beside");
  QTest::newRow("left") << QPoint(-300, 100);
  QTest::newRow("right") << QPoint(2000, 100);
  QTest::newRow("above") << QPoint(200, -150);
  QTest::newRow("below") << QPoint(200, 2000);
  QTest::newRow("left above") << QPoint(-5000, -5000);
  QTest::newRow("right below") << QPoint(5000, 5000);
}

void GraphMouseTest::labelStaysInsideTheGraph() {
  QFETCH(QPoint, beside);
  Main main({480, 360});
  main.move(main.at(50));
  main.press(main.at(50));
  main.move(beside);
  QVERIFY(main.label().isVisible());
  QVERIFY(main.label().text().startsWith("* Gate 1 Start "));
  QVERIFY(main.graphRect().contains(main.labelRect()));
  main.release(beside);
  QVERIFY(main.label().isHidden());
}

void GraphMouseTest::labelFontIsNotThatOfTheGraph() {
  Main main;
  main.move(main.at(50));
  const QFont before = main.label().font();
  const QSize sizeBefore = main.label().size();
  QFont chosen("DejaVu Serif", 28, QFont::Bold);
  main.window.applyGraphFont(chosen);
  main.settle();
  QCOMPARE(main.graph().font().pointSize(), 28);
  main.move(main.at(90));
  main.move(main.at(50));
  QCOMPARE(main.label().font(), before);
  QCOMPARE(main.label().fontInfo().family(), QFontInfo(before).family());
  QCOMPARE(main.label().size(), sizeBefore);
  // Now that the graph has a font of its own, it still follows the program's.
  QCOMPARE(main.label().font().pointSizeF(), main.window.font().pointSizeF());
}

void GraphMouseTest::resizeDuringHover() {
  Main main({800, 600});
  Settings.Gates[0].StopTime = 0.0045F;
  PositionGateLines();
  main.move(main.at(196, 500));
  QVERIFY(main.label().isVisible());
  main.window.resize(480, 360);
  main.settle();
  QVERIFY(main.graphRect().contains(main.labelRect()));
  main.move(main.at(50));
  QCOMPARE(main.labelRect().left(), main.pixelOf(50));
  QVERIFY(main.sizing());
  main.move(main.at(90));
  QVERIFY(main.label().isHidden());
}

void GraphMouseTest::dragMovesTheEdge() {
  Main main;
  AcquisitionRunning = True16;
  main.move(main.at(50));
  QVERIFY(main.lineIsPaintedAt(50));
  main.press(main.at(50));
  QCOMPARE(AcquisitionRunning, False16);
  QCOMPARE(main.label().text(), "* Gate 1 Start 1.15ms");
  for (const int x : {52, 55, 60, 70, 60}) {
    main.move(main.at(x));
    QCOMPARE(Settings.Gates[0].StartTime, static_cast<float>(x * 0.0046 / 200));
    QVERIFY(main.lineIsPaintedAt(x));
    QVERIFY(main.label().text().startsWith("* Gate 1 Start "));
    QCOMPARE(main.labelRect().left(), main.pixelOf(x));
    QVERIFY(main.sizing());
  }
  QVERIFY(!main.lineIsPaintedAt(50));
  QCOMPARE(main.label().text(), "* Gate 1 Start 1.38ms");
  QVERIFY(main.world.meter.received.empty());
  main.release(main.at(60));
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
  QCOMPARE(AcquisitionRunning, True16);
  QVERIFY(main.label().isHidden());
  QVERIFY(!main.sizing());
  main.move(main.at(60, 210));
  QCOMPARE(main.label().text(), "Gate 1 Start 1.38ms");
  QVERIFY(main.label().isVisible());
  QCOMPARE(main.world.meter.received.size(), std::size_t{3});
}

void GraphMouseTest::dragOfEachEdge_data() {
  QTest::addColumn<int>("from");
  QTest::addColumn<int>("to");
  QTest::addColumn<QString>("caption");
  QTest::addColumn<QString>("command");
  QTest::newRow("start") << 50 << 60 << "* Gate 1 Start 1.38ms"
                         << "GPTIMST 1, 1, 0.00138";
  QTest::newRow("stop") << 130 << 160 << "* Gate 1 Stop 3.68ms"
                        << "GPTIMSP 1, 1, 0.00368";
  QTest::newRow("fence start") << 80 << 70 << "* Fence 1 Start 1.61ms"
                               << "GPFENST 1, 1, 0.00161";
  QTest::newRow("fence stop") << 100 << 110 << "* Fence 1 Stop 2.53ms"
                              << "GPFENSP 1, 1, 0.00253";
}

void GraphMouseTest::dragOfEachEdge() {
  QFETCH(int, from);
  QFETCH(int, to);
  QFETCH(QString, caption);
  QFETCH(QString, command);
  Main main;
  Settings.Gates[0].FenceEnabled = True16;
  Settings.Gates[0].FenceStart = 0.00184F;
  Settings.Gates[0].FenceStop = 0.0023F;
  PositionGateLines();
  main.move(main.at(from));
  main.press(main.at(from));
  main.move(main.at(to));
  QCOMPARE(main.label().text(), caption);
  main.release(main.at(to));
  const Transcript expected{"GPGATS 1, 1, ON", "GPFENS 1, 1, ON", command.toStdString()};
  QCOMPARE(main.world.meter.received, expected);
}

void GraphMouseTest::dragBeyondTheLimits() {
  Main main;
  main.beginDrag();
  main.move(main.at(150));
  QCOMPARE(Settings.Gates[0].StartTime, 0.00138F);
  QVERIFY(main.lineIsPaintedAt(60));
  QCOMPARE(main.label().text(), "* Gate 1 Start 1.38ms");
  QCOMPARE(main.labelRect().left(), main.pixelOf(150));
  main.move(main.at(100));
  QCOMPARE(Settings.Gates[0].StartTime, 0.0023F);
  main.move(main.at(60));
  main.move(main.at(170));
  main.release(main.at(170));
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
}

void GraphMouseTest::dragOutsideTheGraph() {
  Main main;
  main.beginDrag();
  for (const QPoint outside : {QPoint(-200, 200), QPoint(3000, 200)}) {
    main.move(outside);
    QCOMPARE(Settings.Gates[0].StartTime, 0.00138F);
  }
  // Above the graph, over the menu and the labels, the edge still follows.
  for (const int y : {-40, -10, main.graph().height() + 10}) {
    main.move(main.at(70, y));
    QCOMPARE(Settings.Gates[0].StartTime, 0.00161F);
    main.move(main.at(60, y));
    QCOMPARE(Settings.Gates[0].StartTime, 0.00138F);
    QVERIFY(main.label().isVisible());
  }
  main.release(main.at(60, -10));
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
  QVERIFY(main.label().isHidden());
  QVERIFY(!main.sizing());
  QVERIFY(main.world.dialogs.inputs.empty());
}

void GraphMouseTest::manyQueuedMoves() {
  Main main;
  main.move(main.at(50));
  main.press(main.at(50));
  const EventCounter moves(main.graph(), QEvent::MouseMove);
  const auto post = [&main](QEvent::Type type, QPoint pixel) {
    const QPointF place = main.inWindow(pixel);
    const bool isMove = type == QEvent::MouseMove;
    QCoreApplication::postEvent(
        main.window.windowHandle(),
        new QMouseEvent(type, place, place, main.window.mapToGlobal(place),
                        isMove ? Qt::NoButton : Qt::LeftButton,
                        isMove ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier));
  };
  for (int i = 0; i < 299; ++i) post(QEvent::MouseMove, main.at(20 + i % 90, 50 + i));
  post(QEvent::MouseMove, main.at(60));
  post(QEvent::MouseButtonRelease, main.at(60));
  main.settle();
  QCOMPARE(moves.count, 300);
  QCOMPARE(Settings.Gates[0].StartTime, 0.00138F);
  QVERIFY(main.lineIsPaintedAt(60));
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
  // The tool's own idea of the button.
  main.release(main.at(60));
  QCOMPARE(main.world.meter.received.size(), std::size_t{3});
}

void GraphMouseTest::pressWithoutAnEdge() {
  Main main;
  AcquisitionRunning = True16;
  main.move(main.at(90));
  main.press(main.at(90));
  QCOMPARE(AcquisitionRunning, False16);
  main.move(main.at(50));
  QCOMPARE(Settings.Gates[0].StartTime, 0.00115F);
  QVERIFY(main.label().isHidden());
  main.release(main.at(50));
  QCOMPARE(AcquisitionRunning, True16);
  QVERIFY(main.world.meter.received.empty());
}

void GraphMouseTest::otherButtonsDoNothing() {
  Main main;
  AcquisitionRunning = True16;
  for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
    main.move(main.at(50));
    main.press(main.at(50), button);
    QCOMPARE(AcquisitionRunning, True16);
    QCOMPARE(GraphMouse.ButtonDown, False16);
    main.move(main.at(50, 210));
    QCOMPARE(main.label().text(), "Gate 1 Start 1.15ms");
    main.move(main.at(70));
    main.release(main.at(70), button);
    QCOMPARE(Settings.Gates[0].StartTime, 0.00115F);
  }
  QVERIFY(main.world.meter.received.empty());
}

void GraphMouseTest::rightButtonDuringADrag() {
  Main main;
  AcquisitionRunning = True16;
  main.beginDrag();
  main.press(main.at(60), Qt::RightButton);
  QCOMPARE(AcquisitionRunning, False16);
  main.move(main.at(65));
  QCOMPARE(Settings.Gates[0].StartTime, 0.001495F);
  main.release(main.at(65), Qt::RightButton);
  QCOMPARE(AcquisitionRunning, False16);
  QCOMPARE(main.label().text(), "* Gate 1 Start 1.495ms");
  main.move(main.at(60));
  QVERIFY(main.world.meter.received.empty());
  main.release(main.at(60));
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());

  // The left button goes first.
  main.move(main.at(60));
  main.press(main.at(60));
  main.press(main.at(60), Qt::RightButton);
  main.release(main.at(60));
  QCOMPARE(AcquisitionRunning, True16);
  main.release(main.at(60), Qt::RightButton);
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(main.world.meter.received.size(), std::size_t{6});
}

/// Each of its two presses is one.
void GraphMouseTest::doubleClick() {
  Main main;
  AcquisitionRunning = True16;
  main.move(main.at(50));
  const EventCounter doubles(main.graph(), QEvent::MouseButtonDblClick);
  QTest::mouseDClick(main.window.windowHandle(), Qt::LeftButton, {}, main.inWindow(main.at(50)));
  QCOMPARE(doubles.count, 1);
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(GraphMouse.ButtonDown, False16);
  QCOMPARE(main.world.meter.received.size(), std::size_t{6});
  QCOMPARE(main.world.meter.received[5], "GPTIMST 1, 1, 0.00115");
  QVERIFY(main.label().isHidden());
}

using PressEnd = std::function<void(Main&)>;
Q_DECLARE_METATYPE(PressEnd)

void GraphMouseTest::pressEndsOnce_data() {
  QTest::addColumn<PressEnd>("end");
  QTest::newRow("release") << PressEnd([](Main& main) { main.release(main.at(60)); });
  QTest::newRow("modal box") << PressEnd([](Main& main) {
    QDialog box(&main.window);
    QTimer::singleShot(50, &box, &QDialog::accept);
    box.exec();
  });
  QTest::newRow("modal box of nobody") << PressEnd([](Main&) {
    QDialog box;
    QTimer::singleShot(50, &box, &QDialog::accept);
    box.exec();
  });
  QTest::newRow("modal box that does not become active") << PressEnd([](Main& main) {
    QDialog box(&main.window, Qt::ToolTip);
    box.setModal(true);
    QTimer::singleShot(50, &box, &QDialog::accept);
    QTimer::singleShot(0, &box, [&main] { QVERIFY(main.window.isActiveWindow()); });
    box.exec();
  });
  QTest::newRow("hidden window") << PressEnd([](Main& main) { main.window.hide(); });
  QTest::newRow("minimised window") << PressEnd([](Main& main) { main.window.showMinimized(); });
  QTest::newRow("other window") << PressEnd([](Main&) {
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
  });
  QTest::newRow("release elsewhere")
      << PressEnd([](Main& main) { main.moveWithoutButtons(main.at(90)); });
}

void GraphMouseTest::pressEndsOnce() {
  QFETCH(PressEnd, end);
  Main main;
  AcquisitionRunning = True16;
  main.beginDrag();
  QCOMPARE(AcquisitionRunning, False16);
  end(main);
  main.settle();
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
  QVERIFY(main.label().isHidden());
  QVERIFY(!main.sizing());
  QCOMPARE(GraphMouse.ButtonDown, False16);
  // What still comes belongs to no press.
  main.window.showNormal();
  main.settle();
  main.release(main.at(80));
  main.move(main.at(90));
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(Settings.Gates[0].StartTime, 0.00138F);
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
  // And the next press is one again.
  main.move(main.at(60));
  main.press(main.at(60));
  QCOMPARE(AcquisitionRunning, False16);
  main.release(main.at(60));
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(main.world.meter.received.size(), std::size_t{6});
}

/// A handler that opens a box ends its own press, and once.
void GraphMouseTest::boxOfThePressItself() {
  FakeWorld world;
  GraphWidget graph;
  QStringList calls;
  const auto openBox = [&graph] {
    QDialog box(&graph);
    QTimer::singleShot(20, &box, &QDialog::accept);
    box.exec();
  };
  graph.setMouseHandlers({[&] {
                            calls << "press";
                            openBox();
                          },
                          [](PicturePoint) {},
                          [&] {
                            calls << "release";
                            openBox();
                          },
                          [] {}});
  graph.resize(200, 100);
  graph.show();
  graph.activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(&graph));
  QTest::mousePress(graph.windowHandle(), Qt::LeftButton, {}, {50, 50});
  QCoreApplication::processEvents();
  QCOMPARE(calls, QStringList({"press", "release"}));
  QTest::mouseRelease(graph.windowHandle(), Qt::LeftButton, {}, {50, 50});
  QCoreApplication::processEvents();
  QCOMPARE(calls, QStringList({"press", "release"}));
}

/// The write may let events run; the box must stand by then.
void GraphMouseTest::releaseTellsTheMeterWhenTheBoxIsOpen() {
  Main main;
  main.beginDrag();
  QDialog box(&main.window);
  QList<bool> shown;
  main.world.meter.onMessage = [&](const std::string&) {
    shown << (box.isVisible() && QApplication::activeModalWidget() == &box);
  };
  QTimer::singleShot(100, &box, &QDialog::accept);
  box.exec();
  QCOMPARE(shown, QList<bool>({true, true, true}));
}

void GraphMouseTest::pressAfterALostRelease() {
  Main main;
  AcquisitionRunning = True16;
  main.beginDrag();
  // The next that is seen of the mouse is another press.
  main.press(main.at(60));
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
  QCOMPARE(AcquisitionRunning, False16);
  main.release(main.at(60));
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(main.world.meter.received.size(), std::size_t{6});
}

/// The menu takes the release.
void GraphMouseTest::menuOpensDuringADrag() {
  Main main;
  AcquisitionRunning = True16;
  main.beginDrag();
  QMenu menu(&main.window);
  menu.addAction("An item");
  menu.popup(main.window.mapToGlobal(QPoint(100, 100)));
  main.settle();
  QCOMPARE(QApplication::activePopupWidget(), &menu);
  QTest::mouseRelease(menu.windowHandle(), Qt::LeftButton, {}, {2, 2});
  menu.close();
  main.settle();
  QVERIFY(QApplication::activePopupWidget() == nullptr);
  QCOMPARE(AcquisitionRunning, True16);
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
  main.move(main.at(90));
  main.release(main.at(90));
  QCOMPARE(main.world.meter.received.size(), std::size_t{3});
}

/// Some window systems tell that the mouse has left while a button is down.
void GraphMouseTest::leaveDuringADragIsNoEnd() {
  Main main;
  main.beginDrag();
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&main.graph(), &leave);
  main.settle();
  QVERIFY(main.label().isVisible());
  QVERIFY(main.sizing());
  main.move(main.at(70));
  QCOMPARE(Settings.Gates[0].StartTime, 0.00161F);
  main.move(main.at(60));
  main.release(main.at(60));
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
}

void GraphMouseTest::stopDuringADrag() {
  Main main;
  main.window.showAcquisitionStarted();
  AcquisitionRunning = True16;
  main.beginDrag();
  QTest::keyClick(main.window.windowHandle(), Qt::Key_F5, Qt::ShiftModifier);
  main.release(main.at(60));
  QCOMPARE(AcquisitionRunning, False16);
  QCOMPARE(main.world.meter.received, Main::startAtPoint60());
}

void GraphMouseTest::windowDiesDuringADrag() {
  const FakeWorld world;
  bool released = false;
  auto graph = std::make_unique<GraphWidget>();
  graph->setMouseHandlers({[] {}, [](PicturePoint) {}, [&] { released = true; }, [] {}});
  graph->resize(200, 100);
  graph->show();
  QTest::mousePress(graph->windowHandle(), Qt::LeftButton, {}, {50, 50});
  graph->hide();
  graph.reset();
  QCoreApplication::processEvents();
  QVERIFY(!released);
  QWidget other;
  other.show();
  QTest::mouseRelease(other.windowHandle(), Qt::LeftButton, {}, {5, 5});
}

void GraphMouseTest::pressBeforeTheFirstDrawing() {
  FakeWorld world;
  Settings.CaptureTime = 0;
  Settings.Gates[0].Enabled = True16;
  MainWindow window([] {});
  const ProfileViewGuard isTheView(window);
  window.show();
  QCoreApplication::processEvents();
  QCOMPARE(world.dialogs.messages.size(), std::size_t{1});
  QWidget& graph = *window.findChild<QWidget*>("GraphPic");
  const QPoint middle = graph.mapTo(&window, graph.rect().center());
  QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, middle);
  QTest::mouseMove(window.windowHandle(), middle + QPoint(20, 20));
  QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, middle);
  QCOMPARE(world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(GraphMouse.ButtonDown, False16);
  QVERIFY(window.findChild<QLabel*>("lblgate")->isHidden());
}

void GraphMouseTest::faultIsShownOnce() {
  Main main;
  main.move(main.at(90));
  Settings.CaptureTime = 0;
  for (int i = 0; i < 20; ++i) main.move(main.at(45 + i % 10, 100 + i));
  QCOMPARE(main.world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(main.world.dialogs.messages[0].text, "Division by zero: the capture time is 0");
  QVERIFY(main.label().isHidden());
  Settings.CaptureTime = 0.0046F;
  QVERIFY(RefreshGraph());
  main.move(main.at(50));
  QVERIFY(main.label().isVisible());
}

QTEST_MAIN(GraphMouseTest)
#include "GraphMouseTest.moc"
