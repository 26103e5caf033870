#pragma once

namespace pulsemod {

/// The last pass read no profile. Written by `AcquireProfile`.
extern bool ProfileReadFailed;

/// The program's main loop for the rest of the run: repeats `AcquireProfile`.
[[noreturn]] void RunAcquisitionLoop();

/// One pass: lets the user interface run, and while the acquisition runs reads one profile, carries
/// out pending edits, shows the rate, reads the gates' measurements if the info box is open, reads
/// the markers and redraws. While it does not run, the pass waits for an event. A failed profile
/// read skips what follows the edits, silently; a fault stops the acquisition and is reported. A
/// serial port that is lost after the profile was read stops it, too, with the profile drawn.
void AcquireProfile();

/// `menuStart`: menus first; then, when the link is free, device clear (GPIB), the read-back of
/// points, times and levels, and the acquisition runs. A stop meanwhile cancels the start; so do a
/// fault, which is reported, and a lost port. A read-back that fails leaves its value; a readout
/// for the points that is no profile ends the read-back.
void StartAcquisition();

/// `menuStop`: the profile in progress is finished, no further one is requested. Edits that are
/// still pending reach the meter as soon as the link is free.
void StopAcquisition();

/// `menuFreeRun`: the meter's trigger returns to free run (TR3).
void SetTriggerFreeRun();

/// `menudisplayupdate`: stops (true) or resumes the meter's own display updating (SYDISP).
void SetMeterDisplayStopped(bool stopped);

}  // namespace pulsemod
