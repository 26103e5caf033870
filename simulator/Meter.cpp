#include "Meter.h"

#include <cmath>
#include <utility>

#include "NumberText.h"
#include "Readouts.h"

namespace simmeter {
namespace {

constexpr std::size_t kMostArguments = 4;

// Where the arguments of a setting stand, after its channel, element and keyword were checked.
struct SettingArguments {
  Refusal refusal = Refusal::kNone;
  std::string_view channelText;
  ChannelArgument channel{1, 1};
  int element = 1;
  std::string_view value;
};

// `1PMOD` for `1,PMOD`: the keyword may follow the channel without a comma in a query.
std::size_t separateKeyword(std::span<std::string_view> parts, std::string_view keyword) {
  std::string_view text = parts[0];
  if (keyword.empty() || text.size() <= keyword.size()) return 1;
  const std::size_t cut = text.size() - keyword.size();
  if (!equalIgnoringCase(text.substr(cut), keyword)) return 1;
  parts[0] = trimBlanks(text.substr(0, cut));
  parts[1] = keyword;
  return 2;
}

SettingArguments readArguments(const SettingRow& row, bool isQuery, std::string_view text) {
  SettingArguments result;
  const auto refuse = [&](Refusal why) {
    result.refusal = why;
    return result;
  };
  std::array<std::string_view, kMostArguments> parts;
  std::size_t count = splitArguments(text, parts);
  if (isQuery && count == 1) count = separateKeyword(parts, row.qualifier);
  const std::size_t expected = (row.perChannel ? 1u : 0u) + (row.elements > 0 ? 1u : 0u) +
                               (row.qualifier.empty() ? 0u : 1u) + (isQuery ? 0u : 1u);
  if (count != expected) return refuse(Refusal::kCommand);
  std::size_t next = 0;
  if (row.perChannel) {
    result.channelText = parts[next];
    result.channel = parseChannel(parts[next++]);
    if (result.channelText.empty()) return refuse(Refusal::kCommand);
    if (result.channel.first == 0) return refuse(Refusal::kExecution);
  }
  if (row.elements > 0) {
    result.element = parseElement(parts[next++], row.elements);
    if (result.element < 0) return refuse(Refusal::kCommand);
    if (result.element == 0) return refuse(Refusal::kExecution);
  }
  if (!row.qualifier.empty() && !equalIgnoringCase(parts[next++], row.qualifier)) {
    return refuse(Refusal::kCommand);
  }
  if (!isQuery) result.value = parts[next];
  if (!isQuery && result.value.empty()) return refuse(Refusal::kCommand);
  return result;
}

struct ParsedValue {
  Refusal refusal = Refusal::kNone;
  double value = 0;
};

// Some words are numbers, and a number has many forms.
int wordOrNumberIndex(const SettingRow& row, std::string_view text) {
  const int index = wordIndex(row, text);
  if (index >= 0) return index;
  const std::optional<double> number = parseDecimal(text);
  if (!number || std::fabs(*number) > 1e6) return -1;
  std::string whole;
  appendInteger(whole, std::llround(*number));
  return wordIndex(row, whole);
}

ParsedValue parseValue(const SettingRow& row, std::string_view text) {
  if (row.kind == ValueKind::kOnOff) {
    if (equalIgnoringCase(text, "ON")) return {Refusal::kNone, 1};
    if (equalIgnoringCase(text, "OFF")) return {Refusal::kNone, 0};
    return {Refusal::kExecution, 0};
  }
  if (row.kind == ValueKind::kWord) {
    const int index = wordOrNumberIndex(row, text);
    if (index < 0) return {Refusal::kExecution, 0};
    return {Refusal::kNone, static_cast<double>(index)};
  }
  const std::optional<double> number = parseDecimal(text);
  if (!number) return {Refusal::kCommand, 0};
  const double value = row.kind == ValueKind::kWhole ? std::round(*number) : *number;
  if (value < row.minimum || value > row.maximum) return {Refusal::kExecution, 0};
  return {Refusal::kNone, value};
}

}  // namespace

ChannelArgument parseChannel(std::string_view text) {
  if (text == "1") return {1, 1};
  if (text == "2") return {2, 2};
  if (text == "1&2") return {1, 2};
  return {};
}

std::size_t splitArguments(std::string_view text, std::span<std::string_view> parts) {
  text = trimBlanks(text);
  if (text.empty()) return 0;
  std::size_t count = 0;
  while (true) {
    const std::size_t comma = text.find(',');
    if (count == parts.size()) return count + 1;
    parts[count++] = trimBlanks(text.substr(0, comma));
    if (comma == std::string_view::npos) return count;
    text.remove_prefix(comma + 1);
  }
}

int parseElement(std::string_view text, int most) {
  const std::optional<double> number = parseDecimal(text);
  if (!number) return -1;
  const double rounded = std::round(*number);
  return rounded >= 1 && rounded <= most ? static_cast<int>(rounded) : 0;
}

Meter::Meter(MeterOptions options) : options_(std::move(options)), noise_(options_.seed) {}

void Meter::reset() {
  settings_.reset();
  for (Channel& each : channels_) {
    each.trace = Trace{};
    each.held = false;
    each.ccdfKnown = false;
    each.ccdf.restart();
  }
}

Refusal Meter::execute(std::string_view unit, std::string& answer, bool& isBlock) {
  unit = trimBlanks(unit);
  const std::size_t end = findBlank(unit);
  std::string_view header = unit.substr(0, end);
  const std::string_view arguments =
      end == std::string_view::npos ? std::string_view{} : unit.substr(end);
  if (const Readout* readout = findReadout(header)) {
    return runReadout(*this, *readout, arguments, answer, isBlock);
  }
  const bool isQuery = !header.empty() && header.back() == '?';
  if (isQuery) header.remove_suffix(1);
  const SettingRow* row = findSetting(header);
  if (row == nullptr) return Refusal::kCommand;
  return executeSetting(*row, isQuery, arguments, answer);
}

Refusal Meter::executeSetting(const SettingRow& row, bool isQuery, std::string_view arguments,
                              std::string& answer) {
  const SettingArguments read = readArguments(row, isQuery, arguments);
  if (read.refusal != Refusal::kNone) return read.refusal;
  if (!isQuery) {
    return writeSetting(row, read.channel.first, read.channel.last, read.element, read.value);
  }
  answer += row.mnemonic;
  answer += ' ';
  if (row.perChannel) {
    answer += read.channelText;
    answer += ',';
  }
  if (row.elements > 0) {
    appendInteger(answer, read.element);
    answer += ',';
  }
  if (!row.qualifier.empty()) {
    answer += row.qualifier;
    answer += ',';
  }
  appendSetting(row, read.channel.first, answer, read.element);
  return Refusal::kNone;
}

Refusal Meter::writeSetting(const SettingRow& row, int first, int last, int element,
                            std::string_view text) {
  const ParsedValue parsed = parseValue(row, text);
  if (parsed.refusal != Refusal::kNone) return parsed.refusal;
  // Every channel is checked before any is changed.
  for (int number = first; number <= last; ++number) {
    if (row.id == SettingId::kSource && !sourceIsThere(static_cast<int>(parsed.value), number)) {
      return Refusal::kExecution;
    }
    if (row.id == SettingId::kCursorPower) {
      const double a = settings_.value(SettingId::kPowerStart, number);
      const double b = settings_.value(SettingId::kPowerStop, number);
      if (parsed.value < std::fmin(a, b) || parsed.value > std::fmax(a, b)) {
        return Refusal::kExecution;
      }
    }
  }
  for (int number = first; number <= last; ++number) {
    settings_.set(row.id, number, element, parsed.value);
    settingChanged(row.id, number);
  }
  return Refusal::kNone;
}

void Meter::appendSetting(const SettingRow& row, int number, std::string& answer,
                          int element) const {
  const double value = settings_.value(row.id, number, element);
  switch (row.kind) {
    case ValueKind::kOnOff:
      answer += value != 0 ? "ON" : "OFF";
      return;
    case ValueKind::kWord:
      answer += wordAt(row, static_cast<int>(value));
      return;
    case ValueKind::kWhole:
      appendInteger(answer, std::llround(value));
      return;
    case ValueKind::kNumber:
      appendNumber(answer, value);
      return;
  }
}

bool Meter::sourceIsThere(int source, int number) const {
  if (source == kSourceGate) {
    const int gate = settings_.whole(SettingId::kActiveGate, number);
    return settings_.isOn(SettingId::kGateOn, number, gate);
  }
  if (source == kSourceMarker) {
    const int marker = settings_.whole(SettingId::kActiveMarker, number);
    return settings_.isOn(SettingId::kMarkerOn, number, marker);
  }
  return true;
}

void Meter::settingChanged(SettingId id, int number) {
  // What the distribution depends on; anything else leaves the statistics alone.
  switch (id) {
    case SettingId::kInputConfig:
    case SettingId::kRepeat:
    case SettingId::kRepeatCount:
    case SettingId::kRepeatOffset:
    case SettingId::kActiveGate:
    case SettingId::kGateStart:
    case SettingId::kGateStop:
    case SettingId::kFenceOn:
    case SettingId::kFenceStart:
    case SettingId::kFenceStop:
    case SettingId::kActiveMarker:
    case SettingId::kMarkerPosition:
    case SettingId::kPowerStart:
    case SettingId::kPowerStop:
    case SettingId::kSource:
      channel(number).ccdfKnown = false;
      break;
    case SettingId::kTracePoints:
      for (Channel& each : channels_) each.ccdfKnown = false;
      break;
    default:
      break;
  }
  if (id == SettingId::kPowerStart || id == SettingId::kPowerStop) {
    // The cursor stays on the axis.
    const double a = settings_.value(SettingId::kPowerStart, number);
    const double b = settings_.value(SettingId::kPowerStop, number);
    const double power = settings_.value(SettingId::kCursorPower, number);
    settings_.set(SettingId::kCursorPower, number, 1,
                  std::fmin(std::fmax(power, std::fmin(a, b)), std::fmax(a, b)));
  }
}

}  // namespace simmeter
