#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "FakeStartUpView.h"
#include "MeterScript.h"
#include "link/MeterLink.h"
#include "startup/MeterModel.h"
#include "startup/StartUp.h"

/// Starts that end the program before its window is there.

namespace pulsemod::test {
namespace {

using Shown = std::vector<std::string>;
using Calls = std::vector<std::string>;

ShownBox identityFailure(const std::string& details) {
  return {"Could not read Power Meter Identity\r\n\r\nProgram will exit.", "*IDN? Failure",
          MessageIcon::exclamation, details};
}
const ShownBox unsupported{
    "Pelmora.2 - PulseMod will only work with QX7104A, QX7105A, QX7204,QX7205 or QX7205A power "
    "meters",
    "Program Exit", MessageIcon::information, ""};

constexpr auto boardMissing =
    "The GPIB board \"GPIB0\" is not there, or is not configured as the system controller.";

class StartThatEnds : public testing::Test {
 protected:
  StartThatEnds() {
    storeComms(world, "2");
    answerConfiguration(world.meter);
  }

  /// Starts and checks that the program ended with one box, or none, and without its window.
  void expectEnd(const std::vector<ShownBox>& boxes) {
    if (view.answers.empty()) view.answers = {StartChoice::loadFromMeter};
    EXPECT_THROW(StartUp(view), ProgramEnded);
    EXPECT_EQ(world.programEnd.ends, 1);
    EXPECT_EQ(view.shown, (Shown{"question"}));
    ASSERT_EQ(world.dialogs.messages.size(), boxes.size());
    for (std::size_t box = 0; box < boxes.size(); ++box) {
      EXPECT_EQ(world.dialogs.messages[box].text, boxes[box].text);
      EXPECT_EQ(world.dialogs.messages[box].title, boxes[box].title);
      EXPECT_EQ(world.dialogs.messages[box].icon, boxes[box].icon);
      EXPECT_EQ(world.dialogs.messages[box].details, boxes[box].details);
    }
    EXPECT_FALSE(world.progress.visible);
  }
  int sends() const {
    return static_cast<int>(
        std::count_if(world.gpib.calls.begin(), world.gpib.calls.end(),
                      [](const std::string& call) { return call.starts_with("Send "); }));
  }

  FakeWorld world;
  FakeStartUpView view;
};

TEST_F(StartThatEnds, ExitTakesTheBoardOfflineAndSendsNothing) {
  view.answers = {StartChoice::exitProgram};
  expectEnd({});
  EXPECT_EQ(world.gpib.calls, (Calls{"Register", "ibfindA GPIB0", "ibonl 7 0"}));
  EXPECT_TRUE(world.clock.sleeps.empty());
  EXPECT_TRUE(world.progress.delayed.empty());
}

TEST_F(StartThatEnds, ExitOnSerialTouchesNoLink) {
  storeComms(world, "1");
  view.answers = {StartChoice::exitProgram};
  expectEnd({});
  EXPECT_TRUE(world.gpib.calls.empty());
  EXPECT_TRUE(world.serial.calls.empty());
  EXPECT_EQ(world.serial.sent, "");
}

TEST_F(StartThatEnds, ExitAfterTheFirstRunKeepsWhatWasSaved) {
  world.store.values.clear();
  EXPECT_THROW(StartUp(view), ProgramEnded);
  EXPECT_EQ(world.store.flushes, 1);
  EXPECT_EQ((world.store.values[{"Comms", "CommsType"}]), "2");
}

TEST_F(StartThatEnds, AMeterThatIsNotSupportedIsRefused) {
  for (const char* identity : {"pelmora,qx7205a,1", "PELMORA,QX7206,1", ""}) {
    world.meter.replies["*IDN?"] = identity;
    world.meter.received.clear();
    world.dialogs.messages.clear();
    world.gpib.calls.clear();
    world.programEnd.ends = 0;
    view.shown.clear();
    view.answers.clear();
    expectEnd({unsupported});
    EXPECT_EQ(world.meter.received, startTranscript()) << identity;
    EXPECT_EQ(MeterModel, 0);
    EXPECT_EQ(MeterIdentity, "");
    EXPECT_EQ(world.gpib.timesCalled("ibfindA GPIB0"), 1);
    EXPECT_EQ(world.gpib.timesCalled("ibonl 7 0"), 1);
    EXPECT_EQ(world.gpib.calls.back(), "ibonl 7 0");
  }
}

TEST_F(StartThatEnds, JustStartRefusesAMeterThatIsNotSupportedToo) {
  world.meter.replies["*IDN?"] = "OTHER,1";
  view.answers = {StartChoice::justStart};
  expectEnd({unsupported});
}

TEST_F(StartThatEnds, AMeterThatIsNotSupportedIsRefusedOnSerial) {
  storeComms(world, "1");
  world.meter.replies["*IDN?"] = "OTHER,1";
  expectEnd({unsupported});
  EXPECT_EQ(world.serial.sent, serialBytes(startTranscript()));
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(StartThatEnds, WithoutALibraryItsReasonIsTold) {
  world.gpib.registrationResults.assign(50, 4);
  world.gpib.reason = "libgpib.so.0 was not found.";
  expectEnd({identityFailure("libgpib.so.0 was not found.")});
  EXPECT_EQ(sends(), 0);
  EXPECT_EQ(world.gpib.timesCalled("Register"), static_cast<int>(world.gpib.calls.size()));
}

TEST_F(StartThatEnds, WithoutABoardThatIsTold) {
  for (const int code : {0, 1, 7}) {
    world.gpib.failNext["Send"] = 2;
    world.gpib.failureCode = code;
    world.dialogs.messages.clear();
    world.gpib.calls.clear();
    world.programEnd.ends = 0;
    view.shown.clear();
    view.answers.clear();
    expectEnd({identityFailure(boardMissing)});
    EXPECT_EQ(sends(), 2);
    EXPECT_EQ(world.gpib.timesCalled("ibonl 7 0"), 1);
  }
}

TEST_F(StartThatEnds, WithoutAMeterItsAddressIsTold) {
  world.store.values[{"Comms", "GPIBAddress"}] = "4";
  world.meter.replies.erase("*IDN?");
  expectEnd({identityFailure("No power meter answers at GPIB address 4.")});
  EXPECT_EQ(world.meter.received, startTranscript());
}

TEST_F(StartThatEnds, AnIdentityWithAnErrorIsAFailure) {
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "*IDN?") world.meter.errorIsReported = true;
  };
  expectEnd({identityFailure("")});
  EXPECT_EQ(world.meter.received, (Transcript{"*CLS; *ESE 56; *OPC?", "*IDN?", "*CLS; *OPC?"}));
}

TEST_F(StartThatEnds, ASerialPortThatCannotBeOpenedTellsWhy) {
  storeComms(world, "1");
  world.serial.opens = false;
  world.serial.reason = "There is no serial port COM1:.";
  expectEnd({identityFailure("There is no serial port COM1:.")});
  EXPECT_EQ(world.serial.sent, "");
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(StartThatEnds, ASerialPortThatIsLostInTheIdentityTellsWhy) {
  storeComms(world, "1");
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "*IDN?") world.events.post([this] { world.serial.lose(); });
  };
  world.serial.pieceSize = 1;
  expectEnd({identityFailure("The serial port was lost.")});
}

TEST_F(StartThatEnds, ACommsTypeThatNamesNoLinkIsToldAndReachesNoMeter) {
  storeComms(world, "3");
  expectEnd({identityFailure("The stored communications settings name neither GPIB nor RS232.")});
  EXPECT_TRUE(world.gpib.calls.empty());
  EXPECT_TRUE(world.serial.calls.empty());
  EXPECT_TRUE(world.meter.received.empty());
}

/// A serial meter that never answers.
class SilentSerialMeter : public StartThatEnds {
 protected:
  SilentSerialMeter() {
    storeComms(world, "1");
    world.store.values[{"Comms", "RS232Port"}] = "2";
    for (int event = 0; event < 3; ++event) world.events.post([] {});
  }
};

TEST_F(SilentSerialMeter, IsWaitedForWithoutLimit) {
  world.meter.operationComplete = "";
  world.meter.replies.clear();
  view.answers = {StartChoice::justStart};
  EXPECT_THROW(StartUp(view), WaitsForEver);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(world.progress.delayed, (std::vector<std::pair<int, std::string>>{
                                        {2000, "Please Wait... Reading Power Meter Identity..."}}));
  EXPECT_TRUE(world.progress.texts.empty());
}

TEST_F(SilentSerialMeter, IsGivenUpWhenTheUserClosesTheProgressWindow) {
  world.meter.replies.clear();
  world.events.always = [this] {
    if (world.serial.sent.ends_with("*IDN?\r")) world.progress.dismissedByUser = true;
  };
  for (int event = 0; event < 30; ++event) world.events.post([] {});
  expectEnd({identityFailure("No power meter answers at COM2:.")});
  EXPECT_EQ(world.serial.sent, serialBytes(startTranscript()));
  EXPECT_EQ(world.progress.hides, 1);
}

TEST_F(SilentSerialMeter, ThatIsGivenUpAtItsFirstReplyIsNotAskedForItsIdentity) {
  world.events.always = [this] {
    if (!world.serial.sent.ends_with("*OPC?\r")) return;
    world.serial.incoming.clear();
    world.progress.dismissedByUser = true;
  };
  expectEnd({identityFailure("No power meter answers at COM2:.")});
  EXPECT_EQ(world.serial.sent, "*CLS; *ESE 56; *OPC?\r");
}

TEST_F(SilentSerialMeter, ThatFallsSilentWhileItsSettingsAreLoadedCanBeGivenUpToo) {
  answerConfiguration(world.meter);
  world.meter.replies.erase("GPACTN? 1");
  world.events.always = [this] {
    if (world.serial.sent.ends_with("GPACTN? 1\r")) world.progress.dismissedByUser = true;
  };
  expectEnd(
      {{"The power meter does not answer any more\r\n\r\nProgram will exit.",
        "Load from Power Meter", MessageIcon::exclamation, "No power meter answers at COM2:."}});
  EXPECT_TRUE(world.serial.sent.ends_with("GPACTN? 1\r"));
}

TEST_F(SilentSerialMeter, NoProgressWindowIsLeftWaitingWhenTheMeterAnswers) {
  view.answers = {StartChoice::justStart};
  StartUp(view);
  EXPECT_EQ(world.progress.delayed.size(), 1U);
  EXPECT_EQ(world.progress.hides, 1);
  EXPECT_FALSE(ReplyMayBeGivenUp);
}

TEST_F(StartThatEnds, OnGpibTheSameProgressWaitsForTheIdentity) {
  view.answers = {StartChoice::justStart};
  StartUp(view);
  EXPECT_EQ(world.progress.delayed, (std::vector<std::pair<int, std::string>>{
                                        {2000, "Please Wait... Reading Power Meter Identity..."}}));
  EXPECT_EQ(world.progress.hides, 1);
}

}  // namespace
}  // namespace pulsemod::test
