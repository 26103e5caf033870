#pragma once

#include <QFrame>

#include "CCDFWindowBench.h"
#include "ccdf/CCDFGraph.h"
#include "ui/Look.h"

namespace pulsemod::test {

/// Nothing touches anything else, reaches out of the window or is cut.
inline void checkRoom(CCDFBench& bench) {
  QWidget* panel = bench.window.centralWidget();
  const QList<QWidget*> parts =
      panel->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
  QCOMPARE(parts.size(), 13);
  for (const QWidget* one : parts) {
    QVERIFY2(panel->rect().contains(one->geometry()), qPrintable(one->objectName()));
    QVERIFY2(one->width() >= one->sizeHint().width(), qPrintable(one->objectName()));
    QVERIFY2(one->height() >= one->sizeHint().height(), qPrintable(one->objectName()));
    for (const QWidget* other : parts) {
      QVERIFY2(one == other || !one->geometry().intersects(other->geometry()),
               qPrintable(one->objectName() + " " + other->objectName()));
    }
  }
  const auto& frame = bench.part<QFrame>("FrameCursor");
  if (frame.isHidden()) return;
  const QLabel& power = bench.label("lblCursorPower");
  const QLabel& percentage = bench.label("lblCursorPercentage");
  QVERIFY(!power.geometry().intersects(percentage.geometry()));
  const int line = frame.frameWidth();
  for (const QLabel* label : {&power, &percentage}) {
    QVERIFY(frame.rect().adjusted(line, line, -line, -line).contains(label->geometry()));
    QVERIFY(label->width() >= label->sizeHint().width());
    QVERIFY(label->height() >= label->sizeHint().height());
  }
}

/// Where the graph's horizontal lines are painted, from its top, in pixels of the window.
inline QList<double> paintedDecades(CCDFBench& bench) {
  QWidget& graph = bench.graph();
  const QImage image = graph.grab().toImage();
  const double ratio = graph.devicePixelRatioF();
  QList<double> lines;
  int lastRow = -2;
  for (int y = 0; y < image.height(); ++y) {
    // Between two vertical lines.
    int x = image.width() / 10 + 5;
    const int last = image.width() / 5 - 5;
    while (x < last && QColor(image.pixel(x, y)) == toQt(ccdfGridColour)) ++x;
    if (x < last) continue;
    if (y != lastRow + 1) lines << y / ratio;
    lastRow = y;
  }
  return lines;
}

}  // namespace pulsemod::test
