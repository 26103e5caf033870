#include "ui/ProfilePanel.h"

#include <QScreen>
#include <algorithm>

#include "link/Fault.h"
#include "profile/GraphMouse.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileGraph.h"
#include "ui/FontChoice.h"
#include "ui/GateLines.h"
#include "ui/GraphFace.h"
#include "ui/Look.h"

namespace pulsemod {

namespace {

QString edgeKeys() {
  return QStringLiteral("Up and Down choose an edge of a gate, Left and Right move it.");
}

}  // namespace

ProfilePanel::ProfilePanel(QWidget* parent) : QWidget(parent) {
  setUpFace(*this, QStringLiteral("Pulse profile"));
  setUpRule(rule_);

  graph_.setObjectName(QStringLiteral("GraphPic"));
  graph_.setAccessibleName(QStringLiteral("Pulse profile graph"));

  setUpRateLabel(rate_, "lblgraphspeed");
  setUpParameter(reference_, "lblRef", QStringLiteral("Reference level"),
                 QStringLiteral("Reference level: the power at the top edge. Click to change it."),
                 EditReferenceLevel);
  setUpParameter(
      scale_, "lblscale", QStringLiteral("Graph scale"),
      QStringLiteral("Power for each of the ten vertical divisions. Click to change it."),
      EditGraphScale);
  setUpParameter(start_, "lblStart", QStringLiteral("Trigger delay"),
                 QStringLiteral("Trigger delay: the time at the left edge. Click to change it."),
                 EditTriggerDelay);
  setUpParameter(capture_, "lblCapture", QStringLiteral("Capture period"),
                 QStringLiteral("Capture period: the time across the graph. Click to change it."),
                 EditCaptureTime);
  setUpParameter(stop_, "lblStop", QStringLiteral("Stop time"),
                 QStringLiteral("The time at the right edge: trigger delay plus capture period. "
                                "Change the capture period to move it."),
                 ExplainStopTime);
  setUpEdgeLabel();
  graph_.setMouseHandlers(
      {[] { reportFaults(GraphButtonDown); },
       [](PicturePoint pointer) { reportFaults([pointer] { GraphMouseMove(pointer); }); },
       [] { reportFaults(GraphButtonUp); }, [] { reportFaults(GraphMouseLeave); }});
  graph_.setAccessibleDescription(edgeKeys());
  graph_.setKeyHandlers({[](int step) { reportFaults([step] { ChooseEdge(step); }); },
                         [](double points) { reportFaults([points] { MoveChosenEdge(points); }); },
                         [] { reportFaults(ReleaseChosenEdge); },
                         [] { reportFaults(LeaveEdges); }});
}

void ProfilePanel::setUpEdgeLabel() {
  edgeLabel_.setObjectName(QStringLiteral("lblgate"));
  edgeLabel_.setTextFormat(Qt::PlainText);
  edgeLabel_.setContentsMargins(4, 2, 4, 2);
  edgeLabel_.setAutoFillBackground(true);
  QPalette colours = palette();
  colours.setColor(QPalette::Window, look::edgeLabelGround);
  colours.setColor(QPalette::WindowText, look::edgeLabelText);
  edgeLabel_.setPalette(colours);
  // The mouse is over the graph, also where the label stands.
  edgeLabel_.setAttribute(Qt::WA_TransparentForMouseEvents);
  edgeLabel_.hide();
}

void ProfilePanel::placeGateLines(const GateLineArray& lines) {
  graph_.placeLines(visibleLines(lines));
}

void ProfilePanel::setEdgeLabelCaption(const QString& caption) {
  edgeLabel_.setText(caption);
  edgeLabel_.adjustSize();
}

void ProfilePanel::showEdgeLabel(PicturePoint topLeft) {
  edgeLabelPlace_ = topLeft;
  placeEdgeLabel();
  edgeLabel_.show();
  graph_.setAccessibleDescription(edgeLabel_.text());
}

void ProfilePanel::hideEdgeLabel() {
  edgeLabel_.hide();
  graph_.setAccessibleDescription(edgeKeys());
}

void ProfilePanel::placeEdgeLabel() {
  const QPoint place = graph_.pixelAt(edgeLabelPlace_);
  // A pointer that drags outside the graph takes the label to its edge.
  const QSize room = graph_.size() - edgeLabel_.size();
  edgeLabel_.move(graph_.pos() + QPoint(std::clamp(place.x(), 0, std::max(0, room.width())),
                                        std::clamp(place.y(), 0, std::max(0, room.height()))));
}

QString ProfilePanel::graphLabel(GraphLabel label) const { return labelOf(label).text(); }

QLabel& ProfilePanel::labelOf(GraphLabel label) const {
  return *graphLabels_[static_cast<std::size_t>(label)];
}

void ProfilePanel::setGraphLabel(GraphLabel label, const QString& caption) {
  QLabel& shown = labelOf(label);
  if (shown.text() == caption) return;
  shown.setText(caption);
  place();
}

void ProfilePanel::showRate(const QString& caption, const QString& toolTip) {
  if (pulsemod::showRate(rate_, caption, toolTip)) place();
}

void ProfilePanel::setGraphFont(const QFont& chosen) {
  const QFont applied = withNameSizeAndWeight(graphFont(), chosen);
  for (QLabel* label : graphLabels_) label->setFont(applied);
  graph_.setFont(applied);
}

ProfileLabelSizes ProfilePanel::labelSizes() const {
  // With room for the usual rate, which changes with each pass.
  return {reference_.sizeHint(), widerThan(rate_, widestRate()),
          scale_.sizeHint(),     start_.sizeHint(),
          capture_.sizeHint(),   stop_.sizeHint()};
}

QSize ProfilePanel::smallestArea() const {
  const QString time = QStringLiteral("-888.888ms");
  return smallestProfileArea(
      {widerThan(reference_, QStringLiteral("Ref: -188.88 dBm")), widerThan(rate_, widestRate()),
       widerThan(scale_, QStringLiteral("Scale: 88.88 dB")), widerThan(start_, time),
       widerThan(capture_, time), widerThan(stop_, time)},
      screen()->availableSize().width());
}

void ProfilePanel::place() {
  const ProfileLayout layout = layOutProfile(size(), labelSizes());
  rule_.setGeometry(layout.rule);
  reference_.setGeometry(layout.reference);
  rate_.setGeometry(layout.rate);
  scale_.setGeometry(layout.scale);
  graph_.setGeometry(layout.graph);
  start_.setGeometry(layout.start);
  capture_.setGeometry(layout.capture);
  stop_.setGeometry(layout.stop);
  placeEdgeLabel();
}

void ProfilePanel::layOutAndDraw() {
  resetRate(rate_);
  place();
  drawWithoutBox(this, DrawGraph);
}

void ProfilePanel::resizeEvent(QResizeEvent* /*event*/) {
  if (height() > 0 && !window()->isMinimized()) layOutAndDraw();
}

}  // namespace pulsemod
