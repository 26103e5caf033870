#include "ui/InfoBox.h"

#include <QGroupBox>
#include <QLabel>
#include <algorithm>
#include <utility>

#include "profile/MeasurementSettings.h"
#include "ui/ElementName.h"

namespace pulsemod {

namespace {

QString frameName(std::size_t group) {
  // The frames of the gates come first.
  return elementName("FrameMeas", group == 0 ? gateCount : group - 1);
}

QString groupTitle(std::size_t group) {
  return group == 0 ? QStringLiteral("Profile") : QStringLiteral("Gate %1").arg(group);
}

/// The gates in one column below the profile, those of the repeat beside them.
FrameCell cellUpright(std::size_t group) {
  if (group == 0) return {0, 0};
  const int gate = static_cast<int>(group) - 1;
  return {1 + gate % meterGates, gate / meterGates};
}

/// The gates in one row below the profile, those of the repeat in a second one.
FrameCell cellAcross(std::size_t group) {
  if (group == 0) return {0, 0};
  const int gate = static_cast<int>(group) - 1;
  return {1 + gate / meterGates, gate % meterGates};
}

}  // namespace

InfoBox::InfoBox(QWidget* owner, Hooks hooks)
    : ReadoutWindow(owner, "frmInfo", QStringLiteral("Info Box"), Side::right, std::move(hooks)) {
  for (std::size_t group = 0; group < readingGroups; ++group) {
    frames_[group] = addFrame(frameName(group), groupTitle(group));
    frames_[group]->hide();
  }
  for (std::size_t element = 0; element < results_.size(); ++element) {
    results_[element] = addResult(element);
    setResultVisible(element, false);
  }
}

InfoBox::ResultLabels InfoBox::addResult(std::size_t element) {
  const std::size_t group = element / resultsPerGroup;
  const auto add = [&](const char* name, const char* part) {
    const QString description = QStringLiteral("%1 result %2 %3")
                                    .arg(groupTitle(group))
                                    .arg(element % resultsPerGroup + 1)
                                    .arg(QLatin1String(part));
    return addLabel(frames_[group], elementName(name, element), description);
  };
  const ResultLabels labels{add("lblMeasInfo", "name"), add("lblMeasResult", "value"),
                            add("lblMeasUnits", "unit")};
  labels.value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return labels;
}

void InfoBox::setGroup(std::size_t group, bool inUse, bool enabled) {
  QGroupBox& frame = *frames_[group];
  frame.setEnabled(enabled);
  if (frame.isHidden() == !inUse) return;
  frame.setVisible(inUse);
  layOut();
}

void InfoBox::showResult(std::size_t element, const std::string& name, const std::string& value,
                         const std::string& unit) {
  const ResultLabels& labels = results_[element];
  const int rowsBefore = rowsInUse();
  setResultVisible(element, true);
  bool grown = showText(*labels.name, name, nameWidth_);
  grown |= showText(*labels.value, value, valueWidth_);
  grown |= showText(*labels.unit, unit, unitWidth_);
  if (grown || rowsInUse() != rowsBefore) layOut();
}

void InfoBox::hideResult(std::size_t element) {
  const int rowsBefore = rowsInUse();
  setResultVisible(element, false);
  if (rowsInUse() != rowsBefore) layOut();
}

void InfoBox::setResultVisible(std::size_t element, bool visible) {
  const ResultLabels& labels = results_[element];
  for (QLabel* label : {labels.name, labels.value, labels.unit}) label->setVisible(visible);
}

int InfoBox::rowsInUse() const {
  int rows = 1;
  for (std::size_t element = 0; element < results_.size(); ++element) {
    if (results_[element].name->isHidden()) continue;
    rows = std::max(rows, static_cast<int>(element % resultsPerGroup) + 1);
  }
  return rows;
}

void InfoBox::measureSamples() {
  nameWidth_ = valueWidth_ = unitWidth_ = labelHeight_ = 0;
  for (const ResultLabels& labels : results_) {
    indentUnit(*labels.unit);
    measure(*labels.name, QStringLiteral("Avg"), nameWidth_, labelHeight_);
    measure(*labels.value, QStringLiteral("-34.567"), valueWidth_, labelHeight_);
    measure(*labels.unit, QStringLiteral("dBm"), unitWidth_, labelHeight_);
  }
}

QSize InfoBox::placeLabels() {
  const int nameLeft = gap();
  const int valueLeft = nameLeft + nameWidth_ + gap();
  const int unitLeft = valueLeft + valueWidth_;
  const int pitch = rowPitch(labelHeight_);
  for (std::size_t element = 0; element < results_.size(); ++element) {
    const int top = rowsTop(*frames_[0]) + static_cast<int>(element % resultsPerGroup) * pitch;
    const ResultLabels& labels = results_[element];
    labels.name->setGeometry(nameLeft, top, nameWidth_, labelHeight_);
    labels.value->setGeometry(valueLeft, top, valueWidth_, labelHeight_);
    labels.unit->setGeometry(unitLeft, top, unitWidth_, labelHeight_);
  }
  return {unitLeft + unitWidth_ + gap(),
          rowsTop(*frames_[0]) + rowsInUse() * pitch + rowsBottom(*frames_[0])};
}

void InfoBox::layOut() {
  QSize frameSize = placeLabels();
  std::vector<QGroupBox*> frames;
  FrameCells upright;
  FrameCells across;
  for (std::size_t group = 0; group < readingGroups; ++group) {
    frameSize = frameSize.expandedTo({frames_[group]->minimumSizeHint().width(), 0});
    if (frames_[group]->isHidden()) continue;
    frames.push_back(frames_[group]);
    upright.push_back(cellUpright(group));
    across.push_back(cellAcross(group));
  }
  arrange(frames, frameSize, {upright, across});
}

}  // namespace pulsemod
