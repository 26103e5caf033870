#include "ui/CCDFPanel.h"

#include <QHBoxLayout>
#include <string>

#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFGraph.h"
#include "ccdf/PowerAxis.h"
#include "link/Fault.h"
#include "ui/GraphFace.h"
#include "ui/Look.h"

namespace pulsemod {

namespace {

constexpr std::array<const char*, decadeLabels> decadeCaptions = {"100%", "10%",  "1%",
                                                                  ".1%",  ".01%", ".001%"};

QString widestPower() { return QStringLiteral("-188.888dBm"); }
QString widestPercentage() { return QStringLiteral("88.88888%"); }

/// In the cursor's frame, which grows when a caption needs more.
void reserve(QLabel& label, const QString& sample) {
  label.setMinimumWidth(widerThan(label, sample).width());
}

}  // namespace

CCDFPanel::CCDFPanel(QWidget* parent) : QWidget(parent) {
  setUpFace(*this, QStringLiteral("CCDF"));
  setUpRule(rule_);

  graph_.setObjectName(QStringLiteral("CCDFGraphPic"));
  graph_.setAccessibleName(QStringLiteral("CCDF graph"));
  graph_.setMouseHandlers(
      {[] { reportFaults(CCDFButtonDown); },
       [](PicturePoint pointer) { reportFaults([pointer] { CCDFMouseMove(pointer); }); },
       [] { reportFaults(CCDFButtonUp); }, [] { reportFaults(CCDFMouseLeave); }});
  graph_.setAccessibleDescription(QStringLiteral("Left and Right move the cursor."));
  graph_.setKeyHandlers({{},
                         [](double points) { reportFaults([points] { MoveCursorBy(points); }); },
                         [] { reportFaults(EndCursorMove); },
                         {}});

  setUpLabel(source_, "lblMeasSource", QStringLiteral("What the CCDF is computed from"));
  setUpRateLabel(rate_, "lblgraphspeed1");
  cursor_.setObjectName(QStringLiteral("FrameCursor"));
  cursor_.setAccessibleName(QStringLiteral("Cursor"));
  cursor_.setFrameShape(QFrame::Box);
  setUpLabel(cursorPower_, "lblCursorPower", QStringLiteral("The cursor's power"));
  setUpLabel(cursorPercentage_, "lblCursorPercentage",
             QStringLiteral("The share of time above the cursor's power"));
  reserve(cursorPower_, widestPower());
  reserve(cursorPercentage_, widestPercentage());
  auto* const cursorLayout = new QHBoxLayout(&cursor_);
  cursorLayout->setContentsMargins(2, 1, 2, 1);
  cursorLayout->setSpacing(0);
  cursorLayout->addWidget(&cursorPower_);
  cursorLayout->addWidget(&cursorPercentage_);
  cursor_.hide();
  for (std::size_t decade = 0; decade < decades_.size(); ++decade) {
    QLabel& label = decades_[decade];
    label.setParent(this);
    const std::string name = "lblPer" + std::to_string(decade + 1);
    setUpLabel(label, name.c_str(), QStringLiteral("Share of time above a power"));
    label.setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label.setContentsMargins(8, 0, 6, 0);
    label.setText(QLatin1String(decadeCaptions[decade]));
  }
  setUpParameter(startPower_, "lblStartPower", QStringLiteral("Start power"),
                 QStringLiteral("The power at the left edge. Click to change it."), EditStartPower);
  setUpParameter(stopPower_, "lblStopPower", QStringLiteral("Stop power"),
                 QStringLiteral("The power at the right edge. Click to change it."), EditStopPower);
}

void CCDFPanel::setCaption(QLabel& label, const QString& caption) {
  if (label.text() == caption) return;
  const QSize before = label.sizeHint();
  label.setText(caption);
  // Most readings are as wide as the one before, and each pass brings some.
  if (label.sizeHint() != before) place();
}

void CCDFPanel::showRate(const QString& caption, const QString& toolTip) {
  if (pulsemod::showRate(rate_, caption, toolTip)) place();
}

void CCDFPanel::showCursor(const QString& power, const QString& percentage, double x) {
  const bool powerGrew = showNumber(cursorPower_, power, widestPower());
  const bool percentageGrew = showNumber(cursorPercentage_, percentage, widestPercentage());
  if (powerGrew || percentageGrew) place();
  graph_.placeLines({{x, look::cursorLine, false}});
  cursor_.show();
}

void CCDFPanel::hideCursor() {
  graph_.placeLines({});
  cursor_.hide();
}

std::vector<QString> CCDFPanel::decadeTexts() const {
  std::vector<QString> texts;
  texts.reserve(decades_.size());
  for (const QLabel& label : decades_) texts.push_back(label.text());
  return texts;
}

CCDFPartSizes CCDFPanel::partSizes() const {
  // With room for the usual captions, so that a changing one moves nothing else.
  CCDFPartSizes sizes{widerThan(source_, QStringLiteral("SOURCE:CHANNEL")),
                      widerThan(rate_, widestRate()),
                      cursor_.sizeHint(),
                      {},
                      startPower_.sizeHint(),
                      stopPower_.sizeHint()};
  for (const QLabel& label : decades_) sizes.decade = sizes.decade.expandedTo(label.sizeHint());
  return sizes;
}

QSize CCDFPanel::smallestArea() const {
  CCDFPartSizes sizes = partSizes();
  sizes.startPower = widerThan(startPower_, widestPower());
  sizes.stopPower = widerThan(stopPower_, widestPower());
  return smallestCCDFArea(sizes);
}

void CCDFPanel::place() {
  const CCDFLayout layout = layOutCCDF(size(), partSizes());
  rule_.setGeometry(layout.rule);
  source_.setGeometry(layout.source);
  rate_.setGeometry(layout.rate);
  cursor_.setGeometry(layout.cursor);
  graph_.setGeometry(layout.graph);
  for (std::size_t decade = 0; decade < decades_.size(); ++decade) {
    decades_[decade].setGeometry(layout.decades[decade]);
  }
  startPower_.setGeometry(layout.startPower);
  stopPower_.setGeometry(layout.stopPower);
}

void CCDFPanel::resizeEvent(QResizeEvent* /*event*/) {
  if (height() <= 0 || window()->isMinimized()) return;
  UpdatePowerLabels();
  place();
  drawWithoutBox(this, DrawCCDFGraph);
}

}  // namespace pulsemod
