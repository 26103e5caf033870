#include "profile/GraphScale.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "link/Fault.h"
#include "link/NumberText.h"
#include "profile/MeasurementSettings.h"

namespace pulsemod {

namespace {

void requireCaptureTime() {
  if (Settings.CaptureTime == 0) throw Fault("Division by zero: the capture time is 0");
}

}  // namespace

std::size_t drawnPoints() {
  const std::int16_t points = Settings.DisplayPoints;
  if (points < 1 || static_cast<std::size_t>(points) > tracePoints) {
    throw Fault("Subscript out of range: a profile has 1 to 400 points, not " +
                std::to_string(points));
  }
  return static_cast<std::size_t>(points);
}

// Times enter the arithmetic through their decimal texts: with the bare singles, a time that is a
// round number of points, or an edge of the graph, would land just beside its column.

bool graphHasTimeAxis() { return Settings.CaptureTime != 0 && Settings.DisplayPoints != 0; }

float TimeToGraphX(float seconds) {
  const double points = Settings.DisplayPoints;
  if (points == 0) throw Fault("Division by zero: the graph has no points");
  requireCaptureTime();
  const double fromDelay = throughText(seconds) - throughText(Settings.TriggerDelay);
  const float x =
      checkedSingle(checkedQuotient(fromDelay * points, throughText(Settings.CaptureTime)));
  return std::max(std::min(x, static_cast<float>(points)), 0.0F);
}

float GraphXToTime(float x) {
  const double capture = throughText(Settings.CaptureTime);
  return checkedSingle(checkedQuotient(static_cast<double>(x) * capture, Settings.DisplayPoints) +
                       throughText(Settings.TriggerDelay));
}

float graphStopTime() {
  // Summed through the texts, so that the right edge reads as the sum of the two labels.
  return checkedSingle(throughShortestText(Settings.TriggerDelay) +
                       throughShortestText(Settings.CaptureTime));
}

double graphBottomLevel() {
  return static_cast<double>(Settings.ReferenceLevel) -
         graphDivisions * static_cast<double>(Settings.ScalePerDivision);
}

PictureScale profileGraphScale() {
  const double reference = Settings.ReferenceLevel;
  const PictureScale scale{1, reference, static_cast<double>(Settings.DisplayPoints),
                           graphBottomLevel() - reference};
  // The time axis needs a length, although no line of the picture is placed by it.
  requireCaptureTime();
  if (scale.width <= 0) throw Fault("The graph has no points to draw");
  if (scale.height == 0 || !std::isfinite(scale.height) || !std::isfinite(reference)) {
    throw Fault("Division by zero: the graph's scale is 0 dB");
  }
  return scale;
}

}  // namespace pulsemod
