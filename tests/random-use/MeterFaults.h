#pragma once

#include <string>

#include "Chance.h"
#include "Record.h"
#include "soak/MeterOnGpib.h"
#include "soak/MeterOnSerial.h"

namespace randomuse {

/// What goes wrong with the meter and its link, now and then.
class MeterFaults {
 public:
  MeterFaults(Chance& chance, Record& record, soak::MeterOnGpib& gpib, soak::MeterOnSerial& serial)
      : chance_(chance), record_(record), gpib_(gpib), serial_(serial) {}

  /// Once for each act of the user: lays one out, or takes back what was.
  void maybe(bool isCCDF);
  /// All is well from here on; but a port that is lost stays so, and what was not answered is not.
  void none();

 private:
  std::string any(bool isCCDF, bool overSerial);

  Chance& chance_;
  Record& record_;
  soak::MeterOnGpib& gpib_;
  soak::MeterOnSerial& serial_;
};

}  // namespace randomuse
