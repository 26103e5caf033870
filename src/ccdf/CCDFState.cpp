#include "ccdf/CCDFState.h"

namespace pulsemod {

Trace CCDFData{};
Trace CCDFLogData{};
Trace SecondCCDFData{};
CCDFSettings CCDF;
CCDFRequests CCDFPending;

}  // namespace pulsemod
