#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "FakeStartUpView.h"
#include "MeterScript.h"
#include "link/Conversation.h"
#include "link/MeterLink.h"
#include "profile/MeasurementSettings.h"
#include "startup/MeterModel.h"
#include "startup/ProgramVersion.h"
#include "startup/StartUp.h"
#include "support/FakeProfileView.h"

namespace pulsemod::test {
namespace {

using Shown = std::vector<std::string>;
using Calls = std::vector<std::string>;

class Start : public testing::Test {
 protected:
  Start() {
    storeComms(world, "2");
    answerConfiguration(world.meter);
  }
  void choose(std::initializer_list<StartChoice> choices) { view.answers = choices; }
  /// The loop has no other end.
  void load() {
    view.onMainWindow = [this] { world.events.post([] { throw ProgramEnded(); }); };
    choose({StartChoice::loadFromMeter});
    EXPECT_THROW(StartUp(view), ProgramEnded);
  }

  FakeWorld world;
  FakeProfileView profile;
  FakeStartUpView view;
};

TEST_F(Start, VersionCaption) {
  EXPECT_EQ(versionCaption(), "Pelmora v" + std::to_string(versionMajor) + "." +
                                  std::to_string(versionMinor) + "." +
                                  std::to_string(versionRevision));
  const std::string caption = versionCaption();
  EXPECT_TRUE(caption.starts_with("Pelmora v"));
  EXPECT_EQ(caption.find_first_not_of("0123456789.", 9), std::string::npos);
  EXPECT_EQ(std::count(caption.begin(), caption.end(), '.'), 2);
}

TEST_F(Start, LoadReadsTheConfigurationShowsTheWindowAndEntersTheLoop) {
  load();
  EXPECT_EQ(world.meter.received, loadTranscript());
  EXPECT_EQ(view.shown, (Shown{"question", "main \"" + versionCaption() + "\""}));
  EXPECT_EQ(MeterModel, 5);
  EXPECT_EQ(MeterIdentity, "PELMORA,QX7205A,1234,1.00");
  EXPECT_EQ(Settings.ReferenceLevel, 5.0F);
  EXPECT_EQ(Settings.DisplayPoints, 400);
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(world.gpib.interruptedQueries, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_FALSE(world.progress.visible);
}

TEST_F(Start, LoadOnSerialSendsTheSameLinesByteForByte) {
  storeComms(world, "1");
  world.serial.pieceSize = 3;
  load();
  EXPECT_EQ(world.serial.sent, serialBytes(loadTranscript()));
  EXPECT_EQ(view.shown, (Shown{"question", "main \"" + versionCaption() + "\""}));
  EXPECT_EQ(Settings.DisplayPoints, 400);
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(Start, AStoppedLoopWaitsForEventsAndAsksTheMeterNothing) {
  choose({StartChoice::loadFromMeter});
  EXPECT_THROW(StartUp(view), WaitsForEver);
  EXPECT_EQ(world.meter.received, loadTranscript());
}

TEST_F(Start, JustStartExchangesTheIdentityAndReturns) {
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(world.gpib.calls,
            (Calls{"Register", "SendIFC 0", "DevClear 0 13", "Send 13 *CLS; *ESE 56; *OPC?",
                   "Receive 13", "Send 13 *IDN?", "Receive 13", "ReadStatusByte 13"}));
  EXPECT_EQ(world.clock.sleeps, (std::vector<int>{500, 10}));
  EXPECT_EQ(view.shown, (Shown{"question", "main \"\""}));
  EXPECT_EQ(world.programEnd.ends, 0);
  EXPECT_EQ(Settings.ReferenceLevel, 10.0F);
  EXPECT_TRUE(world.progress.texts.empty());
}

TEST_F(Start, JustStartOnSerialConfiguresThenOpensThePort) {
  storeComms(world, "1");
  world.store.values[{"Comms", "RS232Port"}] = "3";
  world.store.values[{"Comms", "RS232Baud"}] = "19200";
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(world.serial.calls, (Calls{"settings 19200,N,8,1", "port 3", "open"}));
  EXPECT_EQ(world.serial.sent, "*CLS; *ESE 56; *OPC?\r*IDN?\r");
  EXPECT_TRUE(world.clock.sleeps.empty());
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(Start, AnOpenSerialPortIsClosedFirst) {
  storeComms(world, "1");
  world.serial.open();
  world.serial.calls.clear();
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(world.serial.calls, (Calls{"close", "settings 9600,N,8,1", "port 1", "open"}));
}

TEST_F(Start, TheDefaultsComeBeforeEverything) {
  EditedComms = {1, 5, 7, 1200};
  Settings.ReferenceLevel = -50;
  AcquisitionRunning = True16;
  world.store.values.clear();
  view.onComms = [] {
    EXPECT_EQ(EditedComms.commsType, 2);
    EXPECT_EQ(EditedComms.gpibAddress, 13);
    EXPECT_EQ(EditedComms.rs232Port, 1);
    EXPECT_EQ(EditedComms.rs232Baud, 9600);
    EXPECT_EQ(Settings.ReferenceLevel, 10.0F);
    EXPECT_EQ(AcquisitionRunning, False16);
  };
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(view.shown, (Shown{"comms", "question", "main \"\""}));
}

TEST_F(Start, TheStoredAddressIsUsed) {
  world.store.values[{"Comms", "GPIBAddress"}] = "21";
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(world.gpib.timesCalled("DevClear 0 21"), 1);
  EXPECT_EQ(world.gpib.timesCalled("Send 21 *IDN?"), 1);
}

TEST_F(Start, TheFirstRunAsksForTheLinkAndSavesWhatWasChosen) {
  world.store.values.clear();
  view.onComms = [] {
    EditedComms.commsType = commsTypeRS232;
    EditedComms.rs232Port = 3;
  };
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(view.shown, (Shown{"comms", "question", "main \"\""}));
  EXPECT_EQ(world.store.written,
            (Calls{"CommsType=1", "GPIBAddress=13", "RS232Baud=9600", "RS232Port=3"}));
  EXPECT_EQ(world.store.flushes, 1);
  EXPECT_EQ(world.serial.calls, (Calls{"settings 9600,N,8,1", "port 3", "open"}));
}

TEST_F(Start, AFirstRunWithAnIllegalAddressSavesNothingAndGoesOn) {
  world.store.values.clear();
  view.onComms = [] { EditedComms.gpibAddress = 31; };
  choose({StartChoice::exitProgram});
  EXPECT_THROW(StartUp(view), ProgramEnded);
  EXPECT_EQ(world.dialogs.messages,
            (std::vector<ShownBox>{{"Illegal GPIB Address, only 1 to 30 allowed.", "GPIB Address",
                                    MessageIcon::information, ""}}));
  EXPECT_TRUE(world.store.written.empty());
  EXPECT_EQ(view.shown, (Shown{"comms", "question"}));
}

TEST_F(Start, LaterRunsNeitherAskForTheLinkNorSave) {
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(view.shown, (Shown{"question", "main \"\""}));
  EXPECT_TRUE(world.store.written.empty());
}

TEST_F(Start, CommsOptionsAreShownEachTimeAndTakeEffect) {
  int times = 0;
  view.onComms = [&times] { EditedComms.gpibAddress = static_cast<std::int16_t>(++times); };
  choose({StartChoice::openCommsOptions, StartChoice::openCommsOptions,
          StartChoice::openCommsOptions, StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(view.shown, (Shown{"question", "comms", "question", "comms", "question", "comms",
                               "question", "main \"\""}));
  EXPECT_EQ(world.gpib.timesCalled("Send 3 *IDN?"), 1);
  EXPECT_TRUE(world.store.written.empty());
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(Start, ConfigureSendsTheDefaultsThenShowsTheWindowAndRunsTheLoop) {
  choose({StartChoice::configureMeter});
  EXPECT_THROW(StartUp(view), WaitsForEver);
  EXPECT_EQ(world.meter.received, configureTranscript());
  EXPECT_EQ(view.shown, (Shown{"question", "main \"" + versionCaption() + "\""}));
  EXPECT_EQ(Settings.ReferenceLevel, 10.0F);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_FALSE(world.progress.visible);
}

TEST_F(Start, ConfigureOnSerialSendsTheSameLinesByteForByte) {
  storeComms(world, "1");
  choose({StartChoice::configureMeter});
  EXPECT_THROW(StartUp(view), WaitsForEver);
  EXPECT_EQ(world.serial.sent, serialBytes(configureTranscript()));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(Start, AMeterThatDeniesCompletionIsToldAndTheRunGoesOn) {
  world.meter.replies["*OPC?"] = "0";
  choose({StartChoice::configureMeter});
  EXPECT_THROW(StartUp(view), WaitsForEver);
  EXPECT_EQ(world.dialogs.messages,
            (std::vector<ShownBox>{
                {"Invalid response from Power Meter", "Pelmora", MessageIcon::exclamation, ""}}));
  EXPECT_EQ(view.shown, (Shown{"question", "main \"" + versionCaption() + "\""}));
}

TEST_F(Start, ChoicesHaveTheirCodes) {
  EXPECT_EQ(static_cast<int>(StartChoice::configureMeter), 0);
  EXPECT_EQ(static_cast<int>(StartChoice::loadFromMeter), 1);
  EXPECT_EQ(static_cast<int>(StartChoice::ccdfMode), 2);
  EXPECT_EQ(static_cast<int>(StartChoice::exitProgram), 3);
  EXPECT_EQ(static_cast<int>(StartChoice::openCommsOptions), 4);
  EXPECT_EQ(static_cast<int>(StartChoice::justStart), 5);
}

TEST_F(Start, LaterEditsOfTheLinkWaitForTheNextStart) {
  choose({StartChoice::justStart});
  StartUp(view);
  EditedComms.gpibAddress = 7;
  EXPECT_TRUE(SaveCommsSettings());
  SendCommand("TR3");
  EXPECT_EQ(world.gpib.timesCalled("Send 13 TR3"), 1);
  EXPECT_EQ((world.store.values[{"Comms", "GPIBAddress"}]), "7");
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(world.gpib.timesCalled("Send 7 *IDN?"), 1);
}

TEST_F(Start, EverySupportedMeterIsAccepted) {
  const std::vector<std::pair<std::string, int>> meters = {
      {"QX7104A", 2}, {"QX7105A", 1}, {"QX7204", 3}, {"QX7205", 4}, {"QX7205A", 5}};
  for (const auto& [name, code] : meters) {
    world.meter.replies["*IDN?"] = "PELMORA," + name + ",1";
    choose({StartChoice::justStart});
    StartUp(view);
    EXPECT_EQ(MeterModel, code) << name;
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(Start, AFailedFirstCommandIsNotReported) {
  world.meter.operationComplete = "0";
  choose({StartChoice::justStart});
  StartUp(view);
  world.gpib.failNext["Receive"] = 1;
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(world.programEnd.ends, 0);
}

TEST_F(Start, AnErrorStateOfTheMeterIsClearedBeforeItsIdentityIsAsked) {
  world.meter.errorIsReported = true;
  choose({StartChoice::justStart});
  StartUp(view);
  EXPECT_EQ(world.meter.received, startTranscript());
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(Start, AFaultOfTheReadIsReportedAndTheWindowIsShownAllTheSame) {
  world.meter.replies["PMPO 1"] = "PMPO 1,400";
  load();
  ASSERT_EQ(world.dialogs.messages.size(), 1U);
  EXPECT_EQ(world.dialogs.messages.front(),
            (ShownBox{"The meter's profile readout has no point count", "Pelmora",
                      MessageIcon::exclamation, ""}));
  EXPECT_EQ(view.shown.back(), "main \"" + versionCaption() + "\"");
}

TEST_F(Start, AReadoutThatIsNoProfileLeavesTheProgressOnTheScreen) {
  world.meter.replies["PMPO 1"] = "OK";
  load();
  EXPECT_TRUE(world.progress.visible);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(Start, AnEventInTheIdentityExchangeDoesNotGetIntoIt) {
  storeComms(world, "1");
  world.serial.pieceSize = 1;
  choose({StartChoice::justStart});
  for (int event = 0; event < 10; ++event) world.events.post([] {});
  world.events.post([] { whenLinkIsFree([] { SendCommand("TR3"); }); });
  StartUp(view);
  EXPECT_EQ(world.serial.sent, "*CLS; *ESE 56; *OPC?\r*IDN?\rTR3\r");
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_FALSE(Conversation.open);
}

}  // namespace
}  // namespace pulsemod::test
