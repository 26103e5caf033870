// The trace and the grid by QCustomPlot, without OpenGL. Variants:
//   smooth         as the library comes: the trace antialiased, the grid not
//   smooth-layer   the trace on a buffered layer of its own, of which alone a pass replots, as the
//                  library's documentation advises for a trace over a picture that stays
//   plain, plain-layer   the same without antialiasing, which its hints on speed name first
//   plain-queued   as plain, with the replot left to the event loop

#include <qcustomplot.h>

#include <QApplication>
#include <QSharedPointer>
#include <cstring>

#include "Passes.h"

namespace {

using namespace bench::passes;

/// Grid lines over the whole widget, no labels, no margins: what the other programs draw.
void prepareAxis(QCPAxis& axis, double lower, double upper) {
  QSharedPointer<QCPAxisTickerFixed> ticker(new QCPAxisTickerFixed);
  ticker->setTickStep((upper - lower) / divisions);
  ticker->setTickOrigin(lower);
  axis.setTicker(ticker);
  axis.setRange(lower, upper);
  axis.setTicks(true);
  axis.setTickLength(0);
  axis.setSubTicks(false);
  axis.setTickLabels(false);
  axis.setBasePen(Qt::NoPen);
  axis.setTickPen(Qt::NoPen);
  axis.grid()->setPen(gridColour());
  axis.grid()->setZeroLinePen(Qt::NoPen);
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const Arguments arguments(argc, argv);
  const bool onLayer = std::strstr(arguments.variant, "-layer") != nullptr;
  const bool queued = arguments.is("plain-queued");
  const bool plain = std::strncmp(arguments.variant, "plain", 5) == 0;
  const std::vector<Levels> levels = frames();

  QCustomPlot plot;
  plot.resize(graphSize);
  plot.setBackground(QBrush(Qt::black));
  plot.axisRect()->setAutoMargins(QCP::msNone);
  plot.axisRect()->setMargins({});
  prepareAxis(*plot.xAxis, 0, pointCount);
  prepareAxis(*plot.yAxis, bottomLevel, topLevel);
  if (plain) plot.setNotAntialiasedElements(QCP::aeAll);
  QCPGraph& trace = *plot.addGraph();
  trace.setPen(QPen(traceColour()));
  if (onLayer) {
    plot.addLayer("trace", plot.layer("main"), QCustomPlot::limAbove);
    trace.setLayer("trace");
    plot.layer("trace")->setMode(QCPLayer::lmBuffered);
  }
  // The keys stay; a pass writes its values into the container, which spares copy and sorting.
  QVector<double> keys(pointCount);
  for (int point = 0; point < pointCount; ++point) keys[point] = point;
  trace.setData(keys, QVector<double>(pointCount, bottomLevel), true);
  plot.show();
  plot.replot();
  QCoreApplication::processEvents();

  const PaintCount paints(plot);
  measure(plot, paints, arguments.passes, [&](int pass) {
    const Levels& now = levels[static_cast<std::size_t>(pass % frameCount)];
    auto point = trace.data()->begin();
    for (const double level : now) (point++)->value = level;
    const int painted = paints.paints();
    if (onLayer) {
      trace.layer()->replot();
    } else {
      plot.replot(queued ? QCustomPlot::rpQueuedReplot : QCustomPlot::rpImmediateRefresh);
    }
    do {
      QCoreApplication::processEvents();
    } while (paints.paints() == painted);
  });
  std::_Exit(0);
}
