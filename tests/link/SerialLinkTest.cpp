#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Queries.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

using Calls = std::vector<std::string>;

class SerialLink : public testing::Test {
 protected:
  SerialLink() {
    world.useSerial();
    world.serial.calls.clear();
  }

  /// The next bytes that arrive, one piece a step.
  void arriving(const std::vector<std::string>& pieces) {
    world.serial.incoming.assign(pieces.begin(), pieces.end());
  }

  FakeWorld world;
  std::string reply = "old text";
};

TEST_F(SerialLink, ConfiguringClosesThenSetsBaudThenPortAndDoesNotOpen) {
  LinkSettings.rs232Baud = 57600;
  LinkSettings.rs232Port = 10;
  ConfigureSerialPort();
  EXPECT_EQ(world.serial.calls, (Calls{"close", "settings 57600,N,8,1", "port 10"}));
  EXPECT_FALSE(world.serial.isOpen());
  world.serial.calls.clear();
  ConfigureSerialPort();
  EXPECT_EQ(world.serial.calls, (Calls{"settings 57600,N,8,1", "port 10"}));
}

TEST_F(SerialLink, OpeningAndClearingTheMeterAreNotForThisLink) {
  OpenMeterLink();
  ClearMeter();
  EXPECT_TRUE(world.gpib.calls.empty());
  EXPECT_TRUE(world.serial.calls.empty());
  EXPECT_TRUE(world.clock.sleeps.empty());
  EXPECT_EQ(world.clock.seconds, 3600);
}

TEST_F(SerialLink, ACommandEndsWithACarriageReturnAndIsAlwaysFalse) {
  EXPECT_FALSE(SendCommand("CHMODE 1,PMOD"));
  EXPECT_EQ(world.serial.sent, "CHMODE 1,PMOD\r");
  EXPECT_EQ(world.meter.received, (Transcript{"CHMODE 1,PMOD"}));
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(SerialLink, ACommandReturnsWhenItsLastCharacterHasLeft) {
  world.serial.stalledSteps = 5;
  int handled = 0;
  for (int event = 0; event < 4; ++event) world.events.post([&handled] { ++handled; });
  SendCommand("CHDISPN 1");
  EXPECT_EQ(world.serial.sent, "CHDISPN 1\r");
  EXPECT_EQ(world.serial.outputCount(), 0U);
  EXPECT_EQ(handled, 4);
}

TEST_F(SerialLink, AReplyBeginsAfterItsRAndEndsBeforeItsLineFeed) {
  struct Row {
    std::string arrived;
    std::string text;
  };
  const Row rows[] = {
      {"RPMPO 1,2,-30,-31\r\n", "PMPO 1,2,-30,-31\r"},
      {"xx\r\nyRPMPO 1,2,-30,-31\r\n", "PMPO 1,2,-30,-31\r"},
      {"RTRCAPT 1,PMOD,0.0046\r\n", "TRCAPT 1,PMOD,0.0046\r"},
      {"RR\r\n", "R\r"},
      {"RARBRC\n", "ARBRC"},
      {"R\n", ""},
      {"\n\nR1\r\n", "1\r"},
      {"R a \r b \r\n", " a \r b \r"},
  };
  for (const Query query : queries) {
    for (const Row& row : rows) {
      // The reply begins to arrive when the query has left.
      world.meter.onMessage = [this, &row](const std::string&) { arriving({row.arrived}); };
      EXPECT_TRUE(query("Q", reply));
      EXPECT_EQ(reply, row.text);
    }
  }
}

TEST_F(SerialLink, AReplyMayArriveByteByByteOrAllAtOnce) {
  world.meter.replies["TRCAPT? 1,PMOD"] = "TRCAPT 1,PMOD,0.0046";
  for (const std::size_t size : {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{99}}) {
    world.serial.pieceSize = size;
    EXPECT_TRUE(QueryMeter("TRCAPT? 1,PMOD", reply));
    EXPECT_EQ(reply, "TRCAPT 1,PMOD,0.0046\r") << size;
  }
}

TEST_F(SerialLink, TheUserInterfaceRunsBeforeEachCharacter) {
  world.meter.replies["Q"] = "12345678";
  world.events.pendingCalls = 0;
  EXPECT_TRUE(QueryMeter("Q", reply));
  // One for the query and one for each of "R12345678\r\n".
  EXPECT_EQ(world.events.pendingCalls, 1 + 11);
}

TEST_F(SerialLink, WhatFollowsALineFeedBelongsToTheNextReply) {
  world.meter.onMessage = [this](const std::string&) { arriving({"Rone\r\nRtwo\r\n"}); };
  EXPECT_TRUE(QueryMeter("A", reply));
  EXPECT_EQ(reply, "one\r");
  world.meter.onMessage = nullptr;
  EXPECT_TRUE(QueryMeter("B", reply));
  EXPECT_EQ(reply, "two\r");
}

TEST_F(SerialLink, WithoutAnAnswerAQueryWaitsForEver) {
  EXPECT_THROW(QueryMeter("Q", reply), WaitsForEver);
  EXPECT_THROW(QueryMeterWhenReady("Q", reply), WaitsForEver);
}

TEST_F(SerialLink, AReplyWithoutAnRNeverCompletes) {
  arriving({"PMPO 1,2,-30\r\n", "MKNO 1,1\r\n"});
  EXPECT_THROW(QueryMeter("Q", reply), WaitsForEver);
  EXPECT_EQ(reply, "");
}

TEST_F(SerialLink, AReplyWithoutALineFeedNeverCompletes) {
  arriving({"R1\r"});
  EXPECT_THROW(QueryMeter("Q", reply), WaitsForEver);
}

TEST_F(SerialLink, AnOperationIsCompletedButNeverTold) {
  EXPECT_FALSE(WaitOperationComplete("*CLS; *ESE 56"));
  EXPECT_EQ(world.serial.sent, "*CLS; *ESE 56; *OPC?\r");
  // Its answer was read: the next reply is the next query's own.
  world.meter.replies["*IDN?"] = "QX7204";
  EXPECT_TRUE(QueryMeter("*IDN?", reply));
  EXPECT_EQ(reply, "QX7204\r");
  EXPECT_EQ(world.serial.interruptedQueries, 0);
}

TEST_F(SerialLink, AnErrorOfTheMeterIsNotSeen) {
  world.meter.rejected = {"TTSRC 1,MARKER"};
  world.meter.replies["*IDN?"] = "QX7204";
  SendCommand("TTSRC 1,MARKER");
  EXPECT_TRUE(QueryMeter("*IDN?", reply));
  EXPECT_EQ(world.meter.received, (Transcript{"TTSRC 1,MARKER", "*IDN?"}));
}

TEST_F(SerialLink, OnAClosedPortNothingIsSentAndEverythingFails) {
  world.serial.close();
  EXPECT_FALSE(SendCommand("X"));
  EXPECT_FALSE(QueryMeter("Q", reply));
  EXPECT_EQ(reply, "");
  EXPECT_FALSE(QueryMeterWhenReady("Q", reply));
  EXPECT_FALSE(WaitOperationComplete("*CLS"));
  EXPECT_EQ(world.serial.sent, "");
}

TEST_F(SerialLink, APortLostWhileTheQueryLeavesFailsIt) {
  world.serial.stalledSteps = 10;
  for (int event = 0; event < 3; ++event) world.events.post([] {});
  world.events.post([this] { world.serial.lose(); });
  EXPECT_FALSE(QueryMeter("Q", reply));
  EXPECT_EQ(reply, "");
  EXPECT_EQ(world.serial.sent, "");
  EXPECT_EQ(linkFailureReason(), "The serial port was lost.");
}

TEST_F(SerialLink, APortLostWhileACommandLeavesEndsTheWait) {
  world.serial.stalledSteps = 10;
  world.events.post([] {});
  world.events.post([] {});
  world.events.post([this] { world.serial.lose(); });
  EXPECT_FALSE(SendCommand("X"));
  EXPECT_EQ(world.serial.sent, "");
}

TEST_F(SerialLink, APortLostBeforeTheFirstCharacterFailsTheQuery) {
  for (int event = 0; event < 5; ++event) world.events.post([] {});
  world.events.post([this] { world.serial.lose(); });
  EXPECT_FALSE(QueryMeter("Q", reply));
  EXPECT_EQ(reply, "");
  EXPECT_EQ(world.serial.sent, "Q\r");
}

TEST_F(SerialLink, APortLostInAReplyKeepsWhatCame) {
  world.meter.onMessage = [this](const std::string&) {
    arriving({"xxRPMPO 1,"});
    for (int event = 0; event < 20; ++event) world.events.post([] {});
    world.events.post([this] { world.serial.lose(); });
  };
  EXPECT_FALSE(QueryMeter("PMPO 1", reply));
  EXPECT_EQ(reply, "PMPO 1,");
}

TEST_F(SerialLink, APortLostWhileTheAnswerOfAnOperationComesEndsTheWait) {
  world.meter.operationComplete = "1";
  world.serial.pieceSize = 1;
  world.meter.onMessage = [this](const std::string&) {
    world.events.post([this] { world.serial.lose(); });
  };
  EXPECT_FALSE(WaitOperationComplete("*CLS"));
  EXPECT_FALSE(world.serial.isOpen());
}

TEST_F(SerialLink, AReplyThatHasArrivedIsReadThoughThePortWasLostAfterIt) {
  world.meter.onMessage = [this](const std::string&) { arriving({"Rwhole\r\n"}); };
  world.events.post([] {});
  world.events.post([] {});
  world.events.post([this] { world.serial.lose(); });
  EXPECT_TRUE(QueryMeter("Q", reply));
  EXPECT_EQ(reply, "whole\r");
}

TEST_F(SerialLink, WhileItIsAllowedTheUserGivesUpThisReplyAndEveryLaterOne) {
  ReplyMayBeGivenUp = true;
  const double start = world.clock.seconds;
  for (int event = 0; event < 3; ++event) world.events.post([] {});
  world.events.post([this] { world.progress.dismissedByUser = true; });
  EXPECT_FALSE(QueryMeter("silent", reply));
  EXPECT_NEAR(world.clock.seconds - start, 2, 0.01);
  EXPECT_TRUE(LinkGivenUp);
  EXPECT_FALSE(QueryMeter("*IDN?", reply));
  EXPECT_FALSE(WaitOperationComplete("*CLS"));
  EXPECT_EQ(world.serial.sent, "silent\r");
  EXPECT_TRUE(world.serial.isOpen());
}

TEST_F(SerialLink, ClosingTheProgressWindowGivesUpNoReplyThatComesInTime) {
  ReplyMayBeGivenUp = true;
  world.meter.replies["Q"] = "text";
  world.progress.dismissedByUser = true;
  EXPECT_TRUE(QueryMeter("Q", reply));
  EXPECT_EQ(reply, "text\r");
  EXPECT_FALSE(LinkGivenUp);
}

TEST_F(SerialLink, WhileItIsAllowedTheUserGivesUpAQueryThatDoesNotLeave) {
  ReplyMayBeGivenUp = true;
  world.serial.stalledSteps = 1000;
  world.events.post([] {});
  world.events.post([this] { world.progress.dismissedByUser = true; });
  EXPECT_FALSE(QueryMeter("*IDN?", reply));
  EXPECT_EQ(world.serial.sent, "");
}

TEST_F(SerialLink, LaterAClosedProgressWindowGivesNothingUp) {
  world.progress.dismissedByUser = true;
  world.meter.replies["Q"] = "text";
  EXPECT_TRUE(QueryMeter("Q", reply));
  EXPECT_EQ(reply, "text\r");
  EXPECT_THROW(QueryMeter("silent", reply), WaitsForEver);
}

}  // namespace
}  // namespace pulsemod::test
