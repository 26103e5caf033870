#include <gtest/gtest.h>

#include "Bench.h"
#include "Scenario.h"

namespace simmeter {
namespace {

TEST(Scenario, EmptyTextGivesTheDefaults) {
  const Scenario scenario = parseScenario("");
  EXPECT_EQ(scenario.meter.identity, "PELMORA,QX7205A,SN001234,V1.05");
  EXPECT_EQ(scenario.meter.seed, 1u);
  EXPECT_FALSE(scenario.meter.stillNoise);
  EXPECT_EQ(scenario.address, 13);
  EXPECT_EQ(scenario.boardTimeOut.count(), 1000);
  EXPECT_TRUE(scenario.problems.empty());
}

TEST(Scenario, EveryKeyIsUnderstood) {
  const Scenario scenario = parseScenario(
      "# a comment\n"
      "\n"
      "model = QX7104A\r\n"
      "  seed=99\n"
      "noise = still\n"
      "averaging = 32\n"
      "envelope = fixed\n"
      "number-traces = on\n"
      "setup = GPGATS 1,2,ON\n"
      "address = 7\n"
      "board-timeout = 250\n"
      "reply-delay = 15\n"
      "fault = PMPBO, 3, drop\n");
  EXPECT_TRUE(scenario.problems.empty());
  EXPECT_EQ(scenario.meter.identity, "PELMORA,QX7104A,SN001234,V1.05");
  EXPECT_EQ(scenario.meter.seed, 99u);
  EXPECT_TRUE(scenario.meter.stillNoise);
  EXPECT_EQ(scenario.meter.envelope, Envelope::kFixed);
  EXPECT_TRUE(scenario.meter.numberTraces);
  EXPECT_EQ(scenario.setup,
            (std::vector<std::string>{"PMAVGN 1&2,32", "PMAVGS 1&2,ON", "GPGATS 1,2,ON"}));
  EXPECT_EQ(scenario.address, 7);
  EXPECT_EQ(scenario.boardTimeOut.count(), 250);
  EXPECT_EQ(scenario.replyDelay.count(), 15);
  EXPECT_EQ(scenario.faults.size(), 1u);
}

TEST(Scenario, IdentityMayBeAnyText) {
  EXPECT_EQ(parseScenario("identity = a, b = c\n").meter.identity, "a, b = c");
}

TEST(Scenario, BadLinesAreNamedWithTheirNumber) {
  const Scenario scenario = parseScenario("seed = 5\nmodle = X\nseed = x\naddress = 31\nhello\n");
  ASSERT_EQ(scenario.problems.size(), 4u);
  EXPECT_EQ(scenario.problems[0], "line 2: unknown key 'modle'");
  EXPECT_EQ(scenario.problems[1], "line 3: bad value for 'seed': x");
  EXPECT_EQ(scenario.problems[2], "line 4: bad value for 'address': 31");
  EXPECT_EQ(scenario.problems[3], "line 5: no '='");
  EXPECT_EQ(scenario.meter.seed, 5u);
}

TEST(Scenario, BadValuesOfEveryKeyAreRefused) {
  for (const char* line : {"model =",
                           "seed = -1",
                           "noise = off",
                           "averaging = 0",
                           "averaging = 1001",
                           "envelope = square",
                           "number-traces = 1",
                           "setup =",
                           "address = 0",
                           "board-timeout = 0",
                           "reply-delay = -1",
                           "fault = X",
                           "fault = X,1",
                           "fault = X,0,drop",
                           "fault = X,from,drop",
                           "fault = X,1,explode",
                           "fault = X,1,late",
                           "fault = X,1,late x",
                           "fault = X,1,drop 3",
                           "fault = X,1,stall 3",
                           "fault = X,1,error EABO",
                           "fault = lib Send,1,drop",
                           "fault = lib Send,1,error EXYZ",
                           "fault = X,1,refuse politely",
                           "fault = X,1,replace a\\q",
                           "fault = X,1,replace \\x4"}) {
    EXPECT_EQ(parseScenario(line).problems.size(), 1u) << line;
  }
}

TEST(Scenario, MissingFileIsAProblem) {
  EXPECT_EQ(readScenario("/nonexistent/scenario").problems.size(), 1u);
}

TEST(Scenario, RefusedSetupIsRecorded) {
  Bench bench("setup = PMPREF 1,DB,500\nnonsense\n");
  EXPECT_NE(bench.record().find("SCENARIO line 2: no '='"), std::string::npos);
  EXPECT_NE(bench.record().find("SCENARIO setup refused: PMPREF 1,DB,500"), std::string::npos);
}

TEST(Scenario, AveragingOffIsPossibleToo) {
  Bench bench("averaging = 4\n");
  EXPECT_EQ(bench.ask("PMAVGS? 2"), "PMAVGS 2,ON");
  EXPECT_EQ(bench.ask("PMAVGN? 1"), "PMAVGN 1,4");
  Bench off("averaging = off\n");
  EXPECT_EQ(off.ask("PMAVGS? 1"), "PMAVGS 1,OFF");
}

TEST(FaultRule, OccurrencesAreReadInThreeForms) {
  const FaultRule third = parseFault("PMPBO, 3, drop").value();
  EXPECT_EQ(third.first, 3u);
  EXPECT_EQ(third.last, 3u);
  const FaultRule every = parseFault("any, every, late 5").value();
  EXPECT_EQ(every.first, 1u);
  EXPECT_EQ(every.last, UINT64_MAX);
  EXPECT_EQ(every.match, "");
  const FaultRule from = parseFault("*IDN?, from 2, empty").value();
  EXPECT_EQ(from.first, 2u);
  EXPECT_EQ(from.last, UINT64_MAX);
}

TEST(FaultRule, TextMayHoldCommasAndEscapes) {
  EXPECT_EQ(parseFault("X,1,replace PMPO 1,3,-1\\r\\n\\t\\s\\\\\\x41").value().text,
            "PMPO 1,3,-1\r\n\t \\A");
}

TEST(FaultRule, AmountsMayBeHexadecimal) {
  EXPECT_EQ(parseFault("lib ReadStatusByte, 1, status 0x30").value().amount, 0x30);
}

}  // namespace
}  // namespace simmeter
