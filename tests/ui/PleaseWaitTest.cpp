#include <QLabel>
#include <QProgressBar>
#include <QWindow>

#include "WindowTest.h"
#include "ui/PleaseWait.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// Counts how often a widget is painted.
class PaintCounter : public QObject {
 public:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints;
    return false;
  }
  int paints = 0;
};

}  // namespace

class PleaseWaitTest : public QObject {
  Q_OBJECT

  static QWidget& window() { return *windowNamed("frmPleaseWait"); }
  static QProgressBar& bar() { return *window().findChild<QProgressBar*>("barDone"); }
  static QLabel& message() { return *window().findChild<QLabel*>("lblMessage"); }

 private slots:
  void buildsNothingBeforeItIsShown();
  void showsAndHides();
  void paintsAtOnce();
  void setTextDoesNotShow();
  void keepsItsSize();
  void closedByTheUser_data();
  void closedByTheUser();
  void showAfterADelay();
  void delayIsCancelled();
  void barGrows();
  void barIsPaintedAtOnce();
  void barRunsWithoutEndWhileNobodyKnows();
  void barIsEmptyAgain();
  void barOfAHiddenWindow();
};

void PleaseWaitTest::buildsNothingBeforeItIsShown() {
  PleaseWait wait;
  wait.setText("Please Wait... Going to PulseMod...");
  wait.hide();
  QVERIFY(!wait.dismissed());
  QCOMPARE(windowNamed("frmPleaseWait"), nullptr);
}

void PleaseWaitTest::showsAndHides() {
  PleaseWait wait;
  wait.show("Please Wait... Setting Active Channel...");
  QVERIFY(window().isVisible());
  QVERIFY(!window().isModal());
  QCOMPARE(window().windowTitle(), "Please Wait");
  QCOMPARE(message().text(), "Please Wait... Setting Active Channel...");
  wait.setText("Please Wait... Reading Gates...3");
  QCOMPARE(message().text(), "Please Wait... Reading Gates...3");
  wait.hide();
  QVERIFY(!window().isVisible());
  QVERIFY(!wait.dismissed());
}

void PleaseWaitTest::paintsAtOnce() {
  PleaseWait wait;
  wait.show("Please Wait... Going to PulseMod...");
  QVERIFY(window().windowHandle()->isExposed());
  PaintCounter counter;
  message().installEventFilter(&counter);
  wait.setText("Please Wait... Reading Gates...");
  QCOMPARE(counter.paints, 1);
  wait.setText("Please Wait... Reading Gates...1");
  QCOMPARE(counter.paints, 2);
  wait.hide();
  wait.show("Please Wait... Reading Reference...");
  QVERIFY(counter.paints > 2);
}

void PleaseWaitTest::setTextDoesNotShow() {
  PleaseWait wait;
  wait.show("Please Wait... Going to PulseMod...");
  wait.hide();
  wait.setText("Please Wait... Reading Capture Period...");
  QVERIFY(!window().isVisible());
}

void PleaseWaitTest::keepsItsSize() {
  PleaseWait wait;
  wait.show("Please Wait... Going to PulseMod...");
  const QSize size = window().size();
  const std::string texts[] = {
      "Please Wait... Setting Active Channel...", "Please Wait... Reading Power Meter Identity...",
      "Please Wait... Reading Gates...4", "Please Wait... Configuring...CCDFsetting",
      "Please Wait... Waiting for response..."};
  for (const std::string& text : texts) {
    wait.setText(text);
    QCoreApplication::processEvents();
    QCOMPARE(window().size(), size);
    QVERIFY(message().fontMetrics().horizontalAdvance(message().text()) <= message().width());
  }
}

void PleaseWaitTest::closedByTheUser_data() {
  QTest::addColumn<bool>("byKey");
  QTest::newRow("close box") << false;
  QTest::newRow("Esc") << true;
}

void PleaseWaitTest::closedByTheUser() {
  QFETCH(bool, byKey);
  PleaseWait wait;
  wait.show("Please Wait... Reading Gates...");
  QVERIFY(!wait.dismissed());
  if (byKey) {
    QTest::keyClick(&window(), Qt::Key_Escape);
  } else {
    window().close();
  }
  QVERIFY(!window().isVisible());
  QVERIFY(wait.dismissed());
  wait.setText("Please Wait... Reading Gates...1");
  QVERIFY(!window().isVisible());
  wait.hide();
  QVERIFY(wait.dismissed());
  wait.show("Please Wait... Reading Gates...2");
  QVERIFY(window().isVisible());
  QVERIFY(!wait.dismissed());
  window().close();
  QVERIFY(wait.dismissed());
  wait.showAfter(60000, "Please Wait...");
  QVERIFY(!wait.dismissed());
}

void PleaseWaitTest::showAfterADelay() {
  PleaseWait wait;
  wait.showAfter(30, "Please Wait... Reading Power Meter Identity...");
  QVERIFY(windowNamed("frmPleaseWait") == nullptr);
  QTRY_VERIFY(windowNamed("frmPleaseWait") != nullptr && window().isVisible());
  QCOMPARE(message().text(), "Please Wait... Reading Power Meter Identity...");
}

void PleaseWaitTest::delayIsCancelled() {
  PleaseWait wait;
  wait.showAfter(20, "late");
  wait.hide();
  QTest::qWait(60);
  QCOMPARE(windowNamed("frmPleaseWait"), nullptr);
  wait.showAfter(20, "late");
  wait.show("Please Wait... Going to PulseMod...");
  QTest::qWait(60);
  QCOMPARE(message().text(), "Please Wait... Going to PulseMod...");
}

void PleaseWaitTest::barGrows() {
  PleaseWait wait;
  wait.show("Please Wait... Setting Active Channel...");
  QVERIFY(bar().isVisible());
  QCOMPARE(bar().value(), 0);
  QVERIFY(bar().maximum() > 0);
  const QSize size = window().size();
  for (int done = 0; done <= 49; ++done) {
    wait.setDone(done, 49);
    QCOMPARE(bar().value(), done);
    QCOMPARE(bar().maximum(), 49);
  }
  QCOMPARE(window().size(), size);
  QCOMPARE(bar().accessibleName(), "Progress");
  QVERIFY(bar().width() >= message().width());
}

void PleaseWaitTest::barIsPaintedAtOnce() {
  PleaseWait wait;
  wait.show("Please Wait... Setting Active Channel...");
  PaintCounter counter;
  bar().installEventFilter(&counter);
  wait.setDone(0, 5);
  QVERIFY(counter.paints > 0);
  counter.paints = 0;
  for (int done = 1; done <= 5; ++done) wait.setDone(done, 5);
  QCOMPARE(counter.paints, 5);
  wait.setDone(5, 5);
  QCOMPARE(counter.paints, 5);
}

void PleaseWaitTest::barRunsWithoutEndWhileNobodyKnows() {
  PleaseWait wait;
  wait.showAfter(10, "Please Wait... Reading Power Meter Identity...");
  QTRY_VERIFY(windowNamed("frmPleaseWait") != nullptr && window().isVisible());
  QCOMPARE(bar().minimum(), 0);
  QCOMPARE(bar().maximum(), 0);
}

void PleaseWaitTest::barIsEmptyAgain() {
  PleaseWait wait;
  wait.show("Please Wait... Configuring...CCDFsetting");
  wait.setDone(10, 10);
  wait.hide();
  wait.show("Please Wait... Setting Active Channel...");
  QCOMPARE(bar().value(), 0);
  QVERIFY(bar().maximum() > 0);
}

void PleaseWaitTest::barOfAHiddenWindow() {
  PleaseWait wait;
  wait.setDone(1, 10);
  QCOMPARE(windowNamed("frmPleaseWait"), nullptr);
  wait.show("Please Wait... Setting Active Channel...");
  window().close();
  wait.setDone(2, 10);
  QVERIFY(!window().isVisible());
  wait.show("Please Wait... Setting Active Channel...");
  QCOMPARE(bar().value(), 0);
}

QTEST_MAIN(PleaseWaitTest)
#include "PleaseWaitTest.moc"
