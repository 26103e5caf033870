#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <set>
#include <utility>

#include "AccessibleTree.h"
#include "Bench.h"
#include "Desktop.h"

namespace endtoend {
namespace {

/// Roles of what a user works with or reads a value from.
bool isControl(const Accessible& object) {
  static const std::set<std::string> roles = {
      "push button", "toggle button", "check box",       "radio button",    "combo box",
      "text",        "entry",         "spin button",     "slider",          "dial",
      "page tab",    "menu item",     "check menu item", "radio menu item", "menu",
      "list item",   "progress bar",  "table cell",      "canvas",          "link"};
  return roles.contains(object.role);
}

bool isMenuItem(const Accessible& object) {
  return object.role.find("menu item") != std::string::npos || object.role == "menu";
}

/// As a screen reader says it.
std::string spoken(const Accessible& object) { return object.role + " '" + object.name + "'"; }

using Names = std::vector<std::string>;

/// Walks the real program's windows as a screen reader does.
class Accessibility : public Bench {
 protected:
  void SetUp() override {
    if (const std::string missing = Desktop::whatIsMissing(); !missing.empty()) {
      GTEST_SKIP() << missing;
    }
    Bench::SetUp();
    desktop_.emplace(folder());
    setEnvironment(desktop_->environment());
  }
  void TearDown() override {
    if (desktop_) Bench::TearDown();
  }

  AccessibleTree reader() const { return AccessibleTree(desktop_->sessionBus()); }

  /// Waits until all of `names` show; then everything there that a user can work with has a name.
  void expectNamed(const Names& names) {
    ASSERT_FALSE(names.empty());
    SCOPED_TRACE(names.front());
    AccessibleTree tree = reader();
    std::vector<Accessible> objects;
    std::string missing = names.front();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!missing.empty() && std::chrono::steady_clock::now() < deadline) {
      objects = tree.objects();
      missing = firstMissing(names, objects);
    }
    EXPECT_EQ(missing, "") << everything(objects);
    for (const Accessible& object : objects) {
      const bool counts = object.focusable || object.isWindow || isControl(object);
      if (!counts || !(object.showing || isMenuItem(object))) continue;
      EXPECT_NE(object.name, "") << object.path;
    }
  }

 private:
  static std::string firstMissing(const Names& names, const std::vector<Accessible>& objects) {
    for (const std::string& name : names) {
      const auto has = [&name](const Accessible& object) {
        return (object.showing || isMenuItem(object)) && spoken(object) == name;
      };
      if (std::none_of(objects.begin(), objects.end(), has)) return name;
    }
    return {};
  }
  static std::string everything(const std::vector<Accessible>& objects) {
    std::string text;
    for (const Accessible& object : objects) {
      if (object.showing || isMenuItem(object)) text += object.path + "\n";
    }
    return text;
  }

  std::optional<Desktop> desktop_;
};

TEST_F(Accessibility, OfTheFirstTwoDialogs) {
  startMeter();
  startProgram();
  hands().waitVisible("frmComms");
  expectNamed(
      {"dialog 'GPIB/RS232 Comms'", "radio button 'GPIB'", "text 'Address'", "push button 'Save'"});
  hands().click("optComms_1");
  expectNamed({"dialog 'GPIB/RS232 Comms'", "radio button 'RS232'", "radio button '57600'",
               "radio button 'COM1:'"});
  hands().click("frmComms/cmdSave");
  hands().waitVisible("frmConfigureQuestion");
  expectNamed({"dialog 'Pelmora PulseMod'", "push button 'Load from Power Meter'",
               "push button 'Exit Program'"});
}

TEST_F(Accessibility, OfTheProgressWindow) {
  startOn(Link::serial, "fault = GPFENS, 1, late 4000\n");
  hands().click("frmConfigureQuestion/cmdLoadPM");
  hands().waitVisible("frmPleaseWait");
  expectNamed({"dialog 'Please Wait'", "label 'Please Wait... Reading Gates...1'",
               "progress bar 'Progress'"});
  hands().waitVisible("frmMain");
}

TEST_F(Accessibility, OfTheMainWindowAndItsMenus) {
  startLoaded(Link::gpib);
  expectNamed({"frame 'Pelmora v" PULSEMOD_VERSION "'", "filler 'Pulse profile'",
               "chart 'Pulse profile graph'", "push button 'Reference level, Ref: 10.00 dBm'",
               "push button 'Graph scale, Scale: 10.00 dB'", "push button 'Trigger delay, -200us'",
               "push button 'Capture period, 2ms'", "push button 'Stop time, 1.8ms'",
               "label 'Profile/Second: 0.00'", "menu item 'Start'", "menu item 'Copy Picture'",
               "menu item 'User Guide'"});
}

TEST_F(Accessibility, AChosenEdgeIsDescribed) {
  startLoaded(Link::gpib);
  for (int tab = 0; tab < 3; ++tab) hands().key("frmMain", "Tab");
  AccessibleTree tree = reader();
  const auto graph = [&tree] { return tree.find("chart", "Pulse profile graph"); };
  EXPECT_TRUE(graph().focused);
  EXPECT_EQ(graph().description, "Up and Down choose an edge of a gate, Left and Right move it.");
  hands().key("frmMain", "Down");
  EXPECT_EQ(graph().description.substr(0, 13), "Gate 1 Start ");
}

TEST_F(Accessibility, OfItsBoxesThatOpenByTheActionOfAButton) {
  startLoaded(Link::gpib);
  AccessibleTree tree = reader();
  tree.act(tree.find("push button", "Graph scale, Scale: 10.00 dB"), "Press");
  expectNamed({"dialog 'Reference'", "label 'Enter new graph scale (dB)'",
               "text 'Enter new graph scale (dB)'", "push button 'OK'", "push button 'Cancel'"});
  tree.act(tree.find("push button", "Cancel"), "Press");
  tree.act(tree.find("push button", "Stop time, 1.8ms"), "Press");
  expectNamed({"push button 'OK'"});
  tree.act(tree.find("push button", "OK"), "Press");
}

TEST_F(Accessibility, OfTheDialogPageByPage) {
  startLoaded(Link::gpib);
  hands().trigger("frmMain/menuProperties");
  hands().waitVisible("frmProperties");
  const std::pair<const char*, Names> pages[] = {
      {"Alt+C", {"check box 'Average (16)'", "slider 'Number of profiles averaged'"}},
      {"Alt+G",
       {"check box 'Repeat gate 1'", "text 'Gate 1 start'",
        "push button 'Fence of gate 1 on, FENCE'", "text 'Gate 4 fence stop'",
        "radio button 'Gate 1 is the active gate'"}},
      {"Alt+M",
       {"check box 'Delta marker'", "text 'Marker 4 position'",
        "push button 'Show Marker Readings'"}},
      {"Alt+E", {"radio button 'Average and peak power (dBm)'"}},
      {"Alt+D", {"radio button '400 points'"}},
  };
  for (const auto& [key, names] : pages) {
    hands().key("frmProperties", key);
    Names all = {"dialog 'Properties'", "push button 'Load from Power meter'"};
    all.insert(all.end(), names.begin(), names.end());
    expectNamed(all);
  }
}

TEST_F(Accessibility, OfTheReadouts) {
  startLoaded(Link::gpib);
  hands().trigger("frmMain/menuInfoBox");
  hands().trigger("frmMain/menuMarkers");
  expectNamed({"frame 'Info Box'", "filler 'Info Box'", "panel 'Gate 1'", "label 'Avg'",
               "frame 'Markers'", "filler 'Markers'", "panel 'Marker 1'"});
}

TEST_F(Accessibility, OfThePictureAndTheAboutBox) {
  startLoaded(Link::gpib);
  hands().trigger("frmMain/menuSavePicture");
  expectNamed({"dialog 'Save Picture'", "push button 'Cancel'"});
  hands().key("frmPicture", "Escape");
  hands().trigger("frmMain/menuAbout");
  expectNamed({"dialog 'About Pelmora PulseMod'"});
}

TEST_F(Accessibility, OfTheUserGuide) {
  const std::filesystem::path folder = std::filesystem::path(PULSEMOD).parent_path();
  if (!std::filesystem::exists(folder / "../docs/user-guide.md")) {
    GTEST_SKIP() << "this build folder does not stand beside docs/";
  }
  startLoaded(Link::gpib);
  hands().trigger("frmMain/menuUserGuide");
  expectNamed({"filler 'Pelmora PulseMod User Guide'", "label 'User guide'"});
}

TEST_F(Accessibility, OfTheCcdfWindow) {
  startCCDF(Link::gpib);
  expectNamed({"frame 'Pelmora v" PULSEMOD_VERSION "'", "filler 'CCDF'", "chart 'CCDF graph'",
               "push button 'Start power, -30dBm'", "push button 'Stop power, 20dBm'",
               "label 'SOURCE:CHANNEL'", "frame 'Cursor'", "label '5dBm'", "label '.001%'",
               "menu item 'Position...'", "menu item 'Active Marker'"});
}

}  // namespace
}  // namespace endtoend
