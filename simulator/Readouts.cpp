#include "Readouts.h"

#include <array>
#include <bit>
#include <cmath>

#include "NumberText.h"

namespace simmeter {

void Meter::beginNoise() {
  if (options_.stillNoise) noise_ = Noise(options_.seed);
}

void Meter::capture(int number) {
  Channel& one = channel(number);
  beginNoise();
  one.sampler.capture(settings_, number, noise_, one.trace);
  one.trace.number = ++traces_;
  if (options_.numberTraces) {
    one.trace.milliDecibels[static_cast<std::size_t>(one.trace.count - 1)] =
        numberedLevel(one.trace.number);
  }
}

bool Meter::traceFits(int number) {
  const Trace& trace = channel(number).trace;
  return trace.count == tracePoints(settings_) &&
         trace.start == settings_.value(SettingId::kTriggerDelay, number) &&
         trace.capture == settings_.value(SettingId::kCaptureTime, number);
}

const Trace& Meter::sentTrace(int number) {
  if (!channel(number).held || !traceFits(number)) capture(number);
  return channel(number).trace;
}

const Trace& Meter::measuredTrace(int number) {
  if (!traceFits(number)) capture(number);
  return channel(number).trace;
}

void Meter::prepareCcdf(int number) {
  Channel& one = channel(number);
  if (one.ccdfKnown) return;
  constexpr int kSteps = 480;  // times at which the level is looked at
  std::vector<double> levels;
  const int config = settings_.whole(SettingId::kInputConfig, number);
  const int source = settings_.whole(SettingId::kSource, number);
  if (source == kSourceMarker) {
    const int marker = settings_.whole(SettingId::kActiveMarker, number);
    levels.push_back(
        channelLevel(config, settings_.value(SettingId::kMarkerPosition, number, marker)));
  } else {
    GateWindow window{0, pulse::kPeriod};
    if (source == kSourceGate) {
      const int gate = settings_.whole(SettingId::kActiveGate, number);
      window = gateWindow(settings_, number, gate).value_or(window);
    }
    for (int i = 0; i < kSteps; ++i) {
      const double time = window.start + (i + 0.5) * (window.stop - window.start) / kSteps;
      if (window.holds(time)) levels.push_back(channelLevel(config, time));
    }
  }
  const PowerAxis axis{settings_.value(SettingId::kPowerStart, number),
                       settings_.value(SettingId::kPowerStop, number), tracePoints(settings_)};
  one.ccdf.expect(options_.envelope, axis, levels);
  one.ccdfKnown = true;
}

void Meter::accumulate(int number) {
  prepareCcdf(number);
  if (!settings_.isOn(SettingId::kStatistics, number)) return;
  beginNoise();
  channel(number).ccdf.addBlock(noise_);
}

// The rows' procedures. A friend of the meter, so that the table can stay a plain table.
struct Readouts {
  static void level(std::string& answer, double value) {
    appendScaled(answer, std::llround(value * 1000), 3);
  }

  static Refusal arm(Meter& meter, int number, int, std::string&) {
    meter.capture(number);
    meter.channel(number).held = true;
    return Refusal::kNone;
  }

  static Refusal freeRun(Meter& meter, int, int, std::string&) {
    for (Meter::Channel& each : meter.channels_) each.held = false;
    return Refusal::kNone;
  }

  static Refusal traceText(Meter& meter, int number, int, std::string& answer) {
    const Trace& trace = meter.sentTrace(number);
    answer += ',';
    appendInteger(answer, trace.count);
    for (std::size_t i = 0; i < static_cast<std::size_t>(trace.count); ++i) {
      answer += ',';
      appendScaled(answer, trace.milliDecibels[i], 3);
    }
    return Refusal::kNone;
  }

  static Refusal traceBlock(Meter& meter, int number, int, std::string& answer) {
    const Trace& trace = meter.sentTrace(number);
    std::string length;
    appendInteger(length, std::int64_t{trace.count} * 4);
    answer += '#';
    appendInteger(answer, static_cast<std::int64_t>(length.size()));
    answer += length;
    for (std::size_t i = 0; i < static_cast<std::size_t>(trace.count); ++i) {
      const auto bits =
          std::bit_cast<std::uint32_t>(static_cast<float>(trace.milliDecibels[i] / 1000.0));
      // The meter's own order: the most significant byte comes second.
      for (const int shift : {16, 24, 8, 0}) answer += static_cast<char>((bits >> shift) & 0xFFu);
    }
    return Refusal::kNone;
  }

  static void results(const Meter& meter, int number, const Results& r, std::string& answer) {
    const auto add = [&](std::string_view name, double value) {
      answer += name;
      level(answer, value);
    };
    add(",AVG,", r.average);
    switch (meter.settings_.whole(SettingId::kMeasurementType, number)) {
      case 2:
        add(",PK,", r.peak);
        break;
      case 3:
        add(",PK,", r.peak);
        add(",CR,", r.crest);
        break;
      case 4:
        add(",MIN,", r.minimum);
        add(",MAX,", r.peak);
        break;
      default:
        break;
    }
  }

  static void type(const Meter& meter, int number, std::string& answer) {
    answer += ',';
    appendInteger(answer, meter.settings_.whole(SettingId::kMeasurementType, number));
  }

  static Refusal profile(Meter& meter, int number, int, std::string& answer) {
    type(meter, number, answer);
    results(meter, number, measure(meter.measuredTrace(number), nullptr), answer);
    return Refusal::kNone;
  }

  static Refusal gate(Meter& meter, int number, int gateNumber, std::string& answer) {
    const auto window = gateWindow(meter.settings_, number, gateNumber);
    if (!window) return Refusal::kExecution;
    type(meter, number, answer);
    answer += ',';
    appendInteger(answer, gateNumber);
    results(meter, number, measure(meter.measuredTrace(number), &*window), answer);
    return Refusal::kNone;
  }

  static Refusal marker(Meter& meter, int number, int markerNumber, std::string& answer) {
    const double time = meter.settings_.value(SettingId::kMarkerPosition, number, markerNumber);
    answer += ',';
    appendInteger(answer, markerNumber);
    answer += ',';
    level(answer, levelAt(meter.measuredTrace(number), time));
    answer += ",DBM,";
    appendNumber(answer, time);
    return Refusal::kNone;
  }

  // PAVG: average power from the active marker to the delta marker; PDIFF: delta over active.
  static Refusal delta(Meter& meter, int number, int, std::string& answer) {
    const MeterSettings& settings = meter.settings_;
    const int active = settings.whole(SettingId::kActiveMarker, number);
    const double from = settings.value(SettingId::kMarkerPosition, number, active);
    const double to = settings.value(SettingId::kDeltaPosition, number);
    const Trace& trace = meter.measuredTrace(number);
    if (settings.whole(SettingId::kDeltaMeasurement, number) == 0) {
      const GateWindow window{std::fmin(from, to), std::fmax(from, to)};
      answer += ",PAVG,";
      level(answer, measure(trace, &window).average);
      answer += ",DBM,";
    } else {
      answer += ",PDIFF,";
      level(answer, levelAt(trace, to) - levelAt(trace, from));
      answer += ",DB,";
    }
    appendNumber(answer, to);
    return Refusal::kNone;
  }

  static Refusal restart(Meter& meter, int number, int, std::string&) {
    meter.channel(number).ccdf.restart();
    return Refusal::kNone;
  }

  static Refusal curve(Meter& meter, int number, int, std::string& answer) {
    meter.accumulate(number);
    const CcdfCounter& ccdf = meter.channel(number).ccdf;
    answer += ',';
    appendInteger(answer, ccdf.axis().points);
    for (int i = 1; i <= ccdf.axis().points; ++i) {
      answer += ',';
      appendScaled(answer, ccdf.tenThousandths(i), 4);
    }
    return Refusal::kNone;
  }

  static void cursorPercent(Meter& meter, int number, std::string& answer) {
    if (!meter.channel(number).ccdfKnown || meter.channel(number).ccdf.total() == 0) {
      meter.accumulate(number);
    }
    const double power = meter.settings_.value(SettingId::kCursorPower, number);
    answer += ',';
    appendScaled(answer, meter.channel(number).ccdf.tenThousandthsAt(power), 4);
  }

  static void cursorPower(const Meter& meter, int number, std::string& answer) {
    answer += ',';
    appendNumber(answer, meter.settings_.value(SettingId::kCursorPower, number));
  }

  static Refusal cursorReading(Meter& meter, int number, int, std::string& answer) {
    cursorPercent(meter, number, answer);
    cursorPower(meter, number, answer);
    return Refusal::kNone;
  }

  static Refusal cursorPosition(Meter& meter, int number, int, std::string& answer) {
    cursorPower(meter, number, answer);
    cursorPercent(meter, number, answer);
    return Refusal::kNone;
  }
};

namespace {

// clang-format off
constexpr std::array kReadouts = {
  // mnemonic, channel, elements, procedure, block, echo, both channels
  Readout{"TR1",      true,  0,              Readouts::arm,            false, true, true},
  Readout{"TR3",      false, 0,              Readouts::freeRun,        false, false, false},
  Readout{"PMPO",     true,  0,              Readouts::traceText,      false, true, false},
  Readout{"PMPBO",    true,  0,              Readouts::traceBlock,     true,  false, false},
  Readout{"PMRDO",    true,  0,              Readouts::profile,        false, true, false},
  Readout{"GPNMO",    true,  kRepeatedGates, Readouts::gate,           false, true, false},
  Readout{"MKNO",     true,  kMarkers,       Readouts::marker,         false, true, false},
  Readout{"MKDO",     true,  0,              Readouts::delta,          false, true, false},
  Readout{"PPACQRT",  true,  0,              Readouts::restart,        false, false, true},
  Readout{"TTFRO",    true,  0,              Readouts::curve,          false, true, false},
  Readout{"TTMKRO",   true,  0,              Readouts::cursorReading,  false, true, false},
  Readout{"TTMKPOS?", true,  0,              Readouts::cursorPosition, false, true, false},
};
// clang-format on

}  // namespace

const Readout* findReadout(std::string_view header) {
  for (const Readout& readout : kReadouts) {
    if (equalIgnoringCase(readout.mnemonic, header)) return &readout;
  }
  return nullptr;
}

Refusal runReadout(Meter& meter, const Readout& readout, std::string_view arguments,
                   std::string& answer, bool& isBlock) {
  std::array<std::string_view, 2> parts;
  const std::size_t expected = (readout.takesChannel ? 1u : 0u) + (readout.elements > 0 ? 1u : 0u);
  if (splitArguments(arguments, parts) != expected) return Refusal::kCommand;
  if (readout.takesChannel && parts[0].empty()) return Refusal::kCommand;
  const ChannelArgument which =
      readout.takesChannel ? parseChannel(parts[0]) : ChannelArgument{1, 1};
  if (which.first == 0) return Refusal::kExecution;
  const int element = readout.elements > 0 ? parseElement(parts[1], readout.elements) : 1;
  if (element < 0) return Refusal::kCommand;
  if (element == 0) return Refusal::kExecution;

  const std::size_t before = answer.size();
  if (readout.echo) {
    std::string_view name = readout.mnemonic;
    if (name.back() == '?') name.remove_suffix(1);
    answer += name;
    answer += ' ';
    answer += parts[0];
  }
  const int last = readout.reachesBoth ? which.last : which.first;
  for (int number = which.first; number <= last; ++number) {
    const Refusal refusal = readout.run(meter, number, element, answer);
    if (refusal != Refusal::kNone) {
      answer.resize(before);
      return refusal;
    }
  }
  isBlock = isBlock || readout.answersBlock;
  return Refusal::kNone;
}

}  // namespace simmeter
