// The shapes of the replies that are no settings.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "Bench.h"

namespace simmeter {
namespace {

TEST(Readout, CaptureAnswersWithItsEcho) {
  Bench bench;
  EXPECT_EQ(bench.ask("TR1 1"), "TR1 1");
  EXPECT_EQ(bench.ask("TR1 1&2"), "TR1 1&2");
}

TEST(Readout, TextTraceHasItsCountAndValues) {
  Bench bench;
  const std::string reply = bench.ask("PMPO 1");
  EXPECT_EQ(reply.substr(0, 11), "PMPO 1,400,");
  EXPECT_EQ(fields(reply).size(), 402u);
  bench.tell("SYDRES 200");
  const std::string shorter = bench.ask("PMPO 2");
  EXPECT_EQ(shorter.substr(0, 11), "PMPO 2,200,");
  EXPECT_EQ(fields(shorter).size(), 202u);
  EXPECT_EQ(bench.ask("PMPO 1&2").substr(0, 13), "PMPO 1&2,200,");
}

TEST(Readout, TextValuesHaveThreeDecimals) {
  Bench bench;
  const std::vector<std::string> all = fields(bench.ask("PMPO 1"));
  for (std::size_t i = 2; i < all.size(); ++i) {
    ASSERT_EQ(all[i].find('.'), all[i].size() - 4) << all[i];
  }
}

float blockValue(const std::string& block, std::size_t at) {
  const auto byte = [&](std::size_t k) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(block[at + k]));
  };
  return std::bit_cast<float>(byte(1) << 24 | byte(0) << 16 | byte(2) << 8 | byte(3));
}

TEST(Readout, BlockHoldsTheTextTracesValues) {
  Bench bench;
  bench.ask("TR1 1");
  const std::vector<double> text = levels(bench.ask("PMPO 1"));
  bench.tell("PMPBO 1");
  const std::string block = bench.take();
  ASSERT_EQ(block.size(), 6u + 1600 + 1);
  EXPECT_EQ(block.substr(0, 6), "#41600");
  EXPECT_EQ(block.back(), '\n');
  for (std::size_t i = 0; i < 400; ++i) {
    ASSERT_EQ(blockValue(block, 6 + 4 * i), static_cast<float>(text[i])) << i;
  }
}

TEST(Readout, BlockBytesStandInTheMetersOrder) {
  // Trace number 1543 + 1 puts -34.56 in the last point: bits c20a3d71.
  Bench bench("number-traces = on\n");
  for (int i = 0; i < 1543; ++i) bench.tell("TR1 1;TR3"), bench.take();
  bench.tell("PMPBO 1");
  const std::string block = bench.take();
  const float expected = -34.56F;
  const auto bits = std::bit_cast<std::uint32_t>(expected);
  ASSERT_EQ(bits, 0xC20A3D71u);
  EXPECT_EQ(block.substr(block.size() - 5), "\x0a\xc2\x3d\x71\n");
}

TEST(Readout, ShortBlockHasAThreeDigitLength) {
  Bench bench("setup = SYDRES 200\n");
  bench.tell("PMPBO 1");
  const std::string block = bench.take();
  EXPECT_EQ(block.substr(0, 5), "#3800");
  EXPECT_EQ(block.size(), 5u + 800 + 1);
}

TEST(Readout, HeldTraceStaysUntilTheNextCapture) {
  Bench bench;
  bench.ask("TR1 1");
  const std::string held = bench.ask("PMPO 1");
  EXPECT_EQ(bench.ask("PMPO 1"), held);
  bench.ask("TR1 1");
  EXPECT_NE(bench.ask("PMPO 1"), held);
  bench.tell("TR3");
  const std::string free = bench.ask("PMPO 1");
  EXPECT_NE(bench.ask("PMPO 1"), free);
}

TEST(Readout, HeldTraceIsTakenAgainWhenItsTimingChanges) {
  Bench bench;
  bench.ask("TR1 1");
  const std::string held = bench.ask("PMPO 1");
  bench.tell("TRCAPT 1,PMOD,0.004");
  EXPECT_NE(bench.ask("PMPO 1"), held);
}

TEST(Readout, ProfileReplyForEachMeasurementType) {
  Bench bench;
  const std::size_t sizes[] = {4, 6, 8, 8};
  const char* names[][3] = {
      {"AVG", "", ""}, {"AVG", "PK", ""}, {"AVG", "PK", "CR"}, {"AVG", "MIN", "MAX"}};
  for (int type = 1; type <= 4; ++type) {
    bench.tell("PMMEAS 1," + std::to_string(type));
    const std::string reply = bench.ask("PMRDO 1");
    EXPECT_EQ(reply.substr(0, 6), "PMRDO ");
    const std::vector<std::string> all = fields(reply);
    ASSERT_EQ(all.size(), sizes[type - 1]) << reply;
    EXPECT_EQ(all[0], "1");
    EXPECT_EQ(all[1], std::to_string(type));
    for (std::size_t k = 0; 2 + 2 * k < all.size(); ++k)
      EXPECT_EQ(all[2 + 2 * k], names[type - 1][k]);
  }
}

TEST(Readout, GateReplyHasTheTypeBeforeTheGate) {
  Bench bench;
  bench.tell("PMMEAS 1,2");
  const std::vector<std::string> all = fields(bench.ask("GPNMO 1,3"));
  ASSERT_EQ(all.size(), 7u);
  EXPECT_EQ(all[0], "1");
  EXPECT_EQ(all[1], "2");
  EXPECT_EQ(all[2], "3");
  EXPECT_EQ(all[3], "AVG");
  EXPECT_EQ(all[5], "PK");
}

TEST(Readout, MarkerReplyHasReadingAndPosition) {
  Bench bench;
  const std::string reply = bench.ask("MKNO 1,2");
  const std::vector<std::string> all = fields(reply);
  ASSERT_EQ(all.size(), 5u) << reply;
  EXPECT_EQ(reply.substr(0, 9), "MKNO 1,2,");
  EXPECT_EQ(all[3], "DBM");
  EXPECT_EQ(all[4], "0.0005");
}

TEST(Readout, DeltaMarkerReplyFollowsItsMeasurement) {
  Bench bench;
  const std::vector<std::string> average = fields(bench.ask("MKDO 1"));
  ASSERT_EQ(average.size(), 5u);
  EXPECT_EQ(average[1], "PAVG");
  EXPECT_EQ(average[3], "DBM");
  EXPECT_EQ(average[4], "0.0004");
  bench.tell("MKDMEAS 1, PDIFF");
  const std::vector<std::string> difference = fields(bench.ask("MKDO 1"));
  EXPECT_EQ(difference[1], "PDIFF");
  EXPECT_EQ(difference[3], "DB");
}

TEST(Readout, CursorRepliesSwapPowerAndPercent) {
  Bench bench;
  bench.tell("PPACQS 1,ON;TTMKPOS 1,-20");
  const std::string reading = bench.ask("TTMKRO 1");
  const std::string position = bench.ask("TTMKPOS? 1");
  EXPECT_EQ(fields(reading)[2], "-20") << reading;
  EXPECT_EQ(fields(position)[1], "-20") << position;
  EXPECT_EQ(fields(reading)[1], fields(position)[2]);
  EXPECT_GT(numberAt(reading, 1), 40);
}

TEST(Readout, CursorStaysOnTheAxis) {
  Bench bench;
  bench.tell("*CLS;TTMKPOS 1,20.5");
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  EXPECT_EQ(fields(bench.ask("TTMKPOS? 1"))[1], "5");
  bench.tell("TTPSP 1,0");
  EXPECT_EQ(fields(bench.ask("TTMKPOS? 1"))[1], "0");
}

TEST(Readout, CurveReplyHasItsCountAndValues) {
  Bench bench("setup = PPACQS 1,ON\n");
  const std::string reply = bench.ask("TTFRO 1");
  EXPECT_EQ(reply.substr(0, 12), "TTFRO 1,400,");
  EXPECT_EQ(fields(reply).size(), 402u);
  EXPECT_LT(reply.size(), 4096u);
  bench.tell("SYDRES 200");
  EXPECT_EQ(fields(bench.ask("TTFRO 2")).size(), 202u);
}

TEST(Readout, ImpossibleNumbersAreExecutionErrors) {
  for (const char* wrong : {"PMPO 3", "GPNMO 1,0", "GPNMO 1,9", "GPNMO 1,5", "MKNO 1,5", "TR1 x"}) {
    Bench bench;
    bench.tell("*CLS");
    EXPECT_EQ(bench.ask(wrong), "") << wrong;
    EXPECT_EQ(bench.events(), esr::kExecutionError) << wrong;
  }
}

TEST(Readout, TracesCarryTheirNumbersOnDemand) {
  Bench bench("number-traces = on\n");
  EXPECT_EQ(levels(bench.ask("PMPO 1")).back(), -49.99);
  EXPECT_EQ(levels(bench.ask("PMPO 1")).back(), -49.98);
  EXPECT_EQ(levels(bench.ask("PMPO 2")).back(), -49.97);
  EXPECT_EQ(numberedLevel(3999), -10010);
  EXPECT_EQ(numberedLevel(4000), -50000);
}

}  // namespace
}  // namespace simmeter
