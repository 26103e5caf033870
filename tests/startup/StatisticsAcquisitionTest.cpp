#include <gtest/gtest.h>

#include <string>

#include "ccdf/StatisticsAcquisition.h"
#include "profile/MeasurementSettings.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

TEST(StatisticsAcquisition, IsSwitchedOffOnlyWhenItIsOn) {
  struct Row {
    const char* reply;
    bool switchedOff;
  };
  const Row rows[] = {
      {"PPACQS 1,ON", true},
      {"PPACQS 1, ON ", true},
      {"PPACQS\t1,ON", true},
      {"PPACQS 1,ON,2", true},
      {"PPACQS 1,OFF", false},
      {"PPACQS 1,1", false},
      {"PPACQS 1,on", false},
      {"PPACQS ON,OFF", false},
      {"PPACQS ON", false},
      {"PPACQS 1,", false},
      {"", false},
  };
  for (const bool serial : {false, true}) {
    for (const Row& row : rows) {
      FakeWorld world;
      if (serial) world.useSerial();
      world.meter.replies["PPACQS? 1"] = row.reply;
      StopStatisticsAcquisition();
      Transcript expected = {"PPACQS? 1"};
      if (row.switchedOff) expected.emplace_back("PPACQS 1,OFF");
      EXPECT_EQ(world.meter.received, expected) << row.reply;
    }
  }
}

TEST(StatisticsAcquisition, BelongsToTheActiveChannel) {
  for (const auto& [channel, text] : {std::pair{2, "2"}, std::pair{3, "1&2"}}) {
    FakeWorld world;
    Settings.ActiveChannel = static_cast<std::int16_t>(channel);
    const std::string query = std::string("PPACQS? ") + text;
    world.meter.replies[query] = std::string("PPACQS ") + text + ",ON";
    StopStatisticsAcquisition();
    EXPECT_EQ(world.meter.received, (Transcript{query, std::string("PPACQS ") + text + ",OFF"}));
  }
}

TEST(StatisticsAcquisition, WithoutAnAnswerNothingIsSent) {
  FakeWorld world;
  StopStatisticsAcquisition();
  EXPECT_EQ(world.meter.received, (Transcript{"PPACQS? 1"}));
}

TEST(StatisticsAcquisition, AnAnswerOfAMeterInErrorDoesNotCount) {
  FakeWorld world;
  world.meter.errorIsReported = true;
  world.meter.replies["PPACQS? 1"] = "PPACQS 1,ON";
  StopStatisticsAcquisition();
  EXPECT_EQ(world.meter.received, (Transcript{"PPACQS? 1", "*CLS; *OPC?"}));
}

}  // namespace
}  // namespace pulsemod::test
