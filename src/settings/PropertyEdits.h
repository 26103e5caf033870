#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// What the controls of `frmProperties` do. Each edit stands in the model at once, and its commands
/// go to the meter as soon as the link is free; no reply is waited for, and no edit is taken back.
/// Gates, markers and channels are numbered from 1; "ch" is the channel text of the model.

namespace pulsemod {

// Averaging and channel.

/// `chkAverage`: PMAVGS. With both channels active a `Fault`, as is the next one.
void SwitchAveraging(bool on);
/// `scrollAVG`, when it has come to rest at 1 to `mostAveraged` profiles: PMAVGN.
void SetAveragingCount(std::int16_t count);
inline constexpr std::int16_t mostAveraged = 1000;
/// "Average (16)", the caption of `chkAverage`.
std::string averagingCaption(int count);
/// `optChannel`: 1, 2, or 3 for both. Nothing is sent: the meter gets the channel with the next
/// whole write.
void ChooseChannel(std::int16_t channel);
/// `optInputConfig`, by code 0 to 5: CHCFG. With both channels active a `Fault`.
void ChooseInputConfig(std::int32_t code);
/// `Label5`.
std::string channelSentence();

// Gates.

/// `chkDisplayGates`: GPHIDES, which says the opposite.
void ShowGates(bool shown);
/// `chkEnabled`: GPGATS; a gate that is then the only one that is on becomes the active one:
/// GPACTN.
void SwitchGate(int gate, bool on);
/// `lblFence`: GPFENS.
void ToggleFence(int gate);
std::string fenceToolTip(bool enabled);
/// `txtGateInfo`, by its index from 0: `timesPerGate` a gate, start, stop, fence start, fence stop.
/// Asks for the time and refuses one outside its limits with a message: a gate must not begin or
/// end before the trigger delay, a fence not begin before its gate or end after it.
void EditGateTime(std::size_t index);
/// `optActiveGate`: GPACTN.
void ChooseActiveGate(int gate);

/// `chkRepeat`: GP1REPS. `countText` is what `txtRepeatCount` holds; it becomes the count as with
/// Enter.
void SwitchRepeat(bool on, const std::string& countText);
/// Enter in `txtRepeatCount`: GP1REPN. The count is kept between 1 and 8; text that is no number
/// is 1.
void EnterRepeatCount(const std::string& countText);
/// `txtRepeatOffset`: GP1REPT. Asks for the time and refuses none.
void EditRepeatOffset();

/// Brings the gates in line with the repeat. Slots 5 to 8 are off unless the repeat reaches them.
void SetGatesEnabled();

/// How the controls of a gate slot stand.
struct GateControls {
  /// Slots 5 to 8 are there for the repeat alone.
  bool shown = false;
  /// `chkEnabled` may be clicked, and is checked.
  bool switchable = false;
  bool checked = false;
  /// `lblFence` and `txtGateInfo` may be clicked: the repeated gates follow gate 1.
  bool editable = false;
  /// `optActiveGate` is visible.
  bool activatable = false;
  friend bool operator==(const GateControls&, const GateControls&) = default;
};
GateControls gateControls(int gate);

// Markers; number 5 is the delta marker.

/// `chkMaker`: MKSTATE; for the delta marker MKDELTS and MKDPOS.
void SwitchMarker(int marker, bool on);
/// `txtMarker`: asks for the position; MKPOS, and the marker's new reading (MKNO); for the delta
/// marker MKDPOS and MKDO, whose reply has no use.
void EditMarkerPosition(int marker);
/// `optActiveMarker`: MKACTN.
void ChooseActiveMarker(int marker);
/// `optDeltaMeas`: MKDMEAS, 0 for PAVG and 1 for PDIFF.
void ChooseDeltaMeasurement(std::int32_t index);

// Measurement and display.

/// `optMeasurement`, 1 to 4: PMMEAS.
void ChooseMeasurement(std::int32_t type);
/// `optDisplayPoints`, 200 or 400: SYDRES.
void ChooseDisplayPoints(std::int16_t points);

}  // namespace pulsemod
