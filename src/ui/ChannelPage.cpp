#include "ui/ChannelPage.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>
#include <utility>

#include "profile/MeasurementSettings.h"
#include "settings/PropertyEdits.h"
#include "ui/Options.h"

namespace pulsemod {

namespace {

constexpr int pageStep = 10;
constexpr int sliderWidth = 260;

/// By the index of `optChannel`, the active channel less 1.
QStringList channelCaptions() {
  return {QStringLiteral("Channel &1"), QStringLiteral("Channel &2"),
          QStringLiteral("&Both channels (1&&2)")};
}

/// By the code of the input configuration.
QStringList inputCaptions() {
  return {QStringLiteral("Input A"),
          QStringLiteral("Input B"),
          QStringLiteral("A-B, difference of the inputs"),
          QStringLiteral("B-A, difference of the inputs"),
          QStringLiteral("A/B, ratio of the inputs"),
          QStringLiteral("B/A, ratio of the inputs")};
}

}  // namespace

ChannelPage::ChannelPage(RunEdit run) : run_(std::move(run)), sentence_(new QLabel) {
  sentence_->setObjectName(QStringLiteral("Label5"));
  sentence_->setTextFormat(Qt::PlainText);
  sentence_->setWordWrap(true);

  auto* channels =
      addOptions(channels_, "optChannel", QStringLiteral("Active channel"), channelCaptions());
  averagingFrame_ = buildAveraging();
  inputFrame_ =
      addOptions(inputs_, "optInputConfig", QStringLiteral("Input configuration"), inputCaptions());
  auto* left = new QVBoxLayout;
  left->addWidget(channels);
  left->addWidget(averagingFrame_);
  auto* groups = new QHBoxLayout;
  groups->addLayout(left, 1);
  groups->addWidget(inputFrame_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(sentence_);
  layout->addLayout(groups);
  layout->addStretch(1);
  connectControls();
}

QGroupBox* ChannelPage::buildAveraging() {
  averaging_ = addCheckBox(QStringLiteral("chkAverage"), QString());
  count_ = new QSlider(Qt::Horizontal);
  count_->setObjectName(QStringLiteral("scrollAVG"));
  count_->setAccessibleName(QStringLiteral("Number of profiles averaged"));
  count_->setToolTip(QStringLiteral("Number of profiles averaged, 1 to %1").arg(mostAveraged));
  count_->setRange(1, mostAveraged);
  count_->setPageStep(pageStep);
  // The meter hears where it comes to rest, not where it passes.
  count_->setTracking(false);
  count_->setMinimumWidth(sliderWidth);
  auto* frame = new QGroupBox(QStringLiteral("Averaging"));
  auto* layout = new QVBoxLayout(frame);
  layout->addWidget(averaging_);
  layout->addWidget(count_);
  return frame;
}

void ChannelPage::connectControls() {
  const auto showCount = [this](int count) {
    averaging_->setText(QString::fromStdString(averagingCaption(count)));
  };
  connect(&channels_, &QButtonGroup::idClicked, this, [this](int index) {
    run_([index] { ChooseChannel(static_cast<std::int16_t>(index + 1)); });
  });
  connect(averaging_, &QCheckBox::clicked, this,
          [this](bool on) { run_([on] { SwitchAveraging(on); }); });
  connect(count_, &QSlider::sliderMoved, this, showCount);
  connect(count_, &QSlider::valueChanged, this, [this, showCount](int count) {
    showCount(count);
    run_([count] { SetAveragingCount(static_cast<std::int16_t>(count)); });
  });
  connect(&inputs_, &QButtonGroup::idClicked, this,
          [this](int code) { run_([code] { ChooseInputConfig(code); }); });
}

void ChannelPage::refresh() {
  tick(channels_, Settings.ActiveChannel - 1);
  const bool one = oneChannelIsActive();
  const QString reason =
      one ? QString()
          : QStringLiteral("Each channel has its own. Choose channel 1 or channel 2 to set it.");
  for (QGroupBox* frame : {averagingFrame_, inputFrame_}) {
    frame->setEnabled(one);
    frame->setToolTip(reason);
  }
  const ChannelSettings channel = one ? activeChannelSettings() : ChannelSettings{};
  averaging_->setChecked(channel.AveragingOn != False16);
  averaging_->setText(one ? QString::fromStdString(averagingCaption(channel.AveragingCount))
                          : QStringLiteral("Average"));
  {
    const QSignalBlocker showingIsNoEdit(count_);
    count_->setValue(channel.AveragingCount);
  }
  tick(inputs_, one ? channel.InputConfig : -1);
}

void ChannelPage::showSentence(const QString& sentence) { sentence_->setText(sentence); }

}  // namespace pulsemod
