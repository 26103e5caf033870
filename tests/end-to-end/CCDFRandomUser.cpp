#include "CCDFRandomUser.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>

namespace endtoend {

namespace {

constexpr auto positionCommand = "TTMKPOS 1,";
constexpr auto switchCommand = "TTMKS 1,";

/// What is typed into a box, and the number that the meter must get; empty for none.
struct Entry {
  const char* typed;
  const char* sent;
  bool isTaken = true;
};

constexpr std::array starts = {
    Entry{"-30", "-30"}, Entry{"-25.5", "-25.5"},  Entry{"-40", "-40"},      Entry{" -10", "-10"},
    Entry{"0", "0"},     Entry{"-2e1 dBm", "-20"}, Entry{"-0.125", "-0.125"}};
constexpr std::array oddStarts = {Entry{"", ""},      Entry{"abc", "0"},
                                  Entry{" ", "0"},    Entry{"-1e30", "-1E+30", false},
                                  Entry{"-1e60", ""}, Entry{"-500x", "-500", false}};
constexpr std::array stops = {Entry{"20", "20"}, Entry{"15", "15"},     Entry{"17.25", "17.25"},
                              Entry{"40", "40"}, Entry{"3e1dBm", "30"}, Entry{" 25", "25"}};
constexpr std::array oddStops = {Entry{"", ""}, Entry{"1e30", "1E+30", false}, Entry{"1e60", ""},
                                 Entry{"500x", "500", false}};
// All inside every axis that can be typed above.
constexpr double leastPosition = 1;
constexpr double mostPosition = 10;
constexpr std::array positions = {Entry{"5", "5"},
                                  Entry{"7.5", "7.5"},
                                  Entry{" 2.125", "2.125"},
                                  Entry{"9.25dBm", "9.25"},
                                  Entry{"1e1", "10"},
                                  Entry{"3,5", "3"},
                                  Entry{"", ""},
                                  Entry{"abc", "0"},
                                  Entry{"1e60", ""}};

template <typename Entries>
const Entry& anyOf(const Entries& entries, std::uint32_t number) {
  return entries[number % entries.size()];
}

}  // namespace

CCDFRandomUser::CCDFRandomUser(robot::RobotClient& hands, std::uint32_t seed)
    : UserAtRandom(hands, seed),
      wishes_{
          {"hovers", 4, [this] { hover(); }},
          {"presses", 3, [this] { pressSomewhere(); }},
          {"drags", 8, [this] { dragTheCursor(); }},
          {"axis-edits", 6, [this] { editTheAxis(); }},
          {"positions", 5, [this] { typeAPosition(); }},
          {"cursor-switches", 4, [this] { switchTheCursor(); }},
          {"sources", 3, [this] { chooseASource(); }},
          {"restarts", 2, [this] { restart(); }},
          {"starts-and-stops", 4, [this] { startOrStop(); }},
          {"menus", 1, [this] { openAMenu(); }},
          {"resizes", 1, [this] { resizeTheWindow(); }},
      } {}

void CCDFRandomUser::comeToRest() {
  clearTheWay();
  if (hands_.is("frmCCDF/menuStop", "enabled")) hands_.key("frmCCDF", "Shift+F5");
}

void CCDFRandomUser::hover() {
  lookAtTheGraph();
  for (int moves = between(1, 4); moves > 0; --moves) move(oneIn(2) ? atTheCursor() : somewhere());
}

void CCDFRandomUser::pressSomewhere() {
  lookAtTheGraph();
  press(somewhere());
  dragOn();
  release();
}

void CCDFRandomUser::dragTheCursor() {
  lookAtTheGraph();
  press(atTheCursor());
  dragOn();
  release();
}

void CCDFRandomUser::dragOn() {
  constexpr int outside = 40;
  for (int moves = between(0, 6); moves > 0; --moves) {
    if (oneIn(10)) disturbThePress();
    Point point = at(leastPosition + (mostPosition - leastPosition) * between(5, 95) / 100);
    if (oneIn(6)) point.x = oneIn(2) ? -outside : width_ + outside;
    if (oneIn(6)) point.y = between(-outside, height_ + outside);
    // Where the axis is not known the cursor could leave it.
    if (axisIsKnown()) move(point);
  }
}

/// All of it by keys, since the button is down.
void CCDFRandomUser::disturbThePress() {
  constexpr std::array keys = {"Shift+F5", "Shift+F5", "F5", "F6", "F8"};
  if (oneIn(6)) {
    // The cursor goes with the pointer, which now stands at another power: where the axis is known
    // the next move brings it back inside every axis.
    if (!axisIsKnown()) return;
    resizeTheWindow();
    lookAtTheGraph();
    return;
  }
  const std::string key = keys[number(keys.size())];
  if (key == "F8" && !cursorIsOn()) return switchTheCursor();
  hands_.key("frmCCDF", key);
}

void CCDFRandomUser::editTheAxis() {
  hands_.click(oneIn(2) ? "frmCCDF/lblStartPower" : "frmCCDF/lblStopPower");
  if (hands_.waitAny({"inputBox", "messageBox"}) == "inputBox") answerTheInputBox();
}

void CCDFRandomUser::typeAPosition() {
  if (!cursorIsOn()) return;
  if (oneIn(2)) {
    hands_.key("frmCCDF", "F9");
  } else {
    trigger("frmCCDF/menuSetCursorPosition");
  }
  if (hands_.waitAny({"inputBox", "messageBox"}) == "inputBox") answerTheInputBox();
}

void CCDFRandomUser::answerTheInputBox() {
  const std::string title = hands_.get("inputBox", "windowTitle");
  const bool isStart = title == "Starting Power";
  const bool isPosition = title == "Setting the cursor Position ";
  if (oneIn(12)) resizeTheWindow();
  const bool odd = oneIn(5);
  const auto any = number(1000);
  const Entry& entry = isPosition ? anyOf(positions, any)
                       : isStart  ? (odd ? anyOf(oddStarts, any) : anyOf(starts, any))
                                  : (odd ? anyOf(oddStops, any) : anyOf(stops, any));
  hands_.type("inputBox/QLineEdit", entry.typed);
  const bool cancels = oneIn(8);
  hands_.key("inputBox", cancels ? "Escape" : "Return");
  hands_.waitGone("inputBox");
  if (cancels || *entry.sent == 0) return;
  lastEdits_[isPosition ? positionCommand : isStart ? "TTPST 1," : "TTPSP 1,"] = entry.sent;
  if (isPosition) return;
  (isStart ? startIsKnown_ : stopIsKnown_) = entry.isTaken;
  (isStart ? startPower_ : stopPower_) = std::stod(entry.sent);
}

/// By key or by menu; what comes of it is in the menu.
void CCDFRandomUser::switchTheCursor() {
  const bool on = cursorIsOn();
  if (pressed_ || oneIn(2)) {
    hands_.key("frmCCDF", on ? "Shift+F8" : "F8");
  } else {
    trigger(on ? "frmCCDF/menuOFF" : "frmCCDF/menuOn");
  }
  hands_.waitUntil(on ? "frmCCDF/menuOn" : "frmCCDF/menuOFF", "enabled", "true");
  lastEdits_[switchCommand] = on ? "OFF" : "ON";
}

/// The box comes when the meter has answered.
void CCDFRandomUser::chooseASource() {
  constexpr std::array items = {"frmCCDF/menuMeasSourceGate", "frmCCDF/menuMeasSourceActiveMarker",
                                "frmCCDF/menuMeasSourceChannel"};
  for (int choices = between(1, 2); choices > 0; --choices) trigger(items[number(items.size())]);
  if (oneIn(4)) return;
  hands_.waitVisible("messageBox");
  hands_.key("messageBox", oneIn(2) ? "Return" : "Escape");
}

void CCDFRandomUser::restart() {
  for (int times = between(1, 3); times > 0; --times) hands_.key("frmCCDF", "F6");
}

void CCDFRandomUser::startOrStop() {
  const bool running = hands_.is("frmCCDF/menuStop", "enabled");
  if (oneIn(2)) {
    hands_.key("frmCCDF", running ? "Shift+F5" : "F5");
  } else {
    trigger(running ? "frmCCDF/menuStop" : "frmCCDF/menuStart");
  }
  // Stopped is what a user is seldom: he has started again before the start was through.
  if (running && !oneIn(3)) hands_.key("frmCCDF", "F5");
}

void CCDFRandomUser::openAMenu() {
  constexpr std::array items = {"frmCCDF/menuSave", "frmCCDF/menuStop", "frmCCDF/menuOn",
                                "frmCCDF/menuMeasSourceGate"};
  hands_.openMenuOf(items[number(items.size())]);
  hands_.closeMenu();
}

void CCDFRandomUser::resizeTheWindow() {
  hands_.resize("frmCCDF", between(480, 880), between(360, 660));
}

std::string CCDFRandomUser::cursorText() {
  const std::string text = hands_.get("frmCCDF/lblCursorPower", "text");
  return text.substr(0, text.find("dBm"));
}

void CCDFRandomUser::lookAtTheGraph() {
  std::istringstream place(hands_.get(robot::ccdfGraph, "place"));
  int left = 0;
  int top = 0;
  place >> left >> top >> width_ >> height_;
}

CCDFRandomUser::Point CCDFRandomUser::somewhere() {
  return {between(1, width_ - 2), between(1, height_ - 2)};
}

CCDFRandomUser::Point CCDFRandomUser::at(double power) {
  Point point = somewhere();
  const double share = (power - startPower_) / (stopPower_ - startPower_);
  if (share > 0 && share < 1) point.x = std::min(static_cast<int>(share * width_), width_ - 2);
  return point;
}

/// Where its line should stand, give or take what still is the line; anywhere if it is not on.
CCDFRandomUser::Point CCDFRandomUser::atTheCursor() {
  if (!cursorIsOn()) return somewhere();
  Point point = at(std::stod(cursorText()));
  point.x = std::clamp(point.x + between(-1, 1), 1, width_ - 2);
  return point;
}

void CCDFRandomUser::move(Point point) {
  hands_.mouse("move", robot::ccdfGraph, point.x, point.y);
  pointer_ = point;
}

void CCDFRandomUser::press(Point point) {
  move(point);
  hands_.mouse("press", robot::ccdfGraph, point.x, point.y);
  pressed_ = true;
  cursorAtPress_ = cursorText();
}

void CCDFRandomUser::release() {
  const std::string cursor = cursorText();
  const bool sent = cursorIsOn();
  hands_.mouse("release", robot::ccdfGraph, pointer_.x, pointer_.y);
  pressed_ = false;
  if (cursor == cursorAtPress_) return;
  if (sent) {
    lastEdits_[positionCommand] = cursor;
    ++cursorMoves_;
  } else {
    lastEdits_.erase(positionCommand);
  }
}

void CCDFRandomUser::clearTheWay() {
  hands_.giveUpAt("");
  while (true) {
    const std::string windows = hands_.windows();
    const std::string front = windows.substr(0, windows.find('|'));
    if (front == "frmCCDF") break;
    if (front.empty()) {
      hands_.closeMenu();
    } else {
      hands_.key(front, "Escape");
    }
  }
  if (std::exchange(pressed_, false)) {
    // A box ended the press: the cursor was sent from somewhere on its way.
    lastEdits_.erase(positionCommand);
    hands_.mouse("release", robot::ccdfGraph, pointer_.x, pointer_.y);
  }
  if (lastEdits_.contains(switchCommand)) lastEdits_[switchCommand] = cursorIsOn() ? "ON" : "OFF";
  hands_.giveUpAt("messageBox");
}

}  // namespace endtoend
