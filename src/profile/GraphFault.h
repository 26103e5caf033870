#pragma once

#include <functional>

namespace pulsemod {

class Fault;

/// The graph on the screen could not be drawn with the present settings and the user has been told;
/// told again only after it could be drawn in between. Written by the functions below alone.
extern bool GraphFaultReported;

/// Tells the user why the graph cannot be drawn or computed, unless that was done already.
void reportGraphFaultOnce(const Fault& fault);

/// Runs a drawing; a fault in it is told to the user unless that was done already. False when there
/// was one.
bool drawOrReportOnce(const std::function<void()>& drawing);

}  // namespace pulsemod
