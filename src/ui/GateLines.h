#pragma once

#include <vector>

#include "profile/ProfileView.h"
#include "ui/GraphWidget.h"

namespace pulsemod {

/// The gate lines that are visible, in their colours: gates solid, fences dashed.
std::vector<VerticalLine> visibleLines(const GateLineArray& gateLines);

}  // namespace pulsemod
