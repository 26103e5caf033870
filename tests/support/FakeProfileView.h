#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "profile/ProfileView.h"
#include "profile/ReadoutViews.h"
#include "support/RecordingPicture.h"

namespace pulsemod::test {

/// `frmInfo`, as it was last told.
class FakeInfoBox : public InfoBoxView {
 public:
  struct Group {
    bool inUse = false;
    bool enabled = false;
    friend bool operator==(const Group&, const Group&) = default;
  };
  struct Result {
    std::string name;
    std::string value;
    std::string unit;
    friend bool operator==(const Result&, const Result&) = default;
  };

  void setGroup(std::size_t group, bool inUse, bool enabled) override {
    groups[group] = {inUse, enabled};
  }
  void showResult(std::size_t element, const std::string& name, const std::string& value,
                  const std::string& unit) override {
    results[element] = {name, value, unit};
    hidden.erase(element);
    ++timesShown;
  }
  void hideResult(std::size_t element) override { hidden.insert(element); }

  std::map<std::size_t, Group> groups;
  std::map<std::size_t, Result> results;
  std::set<std::size_t> hidden;
  int timesShown = 0;
};

/// `frmMarkers`, as it was last told.
class FakeMarkersWindow : public MarkersView {
 public:
  struct Marker {
    std::string reading;
    std::string position;
    friend bool operator==(const Marker&, const Marker&) = default;
  };

  void setMarkerEnabled(std::size_t index, bool on) override { enabled[index] = on; }
  void showMarker(std::size_t index, const std::string& reading,
                  const std::string& position) override {
    markers[index] = {reading, position};
    ++timesShown;
  }

  std::map<std::size_t, bool> enabled;
  std::map<std::size_t, Marker> markers;
  int timesShown = 0;
};

/// `lblgate` and the pointer over the graph.
struct FakeEdgeLabel {
  std::string caption;
  bool visible = false;
  PicturePoint topLeft;
  /// In user units; each character of the caption adds `characterWidth`.
  PictureSize size{30, 4};
  double characterWidth = 0;
  bool sizingPointer = false;
  int timesShown = 0;
};

class FakeProfileView : public ProfileView {
 public:
  Picture& graph() override { return picture; }
  void setGraphLabel(GraphLabel label, const std::string& caption) override {
    labels[label] = caption;
  }
  std::string graphLabel(GraphLabel label) const override {
    const auto found = labels.find(label);
    return found == labels.end() ? std::string() : found->second;
  }
  void placeGateLines(const GateLineArray& placed) override {
    gateLines = placed;
    ++timesGateLinesPlaced;
  }
  void setEdgeLabelCaption(const std::string& caption) override { edgeLabel.caption = caption; }
  std::string edgeLabelCaption() const override { return edgeLabel.caption; }
  PictureSize edgeLabelSize() const override {
    const auto characters = static_cast<double>(edgeLabel.caption.size());
    return {edgeLabel.size.width + characters * edgeLabel.characterWidth, edgeLabel.size.height};
  }
  void showEdgeLabel(PicturePoint topLeft) override {
    edgeLabel.visible = true;
    edgeLabel.topLeft = topLeft;
    ++edgeLabel.timesShown;
  }
  void hideEdgeLabel() override { edgeLabel.visible = false; }
  void setSizingPointer(bool sizing) override { edgeLabel.sizingPointer = sizing; }
  void showRate(const std::string& caption, const std::string& toolTip) override {
    rate = caption;
    rateToolTip = toolTip;
    ++timesRateShown;
  }
  void showAcquisitionStarted() override { menus.emplace_back("started"); }
  void showAcquisitionStopped() override { menus.emplace_back("stopped"); }
  bool secondProfileIsShown() const override { return secondProfileShown; }
  void showSecondProfile() override { secondProfileShown = true; }
  void refreshGatePage() override {
    ++timesGatePageRefreshed;
    if (onGatePageRefresh) onGatePageRefresh();
  }

  InfoBoxView* infoBox() override { return infoBoxOpen ? &info : nullptr; }
  MarkersView* markersWindow() override { return markersOpen ? &markers : nullptr; }

  RecordingPicture picture;
  FakeEdgeLabel edgeLabel;
  bool infoBoxOpen = false;
  FakeInfoBox info;
  bool markersOpen = false;
  FakeMarkersWindow markers;
  std::map<GraphLabel, std::string> labels;
  GateLineArray gateLines{};
  int timesGateLinesPlaced = 0;
  int timesGatePageRefreshed = 0;
  /// Runs at each `refreshGatePage`: what the page would show is in the model then.
  std::function<void()> onGatePageRefresh;
  std::string rate = "Profile/Second: 0.00";
  std::string rateToolTip;
  int timesRateShown = 0;
  std::vector<std::string> menus;
  bool secondProfileShown = false;

 private:
  ProfileViewGuard guard_{*this};
};

}  // namespace pulsemod::test
