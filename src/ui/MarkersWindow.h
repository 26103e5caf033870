#pragma once

#include <array>

#include "profile/MeasurementSettings.h"
#include "profile/ReadoutViews.h"
#include "ui/ReadoutWindow.h"

namespace pulsemod {

/// `frmMarkers`: power and position of the markers 1 to 4. Its columns are as wide as their sample
/// captions, or as the widest caption since they were laid out.
class MarkersWindow : public ReadoutWindow, public MarkersView {
 public:
  MarkersWindow(QWidget* owner, Hooks hooks);

  void setMarkerEnabled(std::size_t index, bool enabled) override;
  void showMarker(std::size_t index, const std::string& reading,
                  const std::string& position) override;

 protected:
  void measureSamples() override;
  void layOut() override;

 private:
  struct Marker {
    QGroupBox* frame;
    QLabel* power;
    QLabel* unit;
    QLabel* time;
  };

  Marker addMarker(std::size_t index);
  QSize placeLabels();

  std::array<Marker, deltaMarker> markers_{};
  int powerWidth_ = 0;
  int unitWidth_ = 0;
  int timeWidth_ = 0;
  int labelHeight_ = 0;
};

}  // namespace pulsemod
