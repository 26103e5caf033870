#include "ui/CCDFSheet.h"

#include "ccdf/CCDFGraph.h"
#include "ui/CCDFPanel.h"
#include "ui/SheetParts.h"

namespace pulsemod {

GraphSheet ccdfSheet(const CCDFPanel& panel) {
  GraphSheet sheet = beginSheet(QStringLiteral("CCDF"), panel, panel.graphWidget());
  sheet.topLeft = panel.source();
  if (panel.cursorFrameIsShown()) {
    sheet.topRight =
        QStringLiteral("Cursor: %1, %2").arg(panel.cursorPower(), panel.cursorPercentage());
  }
  sheet.leftLabels = panel.decadeTexts();
  sheet.bottomLeft = panel.startPower();
  sheet.bottomRight = panel.stopPower();
  if (hasCurve(sheet.drawing, secondCurveColour)) {
    sheet.foot.push_back(curveEntry(QStringLiteral("Live curve"), liveCurveColour));
    sheet.foot.push_back(curveEntry(QStringLiteral("Second curve"), secondCurveColour));
  }
  return sheet;
}

}  // namespace pulsemod
