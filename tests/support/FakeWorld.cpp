#include "support/FakeWorld.h"

#include "link/CommsSettings.h"
#include "link/Conversation.h"
#include "link/GpibCalls.h"
#include "link/MeterLink.h"
#include "profile/AcquisitionLoop.h"
#include "profile/AcquisitionPause.h"
#include "profile/GraphMouse.h"
#include "profile/MeasurementSettings.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileGraph.h"
#include "profile/Readouts.h"
#include "startup/MeterModel.h"

namespace pulsemod::test {

FakeWorld::FakeWorld() {
  EditedComms = CommsSettings{};
  LinkSettings = CommsSettings{};
  Conversation = ConversationState{};
  Gpib = GpibVariables{};
  ReplyMayBeGivenUp = false;
  LinkGivenUp = false;
  InitMeasurementSettings();
  ProfileTrace = Trace{};
  SecondProfileTrace = Trace{};
  AcquisitionPause = AcquisitionPauseState{};
  GraphMouse = GraphMouseState{};
  PendingEdits = PendingEditFlags{};
  EditCounts = ParameterEditCounts{};
  GateReadings.fill(0);
  AcquisitionRequests = 0;
  ProfileReadFailed = false;
  GraphFaultReported = false;
  MeterModel = 0;
}

FakeWorld::~FakeWorld() { forgetKeptExchanges(); }

void FakeWorld::useSerial() {
  EditedComms.commsType = commsTypeRS232;
  LinkSettings = EditedComms;
  serial.open();
}

}  // namespace pulsemod::test
