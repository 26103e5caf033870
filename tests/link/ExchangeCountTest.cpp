#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "link/ExchangeCount.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

void eachKindOfExchangeOnce() {
  std::string reply = "old";
  EXPECT_FALSE(SendCommand("CHDISPN 1"));
  EXPECT_FALSE(QueryMeter("CHACTIV?", reply));
  EXPECT_EQ(reply, "");
  reply = "old";
  EXPECT_FALSE(QueryMeterWhenReady("TR1 1", reply));
  EXPECT_EQ(reply, "");
  EXPECT_FALSE(WaitOperationComplete("*CLS"));
}

TEST(ExchangeCounting, TellsTheMeterNothingOnEitherLink) {
  for (const bool serial : {false, true}) {
    FakeWorld world;
    if (serial) world.useSerial();
    world.meter.replies["CHACTIV?"] = "CHACTIV 1";
    EXPECT_EQ(countExchanges(eachKindOfExchangeOnce), 4);
    EXPECT_TRUE(world.meter.received.empty());
    EXPECT_EQ(world.serial.sent, "");
    EXPECT_EQ(world.events.waits, 0);
  }
}

TEST(ExchangeCounting, EndsWithTheRoutine) {
  FakeWorld world;
  world.meter.replies["CHACTIV?"] = "CHACTIV 1";
  EXPECT_EQ(countExchanges([] {}), 0);
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(countExchanges([] { SendCommand("CHDISPN 1"); }), 1);
  }
  std::string reply;
  EXPECT_TRUE(QueryMeter("CHACTIV?", reply));
  EXPECT_EQ(reply, "CHACTIV 1\r");
  EXPECT_EQ(world.meter.received, (Transcript{"CHACTIV?"}));
}

TEST(ExchangeCounting, AFaultEndsTheCountWhereItEndsTheRoutine) {
  FakeWorld world;
  const auto routine = [] {
    SendCommand("CHDISPN 1");
    SendCommand("CHACTIV 1");
    throw Fault("broken");
  };
  EXPECT_EQ(countExchanges(routine), 2);
  EXPECT_TRUE(SendCommand("CHDISPN 1"));
  EXPECT_EQ(world.meter.received, (Transcript{"CHDISPN 1"}));
}

TEST(ExchangeCounting, EachExchangeIsToldWhenItIsOverHoweverItEnded) {
  for (const bool serial : {false, true}) {
    FakeWorld world;
    if (serial) world.useSerial();
    std::vector<std::size_t> told;
    ExchangeCount.afterEach = [&] { told.push_back(world.meter.received.size()); };
    world.meter.replies = {{"CHACTIV?", "CHACTIV 1"}, {"TR1 1", "TR1 1"}, {"*CLS; *OPC?", "1"}};
    std::string reply;
    SendCommand("CHDISPN 1");
    QueryMeter("CHACTIV?", reply);
    QueryMeterWhenReady("TR1 1", reply);
    WaitOperationComplete("*CLS");
    EXPECT_EQ(told, (std::vector<std::size_t>{1, 2, 3, 4})) << (serial ? "RS232" : "GPIB");
  }
}

TEST(ExchangeCounting, AQueryThatFailsAndIsClearedIsOneExchange) {
  FakeWorld world;
  int told = 0;
  ExchangeCount.afterEach = [&told] { ++told; };
  world.meter.rejected = {"TTSRC 1,MARKER"};
  world.meter.replies["CHACTIV?"] = "CHACTIV 1";
  EXPECT_TRUE(SendCommand("TTSRC 1,MARKER"));
  std::string reply;
  EXPECT_FALSE(QueryMeter("CHACTIV?", reply));
  EXPECT_EQ(world.meter.received.back(), "*CLS; *OPC?");
  EXPECT_EQ(told, 2);
}

}  // namespace
}  // namespace pulsemod::test
