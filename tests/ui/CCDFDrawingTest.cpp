#include <QTimer>

#include "CCDFWindowBench.h"
#include "CCDFWindowRoom.h"
#include "profile/MeasurementSettings.h"
#include "ui/Look.h"

using namespace pulsemod;
using namespace pulsemod::test;

/// What `frmCCDF` draws, and when.
class CCDFDrawingTest : public QObject {
  Q_OBJECT

 private slots:
  void firstShowDrawsAnEmptyGrid();
  void cursorLineIsPainted();
  void resizeRefreshesAndDraws();
  void manyQueuedResizes();
  void minimisedIsLeftAlone();
  void exposeAsksNothingOfTheMeter();
  void graphThatCannotBeDrawnIsToldOnce();
};

void CCDFDrawingTest::firstShowDrawsAnEmptyGrid() {
  CCDFBench bench;
  bench.show();
  // One line of the grid for each tenth of the axis, but for the ends.
  QList<double> tenths;
  const double ratio = bench.graph().devicePixelRatioF();
  int last = -2;
  for (const int column : bench.columnsOf(toQt(ccdfGridColour))) {
    if (column != last + 1) tenths << column / ratio / bench.graph().width() * 10;
    last = column;
  }
  QCOMPARE(tenths.size(), 9);
  for (int i = 0; i < 9; ++i) QVERIFY(std::abs(tenths[i] - (i + 1)) < 0.02);
  QCOMPARE(paintedDecades(bench).size(), 4);
  const QImage image = bench.graph().grab().toImage();
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor colour(image.pixel(x, y));
      QVERIFY(colour == look::graphBackground || colour == toQt(ccdfGridColour));
    }
  }
}

void CCDFDrawingTest::cursorLineIsPainted() {
  CCDFBench bench;
  bench.showWithCursor();
  QVERIFY(bench.lineIsPaintedAt(66, look::cursorLine));
  for (const float x : {0.0F, 20.0F, 33.3F, 120.0F, 199.5F}) {
    CCDF.CursorX = x;
    UpdateCursorLabels();
    QVERIFY2(bench.lineIsPaintedAt(static_cast<double>(x), look::cursorLine),
             qPrintable(QString::number(x)));
  }
  // At the right end of the axis it is the last column.
  CCDF.CursorX = 200;
  UpdateCursorLabels();
  const int lastColumn = bench.graph().grab().toImage().width() - 1;
  QCOMPARE(bench.columnsOf(look::cursorLine).last(), lastColumn);
  CCDF.CursorX = 199.5F;
  UpdateCursorLabels();
  // Nor does a curve cover it.
  CCDFData.fill(10);
  DrawCCDFGraph();
  QVERIFY(bench.lineIsPaintedAt(199.5, look::cursorLine));
  // Beyond the ends there is none.
  for (const float x : {-5.0F, 205.0F, 1E30F}) {
    CCDF.CursorX = x;
    UpdateCursorLabels();
    QVERIFY(bench.columnsOf(look::cursorLine).isEmpty());
  }
  CCDF.CursorX = 66;
  UpdateCursorLabels();
  bench.resize(480, 360);
  QVERIFY(bench.lineIsPaintedAt(66, look::cursorLine));
  CCDF.CursorOn = False16;
  UpdateCursorLabels();
  QVERIFY(bench.columnsOf(look::cursorLine).isEmpty());
}

void CCDFDrawingTest::resizeRefreshesAndDraws() {
  CCDFBench bench;
  bench.show();
  CCDFData.fill(10);
  CCDF.StartPower = -25.5F;
  CCDF.StopPower = 5;
  const QImage before = bench.graph().grab().toImage();
  bench.resize(640, 480);
  QCOMPARE(bench.text("lblStartPower"), "-25.5dBm");
  QCOMPARE(bench.text("lblStopPower"), "5dBm");
  const QImage image = bench.graph().grab().toImage();
  const int decade = image.height() / 5;
  int yellow = 0;
  for (int y = decade - 3; y < decade + 3; ++y) {
    yellow += QColor(image.pixel(image.width() / 2 + 5, y)) == toQt(liveCurveColour) ? 1 : 0;
  }
  QVERIFY(yellow > 0);
  // The powers do not wait for the graph.
  Settings.DisplayPoints = 0;
  CCDF.StartPower = -40;
  bench.resize(660, 480);
  QCOMPARE(bench.text("lblStartPower"), "-40dBm");
  QVERIFY(bench.received().empty());
}

void CCDFDrawingTest::manyQueuedResizes() {
  CCDFBench bench;
  bench.show();
  bench.window.showCursor("-15dBm", "12.5%", 66);
  for (int i = 0; i < 300; ++i) {
    const QSize size(500 + i, 700 - i);
    QTimer::singleShot(0, &bench.window, [&bench, size] { bench.window.resize(size); });
  }
  QTRY_COMPARE(bench.window.size(), QSize(799, 401));
  CCDFBench::settle();
  checkRoom(bench);
  QVERIFY(bench.lineIsPaintedAt(66, look::cursorLine));
  QCOMPARE(bench.placeOf(bench.label("lblStopPower")).bottom(), 400);
  QCOMPARE(bench.placeOf(bench.graph()).right(), 799 - 11);
  QCOMPARE(bench.world.events.pendingCalls, 0);
  QVERIFY(bench.received().empty());
}

void CCDFDrawingTest::minimisedIsLeftAlone() {
  CCDFBench bench;
  bench.show();
  bench.window.showMinimized();
  CCDF.StartPower = -55;
  QWidget* panel = bench.window.centralWidget();
  QResizeEvent event(panel->size(), panel->size());
  QCoreApplication::sendEvent(panel, &event);
  QCOMPARE(bench.text("lblStartPower"), "-30dBm");
}

void CCDFDrawingTest::exposeAsksNothingOfTheMeter() {
  CCDFBench bench;
  bench.showWithCursor();
  CCDFData.fill(10);
  DrawCCDFGraph();
  const QImage before = bench.graph().grab().toImage();
  bench.window.hide();
  CCDFData.fill(50);
  bench.window.show();
  bench.window.repaint();
  CCDFBench::settle();
  QCOMPARE(bench.graph().grab().toImage(), before);
  QVERIFY(bench.received().empty());
}

void CCDFDrawingTest::graphThatCannotBeDrawnIsToldOnce() {
  CCDFBench bench;
  Settings.DisplayPoints = 0;
  bench.show();
  auto& boxes = bench.world.dialogs.messages;
  QCOMPARE(boxes.size(), std::size_t{1});
  QCOMPARE(boxes[0].title, "Pelmora");
  QVERIFY(boxes[0].icon == MessageIcon::exclamation);
  QVERIFY(boxes[0].text.starts_with("Subscript out of range"));
  for (int i = 0; i < 20; ++i) bench.resize(500 + i, 400);
  bench.press({50, 50});
  bench.move({60, 60});
  bench.release({60, 60});
  QCOMPARE(boxes.size(), std::size_t{1});
  checkRoom(bench);
  Settings.DisplayPoints = 200;
  bench.resize(800, 600);
  QCOMPARE(paintedDecades(bench).size(), 4);
  Settings.DisplayPoints = 0;
  bench.resize(700, 600);
  QCOMPARE(boxes.size(), std::size_t{2});
}

QTEST_MAIN(CCDFDrawingTest)
#include "CCDFDrawingTest.moc"
