#pragma once

#include <functional>
#include <string>

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
  /// Ends the program as its user does: the main window's close button.
  void leave();

  int pictures() const { return count_; }

 private:
  void chooseLink();
  void loadFromMeter();
  void watchProfile();
  void awaitProfile();
  void dragGate();
  void editLabel();
  void readMeasurements();
  void openMenus();
  void chooseFont();
  void editLinkSettings();
  void shrinkWindow();

  /// A step of the mouse on the graph; `share` counts from its left edge to its right one.
  void moveOnGraph(const std::string& step, double share);

  /// All windows on the screen, as soon as `shown` is one of them.
  void takePicture(const std::string& title, const std::string& shown);

  robot::RobotClient& hands_;
  MeterLink link_;
  std::string folder_;
  int count_ = 0;
};

}  // namespace tour
