#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

/// The program's own copy of the meter's pulse profile configuration, and the traces. The meter is
/// the authority: this is what was last sent to it or read from it. Times are seconds, levels dBm,
/// scales dB, all single precision. All of it lives for the whole run.

namespace pulsemod {

/// A 16-bit truth value: True is all bits set.
using Boolean16 = std::int16_t;
inline constexpr Boolean16 True16 = -1;
inline constexpr Boolean16 False16 = 0;
inline constexpr Boolean16 boolean16(bool value) { return value ? True16 : False16; }

/// A truth value as commands have it: "ON" or "OFF".
std::string onOffText(Boolean16 value);

/// Gate slots; the meter's own gates are the first four.
inline constexpr std::size_t gateCount = 8;
inline constexpr int meterGates = 4;
inline constexpr std::size_t markerCount = 5;
inline constexpr std::size_t channelCount = 2;
inline constexpr std::size_t tracePoints = 400;

/// Index of the delta marker in `Markers`.
inline constexpr std::size_t deltaMarker = 4;
/// Marker `number`, from 1, is the delta marker.
inline constexpr bool isDeltaMarker(int number) {
  return number == static_cast<int>(deltaMarker) + 1;
}

/// One gate and its fence. The four x columns are graph x positions in trace points
/// (`TimeToGraphX`), written by `PositionGateLines` and read by hit tests.
struct GateSettings {
  float StartTime = 0.0001F;
  float FenceStart = 0.000225F;
  float FenceStop = 0.000321F;
  float StopTime = 0.000577F;
  std::int32_t StartX = 0;
  std::int32_t StopX = 0;
  std::int32_t FenceStartX = 0;
  std::int32_t FenceStopX = 0;
  Boolean16 FenceEnabled = False16;  ///< GPFENS
  Boolean16 Enabled = False16;       ///< GPGATS
};

/// One of the four times of a gate: its ends and those of its fence.
inline constexpr std::size_t timesPerGate = 4;
enum class GateTime : std::int16_t { none = 0, start = 1, stop = 2, fenceStart = 3, fenceStop = 4 };

/// Where a time of a gate stands; null for none.
float GateSettings::*gateTimeField(GateTime time);

struct MarkerSettings {
  float Reading = 0;             ///< dBm, from MKNO
  float Position = 0;            ///< MKPOS; of the delta marker MKDPOS
  std::int16_t PositionX = 0;    ///< graph x position of `Position`, in trace points
  Boolean16 Enabled = False16;   ///< MKSTATE; of the delta marker MKDELTS
  Boolean16 IsActive = False16;  ///< MKACTN
};

struct ChannelSettings {
  std::int32_t InputConfig = 0;     ///< 0 to 5 = A, B, A-B, B-A, A/B, B/A (CHCFG)
  std::int16_t AveragingCount = 0;  ///< profiles averaged, 1 to 1000; 0 not known yet (PMAVGN)
  Boolean16 AveragingOn = False16;  ///< PMAVGS
};

/// The value of `ActiveChannel` that stands for both.
inline constexpr std::int16_t bothChannels = 3;

struct MeasurementSettings {
  float CaptureTime = 0.0046F;  ///< time span across the graph (TRCAPT)
  float TriggerDelay = 0;       ///< time of the graph's left edge after the trigger (TRDLYT)
  float ReferenceLevel = 10;    ///< level at the graph's top (PMPREF)
  float ScalePerDivision = 10;  ///< dB for each of the ten divisions (PMPSCAL)
  /// Channel of all commands: 1, 2, or `bothChannels`, sent as "1&2".
  std::int16_t ActiveChannel = 1;
  std::int16_t ActiveGate = 1;        ///< 1 to 4 (GPACTN)
  Boolean16 GatesVisible = True16;    ///< gates are drawn; inverted as GPHIDES
  std::int32_t MeasurementType = 1;   ///< 1 to 4, see `measurementResults` (PMMEAS)
  std::int32_t DeltaMeasurement = 0;  ///< 0 = PAVG, 1 = PDIFF (MKDMEAS)
  std::int16_t DisplayPoints = 200;   ///< points of a trace, 1 to 400 (SYDRES)
  Boolean16 RepeatEnabled = False16;  ///< gate 1 is repeated (GP1REPS)
  std::int16_t RepeatCount = 3;       ///< 1 to 8 gates of the repeat, gate 1 included (GP1REPN)
  float RepeatOffset = 0.0006F;       ///< between the starts of repeated gates (GP1REPT)
  /// Gate n is element n - 1. Gates 1 to 4 are the meter's own; 5 to 8 serve the repeat of gate 1.
  std::array<GateSettings, gateCount> Gates;
  /// Marker n is element n - 1; element 4 is the delta marker.
  std::array<MarkerSettings, markerCount> Markers;
  std::array<ChannelSettings, channelCount> Channels;
};
/// Written by the user's edits, the reads of the meter's configuration and readouts, and files.
extern MeasurementSettings Settings;

/// A profile: element i - 1 is the power of point i in dBm.
using Trace = std::array<float, tracePoints>;

/// The live profile. Written by the profile decoders only; points beyond the last one decoded keep
/// their values.
extern Trace ProfileTrace;

/// The profile that was opened from a file, drawn under the live one.
extern Trace SecondProfileTrace;

/// A loop may fetch data. Set by Start, cleared by Stop, paused while the mouse holds something on
/// a graph.
extern Boolean16 AcquisitionRunning;

/// Brings every setting back to its default and stops the acquisition. Once, before any exchange.
/// Beyond the values above: marker n stands at n x 100 us, marker 1 is the active one, and the
/// active channel averages 1 profile.
void InitMeasurementSettings();

/// The channel argument of commands: "1", "2" or "1&2".
std::string ChannelText();

/// One channel is active: 1 or 2.
bool oneChannelIsActive();

/// "A", "B", "A-B", "B-A", "A/B" or "B/A" for the active channel; empty for any other code, and
/// when both channels are active.
std::string InputConfigText();

/// The active channel's own settings. A `Fault` when both channels are active (or none): averaging
/// and input configuration may be touched only while one channel is.
ChannelSettings& activeChannelSettings();

/// The first gate that a repeat derives.
inline constexpr int firstRepeatedGate = 2;

/// Derives the gates from `first` to `RepeatCount` while the repeat is on: each is the one before,
/// shifted by `RepeatOffset`. The whole expansion also switches gate 1 on; one that begins later
/// leaves the gates before it as they are. A count above 8 derives 8. A sum that does not fit ends
/// the expansion at its gate.
void ExpandRepeatGates(int first = firstRepeatedGate);

}  // namespace pulsemod
