#include "Faults.h"

namespace soak {

namespace {

#define TEN_VALUES "1,1,1,1,1,1,1,1,1,1,"
#define HUNDRED_VALUES                                                                    \
  TEN_VALUES TEN_VALUES TEN_VALUES TEN_VALUES TEN_VALUES TEN_VALUES TEN_VALUES TEN_VALUES \
      TEN_VALUES TEN_VALUES

// The board's time-out is 1 ms: what is later than that is too late.
constexpr Fault gpibFaults[] = {
    {"PMPBO, 1, missing"},
    {"PMPBO, 1, cut 800"},
    {"PMPBO, 1, cut 1"},
    {"PMPBO, 1, short 700"},
    {"PMPBO, 1, short 50"},
    {"PMPBO, 1, empty"},
    {"PMPBO, 1, garble"},
    {"PMPBO, 1, late 5"},
    {"PMPBO, 1, bytewise 5"},
    {"PMPBO, 1, stall 800 5"},
    {"PMPBO, 1, replace #3999" HUNDRED_VALUES},
    {"PMPBO, 1, replace PMPO 1,400," HUNDRED_VALUES},
    {"PMPBO, 1, refuse"},
    {"PMPBO, 1, refuse command"},
    {"PMPBO, 1, refuse device"},
    {"TR1, 1, missing"},
    {"TR1, 1, cut 3"},
    {"TR1, 1, late 5"},
    {"TR1, 1, refuse"},
    {"TR1, 1, empty", Fate::shown},
    {"TR1, 1, garble", Fate::shown},
    {"lib Send, 1, error EABO"},
    {"lib Send, 2, error ENOL"},
    {"lib Send, 1, timeout"},
    {"lib Receive, 1, error EABO"},
    {"lib Receive, 2, error EDVR"},
    {"lib Receive, 2, timeout"},
    {"lib ReadStatusByte, 1, error ENEB"},
    {"lib ReadStatusByte, 2, timeout"},
    {"lib ReadStatusByte, 2, status 0x20"},
    {"lib ReadStatusByte, 2, status 0x10"},
    {"lib DevClear, 1, error EABO", Fate::shown, true},
    {"PMPO, 1, missing", Fate::shown, true},
    {"TRCAPT?, 2, refuse", Fate::shown, true},
    {"TRCAPT?, 2, replace TRCAPT 1,PMOD,0", Fate::notice, true},
    {"PMPSCAL?, 1, replace PMPSCAL 1,DB,0", Fate::notice, true},
};

// A reply that is missing, cut or refused is waited for without an end on this link.
constexpr Fault rs232Faults[] = {
    {"PMPO, 1, empty"},
    {"PMPO, 1, short 3"},
    {"PMPO, 1, short 700", Fate::partly},
    {"PMPO, 1, garble"},
    {"PMPO, 1, late 5000", Fate::shown},
    {"PMPO, 1, bytewise 5", Fate::shown},
    {"PMPO, 1, stall 800 3000", Fate::shown},
    {"PMPO, 1, replace PMPO 1,500,1,2,3"},
    {"PMPO, 1, replace PMPO 1,70000,1,2,3"},
    {"PMPO, 1, replace PMPO 1,-5,1,2,3"},
    {"PMPO, 1, replace PMPO 1,400,1,9E39,3"},
    {"PMPO, 1, replace PMPO 1,200,x,nan,inf,", Fate::partly},
    {"PMPO, 1, raw noise, RPMPO 1,500,1\\r\\n"},
    {"PMPO, 1, raw RPMPO\\n1,2,3\\r\\n"},
    {"TR1, 1, empty", Fate::shown},
    {"TR1, 1, short 2", Fate::shown},
    {"TR1, 1, garble", Fate::shown},
    {"TR1, 1, late 5000", Fate::shown},
    {"TR1, 1, stall 3 3000", Fate::shown},
    {"TR1, 1, raw noise R\\n", Fate::shown},
    {"PMPO, 1, garble", Fate::shown, true},
    {"TRCAPT?, 2, empty", Fate::notice, true},
    {"TRCAPT?, 2, replace TRCAPT 1,PMOD,0", Fate::notice, true},
    {"PMPSCAL?, 1, replace PMPSCAL 1,DB,0", Fate::notice, true},
};

constexpr Fault readoutFaults[] = {
    {"PMPBO, 1, cut 800"},
    {"PMPBO, 1, garble"},
    {"GPNMO, 2, missing", Fate::shown},
    {"GPNMO, 1, cut 9", Fate::shown},
    {"GPNMO, 3, short 9", Fate::shown},
    {"GPNMO, 4, empty", Fate::shown},
    {"GPNMO, 1, garble", Fate::shown},
    {"GPNMO, 1, refuse", Fate::shown},
    {"GPNMO, 1, replace GPNMO 1,1,1,AVG,9E39", Fate::shown},
    {"MKNO, 1, missing", Fate::shown},
    {"MKNO, 2, late 5", Fate::shown},
    {"MKNO, 3, cut 9", Fate::shown},
    {"MKNO, 4, short 9", Fate::shown},
    {"MKNO, 1, empty", Fate::shown},
    {"MKNO, 2, garble", Fate::shown},
    {"MKNO, 3, refuse", Fate::shown},
    {"MKNO, 4, replace MKNO 1,4,9E39,DBM,9E39", Fate::shown},
    {"lib Receive, 3, error EABO", Fate::shown},
    {"lib ReadStatusByte, 9, timeout", Fate::shown},
    {"TRCAPT?, 2, replace TRCAPT 1,PMOD,0", Fate::notice, true},
};

// A curve whose query fails ends the program, and so does an error that the meter reports before
// it.
constexpr Fault ccdfFaults[] = {
    {"TTFRO, 1, empty", Fate::redrawn},
    {"TTFRO, 1, short 5", Fate::redrawn},
    {"TTFRO, 1, garble", Fate::redrawn},
    {"TTFRO, 1, short 700", Fate::partly},
    {"TTFRO, 1, replace TTFRO 1,70000,1", Fate::notice},
    {"TTFRO, 1, replace TTFRO 1,500,1,2,3,4", Fate::notice},
    {"TTFRO, 1, replace TTFRO 1,400," HUNDRED_VALUES HUNDRED_VALUES HUNDRED_VALUES HUNDRED_VALUES
     "1,1",
     Fate::notice},
    {"TTMKRO, 1, missing", Fate::shown},
    {"TTMKRO, 1, late 5", Fate::shown},
    {"TTMKRO, 1, cut 9", Fate::shown},
    {"TTMKRO, 1, short 9", Fate::shown},
    {"TTMKRO, 1, empty", Fate::shown},
    {"TTMKRO, 1, garble", Fate::shown},
    {"lib DevClear, 1, error EABO", Fate::shown, true},
};

}  // namespace

std::span<const Fault> faultsOf(Kind kind) {
  switch (kind) {
    case Kind::gpib:
      return gpibFaults;
    case Kind::rs232:
      return rs232Faults;
    case Kind::readouts:
      return readoutFaults;
    case Kind::ccdf:
      break;
  }
  return ccdfFaults;
}

}  // namespace soak
