#pragma once

#include <QMainWindow>

#include "ccdf/CCDFView.h"
#include "ui/CCDFPanel.h"

class QAction;

namespace pulsemod {

/// `frmCCDF`. Must be the `ccdfView()` when it is shown.
class CCDFWindow : public QMainWindow, public CCDFView {
 public:
  CCDFWindow();

  Picture& graph() override { return panel_->graph(); }
  void setStartPowerLabel(const std::string& caption) override;
  void setStopPowerLabel(const std::string& caption) override;
  void setSourceLabel(const std::string& caption) override;
  void showRate(const std::string& caption, const std::string& toolTip) override;
  void showAcquisitionStarted() override;
  void showAcquisitionStopped() override;
  void setCursorMenus(bool cursorOn) override;
  void showCursor(const std::string& power, const std::string& percentage, double x) override;
  void hideCursor() override { panel_->hideCursor(); }
  bool cursorFrameIsShown() const override { return panel_->cursorFrameIsShown(); }
  void setSizingPointer(bool sizing) override { panel_->setSizingPointer(sizing); }
  bool secondCurveIsShown() const override;
  void showSecondCurve() override;

 protected:
  /// The end of the program.
  void closeEvent(QCloseEvent* event) override;

 private:
  void buildFileMenu();
  void buildCCDFMenu();
  void buildCursorMenu();
  void buildSourceMenu();
  void setAcquisitionMenus(bool running);

  CCDFPanel* panel_;
  QAction* menuStart_ = nullptr;
  QAction* menuStop_ = nullptr;
  QAction* menuSecondProfile_ = nullptr;
  QAction* menuOn_ = nullptr;
  QAction* menuOff_ = nullptr;
  QAction* menuSetCursorPosition_ = nullptr;
};

}  // namespace pulsemod
