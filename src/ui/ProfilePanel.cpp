#include "ui/ProfilePanel.h"

#include <QFontMetrics>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "link/Fault.h"
#include "profile/GraphMouse.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileGraph.h"
#include "ui/FontChoice.h"
#include "ui/Look.h"

namespace pulsemod {

namespace {

constexpr auto idleRate = "Profile/Second: 0.00";

void setUpLabel(QLabel& label, const char* name, const QString& toolTip) {
  label.setObjectName(QLatin1String(name));
  label.setTextFormat(Qt::PlainText);
  label.setContentsMargins(8, 4, 8, 4);
  label.setToolTip(toolTip);
}

void setUpParameter(ParameterLabel& label, const char* name, const QString& meaning,
                    const QString& toolTip, void (*onClick)()) {
  setUpLabel(label, name, toolTip);
  label.setMeaning(meaning);
  label.setOnClick([onClick] { reportFaults(onClick); });
}

/// Draws the graph in the middle of a resize. The box of a fault must wait until the resize is
/// over: the window could be resized under it, and the layout of a main window does not survive a
/// resize within a resize.
void drawWithoutBox(QObject* context) {
  if (GraphFaultReported) {
    RefreshGraph();
    return;
  }
  try {
    DrawGraphGrid();
    UpdateGraphLabels();
    RedrawProfile();
    PositionGateLines();
  } catch (const Fault&) {
    QTimer::singleShot(0, context, [] { RefreshGraph(); });
  }
}

QSize widerThan(const QLabel& label, const QString& sample) {
  const QMargins margins = label.contentsMargins();
  const int width =
      label.fontMetrics().horizontalAdvance(sample) + margins.left() + margins.right();
  return label.sizeHint().expandedTo({width, 0});
}

}  // namespace

ProfilePanel::ProfilePanel(QWidget* parent) : QWidget(parent) {
  QPalette colours = palette();
  colours.setColor(QPalette::Window, look::surround);
  colours.setColor(QPalette::WindowText, look::label);
  setPalette(colours);
  setAutoFillBackground(true);
  // Else the first label had the focus at the start, and Enter would open its box.
  setFocusPolicy(Qt::ClickFocus);
  setFocus();

  rule_.setObjectName(QStringLiteral("menuLine"));
  QPalette ruleColours = colours;
  ruleColours.setColor(QPalette::Window, look::rule);
  rule_.setPalette(ruleColours);
  rule_.setAutoFillBackground(true);

  graph_.setObjectName(QStringLiteral("GraphPic"));
  graph_.setAccessibleName(QStringLiteral("Pulse profile graph"));

  setUpLabel(rate_, "lblgraphspeed", QString());
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
  QPalette quiet = colours;
  quiet.setColor(QPalette::WindowText, look::quietLabel);
  rate_.setPalette(quiet);
  rate_.setText(QLatin1String(idleRate));
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

void ProfilePanel::setEdgeLabelCaption(const QString& caption) {
  edgeLabel_.setText(caption);
  edgeLabel_.adjustSize();
}

void ProfilePanel::showEdgeLabel(PicturePoint topLeft) {
  edgeLabelPlace_ = topLeft;
  placeEdgeLabel();
  edgeLabel_.show();
}

void ProfilePanel::placeEdgeLabel() {
  const QPoint place = graph_.pixelAt(edgeLabelPlace_);
  // A pointer that drags outside the graph takes the label to its edge.
  const QSize room = graph_.size() - edgeLabel_.size();
  edgeLabel_.move(graph_.pos() + QPoint(std::clamp(place.x(), 0, std::max(0, room.width())),
                                        std::clamp(place.y(), 0, std::max(0, room.height()))));
}

void ProfilePanel::setSizingPointer(bool sizing) {
  // At each move of the mouse, and the window system would be told each time.
  if (sizing == graph_.testAttribute(Qt::WA_SetCursor)) return;
  if (sizing) {
    graph_.setCursor(Qt::SizeHorCursor);
  } else {
    graph_.unsetCursor();
  }
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
  if (rate_.toolTip() != toolTip) rate_.setToolTip(toolTip);
  if (rate_.text() == caption) return;
  rate_.setText(caption);
  if (rate_.sizeHint().width() != rate_.width()) place();
}

void ProfilePanel::setGraphFont(const QFont& chosen) {
  const QFont applied = withNameSizeAndWeight(graphFont(), chosen);
  for (QLabel* label : graphLabels_) label->setFont(applied);
  graph_.setFont(applied);
}

ProfileLabelSizes ProfilePanel::labelSizes() const {
  return {reference_.sizeHint(), rate_.sizeHint(),    scale_.sizeHint(),
          start_.sizeHint(),     capture_.sizeHint(), stop_.sizeHint()};
}

QSize ProfilePanel::smallestArea() const {
  const QString time = QStringLiteral("-888.888ms");
  return smallestProfileArea({widerThan(reference_, QStringLiteral("Ref: -188.88 dBm")),
                              widerThan(rate_, QStringLiteral("Profile/Second: 888.88")),
                              widerThan(scale_, QStringLiteral("Scale: 88.88 dB")),
                              widerThan(start_, time), widerThan(capture_, time),
                              widerThan(stop_, time)});
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
  rate_.setText(QLatin1String(idleRate));
  place();
  drawWithoutBox(this);
}

void ProfilePanel::resizeEvent(QResizeEvent* /*event*/) {
  if (height() > 0 && !window()->isMinimized()) layOutAndDraw();
}

}  // namespace pulsemod
