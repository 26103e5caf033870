#include "MeterFaults.h"

#include <span>
#include <vector>

#include "link/CommsSettings.h"
#include "link/MeterLink.h"
#include "soak/Faults.h"

namespace randomuse {

namespace {

/// The meter's delays count in real time over GPIB: no test may wait that long, and none may end
/// sooner on a slow machine.
const std::vector<std::string> gpibFaults{"any, 1, missing",
                                          "any, 2, late 1000000",
                                          "any, 1, stall 5 1000000",
                                          "any, 1, bytewise 1000000",
                                          "any, 1, cut 4",
                                          "any, 1, short 9",
                                          "any, 1, garble",
                                          "any, 1, empty",
                                          "any, 3, refuse",
                                          "any, 1, raw \\r\\n",
                                          "TRCAPT?, 1, replace TRCAPT 1,PMOD,0",
                                          "lib any, from 1, error ENEB",
                                          "lib Send, from 1, timeout",
                                          "lib any, 5, error ECIC",
                                          "GP, 1, refuse device",
                                          "MK, 2, missing"};

/// Over RS232 a reply that is missing is waited for without an end.
const std::vector<std::string> serialFaults{
    "any, 1, late 4000",    "any, 1, short 9", "any, 1, garble", "any, 1, empty",
    "any, 1, stall 5 3000", "GP, 1, short 3",  "MK, 2, empty",   "TRCAPT?, 1, empty"};
const std::vector<std::string> silences{"any, 1, missing", "any, 2, cut 3", "any, 1, refuse",
                                        "any, 1, raw noise"};

const std::vector<std::string> ccdfEnds{"TTFRO, 1, missing", "TTFRO, 1, refuse",
                                        "TTFRO, 1, cut 50"};

bool isExact(std::string_view rule) {
  for (const char* delay : {" late ", " bytewise ", " stall "}) {
    if (rule.find(delay) != std::string_view::npos) return false;
  }
  return true;
}

}  // namespace

std::string MeterFaults::any(bool isCCDF, bool overSerial) {
  constexpr int ofSilence = 12;
  if (isCCDF && chance_.oneIn(ofSilence)) return chance_.among(ccdfEnds);
  if (overSerial && chance_.oneIn(ofSilence)) return chance_.among(silences);
  if (chance_.percent(50)) return chance_.among(overSerial ? serialFaults : gpibFaults);
  const soak::Kind kind = isCCDF             ? soak::Kind::ccdf
                          : overSerial       ? soak::Kind::rs232
                          : chance_.oneIn(2) ? soak::Kind::readouts
                                             : soak::Kind::gpib;
  const std::span<const soak::Fault> known = soak::faultsOf(kind);
  const std::string rule = chance_.among(known).rule;
  return overSerial || isExact(rule) ? rule : "any, 1, missing";
}

void MeterFaults::maybe(bool isCCDF) {
  constexpr int actsBetween = 40;
  constexpr int ofLoss = 60;
  if (!chance_.oneIn(actsBetween)) return;
  if (chance_.oneIn(3)) return none();
  const bool overSerial = pulsemod::LinkSettings.commsType == pulsemod::commsTypeRS232;
  if (overSerial && chance_.oneIn(ofLoss)) {
    record_.line("FAULT the port is lost");
    ++record_.figures().faults;
    return serial_.lose("The device of the port was unplugged.");
  }
  const std::string rule = any(isCCDF, overSerial);
  const auto parsed = simmeter::parseFault(rule);
  record_.expect(parsed.has_value(), "no fault is called " + rule);
  record_.line("fault laid out: " + rule);
  soak::MeterLine& line = overSerial ? static_cast<soak::MeterLine&>(serial_) : gpib_;
  line.faults() = simmeter::FaultPlan({*parsed});
}

void MeterFaults::none() {
  gpib_.faults() = {};
  serial_.faults() = {};
}

}  // namespace randomuse
