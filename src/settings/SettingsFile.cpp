#include "settings/SettingsFile.h"

#include <algorithm>
#include <cstdint>

#include "files/TextFile.h"
#include "link/Fault.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "platform/Services.h"
#include "profile/GraphFault.h"
#include "profile/MeasurementSettings.h"
#include "profile/ParameterEdits.h"
#include "profile/Readouts.h"
#include "settings/ConfigExchange.h"
#include "settings/PropertiesView.h"

namespace pulsemod {

namespace {

constexpr std::string_view endMark = "FILE END";
constexpr std::string_view versionMark = "VERSION";

/// Either writes the fields that it is given, or reads them: the order of the file stands once, in
/// `walkFields`.
class FieldWriter {
 public:
  void single(float value) { number(numberText(value)); }
  template <typename Whole>
  void whole(Whole value) {
    number(std::to_string(value));
  }
  void truth(Boolean16 value) { line(value != False16 ? "True" : "False"); }
  void lastActiveMarker() {
    const auto last =
        std::find_if(Settings.Markers.rbegin() + 1, Settings.Markers.rend(),
                     [](const MarkerSettings& marker) { return marker.IsActive != False16; });
    if (last == Settings.Markers.rend()) {
      line({});
    } else {
      number(std::to_string(Settings.Markers.rend() - last));
    }
  }
  void line(std::string_view value) {
    text_ += value;
    text_ += "\r\n";
  }
  const std::string& text() const { return text_; }

 private:
  void number(const std::string& value) { line((value.front() == '-' ? "" : " ") + value + " "); }

  std::string text_;
};

class FieldReader {
 public:
  explicit FieldReader(std::string_view text) : lines_(text) {}

  void single(float& value) { value = fileSingle(lines_, lines_.next()); }
  template <typename Whole>
  void whole(Whole& value) {
    value = wholeFrom<Whole>(lines_.next());
  }
  void truth(Boolean16& value) {
    const std::string_view text = trimmed(lines_.next());
    if (equalIgnoringCase(text, "True")) {
      value = True16;
    } else if (equalIgnoringCase(text, "False")) {
      value = False16;
    } else if (const auto number = wholeSingle(text)) {
      value = boolean16(*number != 0);
    } else {
      throw Fault("Type mismatch: " + lineName(lines_) + " is neither True nor False");
    }
  }
  void lastActiveMarker() { lines_.next(); }

  void skipToEnd() {
    for (std::string_view line = lines_.next(); line != endMark; line = lines_.next()) {
      if (line.find(versionMark) == std::string_view::npos) continue;
      propertiesView().LoadFileSettings(wholeFrom<std::int16_t>(line));
    }
  }

 private:
  static bool equalIgnoringCase(std::string_view text, std::string_view word) {
    const auto lower = [](char character) {
      return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                  : character;
    };
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [&](char one, char other) { return lower(one) == lower(other); });
  }
  template <typename Whole>
  Whole wholeFrom(std::string_view text) const {
    const auto number = leadingWhole<Whole>(text);
    if (!number) throw Fault("Overflow: the number in " + lineName(lines_) + " does not fit");
    return *number;
  }

  LineReader lines_;
};

template <typename Fields>
void walkFields(Fields& fields) {
  fields.whole(Settings.ActiveGate);
  fields.truth(Settings.RepeatEnabled);
  fields.single(Settings.RepeatOffset);
  fields.whole(Settings.RepeatCount);
  for (std::size_t index = 0; index < meterGates; ++index) {
    GateSettings& gate = Settings.Gates[index];
    fields.truth(gate.Enabled);
    fields.single(gate.StartTime);
    fields.single(gate.StopTime);
    fields.truth(gate.FenceEnabled);
    fields.single(gate.FenceStart);
    fields.single(gate.FenceStop);
  }
  for (std::size_t index = 0; index < deltaMarker; ++index) {
    MarkerSettings& marker = Settings.Markers[index];
    fields.truth(marker.Enabled);
    fields.truth(marker.IsActive);
    fields.single(marker.Position);
  }
  fields.lastActiveMarker();
  fields.truth(Settings.Markers[deltaMarker].Enabled);
  fields.single(Settings.ReferenceLevel);
  fields.single(Settings.ScalePerDivision);
  fields.single(Settings.CaptureTime);
  fields.single(Settings.TriggerDelay);
  for (ChannelSettings& channel : Settings.Channels) {
    fields.whole(channel.InputConfig);
    fields.truth(channel.AveragingOn);
    fields.whole(channel.AveragingCount);
  }
}

/// What follows from the settings and stands in no file.
void deriveOthers() {
  CountParameterEdits();
  // A place that cannot be computed keeps no file from the windows and the meter.
  drawOrReportOnce([] {
    for (std::size_t index = 0; index < deltaMarker; ++index) {
      PositionMarker(Settings.Markers[index]);
    }
  });
}

}  // namespace

std::string settingsText() {
  FieldWriter writer;
  walkFields(writer);
  writer.line(endMark);
  return writer.text();
}

void readSettings(std::string_view text) {
  FieldReader reader(text);
  walkFields(reader);
  reader.skipToEnd();
  ExpandRepeatGates(meterGates + 1);
}

void SaveSettingsFile() {
  const std::string path = services().fileDialogs.askSaveFile("Save Settings");
  if (!path.empty()) writeFile(path, settingsText());
}

void LoadSettingsFile() {
  if (ConfigExchangeBusy != False16) return;
  const std::string path = services().fileDialogs.askOpenFile("Load Settings");
  if (!path.empty()) LoadSettingsFileFrom(path);
}

void LoadSettingsFileFrom(const std::string& path) {
  if (ConfigExchangeBusy != False16) return;
  const std::string text = readTextFile(path);
  try {
    readSettings(text);
  } catch (const Fault&) {
    deriveOthers();
    ShowSettings();
    throw;
  }
  deriveOthers();
  ShowSettings();
  SaveToMeter();
}

}  // namespace pulsemod
