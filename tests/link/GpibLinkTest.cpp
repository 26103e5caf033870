#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "Queries.h"
#include "link/GpibCalls.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

using Calls = std::vector<std::string>;

class GpibLink : public testing::Test {
 protected:
  GpibLink() {
    SendIFC(0);  // registers, so that the tests see the exchange alone
    world.gpib.calls.clear();
  }

  FakeWorld world;
  std::string reply = "old text";
};

TEST_F(GpibLink, OpeningClearsInterfaceThenMeterThenPauses) {
  LinkSettings.gpibAddress = 9;
  OpenMeterLink();
  EXPECT_EQ(world.gpib.calls, (Calls{"SendIFC 0", "DevClear 0 9"}));
  EXPECT_EQ(world.clock.sleeps, (std::vector<int>{500}));
  EXPECT_TRUE(world.serial.calls.empty());
}

TEST_F(GpibLink, ClosingTakesTheBoardOffline) {
  world.gpib.boardDescriptor = 32;
  CloseMeterLink();
  EXPECT_EQ(world.gpib.calls, (Calls{"ibfindA GPIB0", "ibonl 32 0"}));
}

TEST_F(GpibLink, TheSerialPortIsNotConfigured) {
  ConfigureSerialPort();
  EXPECT_TRUE(world.serial.calls.empty());
}

TEST_F(GpibLink, ACommandIsSentToTheAddressOfTheLink) {
  LinkSettings.gpibAddress = 30;
  EditedComms.gpibAddress = 7;
  EXPECT_TRUE(SendCommand("CHDISPN 1"));
  EXPECT_EQ(world.gpib.calls, (Calls{"Send 30 CHDISPN 1"}));
  EXPECT_EQ(world.gpib.lastEnd, GpibEnd::newlineWithEoi);
}

TEST_F(GpibLink, ACommandThatCouldNotBeSentIsFalse) {
  world.gpib.failNext["Send"] = 1;
  EXPECT_FALSE(SendCommand("CHDISPN 1"));
  EXPECT_TRUE(SendCommand("CHDISPN 1"));
}

TEST_F(GpibLink, ClearingTheMeterIsFollowedByAPauseInWhichEventsRun) {
  bool handled = false;
  world.events.post([&handled] { handled = true; });
  ClearMeter();
  EXPECT_EQ(world.gpib.calls, (Calls{"DevClear 0 13"}));
  EXPECT_TRUE(handled);
  EXPECT_TRUE(world.clock.sleeps.empty());
  EXPECT_NEAR(world.clock.seconds, 3600.1, 0.002);
}

TEST_F(GpibLink, AQueryReceivesThenPausesThenPolls) {
  world.meter.replies["*IDN?"] = "PELMORA,QX7205A";
  int handled = 0;
  world.events.post([&handled] { ++handled; });
  EXPECT_TRUE(QueryMeter("*IDN?", reply));
  EXPECT_EQ(reply, "PELMORA,QX7205A\r");
  EXPECT_EQ(world.gpib.calls, (Calls{"Send 13 *IDN?", "Receive 13", "ReadStatusByte 13"}));
  EXPECT_EQ(world.clock.sleeps, (std::vector<int>{10}));
  EXPECT_EQ(handled, 1);
  EXPECT_EQ(world.gpib.lastSize, 4096U);
  EXPECT_EQ(world.gpib.lastTermination, 0x100);
}

TEST_F(GpibLink, EachChunkOfAReplyLosesItsLastCharacter) {
  world.gpib.terminator = "\n";
  const std::string text = std::string(4095, 'a') + "b";
  world.meter.replies["Q"] = text;  // 4097 bytes with the terminator
  for (const Query query : queries) {
    EXPECT_TRUE(query("Q", reply));
    EXPECT_EQ(reply, std::string(4095, 'a'));
  }
  world.gpib.chunkSize = 4000;
  world.meter.replies["Q"] = std::string(3999, 'a') + "X" + std::string(199, 'b');
  for (const Query query : queries) {
    world.gpib.calls.clear();
    world.clock.sleeps.clear();
    EXPECT_TRUE(query("Q", reply));
    EXPECT_EQ(reply, std::string(3999, 'a') + std::string(199, 'b'));
    EXPECT_EQ(world.gpib.timesCalled("Receive 13"), 2);
    EXPECT_EQ(world.clock.sleeps, (std::vector<int>{10, 10}));
  }
}

TEST_F(GpibLink, AReadThatMovesNothingAppendsNothingAndGoesOn) {
  world.meter.replies["Q"] = "text";
  for (const Query query : queries) {
    world.gpib.calls.clear();
    world.gpib.chunkSize = 0;
    world.events.post([] {});
    world.events.post([this] { world.gpib.chunkSize = 100; });
    EXPECT_TRUE(query("Q", reply));
    EXPECT_EQ(reply, "text\r");
    EXPECT_EQ(world.gpib.timesCalled("Receive 13"), 3);
  }
}

TEST_F(GpibLink, AReplyOfItsTerminatorAloneIsEmpty) {
  world.gpib.terminator = "\n";
  world.meter.replies["Q"] = "";
  for (const Query query : queries) {
    reply = "old text";
    EXPECT_TRUE(query("Q", reply));
    EXPECT_EQ(reply, "");
  }
}

TEST_F(GpibLink, AReplyKeepsEveryByteBetweenItsEnds) {
  const std::string bytes("\x00\x80\xFF#3\n\x9C", 7);
  world.gpib.terminator = "\n";
  world.meter.replies["Q"] = bytes;
  EXPECT_TRUE(QueryMeter("Q", reply));
  EXPECT_EQ(reply, bytes);
}

struct Failure {
  std::string call;
  int time;
  std::string keptText;
  int receives;
};

TEST_F(GpibLink, AFailureAtAnyCallEndsTheQueryAndKeepsWhatCame) {
  const Failure failures[] = {
      {"Send", 1, "", 0},
      {"Receive", 1, "", 1},
      {"ReadStatusByte", 1, "abcd", 1},
      {"Receive", 2, "abcd", 2},
      {"ReadStatusByte", 2, "abcdfghi", 2},
  };
  world.gpib.chunkSize = 5;
  world.meter.replies["Q"] = "abcdefghijklm";
  for (const Failure& failure : failures) {
    reply = "old text";
    world.gpib.calls.clear();
    world.gpib.failNext[failure.call] = failure.time;
    EXPECT_FALSE(QueryMeter("Q", reply)) << failure.call << failure.time;
    EXPECT_EQ(reply, failure.keptText) << failure.call << failure.time;
    EXPECT_EQ(world.gpib.timesCalled("Receive 13"), failure.receives);
    EXPECT_EQ(world.gpib.timesCalled("Send 13 Q"), 1);
    EXPECT_EQ(world.gpib.timesCalled("Send 13 *CLS; *OPC?"), 0);
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(GpibLink, AFailureAtAnyCallEndsAQueryThatWaits) {
  const Failure failures[] = {
      {"Send", 1, "", 0},        {"ReadStatusByte", 1, "", 0},
      {"Receive", 1, "", 1},     {"ReadStatusByte", 2, "abcd", 1},
      {"Receive", 2, "abcd", 2}, {"ReadStatusByte", 3, "abcdfghi", 2},
  };
  world.gpib.chunkSize = 5;
  world.meter.replies["Q"] = "abcdefghijklm";
  for (const Failure& failure : failures) {
    reply = "old text";
    world.gpib.calls.clear();
    world.gpib.failNext[failure.call] = failure.time;
    EXPECT_FALSE(QueryMeterWhenReady("Q", reply)) << failure.call << failure.time;
    EXPECT_EQ(reply, failure.keptText) << failure.call << failure.time;
    EXPECT_EQ(world.gpib.timesCalled("Receive 13"), failure.receives);
  }
}

TEST_F(GpibLink, AnErrorOfTheMeterIsClearedAndFailsTheQuery) {
  world.meter.rejected = {"TTSRC 1,MARKER"};
  world.meter.replies["*IDN?"] = "me";
  EXPECT_TRUE(SendCommand("TTSRC 1,MARKER"));
  EXPECT_FALSE(QueryMeter("*IDN?", reply));
  EXPECT_EQ(reply, "me\r");
  EXPECT_EQ(world.meter.received, (Transcript{"TTSRC 1,MARKER", "*IDN?", "*CLS; *OPC?"}));
  EXPECT_EQ(world.gpib.calls, (Calls{"Send 13 TTSRC 1,MARKER", "Send 13 *IDN?", "Receive 13",
                                     "ReadStatusByte 13", "Send 13 *CLS; *OPC?", "Receive 13"}));
  EXPECT_TRUE(QueryMeter("*IDN?", reply));
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(GpibLink, AnErrorCountsBeforeAFurtherChunk) {
  world.gpib.chunkSize = 5;
  world.meter.replies["Q"] = "abcdefghijklm";
  world.gpib.statusBytes = {0x30};
  EXPECT_FALSE(QueryMeter("Q", reply));
  EXPECT_EQ(reply, "abcd");
  EXPECT_EQ(world.meter.received, (Transcript{"Q", "*CLS; *OPC?"}));
}

TEST_F(GpibLink, AQueryThatWaitsPollsEveryHundredMilliseconds) {
  world.meter.replies["TR1 1"] = "done";
  world.gpib.statusBytes = {0x00, 0x40, 0x10};
  EXPECT_TRUE(QueryMeterWhenReady("TR1 1", reply));
  EXPECT_EQ(reply, "done\r");
  EXPECT_EQ(world.gpib.calls, (Calls{"Send 13 TR1 1", "ReadStatusByte 13", "ReadStatusByte 13",
                                     "ReadStatusByte 13", "Receive 13", "ReadStatusByte 13"}));
  EXPECT_NEAR(world.clock.seconds, 3600.0 + 2 * 0.1 + 0.01, 0.005);
  EXPECT_EQ(world.clock.sleeps, (std::vector<int>{10}));
}

TEST_F(GpibLink, PollsHaveNoLimit) {
  world.meter.replies["TR1 1"] = "done";
  world.gpib.statusBytes.assign(500, 0);
  world.gpib.statusBytes.push_back(0x10);
  EXPECT_TRUE(QueryMeterWhenReady("TR1 1", reply));
  EXPECT_EQ(world.gpib.timesCalled("ReadStatusByte 13"), 502);
}

TEST_F(GpibLink, AMessageCountsBeforeAnErrorWhilePollingAndNoErrorCountsAfter) {
  world.gpib.chunkSize = 5;
  world.meter.replies["Q"] = "abcdefghijklm";
  world.gpib.statusBytes = {0x30, 0x30, 0x30, 0x20};
  EXPECT_TRUE(QueryMeterWhenReady("Q", reply));
  EXPECT_EQ(reply, "abcdfghiklm\r");
  EXPECT_EQ(world.meter.received, (Transcript{"Q"}));
}

TEST_F(GpibLink, AnErrorWithoutAMessageEndsThePolls) {
  world.gpib.statusBytes = {0x00, 0x20};
  EXPECT_FALSE(QueryMeterWhenReady("Q", reply));
  EXPECT_EQ(reply, "");
  EXPECT_EQ(world.gpib.calls, (Calls{"Send 13 Q", "ReadStatusByte 13", "ReadStatusByte 13",
                                     "Send 13 *CLS; *OPC?", "Receive 13"}));
}

TEST_F(GpibLink, AnOperationIsCompleteWhenTheMeterAnswersOne) {
  const std::vector<std::pair<std::string, bool>> answers = {
      {"1", true},  {"+1", true}, {" 1.0", true}, {"1E0", true}, {"0", false},
      {"2", false}, {"", false},  {"x", false},   {"10", false}, {"-1", false},
  };
  for (const auto& [answer, complete] : answers) {
    world.meter.operationComplete = answer;
    EXPECT_EQ(WaitOperationComplete("*CLS"), complete) << answer;
  }
  EXPECT_EQ(world.meter.received.front(), "*CLS; *OPC?");
  EXPECT_EQ(world.gpib.lastSize, 50U);
  EXPECT_EQ(world.gpib.lastTermination, 0x100);
}

TEST_F(GpibLink, TheLastCharacterOfTheAnswerDoesNotCount) {
  world.gpib.terminator = "";
  world.meter.operationComplete = "1";
  EXPECT_FALSE(WaitOperationComplete("*CLS"));
  world.meter.operationComplete = "10";
  EXPECT_TRUE(WaitOperationComplete("*CLS"));
}

TEST_F(GpibLink, AnAnswerOfNothingIsNotComplete) {
  world.gpib.chunkSize = 0;
  EXPECT_FALSE(WaitOperationComplete("*CLS"));
}

TEST_F(GpibLink, AnOperationThatFailsIsNotComplete) {
  world.gpib.failNext["Send"] = 1;
  EXPECT_FALSE(WaitOperationComplete("*CLS"));
  EXPECT_EQ(world.gpib.timesCalled("Receive 13"), 0);
  world.gpib.failNext["Receive"] = 1;
  EXPECT_FALSE(WaitOperationComplete("*CLS"));
  EXPECT_EQ(world.gpib.timesCalled("ReadStatusByte 13"), 0);
  EXPECT_TRUE(WaitOperationComplete("*CLS"));
}

}  // namespace
}  // namespace pulsemod::test
