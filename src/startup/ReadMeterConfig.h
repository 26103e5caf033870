#pragma once

namespace pulsemod {

/// Brings the meter into pulse profile mode on its active channel and reads the channel's whole
/// configuration into `Settings`. Progress shows in `frmPleaseWait`.
///
/// Every reading is optional: a query that fails, and a number that does not fit its field, leave
/// the field as it was. Values are not checked against ranges. A profile readout without its
/// mnemonic ends the routine with `frmPleaseWait` left on the screen, so that the user sees where
/// it stopped; one without a comma after its head is a `Fault`.
void ReadMeterConfig();

/// Reads gate 1 to 4 into `Settings.Gates[gate - 1]`.
void ReadGateConfig(int gate);

}  // namespace pulsemod
