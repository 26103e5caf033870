#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Oracle.h"
#include "Rig.h"

namespace pulsemod::test {

/// A piece of work of a user, as the program does it and as the oracle says that it goes.
struct Workflow {
  const char* name;
  /// What the meter was set to before.
  std::vector<std::string> setup;
  std::function<void(Rig&)> run;
  std::function<void(Oracle&)> expect;
};

const std::vector<Workflow>& workflows();

inline Outcome expected(const Workflow& workflow, bool serial, const Faults& faults) {
  Oracle oracle(serial, workflow.setup, faults);
  oracle.model.settings = {};
  return oracle.follow(workflow.expect);
}

/// A workflow on a link, for tests with a parameter.
struct OnLink {
  const Workflow* workflow;
  bool serial;
};
std::vector<OnLink> everyWorkflow(bool gpib, bool serial);
inline std::string nameOf(const OnLink& tested) {
  return std::string(tested.workflow->name) + (tested.serial ? "OverSerial" : "OverGpib");
}
inline void PrintTo(const OnLink& tested, std::ostream* out) { *out << nameOf(tested); }

}  // namespace pulsemod::test
