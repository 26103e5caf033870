#pragma once

#include <sys/resource.h>

#include <QApplication>
#include <QEvent>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QSize>
#include <QWidget>
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

/// What all programs of the comparison share: the traces that they draw, the colours, the timing of
/// one pass, and the proof that each pass was painted. pyqtgraph_widget.py has the same once more.

namespace bench::passes {

constexpr QSize graphSize(1024, 700);
constexpr int pointCount = 400;
constexpr int divisions = 10;
constexpr double topLevel = 10;
constexpr double bottomLevel = -90;

/// The trace moves from pass to pass, and comes round after so many.
constexpr int frameCount = 64;

using Levels = std::array<double, pointCount>;

/// Made beforehand: no program is timed while it computes sines.
inline std::vector<Levels> frames() {
  std::vector<Levels> all(frameCount);
  for (int frame = 0; frame < frameCount; ++frame) {
    for (int point = 0; point < pointCount; ++point) {
      all[static_cast<std::size_t>(frame)][static_cast<std::size_t>(point)] =
          -30 + 25 * std::sin(point * 0.05 + frame * 0.1);
    }
  }
  return all;
}

inline QColor gridColour() { return {200, 200, 200}; }
inline QColor traceColour() { return {255, 255, 0}; }

/// Counts the paints of one widget.
class PaintCount : public QObject {
 public:
  explicit PaintCount(QWidget& widget) { widget.installEventFilter(this); }
  int paints() const { return paints_; }

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints_;
    return false;
  }

 private:
  int paints_ = 0;
};

/// How many pixels of the trace and of the grid stand in the window, as the screen has them. Smooth
/// lines are darker at their sides.
struct Seen {
  int trace = 0;
  int grid = 0;
  QImage image;
};

inline Seen look(const QWidget& graph) {
  const QWidget& window = *graph.window();
  const QPoint at = graph.mapTo(&window, QPoint());
  QScreen* const screen = QGuiApplication::primaryScreen();
  Seen seen;
  seen.image = screen->grabWindow(window.winId(), at.x(), at.y(), graph.width(), graph.height())
                   .toImage()
                   .convertToFormat(QImage::Format_RGB32);
  for (int y = 0; y < seen.image.height(); ++y) {
    for (int x = 0; x < seen.image.width(); ++x) {
      const QRgb pixel = seen.image.pixel(x, y);
      if (qBlue(pixel) >= 150) {
        ++seen.grid;
      } else if (qRed(pixel) >= 96 && qGreen(pixel) >= 96) {
        ++seen.trace;
      }
    }
  }
  return seen;
}

inline double processorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Runs the passes and prints one line: microseconds of a pass (median), processor microseconds of
/// a pass (mean), paints per pass, pixels of the trace and of the grid on the screen, and how many
/// pixels differ between the pass before the timed ones and the last of them. `count` must be no
/// multiple of `frameCount`, or these two would show the same.
template <typename Pass>
void measure(const QWidget& graph, const PaintCount& paints, int count, const Pass& pass) {
  using Clock = std::chrono::steady_clock;
  int number = 0;
  for (const int warmUp = std::max(20, count / 4); number < warmUp; ++number) pass(number);

  const Seen before = look(graph);
  const int paintsBefore = paints.paints();
  const double processorBefore = processorSeconds();
  std::vector<double> times;
  times.reserve(static_cast<std::size_t>(count));
  const int last = number + count;
  for (; number < last; ++number) {
    const auto start = Clock::now();
    pass(number);
    times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
  }
  const double processor = (processorSeconds() - processorBefore) / count * 1e6;
  const double paintsPerPass = static_cast<double>(paints.paints() - paintsBefore) / count;
  const Seen after = look(graph);

  int changed = 0;
  for (int y = 0; y < after.image.height(); ++y) {
    for (int x = 0; x < after.image.width(); ++x) {
      if (after.image.pixel(x, y) != before.image.pixel(x, y)) ++changed;
    }
  }
  std::sort(times.begin(), times.end());
  std::printf("%.2f %.2f %.3f %d %d %d\n", times[times.size() / 2], processor, paintsPerPass,
              after.trace, after.grid, changed);
  std::fflush(stdout);
  if (const char* const file = std::getenv("COMPARE_PICTURE")) after.image.save(file);
}

/// `program VARIANT PASSES`.
struct Arguments {
  const char* variant = "";
  int passes = 0;

  Arguments(int argc, char** argv) {
    if (argc == 3) {
      variant = argv[1];
      passes = std::atoi(argv[2]);
    }
    if (passes < 1) refuse();
  }
  bool is(const char* name) const { return std::strcmp(variant, name) == 0; }
  [[noreturn]] static void refuse() {
    std::fprintf(stderr, "usage: program VARIANT PASSES\n");
    std::exit(2);
  }
};

}  // namespace bench::passes
