#include "ui/ProfilePanel.h"

#include <QFontMetrics>
#include <QTimer>

#include "link/Fault.h"
#include "profile/ProfileGraph.h"
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

  rule_.setObjectName(QStringLiteral("menuLine"));
  QPalette ruleColours = colours;
  ruleColours.setColor(QPalette::Window, look::rule);
  rule_.setPalette(ruleColours);
  rule_.setAutoFillBackground(true);

  graph_.setObjectName(QStringLiteral("GraphPic"));
  graph_.setAccessibleName(QStringLiteral("Pulse profile graph"));

  setUpLabel(reference_, "lblRef", QStringLiteral("Reference level: the power at the top edge"));
  setUpLabel(rate_, "lblgraphspeed", QString());
  setUpLabel(scale_, "lblscale", QStringLiteral("Power for each of the ten vertical divisions"));
  setUpLabel(start_, "lblStart", QStringLiteral("Trigger delay: the time at the left edge"));
  setUpLabel(capture_, "lblCapture", QStringLiteral("Capture period: the time across the graph"));
  setUpLabel(stop_, "lblStop", QStringLiteral("The time at the right edge"));
  QPalette quiet = colours;
  quiet.setColor(QPalette::WindowText, look::quietLabel);
  rate_.setPalette(quiet);
  rate_.setText(QLatin1String(idleRate));
}

QLabel& ProfilePanel::labelOf(GraphLabel label) {
  switch (label) {
    case GraphLabel::reference:
      return reference_;
    case GraphLabel::scale:
      return scale_;
    case GraphLabel::capture:
      return capture_;
    case GraphLabel::start:
      return start_;
    case GraphLabel::stop:
      break;
  }
  return stop_;
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
  QFont applied = graphFont();
  applied.setFamily(chosen.family());
  if (chosen.pointSizeF() > 0) {
    applied.setPointSizeF(chosen.pointSizeF());
  } else {
    applied.setPixelSize(chosen.pixelSize());
  }
  // A style name would win over the weight.
  applied.setStyleName(QString());
  applied.setBold(chosen.bold());
  for (QLabel* label : {&reference_, &scale_, &start_, &capture_, &stop_}) label->setFont(applied);
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
