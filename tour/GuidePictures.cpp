#include "GuidePictures.h"

#include <utility>

#include "GraphHand.h"

namespace tour {

namespace {

/// Wider pictures would be scaled down in the guide's window.
constexpr Size usual{800, 600};
constexpr Size besideReadouts{620, 500};

}  // namespace

GuidePictures::GuidePictures(robot::RobotClient& hands, std::string folder)
    : hands_(hands), folder_(std::move(folder)) {}

void GuidePictures::ofProfile() {
  startUp();
  loadFromMeter();
  acquire("frmMain", "lblgraphspeed", usual);
  stop("frmMain");
  take("profile", "frmMain");
  openReadouts();
  acquire("frmMain", "lblgraphspeed", usual);
  stop("frmMain");
  savePicture();
  closeReadouts();
  openProperties();
  dragGate();
  hands_.close("frmMain");
}

void GuidePictures::ofCCDF() {
  hands_.click("frmComms/cmdSave");
  hands_.click("frmConfigureQuestion/cmdCCDF");
  hands_.waitVisible("frmCCDF");
  hands_.waitGone("frmPleaseWait");
  acquire("frmCCDF", "lblgraphspeed1", usual);
  hands_.waitWhile("frmCCDF/lblCursorPercentage", "text", "0%");
  dragCursor();
  stop("frmCCDF");
  take("ccdf", "frmCCDF");
  hands_.close("frmCCDF");
}

/// From 5 dBm, of -30 to 20 dBm, until the share of its new place is read.
void GuidePictures::dragCursor() {
  const std::string share = hands_.get("frmCCDF/lblCursorPercentage", "text");
  moveOnGraph(hands_, robot::ccdfGraph, "move", 0.7);
  moveOnGraph(hands_, robot::ccdfGraph, "press", 0.7);
  moveOnGraph(hands_, robot::ccdfGraph, "move", 0.8);
  moveOnGraph(hands_, robot::ccdfGraph, "release", 0.8);
  hands_.waitWhile("frmCCDF/lblCursorPercentage", "text", share);
}

void GuidePictures::take(const std::string& name, const std::string& window) {
  hands_.activate(window);
  hands_.grab(window, file(name));
}

void GuidePictures::startUp() {
  hands_.waitVisible("frmComms");
  take("comms", "frmComms");
  hands_.click("frmComms/cmdSave");
  hands_.waitVisible("frmConfigureQuestion");
  take("how-to-begin", "frmConfigureQuestion");
}

void GuidePictures::loadFromMeter() {
  // How many exchanges of the load are done when the gates are half read.
  constexpr auto someExchanges = "20";
  hands_.click("frmConfigureQuestion/cmdLoadPM");
  hands_.grabWhen("frmPleaseWait", file("please-wait"), "frmPleaseWait/barDone", "value",
                  someExchanges);
  hands_.waitGone("frmPleaseWait");
  hands_.waitVisible("frmMain");
}

void GuidePictures::resize(const std::string& window, const Size& size) {
  hands_.resize(window, size.width, size.height);
  hands_.waitUntil(window, "width", std::to_string(size.width));
  hands_.waitUntil(window, "height", std::to_string(size.height));
}

/// Until there is a profile, or a curve.
void GuidePictures::acquire(const std::string& window, const std::string& rate, const Size& size) {
  constexpr auto noRate = "Profile/Second: 0.00";
  resize(window, size);
  hands_.trigger(window + "/menuStart");
  hands_.waitWhile(window + "/" + rate, "text", noRate);
}

void GuidePictures::stop(const std::string& window) {
  hands_.trigger(window + "/menuStop");
  hands_.waitUntil(window + "/menuStart", "enabled", "true");
}

/// Both stand beside the window where they were opened.
void GuidePictures::openReadouts() {
  resize("frmMain", besideReadouts);
  hands_.trigger("frmMain/menuInfoBox");
  hands_.waitVisible("frmInfo");
  hands_.trigger("frmMain/menuMarkers");
  hands_.waitVisible("frmMarkers");
  acquire("frmMain", "lblgraphspeed", besideReadouts);
  // Of gate 1. The markers are read after the gates, and Stop lets a pass finish.
  hands_.waitWhile("frmInfo/lblMeasResult_3", "text", "0.00");
  stop("frmMain");
  hands_.activate("frmMain");
  hands_.picture(file("readouts"), "frmMarkers");
}

void GuidePictures::closeReadouts() {
  hands_.trigger("frmMain/menuInfoBox");
  hands_.waitGone("frmInfo");
  hands_.trigger("frmMain/menuMarkers");
  hands_.waitGone("frmMarkers");
}

void GuidePictures::openProperties() {
  hands_.trigger("frmMain/menuProperties");
  hands_.waitVisible("frmProperties");
  hands_.key("frmProperties/sstab", "Ctrl+Tab");
  hands_.waitVisible("frmProperties/lblFence_0");
  take("properties", "frmProperties");
  hands_.close("frmProperties");
  hands_.waitGone("frmProperties");
}

/// The dialog, and the picture that the program saves with what it offers.
void GuidePictures::savePicture() {
  hands_.trigger("frmMain/menuSavePicture");
  hands_.waitVisible("frmPicture");
  take("save-picture", "frmPicture");
  hands_.click("frmPicture/cmdSave");
  hands_.waitVisible("saveFileDialog");
  hands_.chooseFile("saveFileDialog", "saved-picture.png");
  hands_.activate("frmMain");
}

/// Gate 1 begins at this share of the graph: 0.05 ms, of 2 ms from -0.2 ms on.
void GuidePictures::dragGate() {
  constexpr double gateStart = 0.125;
  moveOnGraph(hands_, robot::profileGraph, "move", gateStart);
  hands_.waitVisible("lblgate");
  moveOnGraph(hands_, robot::profileGraph, "press", gateStart);
  moveOnGraph(hands_, robot::profileGraph, "move", 0.17);
  take("dragging", "frmMain");
  moveOnGraph(hands_, robot::profileGraph, "release", 0.17);
  hands_.waitGone("lblgate");
}

}  // namespace tour
