#include <gtest/gtest.h>

#include <vector>

#include "link/Conversation.h"
#include "link/MeterLink.h"
#include "link/Session.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

TEST(Session, OnGpibTheBoardGoesOfflineOnceBeforeTheEnd) {
  FakeWorld world;
  EXPECT_THROW(EndSession(), ProgramEnded);
  EXPECT_EQ(world.gpib.calls, (std::vector<std::string>{"Register", "ibfindA GPIB0", "ibonl 7 0"}));
  EXPECT_EQ(world.programEnd.ends, 1);
}

TEST(Session, OnSerialNoGpibCallIsMadeAndThePortStaysOpen) {
  FakeWorld world;
  world.useSerial();
  world.serial.calls.clear();
  EXPECT_THROW(EndSession(), ProgramEnded);
  EXPECT_TRUE(world.gpib.calls.empty());
  EXPECT_TRUE(world.serial.calls.empty());
  EXPECT_EQ(world.programEnd.ends, 1);
}

TEST(Session, TheLinkInUseCountsAndNotTheOneThatWasChosenMeanwhile) {
  FakeWorld world;
  EditedComms.commsType = commsTypeRS232;
  EXPECT_THROW(EndSession(), ProgramEnded);
  EXPECT_EQ(world.gpib.timesCalled("ibonl 7 0"), 1);
}

TEST(Session, KeptExchangesNeverReachTheMeter) {
  FakeWorld world;
  bool ran = false;
  EXPECT_THROW(converse([&ran] {
                 whenLinkIsFree([&ran] { ran = true; });
                 EndSession();
               }),
               ProgramEnded);
  EXPECT_FALSE(ran);
  EXPECT_TRUE(Conversation.kept.empty());
  EXPECT_TRUE(world.meter.received.empty());
}

TEST(Session, WithoutALibraryTheProgramEndsAllTheSame) {
  FakeWorld world;
  world.gpib.registrationResults = {4, 4, 4};
  EXPECT_THROW(EndSession(), ProgramEnded);
  EXPECT_EQ(world.gpib.calls, (std::vector<std::string>{"Register", "Register"}));
  EXPECT_EQ(world.programEnd.ends, 1);
}

}  // namespace
}  // namespace pulsemod::test
