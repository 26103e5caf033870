#include <QElapsedTimer>
#include <QImage>
#include <QPaintEvent>
#include <QScreen>
#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "WindowTest.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "support/FakeProfileView.h"
#include "support/FakeWorld.h"
#include "ui/GateLines.h"
#include "ui/GraphWidget.h"
#include "ui/Look.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

constexpr Colour red{255, 0, 0};
constexpr Colour green{0, 255, 0};
constexpr Colour white{255, 255, 255};

QRgb rgb(Colour colour) { return qRgb(colour.red, colour.green, colour.blue); }

/// A graph of the given size whose user units are logical pixels unless a test says otherwise.
struct Graph {
  explicit Graph(int width, int height) {
    widget.resize(width, height);
    widget.show();
    begin();
  }
  void begin() {
    picture().clear();
    picture().setScale(
        {0, 0, static_cast<double>(widget.width()), static_cast<double>(widget.height())});
  }
  Picture& picture() { return widget.picture(); }
  /// What the screen has; a grab, in contrast, paints by itself. Of a scaled widget the offscreen
  /// platform gives as many device pixels, from the top left corner, as it has logical ones.
  QImage screen() {
    const QPixmap screen =
        widget.screen()->grabWindow(widget.winId(), 0, 0, widget.width(), widget.height());
    return screen.toImage().convertToFormat(QImage::Format_RGB32);
  }
  QImage image() { return widget.grab().toImage().convertToFormat(QImage::Format_RGB32); }
  double ratio() const { return widget.devicePixelRatioF(); }
  /// The first device pixel of a logical one.
  int device(double logical) const { return static_cast<int>(std::lround(logical * ratio())); }

  GraphWidget widget;
};

/// Where a colour is in the image; empty when nowhere.
QRect extentOf(const QImage& image, QRgb colour) {
  QRect extent;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) == colour) extent |= QRect(x, y, 1, 1);
    }
  }
  return extent;
}

int countOf(const QImage& image, QRgb colour) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == colour ? 1 : 0;
  }
  return count;
}

}  // namespace

class GraphWidgetTest : public QObject {
  Q_OBJECT

 private slots:
  void profileGrid();
  void coloursAreExact();
  void linesAreOnePixelWide();
  void pointIsADot();
  void textHangsFromItsCorner();
  void textHeightIsPositive();
  void unfinishedDrawingIsNotShown();
  void exposeNeedsNobody();
  void backgroundFollowsItsDrawing();
  void resizeScalesTheDrawing();
  void gateLinesCoverTheHeight();
  void gateLinesStay();
  void hiddenGateLines();
  void gateLinesTakeNoMouse();
  void wildValues();
  void scaleWithoutExtent();
  void fastDrawingsAreNotAllPaintedButTheLastOneIs();
  void whatIsTheSameIsNotPaintedAgain();
  void screenShowsWhatAWholePaintWould();
  void nothingIsLeftOfOtherSizesAndFonts();
  void partlyExposedWhileAPictureIsDue();
};

/// 200 points over 2010 pixels, seen through the drawing that the program makes.
void GraphWidgetTest::profileGrid() {
  FakeWorld world;
  Graph graph(2010, 500);
  struct View : FakeProfileView {
    explicit View(Picture& drawn) : drawn_(drawn) {}
    Picture& graph() override { return drawn_; }
    Picture& drawn_;
  } view(graph.picture());
  Settings.DisplayPoints = 200;
  ProfileTrace.fill(-1000);
  RedrawProfile();
  const QImage image = graph.image();
  const QRgb grid = rgb(gridColour);
  const int row = graph.device(20);
  for (int i = 1; i <= 9; ++i) {
    const int x = graph.device((20.0 * i - 1) / 200 * 2010);
    QCOMPARE(image.pixel(x, row), grid);
    QVERIFY(image.pixel(x - graph.device(2), row) != grid);
    QVERIFY(image.pixel(x + graph.device(2), row) != grid);
    const int y = graph.device(500.0 / 10 * i);
    QCOMPARE(image.pixel(graph.device(1), y), grid);
    QCOMPARE(image.pixel(graph.device(1990), y), grid);
    // The lines across end one point (10 pixels) before the right edge.
    QVERIFY(image.pixel(graph.device(2006), y) != grid);
  }
}

void GraphWidgetTest::coloursAreExact() {
  Graph graph(200, 100);
  const Colour colours[] = {gridColour, liveTraceColour, secondProfileColour, activeMarkerColour,
                            markerColour};
  for (const Colour& colour : colours) {
    graph.begin();
    const PicturePoint points[] = {{10, 50}, {190, 50}};
    graph.picture().polyline(points, colour);
    graph.picture().show();
    QCOMPARE(graph.image().pixel(graph.device(100), graph.device(50)), rgb(colour));
    QCOMPARE(graph.image().pixel(graph.device(100), graph.device(60)), look::graphBackground.rgb());
  }
}

void GraphWidgetTest::linesAreOnePixelWide() {
  Graph graph(200, 100);
  graph.picture().line({20, 0}, {20, 100}, red);
  graph.picture().endBackground();
  graph.picture().line({60, 0}, {60, 100}, green);
  graph.picture().show();
  const QImage image = graph.image();
  const int penWidth = std::max(1, static_cast<int>(std::lround(graph.ratio())));
  const QRect background = extentOf(image, rgb(red));
  const QRect foreground = extentOf(image, rgb(green));
  QCOMPARE(background, QRect(graph.device(20), 0, penWidth, image.height()));
  QCOMPARE(foreground, QRect(graph.device(60), 0, penWidth, image.height()));
}

void GraphWidgetTest::pointIsADot() {
  Graph graph(200, 100);
  const PicturePoint point[] = {{30, 40}};
  graph.picture().polyline(point, red);
  graph.picture().polyline({}, green);
  graph.picture().show();
  const int penWidth = std::max(1, static_cast<int>(std::lround(graph.ratio())));
  QCOMPARE(extentOf(graph.image(), rgb(red)),
           QRect(graph.device(30), graph.device(40), penWidth, penWidth));
  QCOMPARE(countOf(graph.image(), rgb(green)), 0);
}

void GraphWidgetTest::textHangsFromItsCorner() {
  Graph graph(200, 100);
  QFont font = graph.widget.font();
  font.setPixelSize(24);
  graph.widget.setFont(font);
  graph.picture().text({50, 30}, "1", white);
  graph.picture().show();
  const QRect ink = extentOf(graph.image(), rgb(white));
  QVERIFY(!ink.isEmpty());
  QVERIFY(ink.left() >= graph.device(50));
  QVERIFY(ink.left() <= graph.device(58));
  QVERIFY(ink.top() >= graph.device(30));
  QVERIFY(ink.top() <= graph.device(30 + 12));
  QVERIFY(ink.bottom() <= graph.device(30 + graph.widget.fontMetrics().height()));
}

void GraphWidgetTest::textHeightIsPositive() {
  Graph graph(200, 500);
  const int pixels = graph.widget.fontMetrics().height();
  graph.picture().setScale({1, 10, 200, -100});
  QCOMPARE(graph.picture().textHeight(), 100.0 * pixels / 500);
  graph.picture().setScale({1, 10, 200, 100});
  QCOMPARE(graph.picture().textHeight(), 100.0 * pixels / 500);
  QFont font = graph.widget.font();
  font.setPixelSize(40);
  graph.widget.setFont(font);
  QVERIFY(graph.picture().textHeight() > 100.0 * pixels / 500);
}

void GraphWidgetTest::unfinishedDrawingIsNotShown() {
  Graph graph(200, 100);
  graph.picture().line({0, 50}, {200, 50}, red);
  graph.picture().show();
  const QImage before = graph.image();
  graph.begin();
  graph.picture().line({0, 20}, {200, 20}, green);
  QCOMPARE(graph.image(), before);
  // Taken up again from its beginning, nothing of the part that was given up is left.
  graph.begin();
  graph.picture().line({0, 70}, {200, 70}, white);
  graph.picture().show();
  QCOMPARE(countOf(graph.image(), rgb(green)), 0);
  QCOMPARE(countOf(graph.image(), rgb(red)), 0);
  QVERIFY(countOf(graph.image(), rgb(white)) > 0);
}

void GraphWidgetTest::exposeNeedsNobody() {
  Graph graph(200, 100);
  graph.picture().line({0, 50}, {200, 50}, red);
  graph.picture().endBackground();
  graph.picture().line({20, 0}, {150, 90}, green);
  graph.picture().show();
  const QImage before = graph.image();
  QVERIFY(countOf(before, rgb(red)) > 0 && countOf(before, rgb(green)) > 0);
  graph.widget.hide();
  graph.widget.show();
  QCOMPARE(graph.image(), before);
  graph.widget.repaint(QRect(10, 10, 30, 60));
  QCOMPARE(graph.image(), before);
}

void GraphWidgetTest::backgroundFollowsItsDrawing() {
  Graph graph(200, 100);
  const auto draw = [&graph](double y, Colour colour, const char* text) {
    graph.begin();
    graph.picture().line({0, y}, {200, y}, colour);
    graph.picture().text({10, 10}, text, white);
    graph.picture().endBackground();
    graph.picture().show();
    return graph.image();
  };
  const QImage first = draw(50, red, "1");
  QCOMPARE(draw(50, red, "1"), first);
  const QImage moved = draw(70, red, "1");
  QCOMPARE(moved.pixel(graph.device(100), graph.device(70)), rgb(red));
  QVERIFY(moved.pixel(graph.device(100), graph.device(50)) != rgb(red));
  QCOMPARE(draw(70, green, "1").pixel(graph.device(100), graph.device(70)), rgb(green));
  const QImage otherText = draw(50, red, "8");
  QVERIFY(otherText != first);
  QCOMPARE(draw(50, red, "1"), first);
  graph.begin();
  graph.picture().setScale({0, 0, 200, 200});
  graph.picture().line({0, 50}, {200, 50}, red);
  graph.picture().endBackground();
  graph.picture().show();
  QCOMPARE(graph.image().pixel(graph.device(100), graph.device(25)), rgb(red));
  QFont font = graph.widget.font();
  font.setPixelSize(30);
  graph.widget.setFont(font);
  QVERIFY(draw(50, red, "1") != first);
}

void GraphWidgetTest::resizeScalesTheDrawing() {
  Graph graph(200, 100);
  graph.picture().line({100, 0}, {100, 100}, red);
  graph.picture().endBackground();
  graph.picture().line({0, 50}, {200, 50}, green);
  graph.picture().show();
  graph.image();
  graph.widget.resize(400, 300);
  const QImage image = graph.image();
  QCOMPARE(image.pixel(graph.device(200), graph.device(20)), rgb(red));
  QCOMPARE(image.pixel(graph.device(20), graph.device(150)), rgb(green));
  QVERIFY(image.pixel(graph.device(100), graph.device(20)) != rgb(red));
}

void GraphWidgetTest::gateLinesCoverTheHeight() {
  Graph graph(200, 100);
  graph.picture().show();
  GateLineArray lines{};
  lines[0] = {true, 40};
  lines[2] = {true, 80};
  lines[29] = {true, 120};
  lines[31] = {true, 160};
  graph.widget.placeLines(visibleLines(lines));
  const QImage image = graph.image();
  const auto linePixels = [&](double x, const QColor& colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
      count += image.pixel(graph.device(x), y) == colour.rgb() ? 1 : 0;
    }
    return count;
  };
  QCOMPARE(linePixels(40, look::gateLine), image.height());
  QCOMPARE(linePixels(120, look::gateLine), image.height());
  for (const double x : {80.0, 160.0}) {
    const int dashes = linePixels(x, look::fenceLine);
    QVERIFY(dashes > image.height() / 3);
    QVERIFY(dashes < image.height() * 4 / 5);
  }
  QCOMPARE(extentOf(image, look::fenceLine.rgb()).top(), 0);
  QVERIFY(extentOf(image, look::fenceLine.rgb()).bottom() > image.height() * 4 / 5);
}

void GraphWidgetTest::gateLinesStay() {
  Graph graph(200, 100);
  graph.picture().show();
  GateLineArray lines{};
  lines[0] = {true, 40};
  graph.widget.placeLines(visibleLines(lines));
  const QRgb colour = look::gateLine.rgb();
  for (int i = 0; i < 3; ++i) {
    graph.begin();
    graph.picture().line({0, 10.0 + i}, {200, 50}, green);
    graph.picture().show();
    QCOMPARE(countOf(graph.image(), colour) > 0, true);
    // Above the trace.
    QCOMPARE(graph.image().pixel(graph.device(40), graph.device(50)), colour);
  }
  lines[0] = {true, 90};
  graph.widget.placeLines(visibleLines(lines));
  QVERIFY(graph.image().pixel(graph.device(40), graph.device(90)) != colour);
  QCOMPARE(graph.image().pixel(graph.device(90), graph.device(90)), colour);
}

void GraphWidgetTest::hiddenGateLines() {
  Graph graph(200, 100);
  graph.picture().show();
  const QImage empty = graph.image();
  GateLineArray lines{};
  for (GateLine& line : lines) line.x = 50;
  graph.widget.placeLines(visibleLines(lines));
  QCOMPARE(graph.image(), empty);
  // Where a time at or before the left edge is clamped to: one point left of what is visible.
  graph.begin();
  graph.picture().setScale({1, 0, 20, 100});
  graph.picture().show();
  lines[0] = {true, 0};
  graph.widget.placeLines(visibleLines(lines));
  QCOMPARE(graph.image(), empty);
}

void GraphWidgetTest::gateLinesTakeNoMouse() {
  Graph graph(200, 100);
  GateLineArray lines{};
  lines[0] = {true, 40};
  graph.widget.placeLines(visibleLines(lines));
  QCOMPARE(graph.widget.childAt(40, 50), nullptr);
}

void GraphWidgetTest::wildValues() {
  Graph graph(200, 100);
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const PicturePoint points[] = {{10, 20},    {20, 20},  {30, nan},       {40, 20}, {50, 20},
                                 {60, 1e300}, {70, 20},  {80, -infinity}, {90, 20}, {infinity, nan},
                                 {100, 20},   {110, 20}, {120, 1e9}};
  graph.picture().polyline(points, red);
  graph.picture().line({nan, nan}, {50, 50}, green);
  graph.picture().text({nan, 0}, "text", white);
  graph.picture().text({-1e30, 1e30}, "text", white);
  graph.picture().show();
  GateLineArray lines{};
  lines[0] = {true, nan};
  lines[1] = {true, 1e300};
  graph.widget.placeLines(visibleLines(lines));
  const QImage image = graph.image();
  const auto isRed = [&](double x, double y) {
    return image.pixel(graph.device(x), graph.device(y)) == rgb(red);
  };
  QVERIFY(isRed(15, 20));
  QVERIFY(!isRed(25, 20));
  QVERIFY(!isRed(35, 20));
  QVERIFY(isRed(45, 20));
  QVERIFY(isRed(105, 20));
  // From 50 to 60 the trace falls below the picture and comes back.
  QVERIFY(!isRed(65, 20));
  QVERIFY(extentOf(image, rgb(red)).bottom() >= image.height() - 1);
  QVERIFY(extentOf(image, rgb(red)).top() == 0);
  QCOMPARE(countOf(image, look::gateLine.rgb()), 0);
  QCOMPARE(countOf(image, rgb(white)), 0);
}

void GraphWidgetTest::scaleWithoutExtent() {
  Graph graph(200, 100);
  const QImage empty = graph.image();
  for (const PictureScale& scale :
       {PictureScale{0, 0, 0, 100}, PictureScale{0, 0, 200, 0}, PictureScale{0, 0, 0, 0}}) {
    graph.picture().clear();
    graph.picture().setScale(scale);
    graph.picture().line({0, 0}, {0, 0}, red);
    graph.picture().show();
    QCOMPARE(countOf(graph.image(), rgb(red)), 0);
  }
}

void GraphWidgetTest::fastDrawingsAreNotAllPaintedButTheLastOneIs() {
  struct PaintCounter : QObject {
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      if (event->type() == QEvent::Paint) ++paints;
      return false;
    }
    int paints = 0;
  };
  Graph graph(100, 50);
  QTest::qWait(40);
  PaintCounter counter;
  graph.widget.installEventFilter(&counter);
  QElapsedTimer time;
  time.start();
  constexpr int drawings = 2000;
  for (int drawing = 0; drawing < drawings; ++drawing) {
    graph.begin();
    graph.picture().line({0, 10}, {100, 10}, drawing + 1 < drawings ? red : green);
    graph.picture().show();
    QCoreApplication::processEvents();
  }
  // The first at once, and one more for each 16 ms.
  const qint64 most = 1 + time.elapsed() / 16;
  QVERIFY2(counter.paints >= 1 && counter.paints <= most,
           qPrintable(QString::number(counter.paints)));
  const auto onScreen = [&graph](Colour colour) { return countOf(graph.screen(), rgb(colour)); };
  QTRY_VERIFY(onScreen(green) > 0);
  QCOMPARE(onScreen(red), 0);
  const int paints = counter.paints;
  QTest::qWait(40);
  QCOMPARE(counter.paints, paints);
}

namespace {

/// The part of a widget that it was told to paint.
struct PaintedPart : QObject {
  explicit PaintedPart(QWidget& widget) { widget.installEventFilter(this); }
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) part |= static_cast<QPaintEvent*>(event)->rect();
    return false;
  }
  QRect take() { return std::exchange(part, {}); }
  QRect part;
};

/// But for two pixels where the device pixels do not end with one.
bool isAbout(const QRect& painted, const QRect& expected) {
  return painted.contains(expected) && expected.adjusted(-2, -2, 2, 2).contains(painted);
}

/// A picture interval has passed, and what was due is painted.
void waitForPicture() { QTest::qWait(60); }

}  // namespace

void GraphWidgetTest::whatIsTheSameIsNotPaintedAgain() {
  Graph graph(400, 300);
  const auto draw = [&graph](double y, double gridY) {
    graph.begin();
    graph.picture().line({0, gridY}, {400, gridY}, white);
    graph.picture().endBackground();
    const PicturePoint trace[] = {{100, y}, {200, y + 10}, {300, y}};
    graph.picture().polyline(trace, red);
    graph.picture().show();
    waitForPicture();
  };
  draw(50, 150);
  PaintedPart painted(graph.widget);
  draw(50, 150);
  QVERIFY(isAbout(painted.take(), QRect(99, 49, 203, 13)));
  draw(200, 150);
  QVERIFY(isAbout(painted.take(), QRect(99, 49, 203, 163)));
  draw(200, 160);
  QCOMPARE(painted.take(), graph.widget.rect());
  draw(200, 160);
  QVERIFY(isAbout(painted.take(), QRect(99, 199, 203, 13)));

  GateLineArray lines{};
  lines[0] = {true, 40};
  lines[2] = {true, 80};
  graph.widget.placeLines(visibleLines(lines));
  waitForPicture();
  QVERIFY(isAbout(painted.take(), QRect(39, 0, 42, 300)));
  lines[2] = {true, 90};
  graph.widget.placeLines(visibleLines(lines));
  waitForPicture();
  QVERIFY(isAbout(painted.take(), QRect(79, 0, 12, 300)));
  graph.widget.placeLines(visibleLines(lines));
  waitForPicture();
  QCOMPARE(painted.take(), QRect());
}

void GraphWidgetTest::screenShowsWhatAWholePaintWould() {
  Graph graph(300, 200);
  std::mt19937 chance(20261122);
  const auto below = [&chance](unsigned limit) { return static_cast<double>(chance() % limit); };
  GateLineArray lines{};
  int gridY = 100;
  bool changed = false;
  for (int drawing = 0; drawing < 120; ++drawing) {
    const QImage before = graph.screen();
    graph.picture().clear();
    graph.picture().setScale({0, 0, 300, 200});
    if (drawing % 10 == 9) gridY = static_cast<int>(below(200));
    graph.picture().line({0, 1.0 * gridY}, {300, 1.0 * gridY}, white);
    graph.picture().endBackground();
    std::vector<PicturePoint> trace;
    const double start = below(300);
    for (int point = 0; point < 40; ++point) trace.push_back({start + 2 * point, below(200)});
    if (drawing % 7 == 3) trace[20].y = std::numeric_limits<double>::quiet_NaN();
    graph.picture().polyline(trace, red);
    graph.picture().text({below(300), below(200)}, drawing % 3 == 0 ? "1" : "fjg", green);
    graph.picture().show();
    lines[static_cast<std::size_t>(drawing % 8)] = {drawing % 5 != 0, below(310) - 5};
    graph.widget.placeLines(visibleLines(lines));
    if (drawing % 13 == 5) {
      QFont font = graph.widget.font();
      font.setItalic(!font.italic());
      font.setPixelSize(drawing % 2 == 0 ? 10 : 60);
      graph.widget.setFont(font);
    }
    if (drawing % 17 == 5) graph.widget.resize(200 + static_cast<int>(below(200)), 150 + drawing);
    // Without it two drawings are painted at once.
    if (drawing % 4 != 0) continue;
    const auto whole = [&graph] { return graph.image().copy(graph.screen().rect()); };
    QTRY_COMPARE(graph.screen(), whole());
    changed = changed || graph.screen() != before;
  }
  QVERIFY(changed);
}

void GraphWidgetTest::nothingIsLeftOfOtherSizesAndFonts() {
  Graph graph(400, 100);
  const auto draw = [&graph](PicturePoint from, PicturePoint to, const char* text) {
    graph.picture().clear();
    graph.picture().setScale({0, 0, 400, 400});
    graph.picture().endBackground();
    graph.picture().line(from, to, red);
    graph.picture().text(from, text, green);
    graph.picture().show();
    waitForPicture();
  };
  draw({80, 40}, {180, 140}, "fjg");
  graph.widget.resize(800, 160);
  waitForPicture();
  draw({10, 40}, {20, 60}, "1");
  QTRY_COMPARE(graph.screen(), graph.image().copy(graph.screen().rect()));

  draw({80, 40}, {81, 41}, "fjg");
  QFont font = graph.widget.font();
  font.setPixelSize(40);
  graph.widget.setFont(font);
  waitForPicture();
  QVERIFY(countOf(graph.screen(), rgb(green)) > 0);
  draw({10, 40}, {20, 60}, "");
  QTRY_COMPARE(countOf(graph.screen(), rgb(green)), 0);
}

void GraphWidgetTest::partlyExposedWhileAPictureIsDue() {
  Graph graph(200, 100);
  waitForPicture();
  const auto draw = [&graph](double y, Colour colour) {
    graph.begin();
    graph.picture().endBackground();
    graph.picture().line({10, y}, {190, y}, colour);
    graph.picture().show();
  };
  draw(40, red);
  QCoreApplication::processEvents();
  draw(20, green);
  graph.widget.repaint(QRect(0, 0, 30, 100));
  QTRY_COMPARE(countOf(graph.screen(), rgb(red)), 0);
  QVERIFY(countOf(graph.screen(), rgb(green)) > 0);
  QCOMPARE(graph.screen(), graph.image().copy(graph.screen().rect()));
}

QTEST_MAIN(GraphWidgetTest)
#include "GraphWidgetTest.moc"
