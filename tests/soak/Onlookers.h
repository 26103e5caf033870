#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Ledger.h"
#include "ccdf/CCDFView.h"
#include "platform/Picture.h"
#include "profile/ProfileView.h"

namespace soak {

/// What the onlookers of both windows write down.
struct Sightings {
  Ledger& ledger;
  /// A rate that no pass can have.
  std::uint64_t oddRates = 0;
  std::function<void()> onStopped = {};

  void rate(const std::string& caption);
};

/// Passes a graph's drawings on and looks at what they end with.
class PictureOnlooker : public pulsemod::Picture {
 public:
  using OnShow = std::function<void(std::span<const pulsemod::PicturePoint> liveTrace)>;

  PictureOnlooker(pulsemod::Colour live, OnShow onShow) : live_(live), onShow_(std::move(onShow)) {}
  void watch(pulsemod::Picture& picture) { picture_ = &picture; }

  void clear() override {
    trace_.clear();
    picture_->clear();
  }
  void setScale(const pulsemod::PictureScale& scale) override { picture_->setScale(scale); }
  void line(pulsemod::PicturePoint from, pulsemod::PicturePoint to,
            pulsemod::Colour colour) override {
    picture_->line(from, to, colour);
  }
  void polyline(std::span<const pulsemod::PicturePoint> points, pulsemod::Colour colour) override {
    if (colour == live_) trace_.assign(points.begin(), points.end());
    picture_->polyline(points, colour);
  }
  void text(pulsemod::PicturePoint topLeft, std::string_view text,
            pulsemod::Colour colour) override {
    picture_->text(topLeft, text, colour);
  }
  double textHeight() const override { return picture_->textHeight(); }
  void endBackground() override { picture_->endBackground(); }
  void show() override {
    picture_->show();
    onShow_(trace_);
  }

 private:
  pulsemod::Colour live_;
  OnShow onShow_;
  pulsemod::Picture* picture_ = nullptr;
  std::vector<pulsemod::PicturePoint> trace_;
};

/// Stands before the main window for the subsystems and passes everything on.
class ProfileOnlooker : public pulsemod::ProfileView {
 public:
  ProfileOnlooker(pulsemod::ProfileView& window, Sightings& sightings);

  pulsemod::Picture& graph() override;
  void setGraphLabel(pulsemod::GraphLabel label, const std::string& caption) override {
    window_.setGraphLabel(label, caption);
  }
  std::string graphLabel(pulsemod::GraphLabel label) const override {
    return window_.graphLabel(label);
  }
  void placeGateLines(const pulsemod::GateLineArray& lines) override {
    window_.placeGateLines(lines);
  }
  void setEdgeLabelCaption(const std::string& caption) override {
    window_.setEdgeLabelCaption(caption);
  }
  std::string edgeLabelCaption() const override { return window_.edgeLabelCaption(); }
  pulsemod::PictureSize edgeLabelSize() const override { return window_.edgeLabelSize(); }
  void showEdgeLabel(pulsemod::PicturePoint topLeft) override { window_.showEdgeLabel(topLeft); }
  void hideEdgeLabel() override { window_.hideEdgeLabel(); }
  void setSizingPointer(bool sizing) override { window_.setSizingPointer(sizing); }
  void showRate(const std::string& caption, const std::string& toolTip) override {
    sightings_.rate(caption);
    window_.showRate(caption, toolTip);
  }
  void showAcquisitionStarted() override { window_.showAcquisitionStarted(); }
  void showAcquisitionStopped() override {
    window_.showAcquisitionStopped();
    sightings_.onStopped();
  }
  bool secondProfileIsShown() const override { return window_.secondProfileIsShown(); }
  void showSecondProfile() override { window_.showSecondProfile(); }
  void refreshGatePage() override { window_.refreshGatePage(); }
  pulsemod::InfoBoxView* infoBox() override { return window_.infoBox(); }
  pulsemod::MarkersView* markersWindow() override { return window_.markersWindow(); }

 private:
  pulsemod::ProfileView& window_;
  Sightings& sightings_;
  PictureOnlooker picture_;
  pulsemod::ProfileViewGuard guard_{*this};
};

/// The same before the CCDF window.
class CCDFOnlooker : public pulsemod::CCDFView {
 public:
  CCDFOnlooker(pulsemod::CCDFView& window, Sightings& sightings);

  pulsemod::Picture& graph() override;
  void setStartPowerLabel(const std::string& caption) override {
    window_.setStartPowerLabel(caption);
  }
  void setStopPowerLabel(const std::string& caption) override {
    window_.setStopPowerLabel(caption);
  }
  void setSourceLabel(const std::string& caption) override { window_.setSourceLabel(caption); }
  void showRate(const std::string& caption, const std::string& toolTip) override {
    sightings_.rate(caption);
    window_.showRate(caption, toolTip);
  }
  void showAcquisitionStarted() override { window_.showAcquisitionStarted(); }
  void showAcquisitionStopped() override {
    window_.showAcquisitionStopped();
    sightings_.onStopped();
  }
  void setCursorMenus(bool cursorOn) override { window_.setCursorMenus(cursorOn); }
  void showCursor(const std::string& power, const std::string& percentage, double x) override {
    window_.showCursor(power, percentage, x);
  }
  void hideCursor() override { window_.hideCursor(); }
  bool cursorFrameIsShown() const override { return window_.cursorFrameIsShown(); }
  void setSizingPointer(bool sizing) override { window_.setSizingPointer(sizing); }
  bool secondCurveIsShown() const override { return window_.secondCurveIsShown(); }
  void showSecondCurve() override { window_.showSecondCurve(); }

 private:
  pulsemod::CCDFView& window_;
  Sightings& sightings_;
  PictureOnlooker picture_;
  pulsemod::CCDFViewGuard guard_{*this};
};

}  // namespace soak
