#include "Tour.h"

#include <filesystem>
#include <utility>

#include "GraphHand.h"

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
  turnPages();
  saveAndOpen("frmMain/menuSave", "frmMain/menuOpen");
  compareProfiles();
  shrinkWindow();
}

void Tour::walkCCDF() {
  chooseLink();
  enterCCDF();
  watchCCDF();
  dragCursor();
  chooseSource();
  editPower();
  openCCDFMenus();
  saveAndOpen("frmCCDF/menuSave", "frmCCDF/OpenMenu");
  compareCurves();
  shrinkCCDFWindow();
}

void Tour::leave() { hands_.close(window_); }

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
  window_ = "frmMain";
  hands_.click("frmConfigureQuestion/cmdLoadPM");
  takePicture("please-wait", "frmPleaseWait");
  hands_.waitGone("frmPleaseWait");
  takePicture("before-start", "frmMain");
}

void Tour::watchProfile() {
  hands_.trigger("frmMain/menuStart");
  resizeAndAwait(820, 620);
  takePicture("running", "frmMain");
}

/// The rate is shown before its profile is drawn, and a new size resets it: at the next rate there
/// is a profile to see.
void Tour::resizeAndAwait(int width, int height) {
  awaitRate();
  hands_.resize(window_, width, height);
  hands_.waitUntil(window_, "width", std::to_string(width));
  hands_.waitUntil(window_, "height", std::to_string(height));
  awaitRate();
}

void Tour::awaitRate() {
  const std::string rate = in(window_ == "frmMain" ? "lblgraphspeed" : "lblgraphspeed1");
  hands_.waitWhile(rate, "text", "Profile/Second: 0.00");
}

void Tour::moveOnGraph(const std::string& step, double share) {
  const std::string graph = in(window_ == "frmMain" ? "GraphPic" : "CCDFGraphPic");
  tour::moveOnGraph(hands_, graph, step, share);
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
  openMenus({{"menu-file", "frmMain/menuExit"},
             {"menu-pulsemod", "frmMain/menuStop"},
             {"menu-settings", "frmMain/menuGraphFont"},
             {"menu-view", "frmMain/menuInfoBox"}});
}

void Tour::openMenus(std::initializer_list<std::pair<const char*, const char*>> menus) {
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

void Tour::turnPages() {
  hands_.trigger("frmMain/menuProperties");
  hands_.waitVisible("frmProperties");
  for (const char* page : {"channel", "gates", "markers", "measurement", "display"}) {
    takePicture(std::string("properties-") + page, "frmProperties");
    hands_.key("frmProperties/sstab", "Ctrl+Tab");
  }
  hands_.close("frmProperties");
  hands_.waitGone("frmProperties");
}

/// What is on the screen into a file, and back as the second trace.
void Tour::saveAndOpen(const std::string& saveItem, const std::string& openItem) {
  // Without its folder, since a dialog completes the names of folders while they are typed.
  const std::string file = "saved.txt";
  std::filesystem::remove(folder_ + "/" + file);
  hands_.trigger(saveItem);
  takePicture("save", "saveFileDialog");
  hands_.chooseFile("saveFileDialog", file);
  hands_.trigger(openItem);
  takePicture("open", "openFileDialog");
  hands_.chooseFile("openFileDialog", file);
  hands_.waitUntil(in("menuSecondProfile"), "checked", "true");
}

/// With another trigger delay the live profile stands beside the saved one.
void Tour::compareProfiles() {
  hands_.click("frmMain/lblStart");
  hands_.waitVisible("inputBox");
  hands_.type("inputBox/QLineEdit", "100us");
  hands_.key("inputBox", "Return");
  hands_.waitUntil("frmMain/lblStart", "text", "100us");
  // Else the rate of before the start would be taken for a new one.
  hands_.resize("frmMain", 810, 610);
  hands_.waitUntil("frmMain/lblgraphspeed", "text", "Profile/Second: 0.00");
  hands_.trigger("frmMain/menuStart");
  resizeAndAwait(800, 600);
  takePicture("second-profile", "frmMain");
  hands_.trigger("frmMain/menuStop");
  hands_.trigger("frmMain/menuSecondProfile");
}

void Tour::compareCurves() {
  hands_.trigger("frmCCDF/menuMeasSourceChannel");
  hands_.waitVisible("messageBox");
  hands_.key("messageBox", "Return");
  hands_.waitGone("messageBox");
  resizeAndAwait(800, 600);
  takePicture("second-curve", "frmCCDF");
  hands_.trigger("frmCCDF/menuSecondProfile");
}

void Tour::shrinkWindow() {
  hands_.trigger("frmMain/menuStart");
  resizeAndAwait(480, 360);
  takePicture("small-window", "frmMain");
  hands_.trigger("frmMain/menuStop");
}

void Tour::enterCCDF() {
  window_ = "frmCCDF";
  hands_.click("frmConfigureQuestion/cmdCCDF");
  takePicture("please-wait", "frmPleaseWait");
  hands_.waitGone("frmPleaseWait");
  takePicture("before-start", "frmCCDF");
}

void Tour::watchCCDF() {
  hands_.trigger("frmCCDF/menuStart");
  resizeAndAwait(820, 620);
  hands_.waitWhile("frmCCDF/lblCursorPercentage", "text", "0%");
  takePicture("running", "frmCCDF");
}

/// The cursor stands at 5 dBm, of -30 to 20 dBm.
void Tour::dragCursor() {
  constexpr double cursor = 0.7;
  hands_.trigger("frmCCDF/menuOFF");
  takePicture("without-a-cursor", "frmCCDF");
  hands_.trigger("frmCCDF/menuOn");
  takePicture("with-the-cursor", "frmCCDF/FrameCursor");
  moveOnGraph("move", cursor);
  moveOnGraph("press", cursor);
  moveOnGraph("move", 0.5);
  takePicture("dragging-the-cursor", "frmCCDF/FrameCursor");
  moveOnGraph("move", 0.8);
  const std::string share = hands_.get("frmCCDF/lblCursorPercentage", "text");
  moveOnGraph("release", 0.8);
  hands_.waitWhile("frmCCDF/lblCursorPercentage", "text", share);
  takePicture("dragged", "frmCCDF");
}

void Tour::chooseSource() {
  hands_.trigger("frmCCDF/menuMeasSourceGate");
  takePicture("source-changed", "messageBox");
  hands_.key("messageBox", "Return");
  hands_.waitGone("messageBox");
}

void Tour::editPower() {
  hands_.click("frmCCDF/lblStartPower");
  takePicture("edit-start-power", "inputBox");
  hands_.type("inputBox/QLineEdit", "-20");
  hands_.key("inputBox", "Return");
  hands_.waitUntil("frmCCDF/lblStartPower", "text", "-20dBm");
}

void Tour::openCCDFMenus() {
  openMenus({{"menu-file", "frmCCDF/menuSave"},
             {"menu-ccdf", "frmCCDF/menuStop"},
             {"menu-cursor", "frmCCDF/menuOn"},
             {"menu-source", "frmCCDF/menuMeasSourceGate"}});
}

void Tour::shrinkCCDFWindow() {
  resizeAndAwait(480, 360);
  takePicture("small-window", "frmCCDF");
  hands_.trigger("frmCCDF/menuStop");
  hands_.waitUntil("frmCCDF/menuStart", "enabled", "true");
}

}  // namespace tour
