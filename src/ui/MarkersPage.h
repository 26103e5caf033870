#pragma once

#include <QButtonGroup>
#include <QWidget>
#include <array>

#include "profile/MeasurementSettings.h"
#include "ui/PropertyControls.h"

class QGridLayout;

namespace pulsemod {

/// Which markers are on, where they stand, which one is active, and what the delta marker measures.
class MarkersPage : public QWidget {
 public:
  MarkersPage(RunEdit run, std::function<void()> openMarkers);

  void refresh();

 private:
  void buildRow(int marker, QGridLayout& layout);

  RunEdit run_;
  std::array<QCheckBox*, markerCount> enabled_{};
  std::array<ClickableEdit*, markerCount> positions_{};
  QButtonGroup active_;
  QButtonGroup deltaMeasurement_;
};

}  // namespace pulsemod
