#pragma once

#include <string>

#include "RobotClient.h"

namespace tour {

struct Size {
  int width = 0;
  int height = 0;
};

/// The pictures of the user guide, each taken while nothing moves: the acquisition is stopped, or
/// the program waits for the meter. With the meter's noise at rest and a `TourClock` they are the
/// same on every run.
class GuidePictures {
 public:
  /// The program has just been started for the first time, with the meter on GPIB.
  GuidePictures(robot::RobotClient& hands, std::string folder);

  /// The dialogs of the start and the profile view. Throws `robot::RobotError` when something did
  /// not appear.
  void ofProfile();
  /// The CCDF view.
  void ofCCDF();

 private:
  void startUp();
  void loadFromMeter();
  void resize(const std::string& window, const Size& size);
  void acquire(const std::string& window, const std::string& rate, const Size& size);
  void stop(const std::string& window);
  void openReadouts();
  void closeReadouts();
  void openProperties();
  void savePicture();
  void dragGate();
  void dragCursor();

  /// A picture of one window, as soon as it is the active one: it would look different before.
  void take(const std::string& name, const std::string& window);
  std::string file(const std::string& name) const { return folder_ + "/" + name + ".png"; }

  robot::RobotClient& hands_;
  std::string folder_;
};

}  // namespace tour
