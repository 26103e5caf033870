#pragma once

#include <QAction>
#include <QImage>
#include <QLabel>
#include <QList>
#include <QWindow>
#include <cmath>

#include "WindowTest.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFState.h"
#include "support/FakeWorld.h"
#include "ui/CCDFWindow.h"

namespace pulsemod::test {

/// `frmCCDF` on the screen, before a meter at GPIB address 13. The axis goes from -30 to 0 dBm in
/// 200 points; the meter's cursor stands in the middle. All input goes to the window, as the window
/// system sends it; points of the mouse are pixels of the graph.
struct CCDFBench {
  FakeWorld world;
  CCDFWindow window;
  CCDFViewGuard isTheView{window};

  CCDFBench() {
    CCDF.StartPower = -30;
    CCDF.StopPower = 0;
    world.meter.replies = {{"TTPST? 1", "TTPST 1,-30"},
                           {"TTPSP? 1", "TTPSP 1,0"},
                           {"TTMKRO 1", "TTMKRO 1,12.5,-15"},
                           {"TTSRC? 1", "TTSRC 1,CHANNEL"}};
  }
  ~CCDFBench() {
    if (held_) release({1, 1});
  }
  CCDFBench(const CCDFBench&) = delete;
  CCDFBench& operator=(const CCDFBench&) = delete;

  void show() {
    window.show();
    window.activateWindow();
    settle();
  }
  /// The graph is 800 pixels wide, so that a point is 4, and the cursor stands at x = 66.
  void showWithCursor() {
    show();
    resize(window.width() + 800 - graph().width(), 600);
    CCDF.CursorOn = True16;
    CCDF.CursorPower = -20.1F;
    CCDF.CursorPercent = 5;
    CCDF.CursorX = 66;
    window.setCursorMenus(true);
    UpdateCursorLabels();
    // A move to where the mouse is already would be none.
    move({1, 1});
  }
  void resize(int width, int height) {
    window.resize(width, height);
    settle();
  }
  static void settle() { QCoreApplication::processEvents(); }

  template <typename Type = QWidget>
  Type& part(const char* name) {
    return *window.findChild<Type*>(name);
  }
  QLabel& label(const char* name) { return part<QLabel>(name); }
  QString text(const char* name) { return label(name).text(); }
  QAction& item(const char* name) { return part<QAction>(name); }
  QWidget& graph() { return part("CCDFGraphPic"); }
  /// In the window.
  QRect placeOf(QWidget& widget) const {
    return QRect(widget.mapTo(&window, QPoint()), widget.size());
  }
  std::vector<std::string>& received() { return world.meter.received; }

  bool sizing() { return graph().cursor().shape() == Qt::SizeHorCursor; }
  QPoint at(double x, int y = 200) {
    return {static_cast<int>(std::lround(x / 200 * graph().width())), y};
  }
  QPoint inWindow(QPoint onGraph) { return graph().mapTo(&window, onGraph); }
  void move(QPoint pixel) { QTest::mouseMove(window.windowHandle(), inWindow(pixel)); }
  void press(QPoint pixel, Qt::MouseButton button = Qt::LeftButton) {
    if (button == Qt::LeftButton) held_ = true;
    QTest::mousePress(window.windowHandle(), button, {}, inWindow(pixel));
  }
  void release(QPoint pixel, Qt::MouseButton button = Qt::LeftButton) {
    if (button == Qt::LeftButton) held_ = false;
    QTest::mouseRelease(window.windowHandle(), button, {}, inWindow(pixel));
  }
  void click(const char* labelName) {
    QLabel& clicked = label(labelName);
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                      clicked.mapTo(&window, clicked.rect().center()));
  }
  void key(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window.windowHandle(), static_cast<Qt::Key>(key), modifiers);
  }

  /// The device columns of the graph that have one colour over the whole height.
  QList<int> columnsOf(const QColor& colour) {
    const QImage image = graph().grab().toImage();
    QList<int> columns;
    for (int x = 0; x < image.width(); ++x) {
      int y = 0;
      while (y < image.height() && QColor(image.pixel(x, y)) == colour) ++y;
      if (y == image.height()) columns << x;
    }
    return columns;
  }
  /// The cursor's line is painted at graph x, as wide as a line is, and nowhere else.
  bool lineIsPaintedAt(double x, const QColor& colour) {
    const double ratio = graph().devicePixelRatioF();
    const int first = static_cast<int>(std::lround(x / 200 * std::ceil(graph().width() * ratio)));
    QList<int> expected;
    for (int i = 0; i < std::lround(ratio); ++i) expected << first + i;
    return columnsOf(colour) == expected;
  }

 private:
  bool held_ = false;
};

}  // namespace pulsemod::test
