#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>

#include "WindowTest.h"
#include "link/CommsSettings.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"
#include "ui/Windows.h"

using namespace pulsemod;
using namespace pulsemod::test;

class WindowsTest : public QObject {
  Q_OBJECT

  static QStringList builtWindows() {
    QStringList names;
    for (const char* name :
         {"frmMain", "frmCCDF", "frmComms", "frmConfigureQuestion", "frmPleaseWait"}) {
      if (windowNamed(name) != nullptr) names << name;
    }
    return names;
  }

 private slots:
  void buildsOnlyWhatIsShown();
  void mainWindowIsTheView();
  void titles();
  void commsFromTheMainMenu();
  void startUpToTheMainWindow();
  void ccdfWindowStandsAlone();
  void startUpToTheCCDFWindow();
};

void WindowsTest::buildsOnlyWhatIsShown() {
  FakeWorld world;
  Windows windows([](int) { return std::string(); });
  QCOMPARE(builtWindows(), QStringList());
  whenModalIsShown<QDialog>("frmConfigureQuestion", [](QDialog& dialog) { dialog.reject(); });
  QCOMPARE(windows.askHowToBegin(), StartChoice::exitProgram);
  QCOMPARE(builtWindows(), QStringList{"frmConfigureQuestion"});
  const QWidget* question = windowNamed("frmConfigureQuestion");
  whenModalIsShown<QDialog>("frmConfigureQuestion", [](QDialog& dialog) { dialog.reject(); });
  windows.askHowToBegin();
  QCOMPARE(windowNamed("frmConfigureQuestion"), question);
  windows.pleaseWait().show("Please Wait... Going to PulseMod...");
  QCOMPARE(builtWindows(), (QStringList{"frmConfigureQuestion", "frmPleaseWait"}));
}

void WindowsTest::mainWindowIsTheView() {
  FakeWorld world;
  Windows windows([](int) { return std::string(); });
  windows.showMainWindow({});
  QVERIFY(windowNamed("frmMain")->isVisible());
  profileView().setGraphLabel(GraphLabel::capture, "7ms");
  QCOMPARE(windowNamed("frmMain")->findChild<QLabel*>("lblCapture")->text(), "7ms");
}

void WindowsTest::titles() {
  FakeWorld world;
  Windows windows([](int) { return std::string(); });
  windows.showMainWindow({});
  QCOMPARE(windowNamed("frmMain")->windowTitle(), "Pelmora PulseMod");
  windows.showMainWindow(versionCaption());
  QVERIFY(windowNamed("frmMain")->windowTitle().startsWith("Pelmora v"));
  QVERIFY(QGuiApplication::applicationDisplayName() == QCoreApplication::applicationName());
}

void WindowsTest::commsFromTheMainMenu() {
  FakeWorld world;
  Windows windows([](int) { return std::string(); });
  // Before there is a main window, and then as its child.
  whenModalIsShown<QDialog>("frmComms", [](QDialog& dialog) {
    QVERIFY(dialog.parentWidget() == nullptr);
    dialog.reject();
  });
  windows.showCommsOptions();
  windows.showMainWindow({});
  QWidget* main = windowNamed("frmMain");
  bool wasShown = false;
  for (int i = 0; i < 2; ++i) {
    whenModalIsShown<QDialog>("frmComms", [&](QDialog& dialog) {
      wasShown = true;
      QCOMPARE(dialog.parentWidget(), main);
      QCOMPARE(dialog.windowTitle(), "GPIB/RS232 Comms");
      QVERIFY(dialog.isWindow());
      dialog.findChild<QLineEdit*>("txtGPIBAddress")->setText("8");
      dialog.findChild<QPushButton*>("cmdSave")->click();
    });
    main->findChild<QAction*>("menuComs")->trigger();
  }
  QVERIFY(wasShown);
  QCOMPARE(EditedComms.gpibAddress, std::int16_t{8});
  QCOMPARE(LinkSettings.gpibAddress, std::int16_t{13});
}

void WindowsTest::startUpToTheMainWindow() {
  FakeWorld world;
  world.meter.replies["*IDN?"] = "Pelmora,QX7205A,1,1.0";
  Windows windows([](int) { return std::string(); });
  // The store is empty, so the options come first, then the question twice.
  whenModalIsShown<QDialog>("frmComms", [](QDialog& dialog) {
    dialog.findChild<QPushButton*>("cmdSave")->click();
    whenModalIsShown<QDialog>("frmConfigureQuestion", [](QDialog& question) {
      question.findChild<QPushButton*>("cmdOpenConfig")->click();
      whenModalIsShown<QDialog>("frmComms", [](QDialog& again) {
        again.close();
        whenModalIsShown<QDialog>("frmConfigureQuestion", [](QDialog& last) {
          last.findChild<QPushButton*>("cmdjuststart")->click();
        });
      });
    });
  });
  StartUp(windows);
  QVERIFY(windowNamed("frmMain")->isVisible());
  QCOMPARE(windowNamed("frmMain")->windowTitle(), "Pelmora PulseMod");
  QCOMPARE(world.meter.received, (Transcript{"*CLS; *ESE 56; *OPC?", "*IDN?"}));
}

/// The main window is there, since the configuration shows its values in it, and stays hidden.
void WindowsTest::ccdfWindowStandsAlone() {
  FakeWorld world;
  Windows windows([](int) { return std::string(); });
  windows.prepareCCDFWindow();
  QCOMPARE(builtWindows(), (QStringList{"frmMain", "frmCCDF"}));
  const QWidget* ccdf = windowNamed("frmCCDF");
  ccdfView().setSourceLabel("SOURCE:MARKER");
  QCOMPARE(ccdf->findChild<QLabel*>("lblMeasSource")->text(), "SOURCE:MARKER");
  profileView().setGraphLabel(GraphLabel::capture, "7ms");
  QCOMPARE(windowNamed("frmMain")->findChild<QLabel*>("lblCapture")->text(), "7ms");
  QVERIFY(!ccdf->isVisible());
  windows.showCCDFWindow("Pelmora v9.9");
  QVERIFY(ccdf->isVisible());
  QCOMPARE(ccdf->windowTitle(), "Pelmora v9.9");
  QVERIFY(!ccdf->isModal());
  QVERIFY(!windowNamed("frmMain")->isVisible());
  QCOMPARE(windowNamed("frmMain")->windowTitle(), "Pelmora PulseMod");
  QVERIFY(world.meter.received.empty());
}

void WindowsTest::startUpToTheCCDFWindow() {
  FakeWorld world;
  world.meter.replies = {{"*IDN?", "Pelmora,QX7205A,1,1.0"}, {"TTFRO 1", "TTFRO 1,200,50.5"},
                         {"TTPSP? 1", "TTPSP 1,0"},          {"TTPST? 1", "TTPST 1,-30"},
                         {"TTMKS? 1", "TTMKS 1,ON"},         {"TTMKRO 1", "TTMKRO 1,12.5,-15"},
                         {"TTSRC? 1", "TTSRC 1,GATE"}};
  Windows windows([](int) { return std::string(); });
  whenModalIsShown<QDialog>("frmComms", [](QDialog& dialog) {
    dialog.findChild<QPushButton*>("cmdSave")->click();
    whenModalIsShown<QDialog>("frmConfigureQuestion", [](QDialog& question) {
      question.findChild<QPushButton*>("cmdCCDF")->click();
    });
  });
  // The loop opens stopped, and no event ever comes.
  QVERIFY_THROWS_EXCEPTION(WaitsForEver, StartUp(windows));
  QCOMPARE(world.meter.received, ccdfTranscript(true));
  const QWidget* ccdf = windowNamed("frmCCDF");
  QVERIFY(ccdf->isVisible());
  QVERIFY(!windowNamed("frmMain")->isVisible());
  QCOMPARE(ccdf->windowTitle(), QString::fromStdString(versionCaption()));
  QCOMPARE(ccdf->findChild<QLabel*>("lblStartPower")->text(), "-30dBm");
  QCOMPARE(ccdf->findChild<QLabel*>("lblStopPower")->text(), "0dBm");
  QCOMPARE(ccdf->findChild<QLabel*>("lblMeasSource")->text(), "SOURCE:GATE");
  QVERIFY(ccdf->findChild<QWidget*>("FrameCursor")->isVisible());
  QCOMPARE(ccdf->findChild<QLabel*>("lblCursorPower")->text(), "-15dBm");
  QVERIFY(ccdf->findChild<QAction*>("menuStart")->isEnabled());
  QVERIFY(!ccdf->findChild<QAction*>("menuOn")->isEnabled());
}

QTEST_MAIN(WindowsTest)
#include "WindowsTest.moc"
