#include "ui/PictureDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "ui/Options.h"

namespace pulsemod {

namespace {

constexpr QSize smallSize(1024, 768);
constexpr QSize largeSize(1600, 1200);

QString sizeText(const QSize& size) {
  return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

}  // namespace

PictureChoice LastPictureChoice;

QSize PictureChoice::chosenSize() const {
  switch (size) {
    case PictureSizeChoice::small:
      return smallSize;
    case PictureSizeChoice::large:
      return largeSize;
    case PictureSizeChoice::free:
      return freeSize;
    case PictureSizeChoice::screen:
      break;
  }
  return {};
}

PictureDialog::PictureDialog(QWidget* owner, const QSize& screenSize) : QDialog(owner) {
  setObjectName(QStringLiteral("frmPicture"));
  setWindowTitle(QStringLiteral("Save Picture"));

  white_ = new QCheckBox(QStringLiteral("White &background"));
  white_->setObjectName(QStringLiteral("chkWhite"));
  white_->setToolTip(
      QStringLiteral("For reports. Without it the picture is as dark as the screen. "
                     "Copy Picture does as this says, too."));

  auto* buttons = new QDialogButtonBox;
  QPushButton* save = buttons->addButton(QStringLiteral("&Save..."), QDialogButtonBox::AcceptRole);
  save->setObjectName(QStringLiteral("cmdSave"));
  save->setDefault(true);
  buttons->addButton(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(16, 16, 16, 16);
  layout->setSpacing(12);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(buildSizes(screenSize));
  layout->addWidget(white_);
  layout->addWidget(buttons);
  present(LastPictureChoice);
}

QWidget* PictureDialog::buildSizes(const QSize& screenSize) {
  auto* frame = new QGroupBox(QStringLiteral("Size in Pixels"));
  auto* layout = new QVBoxLayout(frame);
  const auto add = [&](PictureSizeChoice choice, const QString& caption) {
    return addOption(sizes_, "optPictureSize", static_cast<int>(choice), caption);
  };
  layout->addWidget(add(PictureSizeChoice::screen,
                        QStringLiteral("&As on the screen (%1)").arg(sizeText(screenSize))));
  layout->addWidget(add(PictureSizeChoice::small, sizeText(smallSize)));
  layout->addWidget(add(PictureSizeChoice::large, sizeText(largeSize)));
  layout->addWidget(addFreeSize(add(PictureSizeChoice::free, QStringLiteral("&Other:"))));
  return frame;
}

QWidget* PictureDialog::addFreeSize(QWidget* option) {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  width_ = addSide("txtPictureWidth", QStringLiteral("Width of the picture"),
                   smallestPicture.width(), largestPicture.width());
  height_ = addSide("txtPictureHeight", QStringLiteral("Height of the picture"),
                    smallestPicture.height(), largestPicture.height());
  layout->addWidget(option);
  layout->addWidget(width_);
  layout->addWidget(new QLabel(QStringLiteral("x")));
  layout->addWidget(height_);
  layout->addStretch();
  connect(sizes_.button(static_cast<int>(PictureSizeChoice::free)), &QAbstractButton::toggled, this,
          [this](bool isFree) {
            width_->setEnabled(isFree);
            height_->setEnabled(isFree);
          });
  return row;
}

QSpinBox* PictureDialog::addSide(const char* name, const QString& meaning, int smallest,
                                 int largest) {
  auto* side = new QSpinBox;
  side->setObjectName(QLatin1String(name));
  side->setAccessibleName(meaning);
  side->setRange(smallest, largest);
  side->setToolTip(QStringLiteral("%1, %2 to %3 pixels").arg(meaning).arg(smallest).arg(largest));
  side->setEnabled(false);
  return side;
}

void PictureDialog::present(const PictureChoice& choice) {
  tick(sizes_, static_cast<int>(choice.size));
  width_->setValue(choice.freeSize.width());
  height_->setValue(choice.freeSize.height());
  white_->setChecked(choice.ground == Ground::white);
}

PictureChoice PictureDialog::choice() const {
  return {static_cast<PictureSizeChoice>(sizes_.checkedId()),
          {width_->value(), height_->value()},
          white_->isChecked() ? Ground::white : Ground::dark};
}

bool PictureDialog::ask() {
  if (exec() != Accepted) return false;
  LastPictureChoice = choice();
  return true;
}

}  // namespace pulsemod
