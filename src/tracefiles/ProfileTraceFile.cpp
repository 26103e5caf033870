#include "tracefiles/ProfileTraceFile.h"

#include <cstdint>

#include "files/TextFile.h"
#include "link/Fault.h"
#include "link/NumberText.h"
#include "platform/Services.h"
#include "profile/GraphScale.h"
#include "profile/MeasurementSettings.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileGraph.h"
#include "profile/ProfileView.h"

namespace pulsemod {

namespace {

constexpr auto openTitle = "Open Second Profile";

/// What stands at the head of a file.
struct TraceHead {
  /// 0 for a file that is none.
  std::int32_t points = 0;
  float captureTime = 0;
};

TraceHead readHead(LineReader& lines) {
  constexpr int linesBefore = 3;
  for (int line = 0; line < linesBefore; ++line) lines.nextOrEmpty();
  const auto points = leadingWhole<std::int32_t>(namedValue(lines.nextOrEmpty()));
  if (!points) throw Fault("Overflow: the number of points in line 4 does not fit");
  if (*points <= 0) return {};
  return {*points, fileSingle(lines, namedValue(lines.next()))};
}

void requireStorable(std::int32_t points) {
  if (static_cast<std::size_t>(points) <= tracePoints) return;
  throw Fault("Subscript out of range: a profile has 1 to 400 points, not " +
              std::to_string(points));
}

void refuseOtherPoints(float savedCaptureTime) {
  Dialogs& dialogs = services().dialogs;
  dialogs.showMessage(
      "The number of display points and capture time of the saved file are not the same as the "
      "current setting\r\n\r\nhence the saved trace will not be displayed",
      "display points is Different", MessageIcon::information);
  dialogs.showMessage(
      "To display the saved graph you have to do one of the following\r\n 1- Go to PulseMod menu, "
      "select stop and reopen the saved trace\r\n2- Change the capture period of the current "
      "setting to the saved graph capture time\r\n the saved graph capture period = " +
          numberText(savedCaptureTime) + "s",
      " Display points and Capture period are Different", MessageIcon::information);
}

bool wantsSavedCaptureTime() {
  return services().dialogs.askYesNo(
      "The Capture period of the saved file is not the same as the current setting\r\nChange to "
      "saved capture period?",
      "Capture Period Different", MessageIcon::question);
}

/// The file holds the 7-digit text of a capture time, which need not be the same single.
bool isPresentCaptureTime(float saved) {
  return saved == static_cast<float>(throughText(Settings.CaptureTime));
}

/// Nothing is sent: the graph alone follows the file.
void takeOverHead(const TraceHead& head) {
  Settings.DisplayPoints = static_cast<std::int16_t>(head.points);
  Settings.CaptureTime = head.captureTime;
  ++EditCounts.CaptureTime;
  RefreshGraph();
}

/// The axis of the points: of the file while stopped, else of the meter, which the user may bring
/// to the file's.
void agreeOnAxis(const TraceHead& head) {
  if (AcquisitionRunning == False16) {
    takeOverHead(head);
  } else if (!isPresentCaptureTime(head.captureTime) && wantsSavedCaptureTime()) {
    ReplaceCaptureTime(head.captureTime);
  }
}

/// All points or none.
void readPoints(LineReader& lines, std::int32_t count) {
  Trace trace = SecondProfileTrace;
  for (std::size_t point = 0; point < static_cast<std::size_t>(count); ++point) {
    trace[point] = secondNumber(lines, lines.next());
  }
  SecondProfileTrace = trace;
}

}  // namespace

std::string profileTraceText() {
  const std::size_t points = drawnPoints();
  const std::string end(platformLineEnd);
  std::string text = "Date\t" + services().clock.dateText() + end + "Time\t" +
                     services().clock.timeText() + end + end + "Graph Points\t" +
                     std::to_string(points) + end + "Capture Period\t" +
                     numberText(Settings.CaptureTime) + end;
  for (std::size_t point = 1; point <= points; ++point) {
    text += numberText(GraphXToTime(static_cast<float>(point)));
    text += '\t';
    text += numberText(ProfileTrace[point - 1]);
    text += end;
  }
  return text;
}

void SaveProfileTrace() {
  const std::string path = services().fileDialogs.askSaveFile("Save Profile");
  if (!path.empty()) writeFile(path, profileTraceText());
}

void OpenProfileTrace() {
  const std::string path = services().fileDialogs.askOpenFile(openTitle);
  if (!path.empty()) OpenProfileTraceFile(path);
}

void OpenProfileTraceFile(const std::string& path) {
  const std::string text = readTextFile(path);
  LineReader lines(text);
  const TraceHead head = readHead(lines);
  if (head.points == 0) {
    services().dialogs.showMessage("Invalid pmd file. Can't load graph data", openTitle,
                                   MessageIcon::none);
    return;
  }
  if (AcquisitionRunning != False16 && head.points != Settings.DisplayPoints) {
    refuseOtherPoints(head.captureTime);
    return;
  }
  requireStorable(head.points);
  agreeOnAxis(head);
  try {
    readPoints(lines, head.points);
  } catch (const Fault& fault) {
    services().dialogs.showMessage(fault.what(), openTitle, MessageIcon::exclamation);
    return;
  }
  profileView().showSecondProfile();
  if (AcquisitionRunning == False16) RefreshPicture();
}

}  // namespace pulsemod
