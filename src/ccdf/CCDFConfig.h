#pragma once

namespace pulsemod {

/// Puts the meter's active channel into statistics mode with the CCDF function (PPACQS, PPFUNC,
/// TTFUNC), sends its input configuration, reference level and scale, and then asks whether the
/// meter has completed it all; an answer other than 1 shows a message, no answer shows nothing.
/// Progress shows in `frmPleaseWait`.
void ConfigureCCDF();

/// Reads the meter's point count (TTFRO), power axis (TTPSP?, TTPST?), cursor (TTMKS?, TTMKRO) and
/// measurement source (TTSRC?) into the state and into the window's labels. What a query does not
/// answer keeps its value. A cursor whose line has no place on the axis is a `Fault`.
void ReadCCDFSettings();

}  // namespace pulsemod
