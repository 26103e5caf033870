#include "Session.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <sstream>

namespace endtoend {

namespace {

using namespace std::string_literals;

constexpr int points = 400;

/// A level with three decimals, in thousandths.
std::string decimal(int thousandths) {
  const std::string digits = std::to_string(std::abs(thousandths) + 1000000);
  return (thousandths < 0 ? "-" : "") + std::to_string(std::abs(thousandths) / 1000) + "." +
         digits.substr(digits.size() - 3);
}

int levelOf(int point) { return 4321 - 97 * ((point * 31) % 400); }

std::string listOf(const std::string& head, int (*valueOf)(int)) {
  std::string text = head + "400";
  for (int point = 1; point <= points; ++point) text += "," + decimal(valueOf(point));
  return text;
}

int shareOf(int point) { return (points - point) * 247 + 125; }

/// The trace as a block, with every byte written as the scenario wants it.
std::string blockText() {
  constexpr auto digits = "0123456789abcdef";
  std::string text = "#41600";
  for (int point = 1; point <= points; ++point) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(levelOf(point)) / 1000.0F);
    for (const unsigned shift : {16U, 24U, 8U, 0U}) {
      const std::uint32_t byte = bits >> shift & 0xFFU;
      text += "\\x"s + digits[byte >> 4U] + digits[byte & 0xFU];
    }
  }
  return text;
}

/// Noise would make each run another.
std::string scenario() {
  return "fault = PMPO, every, replace " + listOf("PMPO 1,", levelOf) +
         "\n"
         "fault = PMPBO, every, replace " +
         blockText() +
         "\n"
         "fault = TTFRO, every, replace " +
         listOf("TTFRO 1,", shareOf) +
         "\n"
         "fault = TTMKRO, every, replace TTMKRO 1,17.25,1.75\n"
         "fault = MKNO, every, replace MKNO 1,1,-12.345,DBM,0.00015\n"
         "fault = MKDO, every, replace MKDO 1,PAVG,-7.125,DBM,0.00045\n"
         "fault = GPNMO, every, replace GPNMO 1,4,1,AVG,-3.25,MIN,-40.5,MAX,5.125\n"
         "setup = GPGATS 1,1,ON\n";
}

/// A pass that is followed by the same again says nothing new.
Texts withoutRepeats(const Texts& texts, const std::string& first) {
  std::vector<Texts> passes(1);
  for (const std::string& text : texts) {
    if (text == first) passes.emplace_back();
    passes.back().push_back(text);
  }
  Texts result;
  for (std::size_t i = 0; i < passes.size(); ++i) {
    const bool repeated =
        i > 0 && i + 1 < passes.size() && part(passes[i + 1], 0, passes[i].size()) == passes[i];
    if (!repeated) result = result + passes[i];
  }
  return result;
}

/// The digits of date and time in a file's head, which no two runs share, as zeros.
std::string withoutTime(const std::string& file) {
  std::istringstream lines(file);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("Date\t") || line.starts_with("Time\t")) {
      const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
      std::replace_if(line.begin(), line.end(), isDigit, '0');
    }
    result += line + "\n";
  }
  return result;
}

}  // namespace

Record Session::run() {
  SetUp();
  try {
    firstStart();
    profile();
    ccdf();
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
  // The meter takes no capture time of 35 s.
  allowOffences();
  keep("what the meter refused", offences(transcript()));
  record_.messages = withoutRepeats(withoutRepeats(messages(transcript()), "TR1 1"), "PPACQRT 1");
  TearDown();
  return record_;
}

void Session::firstStart() {
  useLink(link_);
  setScenario(scenario());
  const std::string language = locale_.substr(0, locale_.find('_'));
  setEnvironment(
      {{"LC_ALL", locale_}, {"LANG", locale_}, {"LANGUAGE", language}, {"LOCPATH", LOCALE_FOLDER}});
  startMeter();
  startProgram();
  hands().waitVisible("frmComms");
  expectLocaleInForce();
  hands().type("frmComms/txtGPIBAddress", "13");
  hands().click("frmComms/optBuad_6");
  hands().click(link_ == Link::gpib ? "frmComms/optComms_0" : "frmComms/optComms_1");
  hands().click("frmComms/cmdSave");
  hands().waitVisible("frmConfigureQuestion");
  keep("the store of a first start", storeText());
}

/// A locale that cannot be loaded silently leaves the one of a fresh program.
void Session::expectLocaleInForce() {
  if (locale_ == "C.UTF-8") return;
  for (const char* category : {"LC_NUMERIC", "LC_CTYPE", "LC_TIME"}) {
    const std::string file = std::string(LOCALE_FOLDER) + "/" + locale_ + "/" + category;
    EXPECT_TRUE(program().hasMapped(file)) << file << " is not in use";
  }
}

// The profile.

void Session::profile() {
  hands().click("frmConfigureQuestion/cmdLoadPM");
  hands().waitVisible("frmMain");
  acquire("frmMain", "TR1 1");
  settle();
  editLabels();
  dragEdge();
  useDialog();
  settingsFiles();
  hands().close("frmProperties");
  readouts();
  traceFiles();
  storeOptions();
  closeMainWindowAndExpectEnd();
  keep("the store of an edit", storeText());
}

void Session::editLabels() {
  // A value that is typed before the one before it was sent takes its place.
  for (const auto& [label, text] : {std::pair{"lblCapture", "4.5ms"},
                                    {"lblRef", "-12.5"},
                                    {"lblRef", "12,5"},
                                    {"lblscale", "7.25dB"},
                                    {"lblStart", "-50.5us"}}) {
    enter("frmMain/"s + label, text);
    settle();
  }
  enter("frmMain/lblCapture", "3,5ms");
  confirmMessage();
  settle();
  enter("frmMain/lblCapture", "4.5ms");
  settle();
  for (const char* label : {"lblCapture", "lblRef", "lblscale", "lblStart", "lblStop"}) {
    keepText("frmMain/"s + label);
  }
}

/// The first gate's start, at 50 us, goes to about 1 ms.
void Session::dragEdge() {
  const int width = widthOf(robot::profileGraph);
  const auto pixelOf = [width](double seconds) {
    constexpr double delay = -50.5e-6;
    constexpr double capture = 4.5e-3;
    return static_cast<int>(
        std::lround(((seconds - delay) / capture * points - 1) / points * width));
  };
  constexpr int row = 40;
  hands().mouse("move", robot::profileGraph, pixelOf(5e-5), row);
  hands().waitVisible("lblgate");
  hands().mouse("press", robot::profileGraph, pixelOf(5e-5), row);
  for (const double to : {1.2e-4, 2.1e-4}) {
    hands().mouse("move", robot::profileGraph, pixelOf(to), row);
  }
  keepText("lblgate");
  hands().mouse("release", robot::profileGraph, pixelOf(2.1e-4), row);
  settle();
}

void Session::useDialog() {
  hands().trigger("frmMain/menuProperties");
  turnTo("Alt+C", "chkAverage");
  for (const char* control : {"chkAverage", "scrollAVG", "optInputConfig_2", "optInputConfig_0"}) {
    click(control);
  }
  settle();
  turnTo("Alt+G", "chkRepeat");
  for (const char* control : {"chkEnabled_1", "lblFence_1", "optActiveGate_1"}) click(control);
  enter("frmProperties/txtGateInfo_1", "550.25us");
  enter("frmProperties/txtGateInfo_2", "260.5us");
  click("chkRepeat");
  hands().type("frmProperties/txtRepeatCount", "4");
  hands().key("frmProperties", "Return");
  settle();
  enter("frmProperties/txtRepeatOffset", "300.25us");
  settle();
  keepText("frmProperties/txtGateInfo_12");
  click("chkRepeat");
  settle();
  turnTo("Alt+M", "cmdMarker");
  for (const char* control : {"chkMaker_3", "chkMaker_4", "optDeltaMeas_1", "optActiveMarker_1"}) {
    click(control);
  }
  enter("frmProperties/txtMarker_0", "1.125ms");
  enter("frmProperties/txtMarker_4", "600.5us");
  settle();
  turnTo("Alt+E", "optMeasurement_3");
  click("optMeasurement_3");
  turnTo("Alt+D", "optDisplayPoints_0");
  click("optDisplayPoints_0");
  click("optDisplayPoints_1");
  settle();
}

void Session::settingsFiles() {
  click("cmdSaveFile");
  chooseFile("saveFileDialog", "settings.txt");
  settle();
  keepFile("settings.txt");
  turnTo("Alt+G", "chkRepeat");
  enter("frmProperties/txtGateInfo_1", "450us");
  settle();
  click("cmdLoadFile");
  chooseFile("openFileDialog", "settings.txt");
  settle();
  keepText("frmProperties/txtGateInfo_1");
  click("cmdSaveFile");
  chooseFile("saveFileDialog", "again.txt");
  settle();
  keepFile("again.txt");
}

void Session::readouts() {
  hands().trigger("frmMain/menuInfoBox");
  hands().waitVisible("frmInfo");
  hands().trigger("frmMain/menuMarkers");
  hands().waitVisible("frmMarkers");
  acquire("frmMain", "TR1 1");
  settle();
  for (const char* label : {"lblMeasInfo_3", "lblMeasResult_3", "lblMeasResult_4"}) {
    keepText("frmInfo/"s + label);
  }
  for (const char* label : {"lblMarkerPow_0", "lblMarkerTime_0"}) keepText("frmMarkers/"s + label);
  keepPicture(robot::profileGraph);
  keepPicture("frmInfo");
  keepPicture("frmMarkers");
  hands().trigger("frmMain/menuInfoBox");
  hands().trigger("frmMain/menuMarkers");
}

void Session::traceFiles() {
  hands().trigger("frmMain/menuSave");
  chooseFile("saveFileDialog", "trace.txt");
  settle();
  keepFile("trace.txt");
  hands().trigger("frmMain/menuOpen");
  chooseFile("openFileDialog", "trace.txt");
  hands().waitUntil("frmMain/menuSecondProfile", "checked", "true");
  settle();
  keepText("frmMain/lblCapture");
}

void Session::storeOptions() {
  hands().trigger("frmMain/menuComs");
  hands().type("frmComms/txtGPIBAddress", "12");
  hands().type("frmComms/txtGPIBAddress", "13");
  hands().click("frmComms/optBuad_5");
  hands().click("frmComms/cmdSave");
  hands().waitGone("frmComms");
}

// The CCDF.

void Session::ccdf() {
  startProgram();
  hands().click("frmConfigureQuestion/cmdCCDF");
  hands().waitVisible("frmCCDF");
  acquire("frmCCDF", "TTFRO 1");
  settleCCDF();
  for (const auto& [label, text] : {std::pair{"lblStartPower", "-22.5"},
                                    {"lblStopPower", "17,25"},
                                    {"lblStopPower", " 17.25x"}}) {
    enter("frmCCDF/"s + label, text);
    settleCCDF();
  }
  hands().trigger("frmCCDF/menuSetCursorPosition");
  hands().waitVisible("inputBox");
  hands().type("inputBox/QLineEdit", "-2.125 dBm");
  hands().key("inputBox", "Return");
  hands().waitGone("inputBox");
  settleCCDF();
  dragCursor();
  hands().trigger("frmCCDF/menuOFF");
  settleCCDF();
  hands().trigger("frmCCDF/menuOn");
  settleCCDF();
  hands().trigger("frmCCDF/menuMeasSourceGate");
  confirmMessage();
  settleCCDF();
  acquire("frmCCDF", "TTFRO 1");
  settleCCDF();
  for (const char* label : {"lblStartPower", "lblStopPower", "lblMeasSource", "lblCursorPower",
                            "lblCursorPercentage"}) {
    keepText("frmCCDF/"s + label);
  }
  keepPicture(robot::ccdfGraph);
  curveFiles();
  hands().close("frmCCDF");
  expectProgramEnd();
}

/// It stands at 1.75 dBm.
void Session::dragCursor() {
  const int width = widthOf(robot::ccdfGraph);
  const auto pixelOf = [width](double power) {
    return static_cast<int>(std::lround((power + 22.5) / (17.25 + 22.5) * width));
  };
  constexpr int row = 20;
  for (const auto& [step, power] :
       {std::pair{"move", 1.75}, {"press", 1.75}, {"move", -3.3}, {"release", -3.3}}) {
    hands().mouse(step, robot::ccdfGraph, pixelOf(power), row);
  }
  settleCCDF();
}

void Session::curveFiles() {
  hands().trigger("frmCCDF/menuSave");
  chooseFile("saveFileDialog", "curve.txt");
  settleCCDF();
  keepFile("curve.txt");
  hands().trigger("frmCCDF/OpenMenu");
  chooseFile("openFileDialog", "curve.txt");
  hands().waitUntil("frmCCDF/menuSecondProfile", "checked", "true");
  settleCCDF();
}

// Hands.

void Session::acquire(const std::string& window, const std::string& first) {
  constexpr std::size_t passes = 3;
  const std::size_t before = countMessages(transcript(), first);
  hands().key(window, "F5");
  awaitMessages(first, before + passes);
  hands().key(window, "Shift+F5");
  hands().waitUntil(window + "/menuStart", "enabled", "true");
}

void Session::awaitOneMore(const std::string& window, const std::string& keys,
                           const std::vector<std::string>& texts) {
  const auto count = [&texts](const Events& events) {
    std::size_t all = 0;
    for (const std::string& text : texts) all += countMessages(events, text);
    return all;
  };
  const std::size_t before = count(transcript());
  hands().key(window, keys);
  awaitTranscript(texts.front(), [&](const Events& events) { return count(events) > before; });
}

void Session::settle() { awaitOneMore("frmMain", "F8", {"SYDISP OFF", "SYDISP ON"}); }

void Session::settleCCDF() { awaitOneMore("frmCCDF", "F6", {"PPACQRT 1"}); }

void Session::enter(const std::string& control, const std::string& text) {
  hands().click(control);
  hands().waitVisible("inputBox");
  keep("offered for " + control, hands().get("inputBox/QLineEdit", "text"));
  hands().type("inputBox/QLineEdit", text);
  hands().key("inputBox", "Return");
  hands().waitGone("inputBox");
}

void Session::confirmMessage() {
  const Box box = shownBox(hands());
  keep("message", box.title + "|" + box.text + "|" + box.icon + "|" + box.details);
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
}

void Session::turnTo(const std::string& keys, const std::string& control) {
  hands().waitVisible("frmProperties");
  hands().key("frmProperties", keys);
  hands().waitVisible("frmProperties/" + control);
}

void Session::chooseFile(const std::string& dialog, const std::string& name) {
  hands().waitVisible(dialog);
  hands().chooseFile(dialog, folder() / name);
  hands().waitGone(dialog);
}

int Session::widthOf(const std::string& control) {
  std::istringstream place(hands().get(control, "place"));
  int x = 0;
  int y = 0;
  int width = 0;
  place >> x >> y >> width;
  return width;
}

void Session::keepFile(const std::string& name) {
  const std::string text = readFile(folder() / name);
  EXPECT_NE(text, "") << name;
  keep(name, withoutTime(text));
}

void Session::keepPicture(const std::string& control) {
  const std::filesystem::path file = folder() / "picture.ppm";
  hands().grab(control, file);
  keep("the picture of " + control, readPixels(file).bytes);
}

}  // namespace endtoend
