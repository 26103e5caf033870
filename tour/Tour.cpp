#include "Tour.h"

#include <utility>

namespace tour {

Tour::Tour(robot::RobotClient& hands, MeterLink link, std::string folder)
    : hands_(hands), link_(link), folder_(std::move(folder)) {}

void Tour::walk() {
  chooseLink();
  loadFromMeter();
  watchProfile();
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
