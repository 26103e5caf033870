#pragma once

#include <cstdint>

#include "Hand.h"
#include "MeterFaults.h"
#include "Watch.h"
#include "World.h"

namespace randomuse {

/// Now and then the user takes the hands off and the meter has no faults: then all boxes come to an
/// end, a stop is followed by silence, and a start by traces, or by a box that says why there are
/// none.
class Rest {
 public:
  Rest(Record& record, soak::SimulatedTime& time, World& world, Hand& hand, Watch& watch,
       MeterFaults& faults)
      : record_(record), time_(time), world_(world), hand_(hand), watch_(watch), faults_(faults) {}

  bool isOn() const { return phase_ != Phase::off; }
  void begin();
  /// One turn of the user, if it is on.
  void step();

 private:
  enum class Phase { off, handsOff, stopping, silent, starting, closing };
  void enter(Phase phase, Time limit);
  void takeHandsOff();
  void leave();
  void awaitStop();
  void awaitSilence();
  void awaitTraces();
  void give(bool wasLive);

  Record& record_;
  soak::SimulatedTime& time_;
  World& world_;
  Hand& hand_;
  Watch& watch_;
  MeterFaults& faults_;
  Phase phase_ = Phase::off;
  Time limit_{};
  int answers_ = 0;
  std::uint64_t mark_ = 0;
};

}  // namespace randomuse
