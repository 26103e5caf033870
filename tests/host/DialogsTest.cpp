#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>

#include "ModalScript.h"
#include "host/QtDialogs.h"

namespace pulsemod::test {
namespace {

void press(QWidget& widget, Qt::Key key) {
  QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
  QApplication::sendEvent(&widget, &event);
}

QMessageBox::StandardButtons buttonsOf(const QMessageBox& box) { return box.standardButtons(); }

class DialogsTest : public testing::Test {
 protected:
  QtDialogs dialogs;
  ModalScript user;
};

TEST_F(DialogsTest, MessageShowsWhatItWasGiven) {
  user.then<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.objectName(), "messageBox");
    EXPECT_EQ(box.text(), "Could not read\r\n\r\nProgram will exit.");
    EXPECT_EQ(box.windowTitle(), "*IDN? Failure");
    EXPECT_EQ(box.informativeText(), "The port is not there.");
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    EXPECT_EQ(buttonsOf(box), QMessageBox::Ok);
    EXPECT_TRUE(box.isModal());
    box.button(QMessageBox::Ok)->click();
  });
  dialogs.showMessage("Could not read\r\n\r\nProgram will exit.", "*IDN? Failure",
                      MessageIcon::exclamation, "The port is not there.");
}

TEST_F(DialogsTest, EachIconIsShown) {
  const auto expectIcon = [this](MessageIcon icon, QMessageBox::Icon shown) {
    user.then<QMessageBox>([shown](QMessageBox& box) {
      EXPECT_EQ(box.icon(), shown);
      box.accept();
    });
    dialogs.showMessage("text", "title", icon, {});
  };
  expectIcon(MessageIcon::none, QMessageBox::NoIcon);
  expectIcon(MessageIcon::information, QMessageBox::Information);
  expectIcon(MessageIcon::exclamation, QMessageBox::Warning);
  expectIcon(MessageIcon::question, QMessageBox::Question);
}

TEST_F(DialogsTest, BlanksAndEmptyTitlesStay) {
  user.then<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), " Display points and Capture period are Different");
    EXPECT_EQ(box.text(), "the measurement Source is Gate ");
    box.accept();
  });
  dialogs.showMessage("the measurement Source is Gate ",
                      " Display points and Capture period are Different", MessageIcon::none, {});
  user.then<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), "");
    EXPECT_EQ(box.informativeText(), "");
    box.accept();
  });
  dialogs.showMessage("Please edit the Capture Time", "", MessageIcon::information, {});
}

TEST_F(DialogsTest, BoxStaysOnTheScreenWhateverIsQuoted) {
  const QString quoted(5000, u'W');
  const QString lines = QStringLiteral("line\n").repeated(500);
  for (const QString& text : {quoted, lines}) {
    user.then<QMessageBox>([](QMessageBox& box) {
      EXPECT_TRUE(box.text().startsWith("Do not understand format '"));
      EXPECT_TRUE(box.text().contains(" ... "));
      EXPECT_TRUE(box.text().endsWith("'\r\nTry again"));
      EXPECT_LE(box.height(), 600);
      box.accept();
    });
    dialogs.showMessage("Do not understand format '" + text.toStdString() + "'\r\nTry again",
                        "title", MessageIcon::none, {});
  }
  // All of what is not much longer than that.
  const std::string longest(600, 'w');
  user.then<QMessageBox>([&longest](QMessageBox& box) {
    EXPECT_EQ(box.text().toStdString(), longest);
    box.accept();
  });
  dialogs.showMessage(longest, "title", MessageIcon::none, {});
}

TEST_F(DialogsTest, NothingIsTakenForMarkup) {
  user.then<QMessageBox>([](QMessageBox& box) {
    int plainTexts = 0;
    for (const QLabel* label : box.findChildren<QLabel*>()) {
      EXPECT_EQ(label->textFormat(), Qt::PlainText);
      if (label->text().startsWith("<b>")) ++plainTexts;
    }
    EXPECT_EQ(plainTexts, 2);
    box.accept();
  });
  dialogs.showMessage("<b>us</b>", "t", MessageIcon::none, "<b>details</b>");
}

TEST_F(DialogsTest, CarriageReturnAndLineFeedAreOneLineBreak) {
  const auto picture = [this](const std::string& text) {
    QImage image;
    user.then<QMessageBox>([&image](QMessageBox& box) {
      image = box.grab().toImage();
      box.accept();
    });
    dialogs.showMessage(text, "t", MessageIcon::none, {});
    return image;
  };
  const QImage expected = picture("one\n\ntwo");
  EXPECT_EQ(picture("one\r\n\r\ntwo"), expected);
  EXPECT_NE(picture("one\ntwo"), expected);
}

TEST_F(DialogsTest, EscapeClosesAMessage) {
  user.then<QMessageBox>([](QMessageBox& box) { press(box, Qt::Key_Escape); });
  dialogs.showMessage("text", "title", MessageIcon::none, {});
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(DialogsTest, QuestionHasYesAndNo) {
  user.then<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.objectName(), "questionBox");
    EXPECT_EQ(box.text(), "Change to saved\r\nPower?");
    EXPECT_EQ(box.windowTitle(), "Power is different");
    EXPECT_EQ(box.icon(), QMessageBox::Question);
    EXPECT_EQ(buttonsOf(box), QMessageBox::Yes | QMessageBox::No);
    box.button(QMessageBox::Yes)->click();
  });
  EXPECT_TRUE(
      dialogs.askYesNo("Change to saved\r\nPower?", "Power is different", MessageIcon::question));
}

TEST_F(DialogsTest, EveryOtherEndOfAQuestionIsNo) {
  const auto answer = [this](const std::function<void(QMessageBox&)>& act) {
    user.then<QMessageBox>(act);
    return dialogs.askYesNo("text", "title", MessageIcon::question);
  };
  EXPECT_FALSE(answer([](QMessageBox& box) { box.button(QMessageBox::No)->click(); }));
  EXPECT_FALSE(answer([](QMessageBox& box) { press(box, Qt::Key_Escape); }));
  EXPECT_FALSE(answer([](QMessageBox& box) { box.close(); }));
}

TEST_F(DialogsTest, InputBoxOffersTheDefaultSelected) {
  user.then<QInputDialog>([](QInputDialog& box) {
    EXPECT_EQ(box.objectName(), "inputBox");
    EXPECT_EQ(box.windowTitle(), "Setting the cursor Position ");
    EXPECT_EQ(box.labelText(), "Enter <the> Posistion");
    auto* edit = box.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->text(), "-10.5");
    EXPECT_EQ(edit->selectedText(), "-10.5");
    for (const QLabel* label : box.findChildren<QLabel*>()) {
      EXPECT_EQ(label->textFormat(), Qt::PlainText);
    }
    edit->setText(QString::fromUtf8("5 \xc2\xb5s "));
    box.accept();
  });
  EXPECT_EQ(dialogs.askText("Enter <the> Posistion", "Setting the cursor Position ", "-10.5"),
            "5 \xc2\xb5s ");
}

TEST_F(DialogsTest, InputBoxKeepsAnUneditedDefault) {
  user.then<QInputDialog>([](QInputDialog& box) { press(box, Qt::Key_Return); });
  EXPECT_EQ(dialogs.askText("prompt", "title", "4.000 us"), "4.000 us");
}

TEST_F(DialogsTest, ACancelledOrClearedInputBoxIsEmpty) {
  const auto answer = [this](const std::function<void(QInputDialog&)>& act) {
    user.then<QInputDialog>(act);
    return dialogs.askText("prompt", "title", "default");
  };
  EXPECT_EQ(answer([](QInputDialog& box) { press(box, Qt::Key_Escape); }), "");
  EXPECT_EQ(answer([](QInputDialog& box) { box.close(); }), "");
  EXPECT_EQ(answer([](QInputDialog& box) {
              box.setTextValue("");
              box.accept();
            }),
            "");
}

TEST_F(DialogsTest, ABoxBelongsToTheTopmostWindow) {
  QWidget window;
  window.show();
  window.activateWindow();
  QApplication::processEvents();
  ASSERT_EQ(QApplication::activeWindow(), &window);
  user.then<QMessageBox>([&window](QMessageBox& box) {
    EXPECT_EQ(box.parentWidget(), &window);
    box.accept();
  });
  dialogs.showMessage("text", "title", MessageIcon::none, {});

  user.then<QInputDialog>([this](QInputDialog& below) {
    user.then<QMessageBox>([&below](QMessageBox& box) {
      EXPECT_EQ(box.parentWidget(), &below);
      box.accept();
    });
    dialogs.showMessage("text", "title", MessageIcon::none, {});
    below.reject();
  });
  dialogs.askText("prompt", "title", "");
}

TEST_F(DialogsTest, AMessageWaitsAfterTheLastWindowWasClosed) {
  QWidget window;
  window.show();
  window.close();
  QApplication::processEvents();
  bool answered = false;
  user.then<QMessageBox>([&answered](QMessageBox& box) {
    QTimer::singleShot(100, &box, [&answered, &box] {
      answered = true;
      box.accept();
    });
  });
  dialogs.showMessage("text", "title", MessageIcon::none, {});
  EXPECT_TRUE(answered);
}

}  // namespace
}  // namespace pulsemod::test
