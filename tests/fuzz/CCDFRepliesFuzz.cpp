// Whatever the meter answers in CCDF mode, on both links.
#include <string>

#include "FuzzMeter.h"
#include "ModelChecks.h"
#include "ccdf/CCDFConfig.h"
#include "ccdf/CCDFLoop.h"
#include "ccdf/CCDFReader.h"
#include "ccdf/MeasurementSource.h"
#include "ccdf/PowerAxis.h"

namespace pulsemod::fuzz {
namespace {

struct Bench {
  test::FakeWorld world;
  CCDFWindow view;
};

/// Runs what the end of the program may leave when a curve stays away.
template <typename Part>
bool endsProgram(const Part& part) {
  try {
    part();
  } catch (const test::ProgramEnded&) {
    return true;
  }
  return false;
}

/// A curve is taken whole or not at all.
void readCurve() {
  CCDFData.fill(77);
  const Trace before = CCDFData;
  const std::int16_t points = Settings.DisplayPoints;
  bool read = false;
  endsProgram([&] { faults([&] { read = ReadCCDFData(); }); });
  require(read || (CCDFData == before && Settings.DisplayPoints == points),
          "a refused curve changes nothing");
}

void readSettings() {
  const CCDFSettings before = CCDF;
  const bool faulted = faults([] { converse(ReadCCDFSettings); });
  require(!faulted || CCDF.MeasurementSource == before.MeasurementSource,
          "a fault ends the reading before the source");
}

/// Three passes, with everything asked for meanwhile.
void acquire(Bench& bench, FuzzMeter& meter) {
  faults(StartCCDF);
  bench.world.dialogs.textAnswers = {meter.nextText(), meter.nextText(), meter.nextText()};
  AcquisitionRunning = True16;
  faults(EditStartPower);
  faults(EditStopPower);
  SwitchCursorOn();
  faults(EditCursorPosition);
  RequestMeasurementSource(CCDFSource::gate);
  RequestMeasurementSource(CCDFSource::channel);
  for (int pass = 0; pass < 3 && AcquisitionRunning != False16; ++pass) {
    if (endsProgram(AcquireCCDF)) AcquisitionRunning = False16;
  }
  AcquisitionRunning = False16;
  // Each source has told its own outcome, in the same words or not.
  bench.world.dialogs.messages.clear();
}

void changeSource(Bench& bench) {
  for (const CCDFSource source : {CCDFSource::gate, CCDFSource::marker, CCDFSource::channel}) {
    bench.world.dialogs.messages.clear();
    faults([source] { ChangeMeasurementSource(source); });
    require(bench.world.dialogs.messages.size() <= 1, "one outcome is told");
  }
}

void edit(Bench& bench, FuzzMeter& meter) {
  for (const auto routine : {EditStartPower, EditStopPower, EditCursorPosition}) {
    bench.world.dialogs.textAnswers = {meter.nextText()};
    faults(routine);
  }
  faults(SwitchCursorOn);
  faults(ReadCursor);
  faults(SwitchCursorOff);
}

void readAxisAndCursor() {
  CCDF.CursorOn = True16;
  faults(ReadStartPower);
  faults(ReadStopPower);
  faults(ReadCursor);
  faults(ReadMeasurementSource);
  faults(ReadCCDFPoints);
}

void run(unsigned routine, Bench& bench, FuzzMeter& meter) {
  switch (routine) {
    case 0:
      return readCurve();
    case 1:
      return readSettings();
    case 2:
      return acquire(bench, meter);
    case 3:
      return changeSource(bench);
    case 4:
      return edit(bench, meter);
    default:
      return readAxisAndCursor();
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
  checkCCDFModel(bench.world, bench.view);
  return 0;
}
