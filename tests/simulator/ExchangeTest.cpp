// The message exchange and status reporting of IEEE 488.2.
#include <gtest/gtest.h>

#include "Bench.h"

namespace simmeter {
namespace {

TEST(Exchange, PowerOnIsReportedOnce) {
  Bench bench;
  EXPECT_EQ(bench.events(), esr::kPowerOn);
  EXPECT_EQ(bench.events(), 0);
}

TEST(Exchange, TextRepliesEndWithBothLineCharacters) {
  Bench bench;
  bench.tell("*OPC?");
  EXPECT_EQ(bench.take(), "1\r\n");
}

TEST(Exchange, IdentityAndCompletionHaveNoEcho) {
  Bench bench;
  EXPECT_EQ(bench.ask("*IDN?"), "PELMORA,QX7205A,SN001234,V1.05");
  EXPECT_EQ(bench.ask("*OPC?"), "1");
  EXPECT_EQ(bench.ask("*TST?"), "0");
}

TEST(Exchange, CompoundMessageIsCarriedOutInOrder) {
  Bench bench;
  EXPECT_EQ(bench.ask("*CLS; *ESE 56; *OPC?"), "1");
  EXPECT_EQ(bench.ask("*ESE?"), "56");
  EXPECT_EQ(bench.ask("PMPREF 1,DB,4;PMPREF? 1,DB; *IDN?;;*OPC?"),
            "PMPREF 1,DB,4;PELMORA,QX7205A,SN001234,V1.05;1");
}

TEST(Exchange, LeadingBlanksAreIgnored) {
  Bench bench;
  EXPECT_EQ(bench.ask("  \t *OPC?  "), "1");
}

TEST(Exchange, UnitsAfterARefusedOneAreCarriedOut) {
  Bench bench;
  EXPECT_EQ(bench.ask("*CLS;NONSENSE;*OPC?"), "1");
  EXPECT_EQ(bench.events(), esr::kCommandError);
}

TEST(Exchange, EoiAloneEndsAMessage) {
  Bench bench;
  bench.exchange->receive("*OPC?", true, Clock::now());
  EXPECT_EQ(bench.take(), "1\r\n");
}

TEST(Exchange, NewLineAloneEndsAMessage) {
  Bench bench;
  bench.exchange->receive("*OPC?\n", false, Clock::now());
  EXPECT_EQ(bench.take(), "1\r\n");
}

TEST(Exchange, AMessageMayComeInPieces) {
  Bench bench;
  bench.exchange->receive("*O", false, Clock::now());
  EXPECT_FALSE(bench.hasReply());
  bench.exchange->receive("PC?", false, Clock::now());
  EXPECT_FALSE(bench.hasReply());
  bench.exchange->receive("\n", true, Clock::now());
  EXPECT_EQ(bench.take(), "1\r\n");
}

TEST(Exchange, EmptyMessagesAreNoError) {
  Bench bench;
  bench.tell("*CLS");
  bench.tell("");
  bench.tell("   ");
  EXPECT_EQ(bench.events(), 0);
}

TEST(Exchange, CommandErrorIsReported) {
  Bench bench;
  bench.tell("*CLS;BOGUS 1");
  EXPECT_EQ(bench.events(), esr::kCommandError);
  EXPECT_EQ(countKind(bench.record(), "ERROR"), 1);
  EXPECT_NE(bench.record().find("ERROR command \"BOGUS 1\""), std::string::npos);
}

TEST(Exchange, ExecutionErrorIsReported) {
  Bench bench;
  bench.tell("*CLS;PMMEAS 1,9");
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  EXPECT_NE(bench.record().find("ERROR execution \"PMMEAS 1,9\""), std::string::npos);
}

TEST(Exchange, TooLongAMessageIsADeviceError) {
  Bench bench;
  bench.tell("*CLS");
  bench.tell("PMPREF 1,DB,5" + std::string(100000, ' '));
  EXPECT_EQ(bench.events(), esr::kDeviceError);
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "PMPREF 1,DB,10");
}

TEST(Exchange, TheLongestMessageIsAccepted) {
  Bench bench;
  bench.tell("*CLS");
  std::string text = "PMPREF 1,DB,5";
  text.resize(MessageExchange::kLongestMessage, ' ');
  bench.tell(text);
  EXPECT_EQ(bench.events(), 0);
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "PMPREF 1,DB,5");
}

TEST(Exchange, InterruptedReplyIsDiscarded) {
  Bench bench;
  bench.tell("*CLS");
  bench.tell("*IDN?");
  bench.tell("*OPC?");
  EXPECT_EQ(bench.take(), "1\r\n");
  EXPECT_EQ(bench.events(), esr::kQueryError);
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 1);
  EXPECT_NE(bench.record().find("INTERRUPTED \"PELMORA"), std::string::npos);
}

TEST(Exchange, InterruptionStandsBeforeTheMessageThatCausedIt) {
  Bench bench;
  bench.tell("*IDN?");
  bench.tell("CHDISPN 1");
  const std::string record = bench.record();
  EXPECT_LT(record.find("INTERRUPTED"), record.find("\"CHDISPN 1\""));
}

TEST(Exchange, ThePartlyReadReplyIsInterruptedToo) {
  Bench bench;
  bench.tell("*IDN?");
  bench.exchange->reply()->taken = 5;
  bench.tell("*OPC?");
  EXPECT_EQ(bench.take(), "1\r\n");
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 1);
}

TEST(Exchange, ClearingAnErrorIsToldApart) {
  Bench bench;
  bench.tell("*IDN?");
  EXPECT_EQ(bench.ask(" *cls; *OPC?"), "1");
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 0);
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED-BY-CLEAR"), 1);
  EXPECT_EQ(bench.events(), 0);  // *CLS came after the error
}

TEST(Exchange, ATimeOutBeforeIsToldApart) {
  Bench bench;
  bench.tell("*IDN?");
  bench.exchange->readTimedOut();
  bench.tell("*OPC?");
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 0);
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED-AFTER-TIMEOUT"), 1);
  bench.tell("*OPC?");  // the reply to the second was not read either, and nothing timed out
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 1);
}

TEST(Exchange, ReadingInVainIsAnUnterminatedQuery) {
  Bench bench;
  bench.tell("*CLS");
  bench.exchange->readInVain();
  EXPECT_NE(bench.record().find("ERROR query UNTERMINATED"), std::string::npos);
  EXPECT_EQ(bench.events(), esr::kQueryError);
}

TEST(Exchange, AnswersBeyondTheQueueAreADeadlock) {
  Bench bench;
  bench.tell("*CLS");
  std::string text;
  for (int i = 0; i < 40; ++i) text += "PMPO 1;";
  bench.tell(text + "PMPREF 1,DB,6");
  EXPECT_FALSE(bench.hasReply());
  EXPECT_EQ(bench.events(), esr::kQueryError);
  EXPECT_NE(bench.record().find("ERROR query DEADLOCK"), std::string::npos);
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "PMPREF 1,DB,6");  // the rest was carried out
}

TEST(Exchange, DeviceClearEmptiesInputAndOutput) {
  Bench bench;
  bench.tell("*IDN?");
  bench.exchange->deviceClear();
  EXPECT_FALSE(bench.hasReply());
  bench.exchange->receive("*ID", false, Clock::now());
  bench.exchange->deviceClear();
  EXPECT_EQ(bench.ask("*OPC?"), "1");
  EXPECT_EQ(countKind(bench.record(), "CLEAR"), 2);
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 0);
}

TEST(Exchange, DeviceClearKeepsSettingsAndRegisters) {
  Bench bench;
  bench.tell("*CLS;*ESE 56;*SRE 16;PMPREF 1,DB,3;BOGUS");
  bench.exchange->deviceClear();
  EXPECT_EQ(bench.ask("*ESE?"), "56");
  EXPECT_EQ(bench.ask("*SRE?"), "16");
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "PMPREF 1,DB,3");
  EXPECT_EQ(bench.events(), esr::kCommandError);
}

TEST(Exchange, MessageAvailableFollowsTheReply) {
  Bench bench;
  bench.tell("*CLS");
  EXPECT_EQ(bench.poll(), 0);
  bench.tell("*IDN?");
  EXPECT_EQ(bench.poll(), stb::kMessageAvailable);
  bench.take();
  EXPECT_EQ(bench.poll(), 0);
}

TEST(Exchange, EventBitStaysUntilCleared) {
  Bench bench;
  bench.tell("*CLS;*ESE 56");
  bench.tell("BOGUS");
  EXPECT_EQ(bench.poll(), stb::kEventStatus);
  bench.ask("*OPC?");
  EXPECT_EQ(bench.poll(), stb::kEventStatus);
  EXPECT_EQ(bench.ask("*CLS; *OPC?"), "1");
  EXPECT_EQ(bench.poll(), 0);
}

TEST(Exchange, EventBitNeedsItsEnable) {
  Bench bench;
  bench.tell("*CLS;*ESE 32");
  bench.tell("PMMEAS 1,9");  // an execution error, which is not enabled
  EXPECT_EQ(bench.poll(), 0);
  bench.tell("BOGUS");
  EXPECT_EQ(bench.poll(), stb::kEventStatus);
}

TEST(Exchange, ServiceIsRequestedOnceForEachReason) {
  Bench bench;
  bench.tell("*CLS;*SRE 16");
  bench.tell("*IDN?");
  EXPECT_TRUE(bench.exchange->requestsService(Clock::now()));
  EXPECT_EQ(bench.poll(), stb::kMessageAvailable | stb::kService);
  EXPECT_EQ(bench.poll(), stb::kMessageAvailable);
  EXPECT_FALSE(bench.exchange->requestsService(Clock::now()));
  bench.take();
  bench.poll();
  bench.tell("*IDN?");
  EXPECT_EQ(bench.poll(), stb::kMessageAvailable | stb::kService);
}

TEST(Exchange, StatusByteQueryShowsTheSummaryAndClearsNothing) {
  Bench bench;
  bench.tell("*CLS;*ESE 32;*SRE 32;BOGUS");
  EXPECT_EQ(bench.ask("*STB?"), "96");
  EXPECT_EQ(bench.ask("*STB?"), "96");
  EXPECT_EQ(bench.ask("*OPC?;*STB?"), "1;112");
}

TEST(Exchange, ServiceEnableIgnoresItsOwnBit) {
  Bench bench;
  bench.tell("*SRE 255");
  EXPECT_EQ(bench.ask("*SRE?"), "191");
}

TEST(Exchange, EnableRegistersRefuseWhatDoesNotFit) {
  Bench bench;
  bench.tell("*CLS;*ESE 56");
  bench.tell("*ESE 256");
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  bench.tell("*SRE -1");
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  EXPECT_EQ(bench.ask("*ESE?"), "56");
}

TEST(Exchange, OperationCompleteIsAnEvent) {
  Bench bench;
  bench.tell("*CLS;TR3;*WAI;*OPC");
  EXPECT_EQ(bench.events(), esr::kOperationComplete);
}

TEST(Exchange, ResetKeepsTheRegisters) {
  Bench bench;
  bench.tell("*CLS;*ESE 56;BOGUS;*RST");
  EXPECT_EQ(bench.ask("*ESE?"), "56");
  EXPECT_EQ(bench.events(), esr::kCommandError);
}

TEST(SerialExchange, RepliesBeginWithTheirMark) {
  Bench bench({}, kSerialFraming);
  bench.exchange->receive("*OPC?\r", false, Clock::now());
  EXPECT_EQ(bench.take(), "R1\r\n");
}

TEST(SerialExchange, LineFeedAfterCarriageReturnInterruptsNothing) {
  Bench bench({}, kSerialFraming);
  bench.exchange->receive("*OPC?\r\n", false, Clock::now());
  EXPECT_EQ(bench.take(), "R1\r\n");
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 0);
  EXPECT_EQ(countKind(bench.record(), "<"), 1);
}

TEST(SerialExchange, LineFeedAloneEndsAMessage) {
  Bench bench({}, kSerialFraming);
  bench.exchange->receive("*OPC?\n", false, Clock::now());
  EXPECT_EQ(bench.take(), "R1\r\n");
}

TEST(SerialExchange, TwoQueriesInOneGoAreInterrupted) {
  Bench bench({}, kSerialFraming);
  bench.exchange->receive("*IDN?\r*OPC?\r", false, Clock::now());
  EXPECT_EQ(bench.take(), "R1\r\n");
  EXPECT_EQ(countKind(bench.record(), "INTERRUPTED"), 1);
}

}  // namespace
}  // namespace simmeter
