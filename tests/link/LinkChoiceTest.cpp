#include <gtest/gtest.h>

#include <string>

#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

TEST(LinkChoice, AnyOtherCommsTypeDoesNothingAndFails) {
  for (const std::int32_t commsType : {0, 3, -1, 257}) {
    FakeWorld world;
    world.serial.open();
    world.serial.calls.clear();
    LinkSettings.commsType = commsType;
    std::string reply = "old text";
    OpenMeterLink();
    ConfigureSerialPort();
    ClearMeter();
    EXPECT_FALSE(SendCommand("CHDISPN 1"));
    EXPECT_FALSE(QueryMeter("*IDN?", reply));
    EXPECT_EQ(reply, "");
    reply = "old text";
    EXPECT_FALSE(QueryMeterWhenReady("TR1 1", reply));
    EXPECT_EQ(reply, "");
    EXPECT_FALSE(WaitOperationComplete("*CLS"));
    EXPECT_TRUE(world.gpib.calls.empty());
    EXPECT_TRUE(world.serial.calls.empty());
    EXPECT_EQ(world.serial.outputCount(), 0U);
    EXPECT_TRUE(world.meter.received.empty());
    EXPECT_TRUE(world.clock.sleeps.empty());
    EXPECT_EQ(world.clock.seconds, 3600);
    EXPECT_TRUE(world.dialogs.messages.empty());
    EXPECT_EQ(linkFailureReason(),
              "The stored communications settings name neither GPIB nor RS232.");
  }
}

TEST(LinkChoice, FailureReasonOfEachLink) {
  FakeWorld world;
  EXPECT_EQ(linkFailureReason(), "");
  LinkSettings.gpibAddress = 4;
  world.gpib.failNext["Send"] = 1;
  SendCommand("X");
  EXPECT_EQ(linkFailureReason(), "No power meter answers at GPIB address 4.");
  LinkSettings.commsType = commsTypeRS232;
  LinkSettings.rs232Port = 10;
  EXPECT_EQ(linkFailureReason(), "No power meter answers at COM10:.");
  world.serial.reason = "There is no serial port COM10:.";
  EXPECT_EQ(linkFailureReason(), "There is no serial port COM10:.");
}

TEST(LinkChoice, LaterEditsDoNotTouchTheLink) {
  FakeWorld world;
  EditedComms.commsType = commsTypeRS232;
  EditedComms.gpibAddress = 7;
  EXPECT_TRUE(SaveCommsSettings());
  EXPECT_TRUE(SendCommand("X"));
  EXPECT_EQ(world.gpib.timesCalled("Send 13 X"), 1);
  EXPECT_EQ((world.store.values[{"Comms", "GPIBAddress"}]), "7");
}

}  // namespace
}  // namespace pulsemod::test
