#pragma once

#include "platform/Picture.h"
#include "ui/GraphSheet.h"

class QWidget;

namespace pulsemod {

class GraphWidget;

/// What the sheets of both graphs have in common.

/// A sheet with the graph of a panel, the sizes of both, and a heading: title, channels, meter (if
/// it is known), date and time.
GraphSheet beginSheet(const QString& title, const QWidget& panel, const GraphWidget& graph);

/// A curve in that colour is drawn.
bool hasCurve(const Drawing& drawing, Colour colour);

/// A text of the legend, with a piece of a curve in that colour.
SheetEntry curveEntry(const QString& text, Colour colour);

}  // namespace pulsemod
