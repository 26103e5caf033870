#include <QAction>
#include <QFontDialog>
#include <QMenu>
#include <QWindow>

#include "ReadoutTest.h"
#include "WindowTest.h"
#include "link/Fault.h"
#include "support/FakeWorld.h"
#include "ui/InfoBox.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// `frmInfo` of an owner, filled by the test.
struct Box : ReadoutBox<InfoBox> {
  Box() : ReadoutBox({200, 150}) {}
  QGroupBox& frame(std::size_t group) {
    return *window.findChild<QGroupBox*>(QString("FrameMeas_%1").arg(group == 0 ? 8 : group - 1));
  }
  QLabel& name(std::size_t element) { return label("lblMeasInfo", element); }
  QLabel& value(std::size_t element) { return label("lblMeasResult", element); }
  QLabel& unit(std::size_t element) { return label("lblMeasUnits", element); }

  /// The results of one group, of which those from `count` on are not there.
  void show(std::size_t group, std::size_t count, const std::string& text = "5.20") {
    for (std::size_t result = 0; result < resultsPerGroup; ++result) {
      const std::size_t element = resultsPerGroup * group + result;
      if (result < count) {
        window.showResult(element, "Avg", text, "dBm");
      } else {
        window.hideResult(element);
      }
    }
  }
  void fillAll(std::size_t gates, std::size_t count, const std::string& text = "5.20") {
    for (std::size_t group = 0; group < readingGroups; ++group) {
      window.setGroup(group, group <= gates, group % 2 == 1);
      show(group, count, text);
    }
  }
  void open(std::size_t gates, std::size_t count) {
    fill = [this, gates, count] { fillAll(gates, count); };
    window.open();
  }
  /// The columns, from the frame's left, each as wide as it should be, and the rows.
  void checkColumns(int nameWidth, int valueWidth, int unitWidth) {
    const int height = name(0).height();
    QCOMPARE(height, ownSize("Avg", name(0).font()).height());
    for (std::size_t element = 0; element < readingGroups * resultsPerGroup; ++element) {
      const int top = name(element - element % resultsPerGroup).y() +
                      static_cast<int>(element % resultsPerGroup) * (height + 1);
      const int valueLeft = 8 + nameWidth + 8;
      QCOMPARE(name(element).geometry(), QRect(8, top, nameWidth, height));
      QCOMPARE(value(element).geometry(), QRect(valueLeft, top, valueWidth, height));
      QCOMPARE(unit(element).geometry(), QRect(valueLeft + valueWidth, top, unitWidth, height));
    }
  }
};

/// The unit is a blank apart from its value.
int unitWidth(const QFont& font) { return ownSize(" dBm", font).width(); }

}  // namespace

class InfoBoxTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
  void controls();
  void labelsKeepTheirTextForAssistance();
  void standsInFrontOfItsOwner();
  void sampleCaptionsSetTheColumns_data();
  void sampleCaptionsSetTheColumns();
  void showsResults();
  void longTextsAreNotCut();
  void openingLaysOutAnew();
  void textsThatWereHiddenGetTheirRoomAgain();
  void onlyFramesInUseTakeRoom();
  void gatesOfTheRepeatStandBesideTheOthers();
  void framesHaveRowsForTheResultsOnly();
  void noResultsAtAll();
  void disabledFramesKeepTheirTexts();
  void fitsASmallScreen();
  void largeFontScrollsDownwardsOnly();
  void hugeFontScrolls();
  void staysOnTheScreenWhenItGrows();
  void sameTextsCostNothing();
  void textsOfOneSizeMoveNothing();
  void isFilledBeforeItIsShown();
  void closesAndOpens_data();
  void closesAndOpens();
  void minimisedIsOpen();
  void keepsItsPlace();
  void opensBesideItsOwner();
  void fontDialog();
  void fontDialogCancelled();
  void faultOfTheFill();
  void menuIsReachedByKey();
};

void InfoBoxTest::controls() {
  Box box;
  QCOMPARE(box.window.objectName(), "frmInfo");
  QCOMPARE(box.window.windowTitle(), "Info Box");
  QCOMPARE(box.window.findChildren<QGroupBox*>().size(), 9);
  QCOMPARE(box.window.findChildren<QLabel*>().size(), 81);
  QCOMPARE(box.frame(0).title(), "Profile");
  for (std::size_t gate = 1; gate <= 8; ++gate) {
    QCOMPARE(box.frame(gate).title(), QString("Gate %1").arg(gate));
  }
  for (std::size_t element = 0; element < 27; ++element) {
    for (const QLabel* label : {&box.name(element), &box.value(element), &box.unit(element)}) {
      QCOMPARE(label->parentWidget(), &box.frame(element / 3));
    }
  }
}

void InfoBoxTest::labelsKeepTheirTextForAssistance() {
  Box box;
  box.open(8, 3);
  QSet<QString> descriptions;
  for (const QLabel* label : box.window.findChildren<QLabel*>()) {
    QVERIFY(label->accessibleName().isEmpty());
    QCOMPARE(label->textFormat(), Qt::PlainText);
    descriptions << label->accessibleDescription();
  }
  QCOMPARE(descriptions.size(), 81);
  QCOMPARE(box.value(0).accessibleDescription(), "Profile result 1 value");
  QCOMPARE(box.name(5).accessibleDescription(), "Gate 1 result 3 name");
  QCOMPARE(box.unit(25).accessibleDescription(), "Gate 8 result 2 unit");
}

void InfoBoxTest::standsInFrontOfItsOwner() {
  Box box;
  box.open(4, 1);
  QVERIFY(box.window.isWindow());
  QVERIFY(!box.window.isModal());
  QCOMPARE(box.window.windowType(), Qt::Tool);
  QCOMPARE(box.window.windowHandle()->transientParent(), box.owner.windowHandle());
}

void InfoBoxTest::sampleCaptionsSetTheColumns_data() {
  QTest::addColumn<QFont>("font");
  QTest::newRow("usual") << QFont();
  QTest::newRow("large") << QFont("DejaVu Serif", 17, QFont::Bold);
  QTest::newRow("small") << QFont("DejaVu Sans Mono", 6);
}

void InfoBoxTest::sampleCaptionsSetTheColumns() {
  QFETCH(QFont, font);
  Box box;
  QCOMPARE(box.window.logicalDpiX(), 96);
  for (QLabel* label : box.window.findChildren<QLabel*>()) label->setFont(font);
  box.open(4, 3);
  box.checkColumns(ownSize("Avg", font).width(), ownSize("-34.567", font).width(), unitWidth(font));
  checkRoom(box.window);
  QCOMPARE(box.frame(1).width(), box.unit(3).x() + box.unit(3).width() + 8);
}

void InfoBoxTest::showsResults() {
  Box box;
  box.open(4, 3);
  box.window.showResult(4, "Pk", "-12.345", "dB");
  QCOMPARE(box.name(4).text(), "Pk");
  QCOMPARE(box.value(4).text(), "-12.345");
  QCOMPARE(box.unit(4).text(), "dB");
  QVERIFY(box.value(4).isVisible());
  QCOMPARE(box.value(3).text(), "5.20");
  box.window.hideResult(4);
  for (const QLabel* label : {&box.name(4), &box.value(4), &box.unit(4)}) {
    QVERIFY(label->isHidden());
  }
  QVERIFY(box.value(3).isVisible());
  QVERIFY(box.value(5).isVisible());
  box.window.showResult(4, "Pk", "-12.345", "dB");
  for (const QLabel* label : {&box.name(4), &box.value(4), &box.unit(4)}) {
    QVERIFY(label->isVisible());
  }
}

void InfoBoxTest::longTextsAreNotCut() {
  Box box;
  box.open(8, 3);
  const QFont font = box.name(0).font();
  const int nameWidth = ownSize("Avg", font).width();
  box.window.showResult(25, "Avg", "-123456.789", "dBm");
  checkRoom(box.window);
  const int longWidth = ownSize("-123456.789", font).width();
  box.checkColumns(nameWidth, longWidth, unitWidth(font));
  // The columns of all frames stay wide, so that nothing jumps while the value goes on changing.
  box.window.showResult(25, "Avg", "1.00", "dBm");
  box.checkColumns(nameWidth, longWidth, unitWidth(font));
  box.window.showResult(2, "Avg", "1.00", "a longer unit");
  checkRoom(box.window);
  box.window.showResult(1, "A longer name", "1.00", "a longer unit");
  checkRoom(box.window);
  box.checkColumns(ownSize("A longer name", font).width(), longWidth,
                   ownSize(" a longer unit", font).width());
}

void InfoBoxTest::openingLaysOutAnew() {
  Box box;
  box.open(4, 3);
  const QSize size = areaOf(box.window).size();
  box.window.showResult(7, "Avg", "-123456.789", "dBm");
  QVERIFY(areaOf(box.window).width() > size.width());
  box.window.close();
  // The long value is still there, and then is not.
  box.fill = [] {};
  box.window.open();
  QVERIFY(areaOf(box.window).width() > size.width());
  checkRoom(box.window);
  box.window.showResult(7, "Avg", "1.00", "dBm");
  box.window.close();
  box.window.open();
  QCOMPARE(areaOf(box.window).size(), size);
  checkRoom(box.window);
}

void InfoBoxTest::textsThatWereHiddenGetTheirRoomAgain() {
  Box box;
  box.open(4, 3);
  const int width = areaOf(box.window).width();
  box.window.showResult(7, "Avg", "-123456.789", "dBm");
  box.window.hideResult(7);
  box.window.close();
  box.fill = [] {};
  box.window.open();
  QCOMPARE(areaOf(box.window).width(), width);
  box.window.showResult(7, "Avg", "-123456.789", "dBm");
  checkRoom(box.window);
}

void InfoBoxTest::onlyFramesInUseTakeRoom() {
  Box box;
  box.open(4, 1);
  for (std::size_t group = 0; group < readingGroups; ++group) {
    QCOMPARE(box.frame(group).isVisible(), group <= 4);
    QCOMPARE(box.frame(group).isEnabled(), group % 2 == 1);
  }
  const QSize frame = box.frame(0).size();
  for (int group = 0; group <= 4; ++group) {
    QCOMPARE(box.frame(static_cast<std::size_t>(group)).geometry(),
             QRect(QPoint(8, 8 + group * (frame.height() + 8)), frame));
  }
  QCOMPARE(areaOf(box.window).size(), QSize(8 + frame.width() + 8, 8 + 5 * (frame.height() + 8)));
  checkNoScrolling(box.window);
  checkRoom(box.window);
}

void InfoBoxTest::gatesOfTheRepeatStandBesideTheOthers() {
  Box box;
  box.open(4, 1);
  const QSize four = areaOf(box.window).size();
  const QSize frame = box.frame(0).size();
  box.window.setGroup(6, true, true);
  QCOMPARE(areaOf(box.window).size(), four + QSize(frame.width() + 8, 0));
  QCOMPARE(box.frame(6).geometry(), box.frame(2).geometry().translated(frame.width() + 8, 0));
  checkNoScrolling(box.window);
  checkRoom(box.window);
  box.fillAll(8, 1);
  QCOMPARE(areaOf(box.window).size(), four + QSize(frame.width() + 8, 0));
  for (std::size_t gate = 5; gate <= 8; ++gate) {
    QCOMPARE(box.frame(gate).geometry(),
             box.frame(gate - 4).geometry().translated(frame.width() + 8, 0));
  }
  checkNoScrolling(box.window);
  checkRoom(box.window);
  box.fillAll(4, 1);
  QCOMPARE(areaOf(box.window).size(), four);
  checkNoScrolling(box.window);
  checkRoom(box.window);
}

void InfoBoxTest::framesHaveRowsForTheResultsOnly() {
  Box box;
  box.open(4, 1);
  const int pitch = box.name(0).height() + 1;
  const QSize one = box.frame(0).size();
  for (const int count : {2, 3, 1}) {
    box.fillAll(4, static_cast<std::size_t>(count));
    QCOMPARE(box.frame(3).size(), one + QSize(0, (count - 1) * pitch));
    QCOMPARE(areaOf(box.window).height(), 8 + 5 * (box.frame(3).height() + 8));
    checkRoom(box.window);
  }
}

void InfoBoxTest::noResultsAtAll() {
  Box box;
  box.open(4, 1);
  const QSize one = box.window.size();
  box.fillAll(4, 0);
  QCOMPARE(box.window.size(), one);
  for (const QLabel* label : box.window.findChildren<QLabel*>()) QVERIFY(label->isHidden());
}

void InfoBoxTest::disabledFramesKeepTheirTexts() {
  Box box;
  box.open(4, 1);
  box.window.showResult(6, "Avg", "-3.00", "dBm");
  box.window.setGroup(2, true, true);
  QVERIFY(box.value(6).isEnabled());
  const QImage enabled = box.frame(2).grab().toImage();
  box.window.setGroup(2, true, false);
  QVERIFY(!box.value(6).isEnabled());
  QVERIFY(box.frame(2).grab().toImage() != enabled);
  QCOMPARE(box.value(6).text(), "-3.00");
  QVERIFY(box.value(6).isVisible());
}

void InfoBoxTest::fitsASmallScreen() {
  Box box;
  box.open(8, 3);
  const QSize needed = areaOf(box.window).size() + QSize(0, box.window.menuBar()->height());
  const QSize screenWithoutTitles(1024 - 16, 600 - 48);
  QCOMPARE(needed.boundedTo(screenWithoutTitles), needed);
}

void InfoBoxTest::largeFontScrollsDownwardsOnly() {
  Box box;
  const int points = box.window.screen()->availableSize().height() / 30;
  for (QLabel* label : box.window.findChildren<QLabel*>()) {
    label->setFont(QFont("DejaVu Sans", points));
  }
  box.open(4, 3);
  QVERIFY(waitUntilQuiet(box.window));
  const auto* scroll = box.window.findChild<QScrollArea*>();
  QVERIFY(scroll->verticalScrollBar()->maximum() > 0);
  QCOMPARE(scroll->horizontalScrollBar()->maximum(), 0);
  checkRoom(box.window);
}

void InfoBoxTest::hugeFontScrolls() {
  Box box;
  for (QLabel* label : box.window.findChildren<QLabel*>()) label->setFont(QFont("DejaVu Sans", 60));
  box.open(8, 3);
  const QSize room = box.window.screen()->availableSize();
  QVERIFY(areaOf(box.window).height() > room.height());
  checkRoom(box.window);
  auto* const scroll = box.window.findChild<QScrollArea*>();
  scroll->ensureWidgetVisible(&box.unit(26), 0, 0);
  const QRect seen = placeIn(box.unit(26), *scroll->viewport());
  QVERIFY(scroll->viewport()->rect().contains(seen.bottomRight()));
}

void InfoBoxTest::staysOnTheScreenWhenItGrows() {
  Box box;
  box.open(4, 1);
  const QRect room = box.window.screen()->availableGeometry();
  box.window.move(room.right() - box.window.frameGeometry().width() + 1, room.top());
  checkRoom(box.window);
  box.fillAll(8, 1);
  checkRoom(box.window);
  QCOMPARE(box.window.frameGeometry().right(), room.right());
}

void InfoBoxTest::sameTextsCostNothing() {
  Box box;
  box.open(8, 3);
  QVERIFY(waitUntilQuiet(box.window));
  WorkCounter work(box.window);
  for (int pass = 0; pass < 50; ++pass) {
    box.fillAll(8, 3);
    QCoreApplication::processEvents();
  }
  QCOMPARE(work.paints, 0);
  QCOMPARE(work.placings, 0);
  box.fillAll(8, 3, "6.20");
  QTRY_VERIFY(work.paints > 0);
}

void InfoBoxTest::textsOfOneSizeMoveNothing() {
  Box box;
  box.open(8, 3);
  QVERIFY(waitUntilQuiet(box.window));
  WorkCounter work(box.window);
  for (int pass = 100; pass < 150; ++pass) {
    box.fillAll(8, 3, "-2." + std::to_string(pass));
    QCoreApplication::processEvents();
  }
  QCOMPARE(work.placings, 0);
  QVERIFY(work.paints > 0);
  QCOMPARE(box.value(26).text(), "-2.149");
}

void InfoBoxTest::isFilledBeforeItIsShown() {
  Box box;
  int fills = 0;
  box.fill = [&] {
    ++fills;
    QVERIFY(box.window.isOpen());
    QVERIFY(!box.window.isVisible());
    QVERIFY(box.visible.isEmpty());
    box.fillAll(4, 2);
  };
  QVERIFY(!box.window.isOpen());
  box.window.open();
  QCOMPARE(fills, 1);
  QVERIFY(box.window.isOpen());
  QCOMPARE(box.visible, QList<bool>{true});
  QCOMPARE(box.value(4).text(), "5.20");
  checkNoScrolling(box.window);
}

void InfoBoxTest::closesAndOpens_data() {
  QTest::addColumn<bool>("byKey");
  QTest::newRow("close box") << false;
  QTest::newRow("Esc") << true;
}

void InfoBoxTest::closesAndOpens() {
  QFETCH(bool, byKey);
  Box box;
  for (int time = 0; time < 1000; ++time) {
    box.open(4, 1);
    QVERIFY(box.window.isVisible());
    if (byKey) {
      QTest::keyClick(&box.window, Qt::Key_Escape);
    } else {
      box.window.close();
    }
    QVERIFY(!box.window.isVisible());
    QVERIFY(!box.window.isOpen());
  }
  QCOMPARE(box.visible.size(), 2000);
  QCOMPARE(box.visible.mid(1998), (QList<bool>{true, false}));
  QVERIFY(box.owner.isVisible());
}

void InfoBoxTest::minimisedIsOpen() {
  Box box;
  box.open(4, 1);
  box.window.setWindowState(Qt::WindowMinimized);
  QCoreApplication::processEvents();
  QVERIFY(box.window.isOpen());
  QCOMPARE(box.visible, QList<bool>{true});
  // What some window systems send then.
  QHideEvent event;
  QSpontaneKeyEvent::setSpontaneous(&event);
  qApp->notify(&box.window, &event);
  QCOMPARE(box.visible, QList<bool>{true});
}

void InfoBoxTest::keepsItsPlace() {
  Box box;
  box.open(4, 1);
  box.window.move(37, 41);
  QCoreApplication::processEvents();
  for (int time = 0; time < 3; ++time) {
    box.window.close();
    box.open(4, 1);
    QCOMPARE(box.window.pos(), QPoint(37, 41));
  }
}

void InfoBoxTest::opensBesideItsOwner() {
  Box box;
  box.open(4, 1);
  QCOMPARE(box.window.pos(), QPoint(box.owner.frameGeometry().right() + 1, 0));
}

void InfoBoxTest::fontDialog() {
  Box box;
  box.open(4, 3);
  const QFont before = box.name(0).font();
  const QFont chosen("DejaVu Serif", 13, QFont::Bold, true);
  int fills = 0;
  box.fill = [&] { ++fills; };
  box.window.showResult(7, "Avg", "-123456.789", "dBm");
  box.window.showResult(7, "Avg", "1.00", "dBm");
  whenModalIsShown<QFontDialog>("cmdialog", [&](QFontDialog& dialog) {
    QCOMPARE(dialog.parentWidget(), &box.window);
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.windowTitle(), "Info Box Font");
    QCOMPARE(dialog.currentFont().family(), before.family());
    QCOMPARE(dialog.currentFont().pointSizeF(), before.pointSizeF());
    dialog.setCurrentFont(chosen);
    dialog.accept();
  });
  box.window.findChild<QAction*>("menuFont")->trigger();
  QCOMPARE(fills, 1);
  const QList<QLabel*> labels = box.window.findChildren<QLabel*>();
  for (const QLabel* label : labels) {
    QCOMPARE(label->font().family(), "DejaVu Serif");
    QCOMPARE(label->font().pointSize(), 13);
    QVERIFY(label->font().bold());
    QVERIFY(!label->font().italic());
  }
  const QFont font = labels.front()->font();
  box.checkColumns(ownSize("Avg", font).width(), ownSize("-34.567", font).width(), unitWidth(font));
  checkRoom(box.window);
}

void InfoBoxTest::fontDialogCancelled() {
  Box box;
  box.open(4, 3);
  const QImage picture = areaOf(box.window).grab().toImage();
  const QSize size = box.window.size();
  const QFont before = box.name(0).font();
  int fills = 0;
  box.fill = [&] { ++fills; };
  whenModalIsShown<QFontDialog>("cmdialog", [](QFontDialog& dialog) {
    dialog.setCurrentFont(QFont("DejaVu Serif", 30));
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  box.window.findChild<QAction*>("menuFont")->trigger();
  QCOMPARE(fills, 0);
  QCOMPARE(box.name(0).font(), before);
  QVERIFY(box.window.isVisible());
  QCOMPARE(areaOf(box.window).grab().toImage(), picture);
  QCOMPARE(box.window.size(), size);
}

void InfoBoxTest::faultOfTheFill() {
  FakeWorld world;
  Box box;
  box.fill = [] { throw Fault("no number"); };
  QVERIFY_THROWS_EXCEPTION(Fault, box.window.open());
  QVERIFY(!box.window.isOpen());
  QVERIFY(box.visible.isEmpty());
  whenModalIsShown<QFontDialog>("cmdialog", [](QFontDialog& dialog) { dialog.accept(); });
  box.window.findChild<QAction*>("menuFont")->trigger();
  QCOMPARE(world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(world.dialogs.messages[0].text, std::string("no number"));
}

void InfoBoxTest::menuIsReachedByKey() {
  Box box;
  box.open(4, 1);
  QVERIFY(QTest::qWaitForWindowActive(&box.window));
  QTest::keyClick(&box.window, Qt::Key_O, Qt::AltModifier);
  auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  QVERIFY(menu != nullptr);
  QCOMPARE(menu->actions().size(), 1);
  QCOMPARE(menu->actions().front()->objectName(), "menuFont");
  QCOMPARE(menu->actions().front()->text(), "&Font...");
  whenModalIsShown<QFontDialog>("cmdialog", [](QFontDialog& dialog) { dialog.reject(); });
  QTest::keyClick(menu, Qt::Key_F);
  QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
}

QTEST_MAIN(InfoBoxTest)
#include "InfoBoxTest.moc"
