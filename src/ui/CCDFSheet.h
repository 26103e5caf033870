#pragma once

#include "ui/GraphSheet.h"

namespace pulsemod {

class CCDFPanel;

/// The CCDF as it is shown, with the readings of the cursor.
GraphSheet ccdfSheet(const CCDFPanel& panel);

}  // namespace pulsemod
