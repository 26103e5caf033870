#pragma once

namespace pulsemod {

/// What the meter's CCDF is computed from.
enum class CCDFSource { gate, marker, channel };

/// Queries the meter's source (TTSRC?) into the state and into `lblMeasSource`. A failed query
/// leaves both.
void ReadMeasurementSource();

/// "SOURCE:" and the source as last read, into `lblMeasSource`.
void ShowMeasurementSource();

/// Asks the meter for another source (TTSRC), reads back what it did, and tells the user the
/// outcome in a message box each time, also when the source was set already. A meter that does not
/// say its present source is not asked for another.
void ChangeMeasurementSource(CCDFSource target);

/// `menuMeasSourceGate`, `menuMeasSourceActiveMarker`, `menuMeasSourceChannel`: when the link is
/// free; pending while the acquisition runs.
void RequestMeasurementSource(CCDFSource target);

/// Carries out the pending sources, in the order marker, gate, channel.
void CarryOutSourceRequests();

}  // namespace pulsemod
