#pragma once

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QtTest>
#include <functional>

/// What the tests of both readout windows check.

namespace pulsemod::test {

/// What a label takes of its own accord.
inline QSize ownSize(const QString& caption, const QFont& font) {
  QLabel label(caption);
  label.setFont(font);
  return label.sizeHint();
}

inline QRect placeIn(const QWidget& widget, const QWidget& ancestor) {
  return {widget.mapTo(&ancestor, QPoint(0, 0)), widget.size()};
}

inline QWidget& areaOf(const QMainWindow& window) {
  return *window.findChild<QScrollArea*>()->widget();
}

template <typename Part>
void checkApart(const QList<Part*>& parts) {
  for (const Part* one : parts) {
    for (const Part* other : parts) {
      if (one == other || one->isHidden() || other->isHidden()) continue;
      QVERIFY2(!one->geometry().intersects(other->geometry()),
               qPrintable(one->objectName() + " " + other->objectName()));
    }
  }
}

/// No part is cut off, lies over another one or cannot be reached.
inline void checkRoom(const QMainWindow& window) {
  const QWidget& area = areaOf(window);
  const QList<QGroupBox*> frames = window.findChildren<QGroupBox*>();
  checkApart(frames);
  for (const QGroupBox* frame : frames) {
    if (frame->isHidden()) continue;
    QVERIFY2(area.rect().contains(frame->geometry()), qPrintable(frame->objectName()));
    QVERIFY(frame->width() >= frame->minimumSizeHint().width());
    const QList<QLabel*> labels = frame->findChildren<QLabel*>();
    checkApart(labels);
    for (const QLabel* label : labels) {
      if (label->isHidden()) continue;
      QVERIFY2(frame->contentsRect().contains(label->geometry()), qPrintable(label->objectName()));
      QVERIFY2(label->width() >= label->sizeHint().width(), qPrintable(label->objectName()));
      QVERIFY2(label->height() >= label->sizeHint().height(), qPrintable(label->objectName()));
    }
  }
  const auto* scroll = window.findChild<QScrollArea*>();
  const QSize reach = scroll->viewport()->size() + QSize(scroll->horizontalScrollBar()->maximum(),
                                                         scroll->verticalScrollBar()->maximum());
  QCOMPARE(reach.expandedTo(area.size()), reach);
  const int bar = window.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  if (area.width() + bar <= window.screen()->availableSize().width() - 16) {
    QCOMPARE(scroll->horizontalScrollBar()->maximum(), 0);
  }
  QVERIFY(window.screen()->availableGeometry().contains(window.frameGeometry()));
}

/// A window is never so narrow that its title cannot be read between the usual buttons.
inline int titleWidth(const QMainWindow& window) {
  return window.fontMetrics().horizontalAdvance(window.windowTitle()) + 130;
}

/// The window is as large as its area, unless the screen is too small for that.
inline void checkNoScrolling(const QMainWindow& window) {
  const QSize area = areaOf(window).size().expandedTo({titleWidth(window), 0});
  const QSize needed = area + QSize(0, window.menuBar()->height());
  const QSize room = window.screen()->availableSize() - QSize(16, 48);
  if (needed.boundedTo(room) == needed) QCOMPARE(window.size(), needed);
}

/// Shown, and everything painted.
inline bool waitUntilQuiet(QWidget& window) {
  const bool exposed = QTest::qWaitForWindowExposed(&window);
  QTest::qWait(20);
  return exposed;
}

/// A readout window of an owner, filled by the test.
template <typename Window>
struct ReadoutBox {
  QWidget owner;
  std::function<void()> fill = [] {};
  /// As the window has told it.
  QList<bool> visible;
  Window window{&owner, {[this] { fill(); }, [this](bool shown) { visible << shown; }}};

  explicit ReadoutBox(QSize ownerSize) {
    owner.setGeometry(QRect({0, 0}, ownerSize));
    owner.show();
  }
  template <typename Index>
  QLabel& label(const char* name, Index index) {
    return *window.template findChild<QLabel*>(QString("%1_%2").arg(name).arg(index));
  }
};

/// Counts the events that a change of texts must not cause.
class WorkCounter : public QObject {
 public:
  explicit WorkCounter(QWidget& window) {
    window.installEventFilter(this);
    for (QWidget* widget : window.findChildren<QWidget*>()) widget->installEventFilter(this);
  }
  bool eventFilter(QObject*, QEvent* event) override {
    const auto type = event->type();
    if (type == QEvent::Paint) ++paints;
    if (type == QEvent::Move || type == QEvent::Resize) ++placings;
    return false;
  }
  int paints = 0;
  int placings = 0;
};

}  // namespace pulsemod::test
