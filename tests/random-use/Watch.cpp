#include "Watch.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <algorithm>
#include <array>
#include <cmath>
#include <regex>
#include <vector>

#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFState.h"
#include "link/Conversation.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/TimeText.h"
#include "profile/AcquisitionControl.h"
#include "profile/GraphFault.h"
#include "profile/GraphScale.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "profile/ProfileView.h"
#include "ui/GraphWidget.h"

namespace randomuse {

namespace {

/// What the program says to a user, whole. Numbers and names are left open, nothing else is: a box
/// about anything else is none of its own.
const std::vector<std::regex>& knownBoxes() {
  static const std::vector<std::regex> known = [] {
    constexpr std::array texts = {
        R"(Could not read Power Meter Identity\s+Program will exit\.)",
        R"(Pelmora\.2 - PulseMod will only work with .* power meters)",
        R"(The power meter does not answer any more\s+Program will exit\.)",
        R"(Do you wish to save the settings\?)",
        R"(The printer did not take the page)",
        R"(\S.* is not installed with the user guide\.)",
        R"(This setting belongs to one channel, but channel \S+ is selected)",
        R"(The meter's profile readout has no point count)",
        R"(Please edit the Capture Time)",
        R"(Division by zero: (the capture time is 0|the graph has no points|the graph's scale is 0 dB))",
        R"(Division by zero)",
        R"(The graph has no points to draw)",
        R"(Subscript out of range: a (profile|curve) has 1 to 400 points, not -?\d+)",
        R"(Subscript out of range: the meter's curve has more than 400 values)",
        R"(Overflow)",
        R"(Overflow: the number in line \d+ does not fit)",
        R"(Overflow: the number of points in line \d does not fit)",
        R"(Overflow: the point count of the meter's curve does not fit 16 bits)",
        R"([^]* cannot be (read|written): \S[^]*)",
        R"(Input past end of file: it has only \d+ lines)",
        R"(There are no two numbers in line \d+ of the file)",
        R"(Type mismatch: line \d+ is neither True nor False)",
        R"((Fence|Gate) time must be (greater|less) than the (gate start|gate stop|trigger delay) time)",
        R"(Illegal GPIB Address, only 1 to 30 allowed\.)",
        R"(The communications settings could not be saved\.)",
        R"(Do not understand format '[^]*' - reverting to Seconds)",
        R"(Invalid response from Power Meter)",
        R"(The number of display points and capture time of the saved file are not [^]*)",
        R"(To display the saved graph you have to do one of the following[^]*)",
        R"(The Capture period of the saved file is not the same [^]*\?)",
        R"(Invalid pmd file\. Can't load graph data)",
        R"(This is not a CCDF graph\. Can't load graph data here)",
        R"(Starting Power and/or Stoping Power of the Current Setting [^]*\?)",
        R"(Saved Graph cannot be displayed)",
        R"(No need to change, the measurement Source is (Gate|Channel) )",
        R"(Can not change measurement source, (GATE|MARKER) is not active)",
        R"(Can not change measurement source, Put current mode limit )",
        R"(Can not change to Channel)",
        R"(The measurement source is changed)",
        R"(The device of the port was unplugged\.)"};
    return std::vector<std::regex>(texts.begin(), texts.end());
  }();
  return known;
}

bool isKnown(const std::string& text) {
  return std::any_of(knownBoxes().begin(), knownBoxes().end(),
                     [&text](const std::regex& known) { return std::regex_match(text, known); });
}

bool overSerial() { return pulsemod::LinkSettings.commsType == pulsemod::commsTypeRS232; }

std::string nameOf(const QWidget& window) { return window.objectName().toStdString(); }
std::string text(const QLabel& label) { return label.text().toStdString(); }

const pulsemod::GraphWidget* graphIn(const QWidget& window) {
  for (const QWidget* child : window.findChildren<QWidget*>()) {
    if (const auto* graph = dynamic_cast<const pulsemod::GraphWidget*>(child)) return graph;
  }
  return nullptr;
}

/// The live trace as it is on the screen.
std::vector<pulsemod::PicturePoint> shownTrace(const pulsemod::GraphWidget& graph) {
  const pulsemod::Drawing& drawing = graph.shownDrawing();
  for (auto step = drawing.steps.rbegin(); step != drawing.steps.rend(); ++step) {
    if (step->kind != pulsemod::DrawingStep::Kind::polyline) continue;
    if (step->colour != pulsemod::liveTraceColour) break;
    const auto first = drawing.points.begin() + static_cast<std::ptrdiff_t>(step->firstPoint);
    return {first, first + static_cast<std::ptrdiff_t>(step->pointCount)};
  }
  return {};
}

/// As it must be.
std::vector<pulsemod::PicturePoint> expectedTrace(bool isCCDF) {
  std::vector<pulsemod::PicturePoint> points;
  for (std::size_t i = 0; i < pulsemod::drawnPoints(); ++i) {
    const float value = isCCDF ? pulsemod::CCDFData[i] : pulsemod::ProfileTrace[i];
    if (isCCDF && !(value > 0)) continue;
    const float shown = isCCDF ? std::log10(value) : value;
    points.push_back({static_cast<double>(i + 1), static_cast<double>(shown)});
  }
  return points;
}

}  // namespace

Watch::Watch(Record& record, World& world, soak::MeterLine& gpib, soak::MeterLine& serial)
    : record_(record),
      world_(world),
      gpib_(gpib),
      serial_(serial),
      gpibRecord_(gpib.transcript()),
      serialRecord_(serial.transcript()) {}

QWidget* Watch::mainWindow() {
  QWidget* found = nullptr;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    const bool isMain = window->objectName() == QLatin1String("frmMain") ||
                        window->objectName() == QLatin1String("frmCCDF");
    if (isMain && window->isVisible()) found = window;
  }
  return found;
}

QAction* Watch::menu(const char* name) {
  return mainWindow()->findChild<QAction*>(QLatin1String(name));
}

MeterRecord& Watch::meter() { return overSerial() ? serialRecord_ : gpibRecord_; }

std::uint64_t Watch::traces() {
  meter().read();
  return meter().traces();
}

std::uint64_t Watch::messages() {
  meter().read();
  return meter().messages();
}

void Watch::act() {
  // Each wish that waits for the link may have its box when its turn comes.
  const int most = mostBoxes + static_cast<int>(pulsemod::Conversation.kept.size());
  if (boxesAllowed_ < most) ++boxesAllowed_;
}

void Watch::box(const Box& box) {
  ++record_.figures().boxes;
  record_.expect(isKnown(box.text), "a box that the program does not have: " + box.text);
  mayEnd_ = mayEnd_ || box.text.find("Program will exit") != std::string::npos ||
            box.title == "Program Exit";
  record_.expect(boxesAllowed_-- > 0, "one box after the other: " + box.text);
}

void Watch::look() {
  lookAtMeter();
  lookAtWindows();
  // A handler that is under way may be half through with them.
  if (mainWindow() != nullptr && world_.depth() == 1) lookAtMenus();
}

void Watch::lookAtMeter() {
  gpibRecord_.read();
  serialRecord_.read();
  Figures& figures = record_.figures();
  const std::uint64_t faults = gpibRecord_.faults() + serialRecord_.faults();
  if (faults != faultsSeen_) act();
  figures.faults += faults - faultsSeen_;
  faultsSeen_ = faults;
  for (const MeterRecord* each : {&gpibRecord_, &serialRecord_}) {
    record_.expect(each->complaint().empty(), "the meter: " + each->complaint());
  }
  record_.expect(!world_.waitsInVain() || !overSerial() || meter().isExcused(),
                 "the program waits for bytes that nobody sends");
}

void Watch::lookAtMenus() {
  const bool canStart = menu("menuStart")->isEnabled();
  const bool canStop = menu("menuStop")->isEnabled();
  record_.expect(canStart != canStop, "Start and Stop are not each other's opposite");
  record_.expect(canStop || pulsemod::AcquisitionRunning == pulsemod::False16,
                 "it acquires and cannot be stopped");
  for (const auto& [item, window] :
       {std::pair("menuInfoBox", "frmInfo"), std::pair("menuMarkers", "frmMarkers")}) {
    const QAction* const action = menu(item);
    if (action == nullptr) continue;
    const auto* const shown = mainWindow()->findChild<QWidget*>(QLatin1String(window));
    const bool isShown = shown != nullptr && shown->isVisible();
    record_.expect(action->isChecked() == isShown,
                   std::string("the tick of ") + item + " is not what the window is");
  }
  if (const QAction* const on = menu("menuOn")) {
    record_.expect(on->isEnabled() != menu("menuOFF")->isEnabled(),
                   "the cursor's On and Off are not each other's opposite");
  }
}

void Watch::lookAtWindows() {
  constexpr int sane = 4000;
  // There are hundreds of labels.
  constexpr unsigned looksBetween = 10;
  const bool looksAtLabels = ++looks_ % looksBetween == 0;
  int boxes = 0;
  for (const QWidget* window : QApplication::topLevelWidgets()) {
    if (!window->isVisible()) continue;
    const std::string name = nameOf(*window);
    const auto* const box = qobject_cast<const QMessageBox*>(window);
    if (box != nullptr) ++boxes;
    const QSize size = window->size();
    record_.expect(
        !size.isEmpty() && size.width() < sane && size.height() < sane,
        name + " is " + std::to_string(size.width()) + " x " + std::to_string(size.height()));
    if (looksAtLabels) lookAtLabels(*window);
    const QWidget* const graph = graphIn(*window);
    if (graph == nullptr || window->isMinimized()) continue;
    // The user may choose a font that fills the screen.
    constexpr int usualLines = 10;
    if (graph->fontMetrics().height() * usualLines > window->height()) continue;
    record_.expect(graph->parentWidget()->rect().contains(graph->geometry()),
                   name + ": the graph is not inside the window");
  }
  record_.expect(boxes <= 1, std::to_string(boxes) + " boxes at once");
}

void Watch::lookAtLabels(const QWidget& window) {
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    if (!label->isVisible()) continue;
    const std::string shown = text(*label);
    record_.expect(!shown.starts_with("nan") && !shown.starts_with("inf"),
                   nameOf(window) + " shows \"" + shown + "\"");
  }
}

bool Watch::isQuiet() {
  return pulsemod::AcquisitionRunning == pulsemod::False16 && !pulsemod::Conversation.open &&
         pulsemod::Conversation.kept.empty();
}

void Watch::atRest() {
  record_.expect(pulsemod::AcquisitionPause.Paused == pulsemod::False16,
                 "the mouse is up and the acquisition is still paused");
  QWidget* const window = mainWindow();
  if (!pulsemod::linkIsLost()) {
    soak::MeterLine& line = overSerial() ? serial_ : gpib_;
    record_.expect(!line.holdsOutput() || meter().isExcused(), "a reply is left unread");
  }
  if (pulsemod::GraphFaultReported || window->isMinimized()) return;
  expectDrawing(*window);
}

/// After a start, which draws all anew; before it a value that was typed and refused may stand in
/// the model alone.
void Watch::expectLabels() {
  using namespace pulsemod;
  if (GraphFaultReported) return;
  std::vector<std::pair<const char*, std::string>> labels;
  if (mainWindow()->objectName() == QLatin1String("frmCCDF")) {
    labels = {{"lblStartPower", numberText(CCDF.StartPower) + "dBm"},
              {"lblStopPower", numberText(CCDF.StopPower) + "dBm"},
              {"lblMeasSource", "SOURCE:" + CCDF.MeasurementSource}};
  } else {
    labels = {
        {"lblCapture", FormatTime(Settings.CaptureTime)},
        {"lblStart", FormatTime(Settings.TriggerDelay)},
        {"lblRef",
         "Ref: " + fixedText(static_cast<double>(Settings.ReferenceLevel), 2, 2) + " dBm"},
        {"lblscale",
         "Scale: " + fixedText(static_cast<double>(Settings.ScalePerDivision), 2, 2) + " dB"}};
  }
  for (const auto& [name, expected] : labels) {
    const std::string shown = text(*mainWindow()->findChild<QLabel*>(QLatin1String(name)));
    record_.expect(shown == expected,
                   std::string(name) + " shows " + shown + " and not " + expected);
  }
}

void Watch::expectDrawing(const QWidget& window) {
  const bool isCCDF = window.objectName() == QLatin1String("frmCCDF");
  record_.expect(shownTrace(*graphIn(window)) == expectedTrace(isCCDF),
                 "the graph does not show the trace that was read last");
}

void Watch::end() {
  lookAtMeter();
  const std::string last = record_.lastLines(8);
  const auto said = [&last](const char* what) { return last.find(what) != std::string::npos; };
  const bool byUser = said("closes ") || said("menuExit") || said("Ctrl+Q") ||
                      said("presses Return") || said("presses Space");
  const bool atQuestion = mainWindow() == nullptr && said("frmConfigureQuestion");
  const bool isCCDF =
      mainWindow() != nullptr && mainWindow()->objectName() == QLatin1String("frmCCDF");
  // By rule: a curve that fails, and a profile over RS232, whose port is gone.
  const bool curveFailed =
      meter().hasFaultPending() || (!overSerial() && meter().hasRefusalPending());
  const bool readFailed = pulsemod::linkIsLost() || (isCCDF && curveFailed);
  record_.expect(
      byUser || atQuestion || mayEnd_ || readFailed || (mainWindow() == nullptr && said("Escape")),
      "the program ended and nobody knows why");
}

}  // namespace randomuse
