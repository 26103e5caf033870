// Files of CCDF curves, opened while the acquisition runs and while it does not.
#include <string>

#include "ModelChecks.h"
#include "PlainReading.h"
#include "ccdf/CCDFGraphFile.h"
#include "link/MeterLink.h"

namespace pulsemod::fuzz {
namespace {

constexpr auto path = "curve.txt";

/// The points that a file holds, nothing when it is no whole file of a curve.
std::optional<std::vector<float>> valuesIn(const std::string& text) {
  const std::vector<std::string> lines = linesOf(text);
  const double points = std::nearbyint(numberBehindTab(lineAt(lines, 5)));
  if (libraryNumber(lineAt(lines, 1)) != 2 || !(points >= 1 && points <= 400)) return {};
  for (const std::size_t power : {6U, 7U}) {
    if (power > lines.size() || !singleOf(libraryNumber(lines[power - 1]))) return {};
  }
  return secondNumbers(lines, 8, static_cast<std::size_t>(points));
}

/// True when the second curve is shown afterwards.
bool open(test::FakeWorld& world, CCDFWindow& view, const std::string& text) {
  world.files.contents[path] = text;
  world.fileDialogs.openAnswer = path;
  view.secondCurveShown = false;
  const Trace before = SecondCCDFData;
  const bool faulted = faults(OpenCCDFGraph);
  require(!(faulted && view.secondCurveShown), "a file that is a fault is not shown");
  require(view.secondCurveShown || SecondCCDFData == before,
          "a refused file leaves the second curve");
  requireFinite(SecondCCDFData);
  return view.secondCurveShown;
}

void checkOpened(const std::string& text, bool running, bool takePowers) {
  test::FakeWorld world;
  CCDFWindow view;
  LinkSettings.commsType = 0;
  AcquisitionRunning = running ? True16 : False16;
  CCDF.StartPower = -30;
  CCDF.StopPower = 20;
  SecondCCDFData.fill(7);
  const Trace before = SecondCCDFData;
  world.dialogs.yesNoAnswers = {takePowers};
  const bool shown = open(world, view, text);
  require(world.dialogs.questions.size() <= 1, "one question");
  const bool asked = !world.dialogs.questions.empty();
  const auto values = valuesIn(text);
  require(shown || !values, "a whole file is shown");
  if (shown && (takePowers || !asked)) {
    require(values && std::equal(values->begin(), values->end(), SecondCCDFData.begin()),
            "the points are the file's");
    require(std::equal(before.begin() + static_cast<std::ptrdiff_t>(values->size()), before.end(),
                       SecondCCDFData.begin() + static_cast<std::ptrdiff_t>(values->size())),
            "points beyond the file's stay");
  }
  if (!asked || !takePowers) {
    require(CCDF.StartPower == -30 && CCDF.StopPower == 20, "the axis is taken when agreed");
    require(CCDFPending.PowerRangePending == False16, "nothing is sent without a yes");
  } else {
    require((CCDFPending.PowerRangePending != False16) == running, "the axis waits for the loop");
  }
  require(!asked || takePowers || SecondCCDFData == before, "a no loads no point");
  require(Settings.DisplayPoints == 200, "a file changes no point count");
  requireNoBoxTwice(world);
  checkCCDFModel(world, view);
}

/// What was opened, saved, opened and saved again gives the same bytes.
void checkAgain(const std::string& text) {
  test::FakeWorld world;
  CCDFWindow view;
  LinkSettings.commsType = 0;
  world.dialogs.yesNoAnswers = {true};
  if (!open(world, view, text)) return;
  CCDFData = SecondCCDFData;
  world.fileDialogs.saveAnswer = path;
  if (faults(SaveCCDFGraph)) return;
  const std::string saved = world.files.contents[path];
  world.dialogs.questions.clear();
  require(open(world, view, saved), "what was written can be opened");
  require(world.dialogs.questions.empty(), "the powers are read back as the same singles");
  CCDFData = SecondCCDFData;
  require(ccdfGraphText() == saved, "the second file has the same bytes");
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod::fuzz;
  const std::string text(FuzzInput(data, size).rest());
  checkOpened(text, false, size % 2 == 0);
  checkOpened(text, true, size % 4 < 2);
  checkAgain(text);
  return 0;
}
