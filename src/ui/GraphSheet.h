#pragma once

#include <QColor>
#include <QFont>
#include <QSize>
#include <QString>
#include <optional>
#include <vector>

#include "ui/Drawing.h"
#include "ui/DrawingPainter.h"

class QPainter;

namespace pulsemod {

/// A text of a sheet; one of its legend has a piece of the line that it is about before it.
struct SheetEntry {
  QString text;
  std::optional<QColor> line = std::nullopt;
  bool dashed = false;
};

/// A graph with all that it takes to stand alone in a report: for pictures in files, on the
/// clipboard and on paper.
struct GraphSheet {
  /// The first one is the title.
  std::vector<SheetEntry> heading;
  QString topLeft;
  QString topRight;
  /// Beside the graph, evenly from its top to its bottom edge.
  std::vector<QString> leftLabels;
  QString bottomLeft;
  QString bottomCentre;
  QString bottomRight;
  /// Under all: the legend and the readings.
  std::vector<SheetEntry> foot;

  /// As on the screen: in the colours of a dark ground.
  Drawing drawing;
  std::vector<VerticalLine> lines;

  /// Of heading and foot, and of the graph with the labels around it.
  QFont font;
  QFont graphFont;

  /// What the graph and its labels have on the screen, in device pixels, and how many of those are
  /// one pixel of a font.
  QSize screenSize;
  double screenRatio = 1;
};

enum class Ground { dark, white };

/// Where a sheet is painted: its size in pixels, how many of them are one pixel of a font, at most
/// (no text is ever cut: what does not fit makes everything smaller), and what kind of pixels they
/// are.
struct SheetArea {
  QSize size;
  double ratio = 1;
  Surface surface = Surface::image;
  Ground ground = Ground::white;
};

/// The painter's units are the pixels of the area, which begins at its origin.
void paintSheet(QPainter& painter, const GraphSheet& sheet, const SheetArea& area);

/// What stands for a colour of the dark ground on a white one: with a contrast of 4.5 to 1 or
/// better, but for the grid, which stays behind the curves.
QColor onWhite(const QColor& colour);

}  // namespace pulsemod
