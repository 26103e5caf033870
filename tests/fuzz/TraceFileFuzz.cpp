// Files of profiles, opened while the acquisition runs and while it does not.
#include <string>

#include "ModelChecks.h"
#include "PlainReading.h"
#include "link/MeterLink.h"
#include "tracefiles/ProfileTraceFile.h"

namespace pulsemod::fuzz {
namespace {

constexpr auto path = "profile.txt";

/// What a file holds.
struct PlainProfile {
  explicit PlainProfile(const std::string& text)
      : lines(linesOf(text)),
        points(std::nearbyint(numberBehindTab(lineAt(lines, 4)))),
        captureTime(lines.size() >= 5 ? singleOf(numberBehindTab(lines[4])) : std::nullopt) {
    if (!hasHead()) return;
    values = secondNumbers(lines, 6, static_cast<std::size_t>(points));
  }

  bool hasHead() const { return points >= 1 && points <= 400 && captureTime; }

  std::vector<std::string> lines;
  double points;
  std::optional<float> captureTime;
  std::optional<std::vector<float>> values;
};

/// True when the file became the second profile.
bool open(test::FakeWorld& world, ProfileWindow& view, const std::string& text) {
  world.files.contents[path] = text;
  world.fileDialogs.openAnswer = path;
  SecondProfileTrace.fill(-77);
  view.secondProfileShown = false;
  const Trace before = SecondProfileTrace;
  const std::int16_t points = Settings.DisplayPoints;
  const float captureTime = Settings.CaptureTime;
  const bool faulted = faults(OpenProfileTrace);
  const bool opened = view.secondProfileShown;
  require(!(faulted && opened), "a file that is a fault is not shown");
  require(opened || SecondProfileTrace == before, "a refused file changes no point");
  require(!faulted || (Settings.DisplayPoints == points && Settings.CaptureTime == captureTime),
          "a head that is a fault changes no axis");
  requireFinite(SecondProfileTrace);
  return opened;
}

void checkStopped(const std::string& text) {
  test::FakeWorld world;
  ProfileWindow view;
  LinkSettings.commsType = 0;
  const PlainProfile file(text);
  const bool opened = open(world, view, text);
  require(opened == file.values.has_value(), "a file is opened when it is whole");
  if (file.hasHead()) {
    require(Settings.DisplayPoints == file.points && Settings.CaptureTime == file.captureTime,
            "the axis is the file's");
  } else {
    require(Settings.DisplayPoints == 200, "without a head there is no other axis");
    const bool isNoProfile = file.points <= 0 && file.points >= -2147483648.0;
    require(!isNoProfile || world.dialogs.messages.size() == 1, "what is no profile is told");
  }
  requireNoBoxTwice(world);
  if (!opened) return;
  require(std::equal(file.values->begin(), file.values->end(), SecondProfileTrace.begin()),
          "the points are the file's");
  for (std::size_t point = file.values->size(); point < tracePoints; ++point) {
    require(SecondProfileTrace[point] == -77, "points beyond the file's stay");
  }
  checkProfileModel(world, view);
}

/// What was opened, saved, opened and saved again gives the same bytes.
void checkAgain(const std::string& text) {
  test::FakeWorld world;
  ProfileWindow view;
  LinkSettings.commsType = 0;
  if (!open(world, view, text)) return;
  ProfileTrace = SecondProfileTrace;
  world.fileDialogs.saveAnswer = path;
  if (faults(SaveProfileTrace)) return;
  const std::string saved = world.files.contents[path];
  require(open(world, view, saved), "what was written can be opened");
  ProfileTrace = SecondProfileTrace;
  require(profileTraceText() == saved, "the second file has the same bytes");
}

void checkRunning(const std::string& text, bool takeCaptureTime) {
  test::FakeWorld world;
  ProfileWindow view;
  LinkSettings.commsType = 0;
  AcquisitionRunning = True16;
  world.dialogs.yesNoAnswers = {takeCaptureTime};
  const float captureTime = Settings.CaptureTime;
  const bool opened = open(world, view, text);
  require(Settings.DisplayPoints == 200, "a running acquisition keeps its points");
  require(world.dialogs.questions.size() <= 1, "one question");
  const bool agreed = takeCaptureTime && world.dialogs.questions.size() == 1;
  require(agreed || Settings.CaptureTime == captureTime, "a capture time is taken when agreed");
  require(!opened || SecondProfileTrace[200] == -77, "points beyond the file's stay");
  requireNoBoxTwice(world);
  checkProfileModel(world, view);
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod::fuzz;
  const std::string text(FuzzInput(data, size).rest());
  checkStopped(text);
  checkAgain(text);
  checkRunning(text, size % 2 == 0);
  return 0;
}
