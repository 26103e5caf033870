#pragma once

#include <string>

namespace pulsemod {

/// The user's answers at start, with the codes that the buttons of `frmConfigureQuestion` stand
/// for.
enum class StartChoice {
  configureMeter = 0,
  loadFromMeter = 1,
  ccdfMode = 2,
  exitProgram = 3,
  openCommsOptions = 4,
  justStart = 5
};

/// The windows that start-up shows.
class StartUpView {
 public:
  virtual ~StartUpView() = default;

  /// `frmComms`, modal.
  virtual void showCommsOptions() = 0;
  /// `frmConfigureQuestion`, modal; closing it without a button means `exitProgram`.
  virtual StartChoice askHowToBegin() = 0;
  /// `frmMain`; with an empty title it keeps its own.
  virtual void showMainWindow(const std::string& title) = 0;
  /// Builds `frmCCDF`, the `ccdfView()` from here on, and `frmMain`, which stays hidden beside it.
  virtual void prepareCCDFWindow() = 0;
  /// `frmCCDF`, once it is prepared.
  virtual void showCCDFWindow(const std::string& title) = 0;
};

/// The program's version, major, minor and revision: "0.1.0".
std::string versionText();

/// "Pelmora v" and the version: the title of a window whose meter is known.
std::string versionCaption();

/// The whole start: defaults, communications settings, the user's choice, the link, the meter's
/// error reports and identity (*ESE 56, *IDN?), the chosen course. Returns only for "Just Start
/// Program"; with "Configure Power Meter", "Load from Power Meter" and "CCDF Mode" the acquisition
/// loop runs below this call for the rest of the run. A meter that does not answer or is not
/// supported ends the program with its message.
void StartUp(StartUpView& view);

}  // namespace pulsemod
