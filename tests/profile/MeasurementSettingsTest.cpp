#include "ProfileTest.h"
#include "link/Fault.h"
#include "profile/MeasurementSettings.h"

namespace pulsemod::test {
namespace {

using MeasurementSettingsTest = ProfileTest;

/// The same number and the same sign of zero.
void expectSameBits(float actual, float expected) {
  EXPECT_EQ(std::bit_cast<std::uint32_t>(actual), std::bit_cast<std::uint32_t>(expected))
      << actual << " is not " << expected;
}

TEST_F(MeasurementSettingsTest, TrueIsAllBitsOf16) {
  EXPECT_EQ(True16, -1);
  EXPECT_EQ(False16, 0);
  EXPECT_EQ(sizeof(Boolean16), 2U);
}

TEST_F(MeasurementSettingsTest, DefaultsOfTheSingleFields) {
  expectSameBits(Settings.CaptureTime, 0.0046F);
  expectSameBits(Settings.TriggerDelay, 0.0F);
  expectSameBits(Settings.ReferenceLevel, 10.0F);
  expectSameBits(Settings.ScalePerDivision, 10.0F);
  EXPECT_EQ(Settings.ActiveChannel, 1);
  EXPECT_EQ(Settings.ActiveGate, 1);
  EXPECT_EQ(Settings.GatesVisible, True16);
  EXPECT_EQ(Settings.MeasurementType, 1);
  EXPECT_EQ(Settings.DeltaMeasurement, 0);
  EXPECT_EQ(Settings.DisplayPoints, 200);
  EXPECT_EQ(Settings.RepeatEnabled, False16);
  EXPECT_EQ(Settings.RepeatCount, 3);
  expectSameBits(Settings.RepeatOffset, 0.0006F);
}

TEST_F(MeasurementSettingsTest, AllEightGatesHaveTheSameDefaults) {
  ASSERT_EQ(Settings.Gates.size(), 8U);
  for (const GateSettings& gate : Settings.Gates) {
    expectSameBits(gate.StartTime, 0.0001F);
    expectSameBits(gate.FenceStart, 0.000225F);
    expectSameBits(gate.FenceStop, 0.000321F);
    expectSameBits(gate.StopTime, 0.000577F);
    EXPECT_EQ(gate.Enabled, False16);
    EXPECT_EQ(gate.FenceEnabled, False16);
  }
}

TEST_F(MeasurementSettingsTest, MarkerPositionsAreDoubleProductsStoredAsSingles) {
  const std::array<float, 5> positions = {0.0001F, 0.0002F, 0.0003F, 0.0004F, 0.0005F};
  ASSERT_EQ(Settings.Markers.size(), positions.size());
  for (std::size_t index = 0; index < positions.size(); ++index) {
    expectSameBits(Settings.Markers[index].Position, positions[index]);
    expectSameBits(Settings.Markers[index].Reading, 0.0F);
    EXPECT_EQ(Settings.Markers[index].Enabled, False16);
    EXPECT_EQ(Settings.Markers[index].IsActive, index == 0 ? True16 : False16);
  }
  // Products of singles would be one bit lower.
  EXPECT_NE(Settings.Markers[2].Position, 3.0F * 0.0001F);
  EXPECT_NE(Settings.Markers[4].Position, 5.0F * 0.0001F);
}

TEST_F(MeasurementSettingsTest, OnlyTheActiveChannelGetsAnAveragingCount) {
  ASSERT_EQ(Settings.Channels.size(), 2U);
  EXPECT_EQ(Settings.Channels[0].AveragingCount, 1);
  EXPECT_EQ(Settings.Channels[1].AveragingCount, 0);
  for (const ChannelSettings& channel : Settings.Channels) {
    EXPECT_EQ(channel.InputConfig, 0);
    EXPECT_EQ(channel.AveragingOn, False16);
  }
}

TEST_F(MeasurementSettingsTest, InitialisingBringsChangedFieldsBackAndStopsTheAcquisition) {
  Settings.ActiveChannel = 3;
  Settings.CaptureTime = 2;
  Settings.RepeatEnabled = True16;
  Settings.Gates[7].Enabled = True16;
  Settings.Gates[7].FenceEnabled = True16;
  Settings.Gates[7].StopTime = 9;
  Settings.Markers[3].IsActive = True16;
  Settings.Markers[4].Enabled = True16;
  Settings.Channels[0].AveragingCount = 16;
  AcquisitionRunning = True16;

  InitMeasurementSettings();

  EXPECT_EQ(Settings.ActiveChannel, 1);
  EXPECT_EQ(Settings.CaptureTime, 0.0046F);
  EXPECT_EQ(Settings.RepeatEnabled, False16);
  EXPECT_EQ(Settings.Gates[7].Enabled, False16);
  EXPECT_EQ(Settings.Gates[7].FenceEnabled, False16);
  EXPECT_EQ(Settings.Gates[7].StopTime, 0.000577F);
  EXPECT_EQ(Settings.Markers[3].IsActive, False16);
  EXPECT_EQ(Settings.Markers[4].Enabled, False16);
  EXPECT_EQ(Settings.Channels[0].AveragingCount, 1);
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(MeasurementSettingsTest, TracesHold400Points) {
  EXPECT_EQ(ProfileTrace.size(), 400U);
  EXPECT_EQ(SecondProfileTrace.size(), 400U);
}

TEST_F(MeasurementSettingsTest, ChannelTextNamesBothChannelsForThree) {
  const std::vector<std::pair<std::int16_t, std::string>> cases = {
      {std::int16_t{1}, "1"}, {std::int16_t{2}, "2"}, {std::int16_t{3}, "1&2"}};
  for (const auto& [channel, text] : cases) {
    Settings.ActiveChannel = channel;
    EXPECT_EQ(ChannelText(), text);
  }
}

TEST_F(MeasurementSettingsTest, InputConfigTextFollowsTheCode) {
  const std::vector<std::pair<std::int32_t, std::string>> cases = {
      {0, "A"},   {1, "B"}, {2, "A-B"}, {3, "B-A"}, {4, "A/B"},
      {5, "B/A"}, {6, ""},  {-1, ""},   {1000, ""}};
  for (const auto& [code, text] : cases) {
    Settings.Channels[0].InputConfig = code;
    EXPECT_EQ(InputConfigText(), text) << "code " << code;
  }
}

TEST_F(MeasurementSettingsTest, InputConfigTextIsThatOfTheActiveChannel) {
  Settings.Channels[0].InputConfig = 1;
  Settings.Channels[1].InputConfig = 4;
  Settings.ActiveChannel = 2;
  EXPECT_EQ(InputConfigText(), "A/B");
  Settings.ActiveChannel = 3;
  EXPECT_EQ(InputConfigText(), "");
}

TEST_F(MeasurementSettingsTest, ActiveChannelSettingsAreThoseOfTheChannelItself) {
  EXPECT_EQ(&activeChannelSettings(), &Settings.Channels[0]);
  Settings.ActiveChannel = 2;
  EXPECT_EQ(&activeChannelSettings(), &Settings.Channels[1]);
}

TEST_F(MeasurementSettingsTest, ActiveChannelSettingsFaultUnlessOneChannelIsActive) {
  for (const std::int16_t channel : std::initializer_list<std::int16_t>{-1, 0, 3, 4, 32767}) {
    Settings.ActiveChannel = channel;
    EXPECT_THROW(activeChannelSettings(), Fault) << "channel " << channel;
  }
}

}  // namespace
}  // namespace pulsemod::test
