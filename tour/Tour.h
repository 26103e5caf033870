#pragma once

#include <initializer_list>
#include <string>
#include <utility>

#include "RobotClient.h"

namespace tour {

enum class MeterLink { gpib, serial };

/// A walk through the running program, station by station, as its user would go. Every picture is
/// numbered and named after what it shows.
class Tour {
 public:
  /// A program that starts for the first time is told to use `link`.
  Tour(robot::RobotClient& hands, MeterLink link, std::string folder);

  /// From the first dialog to the open main window with the acquisition stopped again. Throws
  /// `robot::RobotError` when something did not appear.
  void walk();
  /// The same through CCDF mode.
  void walkCCDF();
  /// Ends the program as its user does: the close button of the window that it came to.
  void leave();

  int pictures() const { return count_; }

 private:
  void chooseLink();
  void loadFromMeter();
  void watchProfile();
  void dragGate();
  void editLabel();
  void readMeasurements();
  void openMenus();
  void chooseFont();
  void editLinkSettings();
  void turnPages();
  void saveAndOpen(const std::string& saveItem, const std::string& openItem);
  void compareProfiles();
  void compareCurves();
  void shrinkWindow();

  void enterCCDF();
  void watchCCDF();
  void dragCursor();
  void chooseSource();
  void editPower();
  void openCCDFMenus();
  void shrinkCCDFWindow();

  /// A picture of each menu, by the name that it gets and an item that is in it.
  void openMenus(std::initializer_list<std::pair<const char*, const char*>> menus);
  /// Until there is a profile, or a curve, of the present size to see.
  void resizeAndAwait(int width, int height);
  void awaitRate();

  /// A step of the mouse on the window's graph; `share` counts from its left edge to its right one.
  void moveOnGraph(const std::string& step, double share);

  /// A control or item of the window that the tour goes through.
  std::string in(const std::string& name) const { return window_ + "/" + name; }

  /// All windows on the screen, as soon as `shown` is one of them.
  void takePicture(const std::string& title, const std::string& shown);

  robot::RobotClient& hands_;
  MeterLink link_;
  std::string folder_;
  std::string window_;
  int count_ = 0;
};

}  // namespace tour
