#pragma once

namespace pulsemod {

/// Switches statistics acquisition off, asks for the meter's active channel (CHACTIV?), brings it
/// into pulse profile mode (CHDISPN, CHMODE, PMDTYP), and reads its configuration into `Settings`:
/// active gate, repeat, gates 1 to 4 with their fences, markers, levels and times, averaging,
/// number of points. Progress shows in `frmPleaseWait`. Not read: input configuration, display of
/// the gates, measurement type, and position and measurement of the delta marker.
///
/// Every reading is optional: a query that fails, and a number that does not fit its field, leave
/// the field as it was. Values are not checked against ranges. A profile readout without its
/// mnemonic ends the routine with `frmPleaseWait` left on the screen, so that the user sees where
/// it stopped. A `Fault`: a readout without a comma after its head, and an answer about averaging
/// while the active channel is neither 1 nor 2.
void ReadMeterConfig();

/// Reads gate 1 to 4 (GPGATS?, GPTIMST?, GPTIMSP?, GPFENS?, GPFENST?, GPFENSP?) into
/// `Settings.Gates[gate - 1]`. What a query does not answer stays.
void ReadGateConfig(int gate);

}  // namespace pulsemod
