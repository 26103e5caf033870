#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "WindowTest.h"
#include "link/CommsSettings.h"
#include "support/FakeWorld.h"
#include "ui/CommsDialog.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

const ShownBox saveQuestion{
    "Do you wish to save the settings?", "Settings have been changed", MessageIcon::question, {}};
const ShownBox illegalAddress{
    "Illegal GPIB Address, only 1 to 30 allowed.", "GPIB Address", MessageIcon::information, {}};

/// The dialog on the screen, with what the tests do to it.
struct Comms {
  QDialog& dialog;

  QRadioButton* option(const QString& name) const { return dialog.findChild<QRadioButton*>(name); }
  QLineEdit* address() const { return dialog.findChild<QLineEdit*>("txtGPIBAddress"); }
  void save() const { dialog.findChild<QPushButton*>("cmdSave")->click(); }
  void type(const QString& text) const {
    address()->setFocus();
    address()->selectAll();
    QTest::keyClick(address(), Qt::Key_Backspace);
    QTest::keyClicks(address(), text);
  }
  QStringList ticked() const {
    QStringList names;
    for (const auto* button : dialog.findChildren<QRadioButton*>()) {
      if (button->isChecked()) names << button->objectName();
    }
    return names;
  }
};

std::string deviceOf(int port) { return port <= 2 ? "/dev/ttyS" + std::to_string(port - 1) : ""; }

}  // namespace

class CommsDialogTest : public QObject {
  Q_OBJECT

  /// Opens the dialog and runs `act` on it. A dialog that `act` leaves open is closed with No.
  static void edit(const std::function<void(const Comms&)>& act) {
    CommsDialog dialog(deviceOf);
    edit(dialog, act);
  }
  static void edit(CommsDialog& dialog, const std::function<void(const Comms&)>& act) {
    whenModalIsShown<QDialog>("frmComms", [&act](QDialog& shown) {
      act(Comms{shown});
      if (shown.isVisible()) shown.done(QDialog::Rejected);
    });
    dialog.edit();
  }

 private slots:
  void captions();
  void keyboard();
  void showsTheValues();
  void loadingIsNoChange();
  void clicksTakeEffectAtOnce();
  void clickOnTheTickedOptionIsAChange();
  void arrowKeysAreClicks();
  void saveWritesAndAsksNothing();
  void closingAfterAChangeAsks();
  void noKeepsTheValues();
  void yesThatFailsKeepsItOpen();
  void badAddresses_data();
  void badAddresses();
  void unknownValuesSelectNothingAndAreKept();
  void loadsAnewEachTime();
  void portsTellTheirDevices();
};

void CommsDialogTest::captions() {
  FakeWorld world;
  edit([](const Comms& comms) {
    QCOMPARE(comms.dialog.windowTitle(), "GPIB/RS232 Comms");
    QVERIFY(comms.dialog.isModal());
    QCOMPARE(comms.option("optComms_0")->text(), "GPIB");
    QCOMPARE(comms.option("optComms_1")->text(), "RS232");
    const QStringList bauds{"1200", "2400", "4800", "9600", "19200", "38400", "57600"};
    for (int i = 0; i < 7; ++i)
      QCOMPARE(comms.option(QString("optBuad_%1").arg(i))->text(), bauds[i]);
    for (int i = 0; i < 10; ++i) {
      QCOMPARE(comms.option(QString("optCommPort_%1").arg(i))->text(),
               QString("COM%1:").arg(i + 1));
    }
    QCOMPARE(comms.dialog.findChildren<QRadioButton*>().size(), 19);
    QCOMPARE(comms.dialog.findChild<QPushButton*>("cmdSave")->text(), "Save");
    auto* gpib = comms.dialog.findChild<QGroupBox*>("frameGPIB");
    QVERIFY(gpib->isAncestorOf(comms.address()));
    QCOMPARE(gpib->findChild<QLabel*>()->text(), "Address");
    QCOMPARE(gpib->findChild<QLabel*>()->buddy(), comms.address());
    auto* rs232 = comms.dialog.findChild<QGroupBox*>("frameRS232");
    QCOMPARE(rs232->findChildren<QGroupBox*>().size(), 2);
    QCOMPARE(qobject_cast<QGroupBox*>(comms.option("optBuad_0")->parentWidget())->title(),
             "Baud Rate");
    QCOMPARE(qobject_cast<QGroupBox*>(comms.option("optCommPort_9")->parentWidget())->title(),
             "Comm Port");
    QVERIFY(rs232->isAncestorOf(comms.option("optCommPort_9")));
  });
}

void CommsDialogTest::keyboard() {
  FakeWorld world;
  EditedComms.rs232Port = 3;
  edit([](const Comms& comms) {
    QStringList stops;
    comms.option("optComms_0")->setFocus();
    for (int i = 0; i < 5; ++i) {
      stops << QApplication::focusWidget()->objectName();
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(stops, (QStringList{"optComms_0", "txtGPIBAddress", "optBuad_3", "optCommPort_2",
                                 "cmdSave"}));
    QCOMPARE(QApplication::focusWidget()->objectName(), "optComms_0");
    QVERIFY(comms.dialog.findChild<QPushButton*>("cmdSave")->isDefault());
  });
}

void CommsDialogTest::showsTheValues() {
  FakeWorld world;
  EditedComms = {commsTypeRS232, 22, 10, 57600};
  edit([](const Comms& comms) {
    QCOMPARE(comms.address()->text(), "22");
    QCOMPARE(comms.ticked(), (QStringList{"optComms_1", "optBuad_6", "optCommPort_9"}));
  });
}

void CommsDialogTest::loadingIsNoChange() {
  FakeWorld world;
  world.dialogs.yesNoAnswers = {true};
  edit([](const Comms& comms) {
    QTest::keyClick(&comms.dialog, Qt::Key_Escape);
    QVERIFY(!comms.dialog.isVisible());
  });
  QVERIFY(world.dialogs.questions.empty());
  QVERIFY(world.store.written.empty());
}

void CommsDialogTest::clicksTakeEffectAtOnce() {
  FakeWorld world;
  edit([](const Comms& comms) {
    comms.option("optComms_1")->click();
    QCOMPARE(EditedComms.commsType, commsTypeRS232);
    comms.option("optBuad_0")->click();
    QCOMPARE(EditedComms.rs232Baud, 1200);
    comms.option("optCommPort_6")->click();
    QCOMPARE(EditedComms.rs232Port, 7);
    comms.type("30");
    QCOMPARE(EditedComms.gpibAddress, std::int16_t{30});
    comms.address()->setText("4");
    QCOMPARE(EditedComms.gpibAddress, std::int16_t{4});
    comms.option("optComms_0")->click();
    QCOMPARE(EditedComms.commsType, commsTypeGPIB);
    QCOMPARE(comms.ticked(), (QStringList{"optComms_0", "optBuad_0", "optCommPort_6"}));
  });
}

void CommsDialogTest::clickOnTheTickedOptionIsAChange() {
  FakeWorld world;
  edit([](const Comms& comms) {
    comms.option("optBuad_3")->click();
    comms.dialog.close();
  });
  QCOMPARE(world.dialogs.questions.size(), std::size_t{1});
}

void CommsDialogTest::arrowKeysAreClicks() {
  FakeWorld world;
  edit([](const Comms& comms) {
    comms.option("optCommPort_0")->setFocus();
    QTest::keyClick(comms.option("optCommPort_0"), Qt::Key_Down);
    QVERIFY(comms.option("optCommPort_1")->isChecked());
    QCOMPARE(EditedComms.rs232Port, 2);
    comms.dialog.close();
  });
  QCOMPARE(world.dialogs.questions.size(), std::size_t{1});
}

void CommsDialogTest::saveWritesAndAsksNothing() {
  FakeWorld world;
  edit([](const Comms& comms) {
    comms.option("optBuad_6")->click();
    comms.save();
    QVERIFY(!comms.dialog.isVisible());
  });
  QVERIFY(world.dialogs.questions.empty());
  QCOMPARE(world.store.written, (std::vector<std::string>{"CommsType=2", "GPIBAddress=13",
                                                          "RS232Baud=57600", "RS232Port=1"}));
  QCOMPARE(world.store.flushes, 1);
}

void CommsDialogTest::closingAfterAChangeAsks() {
  FakeWorld world;
  world.dialogs.yesNoAnswers = {true};
  edit([](const Comms& comms) {
    comms.type("7");
    comms.dialog.close();
    QVERIFY(!comms.dialog.isVisible());
  });
  QCOMPARE(world.dialogs.questions.size(), std::size_t{1});
  QVERIFY(world.dialogs.questions[0] == saveQuestion);
  QCOMPARE((world.store.values[{"Comms", "GPIBAddress"}]), std::string("7"));
}

void CommsDialogTest::noKeepsTheValues() {
  FakeWorld world;
  world.dialogs.yesNoAnswers = {false};
  edit([](const Comms& comms) {
    comms.option("optCommPort_2")->click();
    QTest::keyClick(&comms.dialog, Qt::Key_Escape);
    QVERIFY(!comms.dialog.isVisible());
  });
  QCOMPARE(world.dialogs.questions.size(), std::size_t{1});
  QVERIFY(world.store.written.empty());
  QCOMPARE(EditedComms.rs232Port, 3);
}

void CommsDialogTest::yesThatFailsKeepsItOpen() {
  FakeWorld world;
  world.dialogs.yesNoAnswers = {true, false};
  edit([&world](const Comms& comms) {
    comms.type("31");
    comms.dialog.close();
    QVERIFY(comms.dialog.isVisible());
    QCOMPARE(world.dialogs.messages.size(), std::size_t{1});
    QVERIFY(world.dialogs.messages[0] == illegalAddress);
    // Still unsaved, so the next close asks again.
    comms.dialog.close();
    QVERIFY(!comms.dialog.isVisible());
  });
  QCOMPARE(world.dialogs.questions.size(), std::size_t{2});
  QVERIFY(world.store.written.empty());
}

void CommsDialogTest::badAddresses_data() {
  QTest::addColumn<QString>("text");
  for (const char* text : {"0", "31", "-1", "abc", "", "12abc", "13.5", "99999", "65549"}) {
    QTest::newRow(*text == 0 ? "empty" : text) << QString(text);
  }
}

void CommsDialogTest::badAddresses() {
  QFETCH(QString, text);
  FakeWorld world;
  edit([&](const Comms& comms) {
    comms.type(text);
    comms.save();
    QVERIFY(comms.dialog.isVisible());
    QCOMPARE(comms.address()->text(), text);
  });
  QCOMPARE(world.dialogs.messages.size(), std::size_t{1});
  QVERIFY(world.dialogs.messages[0] == illegalAddress);
  QVERIFY(world.store.written.empty());
}

void CommsDialogTest::unknownValuesSelectNothingAndAreKept() {
  FakeWorld world;
  CommsDialog dialog(deviceOf);
  edit(dialog, [](const Comms& comms) { QCOMPARE(comms.ticked().size(), 3); });
  EditedComms = {3, 13, 11, 115200};
  edit(dialog, [](const Comms& comms) {
    QCOMPARE(comms.ticked(), QStringList());
    comms.save();
    QVERIFY(!comms.dialog.isVisible());
  });
  QCOMPARE(world.store.written, (std::vector<std::string>{"CommsType=3", "GPIBAddress=13",
                                                          "RS232Baud=115200", "RS232Port=11"}));
  EditedComms.rs232Port = 0;
  edit(dialog, [](const Comms& comms) {
    QCOMPARE(comms.ticked(), QStringList());
    comms.save();
  });
  QCOMPARE((world.store.values[{"Comms", "RS232Port"}]), std::string("1"));
}

void CommsDialogTest::loadsAnewEachTime() {
  FakeWorld world;
  CommsDialog dialog(deviceOf);
  edit(dialog, [](const Comms& comms) { comms.type("9"); });
  EditedComms = CommsSettings{};
  edit(dialog, [](const Comms& comms) {
    QCOMPARE(comms.address()->text(), "13");
    comms.dialog.close();
  });
  QVERIFY(world.dialogs.questions.empty());
}

void CommsDialogTest::portsTellTheirDevices() {
  FakeWorld world;
  edit([](const Comms& comms) {
    QCOMPARE(comms.option("optCommPort_0")->toolTip(), "/dev/ttyS0");
    QCOMPARE(comms.option("optCommPort_1")->toolTip(), "/dev/ttyS1");
    for (int i = 2; i < 10; ++i) {
      QCOMPARE(comms.option(QString("optCommPort_%1").arg(i))->toolTip(),
               "no such device on this machine");
    }
  });
}

QTEST_MAIN(CommsDialogTest)
#include "CommsDialogTest.moc"
