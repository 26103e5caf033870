#include "ui/MarkersWindow.h"

#include <QGroupBox>
#include <QLabel>
#include <algorithm>
#include <utility>

#include "ui/ElementName.h"

namespace pulsemod {

MarkersWindow::MarkersWindow(QWidget* owner, Hooks hooks)
    : ReadoutWindow(owner, "frmMarkers", QStringLiteral("Markers"), Side::below, std::move(hooks)) {
  for (std::size_t index = 0; index < markers_.size(); ++index) markers_[index] = addMarker(index);
}

MarkersWindow::Marker MarkersWindow::addMarker(std::size_t index) {
  const QString title = QStringLiteral("Marker %1").arg(index + 1);
  QGroupBox* const frame = addFrame(elementName("frameMarker", index), title);
  frame->setEnabled(false);
  const auto add = [&](const char* name, const char* part) {
    return addLabel(frame, elementName(name, index),
                    title + QLatin1Char(' ') + QLatin1String(part));
  };
  const Marker marker{frame, add("lblMarkerPow", "power"), add("lblMarkerUnits", "unit"),
                      add("lblMarkerTime", "time")};
  marker.power->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  marker.unit->setText(QStringLiteral("dBm"));
  marker.time->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return marker;
}

void MarkersWindow::setMarkerEnabled(std::size_t index, bool enabled) {
  markers_[index].frame->setEnabled(enabled);
}

void MarkersWindow::showMarker(std::size_t index, const std::string& reading,
                               const std::string& position) {
  const Marker& marker = markers_[index];
  bool grown = showText(*marker.power, reading, powerWidth_);
  grown |= showText(*marker.time, position, timeWidth_);
  if (grown) layOut();
}

void MarkersWindow::measureSamples() {
  powerWidth_ = unitWidth_ = timeWidth_ = labelHeight_ = 0;
  for (const Marker& marker : markers_) {
    indentUnit(*marker.unit);
    measure(*marker.power, QStringLiteral("-34.56789"), powerWidth_, labelHeight_);
    measure(*marker.unit, QStringLiteral("dBm"), unitWidth_, labelHeight_);
    measure(*marker.time, QStringLiteral("-888.888ms"), timeWidth_, labelHeight_);
  }
}

QSize MarkersWindow::placeLabels() {
  const int width = std::max(powerWidth_ + unitWidth_, timeWidth_);
  const int unitLeft = gap() + width - unitWidth_;
  const int top = rowsTop(*markers_[0].frame);
  const int pitch = rowPitch(labelHeight_);
  for (const Marker& marker : markers_) {
    marker.power->setGeometry(gap(), top, width - unitWidth_, labelHeight_);
    marker.unit->setGeometry(unitLeft, top, unitWidth_, labelHeight_);
    marker.time->setGeometry(gap(), top + pitch, width, labelHeight_);
  }
  return {gap() + width + gap(), top + 2 * pitch + rowsBottom(*markers_[0].frame)};
}

void MarkersWindow::layOut() {
  QSize frameSize = placeLabels();
  std::vector<QGroupBox*> frames;
  for (const Marker& marker : markers_) {
    frameSize = frameSize.expandedTo({marker.frame->minimumSizeHint().width(), 0});
    frames.push_back(marker.frame);
  }
  const FrameCells row{{0, 0}, {0, 1}, {0, 2}, {0, 3}};
  const FrameCells square{{0, 0}, {0, 1}, {1, 0}, {1, 1}};
  const FrameCells column{{0, 0}, {1, 0}, {2, 0}, {3, 0}};
  arrange(frames, frameSize, {row, square, column});
}

}  // namespace pulsemod
