#!/usr/bin/python3
"""The trace and the grid by pyqtgraph with PyQt6, without OpenGL and downsampling; Debian's own
Python has both. Passes.h says what is measured and printed. Variants:

plain    PlotWidget.plot() and setData(), not antialiased, which is the library's default
smooth   the same, antialiased
curve    a PlotCurveItem not antialiased, which the library's own speed test uses
"""

import os
import resource
import statistics
import sys
import time

os.environ["PYQTGRAPH_QT_LIB"] = "PyQt6"
import numpy  # noqa: E402
import pyqtgraph  # noqa: E402
from pyqtgraph.Qt import QtGui  # noqa: E402

SIZE = (1024, 700)
POINTS = 400
DIVISIONS = 10
TOP, BOTTOM = 10, -90
FRAMES = 64
GRID = (200, 200, 200)
TRACE = (255, 255, 0)


class Graph(pyqtgraph.PlotWidget):
    paints = 0

    def paintEvent(self, event):
        self.paints += 1
        super().paintEvent(event)


def prepare_axis(graph, name, lower, upper):
    """Grid lines over the whole widget, no labels, no margins: what the other programs draw."""
    axis = graph.getAxis(name)
    step = (upper - lower) / DIVISIONS
    axis.setTicks([[(lower + step * i, "") for i in range(1, DIVISIONS)]])
    axis.setStyle(showValues=False, tickLength=0)
    axis.setPen(GRID)
    axis.setGrid(255)
    (axis.setHeight if name == "bottom" else axis.setWidth)(0)


def make_graph():
    graph = Graph(background="k")
    graph.resize(*SIZE)
    item = graph.getPlotItem()
    item.layout.setContentsMargins(0, 0, 0, 0)
    item.hideButtons()
    item.setMenuEnabled(False)
    item.setMouseEnabled(False, False)
    item.disableAutoRange()
    item.setClipToView(False)
    item.setDownsampling(ds=1, auto=False)
    item.setXRange(0, POINTS, padding=0)
    item.setYRange(BOTTOM, TOP, padding=0)
    prepare_axis(graph, "bottom", 0, POINTS)
    prepare_axis(graph, "left", BOTTOM, TOP)
    return graph


def make_curve(graph, variant, keys):
    options = {"pen": pyqtgraph.mkPen(TRACE, width=1), "antialias": variant == "smooth",
               "connect": "all", "skipFiniteCheck": True}
    if variant == "curve":
        curve = pyqtgraph.PlotCurveItem(keys, numpy.full(POINTS, BOTTOM), **options)
        graph.addItem(curve)
        return curve
    return graph.plot(keys, numpy.full(POINTS, BOTTOM), **options)


def look(application, graph):
    """The window as the screen has it: 4 bytes a pixel, blue first."""
    image = application.primaryScreen().grabWindow(int(graph.winId())).toImage()
    image = image.convertToFormat(QtGui.QImage.Format.Format_RGB32)
    if "COMPARE_PICTURE" in os.environ:
        image.save(os.environ["COMPARE_PICTURE"])
    data = image.constBits().asarray(image.sizeInBytes())
    return numpy.array(data, dtype=numpy.uint8).reshape(image.height(), image.width(), 4)


def processor_seconds():
    usage = resource.getrusage(resource.RUSAGE_SELF)
    return usage.ru_utime + usage.ru_stime


def main():
    variant, count = sys.argv[1], int(sys.argv[2])
    application = pyqtgraph.mkQApp()
    keys = numpy.arange(POINTS, dtype=float)
    frames = [-30 + 25 * numpy.sin(keys * 0.05 + frame * 0.1) for frame in range(FRAMES)]
    graph = make_graph()
    curve = make_curve(graph, variant, keys)
    graph.show()
    application.processEvents()

    def one_pass(number):
        painted = graph.paints
        curve.setData(keys, frames[number % FRAMES])
        application.processEvents()
        while graph.paints == painted:
            application.processEvents()

    warm_up = max(20, count // 4)
    for number in range(warm_up):
        one_pass(number)
    before = look(application, graph)
    paints_before, processor_before = graph.paints, processor_seconds()
    times = []
    for number in range(warm_up, warm_up + count):
        start = time.perf_counter_ns()
        one_pass(number)
        times.append((time.perf_counter_ns() - start) / 1e3)
    processor = (processor_seconds() - processor_before) / count * 1e6
    paints = (graph.paints - paints_before) / count
    after = look(application, graph)

    blue, green, red = (after[:, :, channel] for channel in range(3))
    is_grid = blue >= 150
    is_trace = ~is_grid & (red >= 96) & (green >= 96)
    changed = (after != before).any(axis=2)
    print(f"{statistics.median(times):.2f} {processor:.2f} {paints:.3f} {is_trace.sum()} "
          f"{is_grid.sum()} {changed.sum()}", flush=True)
    os._exit(0)


if __name__ == "__main__":
    main()
