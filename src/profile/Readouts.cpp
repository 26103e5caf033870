#include "profile/Readouts.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "link/TimeText.h"
#include "profile/GraphScale.h"
#include "profile/ProfileView.h"
#include "profile/ReadoutViews.h"

namespace pulsemod {

std::array<float, readingGroups * resultsPerGroup> GateReadings{};

namespace {

constexpr int typeField = 1;

/// Stores the results that stand in the fields `firstField`, `firstField` + 2 and so on.
void storeResults(const std::string& reply, int firstField, std::size_t group) {
  const std::string typeText = SplitReply(reply, typeField);
  if (typeText.empty()) return;
  const std::int32_t type = leadingWhole<std::int16_t>(typeText).value_or(0);
  const std::size_t expected = measurementResults(type).size();
  std::array<float, resultsPerGroup> results{};
  for (std::size_t result = 0; result < expected; ++result) {
    const std::string text = SplitReply(reply, firstField + 2 * static_cast<int>(result));
    const auto value = leadingSingle(text);
    if (text.empty() || !value) return;
    results[result] = *value;
  }
  Settings.MeasurementType = type;
  std::copy_n(results.begin(), expected,
              GateReadings.begin() + static_cast<std::ptrdiff_t>(group * resultsPerGroup));
}

void readGroup(const std::string& query, int firstField, std::size_t group) {
  std::string reply;
  if (QueryMeter(query, reply)) storeResults(reply, firstField, group);
}

bool isOn(const GateSettings& gate) { return gate.Enabled != False16; }

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
  MarkerSettings& marker = Settings.Markers[index];
  marker.Reading = *reading;
  marker.Position = *position;
  try {
    PositionMarker(marker);
  } catch (const Fault&) {
    // Reported when the marker is drawn, once.
  }
}

void showGroup(InfoBoxView& view, std::size_t group) {
  const std::span<const MeasurementResult> results = measurementResults(Settings.MeasurementType);
  for (std::size_t result = 0; result < resultsPerGroup; ++result) {
    const std::size_t element = group * resultsPerGroup + result;
    if (result >= results.size()) {
      view.hideResult(element);
      continue;
    }
    view.showResult(element, results[result].name,
                    fixedText(static_cast<double>(GateReadings[element]), 2, 3),
                    results[result].unit);
  }
}

}  // namespace

std::span<const MeasurementResult> measurementResults(std::int32_t type) {
  static constexpr MeasurementResult averagePeakCrest[] = {
      {"Avg", "dBm"}, {"Pk", "dBm"}, {"Cr", "dB"}};
  static constexpr MeasurementResult averageRange[] = {
      {"Avg", "dBm"}, {"Min", "dBm"}, {"Max", "dBm"}};
  constexpr std::size_t shortTypes = 3;
  if (type >= 1 && static_cast<std::size_t>(type) <= shortTypes) {
    return std::span(averagePeakCrest).first(static_cast<std::size_t>(type));
  }
  if (type == 4) return averageRange;
  return {};
}

void ReadGateMeasurements(GateMeasurementMode mode) {
  // The reply for a gate carries its number, one field more before the values than the profile's.
  constexpr int firstProfileField = 3;
  constexpr int firstGateField = 4;
  if (mode == GateMeasurementMode::profile) {
    readGroup("PMRDO " + ChannelText(), firstProfileField, 0);
    return;
  }
  for (std::size_t gate = 1; gate <= gateCount; ++gate) {
    if (!isOn(Settings.Gates[gate - 1])) continue;
    readGroup("GPNMO " + ChannelText() + "," + std::to_string(gate), firstGateField, gate);
  }
}

GateMeasurementMode presentGateMeasurementMode() {
  const bool aGateIsOn = std::any_of(Settings.Gates.begin(), Settings.Gates.end(), isOn);
  return aGateIsOn ? GateMeasurementMode::gates : GateMeasurementMode::profile;
}

void PositionMarker(MarkerSettings& marker) {
  // A graph without a time axis is reported when it is drawn.
  if (!graphHasTimeAxis()) return;
  marker.PositionX = static_cast<std::int16_t>(std::nearbyint(TimeToGraphX(marker.Position)));
}

void ReadMarkerReadings() {
  for (std::size_t index = 0; index < deltaMarker; ++index) {
    if (Settings.Markers[index].Enabled != False16) readMarker(index);
  }
}

void UpdateInfoBox() {
  InfoBoxView* const view = profileView().infoBox();
  if (view == nullptr) return;
  view->setGroup(0, true, presentGateMeasurementMode() == GateMeasurementMode::profile);
  for (std::size_t gate = 1; gate <= gateCount; ++gate) {
    const bool on = isOn(Settings.Gates[gate - 1]);
    view->setGroup(gate, on || gate <= meterGates, on);
  }
  for (std::size_t group = 0; group < readingGroups; ++group) showGroup(*view, group);
}

void UpdateMarkersWindow() {
  MarkersView* const view = profileView().markersWindow();
  if (view == nullptr) return;
  for (std::size_t index = 0; index < deltaMarker; ++index) {
    const MarkerSettings& marker = Settings.Markers[index];
    const bool on = marker.Enabled != False16;
    view->setMarkerEnabled(index, on);
    if (on) view->showMarker(index, numberText(marker.Reading), FormatTime(marker.Position));
  }
}

}  // namespace pulsemod
