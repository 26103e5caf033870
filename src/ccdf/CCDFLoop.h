#pragma once

namespace pulsemod {

/// The program's main loop in CCDF mode, for the rest of the run: repeats `AcquireCCDF`.
[[noreturn]] void RunCCDFLoop();

/// One pass: lets the user interface run, and while the acquisition runs reads one curve, carries
/// out the pending requests, reads the cursor if it is shown, shows the rate and draws. While it
/// does not run, the pass waits for an event. A failed curve query ends the program; a reply that
/// is no curve draws the old one again; a fault stops the acquisition and is reported. A serial
/// port that is lost after the curve was read stops it, too, with the curve drawn.
void AcquireCCDF();

/// Carries out every pending request, in the order start power, stop power, sources, cursor on,
/// off, position, power range. A pending restart has no effect.
void CarryOutCCDFRequests();

/// `menuStart`: menus first; then, when the link is free, device clear (GPIB), and the acquisition
/// runs. A stop meanwhile cancels the start.
void StartCCDF();

/// `menuStop`: the curve in progress is finished, no further one is requested. The meter's
/// statistics acquisition stays on. Requests that are still pending reach the meter as soon as the
/// link is free.
void StopCCDF();

/// `MenuRestart`: restarts the meter's statistics (PPACQRT). While the acquisition runs this has no
/// effect, since every curve restarts them.
void RestartStatistics();

}  // namespace pulsemod
