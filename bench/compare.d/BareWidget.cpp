// The trace and the grid by a widget that calls QPainter and nothing else. Variants:
//   plain, smooth   all from scratch, the trace without and with antialiasing
//   kept            plain, over a grid that was painted once into a pixmap

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include "Passes.h"

namespace {

using namespace bench::passes;

class BareGraph : public QWidget {
 public:
  explicit BareGraph(const Arguments& arguments)
      : smooth_(arguments.is("smooth")), keepsGrid_(arguments.is("kept")) {
    setAttribute(Qt::WA_OpaquePaintEvent);
  }

  void setLevels(const Levels& levels) {
    for (std::size_t point = 0; point < levels.size(); ++point) {
      points_[point] = {static_cast<double>(point) / pointCount * width(), y(levels[point])};
    }
    update();
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    if (keepsGrid_) {
      if (grid_.size() != size()) keepGrid();
      painter.drawPixmap(0, 0, grid_);
    } else {
      paintGrid(painter);
    }
    painter.setRenderHint(QPainter::Antialiasing, smooth_);
    painter.setPen(traceColour());
    painter.drawPolyline(points_.data(), static_cast<int>(points_.size()));
  }

 private:
  double y(double level) const { return (topLevel - level) / (topLevel - bottomLevel) * height(); }

  void keepGrid() {
    grid_ = QPixmap(size());
    QPainter painter(&grid_);
    paintGrid(painter);
  }

  void paintGrid(QPainter& painter) const {
    painter.fillRect(rect(), Qt::black);
    painter.setPen(gridColour());
    for (int i = 1; i < divisions; ++i) {
      const int column = width() * i / divisions;
      painter.drawLine(column, 0, column, height());
      const int row = height() * i / divisions;
      painter.drawLine(0, row, width(), row);
    }
  }

  bool smooth_;
  bool keepsGrid_;
  std::array<QPointF, pointCount> points_;
  QPixmap grid_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const Arguments arguments(argc, argv);
  if (!arguments.is("plain") && !arguments.is("smooth") && !arguments.is("kept")) {
    Arguments::refuse();
  }
  const std::vector<Levels> levels = frames();

  BareGraph graph(arguments);
  graph.resize(graphSize);
  graph.show();
  QCoreApplication::processEvents();

  const PaintCount paints(graph);
  measure(graph, paints, arguments.passes, [&](int pass) {
    graph.setLevels(levels[static_cast<std::size_t>(pass % frameCount)]);
    QCoreApplication::processEvents();
  });
  std::_Exit(0);
}
