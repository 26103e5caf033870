#include "profile/ParameterEdits.h"

#include "profile/ProfileGraph.h"
#include "profile/ProfileParameters.h"

namespace pulsemod {

PendingEditFlags PendingEdits;

namespace {

void carryOut(Boolean16& pending, const ProfileParameter& parameter) {
  float accepted = Settings.*parameter.value;
  pending = False16;
  SendParameter(parameter, accepted);
  if (!QueryParameter(parameter, accepted) || pending != False16) return;
  Settings.*parameter.value = accepted;
  RefreshGraph();
}

}  // namespace

void CarryOutPendingEdits() {
  if (PendingEdits.CaptureTime != False16) {
    carryOut(PendingEdits.CaptureTime, captureTimeParameter);
  }
  if (PendingEdits.ReferenceLevel != False16) {
    carryOut(PendingEdits.ReferenceLevel, referenceLevelParameter);
  }
  if (PendingEdits.TriggerDelay != False16) {
    carryOut(PendingEdits.TriggerDelay, triggerDelayParameter);
  }
  if (PendingEdits.GraphScale != False16) {
    RefreshGraph();
    carryOut(PendingEdits.GraphScale, scaleParameter);
  }
}

}  // namespace pulsemod
