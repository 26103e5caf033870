#include "profile/Readouts.h"

#include <cmath>
#include <string>

#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "profile/GraphScale.h"
#include "profile/MeasurementSettings.h"

namespace pulsemod {

namespace {

void readMarker(std::size_t index) {
  constexpr int readingField = 2;
  constexpr int positionField = 4;
  std::string reply;
  if (!QueryMeter("MKNO " + ChannelText() + "," + std::to_string(index + 1), reply)) return;
  const std::string positionText = SplitReply(reply, positionField);
  if (positionText.empty()) return;
  const auto reading = leadingSingle(SplitReply(reply, readingField));
  const auto position = leadingSingle(positionText);
  if (!reading || !position) return;
  const auto column = static_cast<std::int16_t>(std::nearbyint(TimeToGraphX(*position)));
  MarkerSettings& marker = Settings.Markers[index];
  marker.Reading = *reading;
  marker.Position = *position;
  marker.PositionX = column;
}

}  // namespace

void ReadMarkerReadings() {
  for (std::size_t index = 0; index < deltaMarker; ++index) {
    if (Settings.Markers[index].Enabled != False16) readMarker(index);
  }
}

}  // namespace pulsemod
