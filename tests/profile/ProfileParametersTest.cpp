#include "ProfileTest.h"
#include "link/Fault.h"
#include "profile/ProfileParameters.h"

namespace pulsemod::test {
namespace {

using ProfileParametersTest = ProfileTest;

struct Parameter {
  ProfileParameter parameter;
  const char* command;
  const char* query;
};

const std::array<Parameter, 4> parameters = {{
    {captureTimeParameter, "TRCAPT 1,PMOD,", "TRCAPT? 1,PMOD"},
    {triggerDelayParameter, "TRDLYT 1,PMOD,", "TRDLYT? 1,PMOD"},
    {referenceLevelParameter, "PMPREF 1,DB,", "PMPREF? 1,DB"},
    {scaleParameter, "PMPSCAL 1,DB,", "PMPSCAL? 1,DB"},
}};

TEST_F(ProfileParametersTest, CommandsHaveTheirExactTexts) {
  const std::vector<std::pair<float, std::string>> numbers = {
      {0.0046F, "0.0046"},       {0.0001F, "0.0001"}, {5E-06F, "5E-06"},
      {-34.56789F, "-34.56789"}, {10.0F, "10"},       {-0.0F, "0"},
      {1.0F / 3.0F, "0.3333333"}};
  for (const Parameter& p : parameters) {
    for (const auto& [value, text] : numbers) {
      world.meter.received.clear();
      SendParameter(p.parameter, value);
      EXPECT_EQ(received(), (Transcript{p.command + text}));
    }
  }
}

TEST_F(ProfileParametersTest, BothChannelsAreNamed) {
  Settings.ActiveChannel = 3;
  world.meter.replies["PMPREF? 1&2,DB"] = "PMPREF 1&2,DB,7.5";
  SendParameter(captureTimeParameter, 0.005F);
  ReadParameter(referenceLevelParameter);
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1&2,PMOD,0.005", "PMPREF? 1&2,DB"}));
  EXPECT_EQ(Settings.ReferenceLevel, 7.5F);
}

TEST_F(ProfileParametersTest, ReadsIntoItsOwnField) {
  for (const Parameter& p : parameters) {
    InitMeasurementSettings();
    world.meter.received.clear();
    world.meter.replies[p.query] = std::string(p.command) + "2.5E-03";
    ReadParameter(p.parameter);
    EXPECT_EQ(received(), (Transcript{p.query}));
    for (const Parameter& other : parameters) {
      const bool read = other.query == p.query;
      const MeasurementSettings defaults;
      EXPECT_EQ(Settings.*other.parameter.value, read ? 0.0025F : defaults.*other.parameter.value)
          << other.query << " after " << p.query;
    }
  }
}

TEST_F(ProfileParametersTest, RepliesAreFieldTwoAsANumber) {
  struct Case {
    const char* reply;
    bool taken;
    float value;
  };
  const std::vector<Case> cases = {
      {"TRCAPT 1,PMOD,0.005", true, 0.005F},   {"TRCAPT 1,PMOD, 5E-06 s", true, 5E-06F},
      {"TRCAPT 1,PMOD,0.005,7", true, 0.005F}, {"TRCAPT 1,PMOD,abc", true, 0.0F},
      {"TRCAPT 1,PMOD", true, 0.0F},           {"TRCAPT 1,PMOD,1E39", false, 1.0F},
      {"TRCAPT 1,PMOD,-1E+400", false, 1.0F},
  };
  for (const Case& c : cases) {
    float value = 1;
    world.meter.replies["TRCAPT? 1,PMOD"] = c.reply;
    EXPECT_EQ(QueryParameter(captureTimeParameter, value), c.taken) << c.reply;
    EXPECT_EQ(value, c.value) << c.reply;
  }
}

TEST_F(ProfileParametersTest, UnansweredQueryLeavesTheValue) {
  float value = 1;
  EXPECT_FALSE(QueryParameter(captureTimeParameter, value));
  EXPECT_EQ(value, 1.0F);
  ReadParameter(captureTimeParameter);
  EXPECT_EQ(Settings.CaptureTime, 0.0046F);
}

TEST_F(ProfileParametersTest, PointsComeFromTheHeadOfAReadout) {
  struct Case {
    const char* reply;
    ProfileReadout result;
    int points;
  };
  const std::vector<Case> cases = {
      {"PMPO 1,400,-30,-31", ProfileReadout::read, 400},
      {"PMPO 1,12.0,-30", ProfileReadout::read, 12},
      {"PMPO 1,abc,-30", ProfileReadout::read, 0},
      {"PMPO 1,500,-30", ProfileReadout::read, 500},
      {"PMPO 1,70000,-30", ProfileReadout::read, 123},
      {"PMPO 1,-40000,-30", ProfileReadout::read, 123},
      {"OK", ProfileReadout::notAProfile, 123},
      {"", ProfileReadout::notAProfile, 123},
      {"pmpo 1,400,-30", ProfileReadout::notAProfile, 123},
  };
  for (const Case& c : cases) {
    Settings.DisplayPoints = 123;
    world.meter.received.clear();
    world.meter.replies["PMPO 1"] = c.reply;
    EXPECT_EQ(ReadDisplayPoints(), c.result) << c.reply;
    EXPECT_EQ(Settings.DisplayPoints, c.points) << c.reply;
    EXPECT_EQ(received(), (Transcript{"PMPO 1"}));
  }
}

TEST_F(ProfileParametersTest, PointsOfBothChannelsLoseSevenCharacters) {
  Settings.ActiveChannel = 3;
  world.meter.replies["PMPO 1&2"] = "PMPO 1&2,200,-30";
  EXPECT_EQ(ReadDisplayPoints(), ProfileReadout::read);
  EXPECT_EQ(Settings.DisplayPoints, 2);
}

TEST_F(ProfileParametersTest, UnansweredReadoutIsNoReply) {
  EXPECT_EQ(ReadDisplayPoints(), ProfileReadout::noReply);
  EXPECT_EQ(Settings.DisplayPoints, 200);
}

TEST_F(ProfileParametersTest, ReadoutWithoutACommaBehindItsHeadIsAFault) {
  for (const char* reply : {"PMPO", "PMPO 1,", "PMPO 1,200", "PMPO 1"}) {
    world.meter.replies["PMPO 1"] = reply;
    EXPECT_THROW(ReadDisplayPoints(), Fault) << reply;
    EXPECT_EQ(Settings.DisplayPoints, 200);
  }
}

}  // namespace
}  // namespace pulsemod::test
