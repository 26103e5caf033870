#include "support/FakeWorld.h"

#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFState.h"
#include "ccdf/PowerAxis.h"
#include "link/CommsSettings.h"
#include "link/Conversation.h"
#include "link/ExchangeCount.h"
#include "link/GpibCalls.h"
#include "link/MeterLink.h"
#include "profile/AcquisitionControl.h"
#include "profile/AcquisitionLoop.h"
#include "profile/GraphFault.h"
#include "profile/GraphMouse.h"
#include "profile/MeasurementSettings.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileGraph.h"
#include "profile/Readouts.h"
#include "settings/ConfigExchange.h"
#include "startup/MeterModel.h"

namespace pulsemod::test {

FakeWorld::FakeWorld() {
  EditedComms = CommsSettings{};
  LinkSettings = CommsSettings{};
  Conversation = ConversationState{};
  ExchangeCount = ExchangeCountState{};
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
  CCDFData = Trace{};
  CCDFLogData = Trace{};
  SecondCCDFData = Trace{};
  CCDF = CCDFSettings{};
  CCDFPending = CCDFRequests{};
  CCDFMouse = CCDFMouseState{};
  PowerEdits = PowerEditCounts{};
  ConfigExchangeBusy = False16;
  MeterModel = 0;
  MeterIdentity.clear();
}

FakeWorld::~FakeWorld() { forgetKeptExchanges(); }

void FakeWorld::useSerial() {
  EditedComms.commsType = commsTypeRS232;
  LinkSettings = EditedComms;
  serial.open();
}

void FakeWorld::loseSerialAt(const std::string& message) {
  meter.onMessage = [this, message](const std::string& got) {
    if (got == message) serial.lose();
  };
}

}  // namespace pulsemod::test
