#include <sys/wait.h>
#include <unistd.h>

#include <QMenu>
#include <QMenuBar>
#include <QSet>

#include "CCDFWindowBench.h"
#include "ccdf/CCDFLoop.h"
#include "profile/MeasurementSettings.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

QList<QAction*> itemsOf(const QMenu& menu) {
  QList<QAction*> items;
  for (QAction* action : menu.actions()) {
    if (!action->isSeparator()) items << action;
  }
  return items;
}

/// "name: caption" of each item.
QStringList listOf(const QMenu& menu) {
  QStringList list;
  for (const QAction* item : itemsOf(menu)) list << item->objectName() + ": " + item->text();
  return list;
}

QList<QAction*> allItems(CCDFBench& bench) {
  QList<QAction*> items;
  for (const QAction* entry : bench.window.menuBar()->actions()) items << itemsOf(*entry->menu());
  return items;
}

QChar mnemonicOf(const QString& caption) {
  const auto at = caption.indexOf('&');
  return at < 0 ? QChar() : caption.at(at + 1).toLower();
}

QStringList disabledItems(CCDFBench& bench) {
  QStringList names;
  for (const QAction* item : allItems(bench)) {
    if (!item->isEnabled()) names << item->objectName();
  }
  return names;
}

/// The meter takes over whatever source it is told.
void obeySource(CCDFBench& bench) {
  FakeMeter& meter = bench.world.meter;
  meter.onMessage = [&meter](const std::string& message) {
    if (message.starts_with("TTSRC 1,")) meter.replies["TTSRC? 1"] = message;
  };
}

/// Ends the process at once, as the real one does, with a status that tells how often the link was
/// closed.
struct ExitingEnd : ProgramEnd {
  explicit ExitingEnd(FakeWorld& ended) : world(ended) {}
  [[noreturn]] void endProgram() override { _exit(statusOf(world.gpib.timesCalled("ibonl 7 0"))); }
  static int statusOf(int closes) { return 40 + closes; }
  FakeWorld& world;
};

/// Closes the window in a process of its own; how that ends.
int statusAfterClose(CCDFBench& bench) {
  FakeWorld& world = bench.world;
  const pid_t child = fork();
  if (child == 0) {
    ExitingEnd end(world);
    const Services exiting{
        world.clock,   world.events,      world.gpib,  world.serial,   world.store,
        world.dialogs, world.fileDialogs, world.files, world.progress, end};
    const ServicesGuard guard(exiting);
    bench.window.close();
    _exit(1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

class CCDFMenuTest : public QObject {
  Q_OBJECT

 private slots:
  void menus();
  void mnemonicsAreUnique();
  void shortcuts();
  void itemsHaveToolTips();
  void initialStates();
  void savedCurveIsOpened();
  void startAndStop();
  void stopOfTheSubsystemIsShown();
  void restart();
  void secondProfileIsCheckedOncePerClick();
  void cursorOnAndOff();
  void cursorWhileRunning();
  void cursorPosition();
  void sources_data();
  void sources();
  void faultOfAHandlerIsReported();
  void closingEndsTheProgram_data();
  void closingEndsTheProgram();
};

void CCDFMenuTest::menus() {
  CCDFBench bench;
  const QList<QAction*> bar = bench.window.menuBar()->actions();
  QStringList captions;
  for (const QAction* entry : bar) captions << entry->text();
  QCOMPARE(captions, QStringList({"&File", "&CCDF", "C&ursor", "&Source", "&Help"}));
  QCOMPARE(listOf(*bar[0]->menu()),
           QStringList({"OpenMenu: &Open...", "menuSave: &Save...",
                        "menuSavePicture: Save P&icture...", "menuCopyPicture: &Copy Picture",
                        "menuCopyData: Copy &Data", "menuPrint: &Print..."}));
  QCOMPARE(listOf(*bar[1]->menu()),
           QStringList({"menuStart: St&art", "menuStop: S&top", "MenuRestart: &Restart Statistics",
                        "menuSecondProfile: &Second Profile"}));
  QCOMPARE(listOf(*bar[2]->menu()),
           QStringList({"menuOn: &On", "menuOFF: O&ff", "menuSetCursorPosition: &Position..."}));
  QCOMPARE(listOf(*bar[3]->menu()),
           QStringList({"menuMeasSourceGate: &Gate", "menuMeasSourceActiveMarker: Active &Marker",
                        "menuMeasSourceChannel: &Channel"}));
  QCOMPARE(bar[3]->objectName(), "menuMeasSource");
  QCOMPARE(listOf(*bar[4]->menu()),
           QStringList({"menuUserGuide: &User Guide", "menuAbout: &About Pelmora PulseMod"}));
  for (const QAction* item : allItems(bench)) {
    QVERIFY2(!item->toolTip().isEmpty() && item->toolTip() != item->iconText(),
             qPrintable(item->objectName()));
  }
}

/// More than the name, which the toolkit puts there by itself.
void CCDFMenuTest::itemsHaveToolTips() {
  CCDFBench bench;
  for (const QAction* item : allItems(bench)) {
    QString name = item->text();
    name.remove('&').remove("...");
    QVERIFY2(item->toolTip() != name, qPrintable(name));
    QVERIFY2(item->toolTip().size() > 10, qPrintable(name));
  }
}

void CCDFMenuTest::mnemonicsAreUnique() {
  CCDFBench bench;
  QList<QList<QAction*>> menus{bench.window.menuBar()->actions()};
  for (const QAction* entry : bench.window.menuBar()->actions()) menus << itemsOf(*entry->menu());
  for (const QList<QAction*>& menu : menus) {
    QSet<QChar> seen;
    for (const QAction* action : menu) {
      const QChar mnemonic = mnemonicOf(action->text());
      QVERIFY2(!mnemonic.isNull(), qPrintable(action->text()));
      QVERIFY2(!seen.contains(mnemonic), qPrintable(action->text()));
      seen << mnemonic;
    }
  }
}

void CCDFMenuTest::shortcuts() {
  CCDFBench bench;
  QStringList keys;
  for (const QAction* item : allItems(bench)) {
    QVERIFY(item->shortcuts().size() <= 1);
    if (item->shortcut().isEmpty()) continue;
    const QString key = item->shortcut().toString(QKeySequence::PortableText);
    QVERIFY2(!key.startsWith("Alt+"), qPrintable(key));
    keys << item->objectName() + " " + key;
  }
  QCOMPARE(keys, QStringList({"OpenMenu Ctrl+O", "menuSave Ctrl+S", "menuSavePicture Ctrl+Shift+S",
                              "menuCopyPicture Ctrl+C", "menuCopyData Ctrl+Shift+C",
                              "menuPrint Ctrl+P", "menuStart F5", "menuStop Shift+F5",
                              "MenuRestart F6", "menuSecondProfile F7", "menuOn F8",
                              "menuOFF Shift+F8", "menuSetCursorPosition F9", "menuUserGuide F1"}));
  // They arrive.
  bench.show();
  bench.key(Qt::Key_F6);
  QCOMPARE(bench.received(), Transcript{"PPACQRT 1"});
  bench.key(Qt::Key_F8);
  QVERIFY(CCDF.CursorOn != False16);
  bench.key(Qt::Key_F8, Qt::ShiftModifier);
  QVERIFY(CCDF.CursorOn == False16);
  for (const auto& [letter, first] :
       {std::pair{Qt::Key_F, "OpenMenu"}, std::pair{Qt::Key_C, "menuStart"},
        std::pair{Qt::Key_U, "menuOn"}, std::pair{Qt::Key_S, "menuMeasSourceGate"},
        std::pair{Qt::Key_H, "menuUserGuide"}}) {
    bench.key(letter, Qt::AltModifier);
    QWidget* open = QApplication::activePopupWidget();
    QVERIFY2(open != nullptr, first);
    QCOMPARE(open->actions().front()->objectName(), first);
    open->close();
  }
}

void CCDFMenuTest::initialStates() {
  CCDFBench bench;
  QCOMPARE(disabledItems(bench), QStringList({"menuStop", "menuOFF", "menuSetCursorPosition"}));
  QStringList checkable;
  for (const QAction* item : allItems(bench)) {
    if (item->isCheckable()) checkable << item->objectName();
    QVERIFY(!item->isChecked());
  }
  QCOMPARE(checkable, QStringList{"menuSecondProfile"});
}

void CCDFMenuTest::savedCurveIsOpened() {
  CCDFBench bench;
  bench.world.fileDialogs.saveAnswer = "/data/curve.txt";
  bench.world.fileDialogs.openAnswer = "/data/curve.txt";
  CCDFData[10] = 12.5F;
  bench.item("menuSave").trigger();
  QVERIFY(bench.world.files.contents.at("/data/curve.txt").starts_with("2\r\nDate\t2026-11-21"));
  QVERIFY(!bench.window.secondCurveIsShown());
  bench.item("OpenMenu").trigger();
  QCOMPARE(SecondCCDFData[10], 12.5F);
  QVERIFY(bench.item("menuSecondProfile").isChecked());
  QVERIFY(bench.world.dialogs.messages.empty());
  // A file that cannot be read is a fault of the handler.
  bench.world.fileDialogs.openAnswer = "/data/none.txt";
  bench.item("OpenMenu").trigger();
  QCOMPARE(bench.world.dialogs.messages.size(), std::size_t{1});
  QVERIFY(bench.received().empty());
}

void CCDFMenuTest::startAndStop() {
  CCDFBench bench;
  bench.item("menuStart").trigger();
  QVERIFY(AcquisitionRunning != False16);
  QCOMPARE(bench.world.gpib.timesCalled("DevClear 0 13"), 1);
  QVERIFY(!bench.item("menuStart").isEnabled());
  QVERIFY(bench.item("menuStop").isEnabled());
  bench.item("menuStop").trigger();
  QVERIFY(AcquisitionRunning == False16);
  QVERIFY(bench.item("menuStart").isEnabled());
  QVERIFY(!bench.item("menuStop").isEnabled());
  QVERIFY(bench.received().empty());
}

void CCDFMenuTest::stopOfTheSubsystemIsShown() {
  CCDFBench bench;
  bench.item("menuStart").trigger();
  StopCCDF();
  QVERIFY(bench.item("menuStart").isEnabled());
  QVERIFY(!bench.item("menuStop").isEnabled());
}

void CCDFMenuTest::restart() {
  CCDFBench bench;
  bench.item("MenuRestart").trigger();
  QCOMPARE(bench.received(), Transcript{"PPACQRT 1"});
  AcquisitionRunning = True16;
  bench.item("MenuRestart").trigger();
  QCOMPARE(bench.received(), Transcript{"PPACQRT 1"});
}

void CCDFMenuTest::secondProfileIsCheckedOncePerClick() {
  CCDFBench bench;
  bench.show();
  QAction& item = bench.item("menuSecondProfile");
  QMenu& menu = *bench.window.menuBar()->actions()[1]->menu();
  for (const bool checked : {true, false, true}) {
    menu.popup(bench.window.mapToGlobal(QPoint(40, 40)));
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(&item).center());
    QCOMPARE(item.isChecked(), checked);
    QCOMPARE(bench.window.secondCurveIsShown(), checked);
  }
  bench.key(Qt::Key_F7);
  QVERIFY(!item.isChecked());
  QVERIFY(bench.received().empty());
}

void CCDFMenuTest::cursorOnAndOff() {
  CCDFBench bench;
  bench.show();
  bench.item("menuOn").trigger();
  QCOMPARE(bench.received(), (Transcript{"TTMKS 1,ON", "TTMKRO 1"}));
  QCOMPARE(disabledItems(bench), QStringList({"menuStop", "menuOn"}));
  QVERIFY(bench.part("FrameCursor").isVisible());
  QCOMPARE(bench.text("lblCursorPower"), "-15dBm");
  QCOMPARE(bench.text("lblCursorPercentage"), "12.5%");
  bench.received().clear();
  bench.item("menuOFF").trigger();
  QCOMPARE(bench.received(), Transcript{"TTMKS 1,OFF"});
  QCOMPARE(disabledItems(bench), QStringList({"menuStop", "menuOFF", "menuSetCursorPosition"}));
  QVERIFY(!bench.part("FrameCursor").isVisible());
}

void CCDFMenuTest::cursorWhileRunning() {
  CCDFBench bench;
  bench.show();
  bench.item("menuStart").trigger();
  bench.item("menuOn").trigger();
  QVERIFY(bench.part("FrameCursor").isVisible());
  QCOMPARE(disabledItems(bench), QStringList({"menuStart", "menuOn"}));
  QVERIFY(bench.received().empty());
  bench.item("menuOFF").trigger();
  QVERIFY(!bench.part("FrameCursor").isVisible());
  QVERIFY(!bench.item("menuOFF").isEnabled());
  QVERIFY(!bench.item("menuSetCursorPosition").isEnabled());
  QVERIFY(bench.item("menuOn").isEnabled());
  QVERIFY(bench.received().empty());
}

void CCDFMenuTest::cursorPosition() {
  CCDFBench bench;
  bench.showWithCursor();
  bench.item("menuSetCursorPosition").trigger();
  const AskedText& asked = bench.world.dialogs.inputs.at(0);
  QCOMPARE(asked.prompt, "Enter the required Posistion of the Cursor");
  QCOMPARE(asked.title, "Setting the cursor Position ");
  QCOMPARE(asked.defaultText, "-20.1");
  QVERIFY(bench.received().empty());
  bench.world.dialogs.textAnswers = {"-12.25"};
  bench.item("menuSetCursorPosition").trigger();
  QCOMPARE(bench.received(), (Transcript{"TTMKPOS 1,-12.25", "TTMKRO 1"}));
  QCOMPARE(bench.text("lblCursorPower"), "-15dBm");
}

void CCDFMenuTest::sources_data() {
  QTest::addColumn<QByteArray>("item");
  QTest::addColumn<QString>("word");
  QTest::addColumn<QString>("before");
  QTest::newRow("gate") << QByteArray("menuMeasSourceGate") << "GATE"
                        << "CHANNEL";
  QTest::newRow("marker") << QByteArray("menuMeasSourceActiveMarker") << "MARKER"
                          << "GATE";
  QTest::newRow("channel") << QByteArray("menuMeasSourceChannel") << "CHANNEL"
                           << "MARKER";
}

void CCDFMenuTest::sources() {
  QFETCH(QByteArray, item);
  QFETCH(QString, word);
  QFETCH(QString, before);
  CCDFBench bench;
  obeySource(bench);
  bench.world.meter.replies["TTSRC? 1"] = "TTSRC 1," + before.toStdString();
  bench.item(item).trigger();
  QCOMPARE(bench.received(), (Transcript{"TTSRC? 1", "TTSRC 1," + word.toStdString(), "TTSRC? 1"}));
  QCOMPARE(bench.text("lblMeasSource"), "SOURCE:" + word);
  QCOMPARE(bench.world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(bench.world.dialogs.messages[0].text, "The measurement source is changed");
  QCOMPARE(bench.world.dialogs.messages[0].title, "Changing Measurement Source");
}

void CCDFMenuTest::faultOfAHandlerIsReported() {
  CCDFBench bench;
  bench.showWithCursor();
  bench.world.dialogs.textAnswers = {"1E300"};
  bench.item("menuSetCursorPosition").trigger();
  QCOMPARE(bench.world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(bench.world.dialogs.messages[0].title, "Pelmora");
  QVERIFY(bench.received().empty());
}

void CCDFMenuTest::closingEndsTheProgram_data() {
  QTest::addColumn<bool>("serial");
  QTest::addColumn<bool>("running");
  QTest::addColumn<int>("closes");
  QTest::newRow("stopped") << false << false << 1;
  QTest::newRow("running") << false << true << 1;
  QTest::newRow("over the serial line") << true << false << 0;
}

void CCDFMenuTest::closingEndsTheProgram() {
  QFETCH(bool, serial);
  QFETCH(bool, running);
  QFETCH(int, closes);
  CCDFBench bench;
  if (serial) bench.world.useSerial();
  bench.show();
  if (running) bench.item("menuStart").trigger();
  QCOMPARE(bench.world.gpib.timesCalled("ibonl 7 0"), 0);
  QCOMPARE(statusAfterClose(bench), ExitingEnd::statusOf(closes));
}

QTEST_MAIN(CCDFMenuTest)
#include "CCDFMenuTest.moc"
