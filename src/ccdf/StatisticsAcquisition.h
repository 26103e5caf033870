#pragma once

namespace pulsemod {

/// Switches the meter's statistics acquisition off if it is on (PPACQS). Pulse profile work never
/// runs with statistics acquisition on, so both ways of configuring the meter begin with this.
void StopStatisticsAcquisition();

}  // namespace pulsemod
