#include <QMenuBar>
#include <QScreen>
#include <algorithm>

#include "CCDFWindowBench.h"
#include "CCDFWindowRoom.h"
#include "Contrast.h"
#include "ccdf/CCDFGraph.h"
#include "ccdf/MeasurementSource.h"
#include "ccdf/PowerAxis.h"
#include "ui/Look.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

constexpr const char* decadeNames[] = {"lblPer1", "lblPer2", "lblPer3",
                                       "lblPer4", "lblPer5", "lblPer6"};

/// The longest captions that are still usual.
void showLongCaptions(CCDFBench& bench) {
  bench.window.setStartPowerLabel("-123.45679dBm");
  bench.window.setStopPowerLabel("-123.45679dBm");
  bench.window.setSourceLabel("SOURCE:CHANNEL");
  bench.window.showRate("Profile/Second: 1234.56", "");
  bench.window.showCursor("-123.45679dBm", "99.999985%", 66);
  CCDFBench::settle();
}

/// The middle of what a label's text paints, from the label's top.
double middleOfText(QLabel& label) {
  const QImage image = label.grab().toImage();
  int top = image.height();
  int bottom = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (QColor(image.pixel(x, y)) == look::surround) continue;
      top = std::min(top, y);
      bottom = std::max(bottom, y + 1);
    }
  }
  return (top + bottom) / 2.0 / label.devicePixelRatioF();
}

}  // namespace

class CCDFWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void opens();
  void captions();
  void cursorFrame();
  void layout_data();
  void layout();
  void decadesAreLevelWithTheirLines_data();
  void decadesAreLevelWithTheirLines();
  void changingCaptionsMoveNothingElse();
  void labelsStayReadable();
  void coloursHaveContrast();
};

void CCDFWindowTest::opens() {
  CCDFBench bench;
  QCOMPARE(bench.window.objectName(), "frmCCDF");
  QCOMPARE(bench.window.windowTitle(), "Pelmora PulseMod");
  const QSize room = bench.window.screen()->availableSize();
  QCOMPARE(bench.window.size(), QSize(800, 600).boundedTo(room).expandedTo({480, 360}));
  QCOMPARE(bench.window.minimumSize(), QSize(480, 360));
  bench.show();
  for (const char* name : {"CCDFGraphPic", "lblStartPower", "lblStopPower", "lblMeasSource",
                           "lblgraphspeed1", "menuLine"}) {
    QVERIFY2(bench.part(name).isVisible(), name);
  }
  QVERIFY(!bench.part("FrameCursor").isVisible());
  QCOMPARE(bench.label("lblCursorPower").parentWidget(), &bench.part("FrameCursor"));
  QCOMPARE(bench.label("lblCursorPercentage").parentWidget(), &bench.part("FrameCursor"));
  QVERIFY(bench.received().empty());
  QVERIFY(bench.world.dialogs.messages.empty());
}

void CCDFWindowTest::captions() {
  CCDFBench bench;
  bench.show();
  QStringList decades;
  for (const char* name : decadeNames) {
    QVERIFY(bench.label(name).isVisible());
    decades << bench.text(name);
  }
  QCOMPARE(decades, QStringList({"100%", "10%", "1%", ".1%", ".01%", ".001%"}));
  QCOMPARE(bench.text("lblgraphspeed1"), "Profile/Second: 0.00");
  UpdatePowerLabels();
  QCOMPARE(bench.text("lblStartPower"), "-30dBm");
  QCOMPARE(bench.text("lblStopPower"), "0dBm");
  CCDF.MeasurementSource = "GATE";
  ShowMeasurementSource();
  QCOMPARE(bench.text("lblMeasSource"), "SOURCE:GATE");
  const QString toolTip = "Update speed of the GPIB, not the update speed of this display";
  bench.window.showRate("Profile/Second: 23.4", toolTip.toStdString());
  QCOMPARE(bench.text("lblgraphspeed1"), "Profile/Second: 23.4");
  QCOMPARE(bench.label("lblgraphspeed1").toolTip(), toolTip);
}

void CCDFWindowTest::cursorFrame() {
  CCDFBench bench;
  bench.show();
  CCDF.CursorOn = True16;
  CCDF.CursorPower = -12.5F;
  CCDF.CursorPercent = 12.5F;
  UpdateCursorLabels();
  QVERIFY(bench.part("FrameCursor").isVisible());
  QVERIFY(bench.window.cursorFrameIsShown());
  QCOMPARE(bench.text("lblCursorPower"), "-12.5dBm");
  QCOMPARE(bench.text("lblCursorPercentage"), "12.5%");
  QVERIFY(bench.label("lblCursorPower").isVisible());
  QVERIFY(bench.label("lblCursorPercentage").isVisible());
  checkRoom(bench);
  bench.window.showMinimized();
  QVERIFY(bench.window.cursorFrameIsShown());
  bench.window.showNormal();
  CCDF.CursorOn = False16;
  UpdateCursorLabels();
  QVERIFY(!bench.part("FrameCursor").isVisible());
  QVERIFY(!bench.window.cursorFrameIsShown());
}

void CCDFWindowTest::layout_data() {
  QTest::addColumn<QSize>("size");
  QTest::newRow("smallest") << QSize(480, 360);
  QTest::newRow("odd") << QSize(581, 363);
  QTest::newRow("middle") << QSize(641, 479);
  QTest::newRow("usual") << QSize(800, 600);
  QTest::newRow("large") << QSize(1600, 1200);
}

void CCDFWindowTest::layout() {
  QFETCH(QSize, size);
  CCDFBench bench;
  bench.show();
  bench.resize(size.width(), size.height());
  QCOMPARE(bench.window.size(), size);
  checkRoom(bench);
  bench.window.showCursor("0dBm", "0%", 0);
  checkRoom(bench);
  showLongCaptions(bench);
  checkRoom(bench);
  QVERIFY(bench.graph().height() >= 160);
  // The powers stand under the ends of the axis.
  const QRect graph = bench.graph().geometry();
  const QRect start = bench.label("lblStartPower").geometry();
  const QRect stop = bench.label("lblStopPower").geometry();
  QCOMPARE(start.topLeft(), graph.bottomLeft() + QPoint(0, 1));
  QCOMPARE(stop.topRight(), graph.bottomRight() + QPoint(0, 1));
  QCOMPARE(start.bottom(), bench.window.centralWidget()->rect().bottom());
}

void CCDFWindowTest::decadesAreLevelWithTheirLines_data() { layout_data(); }

void CCDFWindowTest::decadesAreLevelWithTheirLines() {
  QFETCH(QSize, size);
  CCDFBench bench;
  bench.show();
  for (int more = 0; more < 5; ++more) {
    bench.resize(size.width(), size.height() + more);
    // The first and the last are the edges of the graph.
    QList<double> lines = paintedDecades(bench);
    QCOMPARE(lines.size(), 4);
    lines.prepend(0);
    lines.append(bench.graph().height());
    for (int i = 0; i < 6; ++i) {
      QLabel& label = bench.label(decadeNames[i]);
      const QRect place = bench.placeOf(label);
      const double line = bench.placeOf(bench.graph()).top() + lines[i];
      const double off = place.top() + middleOfText(label) - line;
      QVERIFY2(std::abs(off) <= 1, qPrintable(QString("%1: %2").arg(i).arg(off)));
      QVERIFY(place.right() < bench.placeOf(bench.graph()).left());
    }
  }
}

/// The cursor's frame and the graph would jump under the mouse else.
void CCDFWindowTest::changingCaptionsMoveNothingElse() {
  CCDFBench bench;
  bench.show();
  for (const QSize size : {QSize(480, 360), QSize(580, 400), QSize(800, 600)}) {
    bench.resize(size.width(), size.height());
    const auto places = [&bench] {
      return QList<QRect>{bench.graph().geometry(), bench.part("FrameCursor").geometry(),
                          bench.label("lblCursorPercentage").geometry(),
                          bench.label("lblMeasSource").geometry(),
                          bench.label("lblgraphspeed1").geometry()};
    };
    bench.window.showCursor("-188.888dBm", "88.88888%", 66);
    CCDFBench::settle();
    const QList<QRect> before = places();
    bench.window.showCursor("0dBm", "0%", 66);
    bench.window.setSourceLabel("SOURCE:GATE");
    bench.window.showRate("Profile/Second: 123.4", "");
    CCDFBench::settle();
    QCOMPARE(places(), before);
  }
}

void CCDFWindowTest::labelsStayReadable() {
  CCDFBench bench;
  const QList<QLabel*> labels = bench.window.findChildren<QLabel*>();
  QCOMPARE(labels.size(), 12);
  for (const QLabel* label : labels) {
    QVERIFY2(label->accessibleName().isEmpty(), qPrintable(label->objectName()));
    QCOMPARE(label->textFormat(), Qt::PlainText);
  }
  QCOMPARE(bench.graph().accessibleName(), "CCDF graph");
}

void CCDFWindowTest::coloursHaveContrast() {
  CCDFBench bench;
  bench.showWithCursor();
  for (const QLabel* label : bench.window.findChildren<QLabel*>()) {
    const QColor text = label->palette().color(QPalette::WindowText);
    QVERIFY2(contrast(text, look::surround) >= 4.5, qPrintable(label->objectName()));
    QColor ground(label->window()->grab().toImage().pixel(
        label->mapTo(label->window(), QPoint(2, 2)) * label->devicePixelRatioF()));
    QVERIFY2(ground == look::surround, qPrintable(label->objectName()));
  }
  QVERIFY(contrast(look::cursorLine, look::graphBackground) >= 4.5);
  for (const Colour colour : {ccdfGridColour, liveCurveColour, secondCurveColour}) {
    QVERIFY(contrast(toQt(colour), look::graphBackground) >= 4.5);
    QVERIFY(toQt(colour) != look::cursorLine);
  }
  const QColor frame = bench.part("FrameCursor").palette().color(QPalette::WindowText);
  QVERIFY(contrast(frame, look::surround) >= 4.5);
}

QTEST_MAIN(CCDFWindowTest)
#include "CCDFWindowTest.moc"
