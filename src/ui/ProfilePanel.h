#pragma once

#include <QFont>
#include <QLabel>
#include <QWidget>
#include <array>

#include "profile/ProfileView.h"
#include "ui/GraphWidget.h"
#include "ui/ParameterLabel.h"
#include "ui/ProfileLayout.h"
#include "ui/RateLabel.h"

namespace pulsemod {

/// The face of `frmMain` under the menu bar: the graph and the labels around it. Resizing it lays
/// it out and draws the graph anew.
class ProfilePanel : public QWidget {
 public:
  explicit ProfilePanel(QWidget* parent = nullptr);

  Picture& graph() { return graph_.picture(); }
  const GraphWidget& graphWidget() const { return graph_; }
  void placeGateLines(const GateLineArray& lines);
  void setGraphLabel(GraphLabel label, const QString& caption);
  QString graphLabel(GraphLabel label) const;
  void showRate(const QString& caption, const QString& toolTip);

  void setEdgeLabelCaption(const QString& caption);
  QString edgeLabelCaption() const { return edgeLabel_.text(); }
  PictureSize edgeLabelSize() const { return graph_.userSize(edgeLabel_.sizeHint()); }
  void showEdgeLabel(PicturePoint topLeft);
  void hideEdgeLabel();
  void setSizingPointer(bool sizing) { graph_.setSizingPointer(sizing); }

  QFont graphFont() const { return reference_.font(); }
  /// Applies the font's name, size and weight to the graph and its labels.
  void setGraphFont(const QFont& chosen);

  /// The smallest area that holds the usual captions in the present fonts.
  QSize smallestArea() const;

  /// Places everything, brings the rate back to 0.00 and draws the graph.
  void layOutAndDraw();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void setUpEdgeLabel();
  void placeEdgeLabel();
  ProfileLabelSizes labelSizes() const;
  QLabel& labelOf(GraphLabel label) const;
  void place();

  QWidget rule_{this};
  ParameterLabel reference_{this};
  RateLabel rate_{this};
  ParameterLabel scale_{this};
  GraphWidget graph_{this};
  /// Over the graph, and not its child: its font is not the graph's, which is the user's choice.
  QLabel edgeLabel_{this};
  /// Its top left corner, in the graph's user units.
  PicturePoint edgeLabelPlace_;
  ParameterLabel start_{this};
  ParameterLabel capture_{this};
  ParameterLabel stop_{this};
  /// In the order of `GraphLabel`.
  std::array<QLabel*, 5> graphLabels_{&reference_, &scale_, &capture_, &start_, &stop_};
};

}  // namespace pulsemod
