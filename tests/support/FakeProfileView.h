#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "profile/ProfileView.h"
#include "profile/ReadoutViews.h"

namespace pulsemod::test {

/// A picture that keeps what was drawn. `shown` is the last drawing that was finished.
class RecordingPicture : public Picture {
 public:
  struct Line {
    PicturePoint from;
    PicturePoint to;
    Colour colour;
    friend bool operator==(const Line&, const Line&) = default;
  };
  struct Polyline {
    std::vector<PicturePoint> points;
    Colour colour;
  };
  struct Text {
    PicturePoint topLeft;
    std::string text;
    Colour colour;
    friend bool operator==(const Text&, const Text&) = default;
  };
  struct Drawing {
    PictureScale scale;
    std::vector<Line> lines;
    std::vector<Polyline> polylines;
    std::vector<Text> texts;
  };

  void clear() override {
    calls.emplace_back("clear");
    drawn = Drawing{};
  }
  void setScale(const PictureScale& scale) override {
    calls.emplace_back("scale");
    drawn.scale = scale;
  }
  void line(PicturePoint from, PicturePoint to, Colour colour) override {
    calls.emplace_back("line");
    drawn.lines.push_back({from, to, colour});
  }
  void polyline(std::span<const PicturePoint> points, Colour colour) override {
    calls.emplace_back("polyline");
    drawn.polylines.push_back({{points.begin(), points.end()}, colour});
  }
  void text(PicturePoint topLeft, std::string_view text, Colour colour) override {
    calls.emplace_back("text");
    drawn.texts.push_back({topLeft, std::string(text), colour});
  }
  double textHeight() const override { return heightOfText; }
  void endBackground() override { calls.emplace_back("background"); }
  void show() override {
    calls.emplace_back("show");
    shown = drawn;
    ++timesShown;
  }

  Drawing drawn;
  Drawing shown;
  int timesShown = 0;
  /// Every call but `textHeight`, in order: "clear", "scale", "line", ...
  std::vector<std::string> calls;
  /// In user units.
  double heightOfText = 4;
};

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
  std::string rate = "Profile/Second: 0.00";
  std::string rateToolTip;
  int timesRateShown = 0;
  std::vector<std::string> menus;
  bool secondProfileShown = false;

 private:
  ProfileViewGuard guard_{*this};
};

}  // namespace pulsemod::test
