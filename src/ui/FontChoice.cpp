#include "ui/FontChoice.h"

#include <QFontDialog>

namespace pulsemod {

std::optional<QFont> chooseFont(const QFont& present, const QString& title, QWidget* owner) {
  QFontDialog dialog(present, owner);
  dialog.setObjectName(QStringLiteral("cmdialog"));
  dialog.setWindowTitle(title);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.selectedFont();
}

QFont withNameSizeAndWeight(const QFont& present, const QFont& chosen) {
  QFont font = present;
  font.setFamily(chosen.family());
  if (chosen.pointSizeF() > 0) {
    font.setPointSizeF(chosen.pointSizeF());
  } else {
    font.setPixelSize(chosen.pixelSize());
  }
  // A style name would win over the weight.
  font.setStyleName(QString());
  font.setBold(chosen.bold());
  return font;
}

}  // namespace pulsemod
