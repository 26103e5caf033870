#include "Tour.h"

#include <sstream>
#include <utility>

namespace tour {

Tour::Tour(robot::RobotClient& hands, MeterLink link, std::string folder)
    : hands_(hands), link_(link), folder_(std::move(folder)) {}

void Tour::walk() {
  chooseLink();
  loadFromMeter();
  watchProfile();
  dragGate();
  editLabel();
  readMeasurements();
  openMenus();
  chooseFont();
  editLinkSettings();
  shrinkWindow();
}

void Tour::leave() { hands_.close("frmMain"); }

void Tour::takePicture(const std::string& title, const std::string& shown) {
  const std::string number = std::to_string(++count_);
  const std::string padded = number.size() < 2 ? "0" + number : number;
  hands_.picture(folder_ + "/" + padded + "-" + title + ".png", shown);
}

/// A first start shows the communications dialog by itself; later ones show it on demand.
void Tour::chooseLink() {
  if (hands_.waitAny({"frmComms", "frmConfigureQuestion"}) == "frmComms") {
    takePicture("first-start", "frmComms");
    constexpr auto fastest = "frmComms/optBuad_6";
    hands_.click(link_ == MeterLink::gpib ? "frmComms/optComms_0" : "frmComms/optComms_1");
    hands_.click(fastest);
    hands_.click("frmComms/cmdSave");
  }
  takePicture("how-to-begin", "frmConfigureQuestion");
  hands_.click("cmdOpenConfig");
  takePicture("comms-options", "frmComms");
  hands_.close("frmComms");
  hands_.waitGone("frmComms");
}

void Tour::loadFromMeter() {
  hands_.click("frmConfigureQuestion/cmdLoadPM");
  takePicture("please-wait", "frmPleaseWait");
  hands_.waitGone("frmPleaseWait");
  takePicture("before-start", "frmMain");
}

void Tour::watchProfile() {
  hands_.trigger("frmMain/menuStart");
  awaitProfile();
  // The rate is shown before its profile is drawn, and a new size resets it: at the next rate there
  // is a profile to see.
  hands_.resize("frmMain", 820, 620);
  hands_.waitUntil("frmMain", "width", "820");
  awaitProfile();
  takePicture("running", "frmMain");
}

void Tour::awaitProfile() {
  hands_.waitWhile("frmMain/lblgraphspeed", "text", "Profile/Second: 0.00");
}

void Tour::moveOnGraph(const std::string& step, double share) {
  constexpr auto graph = "frmMain/GraphPic";
  std::istringstream place(hands_.get(graph, "place"));
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  place >> x >> y >> width >> height;
  hands_.mouse(step, graph, static_cast<int>(share * width), height / 2);
}

/// Gate 1 begins and ends at these shares of the graph: 0.05 and 0.55 ms, of 2 ms from -0.2 ms on.
void Tour::dragGate() {
  constexpr double gateStart = 0.125;
  constexpr double gateStop = 0.375;
  moveOnGraph("move", gateStart);
  takePicture("over-an-edge", "lblgate");
  moveOnGraph("press", gateStart);
  moveOnGraph("move", gateStart / 4);
  takePicture("dragging-at-the-left", "lblgate");
  moveOnGraph("release", gateStart / 4);
  hands_.waitGone("lblgate");
  moveOnGraph("move", gateStop);
  moveOnGraph("press", gateStop);
  moveOnGraph("move", 0.98);
  takePicture("dragging-at-the-right", "lblgate");
  moveOnGraph("move", gateStop);
  moveOnGraph("release", gateStop);
  hands_.waitGone("lblgate");
}

void Tour::editLabel() {
  hands_.click("frmMain/lblRef");
  takePicture("edit-reference", "QInputDialog");
  hands_.key("QInputDialog", "Escape");
  hands_.waitGone("QInputDialog");
}

void Tour::readMeasurements() {
  hands_.trigger("frmMain/menuInfoBox");
  hands_.waitVisible("frmInfo");
  hands_.trigger("frmMain/menuMarkers");
  hands_.waitVisible("frmMarkers");
  hands_.waitWhile("frmMarkers/lblMarkerPow_0", "text", "");
  takePicture("info-box-and-markers", "frmMarkers");
  hands_.trigger("frmMain/menuInfoBox");
  hands_.trigger("frmMain/menuMarkers");
  hands_.waitGone("frmInfo");
  hands_.waitGone("frmMarkers");
}

void Tour::openMenus() {
  const std::pair<const char*, const char*> menus[] = {
      {"menu-file", "frmMain/menuExit"},
      {"menu-pulsemod", "frmMain/menuStop"},
      {"menu-settings", "frmMain/menuGraphFont"},
      {"menu-view", "frmMain/menuInfoBox"},
  };
  for (const auto& [title, item] : menus) {
    hands_.openMenuOf(item);
    takePicture(title, "QMenu");
    hands_.closeMenu();
  }
}

void Tour::chooseFont() {
  hands_.trigger("frmMain/menuGraphFont");
  takePicture("font-dialog", "QFontDialog");
  hands_.key("QFontDialog", "Escape");
  hands_.waitGone("QFontDialog");
}

void Tour::editLinkSettings() {
  hands_.trigger("frmMain/menuStop");
  hands_.waitUntil("frmMain/menuComs", "enabled", "true");
  takePicture("stopped", "frmMain");
  hands_.trigger("frmMain/menuComs");
  takePicture("comms-options-later", "frmComms");
  hands_.close("frmComms");
  hands_.waitGone("frmComms");
}

void Tour::shrinkWindow() {
  hands_.trigger("frmMain/menuStart");
  hands_.resize("frmMain", 480, 360);
  hands_.waitUntil("frmMain", "width", "480");
  hands_.waitUntil("frmMain", "height", "360");
  awaitProfile();
  takePicture("small-window", "frmMain");
  hands_.trigger("frmMain/menuStop");
}

}  // namespace tour
