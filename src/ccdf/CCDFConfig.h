#pragma once

namespace pulsemod {

/// Puts the meter's active channel into statistics mode with the CCDF function, and then asks
/// whether the meter has completed it all; an answer other than 1 shows a message, no answer shows
/// nothing. Progress shows in `frmPleaseWait`.
void ConfigureCCDF();

/// Reads the meter's point count, power axis, cursor and measurement source into the state and into
/// the window's labels. What a query does not answer keeps its value.
void ReadCCDFSettings();

}  // namespace pulsemod
