// Whatever the meter answers in profile mode, on both links.
#include <string>

#include "FuzzMeter.h"
#include "ModelChecks.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "profile/AcquisitionLoop.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileParameters.h"
#include "profile/ProfileReader.h"
#include "settings/ConfigExchange.h"
#include "startup/FakeStartUpView.h"
#include "startup/MeterModel.h"
#include "startup/ReadMeterConfig.h"
#include "support/FakePropertiesView.h"

namespace pulsemod::fuzz {
namespace {

struct Bench {
  test::FakeWorld world;
  ProfileWindow view;
  test::FakePropertiesView properties;
};

/// Who answers is either a supported meter or the end of the program, with one box.
void startUp(Bench& bench) {
  test::FakeStartUpView view;
  view.answers = {StartChoice::justStart};
  test::storeComms(bench.world, std::to_string(LinkSettings.commsType));
  bool ended = false;
  try {
    require(!faults([&] { StartUp(view); }), "no reply is a fault of the start");
  } catch (const test::ProgramEnded&) {
    ended = true;
  }
  require((MeterModel == 0) == ended, "a meter is supported or the program ends");
  require(bench.world.dialogs.messages.size() == (ended ? 1U : 0U), "an end has its box");
}

/// A profile is taken whole or not at all.
void readProfile() {
  ProfileTrace.fill(-77);
  const Trace before = ProfileTrace;
  const std::int16_t points = Settings.DisplayPoints;
  bool read = false;
  try {
    require(!faults([&] { read = ReadProfile(); }), "no profile is a fault");
  } catch (const test::ProgramEnded&) {
    require(linkIsLost(), "the program ends when a profile stays away over RS232");
  }
  if (read) {
    require(Settings.DisplayPoints >= 1 && Settings.DisplayPoints <= 400, "1 to 400 points");
  } else {
    require(ProfileTrace == before && Settings.DisplayPoints == points,
            "a refused profile changes nothing");
  }
}

void readParameters() {
  for (const ProfileParameter& parameter :
       {captureTimeParameter, triggerDelayParameter, referenceLevelParameter, scaleParameter}) {
    float value = 4711;
    require(QueryParameter(parameter, value) || value == 4711, "a failed query leaves the value");
    require(std::isfinite(value), "a parameter is finite");
    ReadParameter(parameter);
  }
  const std::int16_t points = Settings.DisplayPoints;
  ProfileReadout readout = ProfileReadout::noReply;
  faults([&] { readout = ReadDisplayPoints(); });
  require(readout == ProfileReadout::read || Settings.DisplayPoints == points,
          "what is no profile changes no point count");
}

void readReadouts(Bench& bench) {
  bench.view.infoBoxOpen = bench.view.markersOpen = true;
  GateReadings.fill(-77);
  ReadGateMeasurements(GateMeasurementMode::profile);
  for (std::size_t element = measurementResults(Settings.MeasurementType).size();
       element < GateReadings.size(); ++element) {
    require(GateReadings[element] == -77, "a reply changes its own results alone");
  }
  for (GateSettings& gate : Settings.Gates) gate.Enabled = True16;
  ReadGateMeasurements(GateMeasurementMode::gates);
  UpdateInfoBox();
  for (MarkerSettings& marker : Settings.Markers) marker.Enabled = True16;
  const MarkerSettings delta = Settings.Markers[deltaMarker];
  ReadMarkerReadings();
  UpdateMarkersWindow();
  require(Settings.Markers[deltaMarker].Position == delta.Position, "the delta marker is not read");
}

void readConfig() {
  const bool faulted = faults([] { converse(ReadMeterConfig); });
  // A fault of the last reading or of averaging leaves all that was read before it.
  require(!faulted || !Conversation.open, "a fault ends the conversation");
}

void loadFromMeter(Bench& bench) {
  faults(LoadFromMeter);
  require(ConfigExchangeBusy == False16, "the exchange is over");
  require(bench.properties.timesRefreshed == 1, "the windows show what was read");
}

/// A start and two passes, as the loop runs them.
void acquire(Bench& bench) {
  bench.view.infoBoxOpen = bench.view.markersOpen = true;
  faults(StartAcquisition);
  Settings.Markers[1].Enabled = True16;
  Settings.Gates[0].Enabled = True16;
  for (int pass = 0; pass < 2 && AcquisitionRunning != False16; ++pass) {
    try {
      AcquireProfile();
    } catch (const test::ProgramEnded&) {
      require(linkIsLost(), "the program ends when a profile stays away over RS232");
      AcquisitionRunning = False16;
    }
  }
  AcquisitionRunning = False16;
}

/// What the user types comes from the input as well.
void edit(Bench& bench, FuzzMeter& meter) {
  const auto type = [&] { bench.world.dialogs.textAnswers = {meter.nextText()}; };
  for (const auto routine :
       {EditCaptureTime, EditReferenceLevel, EditTriggerDelay, EditGraphScale, EditRepeatOffset}) {
    type();
    faults(routine);
  }
  type();
  faults([] { EditGateTime(0); });
  type();
  faults([] { EditMarkerPosition(2); });
  faults([&] { EnterRepeatCount(meter.nextText()); });
  require(Settings.RepeatCount >= 1 && Settings.RepeatCount <= 8, "a typed count is 1 to 8");
  // Edits of one kind may ask the same of the user again.
  bench.world.dialogs.messages.clear();
}

void run(unsigned routine, Bench& bench, FuzzMeter& meter) {
  switch (routine) {
    case 0:
      return startUp(bench);
    case 1:
      return readProfile();
    case 2:
      return readParameters();
    case 3:
      return readReadouts(bench);
    case 4:
      return readConfig();
    case 5:
      return loadFromMeter(bench);
    case 6:
      return acquire(bench);
    default:
      return edit(bench, meter);
  }
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod::fuzz;
  FuzzInput input(data, size);
  Bench bench;
  const unsigned routine = chooseLink(bench.world, input.byte());
  FuzzMeter meter(bench.world, input);
  run(routine, bench, meter);
  checkProfileModel(bench.world, bench.view);
  return 0;
}
