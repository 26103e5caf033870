#include "MeterSettings.h"

#include <cassert>
#include <cmath>

#include "NumberText.h"

namespace simmeter {
namespace {

using enum SettingId;
using enum ValueKind;

constexpr double kTime = 20;  // s, either side of the trigger

// clang-format off
constexpr std::array kTable = {
  // id, mnemonic, of a channel, elements, qualifier, kind, range, words, power-on values
  SettingRow{kActiveChannel,     "CHACTIV", false, 0, "",     kWord,   0, 0, "1 2 1&2", {0}},
  SettingRow{kDisplayedChannels, "CHDISPN", false, 0, "",     kWhole,  1, 2, "", {1}},
  SettingRow{kDisplayUpdate,     "SYDISP",  false, 0, "",     kOnOff,  0, 1, "", {1}},
  SettingRow{kTracePoints,       "SYDRES",  false, 0, "",     kWord,   0, 0, "200 400", {1}},

  SettingRow{kMode,              "CHMODE",  true,  0, "",     kWord,   0, 0, "CW PMOD", {1}},
  SettingRow{kInputConfig,       "CHCFG",   true,  0, "",     kWord,   0, 0, "A B A-B B-A A/B B/A", {0}},
  SettingRow{kProfileType,       "PMDTYP",  true,  0, "",     kWord,   0, 0, "PRF RDO", {0}},
  SettingRow{kCaptureTime,       "TRCAPT",  true,  0, "PMOD", kNumber, 1e-7, 10, "", {2e-3}},
  SettingRow{kTriggerDelay,      "TRDLYT",  true,  0, "PMOD", kNumber, -10, 10, "", {-2e-4}},
  SettingRow{kReference,         "PMPREF",  true,  0, "DB",   kNumber, -99, 99, "", {10}},
  SettingRow{kScale,             "PMPSCAL", true,  0, "DB",   kNumber, 0.1, 50, "", {10}},
  SettingRow{kAveraging,         "PMAVGS",  true,  0, "",     kOnOff,  0, 1, "", {0}},
  SettingRow{kAverageCount,      "PMAVGN",  true,  0, "",     kWhole,  1, 1000, "", {16}},
  SettingRow{kMeasurementType,   "PMMEAS",  true,  0, "",     kWhole,  1, 4, "", {3}},

  SettingRow{kGatesHidden,       "GPHIDES", true,  0, "",     kOnOff,  0, 1, "", {0}},
  SettingRow{kActiveGate,        "GPACTN",  true,  0, "",     kWhole,  1, kOwnGates, "", {1}},
  SettingRow{kRepeat,            "GP1REPS", true,  0, "",     kOnOff,  0, 1, "", {0}},
  SettingRow{kRepeatCount,       "GP1REPN", true,  0, "",     kWhole,  1, kRepeatedGates, "", {2}},
  SettingRow{kRepeatOffset,      "GP1REPT", true,  0, "",     kNumber, 0, 10, "", {1.2e-3}},
  SettingRow{kGateOn,            "GPGATS",  true,  kOwnGates, "", kOnOff, 0, 1, "", {1, 0, 0, 0}},
  SettingRow{kGateStart,         "GPTIMST", true,  kOwnGates, "", kNumber, -kTime, kTime, "", {5e-5, 1.25e-3, 7e-4, 1e-4}},
  SettingRow{kGateStop,          "GPTIMSP", true,  kOwnGates, "", kNumber, -kTime, kTime, "", {5.5e-4, 1.75e-3, 1.1e-3, 1.7e-3}},
  SettingRow{kFenceOn,           "GPFENS",  true,  kOwnGates, "", kOnOff, 0, 1, "", {1, 0, 0, 0}},
  SettingRow{kFenceStart,        "GPFENST", true,  kOwnGates, "", kNumber, -kTime, kTime, "", {2.2e-4, 1.4e-3, 8e-4, 5.5e-4}},
  SettingRow{kFenceStop,         "GPFENSP", true,  kOwnGates, "", kNumber, -kTime, kTime, "", {3.3e-4, 1.5e-3, 9e-4, 1.25e-3}},

  SettingRow{kActiveMarker,      "MKACTN",  true,  0, "",     kWhole,  1, kMarkers, "", {1}},
  SettingRow{kMarkerOn,          "MKSTATE", true,  kMarkers, "", kOnOff, 0, 1, "", {1, 1, 1, 0}},
  SettingRow{kMarkerPosition,    "MKPOS",   true,  kMarkers, "", kNumber, -kTime, kTime, "", {1e-4, 5e-4, 9e-4, 1.5e-3}},
  SettingRow{kDeltaOn,           "MKDELTS", true,  0, "",     kOnOff,  0, 1, "", {0}},
  SettingRow{kDeltaPosition,     "MKDPOS",  true,  0, "",     kNumber, -kTime, kTime, "", {4e-4}},
  SettingRow{kDeltaMeasurement,  "MKDMEAS", true,  0, "",     kWord,   0, 0, "PAVG PDIFF", {0}},

  SettingRow{kStatistics,        "PPACQS",  true,  0, "",     kOnOff,  0, 1, "", {0}},
  SettingRow{kFunction,          "PPFUNC",  true,  0, "",     kWord,   0, 0, "PROFILE STATS", {0}},
  SettingRow{kStatisticsFunction,"TTFUNC",  true,  0, "",     kWord,   0, 0, "CCDF", {0}},
  SettingRow{kPowerStart,        "TTPST",   true,  0, "",     kNumber, -99, 99, "", {-30}},
  SettingRow{kPowerStop,         "TTPSP",   true,  0, "",     kNumber, -99, 99, "", {20}},
  SettingRow{kCursorOn,          "TTMKS",   true,  0, "",     kOnOff,  0, 1, "", {1}},
  SettingRow{kCursorPower,       "TTMKPOS", true,  0, "",     kNumber, -99, 99, "", {5}},
  SettingRow{kSource,            "TTSRC",   true,  0, "",     kWord,   0, 0, "CHANNEL GATE MARKER", {0}},
};
// clang-format on

static_assert(kTable.size() == static_cast<std::size_t>(SettingId::kCount));

constexpr bool inOrderOfIds() {
  for (std::size_t i = 0; i < kTable.size(); ++i) {
    if (static_cast<std::size_t>(kTable[i].id) != i) return false;
  }
  return true;
}
static_assert(inOrderOfIds(), "rows are found by their place");

std::size_t slot(SettingId id, int element) {
  assert(element >= 1 && element <= 4);
  return static_cast<std::size_t>(id) * 4 + static_cast<std::size_t>(element - 1);
}

// A setting of the whole meter lives with channel 1.
std::size_t home(SettingId id, int channel) {
  assert(channel >= 1 && channel <= kChannels);
  return settingRow(id).perChannel ? static_cast<std::size_t>(channel - 1) : 0;
}

}  // namespace

std::span<const SettingRow> settingTable() { return kTable; }

const SettingRow& settingRow(SettingId id) { return kTable[static_cast<std::size_t>(id)]; }

const SettingRow* findSetting(std::string_view mnemonic) {
  for (const SettingRow& row : kTable) {
    if (equalIgnoringCase(row.mnemonic, mnemonic)) return &row;
  }
  return nullptr;
}

int wordIndex(const SettingRow& row, std::string_view word) {
  if (word.empty()) return -1;
  for (int i = 0;; ++i) {
    const std::string_view candidate = wordAt(row, i);
    if (candidate.empty()) return -1;
    if (equalIgnoringCase(candidate, word)) return i;
  }
}

std::string_view wordAt(const SettingRow& row, int index) {
  std::string_view rest = row.words;
  for (; index > 0 && !rest.empty(); --index) {
    const std::size_t blank = rest.find(' ');
    rest = blank == std::string_view::npos ? std::string_view{} : rest.substr(blank + 1);
  }
  return rest.substr(0, rest.find(' '));
}

void MeterSettings::reset() {
  for (int channel = 1; channel <= kChannels; ++channel) {
    for (const SettingRow& row : kTable) {
      for (int element = 1; element <= 4; ++element) {
        set(row.id, channel, element, row.powerOn[static_cast<std::size_t>(element - 1)]);
      }
    }
  }
  set(kInputConfig, 2, 1, kInputB);
}

double MeterSettings::value(SettingId id, int channel, int element) const {
  return values_[home(id, channel)][slot(id, element)];
}

bool MeterSettings::isOn(SettingId id, int channel, int element) const {
  return value(id, channel, element) != 0;
}

int MeterSettings::whole(SettingId id, int channel, int element) const {
  return static_cast<int>(std::lround(value(id, channel, element)));
}

void MeterSettings::set(SettingId id, int channel, int element, double value) {
  values_[home(id, channel)][slot(id, element)] = value;
}

}  // namespace simmeter
