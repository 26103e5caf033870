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

 private slots:
  void formulas_data();
  void formulas();
  void rateMakesRoom();
  void smallestAreaHoldsAll();
  void tooWideCaptionsAreCut();
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
    const QSize area = smallestProfileArea(labels);
    const ProfileLayout layout = layOutProfile(area, labels);
    nothingOverlaps(area, layout);
    QVERIFY(layout.graph.height() >= 100);
  }
}

void ProfileLayoutTest::tooWideCaptionsAreCut() {
  const QSize area(480, 335);
  QList<ProfileLabelSizes> cases;
  cases << ProfileLabelSizes{{600, 40}, {130, 20}, {500, 40}, {300, 40}, {301, 40}, {299, 40}};
  cases << ProfileLabelSizes{{100, 40}, {500, 20}, {500, 40}, {20, 40}, {30, 40}, {299, 40}};
  cases << ProfileLabelSizes{{600, 40}, {130, 20}, {100, 40}, {299, 40}, {30, 40}, {20, 40}};
  for (const ProfileLabelSizes& labels : cases) {
    const ProfileLayout layout = layOutProfile(area, labels);
    nothingOverlaps(area, layout);
    QCOMPARE(layout.reference.width() + layout.scale.width(), 480);
    QCOMPARE(layout.stop.right(), 479);
  }
}

void ProfileLayoutTest::flatAreaHasNoNegativeGraph() {
  const ProfileLayout layout = layOutProfile({480, 10}, usualLabels());
  QCOMPARE(layout.graph.height(), 0);
  QCOMPARE(layout.start.top(), layout.graph.top());
}

QTEST_GUILESS_MAIN(ProfileLayoutTest)
#include "ProfileLayoutTest.moc"
