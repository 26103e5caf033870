#include "ui/GatesPage.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

#include "link/NumberText.h"
#include "settings/PropertyEdits.h"
#include "ui/ClickableEdit.h"
#include "ui/ElementName.h"
#include "ui/FenceLabel.h"
#include "ui/Options.h"
#include "ui/ReadableWhileDisabled.h"

namespace pulsemod {

namespace {

enum Column {
  enabledColumn,
  startColumn,
  stopColumn,
  fenceColumn,
  fenceStartColumn,
  fenceStopColumn,
  activeColumn
};

struct TimeColumn {
  GateTime time;
  Column column;
  const char* heading;
};

/// By the place of a time among the four of its gate.
constexpr TimeColumn timeColumns[] = {
    {GateTime::start, startColumn, "Start"},
    {GateTime::stop, stopColumn, "Stop"},
    {GateTime::fenceStart, fenceStartColumn, "Fence start"},
    {GateTime::fenceStop, fenceStopColumn, "Fence stop"},
};

/// A hidden control keeps its place: the rows of the repeat come and go without moving any other.
void showInPlace(QWidget& control, bool shown) {
  QSizePolicy policy = control.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  control.setSizePolicy(policy);
  control.setVisible(shown);
}

}  // namespace

GatesPage::GatesPage(RunEdit run)
    : run_(std::move(run)),
      displayed_(addCheckBox(QStringLiteral("chkDisplayGates"),
                             QStringLiteral("Show the ga&tes on the graph"))) {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(displayed_);
  layout->addLayout(buildRepeat());
  layout->addWidget(buildGates());
  layout->addStretch(1);
  connectControls();
}

QLayout* GatesPage::buildRepeat() {
  constexpr int widestCount = 8;
  constexpr int gap = 16;
  repeat_ = addCheckBox(QStringLiteral("chkRepeat"), QStringLiteral("&Repeat gate 1"));
  repeatCount_ = new QLineEdit;
  repeatCount_->setObjectName(QStringLiteral("txtRepeatCount"));
  repeatCount_->setToolTip(
      QStringLiteral("Number of gates in the repeat, gate 1 included: 1 to %1. Enter sends it.")
          .arg(gateCount));
  repeatCount_->setFixedWidth(repeatCount_->fontMetrics().averageCharWidth() * widestCount);
  // A file that is dropped here is for the window.
  repeatCount_->setAcceptDrops(false);
  auto* countCaption = new QLabel(QStringLiteral("Cou&nt (1 to %1)").arg(gateCount));
  countCaption->setBuddy(repeatCount_);
  repeatOffset_ = addTimeBox(QStringLiteral("txtRepeatOffset"), QStringLiteral("Repeat offset"),
                             [this] { run_(EditRepeatOffset); });
  auto* offsetCaption = new QLabel(QStringLiteral("O&ffset"));
  offsetCaption->setBuddy(repeatOffset_);
  auto* layout = new QHBoxLayout;
  layout->addWidget(repeat_);
  layout->addSpacing(gap);
  layout->addWidget(countCaption);
  layout->addWidget(repeatCount_);
  layout->addSpacing(gap);
  layout->addWidget(offsetCaption);
  layout->addWidget(repeatOffset_);
  layout->addStretch();
  return layout;
}

QGroupBox* GatesPage::buildGates() {
  auto* frame = new QGroupBox(QStringLiteral("Gates"));
  auto* layout = new QGridLayout(frame);
  for (const TimeColumn& column : timeColumns) {
    layout->addWidget(new QLabel(QLatin1String(column.heading)), 0, column.column);
  }
  for (int gate = 1; gate <= static_cast<int>(gateCount); ++gate) buildRow(gate, *layout);
  layout->setColumnStretch(activeColumn + 1, 1);
  return frame;
}

void GatesPage::buildRow(int gate, QGridLayout& layout) {
  const int index = gate - 1;
  Row& row = rows_.at(static_cast<std::size_t>(index));
  row.enabled = addCheckBox(elementName("chkEnabled", index), QStringLiteral("Gate &%1").arg(gate));
  row.enabled->setToolTip(QStringLiteral("Gate %1 is on").arg(gate));
  new ReadableWhileDisabled(row.enabled, QPalette::WindowText);
  layout.addWidget(row.enabled, gate, enabledColumn);
  for (std::size_t place = 0; place < timesPerGate; ++place) {
    const std::size_t box = static_cast<std::size_t>(index) * timesPerGate + place;
    const QString meaning =
        QStringLiteral("Gate %1 %2").arg(gate).arg(QString(timeColumns[place].heading).toLower());
    row.times.at(place) = addTimeBox(elementName("txtGateInfo", static_cast<int>(box)), meaning,
                                     [this, box] { run_([box] { EditGateTime(box); }); });
    // The fence's word stands between the times of the gate and its own.
    if (timeColumns[place].time == GateTime::fenceStart) {
      row.fence = new FenceLabel(gate);
      row.fence->setObjectName(elementName("lblFence", index));
      layout.addWidget(row.fence, gate, fenceColumn);
    }
    layout.addWidget(row.times.at(place), gate, timeColumns[place].column);
  }
  row.active = addOption(active_, "optActiveGate", index, QStringLiteral("Active"));
  row.active->setAccessibleName(QStringLiteral("Gate %1 is the active gate").arg(gate));
  row.active->setToolTip(row.active->accessibleName());
  layout.addWidget(row.active, gate, activeColumn);
}

void GatesPage::connectControls() {
  connect(displayed_, &QCheckBox::clicked, this,
          [this](bool shown) { run_([shown] { ShowGates(shown); }); });
  connect(repeat_, &QCheckBox::clicked, this, [this](bool on) {
    run_([this, on] { SwitchRepeat(on, repeatCount_->text().toStdString()); });
  });
  connect(repeatCount_, &QLineEdit::returnPressed, this,
          [this] { run_([this] { EnterRepeatCount(repeatCount_->text().toStdString()); }); });
  connect(&active_, &QButtonGroup::idClicked, this,
          [this](int index) { run_([index] { ChooseActiveGate(index + 1); }); });
  for (int gate = 1; gate <= static_cast<int>(gateCount); ++gate) connectRow(gate);
}

void GatesPage::connectRow(int gate) {
  Row& row = rows_.at(static_cast<std::size_t>(gate - 1));
  connect(row.enabled, &QCheckBox::clicked, this,
          [this, gate](bool on) { run_([gate, on] { SwitchGate(gate, on); }); });
  row.fence->setOnClick([this, gate] { run_([gate] { ToggleFence(gate); }); });
}

void GatesPage::refresh() {
  displayed_->setChecked(Settings.GatesVisible != False16);
  repeat_->setChecked(Settings.RepeatEnabled != False16);
  showTime(*repeatOffset_, Settings.RepeatOffset);
  for (int gate = 1; gate <= static_cast<int>(gateCount); ++gate) refreshRow(gate);
  tick(active_, Settings.ActiveGate - 1);
}

void GatesPage::refreshRow(int gate) {
  const auto slot = static_cast<std::size_t>(gate - 1);
  const GateControls controls = gateControls(gate);
  const GateSettings& settings = Settings.Gates.at(slot);
  const Row& row = rows_.at(slot);
  const QString locked = QStringLiteral("Follows gate 1 while it is repeated");
  showInPlace(*row.enabled, controls.shown);
  row.enabled->setEnabled(controls.switchable);
  row.enabled->setChecked(controls.checked);
  showInPlace(*row.fence, controls.shown);
  row.fence->setEnabled(controls.editable);
  row.fence->setFence(settings.FenceEnabled != False16);
  for (std::size_t place = 0; place < timesPerGate; ++place) {
    showInPlace(*row.times.at(place), controls.shown);
    row.times.at(place)->setEnabled(controls.editable);
    row.times.at(place)->setToolTip(controls.editable ? clickHint(*row.times.at(place)) : locked);
    showTime(*row.times.at(place), settings.*gateTimeField(timeColumns[place].time));
  }
  showInPlace(*row.active, controls.activatable);
}

void GatesPage::showRepeatCount() {
  repeatCount_->setText(QString::fromStdString(numberText(Settings.RepeatCount)));
}

}  // namespace pulsemod
