#include "Oracle.h"
#include "OracleText.h"

/// The oracle's CCDF.

namespace pulsemod::test {

void Oracle::configureCcdf() {
  const std::string ch = channel();
  link_.say("PPACQS " + ch + ",ON");
  link_.say("PPFUNC " + ch + ",STATS");
  link_.say("TTFUNC " + ch + ",CCDF");
  selectPulseMode();
  sendParameter(reference_, model.settings.ReferenceLevel);
  sendParameter(scale_, model.settings.ScalePerDivision);
  checkCompleted();
}

void Oracle::readPower(const char* mnemonic, float& power) {
  const auto reply = link_.ask(std::string(mnemonic) + "? " + channel());
  const auto value = reply ? singleOf(argument(*reply, 1)) : std::nullopt;
  if (value) power = *value;
}

void Oracle::tellPower(const char* mnemonic, float& power) {
  link_.say(std::string(mnemonic) + " " + channel() + "," + shortText(power));
  readPower(mnemonic, power);
}

/// A place that the user has chosen and the meter does not know yet stays.
void Oracle::readCursor(const char* query, int powerField, int percentField) {
  if (model.ccdf.CursorOn == False16 && std::string(query) == "TTMKRO") return;
  const auto reply = link_.ask(std::string(query) + " " + channel());
  if (!reply || pending_.position) return;
  const std::string powerText = argument(*reply, powerField);
  const std::string percentText = argument(*reply, percentField);
  const auto power = singleOf(powerText);
  const auto percent = singleOf(percentText);
  if (powerText.empty() || percentText.empty() || !power || !percent) return;
  model.ccdf.CursorPower = *power;
  model.ccdf.CursorPercent = *percent;
}

void Oracle::readSource() {
  if (const auto reply = link_.ask("TTSRC? " + channel())) {
    model.ccdf.MeasurementSource = argument(*reply, 1);
  }
}

void Oracle::readCcdfSettings() {
  const auto curve = link_.ask("TTFRO " + channel());
  if (curve && holds(*curve, "TTFRO") && curve->size() > 8 && holds(curve->substr(8), ",")) {
    const std::string body = curve->substr(8);
    const auto points = wholeOf(body.substr(0, body.find(',')));
    if (points) model.settings.DisplayPoints = *points;
  }
  readPower("TTPSP", model.ccdf.StopPower);
  readPower("TTPST", model.ccdf.StartPower);
  if (const auto reply = link_.ask("TTMKS? " + channel())) {
    const bool on = argument(*reply, 1) == "ON";
    model.ccdf.CursorOn = on ? True16 : False16;
    if (on) {
      readCursor();
      model.ccdf.CursorPercent = 0;
    }
  }
  readSource();
}

bool Oracle::storeCurve(const std::string& reply) {
  if (!holds(reply, "TTFRO") || reply.size() <= 8) return false;
  const std::string body = reply.substr(8);
  const auto comma = body.find(',');
  if (comma == std::string::npos) return false;
  const auto points = wholeOf(body.substr(0, comma));
  if (!points) throw Fault{"Overflow: the point count of the meter's curve does not fit 16 bits"};
  std::vector<float> values;
  std::string field;
  for (std::size_t at = comma + 1; at < body.size(); ++at) {
    if (body[at] != ',' && at + 1 < body.size()) {
      field += body[at];
      continue;
    }
    if (values.size() == 400) {
      throw Fault{"Subscript out of range: the meter's curve has more than 400 values"};
    }
    const auto value = singleOf(field);
    if (!value) throw Fault{"Overflow"};
    values.push_back(*value);
    field.clear();
  }
  model.settings.DisplayPoints = *points;
  for (std::size_t index = 0; index < values.size(); ++index) model.curve[index] = values[index];
  return true;
}

bool Oracle::readCurve() {
  link_.say("PPACQRT " + channel());
  const auto reply = link_.ask("TTFRO " + channel());
  if (!reply) throw Ended{};
  return storeCurve(*reply);
}

bool Oracle::drawCurve() {
  const int points = model.settings.DisplayPoints;
  const bool drawable = points >= 1 && points <= 400;
  if (drawable) ++model.drawings;
  if (!drawable && !graphFaultTold_) {
    box("Subscript out of range: a profile has 1 to 400 points, not " + std::to_string(points));
  }
  graphFaultTold_ = !drawable;
  return drawable;
}

void Oracle::stopCcdfNow() {
  model.menus.emplace_back("stopped");
  model.running = false;
}

void Oracle::stopCcdf() {
  stopCcdfNow();
  talk([this] { carryOutCcdf(); });
}

void Oracle::startCcdf() {
  model.menus.emplace_back("started");
  lossTold_ = false;
  talk([this] {
    link_.clearMeter();
    if (link_.lost()) return stopCcdfNow();
    model.running = true;
  });
}

void Oracle::ccdfPass() {
  try {
    talk([this] {
      readCurve();
      carryOutCcdf();
      if (cursorShown) {
        readCursor();
        showCursor();
      }
      if (!drawCurve() || link_.lost()) stopCcdfNow();
    });
  } catch (const Fault& fault) {
    stopCcdf();
    box(fault.text);
  }
}

void Oracle::changeSource(const std::string& word) {
  const auto tell = [this](const std::string& words) {
    box(words, "Changing Measurement Source", "none");
  };
  const auto present = link_.ask("TTSRC? " + channel());
  if (!present) return;
  if (argument(*present, 1) == word) {
    return tell(word == "CHANNEL" ? "No need to change, the measurement Source is Channel "
                                  : "No need to change, the measurement Source is Gate ");
  }
  link_.say("TTSRC " + channel() + "," + word);
  const auto now = link_.ask("TTSRC? " + channel());
  if (!now) {
    return tell(word == "CHANNEL"
                    ? "Can not change to Channel"
                    : "Can not change measurement source, " + word + " is not active");
  }
  if (argument(*now, 1) != word) {
    return tell("Can not change measurement source, Put current mode limit ");
  }
  model.ccdf.MeasurementSource = word;
  tell("The measurement source is changed");
}

void Oracle::sendCursor() {
  link_.say("TTMKPOS " + channel() + "," + shortText(model.ccdf.CursorPower));
}

void Oracle::carryOutCcdf() {
  const auto take = [](bool& pending) {
    const bool was = pending;
    pending = false;
    return was;
  };
  if (take(pending_.startPower)) tellPower("TTPST", model.ccdf.StartPower);
  if (take(pending_.stopPower)) tellPower("TTPSP", model.ccdf.StopPower);
  if (take(pending_.marker)) changeSource("MARKER");
  if (take(pending_.gate)) changeSource("GATE");
  if (take(pending_.channel)) changeSource("CHANNEL");
  if (take(pending_.cursorOn)) {
    link_.say("TTMKS " + channel() + ",ON");
    readCursor();
    showCursor();
  }
  if (take(pending_.cursorOff)) {
    link_.say("TTMKS " + channel() + ",OFF");
    showCursor();
  }
  if (take(pending_.position)) {
    sendCursor();
    readCursor("TTMKPOS?", 1, 2);
    showCursor();
  }
  if (take(pending_.range)) {
    link_.say("TTPST " + channel() + "," + shortText(model.ccdf.StartPower));
    link_.say("TTPSP " + channel() + "," + shortText(model.ccdf.StopPower));
    readPower("TTPST", model.ccdf.StartPower);
    readPower("TTPSP", model.ccdf.StopPower);
  }
}

void Oracle::editStartPower(float power) {
  model.ccdf.StartPower = power;
  if (model.running) {
    pending_.startPower = true;
  } else {
    talk([this] { tellPower("TTPST", model.ccdf.StartPower); });
  }
}

void Oracle::editStopPower(float power) {
  model.ccdf.StopPower = power;
  if (model.running) {
    pending_.stopPower = true;
  } else {
    talk([this] { tellPower("TTPSP", model.ccdf.StopPower); });
  }
}

void Oracle::replacePowerRange(float start, float stop) {
  model.ccdf.StartPower = start;
  model.ccdf.StopPower = stop;
  if (model.running) {
    pending_.range = true;
    return;
  }
  talk([&] {
    link_.say("TTPST " + channel() + "," + shortText(start));
    link_.say("TTPSP " + channel() + "," + shortText(stop));
  });
}

void Oracle::requestSource(const std::string& word) {
  if (!model.running) {
    talk([&] { changeSource(word); });
    return;
  }
  (word == "GATE" ? pending_.gate : word == "MARKER" ? pending_.marker : pending_.channel) = true;
}

void Oracle::switchCursor(bool on) {
  model.ccdf.CursorOn = on ? True16 : False16;
  if (model.running) {
    (on ? pending_.cursorOn : pending_.cursorOff) = true;
    if (on) pending_.cursorOff = false;
  } else {
    talk([&] {
      link_.say("TTMKS " + channel() + (on ? ",ON" : ",OFF"));
      if (on) readCursor();
    });
  }
  showCursor();
}

void Oracle::editCursor(float power) {
  model.ccdf.CursorPower = power;
  if (model.running) {
    pending_.position = true;
    return;
  }
  talk([this] {
    sendCursor();
    readCursor();
    showCursor();
  });
}

}  // namespace pulsemod::test
