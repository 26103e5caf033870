#pragma once

#include "profile/MeasurementSettings.h"

/// The whole configuration between program and meter, as the buttons of `frmProperties` ask for it.

namespace pulsemod {

/// An exchange of the whole configuration is under way or waits for its turn: a second one is not
/// begun. Written by the functions below alone.
extern Boolean16 ConfigExchangeBusy;

/// `cmdLoadPM` and `cmdSavePM`: read or write the meter's configuration when the link is free.
/// While such an exchange waits or runs, a click is ignored. After a read every window shows what
/// came, also when a fault ended it.
void LoadFromMeter();
void SaveToMeter();

/// All that shows settings follows the model: `frmProperties`, the graph with its labels, and the
/// readouts. Sends nothing.
void ShowSettings();

}  // namespace pulsemod
