#include <QAccessible>
#include <QCheckBox>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QUrl>

#include "PropertiesBench.h"
#include "startup/MeterScript.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

const char* const sentenceOfChannel1 =
    "Channel is the current active channel (1) on the power meter. Press 'Load from Power meter' "
    "button to change.";

QChar mnemonicOf(QString caption) {
  caption.replace("&&", " ");
  const auto at = caption.indexOf('&');
  return at < 0 ? QChar() : caption.at(at + 1).toLower();
}

/// All gates repeated, so that each control is shown.
void showEverything() {
  Settings.RepeatEnabled = True16;
  Settings.RepeatCount = 8;
}

/// What a user can work: not the parts that the toolkit builds its own widgets of.
QList<QWidget*> controlsOf(QWidget& part) {
  QList<QWidget*> controls;
  for (QWidget* widget : part.findChildren<QWidget*>()) {
    if (widget->focusPolicy() == Qt::NoFocus || widget->inherits("QTabWidget") ||
        widget->inherits("QTabBar") || widget->inherits("QToolButton")) {
      continue;
    }
    if (!widget->objectName().startsWith("qt_")) controls << widget;
  }
  return controls;
}

/// Where the Tab key goes from `first` until it comes round.
QStringList tabStops(PropertiesBench& bench, const QString& first) {
  bench.focus(first);
  QStringList stops;
  while (stops.size() < 100) {
    const QString name = QApplication::focusWidget()->objectName();
    if (name == first && !stops.isEmpty()) break;
    stops << name;
    bench.key(Qt::Key_Tab);
  }
  return stops;
}

}  // namespace

class PropertiesWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void pagesAndCaptions();
  void namesOfTheControls();
  void fitsTheSmallestScreen();
  void nothingIsCutOff();
  void tabOrderIsReadingOrder();
  void tabComesToTheTickedOption();
  void arrowsMoveInAGroup();
  void mnemonicsAreUnique();
  void everyControlHasASpokenName();
  void channelSentence();
  void channelSentenceFollowsALoad();
  void isModelessAndClosingHides();
  void escapeHides();
  void openingAgainShowsTheModel();
  void settingsFiles();
  void droppedFileIsLoaded();
};

void PropertiesWindowTest::pagesAndCaptions() {
  PropertiesBench bench;
  bench.present();
  QCOMPARE(bench.window.objectName(), "frmProperties");
  QCOMPARE(bench.window.windowTitle(), "Properties");
  QStringList pages;
  for (int page = 0; page < bench.tabs().count(); ++page) pages << bench.tabs().tabText(page);
  QCOMPARE(pages, QStringList({"&Channel", "&Gates", "&Markers", "M&easurement", "&Display"}));
  const auto captions = [&bench](const char* name, int count) {
    QStringList all;
    for (int i = 0; i < count; ++i) all << bench.button(QString("%1_%2").arg(name).arg(i)).text();
    return all;
  };
  QCOMPARE(captions("optChannel", 3),
           QStringList({"Channel &1", "Channel &2", "&Both channels (1&&2)"}));
  QCOMPARE(captions("optInputConfig", 6),
           QStringList({"Input A", "Input B", "A-B, difference of the inputs",
                        "B-A, difference of the inputs", "A/B, ratio of the inputs",
                        "B/A, ratio of the inputs"}));
  QCOMPARE(captions("optDeltaMeas", 2),
           QStringList({"&Average power between active and delta marker (dBm)",
                        "&Power difference between active and delta marker (dB)"}));
  QCOMPARE(captions("optMeasurement", 4),
           QStringList({"&Average power (dBm)", "Average and &peak power (dBm)",
                        "Average and peak power (dBm), c&rest factor (dB)",
                        "Average, m&inimum and maximum power (dBm)"}));
  QCOMPARE(captions("optDisplayPoints", 2), QStringList({"&200 points", "&400 points"}));
  QCOMPARE(bench.button("cmdLoadPM").text(), "&Load from Power meter");
  QCOMPARE(bench.button("cmdSavePM").text(), "&Send to Power meter");
  QCOMPARE(bench.button("cmdSaveFile").text(), "Sa&ve Settings...");
  QCOMPARE(bench.button("cmdLoadFile").text(), "L&oad Settings...");
}

void PropertiesWindowTest::namesOfTheControls() {
  PropertiesBench bench;
  const QList<std::pair<const char*, int>> arrays{
      {"chkEnabled", 8}, {"lblFence", 8},       {"txtGateInfo", 32},    {"optActiveGate", 8},
      {"chkMaker", 5},   {"txtMarker", 5},      {"optActiveMarker", 4}, {"optDeltaMeas", 2},
      {"optChannel", 3}, {"optInputConfig", 6}, {"optMeasurement", 4},  {"optDisplayPoints", 2}};
  QStringList expected{"chkAverage",  "scrollAVG",      "chkDisplayGates", "chkRepeat",
                       "cmdMarker",   "cmdLoadPM",      "cmdSavePM",       "cmdSaveFile",
                       "cmdLoadFile", "txtRepeatCount", "txtRepeatOffset"};
  for (const auto& [name, count] : arrays) {
    for (int index = 0; index < count; ++index) {
      expected << QString("%1_%2").arg(name).arg(index);
    }
  }
  QStringList names;
  for (const QWidget* control : controlsOf(bench.window)) names << control->objectName();
  expected.sort();
  names.sort();
  QCOMPARE(names, expected);
  QVERIFY(bench.window.findChild<QTabWidget*>("sstab") != nullptr);
  QVERIFY(bench.window.findChild<QLabel*>("Label5") != nullptr);
}

void PropertiesWindowTest::fitsTheSmallestScreen() {
  PropertiesBench bench;
  showEverything();
  bench.present();
  // Less the frame and title of a window manager.
  const QSize room(1024 - 16, 600 - 48);
  QCOMPARE(bench.window.sizeHint().expandedTo(bench.window.size()).boundedTo(room),
           bench.window.sizeHint().expandedTo(bench.window.size()));
}

void PropertiesWindowTest::nothingIsCutOff() {
  PropertiesBench bench;
  showEverything();
  Settings.Gates[0].StartTime = -0.000999999F;
  bench.present();
  for (QWidget* widget : bench.tabs().findChildren<QWidget*>()) {
    const bool isText = widget->inherits("QLabel") || widget->inherits("QAbstractButton");
    if (widget->isHidden() || !isText || widget->inherits("QToolButton")) continue;
    bench.reveal(*widget);
    const QSize needed = widget->objectName() == "Label5"
                             ? QSize(0, widget->heightForWidth(widget->width()))
                             : widget->sizeHint();
    QVERIFY2(widget->width() >= needed.width(), qPrintable(widget->objectName()));
    QVERIFY2(widget->height() >= needed.height(), qPrintable(widget->objectName()));
    const QRect place(widget->mapTo(&bench.window, QPoint()), widget->size());
    QVERIFY2(bench.window.rect().contains(place), qPrintable(widget->objectName()));
  }
  const QLineEdit& longest = bench.box("txtGateInfo_0");
  QCOMPARE(longest.text(), "-999.999us");
  bench.reveal(bench.part("txtGateInfo_0"));
  // The text with the frame and margins that the toolkit adds to it.
  constexpr int frame = 10;
  QVERIFY(longest.fontMetrics().horizontalAdvance(longest.text()) + frame <= longest.width());
}

void PropertiesWindowTest::tabOrderIsReadingOrder() {
  PropertiesBench bench;
  Settings.Gates[0].Enabled = True16;
  bench.present();
  const QStringList around{"cmdLoadPM", "cmdSavePM", "cmdSaveFile", "cmdLoadFile",
                           "qt_tabwidget_tabbar"};
  QCOMPARE(tabStops(bench, "optChannel_0"),
           QStringList({"optChannel_0", "chkAverage", "scrollAVG", "optInputConfig_0"}) + around);
  QStringList rows;
  for (int gate = 0; gate < 4; ++gate) {
    const auto time = [gate](int place) { return QString("txtGateInfo_%1").arg(4 * gate + place); };
    rows << QString("chkEnabled_%1").arg(gate) << time(0) << time(1)
         << QString("lblFence_%1").arg(gate) << time(2) << time(3);
    if (gate == 0) rows << "optActiveGate_0";
  }
  QCOMPARE(tabStops(bench, "chkDisplayGates"),
           QStringList({"chkDisplayGates", "chkRepeat", "txtRepeatCount", "txtRepeatOffset"}) +
               rows + around);
  QCOMPARE(tabStops(bench, "chkMaker_0"),
           QStringList({"chkMaker_0", "txtMarker_0", "optActiveMarker_0", "chkMaker_1",
                        "txtMarker_1", "chkMaker_2", "txtMarker_2", "chkMaker_3", "txtMarker_3",
                        "chkMaker_4", "txtMarker_4", "optDeltaMeas_0", "cmdMarker"}) +
               around);
  QCOMPARE(tabStops(bench, "optMeasurement_0"), QStringList{"optMeasurement_0"} + around);
  QCOMPARE(tabStops(bench, "optDisplayPoints_0"), QStringList{"optDisplayPoints_0"} + around);
}

/// And passes by the others of its group.
void PropertiesWindowTest::tabComesToTheTickedOption() {
  PropertiesBench bench;
  bench.present();
  Settings.Markers[0].IsActive = False16;
  Settings.Markers[1].IsActive = True16;
  bench.window.refresh();
  bench.focus("txtMarker_0");
  QStringList stops;
  for (int i = 0; i < 4; ++i) {
    bench.key(Qt::Key_Tab);
    stops << QApplication::focusWidget()->objectName();
  }
  QCOMPARE(stops, QStringList({"chkMaker_1", "txtMarker_1", "optActiveMarker_1", "chkMaker_2"}));
}

void PropertiesWindowTest::arrowsMoveInAGroup() {
  PropertiesBench bench;
  bench.present();
  bench.focus("optMeasurement_0");
  bench.key(Qt::Key_Down);
  QCOMPARE(bench.received(), Transcript{"PMMEAS 1,2"});
  bench.focus("optActiveMarker_0");
  bench.key(Qt::Key_Down);
  QCOMPARE(bench.received().back(), std::string("MKACTN 1, 2"));
  // The Tab key now comes to the option that was chosen.
  bench.focus("txtMarker_1");
  bench.key(Qt::Key_Tab);
  QCOMPARE(QApplication::focusWidget()->objectName(), "optActiveMarker_1");
}

void PropertiesWindowTest::mnemonicsAreUnique() {
  PropertiesBench bench;
  QStringList common;
  for (int page = 0; page < bench.tabs().count(); ++page) common << bench.tabs().tabText(page);
  for (const char* name : {"cmdLoadPM", "cmdSavePM", "cmdSaveFile", "cmdLoadFile"}) {
    common << bench.button(name).text();
  }
  for (int page = 0; page < bench.tabs().count(); ++page) {
    QStringList captions = common;
    const QWidget* shown = bench.tabs().widget(page);
    for (const auto* button : shown->findChildren<QAbstractButton*>()) captions << button->text();
    for (const auto* label : shown->findChildren<QLabel*>()) {
      if (label->buddy() != nullptr) captions << label->text();
    }
    QSet<QChar> seen;
    for (const QString& caption : captions) {
      const QChar mnemonic = mnemonicOf(caption);
      if (mnemonic.isNull()) continue;
      QVERIFY2(!seen.contains(mnemonic), qPrintable(caption));
      seen << mnemonic;
    }
    QVERIFY(seen.size() >= common.size());
  }
}

void PropertiesWindowTest::everyControlHasASpokenName() {
  PropertiesBench bench;
  showEverything();
  bench.present();
  QSet<QString> names;
  const QList<QWidget*> controls = controlsOf(bench.window);
  for (QWidget* control : controls) {
    const QString name = QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
    QVERIFY2(!name.isEmpty(), qPrintable(control->objectName()));
    QVERIFY2(!names.contains(name), qPrintable(name));
    names << name;
  }
  QCOMPARE(names.size(), controls.size());
  QCOMPARE(bench.part("txtGateInfo_0").accessibleName(), "Gate 1 start");
  QCOMPARE(bench.part("txtGateInfo_31").accessibleName(), "Gate 8 fence stop");
  QCOMPARE(bench.part("txtMarker_4").accessibleName(), "Delta marker position");
  QCOMPARE(bench.part("optActiveMarker_1").accessibleName(), "Marker 2 is the active marker");
}

void PropertiesWindowTest::channelSentence() {
  PropertiesBench bench;
  bench.present();
  const auto& sentence = bench.part<QLabel>("Label5");
  QCOMPARE(sentence.text(), sentenceOfChannel1);
  QCOMPARE(sentence.textFormat(), Qt::PlainText);
  QVERIFY(sentence.wordWrap());
  // It speaks of the meter, so that a choice in the dialog leaves it alone.
  bench.click("optChannel_2");
  QCOMPARE(sentence.text(), sentenceOfChannel1);
  bench.window.close();
  bench.present();
  QCOMPARE(sentence.text(), QString(sentenceOfChannel1).replace("(1)", "(1&2)"));
  // As it stands, without a mnemonic: a label with a buddy alone has one.
  QCOMPARE(sentence.buddy(), nullptr);
}

void PropertiesWindowTest::channelSentenceFollowsALoad() {
  PropertiesBench bench;
  FakeMeter& meter = bench.world.meter;
  answerConfiguration(meter);
  bench.present();
  // The meter has meanwhile changed to channel 2.
  const std::map<std::string, std::string> channel1 = meter.replies;
  for (const auto& [query, reply] : channel1) {
    std::string other = query;
    const auto digit = other.find(" 1");
    if (digit != std::string::npos) meter.replies[other.replace(digit, 2, " 2")] = reply;
  }
  meter.replies["CHACTIV?"] = "CHACTIV 2";
  bench.click("cmdLoadPM");
  QCOMPARE(bench.part<QLabel>("Label5").text(), QString(sentenceOfChannel1).replace("(1)", "(2)"));
  QCOMPARE(bench.checked("optChannel", 3), QList<int>{1});
}

void PropertiesWindowTest::isModelessAndClosingHides() {
  PropertiesBench bench;
  bench.present();
  QVERIFY(!bench.window.isModal());
  QVERIFY(bench.window.isVisible());
  bench.window.close();
  QVERIFY(!bench.window.isVisible());
  bench.present();
  QVERIFY(bench.window.isVisible());
  QVERIFY(bench.received().empty());
}

void PropertiesWindowTest::escapeHides() {
  PropertiesBench bench;
  bench.present();
  bench.type("txtRepeatCount", "7");
  bench.key(Qt::Key_Escape);
  QVERIFY(!bench.window.isVisible());
  QCOMPARE(Settings.RepeatCount, std::int16_t{3});
  QVERIFY(bench.received().empty());
}

void PropertiesWindowTest::openingAgainShowsTheModel() {
  PropertiesBench bench;
  bench.present();
  bench.type("txtRepeatCount", "7");
  bench.click("optMeasurement_2");
  bench.window.close();
  Settings.MeasurementType = 2;
  Settings.Gates[0].StartTime = 0.00015F;
  Settings.Markers[1].Enabled = True16;
  Settings.Channels[0].AveragingCount = 99;
  bench.present();
  QCOMPARE(bench.text("txtRepeatCount"), "3");
  QCOMPARE(bench.checked("optMeasurement", 4), QList<int>{1});
  QCOMPARE(bench.text("txtGateInfo_0"), "150us");
  QCOMPARE(bench.checked("chkMaker", 5), QList<int>{1});
  QCOMPARE(bench.slider().value(), 99);
  QCOMPARE(bench.button("chkAverage").text(), "Average (99)");
  // On the page where it was left.
  QVERIFY(bench.tabs().currentWidget()->isAncestorOf(&bench.part("optMeasurement_0")));
}

void PropertiesWindowTest::settingsFiles() {
  PropertiesBench bench;
  answerConfiguration(bench.world.meter);
  bench.world.fileDialogs.saveAnswer = "/data/settings.txt";
  bench.world.fileDialogs.openAnswer = "/data/settings.txt";
  bench.present();
  bench.click("cmdSaveFile");
  QVERIFY(bench.world.files.contents["/data/settings.txt"].ends_with("FILE END\r\n"));
  QVERIFY(bench.received().empty());
  Settings.Markers[2].Enabled = True16;
  Settings.RepeatCount = 6;
  bench.window.refresh();
  bench.click("cmdLoadFile");
  QCOMPARE(bench.received(), defaultsTranscript());
  QCOMPARE(bench.checked("chkMaker", 5), QList<int>());
  QCOMPARE(bench.text("txtRepeatCount"), "3");
  QCOMPARE(bench.world.fileDialogs.titles,
           (std::vector<std::string>{"Save Settings", "Load Settings"}));
}

void PropertiesWindowTest::droppedFileIsLoaded() {
  PropertiesBench bench;
  answerConfiguration(bench.world.meter);
  bench.world.fileDialogs.saveAnswer = "/data/settings.txt";
  bench.present();
  bench.click("cmdSaveFile");
  Settings.Markers[2].Enabled = True16;
  bench.window.refresh();
  // Over a box that takes text of its own accord.
  QWidget& box = bench.part("txtRepeatCount");
  bench.reveal(box);
  QMimeData file;
  file.setUrls({QUrl::fromLocalFile("/data/settings.txt")});
  file.setText("/data/settings.txt");
  QVERIFY(!box.acceptDrops());
  QVERIFY(bench.window.acceptDrops());
  // As the window system sends them; the drop is for the window that took the drag.
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &file, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&box, &enter);
  QVERIFY(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &file, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&bench.window, &drop);
  QVERIFY(drop.isAccepted());
  QVERIFY(bench.received().empty());
  QCoreApplication::processEvents();
  QCOMPARE(bench.received(), defaultsTranscript());
  QCOMPARE(bench.checked("chkMaker", 5), QList<int>());
}

QTEST_MAIN(PropertiesWindowTest)
#include "PropertiesWindowTest.moc"
