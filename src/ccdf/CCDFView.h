#pragma once

#include <string>

#include "platform/Installed.h"
#include "platform/Picture.h"

/// What the CCDF subsystem asks of its window, `frmCCDF`.

namespace pulsemod {

class CCDFView {
 public:
  virtual ~CCDFView() = default;

  /// `CCDFGraphPic`.
  virtual Picture& graph() = 0;
  /// `lblStartPower` and `lblStopPower`.
  virtual void setStartPowerLabel(const std::string& caption) = 0;
  virtual void setStopPowerLabel(const std::string& caption) = 0;
  /// `lblMeasSource`.
  virtual void setSourceLabel(const std::string& caption) = 0;
  /// `lblgraphspeed1` and its tool tip.
  virtual void showRate(const std::string& caption, const std::string& toolTip) = 0;

  /// Brings `menuStart` and `menuStop` in line with a started or stopped acquisition.
  virtual void showAcquisitionStarted() = 0;
  virtual void showAcquisitionStopped() = 0;
  /// `menuOn` is enabled while the cursor is off, `menuOFF` and `menuSetCursorPosition` while it is
  /// on.
  virtual void setCursorMenus(bool cursorOn) = 0;

  /// `FrameCursor` with `lblCursorPower` and `lblCursorPercentage`, whose captions bear their
  /// units, and the cursor's line at graph x (ccdf/CCDFGraph.h) over the full height.
  virtual void showCursor(const std::string& power, const std::string& percentage, double x) = 0;
  virtual void hideCursor() = 0;
  virtual bool cursorFrameIsShown() const = 0;
  /// The pointer over the graph: a left-right arrow, or the default.
  virtual void setSizingPointer(bool sizing) = 0;

  /// `menuSecondProfile` is checked.
  virtual bool secondCurveIsShown() const = 0;
  /// Checks `menuSecondProfile`.
  virtual void showSecondCurve() = 0;
};

using CCDFViewGuard = Installed<CCDFView>;
inline CCDFView& ccdfView() { return CCDFViewGuard::get(); }

}  // namespace pulsemod
