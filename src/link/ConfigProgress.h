#pragma once

#include <string>

namespace pulsemod {

/// `frmPleaseWait` while a configuration is read or written: shown with "Please Wait... " and the
/// first step, hidden when the routine is left, also by a fault. One at a time.
class ConfigProgress {
 public:
  explicit ConfigProgress(const std::string& firstStep);
  ~ConfigProgress();
  ConfigProgress(const ConfigProgress&) = delete;
  ConfigProgress& operator=(const ConfigProgress&) = delete;

  /// Shows nothing while exchanges are only counted.
  void step(const std::string& text) const;
  /// The bar grows with each exchange from here on and is full after so many.
  void expect(int exchanges);
  /// The window stays on the screen after the routine, so that the user sees where it stopped.
  void leaveOnScreen() { hideAtEnd_ = false; }

 private:
  void showDone() const;

  int expected_ = 0;
  int done_ = 0;
  bool hideAtEnd_ = true;
};

}  // namespace pulsemod
