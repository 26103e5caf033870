#include "Workflows.h"

#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFLoop.h"
#include "ccdf/MeasurementSource.h"
#include "ccdf/PowerAxis.h"
#include "profile/AcquisitionLoop.h"
#include "profile/ParameterEdits.h"
#include "settings/ConfigExchange.h"
#include "settings/PropertyEdits.h"

namespace pulsemod::test {

namespace {

using Setup = std::vector<std::string>;

/// A pass of a loop; while the acquisition is stopped it would only wait for the user.
void passIfRunning(void (*pass)()) {
  if (AcquisitionRunning != False16) pass();
}
void passIfRunning(Oracle& oracle, void (Oracle::*pass)()) {
  if (oracle.model.running) (oracle.*pass)();
}

// What the program has by default, and what it has been told, on either side.

void prepareOracle(Oracle& oracle) {
  oracle.model.settings.Channels[0].AveragingCount = 1;
  oracle.model.settings.Markers[0].IsActive = True16;
  constexpr float positions[] = {0.0001F, 0.0002F, 0.0003F, 0.0004F, 0.0005F};
  for (std::size_t index = 0; index < markerCount; ++index) {
    oracle.model.settings.Markers[index].Position = positions[index];
  }
}

void switchOn(MeasurementSettings& settings, const std::vector<std::size_t>& gates,
              const std::vector<std::size_t>& markers) {
  for (const std::size_t gate : gates) settings.Gates[gate - 1].Enabled = True16;
  for (const std::size_t marker : markers) settings.Markers[marker - 1].Enabled = True16;
}

Workflow startUp(const char* name, const Setup& setup, StartChoice choice, char course) {
  return {name, setup, [choice](Rig& rig) { rig.start(choice); },
          [course](Oracle& oracle) {
            prepareOracle(oracle);
            oracle.start(course);
          }};
}

/// Two passes with everything that a pass can read.
Workflow profileWithReadouts() {
  return {"Profile",
          {"SYDRES 200", "GPGATS 1,1,ON", "GPGATS 1,2,ON", "PMMEAS 1,3"},
          [](Rig& rig) {
            rig.connect();
            rig.profile.infoBoxOpen = true;
            rig.profile.markersOpen = true;
            switchOn(Settings, {1, 2}, {1, 3});
            Rig::act(StartAcquisition);
            for (int pass = 0; pass < 2; ++pass) passIfRunning(AcquireProfile);
            Rig::act(StopAcquisition);
          },
          [](Oracle& oracle) {
            prepareOracle(oracle);
            oracle.infoBoxOpen = true;
            switchOn(oracle.model.settings, {1, 2}, {1, 3});
            oracle.startAcquisition();
            for (int pass = 0; pass < 2; ++pass) passIfRunning(oracle, &Oracle::pass);
            oracle.stop();
          }};
}

/// The four parameters, edited while profiles are read and while none is; no gate is on.
Workflow parameterEdits() {
  return {"Edits",
          {"SYDRES 200", "PMMEAS 1,2"},
          [](Rig& rig) {
            rig.connect();
            rig.profile.infoBoxOpen = true;
            Rig::act(StartAcquisition);
            rig.type("3ms", EditCaptureTime);
            rig.type("5", EditReferenceLevel);
            rig.type("0.1ms", EditTriggerDelay);
            rig.type("8", EditGraphScale);
            passIfRunning(AcquireProfile);
            Rig::act(StopAcquisition);
            Rig::act(SetTriggerFreeRun);
            rig.type("4ms", EditCaptureTime);
            rig.type("7", EditReferenceLevel);
            rig.type("0.2ms", EditTriggerDelay);
            rig.type("9", EditGraphScale);
          },
          [](Oracle& oracle) {
            prepareOracle(oracle);
            oracle.infoBoxOpen = true;
            oracle.startAcquisition();
            oracle.editCaptureTime(0.003F);
            oracle.editReference(5);
            oracle.editDelay(0.0001F);
            oracle.editScale(8);
            passIfRunning(oracle, &Oracle::pass);
            oracle.stop();
            oracle.command("TR3");
            oracle.editCaptureTime(0.004F);
            oracle.editReference(7);
            oracle.editDelay(0.0002F);
            oracle.editScale(9);
          }};
}

/// The properties dialog: everything from the meter, two markers moved, everything to the meter.
Workflow propertiesDialog() {
  return {"Properties",
          {"SYDRES 200", "PMAVGS 1,ON", "GP1REPS 1,ON", "GP1REPN 1,6", "MKDELTS 1,ON"},
          [](Rig& rig) {
            rig.connect();
            Rig::act(LoadFromMeter);
            rig.type("0.2ms", [] { EditMarkerPosition(1); });
            rig.type("0.3ms", [] { EditMarkerPosition(5); });
            Rig::act(SaveToMeter);
          },
          [](Oracle& oracle) {
            prepareOracle(oracle);
            oracle.load();
            oracle.editMarker(1, 0.0002F);
            oracle.editMarker(5, 0.0003F);
            oracle.save();
          }};
}

void placeOnAxis(MeasurementSettings& settings, CCDFSettings& ccdf) {
  settings.DisplayPoints = 200;
  ccdf.StartPower = -30;
  ccdf.StopPower = 20;
  ccdf.CursorPower = 5;
}

/// A curve with every request that a loop can carry out, then the same without the loop.
Workflow curves() {
  return {"Curves",
          {"SYDRES 200", "PPACQS 1,ON", "PPFUNC 1,STATS"},
          [](Rig& rig) {
            rig.connect();
            placeOnAxis(Settings, CCDF);
            Rig::act(StartCCDF);
            rig.type("-40", EditStartPower);
            rig.type("10", EditStopPower);
            Rig::act([] { RequestMeasurementSource(CCDFSource::gate); });
            Rig::act([] { RequestMeasurementSource(CCDFSource::channel); });
            Rig::act(SwitchCursorOn);
            rig.type("-10", EditCursorPosition);
            Rig::act([] { ReplacePowerRange(-35, 15); });
            passIfRunning(AcquireCCDF);
            Rig::act(StopCCDF);
            rig.type("-20", EditStartPower);
            rig.type("12", EditStopPower);
            Rig::act([] { RequestMeasurementSource(CCDFSource::marker); });
            rig.type("-5", EditCursorPosition);
            Rig::act(SwitchCursorOff);
          },
          [](Oracle& oracle) {
            prepareOracle(oracle);
            placeOnAxis(oracle.model.settings, oracle.model.ccdf);
            oracle.startCcdf();
            oracle.editStartPower(-40);
            oracle.editStopPower(10);
            oracle.requestSource("GATE");
            oracle.requestSource("CHANNEL");
            oracle.switchCursor(true);
            oracle.editCursor(-10);
            oracle.replacePowerRange(-35, 15);
            passIfRunning(oracle, &Oracle::ccdfPass);
            oracle.stopCcdf();
            oracle.editStartPower(-20);
            oracle.editStopPower(12);
            oracle.requestSource("MARKER");
            oracle.editCursor(-5);
            oracle.switchCursor(false);
          }};
}

}  // namespace

const std::vector<Workflow>& workflows() {
  static const std::vector<Workflow> all = {
      startUp(
          "Load",
          {"SYDRES 200", "PPACQS 1,ON", "PMAVGS 1,ON", "GP1REPS 1,ON", "GP1REPN 1,3", "MKACTN 1,3"},
          StartChoice::loadFromMeter, 'l'),
      startUp("Configure", {"PPACQS 1,ON"}, StartChoice::configureMeter, 'w'),
      startUp("CCDF", {"SYDRES 200", "TTMKS 1,ON"}, StartChoice::ccdfMode, 'c'),
      profileWithReadouts(),
      parameterEdits(),
      propertiesDialog(),
      curves(),
  };
  return all;
}

std::vector<OnLink> everyWorkflow(bool gpib, bool serial) {
  std::vector<OnLink> all;
  for (const Workflow& workflow : workflows()) {
    if (gpib) all.push_back({&workflow, false});
    if (serial) all.push_back({&workflow, true});
  }
  return all;
}

}  // namespace pulsemod::test
