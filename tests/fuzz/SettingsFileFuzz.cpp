// Settings files, and what every window makes of them.
#include <string>
#include <vector>

#include "ModelChecks.h"
#include "PlainReading.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "settings/SettingsFile.h"
#include "support/FakePropertiesView.h"

namespace pulsemod::fuzz {
namespace {

constexpr auto path = "settings.txt";
/// It holds no field but is derived from those of the markers.
constexpr std::size_t lineOfLastActiveMarker = 40;

/// Fields of lines that the file does not have are as they were.
void checkFieldsBeyond(const std::string& before, std::string_view file) {
  const std::vector<std::string> old = linesOf(before);
  const std::vector<std::string> now = linesOf(settingsText());
  require(old.size() == now.size(), "a settings text has as many lines as it has fields");
  for (std::size_t line = linesOf(file).size(); line < now.size(); ++line) {
    require(line == lineOfLastActiveMarker || old[line] == now[line],
            "a line that is not there changes nothing");
  }
}

/// Seven digits of each time and level.
std::vector<std::string> numbersInFile() {
  std::vector<std::string> numbers;
  const auto add = [&numbers](float value) { numbers.push_back(numberText(value)); };
  for (std::size_t index = 0; index < meterGates; ++index) {
    const GateSettings& gate = Settings.Gates[index];
    for (const float time : {gate.StartTime, gate.StopTime, gate.FenceStart, gate.FenceStop}) {
      add(time);
    }
    add(Settings.Markers[index].Position);
  }
  for (const float value :
       {Settings.RepeatOffset, Settings.ReferenceLevel, Settings.ScalePerDivision,
        Settings.CaptureTime, Settings.TriggerDelay}) {
    add(value);
  }
  return numbers;
}

void checkAgain(test::FakeWorld& world) {
  SaveSettingsFile();
  const std::string saved = world.files.contents[path];
  const std::vector<std::string> numbers = numbersInFile();
  InitMeasurementSettings();
  require(!faults([&] { readSettings(saved); }), "what was written can be read");
  require(numbersInFile() == numbers, "and is what it was");
  require(settingsText() == saved, "the second load of what was written changes no byte");
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod;
  using namespace pulsemod::fuzz;
  test::FakeWorld world;
  ProfileWindow view;
  test::FakePropertiesView properties;
  LinkSettings.commsType = 0;
  const std::string_view text = FuzzInput(data, size).rest();
  world.files.contents[path] = std::string(text);
  world.fileDialogs.openAnswer = world.fileDialogs.saveAnswer = path;
  const std::string before = settingsText();
  const bool refused = faults(LoadSettingsFile);
  require(properties.timesRefreshed == 1, "the windows show what was read");
  require(world.progress.texts.empty() == refused, "a refused file is not written to the meter");
  require(world.files.contents.size() == 1, "reading writes no file");
  if (refused) checkFieldsBeyond(before, text);
  checkProfileModel(world, view);
  if (!refused) checkAgain(world);
  return 0;
}
