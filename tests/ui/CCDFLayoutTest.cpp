#include <cmath>

#include "WindowTest.h"
#include "ui/CCDFLayout.h"

using namespace pulsemod;

class CCDFLayoutTest : public QObject {
  Q_OBJECT

  static CCDFPartSizes usualParts() {
    return {{128, 22}, {140, 22}, {200, 26}, {53, 14}, {64, 22}, {52, 22}};
  }
  static QList<QRect> all(const CCDFLayout& layout) {
    QList<QRect> parts{layout.rule,  layout.source,     layout.rate,     layout.cursor,
                       layout.graph, layout.startPower, layout.stopPower};
    for (const QRect& decade : layout.decades) parts << decade;
    return parts;
  }
  static void nothingOverlaps(const QSize& area, const CCDFLayout& layout) {
    const QList<QRect> parts = all(layout);
    for (int i = 0; i < parts.size(); ++i) {
      QVERIFY2(QRect({0, 0}, area).contains(parts[i]), qPrintable(QString::number(i)));
      for (int j = i + 1; j < parts.size(); ++j) {
        QVERIFY2(!parts[i].intersects(parts[j]), qPrintable(QString("%1 %2").arg(i).arg(j)));
      }
    }
  }
  /// The middle of each label is at most half a pixel from its line, by the exact height.
  static void decadesAreLevel(const CCDFLayout& layout) {
    for (int decade = 0; decade < decadeLabels; ++decade) {
      const QRect& label = layout.decades[static_cast<std::size_t>(decade)];
      const double line = layout.graph.top() + layout.graph.height() * decade / 5.0;
      // An odd height has its middle between two pixels.
      const double middle = label.top() + label.height() / 2;
      QVERIFY2(std::abs(middle - line) <= 0.5, qPrintable(QString::number(decade)));
    }
  }

 private slots:
  void everyPlace_data();
  void everyPlace();
  void decadesStandAtTheirLines();
  void rateMakesRoom();
  void smallestAreaHoldsAll();
  void tooWideCaptionsAreCut();
  void flatAreaHasNoNegativeGraph();
};

void CCDFLayoutTest::everyPlace_data() {
  QTest::addColumn<QSize>("area");
  QTest::newRow("just wide enough for one row") << QSize(559, 335);
  QTest::newRow("usual") << QSize(800, 581);
  QTest::newRow("odd") << QSize(1023, 701);
  QTest::newRow("large") << QSize(3840, 2100);
}

void CCDFLayoutTest::everyPlace() {
  QFETCH(QSize, area);
  const CCDFLayout layout = layOutCCDF(area, usualParts());
  const int width = area.width();
  QCOMPARE(layout.rule, QRect(0, 0, width, 1));
  QCOMPARE(layout.source, QRect(0, 1, 128, 30));
  QCOMPARE(layout.rate, QRect(width / 2 - 70, 1, 140, 30));
  QCOMPARE(layout.cursor, QRect(width - 210, 3, 200, 26));
  QCOMPARE(layout.graph, QRect(53, 38, width - 63, area.height() - 38 - 22));
  QCOMPARE(layout.startPower, QRect(53, area.height() - 22, 64, 22));
  QCOMPARE(layout.stopPower, QRect(width - 62, area.height() - 22, 52, 22));
  for (const QRect& decade : layout.decades) QCOMPARE(decade.size(), QSize(53, 14));
  for (const QRect& decade : layout.decades) QCOMPARE(decade.left(), 0);
  decadesAreLevel(layout);
  nothingOverlaps(area, layout);
}

void CCDFLayoutTest::decadesStandAtTheirLines() {
  for (const int labelHeight : {13, 14, 15, 31}) {
    CCDFPartSizes parts = usualParts();
    parts.decade.setHeight(labelHeight);
    for (int height = 335; height < 345; ++height) {
      const QSize area(480, height);
      const CCDFLayout layout = layOutCCDF(area, parts);
      decadesAreLevel(layout);
      nothingOverlaps(area, layout);
    }
  }
}

void CCDFLayoutTest::rateMakesRoom() {
  const QSize narrow(558, 335);
  const CCDFLayout layout = layOutCCDF(narrow, usualParts());
  nothingOverlaps(narrow, layout);
  QCOMPARE(layout.rate, QRect(279 - 70, 1, 140, 22));
  QCOMPARE(layout.source.top(), 23);
  QCOMPARE(layout.cursor.top(), 25);
  QCOMPARE(layout.graph.top(), 60);
  // The source may be the one in its way.
  CCDFPartSizes parts = usualParts();
  parts.source.setWidth(330);
  QCOMPARE(layOutCCDF({800, 581}, parts).source.top(), 1);
  parts.source.setWidth(331);
  QCOMPARE(layOutCCDF({800, 581}, parts).source.top(), 23);
}

void CCDFLayoutTest::smallestAreaHoldsAll() {
  QList<CCDFPartSizes> cases{usualParts()};
  cases << CCDFPartSizes{{300, 80}, {130, 20}, {500, 60}, {200, 50}, {300, 80}, {299, 80}};
  cases << CCDFPartSizes{{60, 10}, {400, 20}, {50, 10}, {31, 9}, {33, 10}, {77, 10}};
  cases << CCDFPartSizes{{60, 40}, {40, 20}, {50, 30}, {310, 29}, {330, 10}, {270, 10}};
  cases << CCDFPartSizes{{60, 40}, {40, 20}, {50, 30}, {30, 29}, {230, 10}, {170, 10}};
  for (const CCDFPartSizes& parts : cases) {
    const QSize area = smallestCCDFArea(parts);
    const CCDFLayout layout = layOutCCDF(area, parts);
    nothingOverlaps(area, layout);
    QVERIFY(layout.graph.height() >= 160);
    QCOMPARE(layout.source.width(), parts.source.width());
    QCOMPARE(layout.rate.width(), parts.rate.width());
    QCOMPARE(layout.cursor.width(), parts.cursor.width());
    QCOMPARE(layout.decades[0].width(), parts.decade.width());
    QCOMPARE(layout.startPower.width(), parts.startPower.width());
    QCOMPARE(layout.stopPower.width(), parts.stopPower.width());
  }
}

void CCDFLayoutTest::tooWideCaptionsAreCut() {
  const QSize area(480, 335);
  QList<CCDFPartSizes> cases;
  cases << CCDFPartSizes{{600, 22}, {700, 22}, {200, 26}, {53, 14}, {64, 22}, {52, 22}};
  cases << CCDFPartSizes{{128, 22}, {140, 22}, {700, 26}, {53, 14}, {400, 22}, {500, 22}};
  cases << CCDFPartSizes{{128, 22}, {140, 22}, {200, 26}, {700, 14}, {64, 22}, {52, 22}};
  for (const CCDFPartSizes& parts : cases) {
    const CCDFLayout layout = layOutCCDF(area, parts);
    nothingOverlaps(area, layout);
    QVERIFY(layout.graph.width() >= 300);
    QCOMPARE(layout.cursor.right(), layout.graph.right());
    QCOMPARE(layout.stopPower.right(), layout.graph.right());
  }
}

void CCDFLayoutTest::flatAreaHasNoNegativeGraph() {
  for (const QSize area : {QSize(480, 10), QSize(20, 335), QSize(0, 0)}) {
    const CCDFLayout layout = layOutCCDF(area, usualParts());
    QVERIFY(layout.graph.width() >= 0);
    QVERIFY(layout.graph.height() >= 0);
    QCOMPARE(layout.startPower.top(), layout.graph.top() + layout.graph.height());
  }
}

QTEST_GUILESS_MAIN(CCDFLayoutTest)
#include "CCDFLayoutTest.moc"
