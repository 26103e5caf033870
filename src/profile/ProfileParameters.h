#pragma once

#include <cstddef>

#include "profile/MeasurementSettings.h"

/// The meter's four profile parameters that the graph's labels show, and the count of points that
/// it reports. Shared by the whole read, by Start and by the single edits.

namespace pulsemod {

struct ProfileParameter {
  /// Of the command; the query has a question mark behind it.
  const char* mnemonic;
  /// Keyword between channel and value.
  const char* unit;
  /// Where it stands in `Settings`, in seconds, dBm or dB as that says.
  float MeasurementSettings::*value;
};

inline constexpr ProfileParameter captureTimeParameter{"TRCAPT", "PMOD",
                                                       &MeasurementSettings::CaptureTime};
inline constexpr ProfileParameter triggerDelayParameter{"TRDLYT", "PMOD",
                                                        &MeasurementSettings::TriggerDelay};
inline constexpr ProfileParameter referenceLevelParameter{"PMPREF", "DB",
                                                          &MeasurementSettings::ReferenceLevel};
inline constexpr ProfileParameter scaleParameter{"PMPSCAL", "DB",
                                                 &MeasurementSettings::ScalePerDivision};

/// Sends `value`, as in "TRCAPT 1,PMOD,0.0046".
void SendParameter(const ProfileParameter& parameter, float value);

/// Makes the active channel the meter's (CHDISPN, CHACTIV), in pulse mode (CHMODE) and with its
/// input configuration (CHCFG).
void SelectPulseMode();

/// Queries the meter's value, as in "TRCAPT? 1,PMOD", into `value`. False, with `value` as it was,
/// when the query failed or the number does not fit; text that is no number reads as 0.
bool QueryParameter(const ProfileParameter& parameter, float& value);

/// Queries the meter's value into its field of `Settings`, if it answers.
void ReadParameter(const ProfileParameter& parameter);

/// The head of a profile readout "PMPO 1,200,...": mnemonic, blank, one-digit channel, comma.
inline constexpr std::size_t profileHeadLength = 7;
inline constexpr auto profileMnemonic = "PMPO";

/// The query failed; the reply has no mnemonic; it has a point count.
enum class ProfileReadout { noReply, notAProfile, read };

/// Reads the meter's number of profile points into `DisplayPoints` from the head of a profile
/// readout ("PMPO 1"). A number that does not fit leaves the field; a readout without a comma after
/// its head is a `Fault`.
ProfileReadout ReadDisplayPoints();

}  // namespace pulsemod
