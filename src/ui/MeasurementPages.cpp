#include "ui/MeasurementPages.h"

#include <QGroupBox>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "profile/MeasurementSettings.h"
#include "settings/PropertyEdits.h"
#include "ui/Options.h"

namespace pulsemod {

namespace {

/// By the measurement type less 1.
QStringList typeCaptions() {
  return {QStringLiteral("&Average power (dBm)"), QStringLiteral("Average and &peak power (dBm)"),
          QStringLiteral("Average and peak power (dBm), c&rest factor (dB)"),
          QStringLiteral("Average, m&inimum and maximum power (dBm)")};
}

/// By the index of `optDisplayPoints`.
constexpr std::array<std::int16_t, 2> displayPoints{200, 400};

void placeAlone(QWidget* frame, QWidget* page) {
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(frame);
  layout->addStretch(1);
}

}  // namespace

MeasurementPage::MeasurementPage(const RunEdit& run) {
  placeAlone(addOptions(types_, "optMeasurement",
                        QStringLiteral("Measured for the profile and each gate"), typeCaptions()),
             this);
  connect(&types_, &QButtonGroup::idClicked, this,
          [run](int index) { run([index] { ChooseMeasurement(index + 1); }); });
}

void MeasurementPage::refresh() { tick(types_, Settings.MeasurementType - 1); }

DisplayPage::DisplayPage(const RunEdit& run) {
  placeAlone(addOptions(points_, "optDisplayPoints", QStringLiteral("Points of a profile"),
                        {QStringLiteral("&200 points"), QStringLiteral("&400 points")}),
             this);
  connect(&points_, &QButtonGroup::idClicked, this, [run](int index) {
    run([index] { ChooseDisplayPoints(displayPoints.at(static_cast<std::size_t>(index))); });
  });
}

void DisplayPage::refresh() {
  const auto* const found =
      std::find(displayPoints.begin(), displayPoints.end(), Settings.DisplayPoints);
  tick(points_,
       found == displayPoints.end() ? -1 : static_cast<int>(found - displayPoints.begin()));
}

}  // namespace pulsemod
