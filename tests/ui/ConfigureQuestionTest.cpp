#include <QLabel>
#include <QPushButton>

#include "WindowTest.h"
#include "ui/ConfigureQuestion.h"

using namespace pulsemod;
using namespace pulsemod::test;

class ConfigureQuestionTest : public QObject {
  Q_OBJECT

  static StartChoice ask(ConfigureQuestion& question, std::function<void(QDialog&)> act) {
    whenModalIsShown<QDialog>("frmConfigureQuestion", std::move(act));
    return question.ask();
  }

 private slots:
  void texts();
  void answers_data();
  void answers();
  void enterTakesTheDefault();
  void closingIsExit();
  void nothingFitsTooTightly();
};

void ConfigureQuestionTest::texts() {
  ConfigureQuestion question;
  ask(question, [](QDialog& dialog) {
    QCOMPARE(dialog.windowTitle(), "Pelmora PulseMod");
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.findChild<QLabel*>("Label1")->text(),
             "Do you wish to load settings from the power meter?");
    QCOMPARE(dialog.findChild<QLabel*>("Label2")->text(),
             "Please be sure you have the power meter connected to the PC");
    QCOMPARE(dialog.findChildren<QPushButton*>().size(), 6);
    dialog.close();
  });
}

void ConfigureQuestionTest::answers_data() {
  QTest::addColumn<QString>("caption");
  QTest::addColumn<int>("code");
  QTest::newRow("cmdConfig") << "Configure Power Meter" << 0;
  QTest::newRow("cmdLoadPM") << "Load from Power Meter" << 1;
  QTest::newRow("cmdCCDF") << "CCDF Mode" << 2;
  QTest::newRow("Command1") << "Exit Program" << 3;
  QTest::newRow("cmdOpenConfig") << "Open comms options" << 4;
  QTest::newRow("cmdjuststart") << "Just Start Program" << 5;
}

void ConfigureQuestionTest::answers() {
  QFETCH(QString, caption);
  QFETCH(int, code);
  ConfigureQuestion question;
  const StartChoice choice = ask(question, [caption](QDialog& dialog) {
    auto* button = dialog.findChild<QPushButton*>(QTest::currentDataTag());
    QCOMPARE(button->text(), caption);
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
  });
  QCOMPARE(static_cast<int>(choice), code);
}

void ConfigureQuestionTest::enterTakesTheDefault() {
  ConfigureQuestion question;
  const auto pressEnter = [](QDialog& dialog) {
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
  };
  QCOMPARE(ask(question, pressEnter), StartChoice::loadFromMeter);
  ask(question, [](QDialog& dialog) { dialog.findChild<QPushButton*>("cmdOpenConfig")->click(); });
  QCOMPARE(ask(question, pressEnter), StartChoice::loadFromMeter);
}

void ConfigureQuestionTest::closingIsExit() {
  ConfigureQuestion question;
  // An answer from before must not linger.
  ask(question, [](QDialog& dialog) { dialog.findChild<QPushButton*>("cmdCCDF")->click(); });
  QCOMPARE(ask(question, [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }),
           StartChoice::exitProgram);
  ask(question, [](QDialog& dialog) { dialog.findChild<QPushButton*>("cmdCCDF")->click(); });
  QCOMPARE(ask(question, [](QDialog& dialog) { dialog.close(); }), StartChoice::exitProgram);
}

void ConfigureQuestionTest::nothingFitsTooTightly() {
  ConfigureQuestion question;
  ask(question, [](QDialog& dialog) {
    for (const auto* button : dialog.findChildren<QPushButton*>()) {
      QVERIFY(button->width() >= button->sizeHint().width());
      QVERIFY(button->height() >= 2 * button->fontMetrics().height());
      QVERIFY(dialog.rect().contains(button->geometry()));
    }
    for (const auto* label : dialog.findChildren<QLabel*>()) {
      QVERIFY(label->width() >= label->sizeHint().width());
    }
    dialog.close();
  });
}

QTEST_MAIN(ConfigureQuestionTest)
#include "ConfigureQuestionTest.moc"
