#include "ui/CommsDialog.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "link/CommsSettings.h"
#include "link/Fault.h"
#include "platform/Services.h"
#include "ui/Options.h"

namespace pulsemod {

namespace {

/// By the index of `optComms`.
constexpr std::array<std::int32_t, 2> linkTypes{commsTypeGPIB, commsTypeRS232};
/// By the index of `optBuad`.
constexpr std::array<std::int32_t, 7> baudRates{1200, 2400, 4800, 9600, 19200, 38400, 57600};
constexpr int portCount = 10;

template <typename Values>
int indexOf(const Values& values, std::int32_t value) {
  const auto found = std::find(values.begin(), values.end(), value);
  return found == values.end() ? -1 : static_cast<int>(found - values.begin());
}

}  // namespace

CommsDialog::CommsDialog(std::function<std::string(int)> portDevice)
    : portDevice_(std::move(portDevice)) {
  setObjectName(QStringLiteral("frmComms"));
  setWindowTitle(QStringLiteral("GPIB/RS232 Comms"));

  auto* link = new QHBoxLayout;
  link->addWidget(addOption(links_, "optComms", 0, QStringLiteral("GPIB")));
  link->addSpacing(16);
  link->addWidget(addOption(links_, "optComms", 1, QStringLiteral("RS232")));
  link->addStretch();

  auto* save = new QPushButton(QStringLiteral("Save"));
  save->setObjectName(QStringLiteral("cmdSave"));
  save->setDefault(true);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(save);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(16, 16, 16, 16);
  layout->setSpacing(12);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addLayout(link);
  layout->addWidget(buildGpib());
  layout->addWidget(buildRS232());
  layout->addLayout(buttons);

  connect(save, &QPushButton::clicked, this, [this] { reportFaults([this] { this->save(); }); });
  connectControls();
}

QGroupBox* CommsDialog::buildGpib() {
  auto* frame = new QGroupBox(QStringLiteral("GPIB"));
  frame->setObjectName(QStringLiteral("frameGPIB"));
  address_ = new QLineEdit;
  address_->setObjectName(QStringLiteral("txtGPIBAddress"));
  address_->setToolTip(QStringLiteral("The meter's primary address, 1 to 30"));
  address_->setMaximumWidth(address_->fontMetrics().averageCharWidth() * 12);
  auto* caption = new QLabel(QStringLiteral("Address"));
  caption->setBuddy(address_);
  auto* layout = new QHBoxLayout(frame);
  layout->addWidget(caption);
  layout->addWidget(address_);
  layout->addStretch();
  return frame;
}

QGroupBox* CommsDialog::buildRS232() {
  auto* frame = new QGroupBox(QStringLiteral("RS232"));
  frame->setObjectName(QStringLiteral("frameRS232"));
  QStringList bauds;
  for (const std::int32_t rate : baudRates) bauds << QString::number(rate);
  QStringList ports;
  for (int port = 1; port <= portCount; ++port) ports << QStringLiteral("COM%1:").arg(port);
  auto* layout = new QHBoxLayout(frame);
  layout->addWidget(buildOptions(bauds_, QStringLiteral("Baud Rate"), "optBuad", bauds));
  layout->addWidget(buildOptions(ports_, QStringLiteral("Comm Port"), "optCommPort", ports));
  return frame;
}

QWidget* CommsDialog::buildOptions(QButtonGroup& group, const QString& caption, const char* name,
                                   const QStringList& captions) {
  auto* box = new QGroupBox(caption);
  auto* layout = new QGridLayout(box);
  layout->setHorizontalSpacing(16);
  constexpr int rows = 5;
  for (int index = 0; index < captions.size(); ++index) {
    layout->addWidget(addOption(group, name, index, captions[index]), index % rows, index / rows);
  }
  layout->setRowStretch(rows, 1);
  return box;
}

void CommsDialog::connectControls() {
  connect(&links_, &QButtonGroup::idClicked, this, [this](int index) {
    isChanged_ = true;
    EditedComms.commsType = linkTypes.at(static_cast<std::size_t>(index));
  });
  connect(&bauds_, &QButtonGroup::idClicked, this, [this](int index) {
    isChanged_ = true;
    EditedComms.rs232Baud = baudRates.at(static_cast<std::size_t>(index));
  });
  connect(&ports_, &QButtonGroup::idClicked, this, [this](int index) {
    isChanged_ = true;
    EditedComms.rs232Port = index + 1;
  });
  connect(address_, &QLineEdit::textChanged, this, [this](const QString& text) {
    isChanged_ = true;
    setGpibAddressText(text.toStdString());
  });
}

void CommsDialog::load() {
  const QSignalBlocker showingIsNoEdit(address_);
  address_->setText(QString::number(EditedComms.gpibAddress));
  tick(links_, indexOf(linkTypes, EditedComms.commsType));
  tick(bauds_, indexOf(baudRates, EditedComms.rs232Baud));
  tick(ports_, EditedComms.rs232Port - 1);
  const QList<QAbstractButton*> options = ports_.buttons();
  for (QAbstractButton* option : options) {
    const std::string device = portDevice_(ports_.id(option) + 1);
    option->setToolTip(device.empty() ? QStringLiteral("no such device on this machine")
                                      : QString::fromStdString(device));
  }
  isChanged_ = false;
}

void CommsDialog::edit() {
  load();
  exec();
}

void CommsDialog::save() {
  if (!SaveCommsSettings()) return;
  isChanged_ = false;
  accept();
}

void CommsDialog::reject() {
  bool closes = true;
  reportFaults([this, &closes] { closes = mayClose(); });
  if (closes) QDialog::reject();
}

bool CommsDialog::mayClose() {
  if (!isChanged_) return true;
  const bool wantsToSave = services().dialogs.askYesNo(
      "Do you wish to save the settings?", "Settings have been changed", MessageIcon::question);
  return !wantsToSave || SaveCommsSettings();
}

}  // namespace pulsemod
