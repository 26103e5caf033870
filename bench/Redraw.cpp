// One whole redraw of the profile graph, events processed, and one step of a dragged gate edge from
// the mouse's move until it is drawn; each beside a bare widget that paints the same lines, texts
// and gate lines from scratch each time.

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "GraphWindow.h"
#include "Samples.h"
#include "host/Host.h"
#include "platform/Services.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "ui/GraphWidget.h"
#include "ui/MainWindow.h"
#include "ui/PleaseWait.h"

namespace {

using namespace pulsemod;

void prepareModel() {
  InitMeasurementSettings();
  Settings.DisplayPoints = 400;
  for (std::size_t gate = 0; gate < 4; ++gate) {
    Settings.Gates[gate].Enabled = True16;
    Settings.Gates[gate].FenceEnabled = True16;
    Settings.Gates[gate].StartTime = static_cast<float>(0.0001 + 0.001 * static_cast<double>(gate));
    Settings.Gates[gate].StopTime = Settings.Gates[gate].StartTime + 0.0005F;
    Settings.Gates[gate].FenceStart = Settings.Gates[gate].StartTime + 0.0001F;
    Settings.Gates[gate].FenceStop = Settings.Gates[gate].StartTime + 0.0002F;
  }
  for (std::size_t marker = 0; marker < 4; ++marker) Settings.Markers[marker].Enabled = True16;
}

void moveTraces(int pass) {
  for (std::size_t point = 0; point < tracePoints; ++point) {
    const double phase = static_cast<double>(point) * 0.05 + pass * 0.01;
    ProfileTrace[point] = static_cast<float>(-30 + 25 * std::sin(phase));
    SecondProfileTrace[point] = static_cast<float>(-40 + 20 * std::cos(phase));
  }
}

void sendMouse(QWidget& widget, QEvent::Type type, int x) {
  const bool moves = type == QEvent::MouseMove;
  const QPointF at(x, widget.height() / 2.0);
  QMouseEvent event(type, at, widget.mapToGlobal(at), moves ? Qt::NoButton : Qt::LeftButton,
                    Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&widget, &event);
}

/// Draws the same picture with nothing kept and nothing prepared.
class BareGraph : public QWidget {
 protected:
  void mouseMoveEvent(QMouseEvent* event) override {
    Settings.Gates[0].StartX = static_cast<int>(event->position().x() / width() * 400);
    update();
  }
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    painter.setPen(QColor(200, 200, 200));
    for (int i = 1; i < 10; ++i) {
      const int column = static_cast<int>(x(40 * i));
      painter.drawLine(column, 0, column, height());
      const int row = static_cast<int>(y(10 - 10 * i));
      painter.drawLine(0, row, width(), row);
    }
    drawTrace(painter, SecondProfileTrace, QColor(0, 255, 100));
    drawTrace(painter, ProfileTrace, QColor(255, 255, 0));
    painter.setPen(QColor(0, 255, 255));
    for (int marker = 0; marker < 4; ++marker) {
      painter.drawText(QPointF(x(9 * (marker + 1)), y(0)), QString::number(marker + 1));
    }
    drawGates(painter);
  }

 private:
  double x(double point) const { return (point - 1) / 400 * width(); }
  double y(double level) const { return (10 - level) / 100 * height(); }

  void drawTrace(QPainter& painter, const Trace& trace, const QColor& colour) const {
    painter.setPen(colour);
    std::array<QPointF, tracePoints> points;
    for (std::size_t point = 0; point < tracePoints; ++point) {
      points[point] = {x(static_cast<double>(point + 1)), y(static_cast<double>(trace[point]))};
    }
    painter.drawPolyline(points.data(), static_cast<int>(points.size()));
  }

  void drawGates(QPainter& painter) const {
    for (std::size_t gate = 0; gate < 4; ++gate) {
      const GateSettings& settings = Settings.Gates[gate];
      painter.setPen(QColor(255, 140, 0));
      for (const int column : {settings.StartX, settings.StopX}) {
        painter.drawLine(QPointF(x(column), 0), QPointF(x(column), height()));
      }
      painter.setPen(QPen(QColor(180, 120, 255), 1, Qt::DashLine));
      for (const int column : {settings.FenceStartX, settings.FenceStopX}) {
        painter.drawLine(QPointF(x(column), 0), QPointF(x(column), height()));
      }
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  PleaseWait pleaseWait;
  const Host host(pleaseWait);
  const ServicesGuard services(host.services());
  prepareModel();
  moveTraces(0);

  MainWindow window([] {});
  const ProfileViewGuard view(window);
  auto* const graph = window.findChild<GraphWidget*>("GraphPic");
  // Each one, also those that a screen would never show.
  graph->setPaintInterval(0);
  window.findChild<QAction*>("menuSecondProfile")->setChecked(true);
  bench::showWithGraph(window, *graph);

  BareGraph bare;
  bare.setAttribute(Qt::WA_OpaquePaintEvent);
  bench::showBeside(bare, *graph);
  std::printf("graph %d x %d\n", graph->width(), graph->height());

  int pass = 0;
  constexpr int rounds = 31;
  constexpr int calls = 100;
  bench::compare(
      "redraw pass / bare QPainter widget",
      [&pass, graph] {
        moveTraces(++pass);
        RedrawProfile();
        QCoreApplication::processEvents();
      },
      [&pass, &bare] {
        moveTraces(++pass);
        bare.update();
        QCoreApplication::processEvents();
      },
      rounds, calls);

  // Gate 1 begins at 0.1 ms of 4.6 ms; its start goes to and fro before the fence.
  const auto column = [graph](int step) { return graph->width() * (10 + step % 7) / 400; };
  int step = 0;
  sendMouse(*graph, QEvent::MouseMove, column(0));
  sendMouse(*graph, QEvent::MouseButtonPress, column(0));
  constexpr int moves = 200;
  bench::compare(
      "drag: mouse move until drawn / bare widget",
      [&step, &column, graph] {
        sendMouse(*graph, QEvent::MouseMove, column(++step));
        QCoreApplication::processEvents();
      },
      [&step, &column, &bare] {
        sendMouse(bare, QEvent::MouseMove, column(step));
        QCoreApplication::processEvents();
      },
      moves, 1);
  if (Settings.Gates[0].StartTime == 0.0001F) {
    std::printf("the edge was not dragged\n");
    return 1;
  }
  std::fflush(stdout);
  std::_Exit(0);
}
