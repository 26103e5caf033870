#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "ccdf/CCDFView.h"
#include "support/RecordingPicture.h"

namespace pulsemod::test {

/// `frmCCDF`, as it was last told.
class FakeCCDFView : public CCDFView {
 public:
  struct Cursor {
    std::string power;
    std::string percentage;
    double x = 0;
    friend bool operator==(const Cursor&, const Cursor&) = default;
  };

  Picture& graph() override { return picture; }
  void setStartPowerLabel(const std::string& caption) override {
    startPower = caption;
    record("start " + caption);
  }
  void setStopPowerLabel(const std::string& caption) override {
    stopPower = caption;
    record("stop " + caption);
  }
  void setSourceLabel(const std::string& caption) override {
    source = caption;
    record(caption);
  }
  void showRate(const std::string& caption, const std::string& toolTip) override {
    rate = caption;
    rateToolTip = toolTip;
    record("rate");
  }
  void showAcquisitionStarted() override { record("started"); }
  void showAcquisitionStopped() override { record("stopped"); }
  void setCursorMenus(bool cursorOn) override {
    record(cursorOn ? "menus for cursor on" : "menus for cursor off");
  }
  void showCursor(const std::string& power, const std::string& percentage, double x) override {
    cursor = {power, percentage, x};
    cursorIsShown = true;
    record("cursor " + power + " " + percentage);
  }
  void hideCursor() override {
    cursorIsShown = false;
    record("no cursor");
  }
  bool cursorFrameIsShown() const override { return cursorIsShown; }
  void setSizingPointer(bool sizing) override { sizingPointer = sizing; }
  bool secondCurveIsShown() const override { return secondCurveShown; }
  void showSecondCurve() override { secondCurveShown = true; }

  int timesCalled(const std::string& call) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), call));
  }

  RecordingPicture picture;
  std::string startPower;
  std::string stopPower;
  std::string source;
  std::string rate = "Profile/Second: 0.00";
  std::string rateToolTip;
  Cursor cursor;
  bool cursorIsShown = false;
  bool sizingPointer = false;
  bool secondCurveShown = false;
  /// Every change but those of the pointer and of the graph, in order.
  std::vector<std::string> calls;
  std::function<void(const std::string&)> onCall;

 private:
  void record(const std::string& call) {
    calls.push_back(call);
    if (onCall) onCall(call);
  }

  CCDFViewGuard guard_{*this};
};

}  // namespace pulsemod::test
