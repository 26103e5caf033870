#include "profile/ProfileGraph.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "link/Fault.h"
#include "link/NumberText.h"
#include "link/TimeText.h"
#include "profile/GraphFault.h"
#include "profile/GraphScale.h"
#include "profile/MeasurementSettings.h"

namespace pulsemod {

namespace {

void drawTrace(const Trace& trace, Colour colour) {
  std::array<PicturePoint, tracePoints> points{};
  const std::size_t count = drawnPoints();
  for (std::size_t index = 0; index < count; ++index) {
    points[index] = {static_cast<double>(index + 1), static_cast<double>(trace[index])};
  }
  profileView().graph().polyline({points.data(), count}, colour);
}

/// Level of the live trace in the column of the delta marker. Its column is 0 for a marker at or
/// before the graph's left edge; the first point serves there.
float traceLevelAt(float x) {
  const int index = std::clamp(static_cast<int>(x) - 1, 0, static_cast<int>(tracePoints) - 1);
  return ProfileTrace[static_cast<std::size_t>(index)];
}

void drawMarker(std::size_t index) {
  const MarkerSettings& marker = Settings.Markers[index];
  Picture& picture = profileView().graph();
  const float x = TimeToGraphX(marker.Position);
  const double y = index == deltaMarker
                       ? static_cast<double>(traceLevelAt(x))
                       : static_cast<double>(marker.Reading) - picture.textHeight();
  const std::string label = index == deltaMarker ? "D" : std::to_string(index + 1);
  picture.text({static_cast<double>(x), y}, label,
               marker.IsActive != False16 ? activeMarkerColour : markerColour);
}

std::int32_t column(float seconds) {
  return static_cast<std::int32_t>(std::nearbyint(TimeToGraphX(seconds)));
}

std::string decibels(float value) { return fixedText(static_cast<double>(value), 2, 2); }

}  // namespace

void DrawGraphGrid() {
  const PictureScale scale = profileGraphScale();
  Picture& picture = profileView().graph();
  picture.clear();
  picture.setScale(scale);
  const double points = scale.width;
  const double bottom = graphBottomLevel();
  for (int i = 1; i < graphDivisions; ++i) {
    const double x = points / graphDivisions * i;
    picture.line({x, scale.top}, {x, bottom}, gridColour);
  }
  for (int i = 1; i < graphDivisions; ++i) {
    const double y = scale.top - i * static_cast<double>(Settings.ScalePerDivision);
    picture.line({1, y}, {points, y}, gridColour);
  }
  picture.endBackground();
}

void PositionGateLines() {
  GateLineArray lines{};
  for (std::size_t index = 0; index < gateCount; ++index) {
    GateSettings& gate = Settings.Gates[index];
    gate.StartX = column(gate.StartTime);
    gate.StopX = column(gate.StopTime);
    gate.FenceStartX = column(gate.FenceStart);
    gate.FenceStopX = column(gate.FenceStop);
    const bool gateShown = gate.Enabled != False16 && Settings.GatesVisible != False16;
    const bool fenceShown = gateShown && gate.FenceEnabled != False16;
    GateLine* line = &lines[index * linesPerGate];
    line[0] = {gateShown, static_cast<double>(gate.StartX)};
    line[1] = {gateShown, static_cast<double>(gate.StopX)};
    line[2] = {fenceShown, static_cast<double>(gate.FenceStartX)};
    line[3] = {fenceShown, static_cast<double>(gate.FenceStopX)};
  }
  profileView().placeGateLines(lines);
}

void UpdateGraphLabels() {
  ProfileView& view = profileView();
  view.setGraphLabel(GraphLabel::reference, "Ref: " + decibels(Settings.ReferenceLevel) + " dBm");
  view.setGraphLabel(GraphLabel::scale, "Scale: " + decibels(Settings.ScalePerDivision) + " dB");
  view.setGraphLabel(GraphLabel::capture, FormatTime(Settings.CaptureTime));
  view.setGraphLabel(GraphLabel::start, FormatTime(Settings.TriggerDelay));
  view.setGraphLabel(GraphLabel::stop, FormatTime(graphStopTime()));
  PositionGateLines();
}

void DrawSecondProfile() { drawTrace(SecondProfileTrace, secondProfileColour); }

void DrawMarkers() {
  for (std::size_t index = 0; index < markerCount; ++index) {
    if (Settings.Markers[index].Enabled != False16) drawMarker(index);
  }
}

void RedrawProfile() {
  DrawGraphGrid();
  if (profileView().secondProfileIsShown()) DrawSecondProfile();
  DrawMarkers();
  drawTrace(ProfileTrace, liveTraceColour);
  profileView().graph().show();
}

bool RefreshPicture() { return drawOrReportOnce(RedrawProfile); }

void DrawGraph() {
  DrawGraphGrid();
  UpdateGraphLabels();
  RedrawProfile();
  PositionGateLines();
}

bool RefreshGraph() { return drawOrReportOnce(DrawGraph); }

}  // namespace pulsemod
