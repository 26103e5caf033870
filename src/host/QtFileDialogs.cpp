#include "host/QtFileDialogs.h"

#include <QFileDialog>

#include "host/DialogParent.h"

namespace pulsemod {

namespace {

std::string chosenFile(QFileDialog& dialog, const std::string& title) {
  dialog.setWindowTitle(QString::fromStdString(title));
  dialog.setNameFilter("*.txt");
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return dialog.selectedFiles().constFirst().toStdString();
}

}  // namespace

std::string QtFileDialogs::askOpenFile(const std::string& title) {
  QFileDialog dialog(dialogParent());
  dialog.setObjectName("openFileDialog");
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return chosenFile(dialog, title);
}

std::string QtFileDialogs::askSaveFile(const std::string& title) {
  QFileDialog dialog(dialogParent());
  dialog.setObjectName("saveFileDialog");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  // The dialog completes the name before it asks whether to replace a file.
  dialog.setDefaultSuffix("txt");
  return chosenFile(dialog, title);
}

}  // namespace pulsemod
