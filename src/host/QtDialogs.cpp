#include "host/QtDialogs.h"

#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>

#include "host/DialogParent.h"

namespace pulsemod {

namespace {

QMessageBox::Icon boxIcon(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::information:
      return QMessageBox::Information;
    case MessageIcon::exclamation:
      return QMessageBox::Warning;
    case MessageIcon::question:
      return QMessageBox::Question;
    case MessageIcon::none:
      break;
  }
  return QMessageBox::NoIcon;
}

/// A unit in angle brackets that the user typed must not be taken for markup.
void showAsPlainText(const QDialog& dialog) {
  for (QLabel* label : dialog.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
}

/// A text may quote whatever was typed or received; the box has to stay on the screen.
QString shortened(const QString& text) {
  constexpr int most = 600;
  constexpr int mostLines = 30;
  if (text.size() <= most && text.count(u'\n') < mostLines) return text;
  const QString beginning = text.left(most * 2 / 3).section(u'\n', 0, mostLines * 2 / 3 - 1);
  const QString end = text.right(most / 3).section(u'\n', -mostLines / 3);
  return beginning + QStringLiteral(" ... ") + end;
}

void fill(QMessageBox& box, const std::string& text, const std::string& title, MessageIcon icon) {
  box.setWindowTitle(QString::fromStdString(title));
  box.setIcon(boxIcon(icon));
  box.setTextFormat(Qt::PlainText);
  box.setText(shortened(QString::fromStdString(text)));
}

}  // namespace

void QtDialogs::showMessage(const std::string& text, const std::string& title, MessageIcon icon,
                            const std::string& details) {
  QMessageBox box(dialogParent());
  box.setObjectName("messageBox");
  fill(box, text, title, icon);
  box.setInformativeText(QString::fromStdString(details));
  box.setStandardButtons(QMessageBox::Ok);
  showAsPlainText(box);
  box.exec();
}

bool QtDialogs::askYesNo(const std::string& text, const std::string& title, MessageIcon icon) {
  QMessageBox box(dialogParent());
  box.setObjectName("questionBox");
  fill(box, text, title, icon);
  box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  box.setDefaultButton(QMessageBox::Yes);
  box.setEscapeButton(QMessageBox::No);
  return box.exec() == QMessageBox::Yes;
}

std::string QtDialogs::askText(const std::string& prompt, const std::string& title,
                               const std::string& defaultText) {
  QInputDialog box(dialogParent());
  box.setObjectName("inputBox");
  box.setWindowTitle(QString::fromStdString(title));
  box.setInputMode(QInputDialog::TextInput);
  box.setLabelText(QString::fromStdString(prompt));
  box.setTextValue(QString::fromStdString(defaultText));
  showAsPlainText(box);
  return box.exec() == QDialog::Accepted ? box.textValue().toStdString() : std::string();
}

}  // namespace pulsemod
