#include "ui/AboutBox.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "link/MeterLink.h"
#include "startup/MeterModel.h"
#include "startup/StartUp.h"

namespace pulsemod {

namespace {

QString linkText() {
  if (LinkSettings.commsType == commsTypeGPIB) {
    return QStringLiteral("GPIB, address %1").arg(LinkSettings.gpibAddress);
  }
  return QStringLiteral("RS232, COM%1:, %2 baud")
      .arg(LinkSettings.rs232Port)
      .arg(LinkSettings.rs232Baud);
}

QString meterText() {
  return MeterIdentity.empty() ? QStringLiteral("not known")
                               : QString::fromStdString(MeterIdentity);
}

QString presentFacts() {
  const QStringList lines{QStringLiteral("Pelmora PulseMod"),
                          QStringLiteral("Version: ") + QString::fromStdString(versionText()),
                          QStringLiteral("Meter: ") + meterText(),
                          QStringLiteral("Link: ") + linkText(),
                          QStringLiteral("Qt: ") + QLatin1String(qVersion()),
                          QStringLiteral("Licence: MIT")};
  return lines.join('\n');
}

}  // namespace

AboutBox::AboutBox(QWidget* owner) : QDialog(owner), facts_(new QLabel) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(QStringLiteral("About Pelmora PulseMod"));
  facts_->setObjectName(QStringLiteral("lblAbout"));
  // The meter's own words are in it.
  facts_->setTextFormat(Qt::PlainText);
  facts_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

  auto* buttons = new QDialogButtonBox;
  QPushButton* copy = buttons->addButton(QStringLiteral("&Copy"), QDialogButtonBox::ActionRole);
  copy->setObjectName(QStringLiteral("cmdCopy"));
  copy->setAutoDefault(false);
  QPushButton* close = buttons->addButton(QDialogButtonBox::Close);
  close->setObjectName(QStringLiteral("cmdClose"));
  close->setDefault(true);
  connect(copy, &QPushButton::clicked, this,
          [this] { QGuiApplication::clipboard()->setText(facts_->text()); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(20, 20, 20, 16);
  layout->setSpacing(16);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(facts_);
  layout->addWidget(buttons);
}

void AboutBox::present() {
  facts_->setText(presentFacts());
  show();
  raise();
  activateWindow();
}

}  // namespace pulsemod
