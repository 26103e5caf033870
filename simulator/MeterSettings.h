// Every setting of the meter: one table of what it is called, what it accepts and how it starts,
// and the store of the values. Commands, queries, ranges and power-on values all come from here.
// Times are seconds, levels dBm, scales dB, shares percent, as on the wire.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace simmeter {

enum class SettingId : std::uint8_t {
  // of the whole meter
  kActiveChannel,
  kDisplayedChannels,
  kDisplayUpdate,
  kTracePoints,
  // of each channel
  kMode,
  kInputConfig,
  kProfileType,
  kCaptureTime,
  kTriggerDelay,
  kReference,
  kScale,
  kAveraging,
  kAverageCount,
  kMeasurementType,
  kGatesHidden,
  kActiveGate,
  kRepeat,
  kRepeatCount,
  kRepeatOffset,
  kGateOn,
  kGateStart,
  kGateStop,
  kFenceOn,
  kFenceStart,
  kFenceStop,
  kActiveMarker,
  kMarkerOn,
  kMarkerPosition,
  kDeltaOn,
  kDeltaPosition,
  kDeltaMeasurement,
  kStatistics,
  kFunction,
  kStatisticsFunction,
  kPowerStart,
  kPowerStop,
  kCursorOn,
  kCursorPower,
  kSource,
  kCount
};

enum class ValueKind : std::uint8_t {
  kOnOff,   // "ON" or "OFF", kept as 1 or 0
  kWhole,   // a number rounded to a whole one
  kNumber,  // a real number
  kWord,    // one of the words of the row, kept as the word's index
};

constexpr int kChannels = 2;
constexpr int kOwnGates = 4;       // gates with settings of their own
constexpr int kRepeatedGates = 8;  // gates that a repeat of gate 1 can reach
constexpr int kMarkers = 4;

// Indices of the words of kInputConfig and kSource.
enum InputConfig { kInputA, kInputB, kInputAMinusB, kInputBMinusA, kInputAOverB, kInputBOverA };
enum StatisticsSource { kSourceChannel, kSourceGate, kSourceMarker };

// One row: `MNEMONIC channel,element,QUALIFIER,value`, each middle part only where the row has it.
struct SettingRow {
  SettingId id;
  std::string_view mnemonic;
  bool perChannel;
  int elements;                // 0: the setting has no gate or marker number
  std::string_view qualifier;  // "" or the fixed keyword before the value
  ValueKind kind;
  double minimum;  // numbers: the accepted range, ends included
  double maximum;
  std::string_view words;         // kWord: the accepted words, separated by blanks
  std::array<double, 4> powerOn;  // one for each element; the first where there are none
};

std::span<const SettingRow> settingTable();
const SettingRow& settingRow(SettingId id);
// nullptr for an unknown mnemonic; upper or lower case.
const SettingRow* findSetting(std::string_view mnemonic);

// The index of the word in the row's list, -1 if it is not there; upper or lower case.
int wordIndex(const SettingRow& row, std::string_view word);
std::string_view wordAt(const SettingRow& row, int index);

// The values. Channels and elements count from 1, as on the wire; a setting of the whole meter
// takes any channel, a setting without elements takes element 1.
class MeterSettings {
 public:
  MeterSettings() { reset(); }

  // Power-on values of every setting.
  void reset();

  double value(SettingId id, int channel, int element = 1) const;
  bool isOn(SettingId id, int channel, int element = 1) const;
  int whole(SettingId id, int channel, int element = 1) const;
  void set(SettingId id, int channel, int element, double value);

 private:
  static constexpr std::size_t kSlots = static_cast<std::size_t>(SettingId::kCount) * 4;
  std::array<std::array<double, kSlots>, kChannels> values_{};
};

}  // namespace simmeter
