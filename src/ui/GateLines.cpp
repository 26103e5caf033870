#include "ui/GateLines.h"

#include "ui/Look.h"

namespace pulsemod {

std::vector<VerticalLine> visibleLines(const GateLineArray& gateLines) {
  std::vector<VerticalLine> lines;
  for (std::size_t index = 0; index < gateLines.size(); ++index) {
    if (!gateLines[index].visible) continue;
    const bool isFence = index % linesPerGate >= linesPerGate / 2;
    lines.push_back({gateLines[index].x, isFence ? look::fenceLine : look::gateLine, isFence});
  }
  return lines;
}

}  // namespace pulsemod
