#include "host/QtFileDialogs.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <algorithm>

#include "host/DialogParent.h"

namespace pulsemod {

namespace {

std::string chosenFile(QFileDialog& dialog, const std::string& title) {
  dialog.setWindowTitle(QString::fromStdString(title));
  dialog.setNameFilter("*.txt");
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return dialog.selectedFiles().constFirst().toStdString();
}

QString filterText(const FileKind& kind) {
  return QStringLiteral("%1 (*.%2)")
      .arg(QString::fromStdString(kind.name), QString::fromStdString(kind.suffix));
}

bool hasSuffix(const QString& path, const FileKind& kind) {
  return path.endsWith('.' + QString::fromStdString(kind.suffix), Qt::CaseInsensitive);
}

/// A name whose suffix is none ("pulse 4.6ms") gets that of the kind.
QString completed(const QString& path, std::span<const FileKind> kinds, const FileKind& chosen) {
  const bool isComplete = std::any_of(
      kinds.begin(), kinds.end(), [&path](const FileKind& kind) { return hasSuffix(path, kind); });
  return isComplete ? path : path + '.' + QString::fromStdString(chosen.suffix);
}

bool mayReplace(const QString& path) {
  QMessageBox box(dialogParent());
  box.setObjectName("questionBox");
  box.setIcon(QMessageBox::Warning);
  box.setWindowTitle("Pelmora");
  box.setTextFormat(Qt::PlainText);
  box.setText(QFileInfo(path).fileName() + " already exists.\nDo you want to replace it?");
  box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  box.setDefaultButton(QMessageBox::No);
  return box.exec() == QMessageBox::Yes;
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

std::string QtFileDialogs::askSaveFileOfKind(const std::string& title,
                                             std::span<const FileKind> kinds) {
  QStringList filters;
  for (const FileKind& kind : kinds) filters << filterText(kind);
  QFileDialog dialog(dialogParent());
  dialog.setObjectName("saveFileDialog");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setWindowTitle(QString::fromStdString(title));
  dialog.setNameFilters(filters);
  const auto chosenKind = [&]() -> const FileKind& {
    const auto index = filters.indexOf(dialog.selectedNameFilter());
    return kinds[static_cast<std::size_t>(std::max<qsizetype>(index, 0))];
  };
  const auto suggestSuffix = [&] {
    dialog.setDefaultSuffix(QString::fromStdString(chosenKind().suffix));
  };
  suggestSuffix();
  QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, suggestSuffix);
  while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
    const QString path = dialog.selectedFiles().constFirst();
    const QString full = completed(path, kinds, chosenKind());
    // The dialog has asked about the name as it was typed.
    if (full == path || !QFileInfo::exists(full) || mayReplace(full)) return full.toStdString();
  }
  return {};
}

}  // namespace pulsemod
