// One whole redraw of the CCDF graph, events processed, beside a bare widget that paints the same
// lines from scratch each time.

#include <QApplication>
#include <QPainter>
#include <QWidget>
#include <array>
#include <cmath>
#include <cstdio>

#include "GraphWindow.h"
#include "Samples.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFState.h"
#include "host/Host.h"
#include "platform/Services.h"
#include "ui/CCDFWindow.h"
#include "ui/GraphWidget.h"
#include "ui/PleaseWait.h"

namespace {

using namespace pulsemod;

void moveCurves(int pass) {
  for (std::size_t point = 0; point < tracePoints; ++point) {
    const double power = static_cast<double>(point) / 40 - 8 + std::sin(pass * 0.1);
    CCDFData[point] = static_cast<float>(100 * std::exp(-std::pow(10, power / 10)));
    SecondCCDFData[point] = static_cast<float>(90 * std::exp(-std::pow(10, power / 12)));
  }
}

/// Draws the same picture with nothing kept and nothing prepared.
class BareGraph : public QWidget {
 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    painter.setPen(QColor(200, 200, 200));
    for (int i = 1; i < 10; ++i) {
      painter.drawLine(QPointF(x(40 * i), 0), QPointF(x(40 * i), height()));
    }
    for (int i = 1; i <= 6; ++i) {
      painter.drawLine(QPointF(x(1), y(2 - i)), QPointF(width(), y(2 - i)));
    }
    drawCurve(painter, SecondCCDFData, QColor(0, 255, 100));
    drawCurve(painter, CCDFData, QColor(255, 255, 0));
    painter.setPen(QColor(255, 140, 0));
    const double cursor = x(static_cast<double>(CCDF.CursorX));
    painter.drawLine(QPointF(cursor, 0), QPointF(cursor, height()));
  }

 private:
  double x(double point) const { return point / 400 * width(); }
  double y(double exponent) const { return (2 - exponent) / 5 * height(); }

  void drawCurve(QPainter& painter, const Trace& curve, const QColor& colour) const {
    painter.setPen(colour);
    std::array<QPointF, tracePoints> points;
    int count = 0;
    for (std::size_t point = 0; point < tracePoints; ++point) {
      if (!(curve[point] > 0)) continue;
      const double exponent = std::log10(static_cast<double>(curve[point]));
      points[static_cast<std::size_t>(count++)] = {x(static_cast<double>(point + 1)), y(exponent)};
    }
    painter.drawPolyline(points.data(), count);
  }
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  PleaseWait pleaseWait;
  const Host host(pleaseWait);
  const ServicesGuard services(host.services());
  InitMeasurementSettings();
  Settings.DisplayPoints = 400;
  CCDF.StartPower = -30;
  CCDF.StopPower = 20;
  CCDF.CursorOn = True16;
  CCDF.CursorX = 200;
  moveCurves(0);

  CCDFWindow window;
  const CCDFViewGuard view(window);
  UpdateCursorLabels();
  auto* const graph = window.findChild<GraphWidget*>("CCDFGraphPic");
  // Each one, also those that a screen would never show.
  graph->setPaintInterval(0);
  window.findChild<QAction*>("menuSecondProfile")->setChecked(true);
  bench::showWithGraph(window, *graph);

  BareGraph bare;
  bare.setAttribute(Qt::WA_OpaquePaintEvent);
  bench::showBeside(bare, *graph);
  std::printf("CCDF graph %d x %d\n", graph->width(), graph->height());

  int pass = 0;
  constexpr int rounds = 31;
  constexpr int calls = 100;
  bench::compare(
      "CCDF redraw pass / bare QPainter widget",
      [&pass, graph] {
        moveCurves(++pass);
        DrawCCDFGraph();
        QCoreApplication::processEvents();
      },
      [&pass, &bare] {
        moveCurves(++pass);
        bare.update();
        QCoreApplication::processEvents();
      },
      rounds, calls);
  std::fflush(stdout);
  std::_Exit(0);
}
