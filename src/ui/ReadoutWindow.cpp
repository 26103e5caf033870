#include "ui/ReadoutWindow.h"

#include <QAction>
#include <QGroupBox>
#include <QHideEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "ui/FontChoice.h"
#include "ui/Menus.h"

namespace pulsemod {

namespace {

constexpr int gapTwips = 120;
constexpr int rowGapTwips = 20;
/// Above the first row of a frame and below its last one.
constexpr int rowsPadding = 3;

/// What a window manager's frame and title take at most.
constexpr QSize decoration(16, 48);

/// What a window manager's buttons take of the title.
constexpr int titleButtons = 130;

}  // namespace

// A tool window stays in front of its owner, and the owner's shortcuts work while it is active.
ReadoutWindow::ReadoutWindow(QWidget* owner, const char* name, const QString& title, Side side,
                             Hooks hooks)
    : QMainWindow(owner, Qt::Tool),
      side_(side),
      hooks_(std::move(hooks)),
      scroll_(new QScrollArea(this)),
      area_(new QWidget) {
  setObjectName(QLatin1String(name));
  setWindowTitle(title);
  scroll_->setAccessibleName(title);
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setWidget(area_);
  scroll_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  setCentralWidget(scroll_);
  buildMenu();
}

void ReadoutWindow::buildMenu() {
  // Its letter is none of those of the owner's menu bar, which stay reachable from here.
  QAction* menuFont =
      addItem(addMenu(menuBar(), QStringLiteral("&Options")), "menuFont",
              QStringLiteral("&Font..."), QStringLiteral("The font of the labels in this window"));
  connectItem(menuFont, [this] { chooseLabelFont(); });
}

QGroupBox* ReadoutWindow::addFrame(const QString& name, const QString& title) {
  auto* frame = new QGroupBox(title, area_);
  frame->setObjectName(name);
  return frame;
}

QLabel* ReadoutWindow::addLabel(QGroupBox* frame, const QString& name, const QString& description) {
  auto* label = new QLabel(frame);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setAccessibleDescription(description);
  labels_.push_back(label);
  return label;
}

void ReadoutWindow::measure(QLabel& label, const QString& sample, int& columnWidth,
                            int& labelHeight) {
  const QString caption = label.text();
  label.setText(sample);
  QSize size = label.sizeHint();
  label.setText(caption);
  if (!label.isHidden()) size = size.expandedTo(label.sizeHint());
  columnWidth = std::max(columnWidth, size.width());
  labelHeight = std::max(labelHeight, size.height());
}

void ReadoutWindow::indentUnit(QLabel& unit) {
  unit.setContentsMargins(unit.fontMetrics().horizontalAdvance(QLatin1Char(' ')), 0, 0, 0);
}

bool ReadoutWindow::showText(QLabel& label, const std::string& text, int& columnWidth) {
  const QString shown = QString::fromStdString(text);
  if (label.text() != shown) label.setText(shown);
  const int wanted = label.sizeHint().width();
  if (wanted <= columnWidth) return false;
  columnWidth = wanted;
  return true;
}

int ReadoutWindow::gap() const { return twipsToPixels(gapTwips, logicalDpiX()); }

int ReadoutWindow::rowPitch(int labelHeight) const {
  return labelHeight + twipsToPixels(rowGapTwips, logicalDpiY());
}

int ReadoutWindow::rowsTop(const QGroupBox& frame) {
  return frame.contentsMargins().top() + rowsPadding;
}

int ReadoutWindow::rowsBottom(const QGroupBox& frame) {
  return frame.contentsMargins().bottom() + rowsPadding;
}

void ReadoutWindow::arrange(const std::vector<QGroupBox*>& frames, const QSize& frame,
                            const std::vector<FrameCells>& arrangements) {
  const FrameCells& cells = arrangementFor(roomForArea(), arrangements, frame, gap());
  for (std::size_t i = 0; i < frames.size(); ++i) {
    frames[i]->setGeometry(frameIn(cells[i], frame, gap()));
  }
  takeSize(areaOf(cells, frame, gap()));
}

QSize ReadoutWindow::roomForArea() const {
  return screen()->availableSize() - decoration - QSize(0, menuBar()->sizeHint().height());
}

int ReadoutWindow::titleWidth() const {
  return fontMetrics().horizontalAdvance(windowTitle()) + titleButtons;
}

void ReadoutWindow::takeSize(const QSize& needed) {
  const QSize room = roomForArea();
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  // A narrow window is wide enough for its title.
  QSize shown = needed.expandedTo({titleWidth(), 0});
  if (needed.height() > room.height()) shown.rwidth() += bar;
  if (shown.width() > room.width()) shown.rheight() += bar;
  shown = shown.boundedTo(room);
  const QSize before = size();
  // The window first: an area that outgrew it meanwhile would call for scroll bars.
  setFixedSize(shown + QSize(0, menuBar()->sizeHint().height()));
  area_->resize(needed);
  if (isVisible() && size() != before) {
    move(movedInside(frameGeometry(), screen()->availableGeometry()).topLeft());
  }
}

void ReadoutWindow::layOutAnew() {
  measureSamples();
  layOut();
  hooks_.fill();
}

QPoint ReadoutWindow::firstPlace() const {
  return placeBeside(parentWidget()->frameGeometry(), size() + decoration,
                     parentWidget()->screen()->availableGeometry(), side_);
}

void ReadoutWindow::open() {
  {
    const QScopedValueRollback<bool> opening(isOpening_, true);
    layOutAnew();
  }
  // Later it comes back where it was. To move it there would let it drift, where the window manager
  // has not told the size of its frame yet.
  if (!isPlaced_) move(firstPlace());
  isPlaced_ = true;
  show();
}

void ReadoutWindow::chooseLabelFont() {
  const QFont present = labels_.front()->font();
  const auto chosen = chooseFont(present, windowTitle() + QStringLiteral(" Font"), this);
  if (!chosen) return;
  const QFont applied = withNameSizeAndWeight(present, *chosen);
  for (QLabel* label : labels_) label->setFont(applied);
  layOutAnew();
}

void ReadoutWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (!event->spontaneous()) hooks_.onVisible(true);
}

void ReadoutWindow::hideEvent(QHideEvent* event) {
  QMainWindow::hideEvent(event);
  // A window that is only minimised stays open.
  if (!event->spontaneous()) hooks_.onVisible(false);
}

void ReadoutWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QMainWindow::keyPressEvent(event);
  }
}

}  // namespace pulsemod
