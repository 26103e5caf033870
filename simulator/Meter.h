// The meter itself: settings, captures, statistics, and what each of its own commands does.
// Knows nothing of links, messages or the common commands.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "Ccdf.h"
#include "Measurements.h"
#include "MeterSettings.h"
#include "Signal.h"

namespace simmeter {

// Why a command was not carried out. A refused command changes nothing and answers nothing.
enum class Refusal {
  kNone,
  kCommand,    // unknown mnemonic, wrong number or kind of arguments
  kExecution,  // understood, but out of range or impossible now
  kDevice,     // the meter failed
};

struct MeterOptions {
  std::string identity = "PELMORA,QX7205A,SN001234,V1.05";
  std::uint32_t seed = 1;
  bool stillNoise = false;  // every capture and block of samples begins the noise at the seed anew
  Envelope envelope = Envelope::kGaussian;
  bool numberTraces = false;  // the last point of each trace carries its number
};

// Level in thousandths of a dB that stands for a trace number: -50 dBm and 0.01 dB for each trace,
// starting again after 4000.
constexpr std::int32_t numberedLevel(std::uint32_t number) {
  return -50000 + static_cast<std::int32_t>(number % 4000) * 10;
}

class Meter {
 public:
  explicit Meter(MeterOptions options);

  const std::string& identity() const { return options_.identity; }

  // Power-on settings; nothing captured, free running.
  void reset();

  // Carries out one command or query such as `PMPREF? 1,DB`, and appends what it answers,
  // without any terminator. `isBlock` is set when the answer is binary.
  Refusal execute(std::string_view unit, std::string& answer, bool& isBlock);

 private:
  friend struct Readouts;

  struct Channel {
    Sampler sampler;
    Trace trace;
    bool held = false;  // captured by TR1 and kept until the next TR1 or TR3
    CcdfCounter ccdf;
    bool ccdfKnown = false;  // the distribution fits the settings below
  };

  Refusal executeSetting(const SettingRow& row, bool isQuery, std::string_view arguments,
                         std::string& answer);
  Refusal writeSetting(const SettingRow& row, int first, int last, int element,
                       std::string_view text);
  void appendSetting(const SettingRow& row, int channel, std::string& answer, int element) const;
  bool sourceIsThere(int source, int channel) const;
  void settingChanged(SettingId id, int channel);

  Channel& channel(int number) { return channels_[static_cast<std::size_t>(number - 1)]; }
  void beginNoise();
  void capture(int number);
  bool traceFits(int number);
  const Trace& sentTrace(int number);      // captures unless one is held
  const Trace& measuredTrace(int number);  // the trace last sent
  void prepareCcdf(int number);
  void accumulate(int number);

  MeterOptions options_;
  MeterSettings settings_;
  Noise noise_;
  std::uint32_t traces_ = 0;
  std::array<Channel, kChannels> channels_;
};

// Helpers shared by the settings and the readouts.
struct ChannelArgument {
  int first = 0;  // 0: not a channel
  int last = 0;
};
ChannelArgument parseChannel(std::string_view text);

// Splits at commas and trims each part. At most `parts.size()` parts; the count, or one more than
// the room when there are too many. No arguments at all are zero parts.
std::size_t splitArguments(std::string_view text, std::span<std::string_view> parts);

// A gate or marker number; 0 when it is a number outside 1..most, -1 when it is no number.
int parseElement(std::string_view text, int most);

}  // namespace simmeter
