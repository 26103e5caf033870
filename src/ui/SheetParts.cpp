#include "ui/SheetParts.h"

#include <algorithm>

#include "platform/Services.h"
#include "profile/MeasurementSettings.h"
#include "startup/MeterModel.h"
#include "ui/GraphWidget.h"
#include "ui/Look.h"

namespace pulsemod {

namespace {

QString channelText() {
  if (Settings.ActiveChannel == bothChannels) return QStringLiteral("Channels 1 and 2");
  return QStringLiteral("Channel %1").arg(Settings.ActiveChannel);
}

}  // namespace

GraphSheet beginSheet(const QString& title, const QWidget& panel, const GraphWidget& graph) {
  GraphSheet sheet;
  sheet.heading = {{title}, {channelText()}};
  if (!MeterIdentity.empty()) sheet.heading.push_back({QString::fromStdString(MeterIdentity)});
  const Clock& clock = services().clock;
  sheet.heading.push_back({QString::fromStdString(clock.dateText() + " " + clock.timeText())});
  sheet.drawing = graph.shownDrawing();
  sheet.lines = graph.shownLines();
  sheet.font = panel.font();
  sheet.graphFont = graph.font();
  sheet.screenRatio = panel.devicePixelRatioF();
  sheet.screenSize = panel.size() * sheet.screenRatio;
  return sheet;
}

bool hasCurve(const Drawing& drawing, Colour colour) {
  return std::any_of(drawing.steps.begin(), drawing.steps.end(), [colour](const auto& step) {
    return step.kind == DrawingStep::Kind::polyline && step.colour == colour;
  });
}

SheetEntry curveEntry(const QString& text, Colour colour) { return {text, toQt(colour)}; }

}  // namespace pulsemod
