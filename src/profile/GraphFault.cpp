#include "profile/GraphFault.h"

#include "link/Fault.h"

namespace pulsemod {

bool GraphFaultReported = false;

void reportGraphFaultOnce(const Fault& fault) {
  if (GraphFaultReported) return;
  // First, since the box lets windows be resized, and a resize draws.
  GraphFaultReported = true;
  reportFault(fault.what());
}

bool drawOrReportOnce(const std::function<void()>& drawing) {
  try {
    drawing();
    GraphFaultReported = false;
    return true;
  } catch (const Fault& fault) {
    reportGraphFaultOnce(fault);
    return false;
  }
}

}  // namespace pulsemod
