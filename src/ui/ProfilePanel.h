#pragma once

#include <QFont>
#include <QLabel>
#include <QWidget>

#include "profile/ProfileView.h"
#include "ui/GraphWidget.h"
#include "ui/ProfileLayout.h"

namespace pulsemod {

/// The face of `frmMain` under the menu bar: the graph and the labels around it. Resizing it lays
/// it out and draws the graph anew.
class ProfilePanel : public QWidget {
 public:
  explicit ProfilePanel(QWidget* parent = nullptr);

  Picture& graph() { return graph_.picture(); }
  void placeGateLines(const GateLineArray& lines) { graph_.placeGateLines(lines); }
  void setGraphLabel(GraphLabel label, const QString& caption);
  void showRate(const QString& caption, const QString& toolTip);

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
  ProfileLabelSizes labelSizes() const;
  QLabel& labelOf(GraphLabel label);
  void place();

  QWidget rule_{this};
  QLabel reference_{this};
  QLabel rate_{this};
  QLabel scale_{this};
  GraphWidget graph_{this};
  QLabel start_{this};
  QLabel capture_{this};
  QLabel stop_{this};
};

}  // namespace pulsemod
