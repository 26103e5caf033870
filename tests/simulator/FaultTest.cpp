// What each fault does to a reply, without a link.
#include <gtest/gtest.h>

#include "Bench.h"

namespace simmeter {
namespace {

using std::chrono::milliseconds;

TEST(Fault, StrikesAtItsOccurrenceOnly) {
  Bench bench("fault = *OPC?, 2, drop\n");
  EXPECT_EQ(bench.ask("*OPC?"), "1");
  EXPECT_EQ(bench.ask("*OPC?"), "");
  EXPECT_EQ(bench.ask("*OPC?"), "1");
  EXPECT_EQ(countKind(bench.record(), "FAULT"), 1);
  EXPECT_NE(bench.record().find("FAULT *OPC?, 2, drop"), std::string::npos);
}

TEST(Fault, StrikesFromAnOccurrenceOn) {
  Bench bench("fault = *OPC?, from 2, empty\n");
  EXPECT_EQ(bench.ask("*OPC?"), "1");
  EXPECT_EQ(bench.ask("*OPC?"), "");
  EXPECT_EQ(bench.ask("*OPC?"), "");
}

TEST(Fault, AnotherPlanTakesThePlaceOfTheOldOneAndCountsAnew) {
  Bench bench("fault = *OPC?, 2, drop\n");
  EXPECT_EQ(bench.ask("*OPC?"), "1");
  EXPECT_EQ(bench.exchange->faults().strikes(), 0u);
  EXPECT_EQ(bench.ask("*OPC?"), "");
  EXPECT_EQ(bench.exchange->faults().strikes(), 1u);
  bench.exchange->faults() = FaultPlan({*parseFault("*IDN?, 1, drop")});
  EXPECT_EQ(bench.ask("*OPC?"), "1");
  EXPECT_EQ(bench.exchange->faults().strikes(), 0u);
  EXPECT_EQ(bench.ask("*IDN?"), "");
  EXPECT_EQ(bench.exchange->faults().strikes(), 1u);
}

TEST(Fault, MatchesTheBeginningOfTheMessage) {
  Bench bench("fault = pmpre, every, drop\n");
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "");
  EXPECT_EQ(bench.ask("PMPSCAL? 1,DB"), "PMPSCAL 1,DB,10");
  EXPECT_EQ(bench.ask("*OPC?;PMPREF? 1,DB"), "1;PMPREF 1,DB,10");
}

TEST(Fault, CountsRepliesNotCommands) {
  Bench bench("fault = PMPREF, 1, drop\n");
  bench.tell("PMPREF 1,DB,3");
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "");
}

TEST(Fault, LateReplyIsNotAvailableBefore) {
  Bench bench("fault = *OPC?, 1, late 50\n");
  const TimePoint before = Clock::now();
  bench.tell("*CLS");
  bench.tell("*OPC?");
  Reply* reply = bench.exchange->reply();
  ASSERT_NE(reply, nullptr);
  EXPECT_EQ(reply->available(before + milliseconds(49)), 0u);
  EXPECT_EQ(reply->available(Clock::now() + milliseconds(51)), 3u);
  EXPECT_EQ(bench.exchange->serialPoll(before + milliseconds(49)), 0);
  EXPECT_EQ(bench.exchange->serialPoll(Clock::now() + milliseconds(51)), stb::kMessageAvailable);
}

TEST(Fault, LateReplyCanBeInterrupted) {
  Bench bench("fault = *IDN?, 1, late 50\n");
  bench.tell("*IDN?");
  bench.tell("CHDISPN 1");
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 1);
}

TEST(Fault, ReplyDelayHoldsForAll) {
  Bench bench("reply-delay = 20\n");
  const TimePoint before = Clock::now();
  bench.tell("*OPC?");
  EXPECT_EQ(bench.exchange->reply()->available(before + milliseconds(19)), 0u);
}

TEST(Fault, CutReplyHasNoEnd) {
  Bench bench("fault = *IDN?, 1, cut 7\n");
  bench.tell("*IDN?");
  EXPECT_FALSE(bench.exchange->reply()->ends);
  EXPECT_EQ(bench.take(), "PELMORA");
  EXPECT_EQ(countKind(bench.record(), ">"), 0);  // it was never complete
}

TEST(Fault, CutToNothingIsMissing) {
  Bench bench("fault = *IDN?, 1, cut 0\n");
  bench.tell("*IDN?");
  EXPECT_FALSE(bench.hasReply());
}

TEST(Fault, ShortReplyEndsProperly) {
  Bench bench("fault = *IDN?, 1, short 7\n");
  bench.tell("*IDN?");
  EXPECT_TRUE(bench.exchange->reply()->ends);
  EXPECT_EQ(bench.take(), "PELMORA\r\n");
}

TEST(Fault, EmptyReplyIsATerminator) {
  Bench bench("fault = *IDN?, 1, empty\n");
  bench.tell("*IDN?");
  EXPECT_EQ(bench.take(), "\r\n");
}

TEST(Fault, MissingReplyIsNotTheControllersError) {
  Bench bench("fault = *IDN?, 1, missing\n");
  bench.tell("*CLS");
  bench.tell("*IDN?");
  EXPECT_FALSE(bench.hasReply());
  bench.exchange->readInVain();
  EXPECT_EQ(bench.events(), 0);
}

TEST(Fault, GarbledReplyDiffersInEveryThirdByte) {
  Bench bench("fault = *IDN?, 1, garble\n");
  bench.tell("*IDN?");
  EXPECT_EQ(bench.take().substr(0, 7), "QELLOR@");
}

TEST(Fault, ReplacedReplyKeepsPrefixAndTerminator) {
  Bench bench("fault = *IDN?, 1, replace hello, you\n", kSerialFraming);
  bench.tell("*IDN?");
  EXPECT_EQ(bench.take(), "Rhello, you\r\n");
}

TEST(Fault, RawReplyIsExactlyTheText) {
  Bench bench("fault = *IDN?, 1, raw xx\\x00R1\\n\n", kSerialFraming);
  bench.tell("*IDN?");
  EXPECT_EQ(bench.take(), std::string("xx\0R1\n", 6));
}

TEST(Fault, ByteWiseReplyTakesItsTime) {
  Bench bench("fault = *OPC?, 1, bytewise 10\n");
  bench.tell("*OPC?");
  Reply* reply = bench.exchange->reply();
  EXPECT_EQ(reply->available(reply->due + milliseconds(9)), 0u);
  EXPECT_EQ(reply->available(reply->due + milliseconds(10)), 1u);
  EXPECT_EQ(reply->available(reply->due + milliseconds(29)), 2u);
  EXPECT_EQ(reply->available(reply->due + milliseconds(30)), 3u);
}

TEST(Fault, StalledReplyPausesAfterItsBytes) {
  Bench bench("fault = *IDN?, 1, stall 10 200\n");
  bench.tell("*IDN?");
  Reply* reply = bench.exchange->reply();
  EXPECT_EQ(reply->available(reply->due), 10u);
  EXPECT_EQ(reply->available(reply->due + milliseconds(199)), 10u);
  EXPECT_EQ(reply->available(reply->due + milliseconds(200)), reply->bytes.size());
}

TEST(Fault, HangUpTakesTheLinkAway) {
  Bench bench("fault = *IDN?, 1, hang-up\n");
  bench.tell("*OPC?");
  EXPECT_FALSE(bench.exchange->hungUp());
  bench.tell("*IDN?");
  EXPECT_TRUE(bench.exchange->hungUp());
  EXPECT_FALSE(bench.hasReply());
}

TEST(Fault, RefusedCommandChangesNothing) {
  Bench bench(
      "fault = PMPREF 1, 2, refuse\n"
      "fault = TTSRC, every, refuse device\n"
      "fault = PMAVGS, 1, refuse command\n");
  bench.tell("*CLS;PMPREF 1,DB,3;PMPREF 1,DB,4");
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "PMPREF 1,DB,3");
  EXPECT_EQ(bench.ask("TTSRC? 1"), "");
  EXPECT_EQ(bench.events(), esr::kDeviceError);
  bench.tell("PMAVGS 1,ON");
  EXPECT_EQ(bench.events(), esr::kCommandError);
  EXPECT_EQ(bench.ask("PMAVGS? 1"), "PMAVGS 1,OFF");
}

TEST(Fault, SeveralFaultsStrikeTogether) {
  Bench bench("fault = *IDN?, 1, replace ab\nfault = *IDN?, 1, late 30\n");
  const TimePoint before = Clock::now();
  bench.tell("*IDN?");
  EXPECT_EQ(bench.exchange->reply()->available(before + milliseconds(29)), 0u);
  EXPECT_EQ(bench.take(), "ab\r\n");
  EXPECT_EQ(countKind(bench.record(), "FAULT"), 2);
}

}  // namespace
}  // namespace simmeter
