#include "ui/MarkersPage.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

#include "settings/PropertyEdits.h"
#include "ui/ClickableEdit.h"
#include "ui/ElementName.h"
#include "ui/Options.h"

namespace pulsemod {

namespace {

constexpr int lastMarker = static_cast<int>(markerCount);

/// By the index of `optDeltaMeas`.
QStringList deltaCaptions() {
  return {QStringLiteral("&Average power between active and delta marker (dBm)"),
          QStringLiteral("&Power difference between active and delta marker (dB)")};
}

/// The index of the active marker; -1 for none.
int activeMarker() {
  int active = -1;
  for (std::size_t index = 0; index < deltaMarker; ++index) {
    if (Settings.Markers.at(index).IsActive != False16) active = static_cast<int>(index);
  }
  return active;
}

}  // namespace

MarkersPage::MarkersPage(RunEdit run, std::function<void()> openMarkers) : run_(std::move(run)) {
  auto* frame = new QGroupBox(QStringLiteral("Markers"));
  auto* rows = new QGridLayout(frame);
  rows->addWidget(new QLabel(QStringLiteral("Position")), 0, 1);
  for (int marker = 1; marker <= lastMarker; ++marker) buildRow(marker, *rows);
  rows->setColumnStretch(3, 1);
  auto* delta = addOptions(deltaMeasurement_, "optDeltaMeas",
                           QStringLiteral("The delta marker measures"), deltaCaptions());
  auto* readings = new QPushButton(QStringLiteral("Show Marker &Readings"));
  readings->setObjectName(QStringLiteral("cmdMarker"));
  readings->setAutoDefault(false);
  auto* last = new QHBoxLayout;
  last->addWidget(readings);
  last->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(frame);
  layout->addWidget(delta);
  layout->addLayout(last);
  layout->addStretch(1);

  connect(&active_, &QButtonGroup::idClicked, this,
          [this](int index) { run_([index] { ChooseActiveMarker(index + 1); }); });
  connect(&deltaMeasurement_, &QButtonGroup::idClicked, this,
          [this](int index) { run_([index] { ChooseDeltaMeasurement(index); }); });
  connect(readings, &QPushButton::clicked, this,
          [this, open = std::move(openMarkers)] { run_(open); });
}

void MarkersPage::buildRow(int marker, QGridLayout& layout) {
  const int index = marker - 1;
  const auto slot = static_cast<std::size_t>(index);
  const QString title = isDeltaMarker(marker) ? QStringLiteral("Delta marker")
                                              : QStringLiteral("Marker %1").arg(marker);
  QCheckBox* enabled =
      addCheckBox(elementName("chkMaker", index), isDeltaMarker(marker)
                                                      ? QStringLiteral("Del&ta marker")
                                                      : QStringLiteral("Marker &%1").arg(marker));
  enabled->setToolTip(title + QStringLiteral(" is on"));
  connect(enabled, &QCheckBox::clicked, this,
          [this, marker](bool on) { run_([marker, on] { SwitchMarker(marker, on); }); });
  enabled_.at(slot) = enabled;
  layout.addWidget(enabled, marker, 0);
  positions_.at(slot) =
      addTimeBox(elementName("txtMarker", index), title + QStringLiteral(" position"),
                 [this, marker] { run_([marker] { EditMarkerPosition(marker); }); });
  layout.addWidget(positions_.at(slot), marker, 1);
  if (isDeltaMarker(marker)) return;
  QRadioButton* active = addOption(active_, "optActiveMarker", index, QStringLiteral("Active"));
  active->setAccessibleName(title + QStringLiteral(" is the active marker"));
  active->setToolTip(active->accessibleName());
  layout.addWidget(active, marker, 2);
}

void MarkersPage::refresh() {
  for (std::size_t slot = 0; slot < markerCount; ++slot) {
    const MarkerSettings& marker = Settings.Markers.at(slot);
    enabled_.at(slot)->setChecked(marker.Enabled != False16);
    showTime(*positions_.at(slot), marker.Position);
  }
  tick(active_, activeMarker());
  tick(deltaMeasurement_, Settings.DeltaMeasurement);
}

}  // namespace pulsemod
