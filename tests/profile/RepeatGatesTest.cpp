#include "ProfileTest.h"

namespace pulsemod::test {
namespace {

class RepeatGatesTest : public ProfileTest {
 protected:
  static void expand(std::int16_t count) {
    Settings.RepeatEnabled = True16;
    Settings.RepeatCount = count;
    ExpandRepeatGates();
  }

  /// How many gates, from the first on, are on; all others must be off.
  static std::size_t gatesOn() {
    std::size_t on = 0;
    while (on < gateCount && Settings.Gates[on].Enabled == True16) ++on;
    for (std::size_t index = on; index < gateCount; ++index) {
      EXPECT_EQ(Settings.Gates[index].Enabled, False16) << "gate " << index + 1;
    }
    return on;
  }

  static void expectDefaultTimes(const GateSettings& gate) {
    EXPECT_EQ(gate.StartTime, 0.0001F);
    EXPECT_EQ(gate.FenceStart, 0.000225F);
    EXPECT_EQ(gate.FenceStop, 0.000321F);
    EXPECT_EQ(gate.StopTime, 0.000577F);
  }
};

TEST_F(RepeatGatesTest, DoesNothingWhileTheRepeatIsOff) {
  Settings.RepeatCount = 8;
  ExpandRepeatGates();
  EXPECT_EQ(gatesOn(), 0U);
  for (const GateSettings& gate : Settings.Gates) expectDefaultTimes(gate);
}

TEST_F(RepeatGatesTest, EachTimeIsTheSingleOfItsDecimalText) {
  struct Times {
    float start, stop, fenceStart, fenceStop;
  };
  constexpr std::array<Times, gateCount> expected = {{
      {0.0001F, 0.000577F, 0.000225F, 0.000321F},
      {0.0007F, 0.001177F, 0.000825F, 0.000921F},
      {0.0013F, 0.001777F, 0.001425F, 0.001521F},
      {0.0019F, 0.002377F, 0.002025F, 0.002121F},
      {0.0025F, 0.002977F, 0.002625F, 0.002721F},
      {0.0031F, 0.003577F, 0.003225F, 0.003321F},
      {0.0037F, 0.004177F, 0.003825F, 0.003921F},
      {0.0043F, 0.004777F, 0.004425F, 0.004521F},
  }};
  expand(8);
  EXPECT_EQ(gatesOn(), 8U);
  for (std::size_t index = 0; index < gateCount; ++index) {
    SCOPED_TRACE("gate " + std::to_string(index + 1));
    EXPECT_EQ(Settings.Gates[index].StartTime, expected[index].start);
    EXPECT_EQ(Settings.Gates[index].StopTime, expected[index].stop);
    EXPECT_EQ(Settings.Gates[index].FenceStart, expected[index].fenceStart);
    EXPECT_EQ(Settings.Gates[index].FenceStop, expected[index].fenceStop);
  }
  // The sum of the singles themselves would be another number already at gate 2.
  EXPECT_NE(Settings.Gates[1].StartTime, 0.0001F + 0.0006F);
}

TEST_F(RepeatGatesTest, SmallOffsetsGatherNoNoise) {
  Settings.Gates[0].StartTime = 1E-06F;
  Settings.RepeatOffset = 1.3E-05F;
  expand(8);
  EXPECT_EQ(Settings.Gates[7].StartTime, 9.2E-05F);
}

TEST_F(RepeatGatesTest, EachGateStartsFromTheTextOfTheOneBefore) {
  Settings.Gates[0].StartTime = 0.1234567F;
  Settings.RepeatOffset = 1;
  expand(3);
  // Gate 2 is 1.1234567, of which seven digits go on: 1.123457.
  EXPECT_EQ(Settings.Gates[1].StartTime, 1.1234567F);
  EXPECT_EQ(Settings.Gates[2].StartTime, 2.123457F);
  EXPECT_NE(Settings.Gates[2].StartTime, 2.1234567F);
}

TEST_F(RepeatGatesTest, CountSaysHowManyGatesAreDerived) {
  const std::vector<std::pair<std::int16_t, std::size_t>> cases = {
      {std::int16_t{-5}, 1U}, {std::int16_t{0}, 1U}, {std::int16_t{1}, 1U},
      {std::int16_t{2}, 2U},  {std::int16_t{3}, 3U}, {std::int16_t{8}, 8U}};
  for (const auto& [count, derived] : cases) {
    SCOPED_TRACE("count " + std::to_string(count));
    InitMeasurementSettings();
    expand(count);
    EXPECT_EQ(gatesOn(), derived);
    for (std::size_t index = derived; index < gateCount; ++index) {
      expectDefaultTimes(Settings.Gates[index]);
    }
  }
}

TEST_F(RepeatGatesTest, CountAboveEightDerivesEightAndStays) {
  for (const std::int16_t count : std::initializer_list<std::int16_t>{9, 12, 32767}) {
    InitMeasurementSettings();
    expand(count);
    EXPECT_EQ(gatesOn(), 8U);
    EXPECT_EQ(Settings.Gates[7].StartTime, 0.0043F);
    EXPECT_EQ(Settings.RepeatCount, count);
  }
}

TEST_F(RepeatGatesTest, GatesBeyondASmallerCountKeepTheirState) {
  expand(8);
  expand(3);
  EXPECT_EQ(gatesOn(), 8U);
  EXPECT_EQ(Settings.Gates[7].StartTime, 0.0043F);
}

TEST_F(RepeatGatesTest, FenceStateIsTakenFromTheGateBefore) {
  Settings.Gates[0].FenceEnabled = True16;
  Settings.Gates[3].FenceEnabled = False16;
  expand(3);
  EXPECT_EQ(Settings.Gates[1].FenceEnabled, True16);
  EXPECT_EQ(Settings.Gates[2].FenceEnabled, True16);
  EXPECT_EQ(Settings.Gates[3].FenceEnabled, False16);

  Settings.Gates[0].FenceEnabled = False16;
  expand(3);
  EXPECT_EQ(Settings.Gates[1].FenceEnabled, False16);
  EXPECT_EQ(Settings.Gates[2].FenceEnabled, False16);
}

TEST_F(RepeatGatesTest, OverflowEndsTheExpansionAtItsGate) {
  Settings.RepeatOffset = 3E+38F;
  Settings.Gates[0].StopTime = 3E+38F;
  Settings.Gates[0].FenceStart = 1;
  Settings.Gates[0].FenceEnabled = True16;
  expand(8);
  // Start, then stop, then the fence: the stop does not fit, so the fence is never derived.
  EXPECT_EQ(gatesOn(), 2U);
  EXPECT_EQ(Settings.Gates[1].StartTime, 3E+38F);
  EXPECT_EQ(Settings.Gates[1].StopTime, 0.000577F);
  EXPECT_EQ(Settings.Gates[1].FenceStart, 0.000225F);
  EXPECT_EQ(Settings.Gates[1].FenceEnabled, False16);
  expectDefaultTimes(Settings.Gates[2]);
}

/// As after a file, which holds four gates.
TEST_F(RepeatGatesTest, GatesFromAGivenOneFollowTheOneBefore) {
  Settings.RepeatEnabled = True16;
  Settings.RepeatCount = 6;
  Settings.Gates[3].StartTime = 0.01F;
  Settings.Gates[3].StopTime = 0.02F;
  Settings.Gates[3].FenceStart = 0.012F;
  Settings.Gates[3].FenceStop = 0.015F;
  Settings.Gates[3].FenceEnabled = True16;
  ExpandRepeatGates(5);
  EXPECT_EQ(Settings.Gates[4].StartTime, 0.0106F);
  EXPECT_EQ(Settings.Gates[4].StopTime, 0.0206F);
  EXPECT_EQ(Settings.Gates[5].FenceStart, 0.0132F);
  EXPECT_EQ(Settings.Gates[5].FenceStop, 0.0162F);
  EXPECT_EQ(Settings.Gates[5].FenceEnabled, True16);
  // What stands before and behind keeps its own, gate 1 too.
  for (const std::size_t index : {0U, 1U, 2U, 6U, 7U}) {
    SCOPED_TRACE("gate " + std::to_string(index + 1));
    expectDefaultTimes(Settings.Gates[index]);
    EXPECT_EQ(Settings.Gates[index].Enabled, False16);
  }
  EXPECT_EQ(Settings.Gates[3].StartTime, 0.01F);
  EXPECT_EQ(Settings.Gates[3].Enabled, False16);
}

TEST_F(RepeatGatesTest, GatesBeyondTheCountDoNotFollow) {
  for (const std::int16_t count : {std::int16_t{1}, std::int16_t{3}, std::int16_t{4}}) {
    InitMeasurementSettings();
    Settings.RepeatEnabled = True16;
    Settings.RepeatCount = count;
    ExpandRepeatGates(5);
    EXPECT_EQ(gatesOn(), 0U);
    for (const GateSettings& gate : Settings.Gates) expectDefaultTimes(gate);
  }
}

TEST_F(RepeatGatesTest, NoGateFollowsWhileTheRepeatIsOff) {
  Settings.RepeatCount = 8;
  ExpandRepeatGates(5);
  EXPECT_EQ(gatesOn(), 0U);
  for (const GateSettings& gate : Settings.Gates) expectDefaultTimes(gate);
}

TEST_F(RepeatGatesTest, EachTimeOfAGateHasItsField) {
  EXPECT_EQ(gateTimeField(GateTime::start), &GateSettings::StartTime);
  EXPECT_EQ(gateTimeField(GateTime::stop), &GateSettings::StopTime);
  EXPECT_EQ(gateTimeField(GateTime::fenceStart), &GateSettings::FenceStart);
  EXPECT_EQ(gateTimeField(GateTime::fenceStop), &GateSettings::FenceStop);
  EXPECT_EQ(gateTimeField(GateTime::none), nullptr);
}

}  // namespace
}  // namespace pulsemod::test
