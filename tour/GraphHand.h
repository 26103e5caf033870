#pragma once

#include <string>

#include "RobotClient.h"

namespace tour {

/// A step of the mouse ("press", "move" or "release") half way down a graph; `share` counts from
/// its left edge to its right one.
void moveOnGraph(robot::RobotClient& hands, const std::string& graph, const std::string& step,
                 double share);

}  // namespace tour
