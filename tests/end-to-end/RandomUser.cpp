#include "RandomUser.h"

#include <array>
#include <sstream>
#include <utility>

namespace endtoend {

namespace {

/// What is typed into a box, and the number that the meter must get; empty for none.
struct Entry {
  const char* typed;
  const char* sent;
};

constexpr auto nines = "999999999999999999999999999999999999999999";

constexpr std::array usualCaptures = {Entry{"2ms", "0.002"},     Entry{"4ms", "0.004"},
                                      Entry{"1.5ms", "0.0015"},  Entry{"0.005", "0.005"},
                                      Entry{"3MS", "0.003"},     Entry{"2500us", "0.0025"},
                                      Entry{"2.25ms", "0.00225"}};
constexpr std::array usualDelays = {Entry{"-200us", "-0.0002"},  Entry{"0", "0"},
                                    Entry{"-0.5ms", "-0.0005"},  Entry{"50us", "5E-05"},
                                    Entry{"-.0001s", "-0.0001"}, Entry{"-300000ns", "-0.0003"}};
constexpr std::array oddTimes = {
    Entry{"", ""},    Entry{"0", "0"},          Entry{"-1ms", "-0.001"}, Entry{"abc", "0"},
    Entry{" ", "0"},  Entry{"5 ms", "5"},       Entry{"12<b>", "12"},    Entry{"1ns", "1E-09"},
    Entry{nines, ""}, Entry{"123456", "123456"}};
constexpr std::array usualReferences = {Entry{"10", "10"}, Entry{"20", "20"}, Entry{"0", "0"},
                                        Entry{"-5.5", "-5.5"}, Entry{" 15", "15"}};
constexpr std::array usualScales = {Entry{"10", "10"}, Entry{"5", "5"}, Entry{"20", "20"},
                                    Entry{"12.5", "12.5"}, Entry{"7dB", "7"}};
constexpr std::array oddLevels = {Entry{"", ""},     Entry{"0", "0"},       Entry{"-10", "-10"},
                                  Entry{"abc", "0"}, Entry{" ", "0"},       Entry{"1e30", "1E+30"},
                                  Entry{"1e60", ""}, Entry{"1e-5", "1E-05"}};

struct Parameter {
  const char* label;
  const char* prompt;
  const char* command;
  bool isTime;
};
constexpr std::array parameters = {
    Parameter{"lblCapture", "Enter new Capture Period", "TRCAPT 1,PMOD,", true},
    Parameter{"lblStart", "Enter new trigger delay", "TRDLYT 1,PMOD,", true},
    Parameter{"lblRef", "Enter new reference level (dBm)", "PMPREF 1,DB,", false},
    Parameter{"lblscale", "Enter new graph scale (dB)", "PMPSCAL 1,DB,", false}};

const Parameter& parameterOf(const std::string& prompt) {
  for (const Parameter& parameter : parameters) {
    if (prompt == parameter.prompt) return parameter;
  }
  throw robot::RobotError("nobody asked for this box: " + prompt);
}

template <typename Entries>
const Entry& anyOf(const Entries& entries, std::uint32_t number) {
  return entries[number % entries.size()];
}

const Entry& usualEntry(const Parameter& parameter, std::uint32_t number) {
  const std::string name = parameter.label;
  if (name == "lblCapture") return anyOf(usualCaptures, number);
  if (name == "lblStart") return anyOf(usualDelays, number);
  return name == "lblRef" ? anyOf(usualReferences, number) : anyOf(usualScales, number);
}

}  // namespace

RandomUser::RandomUser(robot::RobotClient& hands, std::uint32_t seed, EdgeTimes edges)
    : UserAtRandom(hands, seed),
      wishes_{
          {"hovers", 4, [this] { hover(); }},
          {"presses", 2, [this] { pressSomewhere(); }},
          {"drags", 7, [this] { dragAnEdge(); }},
          {"edits", 7, [this] { editAParameter(); }},
          {"stop-times", 1, [this] { askForTheStopTime(); }},
          {"starts-and-stops", 4, [this] { startOrStop(); }},
          {"commands", 2, [this] { tellTheMeter(); }},
          {"menus", 1, [this] { openAMenu(); }},
          {"fonts", 1, [this] { chooseAFont(); }},
          {"comms", 1, [this] { lookAtComms(); }},
          {"resizes", 1, [this] { resizeAWindow(); }},
          {"readouts", 2, [this] { showOrHideReadouts(); }},
      },
      edges_(std::move(edges)) {}

/// On a dead graph most wishes come to nothing: it is mostly brought back first.
void RandomUser::prepare() {
  if (graphMayBeDead() && !oneIn(3)) editAParameter();
}

void RandomUser::comeToRest() {
  clearTheWay();
  if (hands_.is("frmMain/menuStop", "enabled")) hands_.key("frmMain", "Shift+F5");
}

void RandomUser::hover() {
  lookAtTheGraph();
  for (int moves = between(1, 4); moves > 0; --moves) move(oneIn(2) ? atAnEdge() : somewhere());
  rememberEdge();
}

void RandomUser::pressSomewhere() {
  lookAtTheGraph();
  const Point point = somewhere();
  move(point);
  press(point);
  dragOn(point);
  release();
}

void RandomUser::dragAnEdge() {
  lookAtTheGraph();
  const Point point = atAnEdge();
  move(point);
  press(point);
  dragOn(point);
  release();
}

void RandomUser::dragOn(Point from) {
  constexpr int nearby = 25;
  constexpr int outside = 40;
  for (int moves = between(0, 6); moves > 0; --moves) {
    if (oneIn(12)) disturbThePress();
    const bool far = oneIn(3);
    move({far ? between(-outside, width_ + outside) : from.x + between(-nearby, nearby),
          oneIn(6) ? between(-outside, height_ + outside) : from.y});
  }
}

/// All of it by keys, since the button is down.
void RandomUser::disturbThePress() {
  constexpr std::array keys = {"Shift+F5", "Shift+F5", "F5",     "F6",     "F8",
                               "Ctrl+T",   "Ctrl+I",   "Ctrl+M", "Ctrl+G", "Space"};
  if (oneIn(6)) {
    resizeAWindow();
    return;
  }
  const std::string key = keys[number(keys.size())];
  hands_.key("frmMain", key);
  if (key == "Ctrl+T" || key == "Ctrl+G") clearTheWay();
  // A label that has the focus opens its box.
  if (key == "Space" && hands_.is("inputBox", "visible")) answerTheInputBox();
}

void RandomUser::editAParameter() {
  const std::size_t any = number(parameters.size());
  // Whoever has lost the picture tries to get it back.
  const Parameter& parameter = parameters[graphMayBeDead() && !oneIn(4) ? parameterToBlame() : any];
  hands_.click(std::string("frmMain/") + parameter.label);
  if (hands_.waitAny({"inputBox", "messageBox"}) == "inputBox") answerTheInputBox();
}

void RandomUser::answerTheInputBox() {
  const Parameter& parameter = parameterOf(hands_.get("inputBox/QLabel", "text"));
  if (oneIn(12)) resizeAWindow();
  const bool odd = oneIn(5);
  const auto any = number(1000);
  const Entry& entry = !odd               ? usualEntry(parameter, any)
                       : parameter.isTime ? anyOf(oddTimes, any)
                                          : anyOf(oddLevels, any);
  std::string sent = entry.sent;
  // The text that the box came with is a level's number.
  if (!parameter.isTime && oneIn(10)) {
    sent = hands_.get("inputBox/QLineEdit", "text");
  } else {
    hands_.type("inputBox/QLineEdit", entry.typed);
  }
  const bool cancels = oneIn(8);
  hands_.key("inputBox", cancels ? "Escape" : "Return");
  if (!cancels && !sent.empty()) lastEdits_[parameter.command] = sent;
  hands_.waitGone("inputBox");
}

void RandomUser::askForTheStopTime() {
  hands_.click("frmMain/lblStop");
  hands_.waitVisible("messageBox");
  hands_.key("messageBox", oneIn(2) ? "Return" : "Escape");
  hands_.waitGone("messageBox");
}

void RandomUser::startOrStop() {
  const bool running = hands_.is("frmMain/menuStop", "enabled");
  if (oneIn(2)) {
    hands_.key("frmMain", running ? "Shift+F5" : "F5");
  } else {
    trigger(running ? "frmMain/menuStop" : "frmMain/menuStart");
  }
  // Stopped is what a user is seldom: he has started again before the start was through.
  if (running && !oneIn(3)) hands_.key("frmMain", "F5");
}

void RandomUser::tellTheMeter() {
  if (oneIn(2)) {
    trigger("frmMain/menudisplayupdate");
  } else if (hands_.is("frmMain/menuFreeRun", "enabled")) {
    trigger("frmMain/menuFreeRun");
  }
}

void RandomUser::openAMenu() {
  hands_.openMenuOf(oneIn(2) ? "frmMain/menuStop" : "frmMain/menuGraphFont");
  hands_.closeMenu();
}

void RandomUser::chooseAFont() {
  trigger("frmMain/menuGraphFont");
  hands_.key("QFontDialog", oneIn(2) ? "Escape" : "Return");
  hands_.waitGone("QFontDialog");
}

void RandomUser::lookAtComms() {
  if (!hands_.is("frmMain/menuComs", "enabled")) return;
  trigger("frmMain/menuComs");
  if (oneIn(2)) hands_.click("frmComms/optBuad_2");
  hands_.close("frmComms");
  if (hands_.waitAny({"questionBox", "frmMain"}) == "questionBox") {
    hands_.key("questionBox", "Escape");
  }
  hands_.waitGone("frmComms");
}

void RandomUser::resizeAWindow() { hands_.resize("frmMain", between(480, 880), between(360, 660)); }

void RandomUser::showOrHideReadouts() {
  const char* const item = oneIn(2) ? "frmMain/menuInfoBox" : "frmMain/menuMarkers";
  if (hands_.is(item, "enabled")) trigger(item);
}

void RandomUser::lookAtTheGraph() {
  std::istringstream place(hands_.get(robot::profileGraph, "place"));
  int left = 0;
  int top = 0;
  place >> left >> top >> width_ >> height_;
}

RandomUser::Point RandomUser::somewhere() {
  return {between(1, width_ - 2), between(1, height_ - 2)};
}

/// Where an edge should stand by the two times under the graph; anywhere if it is not on it.
RandomUser::Point RandomUser::atAnEdge() {
  Point point = somewhere();
  auto edge = edges_.begin();
  std::advance(edge, number(static_cast<std::uint32_t>(edges_.size())));
  const double delay = secondsOf(hands_.get("frmMain/lblStart", "text"));
  const double capture = secondsOf(hands_.get("frmMain/lblCapture", "text"));
  const double share = capture > 0 ? (edge->second - delay) / capture : -1;
  if (share > 0 && share < 1) point.x = std::min(static_cast<int>(share * width_), width_ - 2);
  return point;
}

void RandomUser::move(Point point) {
  hands_.mouse("move", robot::profileGraph, point.x, point.y);
  pointer_ = point;
  if (pressed_) rememberEdge();
}

void RandomUser::press(Point point) {
  hands_.mouse("press", robot::profileGraph, point.x, point.y);
  pressed_ = true;
  grabbed_.clear();
  if (hands_.is("lblgate", "visible")) {
    grabbed_ = readEdgeLabel(hands_.get("lblgate", "text")).edge;
  }
}

void RandomUser::release() {
  hands_.mouse("release", robot::profileGraph, pointer_.x, pointer_.y);
  pressed_ = false;
}

/// A graph without a time axis or without a height shows no label, although an edge may move on it.
bool RandomUser::graphMayBeDead() const { return parameterToBlame() != parameters.size(); }

/// The one whose last value leaves no picture; past the end for none.
std::size_t RandomUser::parameterToBlame() const {
  // Beside this a graph of the usual height has none.
  constexpr auto hugeReference = "1E+30";
  constexpr std::array<const char*, parameters.size()> deadly = {"0", "none", hugeReference, "0"};
  for (std::size_t index = 0; index < parameters.size(); ++index) {
    const auto edit = lastEdits_.find(parameters[index].command);
    if (edit != lastEdits_.end() && edit->second == deadly[index]) return index;
  }
  return parameters.size();
}

void RandomUser::rememberEdge() {
  if (!hands_.is("lblgate", "visible")) {
    // A window came up and ended the press: the edge moved, or just not any more.
    if (pressed_ && !grabbed_.empty()) lastDrags_.erase(grabbed_);
    if (pressed_ && graphMayBeDead()) lastDrags_.clear();
    return;
  }
  const EdgeLabel label = readEdgeLabel(hands_.get("lblgate", "text"));
  edges_[label.edge] = secondsOf(label.time);
  if (label.dragged) lastDrags_[label.edge] = label.time;
}

void RandomUser::clearTheWay() {
  hands_.giveUpAt("");
  while (true) {
    const std::string windows = hands_.windows();
    const std::string front = windows.substr(0, windows.find('|'));
    if (front == "frmMain" || front == "frmInfo" || front == "frmMarkers") break;
    if (front.empty()) {
      hands_.closeMenu();
    } else if (front == "frmComms") {
      hands_.close(front);
      hands_.waitAny({"questionBox", "frmMain"});
    } else {
      hands_.key(front, "Escape");
    }
  }
  if (std::exchange(pressed_, false)) {
    hands_.mouse("release", robot::profileGraph, pointer_.x, pointer_.y);
  }
  hands_.giveUpAt("messageBox");
}

}  // namespace endtoend
