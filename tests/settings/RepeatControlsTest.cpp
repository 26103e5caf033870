#include "PropertiesTest.h"

namespace pulsemod::test {

void PrintTo(const GateControls& controls, std::ostream* out) {
  *out << (controls.shown ? "shown " : "") << (controls.switchable ? "switchable " : "")
       << (controls.checked ? "checked " : "") << (controls.editable ? "editable " : "")
       << (controls.activatable ? "activatable" : "");
}

namespace {

/// "S": shown, "w": switchable, "c": checked, "e": editable, "a": activatable.
GateControls controlsOf(const std::string& letters) {
  const auto has = [&letters](char letter) { return letters.find(letter) != std::string::npos; };
  return {has('S'), has('w'), has('c'), has('e'), has('a')};
}

class RepeatControlsTest : public PropertiesTest {
 protected:
  static void expectControls(const std::array<const char*, gateCount>& expected) {
    for (int number = 1; number <= 8; ++number) {
      EXPECT_EQ(gateControls(number), controlsOf(expected[static_cast<std::size_t>(number - 1)]))
          << "gate " << number;
    }
  }
  /// Which gates are on, from gate 1: "XX------".
  static std::string gatesOn() {
    std::string on;
    for (const GateSettings& settings : Settings.Gates) on += settings.Enabled != 0 ? 'X' : '-';
    return on;
  }
};

TEST_F(RepeatControlsTest, CountIsKeptBetweenOneAndEight) {
  const std::vector<std::pair<const char*, std::int16_t>> typed = {
      {"0", std::int16_t{1}},     {"abc", std::int16_t{1}},   {"", std::int16_t{1}},
      {"-3", std::int16_t{1}},    {"2.5", std::int16_t{2}},   {"9", std::int16_t{8}},
      {"70000", std::int16_t{8}}, {"1e99", std::int16_t{8}},  {"1E999", std::int16_t{8}},
      {"1", std::int16_t{1}},     {"8", std::int16_t{8}},     {" 5 ", std::int16_t{5}},
      {"4x", std::int16_t{4}},    {"65536", std::int16_t{8}}, {"-70000", std::int16_t{1}},
      {"7.6", std::int16_t{8}},   {"-1e99", std::int16_t{1}}};
  for (const auto& [text, count] : typed) {
    SCOPED_TRACE(text);
    for (const bool byEnter : {true, false}) {
      InitMeasurementSettings();
      world.meter.received.clear();
      properties.timesRepeatCountShown = 0;
      if (byEnter) {
        EnterRepeatCount(text);
        EXPECT_EQ(received(), (Transcript{"GP1REPN 1," + std::to_string(count)}));
      } else {
        SwitchRepeat(true, text);
        EXPECT_EQ(received(), (Transcript{"GP1REPS 1, ON"}));
      }
      EXPECT_EQ(Settings.RepeatCount, count);
      EXPECT_EQ(properties.timesRepeatCountShown, 1);
      EXPECT_TRUE(world.dialogs.messages.empty());
    }
  }
}

TEST_F(RepeatControlsTest, SwitchingOffTakesTheCountTooAndSaysNothingAboutIt) {
  SwitchRepeat(false, "0");
  EXPECT_EQ(Settings.RepeatEnabled, False16);
  EXPECT_EQ(Settings.RepeatCount, 1);
  EXPECT_EQ(properties.timesRepeatCountShown, 1);
  EXPECT_EQ(received(), (Transcript{"GP1REPS 1, OFF"}));
}

TEST_F(RepeatControlsTest, RepeatDerivesItsGates) {
  SwitchRepeat(true, "3");
  EXPECT_EQ(Settings.RepeatEnabled, True16);
  EXPECT_EQ(gatesOn(), "XXX-----");
  EXPECT_EQ(gate(2).StartTime, 0.0007F);
  EXPECT_EQ(gate(3).StartTime, 0.0013F);
  EnterRepeatCount("8");
  EXPECT_EQ(gatesOn(), "XXXXXXXX");
  EXPECT_EQ(gate(8).StartTime, 0.0043F);
}

TEST_F(RepeatControlsTest, CountWithoutTheRepeatDerivesNothing) {
  EnterRepeatCount("5");
  EXPECT_EQ(Settings.RepeatCount, 5);
  EXPECT_EQ(Settings.RepeatEnabled, False16);
  EXPECT_EQ(gatesOn(), "--------");
  EXPECT_EQ(gate(2).StartTime, 0.0001F);
}

TEST_F(RepeatControlsTest, SlotsThatTheRepeatNoLongerReachesAreOff) {
  SwitchRepeat(true, "8");
  EnterRepeatCount("6");
  EXPECT_EQ(gatesOn(), "XXXXXX--");
  EnterRepeatCount("3");
  // Gates 1 to 4 are the meter's own and keep what they have.
  EXPECT_EQ(gatesOn(), "XXXX----");
  EnterRepeatCount("1");
  EXPECT_EQ(gatesOn(), "XXXX----");
}

TEST_F(RepeatControlsTest, WithoutTheRepeatSlotsFiveToEightAreOff) {
  SwitchRepeat(true, "8");
  SwitchRepeat(false, "8");
  EXPECT_EQ(gatesOn(), "XXXX----");
  for (GateSettings& settings : Settings.Gates) settings.Enabled = True16;
  SetGatesEnabled();
  EXPECT_EQ(gatesOn(), "XXXX----");
}

TEST_F(RepeatControlsTest, SetGatesEnabledShowsTheGatesAndSendsNothing) {
  Settings.RepeatEnabled = True16;
  Settings.RepeatCount = 6;
  for (GateSettings& settings : Settings.Gates) settings.Enabled = True16;
  SetGatesEnabled();
  EXPECT_EQ(gatesOn(), "XXXXXX--");
  EXPECT_EQ(properties.timesGatePageRefreshed, 1);
  EXPECT_TRUE(received().empty());
  // It derives no gate: times that were read from the meter or a file stay.
  EXPECT_EQ(gate(2).StartTime, 0.0001F);
}

TEST_F(RepeatControlsTest, EveryEditOfGateOneTakesTheRepeatedGatesWithIt) {
  SwitchRepeat(true, "2");
  answer("200us", [] { EditGateTime(0); });
  EXPECT_EQ(gate(2).StartTime, 0.0008F);
  answer("300us", [] { EditGateTime(1); });
  EXPECT_EQ(gate(2).StopTime, 0.0009F);
  answer("210us", [] { EditGateTime(2); });
  EXPECT_EQ(gate(2).FenceStart, 0.00081F);
  answer("290us", [] { EditGateTime(3); });
  EXPECT_EQ(gate(2).FenceStop, 0.00089F);
  ToggleFence(1);
  EXPECT_EQ(gate(2).FenceEnabled, True16);
  answer("1ms", EditRepeatOffset);
  EXPECT_EQ(Settings.RepeatOffset, 0.001F);
  EXPECT_EQ(gate(2).StartTime, 0.0012F);
  EXPECT_EQ(received(), (Transcript{"GP1REPS 1, ON", "GPTIMST 1, 1, 0.0002", "GPTIMSP 1, 1, 0.0003",
                                    "GPFENST 1, 1, 0.00021", "GPFENSP 1, 1, 0.00029",
                                    "GPFENS 1, 1, ON", "GP1REPT 1,0.001"}));
}

TEST_F(RepeatControlsTest, OffsetIsAskedWithThePresentOne) {
  answer("", EditRepeatOffset);
  ASSERT_EQ(world.dialogs.inputs.size(), 1U);
  EXPECT_EQ(world.dialogs.inputs[0].prompt, "Enter Repeat Offset");
  EXPECT_EQ(world.dialogs.inputs[0].title, "Properties");
  EXPECT_EQ(world.dialogs.inputs[0].defaultText, "600us");
  EXPECT_EQ(Settings.RepeatOffset, 0.0006F);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(properties.timesGatePageRefreshed, 0);
  EXPECT_EQ(view.picture.timesShown, 0);
}

TEST_F(RepeatControlsTest, OffsetInAnUnknownUnitIsSecondsAndSaysSo) {
  answer("5min", EditRepeatOffset);
  EXPECT_EQ(shownBoxes(),
            (std::vector<std::string>{"s, ms, us format|Do not understand format 'min' - reverting "
                                      "to Seconds|information"}));
  EXPECT_EQ(Settings.RepeatOffset, 5.0F);
  EXPECT_EQ(received(), (Transcript{"GP1REPT 1,5"}));
}

TEST_F(RepeatControlsTest, WithoutTheRepeatTheFourGatesAreTheUsersOwn) {
  gate(2).Enabled = True16;
  gate(4).Enabled = True16;
  expectControls({"Swe", "Swcea", "Swe", "Swcea", "", "", "", ""});
}

/// Gates that are off outside the repeat, and those that are on.
TEST_F(RepeatControlsTest, RepeatLocksTheGatesThatItReaches) {
  const std::vector<std::array<const char*, gateCount>> rows = {
      {"Scea", "Swe", "Swe", "Swe", "", "", "", ""},
      {"Scea", "Sca", "Swe", "Swe", "", "", "", ""},
      {"Scea", "Sca", "Sca", "Swe", "", "", "", ""},
      {"Scea", "Sca", "Sca", "Sca", "", "", "", ""},
      {"Scea", "Sca", "Sca", "Sca", "Sc", "", "", ""},
      {"Scea", "Sca", "Sca", "Sca", "Sc", "Sc", "", ""},
      {"Scea", "Sca", "Sca", "Sca", "Sc", "Sc", "Sc", ""},
      {"Scea", "Sca", "Sca", "Sca", "Sc", "Sc", "Sc", "Sc"}};
  for (std::size_t index = 0; index < rows.size(); ++index) {
    SCOPED_TRACE("count " + std::to_string(index + 1));
    InitMeasurementSettings();
    SwitchRepeat(true, std::to_string(index + 1));
    expectControls(rows[index]);
  }
}

TEST_F(RepeatControlsTest, OwnGateBeyondTheRepeatCanBeOn) {
  gate(4).Enabled = True16;
  SwitchRepeat(true, "2");
  expectControls({"Scea", "Sca", "Swe", "Swcea", "", "", "", ""});
  SwitchGate(3, true);
  EXPECT_EQ(gateControls(3), controlsOf("Swcea"));
  // Gate 1 is on as well, so gate 3 is no only gate.
  EXPECT_EQ(received(), (Transcript{"GP1REPS 1, ON", "GPGATS 1, 3, ON"}));
}

}  // namespace
}  // namespace pulsemod::test
