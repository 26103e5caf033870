#include "ccdf/CCDFGraphFile.h"

#include <cstdint>

#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFState.h"
#include "ccdf/CCDFView.h"
#include "ccdf/PowerAxis.h"
#include "files/TextFile.h"
#include "link/Fault.h"
#include "link/NumberText.h"
#include "platform/Services.h"
#include "profile/GraphScale.h"

namespace pulsemod {

namespace {

constexpr double kindOfFile = 2;
constexpr std::string_view lineEnd = "\r\n";

void refuse(const std::string& text, const std::string& title) {
  services().dialogs.showMessage(text, title, MessageIcon::none);
}

std::int32_t readPointCount(LineReader& lines) {
  constexpr int linesBefore = 3;
  for (int line = 0; line < linesBefore; ++line) lines.nextOrEmpty();
  const auto points = leadingWhole<std::int32_t>(namedValue(lines.nextOrEmpty()));
  if (!points) throw Fault("Overflow: the number of points in line 5 does not fit");
  return *points;
}

bool wantsSavedPowers() {
  return services().dialogs.askYesNo(
      "Starting Power and/or Stoping Power of the Current Setting of the Power Meter is not the "
      "same as the graph required to be opened\r\n\r\nChange to saved Power?",
      "Power is different", MessageIcon::question);
}

/// False when the points must not be loaded.
bool agreeOnPowers(float startPower, float stopPower) {
  if (startPower == CCDF.StartPower && stopPower == CCDF.StopPower) return true;
  if (!wantsSavedPowers()) {
    refuse("Saved Graph cannot be displayed", "Power is different");
    return false;
  }
  ReplacePowerRange(startPower, stopPower);
  return true;
}

void readPoints(LineReader& lines, std::int32_t count) {
  if (static_cast<std::size_t>(count) > tracePoints) {
    throw Fault("Subscript out of range: a curve has 1 to 400 points, not " +
                std::to_string(count));
  }
  Trace curve = SecondCCDFData;
  for (std::size_t point = 0; point < static_cast<std::size_t>(count); ++point) {
    curve[point] = secondNumber(lines, lines.next());
  }
  SecondCCDFData = curve;
}

}  // namespace

std::string ccdfGraphText() {
  const std::size_t points = drawnPoints();
  const std::string end(lineEnd);
  std::string text = "2" + end + "Date\t" + services().clock.dateText() + end + "Time\t" +
                     services().clock.timeText() + end + end + "Graph Points\t" +
                     std::to_string(points) + end + exactText(CCDF.StartPower) + end +
                     exactText(CCDF.StopPower) + end;
  for (std::size_t point = 1; point <= points; ++point) {
    text += numberText(XToPower(static_cast<double>(point)));
    text += '\t';
    text += numberText(CCDFData[point - 1]);
    text += end;
  }
  return text;
}

void SaveCCDFGraph() {
  const std::string path = services().fileDialogs.askSaveFile("Save Curve");
  if (!path.empty()) writeFile(path, ccdfGraphText());
}

void OpenCCDFGraph() {
  const std::string path = services().fileDialogs.askOpenFile("Open Second Curve");
  if (!path.empty()) OpenCCDFGraphFile(path);
}

void OpenCCDFGraphFile(const std::string& path) {
  const std::string text = readTextFile(path);
  LineReader lines(text);
  if (leadingNumber(lines.nextOrEmpty()) != kindOfFile) {
    refuse("This is not a CCDF graph. Can't load graph data here", "not a CCDF graph");
    return;
  }
  const std::int32_t points = readPointCount(lines);
  if (points <= 0) {
    refuse("Invalid pmd file. Can't load graph data", "Open Second Profile");
    return;
  }
  const float startPower = fileSingle(lines, lines.next());
  const float stopPower = fileSingle(lines, lines.next());
  if (agreeOnPowers(startPower, stopPower)) readPoints(lines, points);
  ccdfView().showSecondCurve();
  if (AcquisitionRunning == False16) RefreshCCDFGraph();
}

}  // namespace pulsemod
