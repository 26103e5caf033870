#pragma once

#include <functional>
#include <memory>
#include <string>

#include "ccdf/CCDFView.h"
#include "profile/ProfileView.h"
#include "startup/StartUp.h"
#include "ui/PleaseWait.h"

namespace pulsemod {

class CCDFWindow;
class CommsDialog;
class ConfigureQuestion;
class MainWindow;

/// All windows of the program. Each is built when it is first needed, and lives, hidden or shown,
/// as long as this does. A QApplication must exist, and the services be installed before a window
/// is shown.
class Windows : public StartUpView {
 public:
  /// `portDevice` tells which device a port number (1 to 10) stands for; empty for none.
  explicit Windows(std::function<std::string(int)> portDevice);
  ~Windows() override;
  Windows(const Windows&) = delete;
  Windows& operator=(const Windows&) = delete;

  /// `frmPleaseWait`, for the services; no window is built before it is shown.
  Progress& pleaseWait() { return pleaseWait_; }

  void showCommsOptions() override;
  StartChoice askHowToBegin() override;
  /// From here on `frmMain` is the `profileView()`.
  void showMainWindow(const std::string& title) override;
  void prepareCCDFWindow() override;
  void showCCDFWindow(const std::string& title) override;

 private:
  MainWindow& mainWindow();

  std::function<std::string(int)> portDevice_;
  PleaseWait pleaseWait_;
  std::unique_ptr<MainWindow> main_;
  std::unique_ptr<ProfileViewGuard> mainIsTheView_;
  std::unique_ptr<CCDFWindow> ccdf_;
  std::unique_ptr<CCDFViewGuard> ccdfIsTheView_;
  std::unique_ptr<ConfigureQuestion> question_;
  // After `main_`, its parent at times: whichever goes first, neither is deleted twice.
  std::unique_ptr<CommsDialog> comms_;
};

}  // namespace pulsemod
