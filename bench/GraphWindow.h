#pragma once

#include <QApplication>
#include <QWidget>

namespace bench {

/// Shows a window and gives its graph the size that all redraw figures are for.
inline void showWithGraph(QWidget& window, const QWidget& graph) {
  constexpr QSize graphSize(1024, 700);
  constexpr QSize large(1200, 1000);
  window.show();
  window.resize(large);
  QCoreApplication::processEvents();
  window.resize(large + graphSize - graph.size());
  QCoreApplication::processEvents();
}

/// Shows the widget that paints the same, in the same size.
inline void showBeside(QWidget& bare, const QWidget& graph) {
  bare.resize(graph.size());
  bare.show();
  QCoreApplication::processEvents();
}

}  // namespace bench
