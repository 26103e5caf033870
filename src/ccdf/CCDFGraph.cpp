#include "ccdf/CCDFGraph.h"

#include <cmath>
#include <vector>

#include "ccdf/CCDFState.h"
#include "ccdf/CCDFView.h"
#include "link/Fault.h"
#include "link/NumberText.h"
#include "profile/GraphFault.h"
#include "profile/GraphScale.h"

namespace pulsemod {

namespace {

double powerSpan() { return throughText(CCDF.StopPower) - throughText(CCDF.StartPower); }

/// The points of a curve that have a logarithm, as they are drawn. `logarithms` keeps the rest.
std::vector<PicturePoint> logarithmicPoints(const Trace& curve, Trace& logarithms) {
  const std::size_t count = drawnPoints();
  std::vector<PicturePoint> points;
  points.reserve(count);
  for (std::size_t index = 0; index < count; ++index) {
    if (!(curve[index] > 0)) continue;
    logarithms[index] = std::log10(curve[index]);
    points.push_back({static_cast<double>(index + 1), static_cast<double>(logarithms[index])});
  }
  return points;
}

void drawCurve(const Trace& curve, Trace& logarithms, Colour colour) {
  const std::vector<PicturePoint> points = logarithmicPoints(curve, logarithms);
  if (!points.empty()) ccdfView().graph().polyline(points, colour);
}

}  // namespace

float XToPower(double x) {
  return checkedSingle(throughText(CCDF.StartPower) +
                       checkedQuotient(x * powerSpan(), Settings.DisplayPoints));
}

float PowerToX(float power) {
  const double fromStart = throughText(power) - throughText(CCDF.StartPower);
  return checkedSingle(checkedQuotient(fromStart * Settings.DisplayPoints, powerSpan()));
}

void ScaleCCDFGraph() {
  const auto points = static_cast<double>(drawnPoints());
  Picture& picture = ccdfView().graph();
  picture.clear();
  picture.setScale({0, ccdfTop, points, ccdfBottom - ccdfTop});
  for (int i = 1; i < graphDivisions; ++i) {
    // From below the bottom edge, so that the line reaches it whatever the rounding.
    constexpr double belowBottom = -6.5;
    const double x = points * i / graphDivisions;
    picture.line({x, belowBottom}, {x, ccdfTop}, ccdfGridColour);
  }
  constexpr int decadeLines = 6;
  for (int i = 1; i <= decadeLines; ++i) {
    const double y = ccdfTop - i;
    picture.line({1, y}, {points, y}, ccdfGridColour);
  }
  picture.endBackground();
}

void DrawCCDFGraph() {
  ScaleCCDFGraph();
  if (ccdfView().secondCurveIsShown()) {
    Trace logarithms{};
    drawCurve(SecondCCDFData, logarithms, secondCurveColour);
  }
  drawCurve(CCDFData, CCDFLogData, liveCurveColour);
  ccdfView().graph().show();
}

bool RefreshCCDFGraph() { return drawOrReportOnce(DrawCCDFGraph); }

}  // namespace pulsemod
