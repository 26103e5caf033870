#pragma once

#include <cmath>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "FuzzInput.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFState.h"
#include "link/Conversation.h"
#include "profile/GraphMouse.h"
#include "profile/GraphScale.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "profile/Readouts.h"
#include "settings/PropertyEdits.h"
#include "support/FakeCCDFView.h"
#include "support/FakeProfileView.h"
#include "support/FakeWorld.h"

/// What must hold of the model after every reply and every file, and what the windows do with the
/// model then: they draw it, or a `Fault` says why not.

namespace pulsemod::fuzz {

/// Looks at what is drawn instead of keeping it.
class CheckedPicture : public Picture {
 public:
  void clear() override {}
  void setScale(const PictureScale& scale) override {
    require(scale.width > 0 && scale.height != 0 && std::isfinite(scale.height) &&
                std::isfinite(scale.top),
            "a picture has an area");
  }
  void line(PicturePoint from, PicturePoint to, Colour) override {
    requireFinite(from);
    requireFinite(to);
  }
  void polyline(std::span<const PicturePoint> points, Colour) override {
    require(!points.empty() && points.size() <= tracePoints, "a line has 1 to 400 points");
    for (const PicturePoint& point : points) {
      requireFinite(point);
      require(point.x >= 1 && point.x <= static_cast<double>(tracePoints), "it is on the graph");
    }
    pointsOfLast = points.size();
  }
  void text(PicturePoint topLeft, std::string_view, Colour) override { requireFinite(topLeft); }
  double textHeight() const override { return 4; }
  void endBackground() override {}
  void show() override { ++timesShown; }

  int timesShown = 0;
  std::size_t pointsOfLast = 0;

 private:
  static void requireFinite(PicturePoint point) {
    require(std::isfinite(point.x) && std::isfinite(point.y), "what is drawn is somewhere");
  }
};

class ProfileWindow : public test::FakeProfileView {
 public:
  Picture& graph() override { return checked; }
  CheckedPicture checked;
};

class CCDFWindow : public test::FakeCCDFView {
 public:
  Picture& graph() override { return checked; }
  CheckedPicture checked;
};

inline void requireNoBoxTwice(const test::FakeWorld& world) {
  std::set<std::pair<std::string, std::string>> shown;
  for (const test::ShownBox& box : world.dialogs.messages) {
    require(shown.emplace(box.title, box.text).second, "no box is shown twice");
  }
}

inline void requireFinite(const Trace& trace) {
  for (const float value : trace) require(std::isfinite(value), "a trace is finite");
}

inline void requireTruth(Boolean16 value) {
  require(value == True16 || value == False16, "a truth value is one of the two");
}

inline void requireSoundSettings() {
  for (const float value : {Settings.CaptureTime, Settings.TriggerDelay, Settings.ReferenceLevel,
                            Settings.ScalePerDivision, Settings.RepeatOffset}) {
    require(std::isfinite(value), "a setting is finite");
  }
  for (const GateSettings& gate : Settings.Gates) {
    requireTruth(gate.Enabled);
    requireTruth(gate.FenceEnabled);
    for (const float time : {gate.StartTime, gate.StopTime, gate.FenceStart, gate.FenceStop}) {
      require(std::isfinite(time), "a gate's time is finite");
    }
  }
  for (const MarkerSettings& marker : Settings.Markers) {
    requireTruth(marker.Enabled);
    requireTruth(marker.IsActive);
    require(std::isfinite(marker.Position) && std::isfinite(marker.Reading), "a marker is finite");
    require(marker.PositionX >= 0, "a marker's column is on the graph or left of it");
  }
  requireTruth(Settings.RepeatEnabled);
  for (const float reading : GateReadings) require(std::isfinite(reading), "a result is finite");
}

/// The columns that hit tests use.
inline void requireGateColumnsOnGraph() {
  const std::int32_t last = std::max<std::int32_t>(Settings.DisplayPoints, 0);
  for (const GateSettings& gate : Settings.Gates) {
    for (const std::int32_t x : {gate.StartX, gate.StopX, gate.FenceStartX, gate.FenceStopX}) {
      require(x >= 0 && x <= last, "a gate's column is on the graph");
    }
  }
}

inline void hoverAndDrag() {
  const double points = Settings.DisplayPoints;
  for (const double x : {-1e9, 0.0, points / 3, points, 1e9}) GraphMouseMove({x, -1e9});
  GraphMouseMove({static_cast<double>(Settings.Gates[0].StartX), 0});
  GraphButtonDown();
  GraphMouseMove({points / 2, 1e9});
  GraphMouseMove({1e30, 0});
  GraphButtonUp();
}

inline void checkProfileModel(const test::FakeWorld& world, ProfileWindow& view) {
  requireSoundSettings();
  requireFinite(ProfileTrace);
  requireFinite(SecondProfileTrace);
  view.secondProfileShown = true;
  view.infoBoxOpen = view.markersOpen = true;
  const int timesShown = view.checked.timesShown;
  const bool drawable = !faults(RedrawProfile);
  require(view.checked.timesShown == timesShown + (drawable ? 1 : 0),
          "a picture appears whole or not at all");
  require(!drawable || drawnPoints() == view.checked.pointsOfLast,
          "the trace has as many points as the graph");
  if (!faults(UpdateGraphLabels)) requireGateColumnsOnGraph();
  for (int gate = 1; gate <= static_cast<int>(gateCount); ++gate) {
    const GateControls controls = gateControls(gate);
    require(!controls.activatable || gate <= meterGates, "the repeat's gates cannot be active");
    require(!controls.switchable || controls.shown, "what may be clicked is there");
  }
  UpdateInfoBox();
  UpdateMarkersWindow();
  hoverAndDrag();
  requireSoundSettings();
  require(!Conversation.open && Conversation.kept.empty(), "no exchange is left over");
  requireNoBoxTwice(world);
}

inline void checkCCDFModel(const test::FakeWorld& world, CCDFWindow& view) {
  requireFinite(CCDFData);
  requireFinite(SecondCCDFData);
  requireTruth(CCDF.CursorOn);
  for (const float value :
       {CCDF.StartPower, CCDF.StopPower, CCDF.CursorPower, CCDF.CursorPercent, CCDF.CursorX}) {
    require(std::isfinite(value), "axis and cursor are finite");
  }
  view.secondCurveShown = true;
  const int timesShown = view.checked.timesShown;
  const bool drawable = !faults(DrawCCDFGraph);
  require(view.checked.timesShown == timesShown + (drawable ? 1 : 0),
          "a picture appears whole or not at all");
  for (const double x : {-1e9, 0.0, static_cast<double>(CCDF.CursorX), 400.0}) {
    CCDFMouseMove({x, 0});
    CCDFButtonDown();
    CCDFMouseMove({x + 7, 0});
    CCDFMouseMove({1e30, 0});
    CCDFButtonUp();
  }
  UpdateCursorLabels();
  require(std::isfinite(CCDF.CursorPower) && std::isfinite(CCDF.CursorX), "a drag stays finite");
  require(!Conversation.open && Conversation.kept.empty(), "no exchange is left over");
  requireNoBoxTwice(world);
}

}  // namespace pulsemod::fuzz
