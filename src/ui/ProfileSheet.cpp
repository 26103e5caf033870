#include "ui/ProfileSheet.h"

#include <span>

#include "link/NumberText.h"
#include "link/TimeText.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "profile/Readouts.h"
#include "ui/Look.h"
#include "ui/ProfilePanel.h"
#include "ui/SheetParts.h"

namespace pulsemod {

namespace {

QString timeText(float seconds) { return QString::fromStdString(FormatTime(seconds)); }

/// "Avg -12.30 dBm, Pk 4.568 dBm"; empty while nobody has them read.
QString resultsText(std::size_t group) {
  if (profileView().infoBox() == nullptr) return {};
  QStringList texts;
  const std::span<const MeasurementResult> results = measurementResults(Settings.MeasurementType);
  for (std::size_t result = 0; result < results.size(); ++result) {
    const float value = GateReadings[group * resultsPerGroup + result];
    texts << QStringLiteral("%1 %2 %3")
                 .arg(QLatin1String(results[result].name),
                      QString::fromStdString(fixedText(static_cast<double>(value), 2, 3)),
                      QLatin1String(results[result].unit));
  }
  return texts.join(QStringLiteral(", "));
}

QString withResults(const QString& text, const QString& results) {
  return results.isEmpty() ? text : text + QStringLiteral(": ") + results;
}

void addCurves(GraphSheet& sheet) {
  if (!hasCurve(sheet.drawing, secondProfileColour)) return;
  sheet.foot.push_back(curveEntry(QStringLiteral("Live profile"), liveTraceColour));
  sheet.foot.push_back(curveEntry(QStringLiteral("Second profile"), secondProfileColour));
}

void addGates(GraphSheet& sheet) {
  if (presentGateMeasurementMode() == GateMeasurementMode::profile) {
    const QString results = resultsText(0);
    if (!results.isEmpty()) sheet.foot.push_back({withResults(QStringLiteral("Profile"), results)});
    return;
  }
  for (std::size_t index = 0; index < gateCount; ++index) {
    const GateSettings& gate = Settings.Gates[index];
    if (gate.Enabled == False16 || Settings.GatesVisible == False16) continue;
    const QString span = QStringLiteral("%1 %2, %3 to %4");
    const QString text = span.arg(QStringLiteral("Gate"))
                             .arg(index + 1)
                             .arg(timeText(gate.StartTime), timeText(gate.StopTime));
    sheet.foot.push_back({withResults(text, resultsText(index + 1)), look::gateLine});
    if (gate.FenceEnabled == False16) continue;
    sheet.foot.push_back({span.arg(QStringLiteral("Fence"))
                              .arg(index + 1)
                              .arg(timeText(gate.FenceStart), timeText(gate.FenceStop)),
                          look::fenceLine, true});
  }
}

void addMarkers(GraphSheet& sheet) {
  for (std::size_t index = 0; index < markerCount; ++index) {
    const MarkerSettings& marker = Settings.Markers[index];
    if (marker.Enabled == False16) continue;
    if (index == deltaMarker) {
      sheet.foot.push_back({QStringLiteral("Delta marker D at %1").arg(timeText(marker.Position))});
      continue;
    }
    const QString reading = QString::fromStdString(numberText(marker.Reading));
    sheet.foot.push_back({QStringLiteral("Marker %1: %2 dBm at %3")
                              .arg(index + 1)
                              .arg(reading, timeText(marker.Position))});
  }
}

}  // namespace

GraphSheet profileSheet(const ProfilePanel& panel) {
  GraphSheet sheet = beginSheet(QStringLiteral("Pulse profile"), panel, panel.graphWidget());
  const auto label = [&panel](GraphLabel which) { return panel.graphLabel(which); };
  sheet.topLeft = label(GraphLabel::reference);
  sheet.topRight = label(GraphLabel::scale) + QStringLiteral(" per division");
  sheet.bottomLeft = QStringLiteral("Start: ") + label(GraphLabel::start);
  sheet.bottomCentre = QStringLiteral("Capture period: ") + label(GraphLabel::capture);
  sheet.bottomRight = QStringLiteral("Stop: ") + label(GraphLabel::stop);
  addCurves(sheet);
  addGates(sheet);
  addMarkers(sheet);
  return sheet;
}

}  // namespace pulsemod
