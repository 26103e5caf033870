#include "WindowTest.h"
#include "ui/ReadoutLayout.h"

using namespace pulsemod;

class ReadoutLayoutTest : public QObject {
  Q_OBJECT

  static inline const FrameCells row{{0, 0}, {0, 1}, {0, 2}};
  static inline const FrameCells column{{0, 0}, {1, 0}, {2, 0}};

 private slots:
  void twips_data();
  void twips();
  void framesStandApart();
  void areaHoldsAllFrames();
  void firstArrangementThatFits_data();
  void firstArrangementThatFits();
  void movesInside_data();
  void movesInside();
  void placesBesideTheOwner_data();
  void placesBesideTheOwner();
};

void ReadoutLayoutTest::twips_data() {
  QTest::addColumn<int>("length");
  QTest::addColumn<int>("dotsPerInch");
  QTest::addColumn<int>("pixels");
  QTest::newRow("gap") << 120 << 96 << 8;
  QTest::newRow("row gap, 1.33") << 20 << 96 << 1;
  QTest::newRow("gap, fine") << 120 << 192 << 16;
  QTest::newRow("row gap, fine, 2.67") << 20 << 192 << 3;
  QTest::newRow("none") << 0 << 96 << 0;
  QTest::newRow("an inch") << 1440 << 72 << 72;
}

void ReadoutLayoutTest::twips() {
  QFETCH(int, length);
  QFETCH(int, dotsPerInch);
  QTEST(twipsToPixels(length, dotsPerInch), "pixels");
}

void ReadoutLayoutTest::framesStandApart() {
  QCOMPARE(frameIn({0, 0}, {100, 50}, 8), QRect(8, 8, 100, 50));
  QCOMPARE(frameIn({0, 2}, {100, 50}, 8), QRect(224, 8, 100, 50));
  QCOMPARE(frameIn({3, 1}, {100, 50}, 8), QRect(116, 182, 100, 50));
}

void ReadoutLayoutTest::areaHoldsAllFrames() {
  QCOMPARE(areaOf({{0, 0}}, {100, 50}, 8), QSize(116, 66));
  QCOMPARE(areaOf(row, {100, 50}, 8), QSize(332, 66));
  QCOMPARE(areaOf({{2, 0}, {0, 1}}, {100, 50}, 8), QSize(224, 182));
}

void ReadoutLayoutTest::firstArrangementThatFits_data() {
  QTest::addColumn<QSize>("room");
  QTest::addColumn<bool>("isRow");
  QTest::newRow("room for both") << QSize(500, 500) << true;
  QTest::newRow("just room for the first") << QSize(332, 66) << true;
  QTest::newRow("too narrow") << QSize(331, 182) << false;
  QTest::newRow("too low for the second only") << QSize(332, 181) << true;
  QTest::newRow("none fits: the narrowest") << QSize(331, 181) << false;
}

void ReadoutLayoutTest::firstArrangementThatFits() {
  QFETCH(QSize, room);
  QFETCH(bool, isRow);
  QCOMPARE(arrangementFor(room, {row, column}, {100, 50}, 8) == row, isRow);
  // The order decides only where there is room for both.
  const bool bothFit = room == QSize(500, 500);
  QCOMPARE(arrangementFor(room, {column, row}, {100, 50}, 8) == row, isRow && !bothFit);
}

void ReadoutLayoutTest::movesInside_data() {
  QTest::addColumn<QRect>("window");
  QTest::addColumn<QPoint>("place");
  QTest::newRow("inside") << QRect(20, 30, 100, 50) << QPoint(20, 30);
  QTest::newRow("touches the corner") << QRect(710, 570, 100, 50) << QPoint(710, 570);
  QTest::newRow("over the corner") << QRect(711, 571, 100, 50) << QPoint(710, 570);
  QTest::newRow("before the corner") << QRect(-5, 0, 100, 50) << QPoint(10, 20);
  QTest::newRow("too large") << QRect(300, 300, 900, 700) << QPoint(10, 20);
}

void ReadoutLayoutTest::movesInside() {
  QFETCH(QRect, window);
  const QRect moved = movedInside(window, QRect(10, 20, 800, 600));
  QTEST(moved.topLeft(), "place");
  QCOMPARE(moved.size(), window.size());
}

void ReadoutLayoutTest::placesBesideTheOwner_data() {
  QTest::addColumn<QRect>("owner");
  QTest::addColumn<QSize>("window");
  QTest::addColumn<bool>("right");
  QTest::addColumn<QPoint>("place");
  const QSize tall(150, 400);
  const QSize wide(480, 100);
  QTest::newRow("right") << QRect(100, 50, 500, 400) << tall << true << QPoint(600, 50);
  QTest::newRow("right, lifted") << QRect(100, 300, 500, 400) << tall << true << QPoint(600, 200);
  QTest::newRow("just room") << QRect(150, 50, 500, 400) << tall << true << QPoint(650, 50);
  QTest::newRow("left") << QRect(151, 50, 500, 400) << tall << true << QPoint(1, 50);
  QTest::newRow("over") << QRect(0, 0, 800, 600) << tall << true << QPoint(650, 0);
  QTest::newRow("below") << QRect(100, 0, 600, 500) << wide << false << QPoint(100, 500);
  QTest::newRow("above") << QRect(100, 100, 600, 500) << wide << false << QPoint(100, 0);
  QTest::newRow("below, shifted") << QRect(400, 0, 400, 300) << wide << false << QPoint(320, 300);
  QTest::newRow("over, low") << QRect(0, 0, 800, 600) << wide << false << QPoint(0, 500);
}

void ReadoutLayoutTest::placesBesideTheOwner() {
  QFETCH(QRect, owner);
  QFETCH(QSize, window);
  QFETCH(bool, right);
  QTEST(placeBeside(owner, window, QRect(0, 0, 800, 600), right ? Side::right : Side::below),
        "place");
}

QTEST_GUILESS_MAIN(ReadoutLayoutTest)
#include "ReadoutLayoutTest.moc"
