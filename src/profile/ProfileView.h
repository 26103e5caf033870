#pragma once

#include <array>
#include <string>

#include "platform/Installed.h"
#include "platform/Picture.h"

/// What the profile subsystem asks of its window, `frmMain`.

namespace pulsemod {

enum class GraphLabel { reference, scale, capture, start, stop };

/// One vertical line of a gate on the graph, over the full height. Gate g (1 to 8) has the elements
/// 4(g-1) to 4(g-1)+3: start, stop, fence start, fence stop. Gate lines are solid, fence lines
/// dashed.
struct GateLine {
  bool visible = false;
  /// Graph x position, in trace points.
  double x = 0;
  friend bool operator==(const GateLine&, const GateLine&) = default;
};
inline constexpr std::size_t linesPerGate = 4;
using GateLineArray = std::array<GateLine, 8 * linesPerGate>;

class InfoBoxView;
class MarkersView;

class ProfileView {
 public:
  virtual ~ProfileView() = default;

  /// `GraphPic`.
  virtual Picture& graph() = 0;
  /// The caption of `lblRef`, `lblscale`, `lblCapture`, `lblStart` or `lblStop`.
  virtual void setGraphLabel(GraphLabel label, const std::string& caption) = 0;
  virtual std::string graphLabel(GraphLabel label) const = 0;
  /// Places `GateLine`; they stay until the next call, whatever is drawn meanwhile.
  virtual void placeGateLines(const GateLineArray& lines) = 0;
  /// `lblgate`, the label of the edge under the mouse: hidden at first, drawn over the graph.
  virtual void setEdgeLabelCaption(const std::string& caption) = 0;
  virtual std::string edgeLabelCaption() const = 0;
  /// What the present caption takes, in the graph's user units.
  virtual PictureSize edgeLabelSize() const = 0;
  /// Shows the label with its top left corner at a place in the graph's user units.
  virtual void showEdgeLabel(PicturePoint topLeft) = 0;
  virtual void hideEdgeLabel() = 0;
  /// The pointer over the graph: a left-right arrow, or the default.
  virtual void setSizingPointer(bool sizing) = 0;

  /// `lblgraphspeed` (`rateText`) and its tool tip.
  virtual void showRate(const std::string& caption, const std::string& toolTip) = 0;

  /// Brings menus in line with a started or stopped acquisition; starting hides `frmProperties`.
  virtual void showAcquisitionStarted() = 0;
  virtual void showAcquisitionStopped() = 0;

  /// `menuSecondProfile` is checked.
  virtual bool secondProfileIsShown() const = 0;
  /// Checks `menuSecondProfile`.
  virtual void showSecondProfile() = 0;
  /// `frmProperties`, if it is open, takes the gates from the model.
  virtual void refreshGatePage() = 0;

  /// `frmInfo` and `frmMarkers` while they are open (minimised counts as open), else none.
  virtual InfoBoxView* infoBox() = 0;
  virtual MarkersView* markersWindow() = 0;
};

using ProfileViewGuard = Installed<ProfileView>;
inline ProfileView& profileView() { return ProfileViewGuard::get(); }

}  // namespace pulsemod
