#include "Oracle.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "OracleText.h"

namespace pulsemod::test {

namespace {

Boolean16 truth(bool value) { return value ? True16 : False16; }
std::string onOff(Boolean16 value) { return value == False16 ? "OFF" : "ON"; }
std::string text(int number) { return std::to_string(number); }

}  // namespace

std::string Oracle::channel() const {
  return model.settings.ActiveChannel == 3 ? "1&2" : text(model.settings.ActiveChannel);
}

void Oracle::box(const std::string& words, const std::string& title, const std::string& icon,
                 const std::string& details) {
  model.boxes.push_back(title + "|" + words + "|" + icon + "|" + details);
}

void Oracle::endOfTalk() {
  if (!link_.lost() || lossTold_) return;
  lossTold_ = true;
  box(link_.failureReason());
}

// Start.

void Oracle::identify() {
  link_.askCompletion("*CLS; *ESE 56");
  const auto identity = link_.ask("*IDN?");
  if (!identity) {
    box("Could not read Power Meter Identity\r\n\r\nProgram will exit.", "*IDN? Failure",
        "exclamation", link_.failureReason());
    throw Ended{};
  }
  const std::pair<const char*, int> models[] = {
      {"QX7104", 2}, {"QX7105", 1}, {"QX7204", 3}, {"QX7205", 4}, {"QX7205A", 5}};
  for (const auto& [name, code] : models) {
    if (holds(*identity, name)) model.meterModel = code;
  }
  if (model.meterModel != 0) return;
  box("Pelmora.2 - PulseMod will only work with QX7104A, QX7105A, QX7204,QX7205 or QX7205A "
      "power meters",
      "Program Exit", "information");
  throw Ended{};
}

/// 'l' reads the configuration, 'w' writes it, 'c' enters the CCDF.
void Oracle::start(char course) {
  talk([this] {
    link_.open();
    identify();
  });
  try {
    talk([this, course] {
      if (course == 'l') readConfiguration();
      if (course == 'w') writeConfiguration();
      if (course == 'c') {
        configureCcdf();
        readCcdfSettings();
      }
    });
  } catch (const Fault& fault) {
    box(fault.text);
  }
  if (course == 'c') showCursor();
}

void Oracle::stopStatistics() {
  const auto reply = link_.ask("PPACQS? " + channel());
  if (reply && argument(*reply, 1) == "ON") link_.say("PPACQS " + channel() + ",OFF");
}

// Reading the configuration.

void Oracle::single(const std::string& query, int index, float& value) {
  const auto reply = link_.ask(query);
  const auto number = reply ? singleOf(argument(*reply, index)) : std::nullopt;
  if (number) value = *number;
}

void Oracle::whole(const std::string& query, int index, std::int16_t& value) {
  const auto reply = link_.ask(query);
  const auto number = reply ? wholeOf(argument(*reply, index)) : std::nullopt;
  if (number) value = *number;
}

void Oracle::readChannel() {
  const auto reply = link_.ask("CHACTIV?");
  if (!reply) return;
  const std::string all = stripped(*reply);
  const bool digit = !all.empty() && all.back() >= '0' && all.back() <= '9';
  model.settings.ActiveChannel = static_cast<std::int16_t>(digit ? all.back() - '0' : 0);
}

void Oracle::readRepeat() {
  MeasurementSettings& s = model.settings;
  if (const auto reply = link_.ask("GP1REPS? " + channel())) {
    s.RepeatEnabled = truth(argument(*reply, 1) == "ON");
  }
  single("GP1REPT? " + channel(), 1, s.RepeatOffset);
  whole("GP1REPN? " + channel(), 1, s.RepeatCount);
}

void Oracle::readGate(int number) {
  GateSettings& gate = model.settings.Gates[static_cast<std::size_t>(number - 1)];
  const std::string which = "? " + channel() + ", " + text(number);
  const auto state = [&](const char* mnemonic, Boolean16& on) {
    if (const auto reply = link_.ask(mnemonic + which)) on = truth(!holds(*reply, "OFF"));
  };
  const auto time = [&](const char* mnemonic, float& seconds) {
    const auto reply = link_.ask(mnemonic + which);
    if (!reply) return;
    const auto value = singleOf(reply->size() > 12 ? reply->substr(12) : "");
    if (value) seconds = *value;
  };
  state("GPGATS", gate.Enabled);
  time("GPTIMST", gate.StartTime);
  time("GPTIMSP", gate.StopTime);
  state("GPFENS", gate.FenceEnabled);
  time("GPFENST", gate.FenceStart);
  time("GPFENSP", gate.FenceStop);
}

void Oracle::expandRepeat() {
  MeasurementSettings& s = model.settings;
  if (s.RepeatEnabled == False16) return;
  s.Gates[0].Enabled = True16;
  const auto later = [&s](float time) {
    return static_cast<float>(numberOf(shortText(time)) + numberOf(shortText(s.RepeatOffset)));
  };
  for (int number = 2; number <= std::min<int>(s.RepeatCount, 8); ++number) {
    const GateSettings& before = s.Gates[static_cast<std::size_t>(number - 2)];
    GateSettings& gate = s.Gates[static_cast<std::size_t>(number - 1)];
    gate.Enabled = True16;
    gate.FenceEnabled = before.FenceEnabled;
    gate.StartTime = later(before.StartTime);
    gate.StopTime = later(before.StopTime);
    gate.FenceStart = later(before.FenceStart);
    gate.FenceStop = later(before.FenceStop);
  }
}

void Oracle::readMarkers() {
  MeasurementSettings& s = model.settings;
  for (int number = 1; number <= 4; ++number) {
    MarkerSettings& marker = s.Markers[static_cast<std::size_t>(number - 1)];
    const std::string which = channel() + "," + text(number);
    if (const auto reply = link_.ask("MKSTATE? " + which)) {
      marker.Enabled = truth(argument(*reply, 2) != "OFF");
      marker.IsActive = False16;
    }
    single("MKPOS? " + which, 2, marker.Position);
  }
  if (const auto reply = link_.ask("MKACTN? " + channel())) {
    const int active = wholeOf(argument(*reply, 1)).value_or(0);
    if (active >= 1 && active <= 5) {
      s.Markers[static_cast<std::size_t>(active - 1)].IsActive = True16;
    }
  }
  if (const auto reply = link_.ask("MKDELTS? " + channel())) {
    s.Markers[4].Enabled = truth(argument(*reply, 1) != "OFF");
  }
}

ChannelSettings& Oracle::activeChannel() {
  const int active = model.settings.ActiveChannel;
  if (active != 1 && active != 2) {
    throw Fault{"This setting belongs to one channel, but channel " + channel() + " is selected"};
  }
  return model.settings.Channels[static_cast<std::size_t>(active - 1)];
}

void Oracle::readAveraging() {
  if (const auto reply = link_.ask("PMAVGS? " + channel())) {
    activeChannel().AveragingOn = truth(argument(*reply, 1) == "ON");
  }
  if (const auto reply = link_.ask("PMAVGN? " + channel())) {
    const auto count = wholeOf(argument(*reply, 1));
    if (count) activeChannel().AveragingCount = *count;
  }
}

Oracle::Readout Oracle::readPoints() {
  const auto reply = link_.ask("PMPO " + channel());
  if (!reply) return Readout::none;
  if (!holds(*reply, "PMPO")) return Readout::notAProfile;
  const std::string rest = reply->size() > 7 ? reply->substr(7) : "";
  if (!holds(rest, ",")) throw Fault{"The meter's profile readout has no point count"};
  const auto points = wholeOf(rest.substr(0, rest.find(',')));
  if (points) model.settings.DisplayPoints = *points;
  return Readout::read;
}

void Oracle::readConfiguration() {
  MeasurementSettings& s = model.settings;
  stopStatistics();
  readChannel();
  link_.say("CHDISPN 1");
  link_.say("CHMODE " + channel() + ",PMOD");
  link_.say("PMDTYP " + channel() + ",PRF");
  whole("GPACTN? " + channel(), 1, s.ActiveGate);
  readRepeat();
  for (int gate = 1; gate <= 4; ++gate) readGate(gate);
  expandRepeat();
  readMarkers();
  single("PMPREF? " + channel() + ",DB", 2, s.ReferenceLevel);
  single("PMPSCAL? " + channel() + ",DB", 2, s.ScalePerDivision);
  single("TRCAPT? " + channel() + ",PMOD", 2, s.CaptureTime);
  single("TRDLYT? " + channel() + ",PMOD", 2, s.TriggerDelay);
  readAveraging();
  model.progressShown = readPoints() == Readout::notAProfile;
}

// Writing it.

void Oracle::selectPulseMode() {
  static constexpr const char* inputs[] = {"A", "B", "A-B", "B-A", "A/B", "B/A"};
  const std::string ch = channel();
  link_.say("CHDISPN 1");
  link_.say("CHACTIV " + ch);
  link_.say("CHMODE " + ch + ", PMOD");
  const bool one = ch == "1" || ch == "2";
  link_.say("CHCFG " + ch + ", " + (one ? inputs[activeChannel().InputConfig] : ""));
}

void Oracle::sendParameter(const Parameter& parameter, float value) {
  link_.say(std::string(parameter.mnemonic) + " " + channel() + "," + parameter.unit + "," +
            shortText(value));
}

void Oracle::writeGate(int number) {
  const GateSettings& gate = model.settings.Gates[static_cast<std::size_t>(number - 1)];
  const std::string which = " " + channel() + ", " + text(number) + ", ";
  const std::pair<const char*, float> times[] = {{"GPTIMST", gate.StartTime},
                                                 {"GPTIMSP", gate.StopTime},
                                                 {"GPFENST", gate.FenceStart},
                                                 {"GPFENSP", gate.FenceStop}};
  for (const auto& [mnemonic, time] : times) {
    link_.say("GPGATS" + which + onOff(gate.Enabled));
    link_.say("GPFENS" + which + onOff(gate.FenceEnabled));
    link_.say(mnemonic + which + shortText(time));
  }
}

void Oracle::checkCompleted() {
  const auto reply = link_.ask("*OPC?");
  if (reply && numberOf(*reply) != 1) box("Invalid response from Power Meter");
}

void Oracle::writeConfiguration() {
  const MeasurementSettings& s = model.settings;
  stopStatistics();
  model.progressShown = false;
  selectPulseMode();
  for (const Parameter* parameter : {&capture_, &delay_, &reference_, &scale_}) {
    sendParameter(*parameter, s.*parameter->value);
  }
  const std::string ch = channel();
  link_.say("PMAVGS " + ch + "," + onOff(activeChannel().AveragingOn));
  link_.say("GP1REPS " + ch + "," + onOff(s.RepeatEnabled));
  link_.say("GP1REPN " + ch + ", " + text(s.RepeatCount));
  link_.say("GP1REPT " + ch + ", " + shortText(s.RepeatOffset));
  link_.say("GPACTN " + ch + "," + text(s.ActiveGate));
  for (int gate = 1; gate <= 4; ++gate) writeGate(gate);
  for (int number = 1; number <= 4; ++number) {
    const MarkerSettings& marker = s.Markers[static_cast<std::size_t>(number - 1)];
    if (marker.IsActive != False16) link_.say("MKACTN " + ch + ", " + text(number));
    link_.say("MKSTATE " + ch + "," + text(number) + "," + onOff(marker.Enabled));
    link_.say("MKPOS " + ch + "," + text(number) + "," + shortText(marker.Position));
  }
  link_.say("MKDELTS " + ch + "," + onOff(s.Markers[4].Enabled));
  link_.say("MKDPOS " + ch + "," + shortText(s.Markers[4].Position));
  checkCompleted();
}

// The profile.

std::optional<std::string> Oracle::graphFault(bool labels) const {
  const MeasurementSettings& s = model.settings;
  const auto scaleLength = 10.0 * static_cast<double>(s.ScalePerDivision);
  if (s.CaptureTime == 0) return "Division by zero: the capture time is 0";
  if (s.DisplayPoints <= 0) return "The graph has no points to draw";
  const double reference = s.ReferenceLevel;
  if (reference - scaleLength - reference == 0) {
    return "Division by zero: the graph's scale is 0 dB";
  }
  static_cast<void>(labels);
  if (s.DisplayPoints > 400) {
    return "Subscript out of range: a profile has 1 to 400 points, not " + text(s.DisplayPoints);
  }
  return std::nullopt;
}

/// Told once until the graph can be drawn again.
bool Oracle::drawProfile(bool labels) {
  const auto fault = graphFault(labels);
  if (!fault) ++model.drawings;
  if (fault && !graphFaultTold_) box(*fault);
  graphFaultTold_ = fault.has_value();
  return !fault;
}

void Oracle::stopNow() {
  model.menus.emplace_back("stopped");
  model.running = false;
}

void Oracle::stop() {
  stopNow();
  talk([this] { carryOutPending(); });
}

void Oracle::readBackAtStart() {
  MeasurementSettings& s = model.settings;
  if (readPoints() == Readout::notAProfile) return;
  single("TRCAPT? " + channel() + ",PMOD", 2, s.CaptureTime);
  single("PMPREF? " + channel() + ",DB", 2, s.ReferenceLevel);
  single("PMPSCAL? " + channel() + ",DB", 2, s.ScalePerDivision);
  single("TRCAPT? " + channel() + ",PMOD", 2, s.CaptureTime);
  single("TRDLYT? " + channel() + ",PMOD", 2, s.TriggerDelay);
}

void Oracle::startAcquisition() {
  model.menus.emplace_back("started");
  lossTold_ = false;
  try {
    talk([this] {
      link_.clearMeter();
      readBackAtStart();
      if (link_.lost()) return stopNow();
      drawProfile(true);
      model.running = true;
    });
  } catch (const Fault& fault) {
    stopNow();
    box(fault.text);
  }
}

bool Oracle::storeText(const std::string& reply) {
  if (!holds(reply, "PMPO") || reply.size() <= 7) return false;
  const std::string body = reply.substr(7);
  const auto comma = body.find(',');
  if (comma == std::string::npos) return false;
  const auto points = wholeOf(body.substr(0, comma));
  if (!points || *points < 1 || *points > 400) return false;
  std::vector<float> values;
  std::string field;
  for (std::size_t at = comma + 1; at < body.size(); ++at) {
    if (body[at] != ',' && at + 1 < body.size()) {
      field += body[at];
      continue;
    }
    const auto value = singleOf(field);
    if (!value || values.size() == 400) return false;
    values.push_back(*value);
    field.clear();
  }
  model.settings.DisplayPoints = *points;
  std::copy(values.begin(), values.end(), model.profile.begin());
  return true;
}

bool Oracle::storeBlock(const std::string& reply) {
  const auto hash = reply.find('#');
  if (reply.size() < 100 || hash == std::string::npos || hash + 1 == reply.size()) return false;
  const int digits = reply[hash + 1] - '0';
  if (digits < 1 || digits > 9) return false;
  std::size_t bytes = 0;
  std::size_t at = hash + 2;
  for (int digit = 0; digit < digits; ++digit, ++at) {
    if (at >= reply.size() || reply[at] < '0' || reply[at] > '9') return false;
    bytes = bytes * 10 + static_cast<std::size_t>(reply[at] - '0');
  }
  if (bytes == 0 || bytes % 4 != 0 || bytes > 1600) return false;
  if (at + bytes > reply.size()) return false;
  const std::string rest = reply.substr(at + bytes);
  if (!rest.empty() && rest != "\r" && rest != "\n") return false;
  // The data counts from the reply's start, wherever the "#" stands.
  const auto data = static_cast<std::size_t>(2 + digits);
  Trace values{};
  for (std::size_t i = 0; i < bytes; i += 4) {
    const char little[] = {reply[data + i + 3], reply[data + i + 2], reply[data + i],
                           reply[data + i + 1]};
    float value = 0;
    std::memcpy(&value, little, sizeof value);
    if (!std::isfinite(value)) return false;
    values[i / 4] = value;
  }
  std::copy_n(values.begin(), bytes / 4, model.profile.begin());
  return true;
}

bool Oracle::readProfile() {
  if (!link_.ask("TR1 " + channel())) return false;
  const bool serial = link_.isSerial();
  const auto reply = link_.ask((serial ? "PMPO " : "PMPBO ") + channel());
  if (!reply && serial) throw Ended{};
  if (!reply) return false;
  return serial ? storeText(*reply) : storeBlock(*reply);
}

void Oracle::storeResults(const std::string& reply, int first, std::size_t group) {
  static constexpr int counts[] = {0, 1, 2, 3, 3};
  const std::string typeText = argument(reply, 1);
  if (typeText.empty()) return;
  const int type = wholeOf(typeText).value_or(0);
  const int count = type >= 1 && type <= 4 ? counts[type] : 0;
  std::vector<float> values;
  for (int result = 0; result < count; ++result) {
    const std::string field = argument(reply, first + 2 * result);
    const auto value = singleOf(field);
    if (field.empty() || !value) return;
    values.push_back(*value);
  }
  model.settings.MeasurementType = type;
  std::copy(values.begin(), values.end(),
            model.readings.begin() + static_cast<std::ptrdiff_t>(3 * group));
}

void Oracle::readResults() {
  const auto& gates = model.settings.Gates;
  const auto on = [](const GateSettings& gate) { return gate.Enabled != False16; };
  if (std::none_of(gates.begin(), gates.end(), on)) {
    if (const auto reply = link_.ask("PMRDO " + channel())) storeResults(*reply, 3, 0);
    return;
  }
  for (std::size_t gate = 1; gate <= 8; ++gate) {
    if (!on(gates[gate - 1])) continue;
    const auto reply = link_.ask("GPNMO " + channel() + "," + std::to_string(gate));
    if (reply) storeResults(*reply, 4, gate);
  }
}

void Oracle::readMarkerReadings() {
  for (std::size_t index = 0; index < 4; ++index) {
    MarkerSettings& marker = model.settings.Markers[index];
    if (marker.Enabled == False16) continue;
    const auto reply = link_.ask("MKNO " + channel() + "," + std::to_string(index + 1));
    if (!reply || argument(*reply, 4).empty()) continue;
    const auto reading = singleOf(argument(*reply, 2));
    const auto position = singleOf(argument(*reply, 4));
    if (!reading || !position) continue;
    marker.Reading = *reading;
    marker.Position = *position;
  }
}

void Oracle::pass() {
  talk([this] {
    const bool read = readProfile();
    carryOutPending();
    if (read) {
      if (infoBoxOpen) readResults();
      readMarkerReadings();
      if (!drawProfile(false)) stopNow();
    }
    if (link_.lost()) stopNow();
  });
}

// Edits.

void Oracle::edit(Parameter& parameter, float value) {
  model.settings.*parameter.value = value;
  if (model.running) {
    parameter.pending = true;
    return;
  }
  talk([&] {
    sendParameter(parameter, value);
    const auto reply =
        link_.ask(std::string(parameter.mnemonic) + "? " + channel() + parameter.queryAtOnce);
    if (!reply) return;
    const std::string field = argument(*reply, 2);
    const auto accepted = parameter.anyText ? singleOf(field) : strictSingleOf(field);
    if (!accepted) return;
    model.settings.*parameter.value = *accepted;
    drawProfile(true);
  });
}

void Oracle::carryOut(Parameter& parameter) {
  if (!parameter.pending) return;
  parameter.pending = false;
  if (&parameter == &scale_) drawProfile(true);
  float& value = model.settings.*parameter.value;
  sendParameter(parameter, value);
  const auto reply =
      link_.ask(std::string(parameter.mnemonic) + "? " + channel() + "," + parameter.unit);
  const auto accepted = reply ? singleOf(argument(*reply, 2)) : std::nullopt;
  if (!accepted) return;
  value = *accepted;
  drawProfile(true);
}

void Oracle::carryOutPending() {
  for (Parameter* parameter : {&capture_, &reference_, &delay_, &scale_}) carryOut(*parameter);
}

void Oracle::command(const std::string& words) {
  talk([&] { link_.say(words); });
}

// The properties dialog.

void Oracle::load() {
  const auto show = [this] {
    MeasurementSettings& s = model.settings;
    for (std::size_t gate = 5; gate <= 8; ++gate) {
      const bool follows = s.RepeatEnabled != False16 &&
                           gate <= static_cast<std::size_t>(std::max<int>(s.RepeatCount, 0));
      if (!follows) s.Gates[gate - 1].Enabled = False16;
    }
    drawProfile(true);
  };
  try {
    talk([&] {
      try {
        readConfiguration();
      } catch (const Fault&) {
        show();
        throw;
      }
      show();
    });
  } catch (const Fault& fault) {
    box(fault.text);
  }
}

void Oracle::save() {
  try {
    talk([this] { writeConfiguration(); });
  } catch (const Fault& fault) {
    box(fault.text);
  }
}

void Oracle::editMarker(int number, float seconds) {
  MarkerSettings& marker = model.settings.Markers[static_cast<std::size_t>(number - 1)];
  marker.Position = seconds;
  drawProfile(true);
  talk([&] {
    if (number == 5) {
      link_.say("MKDPOS " + channel() + "," + shortText(seconds));
      link_.ask("MKDO " + channel());
      return;
    }
    const std::string which = channel() + "," + text(number);
    link_.say("MKPOS " + which + "," + shortText(seconds));
    const auto reply = link_.ask("MKNO " + which);
    if (!reply || argument(*reply, 2).empty()) return;
    const auto reading = singleOf(argument(*reply, 2));
    if (!reading) return;
    marker.Reading = *reading;
    drawProfile(true);
  });
}

}  // namespace pulsemod::test
