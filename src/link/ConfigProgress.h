#pragma once

#include <string>

namespace pulsemod {

/// `frmPleaseWait` while a configuration is read or written: shown with "Please Wait... " and the
/// first step, hidden when the routine is left, also by a fault.
class ConfigProgress {
 public:
  explicit ConfigProgress(const std::string& firstStep);
  ~ConfigProgress();
  ConfigProgress(const ConfigProgress&) = delete;
  ConfigProgress& operator=(const ConfigProgress&) = delete;

  void step(const std::string& text) const;
  /// The window stays on the screen after the routine, so that the user sees where it stopped.
  void leaveOnScreen() { hideAtEnd_ = false; }

 private:
  bool hideAtEnd_ = true;
};

}  // namespace pulsemod
