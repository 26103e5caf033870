#include <QAction>
#include <QFontDialog>
#include <QWindow>

#include "ReadoutTest.h"
#include "WindowTest.h"
#include "ui/MarkersWindow.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// `frmMarkers` of an owner, filled by the test.
struct Box : ReadoutBox<MarkersWindow> {
  Box() : ReadoutBox({300, 100}) {}
  QGroupBox& frame(int index) {
    return *window.findChild<QGroupBox*>(QString("frameMarker_%1").arg(index));
  }
  QLabel& power(int index) { return label("lblMarkerPow", index); }
  QLabel& unit(int index) { return label("lblMarkerUnits", index); }
  QLabel& time(int index) { return label("lblMarkerTime", index); }

  void checkColumns(int width) {
    const QFont font = power(0).font();
    const int height = ownSize("-34.56789", font).height();
    const int unitWidth = ownSize(" dBm", font).width();
    for (int index = 0; index < 4; ++index) {
      const int top = power(index).y();
      QCOMPARE(power(index).geometry(), QRect(8, top, width - unitWidth, height));
      QCOMPARE(unit(index).geometry(), QRect(8 + width - unitWidth, top, unitWidth, height));
      QCOMPARE(time(index).geometry(), QRect(8, top + height + 1, width, height));
    }
  }
  /// As wide as the sample captions.
  int sampleWidth() {
    const QFont font = power(0).font();
    const int row = ownSize("-34.56789", font).width() + ownSize(" dBm", font).width();
    return std::max(row, ownSize("-888.888ms", font).width());
  }
};

}  // namespace

class MarkersWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
  void controls();
  void labelsKeepTheirTextForAssistance();
  void emptyBeforeTheFirstReading();
  void sampleCaptionsSetTheColumns_data();
  void sampleCaptionsSetTheColumns();
  void showsReadings();
  void longTextsAreNotCut_data();
  void longTextsAreNotCut();
  void offMarkersKeepTheirTexts();
  void framesStandApart();
  void hugeFontScrolls();
  void sameTextsCostNothing();
  void isFilledBeforeItIsShown();
  void closesAndOpens();
  void opensBelowItsOwnerAndKeepsItsPlace();
  void fontDialog();
  void fontDialogCancelled();
};

void MarkersWindowTest::controls() {
  Box box;
  QCOMPARE(box.window.objectName(), "frmMarkers");
  QCOMPARE(box.window.windowTitle(), "Markers");
  QCOMPARE(box.window.findChildren<QGroupBox*>().size(), 4);
  QCOMPARE(box.window.findChildren<QLabel*>().size(), 12);
  for (int index = 0; index < 4; ++index) {
    QCOMPARE(box.frame(index).title(), QString("Marker %1").arg(index + 1));
    QCOMPARE(box.unit(index).text(), "dBm");
    for (const QLabel* label : {&box.power(index), &box.unit(index), &box.time(index)}) {
      QCOMPARE(label->parentWidget(), &box.frame(index));
    }
  }
  box.window.open();
  QCOMPARE(box.window.windowType(), Qt::Tool);
  QVERIFY(!box.window.isModal());
  QCOMPARE(box.window.windowHandle()->transientParent(), box.owner.windowHandle());
}

void MarkersWindowTest::labelsKeepTheirTextForAssistance() {
  Box box;
  QSet<QString> descriptions;
  for (const QLabel* label : box.window.findChildren<QLabel*>()) {
    QVERIFY(label->accessibleName().isEmpty());
    QCOMPARE(label->textFormat(), Qt::PlainText);
    descriptions << label->accessibleDescription();
  }
  QCOMPARE(descriptions.size(), 12);
  QCOMPARE(box.power(0).accessibleDescription(), "Marker 1 power");
  QCOMPARE(box.unit(1).accessibleDescription(), "Marker 2 unit");
  QCOMPARE(box.time(3).accessibleDescription(), "Marker 4 time");
}

void MarkersWindowTest::emptyBeforeTheFirstReading() {
  Box box;
  box.window.open();
  for (int index = 0; index < 4; ++index) {
    QCOMPARE(box.power(index).text(), "");
    QCOMPARE(box.time(index).text(), "");
    QVERIFY(!box.frame(index).isEnabled());
    QVERIFY(box.frame(index).isVisible());
  }
}

void MarkersWindowTest::sampleCaptionsSetTheColumns_data() {
  QTest::addColumn<QFont>("font");
  QTest::newRow("usual") << QFont();
  QTest::newRow("large") << QFont("DejaVu Serif", 17, QFont::Bold);
  QTest::newRow("small") << QFont("DejaVu Sans Mono", 6);
}

void MarkersWindowTest::sampleCaptionsSetTheColumns() {
  QFETCH(QFont, font);
  Box box;
  for (QLabel* label : box.window.findChildren<QLabel*>()) label->setFont(font);
  box.window.open();
  box.checkColumns(box.sampleWidth());
  const int titleWidth = box.frame(2).minimumSizeHint().width();
  QCOMPARE(box.frame(2).width(), std::max(titleWidth, 8 + box.sampleWidth() + 8));
  checkRoom(box.window);
}

void MarkersWindowTest::showsReadings() {
  Box box;
  box.window.open();
  const QSize size = box.window.size();
  box.window.setMarkerEnabled(2, true);
  box.window.showMarker(2, "-34.56789", "123.456us");
  QVERIFY(box.frame(2).isEnabled());
  QVERIFY(!box.frame(1).isEnabled());
  QCOMPARE(box.power(2).text(), "-34.56789");
  QCOMPARE(box.time(2).text(), "123.456us");
  QCOMPARE(box.power(1).text(), "");
  QCOMPARE(box.window.size(), size);
  checkRoom(box.window);
}

void MarkersWindowTest::longTextsAreNotCut_data() {
  QTest::addColumn<QString>("reading");
  QTest::addColumn<QString>("position");
  QTest::newRow("tiny power") << "-1.234567E-05"
                              << "0s";
  QTest::newRow("long time") << "5"
                             << "-888888888.888ms";
  QTest::newRow("both") << "-1.234567E-05"
                        << "-888888888.888ms";
}

void MarkersWindowTest::longTextsAreNotCut() {
  QFETCH(QString, reading);
  QFETCH(QString, position);
  Box box;
  box.window.open();
  box.window.showMarker(3, reading.toStdString(), position.toStdString());
  checkRoom(box.window);
  const QFont font = box.power(0).font();
  const int row = std::max(ownSize(reading, font).width(), ownSize("-34.56789", font).width()) +
                  ownSize(" dBm", font).width();
  const int width = std::max(row, ownSize(position, font).width());
  QVERIFY(width > box.sampleWidth());
  box.checkColumns(width);
  box.window.showMarker(3, "5", "0s");
  box.checkColumns(width);
  box.window.close();
  box.window.open();
  box.checkColumns(box.sampleWidth());
}

void MarkersWindowTest::offMarkersKeepTheirTexts() {
  Box box;
  box.window.open();
  box.window.setMarkerEnabled(0, true);
  box.window.showMarker(0, "-1.234567E-05", "20us");
  const QImage enabled = box.frame(0).grab().toImage();
  box.window.setMarkerEnabled(0, false);
  QVERIFY(!box.power(0).isEnabled());
  QVERIFY(box.frame(0).grab().toImage() != enabled);
  box.window.close();
  box.window.open();
  QCOMPARE(box.power(0).text(), "-1.234567E-05");
  QCOMPARE(box.time(0).text(), "20us");
  QCOMPARE(box.unit(0).text(), "dBm");
  checkRoom(box.window);
}

void MarkersWindowTest::framesStandApart() {
  Box box;
  box.window.open();
  const QSize frame = box.frame(0).size();
  // One row, where the screen has room for it, or else two.
  const int room = box.window.screen()->availableSize().width() - 16;
  const int columns = 4 * (frame.width() + 8) + 8 <= room ? 4 : 2;
  for (int index = 0; index < 4; ++index) {
    QCOMPARE(box.frame(index).geometry(), QRect(QPoint(8 + index % columns * (frame.width() + 8),
                                                       8 + index / columns * (frame.height() + 8)),
                                                frame));
  }
  QCOMPARE(areaOf(box.window).size(),
           QSize(8 + columns * (frame.width() + 8), 8 + 4 / columns * (frame.height() + 8)));
  checkNoScrolling(box.window);
  checkRoom(box.window);
}

void MarkersWindowTest::hugeFontScrolls() {
  Box box;
  for (QLabel* label : box.window.findChildren<QLabel*>()) label->setFont(QFont("DejaVu Sans", 90));
  box.window.open();
  box.window.showMarker(3, "-1.234567E-05", "123.456us");
  QVERIFY(areaOf(box.window).height() > box.window.screen()->availableSize().height());
  checkRoom(box.window);
}

void MarkersWindowTest::sameTextsCostNothing() {
  Box box;
  box.window.open();
  QVERIFY(waitUntilQuiet(box.window));
  const auto fill = [&box](const std::string& reading) {
    for (std::size_t index = 0; index < 4; ++index) {
      box.window.setMarkerEnabled(index, true);
      box.window.showMarker(index, reading, "20us");
    }
    QCoreApplication::processEvents();
  };
  fill("-2.5");
  WorkCounter work(box.window);
  for (int pass = 0; pass < 50; ++pass) fill("-2.5");
  QCOMPARE(work.paints, 0);
  for (int pass = 0; pass < 50; ++pass) fill("-2." + std::to_string(pass));
  QVERIFY(work.paints > 0);
  QCOMPARE(work.placings, 0);
  QCOMPARE(box.power(3).text(), "-2.49");
}

void MarkersWindowTest::isFilledBeforeItIsShown() {
  Box box;
  int fills = 0;
  box.fill = [&] {
    ++fills;
    QVERIFY(box.window.isOpen());
    QVERIFY(!box.window.isVisible());
    box.window.setMarkerEnabled(1, true);
    box.window.showMarker(1, "-7", "1ms");
  };
  QVERIFY(!box.window.isOpen());
  box.window.open();
  QCOMPARE(fills, 1);
  QCOMPARE(box.power(1).text(), "-7");
  QCOMPARE(box.visible, QList<bool>{true});
}

void MarkersWindowTest::closesAndOpens() {
  Box box;
  for (int time = 0; time < 1000; ++time) {
    box.window.open();
    QVERIFY(box.window.isOpen());
    if (time % 2 == 0) {
      QTest::keyClick(&box.window, Qt::Key_Escape);
    } else {
      box.window.close();
    }
    QVERIFY(!box.window.isVisible());
    QVERIFY(!box.window.isOpen());
  }
  QCOMPARE(box.visible.size(), 2000);
  QCOMPARE(box.visible.mid(1998), (QList<bool>{true, false}));
}

void MarkersWindowTest::opensBelowItsOwnerAndKeepsItsPlace() {
  Box box;
  box.window.open();
  QCOMPARE(box.window.pos(), QPoint(0, box.owner.frameGeometry().bottom() + 1));
  box.window.move(13, 27);
  QCoreApplication::processEvents();
  box.window.close();
  box.window.open();
  QCOMPARE(box.window.pos(), QPoint(13, 27));
}

void MarkersWindowTest::fontDialog() {
  Box box;
  box.window.open();
  box.window.showMarker(1, "-7.25", "1ms");
  int fills = 0;
  box.fill = [&] { ++fills; };
  whenModalIsShown<QFontDialog>("cmdialog", [&](QFontDialog& dialog) {
    QCOMPARE(dialog.parentWidget(), &box.window);
    QCOMPARE(dialog.windowTitle(), "Markers Font");
    dialog.setCurrentFont(QFont("DejaVu Serif", 13, QFont::Bold, true));
    dialog.accept();
  });
  box.window.findChild<QAction*>("menuFont")->trigger();
  QCOMPARE(fills, 1);
  for (const QLabel* label : box.window.findChildren<QLabel*>()) {
    QCOMPARE(label->font().family(), "DejaVu Serif");
    QCOMPARE(label->font().pointSize(), 13);
    QVERIFY(label->font().bold());
    QVERIFY(!label->font().italic());
  }
  QCOMPARE(box.power(1).text(), "-7.25");
  box.checkColumns(box.sampleWidth());
  checkRoom(box.window);
}

void MarkersWindowTest::fontDialogCancelled() {
  Box box;
  box.window.open();
  const QImage picture = areaOf(box.window).grab().toImage();
  const QSize size = box.window.size();
  const QFont before = box.power(0).font();
  whenModalIsShown<QFontDialog>("cmdialog", [](QFontDialog& dialog) {
    dialog.setCurrentFont(QFont("DejaVu Serif", 30));
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  box.window.findChild<QAction*>("menuFont")->trigger();
  QCOMPARE(box.power(0).font(), before);
  QCOMPARE(areaOf(box.window).grab().toImage(), picture);
  QCOMPARE(box.window.size(), size);
}

QTEST_MAIN(MarkersWindowTest)
#include "MarkersWindowTest.moc"
