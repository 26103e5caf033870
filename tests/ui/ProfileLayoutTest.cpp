#include "WindowTest.h"
#include "ui/ProfileLayout.h"

using namespace pulsemod;

class ProfileLayoutTest : public QObject {
  Q_OBJECT

  static ProfileLabelSizes usualLabels() {
    return {{100, 22}, {130, 20}, {110, 22}, {60, 22}, {70, 22}, {64, 22}};
  }
  static QList<QRect> all(const ProfileLayout& layout) {
    return {layout.rule,  layout.reference, layout.rate,    layout.scale,
            layout.graph, layout.start,     layout.capture, layout.stop};
  }
  static void nothingOverlaps(const QSize& area, const ProfileLayout& layout) {
    const QList<QRect> parts = all(layout);
    for (int i = 0; i < parts.size(); ++i) {
      QVERIFY(QRect({0, 0}, area).contains(parts[i]));
      for (int j = i + 1; j < parts.size(); ++j) QVERIFY(!parts[i].intersects(parts[j]));
    }
  }
  static void nothingIsCut(const ProfileLayout& layout, const ProfileLabelSizes& labels) {
    for (const auto& [place, size] :
         {std::pair{layout.reference, labels.reference}, std::pair{layout.rate, labels.rate},
          std::pair{layout.scale, labels.scale}, std::pair{layout.start, labels.start},
          std::pair{layout.capture, labels.capture}, std::pair{layout.stop, labels.stop}}) {
      QVERIFY(place.width() >= size.width());
      QVERIFY(place.height() >= size.height());
    }
  }

 private slots:
  void formulas_data();
  void formulas();
  void rateMakesRoom();
  void smallestAreaHoldsAll();
  void labelsStandUnderEachOther();
  void labelsThatJustFitStandSideBySide();
  void onlyCaptionsWiderThanTheWindowAreCut();
  void flatAreaHasNoNegativeGraph();
};

void ProfileLayoutTest::formulas_data() {
  QTest::addColumn<QSize>("area");
  QTest::newRow("smallest") << QSize(480, 335);
  QTest::newRow("usual") << QSize(800, 575);
  QTest::newRow("odd") << QSize(1023, 701);
  QTest::newRow("large") << QSize(3840, 2100);
}

void ProfileLayoutTest::formulas() {
  QFETCH(QSize, area);
  const ProfileLabelSizes labels = usualLabels();
  const ProfileLayout layout = layOutProfile(area, labels);
  const int width = area.width();
  QCOMPARE(layout.rule, QRect(0, 0, width, 1));
  QCOMPARE(layout.reference, QRect(0, 1, 100, 22));
  QCOMPARE(layout.scale, QRect(width - 110, 1, 110, 22));
  QCOMPARE(layout.rate, QRect(width / 2 - 65, 1, 130, 22));
  QCOMPARE(layout.graph, QRect(0, 23, width, area.height() - 23 - 22));
  QCOMPARE(layout.start, QRect(0, area.height() - 22, 60, 22));
  QCOMPARE(layout.capture, QRect(width / 2 - 35, area.height() - 22, 70, 22));
  QCOMPARE(layout.stop, QRect(width - 64, area.height() - 22, 64, 22));
  nothingOverlaps(area, layout);
}

void ProfileLayoutTest::rateMakesRoom() {
  ProfileLabelSizes labels = usualLabels();
  labels.reference = {200, 40};
  labels.scale = {180, 40};
  const QSize area(480, 335);
  const ProfileLayout layout = layOutProfile(area, labels);
  nothingOverlaps(area, layout);
  QCOMPARE(layout.rate, QRect(240 - 65, 1, 130, 20));
  QCOMPARE(layout.reference.top(), 21);
  QCOMPARE(layout.graph.top(), layout.reference.top() + layout.reference.height());

  // One that just fits stays in the row.
  labels.reference = {175, 22};
  labels.scale = {175, 22};
  QCOMPARE(layOutProfile(area, labels).rate.top(), layOutProfile(area, labels).scale.top());
  labels.scale = {176, 22};
  QVERIFY(layOutProfile(area, labels).rate.bottom() < layOutProfile(area, labels).scale.top());
}

void ProfileLayoutTest::smallestAreaHoldsAll() {
  QList<ProfileLabelSizes> cases{usualLabels()};
  cases << ProfileLabelSizes{{600, 80}, {130, 20}, {500, 80}, {300, 80}, {301, 80}, {299, 80}};
  cases << ProfileLabelSizes{{60, 10}, {400, 20}, {50, 10}, {31, 10}, {33, 10}, {77, 10}};
  for (const ProfileLabelSizes& labels : cases) {
    for (const int widest : {3840, 1100, 610, 601, 600}) {
      const QSize area = smallestProfileArea(labels, widest);
      QVERIFY(area.width() <= widest);
      const ProfileLayout layout = layOutProfile(area, labels);
      nothingOverlaps(area, layout);
      nothingIsCut(layout, labels);
      QVERIFY(layout.graph.height() >= 100);
    }
  }
}

void ProfileLayoutTest::labelsStandUnderEachOther() {
  const ProfileLabelSizes labels{{300, 40}, {130, 20}, {200, 30}, {220, 40}, {230, 36}, {240, 44}};
  const QSize area(480, 500);
  const ProfileLayout layout = layOutProfile(area, labels);
  nothingOverlaps(area, layout);
  QCOMPARE(layout.rate, QRect(240 - 65, 1, 130, 20));
  QCOMPARE(layout.reference, QRect(0, 21, 300, 40));
  QCOMPARE(layout.scale, QRect(280, 61, 200, 30));
  QCOMPARE(layout.graph, QRect(0, 91, 480, 500 - 91 - 44 - 36));
  QCOMPARE(layout.start, QRect(0, 420, 220, 44));
  QCOMPARE(layout.stop, QRect(240, 420, 240, 44));
  QCOMPARE(layout.capture, QRect(125, 464, 230, 36));
  // Narrower still.
  const ProfileLayout narrow = layOutProfile({459, 500}, labels);
  nothingOverlaps({459, 500}, narrow);
  QCOMPARE(narrow.start, QRect(0, 380, 220, 40));
  QCOMPARE(narrow.stop, QRect(219, 420, 240, 44));
  QCOMPARE(narrow.capture, QRect(114, 464, 230, 36));
}

void ProfileLayoutTest::labelsThatJustFitStandSideBySide() {
  const ProfileLabelSizes labels{{280, 40}, {130, 20}, {200, 30}, {140, 40}, {180, 36}, {150, 44}};
  const ProfileLayout layout = layOutProfile({480, 500}, labels);
  QCOMPARE(layout.reference.top(), layout.scale.top());
  QCOMPARE(layout.start.top(), layout.capture.top());
  QCOMPARE(layout.start.top(), layout.stop.top());
  const ProfileLayout narrow = layOutProfile({479, 500}, labels);
  QVERIFY(narrow.reference.bottom() < narrow.scale.top());
  QVERIFY(narrow.start.bottom() < narrow.capture.top());
}

void ProfileLayoutTest::onlyCaptionsWiderThanTheWindowAreCut() {
  const QSize area(480, 600);
  const ProfileLabelSizes labels{{600, 40}, {130, 20}, {500, 40}, {490, 40}, {301, 40}, {299, 40}};
  const ProfileLayout layout = layOutProfile(area, labels);
  nothingOverlaps(area, layout);
  QCOMPARE(layout.reference.width(), 480);
  QCOMPARE(layout.scale, QRect(0, 61, 480, 40));
  QCOMPARE(layout.start.width(), 480);
  QCOMPARE(layout.capture.width(), 301);
  QCOMPARE(layout.stop.width(), 299);
}

void ProfileLayoutTest::flatAreaHasNoNegativeGraph() {
  const ProfileLayout layout = layOutProfile({480, 10}, usualLabels());
  QCOMPARE(layout.graph.height(), 0);
  QCOMPARE(layout.start.top(), layout.graph.top());
}

QTEST_GUILESS_MAIN(ProfileLayoutTest)
#include "ProfileLayoutTest.moc"
