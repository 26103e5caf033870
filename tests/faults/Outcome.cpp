#include "Outcome.h"

#include <algorithm>

namespace pulsemod::test {

namespace {

/// Calls `visit` with the name and the value of each number that the outcome holds.
template <typename Visit>
void walkNumbers(const Outcome& outcome, const Visit& visit) {
  const MeasurementSettings& s = outcome.settings;
  visit("MeterModel", 0, outcome.meterModel);
  visit("CaptureTime", 0, s.CaptureTime);
  visit("TriggerDelay", 0, s.TriggerDelay);
  visit("ReferenceLevel", 0, s.ReferenceLevel);
  visit("ScalePerDivision", 0, s.ScalePerDivision);
  visit("ActiveChannel", 0, s.ActiveChannel);
  visit("ActiveGate", 0, s.ActiveGate);
  visit("GatesVisible", 0, s.GatesVisible);
  visit("MeasurementType", 0, s.MeasurementType);
  visit("DeltaMeasurement", 0, s.DeltaMeasurement);
  visit("DisplayPoints", 0, s.DisplayPoints);
  visit("RepeatEnabled", 0, s.RepeatEnabled);
  visit("RepeatCount", 0, s.RepeatCount);
  visit("RepeatOffset", 0, s.RepeatOffset);
  for (std::size_t i = 0; i < gateCount; ++i) {
    const GateSettings& gate = s.Gates[i];
    visit("Gates.StartTime", i, gate.StartTime);
    visit("Gates.StopTime", i, gate.StopTime);
    visit("Gates.FenceStart", i, gate.FenceStart);
    visit("Gates.FenceStop", i, gate.FenceStop);
    visit("Gates.Enabled", i, gate.Enabled);
    visit("Gates.FenceEnabled", i, gate.FenceEnabled);
  }
  for (std::size_t i = 0; i < markerCount; ++i) {
    const MarkerSettings& marker = s.Markers[i];
    visit("Markers.Reading", i, marker.Reading);
    visit("Markers.Position", i, marker.Position);
    visit("Markers.Enabled", i, marker.Enabled);
    visit("Markers.IsActive", i, marker.IsActive);
  }
  for (std::size_t i = 0; i < channelCount; ++i) {
    const ChannelSettings& channel = s.Channels[i];
    visit("Channels.AveragingOn", i, channel.AveragingOn);
    visit("Channels.AveragingCount", i, channel.AveragingCount);
    visit("Channels.InputConfig", i, static_cast<float>(channel.InputConfig));
  }
  const CCDFSettings& ccdf = outcome.ccdf;
  visit("CCDF.StartPower", 0, ccdf.StartPower);
  visit("CCDF.StopPower", 0, ccdf.StopPower);
  visit("CCDF.CursorOn", 0, ccdf.CursorOn);
  visit("CCDF.CursorPower", 0, ccdf.CursorPower);
  visit("CCDF.CursorPercent", 0, ccdf.CursorPercent);
  for (std::size_t i = 0; i < outcome.readings.size(); ++i) {
    visit("GateReadings", i, outcome.readings[i]);
  }
}

std::vector<double> numbers(const Outcome& outcome) {
  std::vector<double> all;
  all.reserve(256);
  walkNumbers(outcome, [&all](const char*, std::size_t, auto value) {
    all.push_back(static_cast<double>(value));
  });
  return all;
}

void compareNumbers(const Outcome& expected, const Outcome& actual, std::string& text) {
  const std::vector<double> wanted = numbers(expected);
  const std::vector<double> found = numbers(actual);
  if (wanted == found) return;
  std::size_t at = 0;
  walkNumbers(actual, [&](const char* name, std::size_t index, auto) {
    if (wanted[at] != found[at] && text.size() < 500) {
      text += std::string(name) + "[" + std::to_string(index) + "] is " +
              std::to_string(found[at]) + " and not " + std::to_string(wanted[at]) + "; ";
    }
    ++at;
  });
}

void compareTexts(const char* what, const std::vector<std::string>& expected,
                  const std::vector<std::string>& actual, std::string& text) {
  if (expected == actual) return;
  const auto [wanted, found] =
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  text += std::string(what) + " " + std::to_string(wanted - expected.begin()) + " is \"" +
          (found == actual.end() ? "(none)" : *found) + "\" and not \"" +
          (wanted == expected.end() ? "(none)" : *wanted) + "\"; ";
}

void compareTraces(const char* what, const Trace& expected, const Trace& actual,
                   std::string& text) {
  if (expected == actual) return;
  const auto [wanted, found] = std::mismatch(expected.begin(), expected.end(), actual.begin());
  text += std::string(what) + " " + std::to_string(wanted - expected.begin()) + " is " +
          std::to_string(*found) + " and not " + std::to_string(*wanted) + "; ";
}

const char* endText(Outcome::End end) {
  constexpr const char* texts[] = {"returned", "waited", "ended", "broken"};
  return texts[static_cast<int>(end)];
}

}  // namespace

std::string differences(const Outcome& expected, const Outcome& actual) {
  std::string text;
  if (expected.end != actual.end) {
    text += std::string("it ") + endText(actual.end) + " and not " + endText(expected.end) + "; ";
  }
  compareTexts("message", expected.sent, actual.sent, text);
  compareTexts("box", expected.boxes, actual.boxes, text);
  compareTexts("menus", expected.menus, actual.menus, text);
  if (expected.ccdf.MeasurementSource != actual.ccdf.MeasurementSource) {
    text += "source is " + actual.ccdf.MeasurementSource + "; ";
  }
  if (expected.drawings != actual.drawings) {
    text += std::to_string(actual.drawings) + " drawings and not " +
            std::to_string(expected.drawings) + "; ";
  }
  if (expected.running != actual.running) text += "running differs; ";
  const bool ended = expected.end != Outcome::End::returned;
  if (!ended && expected.progressShown != actual.progressShown) text += "progress differs; ";
  compareTraces("profile point", expected.profile, actual.profile, text);
  compareTraces("curve point", expected.curve, actual.curve, text);
  compareNumbers(expected, actual, text);
  return text;
}

}  // namespace pulsemod::test
