#pragma once

#include <cstdint>
#include <optional>

#include "FaultPlan.h"
#include "SimulatedTime.h"
#include "Transcript.h"

namespace soak {

/// The simulated meter at the other end of a link.
class MeterLine {
 public:
  virtual ~MeterLine() = default;

  virtual simmeter::FaultPlan& faults() = 0;
  /// The meter's record, which is written once a file is open.
  virtual simmeter::Transcript& transcript() = 0;
  /// A reply, or a part of one, that the program has not read.
  virtual bool holdsOutput() = 0;
  /// When something arrives next by itself; nothing while nothing is on its way.
  virtual std::optional<Time> nextArrival() const { return std::nullopt; }
  /// Moves what is due by now.
  virtual void deliver() {}
};

}  // namespace soak
