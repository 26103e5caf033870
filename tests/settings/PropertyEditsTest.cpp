#include "PropertiesTest.h"
#include "link/Fault.h"
#include "profile/GraphScale.h"
#include "profile/ProfileGraph.h"

namespace pulsemod::test {
namespace {

/// One use of a control, and what the meter gets: "@" stands for the channel.
struct Control {
  const char* name;
  std::function<void()> click;
  std::vector<const char*> messages;
  /// What the user types into the box that opens.
  const char* typed = "";
  /// The setting belongs to one channel.
  bool ofOneChannel = false;
  std::function<void()> before = [] {};
};

void PrintTo(const Control& control, std::ostream* out) { *out << control.name; }

const std::vector<Control> allControls = {
    {"AverageOn", [] { SwitchAveraging(true); }, {"PMAVGS @,ON"}, "", true},
    {"AverageOff", [] { SwitchAveraging(false); }, {"PMAVGS @,OFF"}, "", true},
    {"AverageCount", [] { SetAveragingCount(16); }, {"PMAVGN @, 16"}, "", true},
    {"MostAveraged", [] { SetAveragingCount(mostAveraged); }, {"PMAVGN @, 1000"}, "", true},
    {"GatesShown", [] { ShowGates(true); }, {"GPHIDES @, OFF"}},
    {"GatesHidden", [] { ShowGates(false); }, {"GPHIDES @, ON"}},
    {"OnlyGate", [] { SwitchGate(3, true); }, {"GPGATS @, 3, ON", "GPACTN @, 3"}},
    {"OneMoreGate",
     [] { SwitchGate(4, true); },
     {"GPGATS @, 4, ON"},
     "",
     false,
     [] { Settings.Gates[1].Enabled = True16; }},
    {"GateOff", [] { SwitchGate(1, false); }, {"GPGATS @, 1, OFF"}},
    {"FenceOn", [] { ToggleFence(2); }, {"GPFENS @, 2, ON"}},
    {"FenceOff",
     [] { ToggleFence(4); },
     {"GPFENS @, 4, OFF"},
     "",
     false,
     [] { Settings.Gates[3].FenceEnabled = True16; }},
    {"GateStart", [] { EditGateTime(0); }, {"GPTIMST @, 1, 0.0002"}, "200us"},
    {"GateStop", [] { EditGateTime(5); }, {"GPTIMSP @, 2, 1"}, "1"},
    {"FenceStart", [] { EditGateTime(10); }, {"GPFENST @, 3, 0.00015"}, "150us"},
    {"FenceStop", [] { EditGateTime(15); }, {"GPFENSP @, 4, 5E-06"}, "5us"},
    {"RepeatOn", [] { SwitchRepeat(true, "3"); }, {"GP1REPS @, ON"}},
    {"RepeatOff", [] { SwitchRepeat(false, "3"); }, {"GP1REPS @, OFF"}},
    {"RepeatCount", [] { EnterRepeatCount("5"); }, {"GP1REPN @,5"}},
    {"RepeatOffset", [] { EditRepeatOffset(); }, {"GP1REPT @,0.0007"}, "700us"},
    {"ActiveGate", [] { ChooseActiveGate(2); }, {"GPACTN @,2"}},
    {"MarkerOn", [] { SwitchMarker(2, true); }, {"MKSTATE @,2,ON"}},
    {"MarkerOff", [] { SwitchMarker(4, false); }, {"MKSTATE @,4,OFF"}},
    {"DeltaMarkerOn", [] { SwitchMarker(5, true); }, {"MKDELTS @,ON", "MKDPOS @,0.0005"}},
    {"DeltaMarkerOff", [] { SwitchMarker(5, false); }, {"MKDELTS @,OFF", "MKDPOS @,0.0005"}},
    {"MarkerPosition", [] { EditMarkerPosition(3); }, {"MKPOS @,3,0.0025", "MKNO @,3"}, "2.5ms"},
    {"DeltaMarkerPosition", [] { EditMarkerPosition(5); }, {"MKDPOS @,0.001", "MKDO @"}, "1ms"},
    {"ActiveMarker", [] { ChooseActiveMarker(4); }, {"MKACTN @, 4"}},
    {"DeltaAverage", [] { ChooseDeltaMeasurement(0); }, {"MKDMEAS @, PAVG"}},
    {"DeltaDifference", [] { ChooseDeltaMeasurement(1); }, {"MKDMEAS @, PDIFF"}},
    {"InputA", [] { ChooseInputConfig(0); }, {"CHCFG @, A"}, "", true},
    {"InputB", [] { ChooseInputConfig(1); }, {"CHCFG @, B"}, "", true},
    {"InputAMinusB", [] { ChooseInputConfig(2); }, {"CHCFG @, A-B"}, "", true},
    {"InputBMinusA", [] { ChooseInputConfig(3); }, {"CHCFG @, B-A"}, "", true},
    {"InputAOverB", [] { ChooseInputConfig(4); }, {"CHCFG @, A/B"}, "", true},
    {"InputBOverA", [] { ChooseInputConfig(5); }, {"CHCFG @, B/A"}, "", true},
    {"MeasurementOne", [] { ChooseMeasurement(1); }, {"PMMEAS @,1"}},
    {"MeasurementFour", [] { ChooseMeasurement(4); }, {"PMMEAS @,4"}},
    {"FewPoints", [] { ChooseDisplayPoints(200); }, {"SYDRES 200"}},
    {"ManyPoints", [] { ChooseDisplayPoints(400); }, {"SYDRES 400"}},
    {"Channel", [] { ChooseChannel(Settings.ActiveChannel); }, {}},
};

const std::vector<std::pair<std::int16_t, std::string>> channels = {
    {std::int16_t{1}, "1"}, {std::int16_t{2}, "2"}, {std::int16_t{3}, "1&2"}};

class PropertyControl : public PropertiesTest, public ::testing::WithParamInterface<Control> {
 protected:
  static Transcript messagesOn(const std::string& channel) {
    Transcript messages;
    for (std::string message : GetParam().messages) {
      if (const std::size_t at = message.find('@'); at != std::string::npos) {
        message.replace(at, 1, channel);
      }
      messages.push_back(message);
    }
    return messages;
  }
  void begin(std::int16_t channel) {
    InitMeasurementSettings();
    Settings.ActiveChannel = channel;
    GetParam().before();
    world.meter.received.clear();
  }
  void use() { answer(GetParam().typed, GetParam().click); }
};

INSTANTIATE_TEST_SUITE_P(Controls, PropertyControl, ::testing::ValuesIn(allControls),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(PropertyControl, SendsItsMessagesAndNoOthersOnGpib) {
  for (const auto& [channel, text] : channels) {
    SCOPED_TRACE("channel " + text);
    if (GetParam().ofOneChannel && channel == 3) continue;
    begin(channel);
    use();
    EXPECT_EQ(received(), messagesOn(text));
    EXPECT_TRUE(world.dialogs.messages.empty());
  }
}

TEST_P(PropertyControl, SendsItsMessagesAndNoOthersOverSerial) {
  world.useSerial();
  for (const auto& [channel, text] : channels) {
    SCOPED_TRACE("channel " + text);
    if (GetParam().ofOneChannel && channel == 3) continue;
    world.meter.replies["MKNO " + text + ",3"] = "MKNO " + text + ",3,-34.5,DBM,0.0025";
    world.meter.replies["MKDO " + text] = "MKDO " + text + ",-1";
    begin(channel);
    world.serial.sent.clear();
    use();
    EXPECT_EQ(world.serial.sent, serialBytes(messagesOn(text)));
    EXPECT_EQ(world.serial.interruptedQueries, 0);
  }
  EXPECT_TRUE(world.gpib.calls.empty());
}

/// While the meter is busy with another exchange nothing gets in between.
TEST_P(PropertyControl, WaitsForTheOpenConversation) {
  begin(1);
  converse([this] {
    use();
    EXPECT_TRUE(received().empty());
  });
  EXPECT_EQ(received(), messagesOn("1"));
}

TEST_F(PropertiesTest, SettingsOfOneChannelAreAFaultWithBothAndSayNothingToTheMeter) {
  Settings.ActiveChannel = 3;
  for (const Control& control : allControls) {
    if (!control.ofOneChannel) continue;
    EXPECT_THROW(control.click(), Fault) << control.name;
  }
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(Settings.Channels[0].AveragingCount, 1);
  EXPECT_EQ(Settings.Channels[1].AveragingCount, 0);
  for (const ChannelSettings& channel : Settings.Channels) {
    EXPECT_EQ(channel.AveragingOn, False16);
    EXPECT_EQ(channel.InputConfig, 0);
  }
}

TEST_F(PropertiesTest, EditsDuringAnExchangeAreSentInTheirOrder) {
  converse([this] {
    SwitchGate(2, true);
    ToggleFence(1);
    SwitchMarker(5, true);
    EnterRepeatCount("4");
    answer("1ms", [] { EditMarkerPosition(1); });
    ShowGates(false);
    EXPECT_TRUE(received().empty());
  });
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 2, ON", "GPACTN 1, 2", "GPFENS 1, 1, ON",
                                    "MKDELTS 1,ON", "MKDPOS 1,0.0005", "GP1REPN 1,4",
                                    "MKPOS 1,1,0.001", "MKNO 1,1", "GPHIDES 1, ON"}));
}

TEST_F(PropertiesTest, EditThatWaitsKeepsTheValuesOfItsTime) {
  converse([this] {
    SetAveragingCount(7);
    answer("1ms", [] { EditMarkerPosition(1); });
    answer("2ms", [] { EditMarkerPosition(5); });
    answer("300us", [] { EditGateTime(0); });
    ChooseChannel(2);
    marker(1).Position = 0.003F;
    marker(5).Position = 0.003F;
    gate(1).StartTime = 0.0004F;
    SetAveragingCount(8);
  });
  EXPECT_EQ(received(), (Transcript{"PMAVGN 1, 7", "MKPOS 1,1,0.001", "MKNO 1,1", "MKDPOS 1,0.002",
                                    "MKDO 1", "GPTIMST 1, 1, 0.0003", "PMAVGN 2, 8"}));
}

// Averaging and channel.

TEST_F(PropertiesTest, AveragingBelongsToTheActiveChannel) {
  SwitchAveraging(true);
  SetAveragingCount(16);
  EXPECT_EQ(Settings.Channels[0].AveragingOn, True16);
  EXPECT_EQ(Settings.Channels[0].AveragingCount, 16);
  EXPECT_EQ(Settings.Channels[1].AveragingOn, False16);
  EXPECT_EQ(Settings.Channels[1].AveragingCount, 0);
  SwitchAveraging(false);
  EXPECT_EQ(Settings.Channels[0].AveragingOn, False16);
  Settings.ActiveChannel = 2;
  SwitchAveraging(true);
  SetAveragingCount(1000);
  EXPECT_EQ(Settings.Channels[1].AveragingOn, True16);
  EXPECT_EQ(Settings.Channels[1].AveragingCount, 1000);
  EXPECT_EQ(Settings.Channels[0].AveragingCount, 16);
}

TEST_F(PropertiesTest, AveragingCaptionBearsTheCount) {
  EXPECT_EQ(averagingCaption(16), "Average (16)");
  EXPECT_EQ(averagingCaption(1000), "Average (1000)");
}

TEST_F(PropertiesTest, ChannelIsChosenWithoutAWordToTheMeter) {
  for (const auto& [channel, text] : channels) {
    ChooseChannel(channel);
    EXPECT_EQ(Settings.ActiveChannel, channel);
    EXPECT_EQ(ChannelText(), text);
  }
  EXPECT_EQ(properties.timesChannelPageRefreshed, 3);
  EXPECT_TRUE(received().empty());
}

TEST_F(PropertiesTest, SentenceNamesTheActiveChannel) {
  EXPECT_EQ(channelSentence(),
            "Channel is the current active channel (1) on the power meter. Press 'Load from Power "
            "meter' button to change.");
  Settings.ActiveChannel = 3;
  EXPECT_EQ(channelSentence(),
            "Channel is the current active channel (1&2) on the power meter. Press 'Load from "
            "Power meter' button to change.");
}

TEST_F(PropertiesTest, InputConfigBelongsToTheActiveChannel) {
  Settings.ActiveChannel = 2;
  ChooseInputConfig(4);
  EXPECT_EQ(Settings.Channels[1].InputConfig, 4);
  EXPECT_EQ(Settings.Channels[0].InputConfig, 0);
}

// Gates.

TEST_F(PropertiesTest, HiddenGatesLeaveTheGraphAtOnce) {
  gate(1).Enabled = True16;
  RefreshGraph();
  ASSERT_TRUE(view.gateLines[0].visible);
  ShowGates(false);
  EXPECT_EQ(Settings.GatesVisible, False16);
  EXPECT_FALSE(view.gateLines[0].visible);
  ShowGates(true);
  EXPECT_EQ(Settings.GatesVisible, True16);
  EXPECT_TRUE(view.gateLines[0].visible);
  EXPECT_EQ(view.picture.timesShown, 3);
}

TEST_F(PropertiesTest, GateThatIsTheOnlyOneBecomesTheActiveOne) {
  SwitchGate(3, true);
  EXPECT_EQ(gate(3).Enabled, True16);
  EXPECT_EQ(Settings.ActiveGate, 3);
  SwitchGate(2, true);
  EXPECT_EQ(gate(2).Enabled, True16);
  EXPECT_EQ(Settings.ActiveGate, 3);
  SwitchGate(3, false);
  EXPECT_EQ(gate(3).Enabled, False16);
  EXPECT_EQ(Settings.ActiveGate, 3);
  SwitchGate(2, true);
  EXPECT_EQ(Settings.ActiveGate, 2);
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 3, ON", "GPACTN 1, 3", "GPGATS 1, 2, ON",
                                    "GPGATS 1, 3, OFF", "GPGATS 1, 2, ON", "GPACTN 1, 2"}));
}

TEST_F(PropertiesTest, SlotsOfTheRepeatDoNotCountAsOtherGates) {
  for (int slot = 5; slot <= 8; ++slot) gate(slot).Enabled = True16;
  SwitchGate(4, true);
  EXPECT_EQ(Settings.ActiveGate, 4);
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 4, ON", "GPACTN 1, 4"}));
}

TEST_F(PropertiesTest, ActiveGateStaysWhenItIsSwitchedOff) {
  SwitchGate(2, true);
  SwitchGate(4, true);
  world.meter.received.clear();
  SwitchGate(2, false);
  EXPECT_EQ(Settings.ActiveGate, 2);
  SwitchGate(4, false);
  EXPECT_EQ(Settings.ActiveGate, 2);
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 2, OFF", "GPGATS 1, 4, OFF"}));
}

TEST_F(PropertiesTest, GateEditsShowInEveryWindow) {
  const std::vector<std::pair<const char*, std::function<void()>>> edits = {
      {"switch", [] { SwitchGate(2, true); }},
      {"fence", [] { ToggleFence(2); }},
      {"time", [this] { answer("200us", [] { EditGateTime(4); }); }},
      {"repeat", [] { SwitchRepeat(true, "3"); }},
      {"count", [] { EnterRepeatCount("2"); }},
      {"offset", [this] { answer("1ms", EditRepeatOffset); }},
  };
  view.infoBoxOpen = true;
  for (const auto& [name, edit] : edits) {
    SCOPED_TRACE(name);
    view.picture.timesShown = 0;
    view.info.groups.clear();
    properties.timesGatePageRefreshed = 0;
    edit();
    EXPECT_GE(properties.timesGatePageRefreshed, 1);
    EXPECT_EQ(view.picture.timesShown, 1);
    ASSERT_EQ(view.info.groups.size(), 9U);
    for (int number = 1; number <= 8; ++number) {
      EXPECT_EQ(view.info.groups[static_cast<std::size_t>(number)].enabled,
                gate(number).Enabled != False16);
    }
  }
  EXPECT_EQ(properties.timesRefreshed, 0);
}

TEST_F(PropertiesTest, GateLinesStandWhereTheEditPutThem) {
  SwitchGate(1, true);
  ToggleFence(1);
  answer("2.3ms", [] { EditGateTime(1); });
  EXPECT_TRUE(view.gateLines[0].visible);
  EXPECT_TRUE(view.gateLines[2].visible);
  EXPECT_EQ(view.gateLines[1].x, 100);
  EXPECT_EQ(gate(1).StopX, 100);
}

TEST_F(PropertiesTest, FenceIsToggledForItsGateAlone) {
  ToggleFence(2);
  for (int number = 1; number <= 4; ++number) {
    EXPECT_EQ(gate(number).FenceEnabled, number == 2 ? True16 : False16);
  }
  ToggleFence(2);
  EXPECT_EQ(gate(2).FenceEnabled, False16);
  EXPECT_EQ(received(), (Transcript{"GPFENS 1, 2, ON", "GPFENS 1, 2, OFF"}));
}

TEST_F(PropertiesTest, ToolTipOfAFenceSaysWhatAClickDoes) {
  EXPECT_EQ(fenceToolTip(true), "Enabled, Click on the FENCE text to disable");
  EXPECT_EQ(fenceToolTip(false), "Disabled, Click on the FENCE text to enable");
}

TEST_F(PropertiesTest, ActiveGateIsChosenWithoutSwitchingIt) {
  ChooseActiveGate(4);
  EXPECT_EQ(Settings.ActiveGate, 4);
  EXPECT_EQ(gate(4).Enabled, False16);
}

// Times of a gate.

struct GateTimeBox {
  const char* name;
  std::size_t place;
  const char* promptHead;
  const char* promptTail;
  float GateSettings::*field;
  const char* mnemonic;
};

const std::vector<GateTimeBox> gateTimeBoxes = {
    {"Start", 0, "Enter Gate ", " Start Time", &GateSettings::StartTime, "GPTIMST 1, "},
    {"Stop", 1, "Enter Gate ", " Stop Time", &GateSettings::StopTime, "GPTIMSP 1, "},
    {"FenceStart", 2, "Enter Fence ", " Start Time", &GateSettings::FenceStart, "GPFENST 1, "},
    {"FenceStop", 3, "Enter Fence ", " Stop Time", &GateSettings::FenceStop, "GPFENSP 1, "},
};

class GateTimeEdit : public PropertiesTest, public ::testing::WithParamInterface<GateTimeBox> {
 protected:
  static std::size_t boxOf(int number) {
    return static_cast<std::size_t>(number - 1) * 4 + GetParam().place;
  }
  static void expectOnlyChange(int number, float value) {
    MeasurementSettings expected;
    expected.Gates[static_cast<std::size_t>(number - 1)].*GetParam().field = value;
    for (std::size_t index = 0; index < gateCount; ++index) {
      for (const GateTimeBox& box : gateTimeBoxes) {
        EXPECT_EQ(Settings.Gates[index].*box.field, expected.Gates[index].*box.field)
            << box.name << " of gate " << index + 1;
      }
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Boxes, GateTimeEdit, ::testing::ValuesIn(gateTimeBoxes),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(GateTimeEdit, AsksWithThePresentTimeAndStoresTheAnswer) {
  for (int number = 1; number <= 4; ++number) {
    SCOPED_TRACE("gate " + std::to_string(number));
    InitMeasurementSettings();
    gate(number).*GetParam().field = 0.0003F;
    world.dialogs.inputs.clear();
    world.meter.received.clear();
    answer("350us", [number] { EditGateTime(boxOf(number)); });
    ASSERT_EQ(world.dialogs.inputs.size(), 1U);
    EXPECT_EQ(world.dialogs.inputs[0].prompt,
              GetParam().promptHead + std::to_string(number) + GetParam().promptTail);
    EXPECT_EQ(world.dialogs.inputs[0].title, "Properties");
    EXPECT_EQ(world.dialogs.inputs[0].defaultText, "300us");
    EXPECT_EQ(received(), (Transcript{GetParam().mnemonic + std::to_string(number) + ", 0.00035"}));
    expectOnlyChange(number, 0.00035F);
    EXPECT_TRUE(world.dialogs.messages.empty());
  }
}

TEST_P(GateTimeEdit, CancelChangesNothing) {
  const float before = gate(2).*GetParam().field;
  answer("", [] { EditGateTime(boxOf(2)); });
  expectOnlyChange(2, before);
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(view.picture.timesShown, 0);
  EXPECT_EQ(properties.timesGatePageRefreshed, 0);
}

TEST_P(GateTimeEdit, UnitThatIsNotUnderstoodIsToldAndMeansSeconds) {
  gate(1).StopTime = 10;
  Settings.TriggerDelay = -10;
  gate(1).StartTime = -10;
  answer("5 ms", [] { EditGateTime(boxOf(1)); });
  EXPECT_EQ(shownBoxes(), (std::vector<std::string>{
                              "s, ms, us format|Do not understand format ' ms' - reverting to "
                              "Seconds|information"}));
  EXPECT_EQ(gate(1).*GetParam().field, 5.0F);
  EXPECT_EQ(received(), (Transcript{GetParam().mnemonic + std::string("1, 5")}));
}

TEST_P(GateTimeEdit, TimeBeyondSinglePrecisionIsAFault) {
  const float before = gate(1).*GetParam().field;
  EXPECT_THROW(answer(std::string(60, '9'), [] { EditGateTime(boxOf(1)); }), Fault);
  expectOnlyChange(1, before);
  EXPECT_TRUE(received().empty());
}

/// What a time is held against, and what is said about one that does not pass.
struct TimeLimit {
  const char* name;
  std::size_t box;
  float GateSettings::*field;
  const char* message;
  /// Times that pass, on the limit first.
  std::vector<const char*> passing;
  std::vector<const char*> refused;
};

// The trigger delay is 1 ms; gate 2 lasts from 2 ms to 8 ms.
const char* const beforeDelay = "Gate time must be greater than the trigger delay time";
const std::vector<TimeLimit> timeLimits = {
    // No end of a gate is held against the other one.
    {"Start",
     4,
     &GateSettings::StartTime,
     beforeDelay,
     {"1ms", "1.001ms", "9ms", "1"},
     {"999.999us", "0", "-1ms"}},
    {"Stop",
     5,
     &GateSettings::StopTime,
     beforeDelay,
     {"1ms", "1.001ms", "1.5ms", "2"},
     {"999.999us", "0", "-1"}},
    // Nor is one of a fence, and each has one limit alone.
    {"FenceStart",
     6,
     &GateSettings::FenceStart,
     "Fence time must be greater than the gate start time",
     {"2ms", "2.001ms", "9ms"},
     {"1.999ms", "1ms", "0", "-5ms"}},
    {"FenceStop",
     7,
     &GateSettings::FenceStop,
     "Fence time must be less than the gate stop time",
     {"8ms", "7.999ms", "0", "-5ms"},
     {"8.001ms", "9ms", "1"}},
};

void PrintTo(const TimeLimit& limit, std::ostream* out) { *out << limit.name; }

class GateTimeLimit : public PropertiesTest, public ::testing::WithParamInterface<TimeLimit> {
 protected:
  GateTimeLimit() {
    Settings.TriggerDelay = 0.001F;
    gate(2).StartTime = 0.002F;
    gate(2).FenceStart = 0.003F;
    gate(2).FenceStop = 0.004F;
    gate(2).StopTime = 0.008F;
  }
  static float& time() { return gate(2).*GetParam().field; }
};

INSTANTIATE_TEST_SUITE_P(Times, GateTimeLimit, ::testing::ValuesIn(timeLimits),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(GateTimeLimit, ItselfAndWhatLiesInsidePass) {
  const GateSettings before = gate(2);
  for (const char* typed : GetParam().passing) {
    gate(2) = before;
    world.meter.received.clear();
    answer(typed, [] { EditGateTime(GetParam().box); });
    EXPECT_NE(time(), before.*GetParam().field) << typed;
    EXPECT_EQ(received().size(), 1U) << typed;
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_P(GateTimeLimit, WhatLiesOutsideIsRefusedWithItsMessage) {
  const float before = time();
  for (const char* typed : GetParam().refused) {
    world.dialogs.messages.clear();
    answer(typed, [] { EditGateTime(GetParam().box); });
    EXPECT_EQ(shownBoxes(),
              (std::vector<std::string>{"Invalid Gate time|" + std::string(GetParam().message) +
                                        "|information"}))
        << typed;
    EXPECT_EQ(time(), before) << typed;
  }
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(view.picture.timesShown, 0);
  EXPECT_EQ(properties.timesGatePageRefreshed, 0);
}

// Markers.

TEST_F(PropertiesTest, MarkerIsSwitchedAloneAndShows) {
  view.markersOpen = true;
  SwitchMarker(2, true);
  for (int number = 1; number <= 5; ++number) {
    EXPECT_EQ(marker(number).Enabled, number == 2 ? True16 : False16);
  }
  EXPECT_TRUE(view.markers.enabled[1]);
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_EQ(properties.timesMarkerPageRefreshed, 1);
  SwitchMarker(2, false);
  EXPECT_EQ(marker(2).Enabled, False16);
  EXPECT_FALSE(view.markers.enabled[1]);
  SwitchMarker(5, true);
  EXPECT_EQ(marker(5).Enabled, True16);
  SwitchMarker(5, false);
  EXPECT_EQ(marker(5).Enabled, False16);
}

TEST_F(PropertiesTest, MarkerPositionIsAskedWithThePresentOne) {
  marker(4).Position = 0.0023456F;
  for (int number = 1; number <= 5; ++number) answer("", [number] { EditMarkerPosition(number); });
  const std::vector<const char*> offered = {"100us", "200us", "300us", "2.345ms", "500us"};
  ASSERT_EQ(world.dialogs.inputs.size(), 5U);
  for (std::size_t index = 0; index < 5; ++index) {
    EXPECT_EQ(world.dialogs.inputs[index].prompt,
              "Enter Marker " + std::to_string(index + 1) + " Position");
    EXPECT_EQ(world.dialogs.inputs[index].title, "Properties");
    EXPECT_EQ(world.dialogs.inputs[index].defaultText, offered[index]);
  }
  EXPECT_EQ(marker(4).Position, 0.0023456F);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(view.picture.timesShown, 0);
}

TEST_F(PropertiesTest, MarkerTakesItsPositionItsColumnAndItsNewReading) {
  view.markersOpen = true;
  marker(2).Enabled = True16;
  world.meter.replies["MKNO 1,2"] = "MKNO 1,2,-34.5,DBM,0.0099";
  answer("2.3ms", [] { EditMarkerPosition(2); });
  EXPECT_EQ(marker(2).Position, 0.0023F);
  EXPECT_EQ(marker(2).PositionX, 100);
  EXPECT_EQ(marker(2).Reading, -34.5F);
  EXPECT_EQ(view.markers.markers[1], (FakeMarkersWindow::Marker{"-34.5", "2.3ms"}));
  EXPECT_EQ(marker(1).Reading, 0.0F);
}

/// A meter that is slow, or silent, does not keep the new position from the user.
TEST_F(PropertiesTest, PositionStandsInTheWindowsBeforeTheMeterAnswers) {
  for (const int number : {2, 5}) {
    properties.timesMarkerPageRefreshed = 0;
    view.picture.timesShown = 0;
    bool asked = false;
    world.meter.onMessage = [&](const std::string& message) {
      if (!message.starts_with("MKPOS") && !message.starts_with("MKDPOS")) return;
      asked = true;
      EXPECT_EQ(marker(number).PositionX, 100);
      EXPECT_EQ(properties.timesMarkerPageRefreshed, 1);
      EXPECT_EQ(view.picture.timesShown, 1);
    };
    answer("2.3ms", [number] { EditMarkerPosition(number); });
    EXPECT_TRUE(asked);
  }
}

TEST_F(PropertiesTest, MarkerWithoutAnAnswerKeepsItsReading) {
  const std::vector<const char*> useless = {"MKNO", "MKNO 1,2",      "MKNO 1,2,",
                                            "",     "MKNO 1,2,1E39", "MKNO 1,2, ,DBM,0.0001"};
  for (const char* reply : useless) {
    marker(2).Reading = -7;
    world.meter.replies["MKNO 1,2"] = reply;
    answer("2.3ms", [] { EditMarkerPosition(2); });
    EXPECT_EQ(marker(2).Reading, -7.0F) << reply;
    EXPECT_EQ(marker(2).Position, 0.0023F) << reply;
  }
  world.meter.replies.clear();
  answer("2.4ms", [] { EditMarkerPosition(2); });
  EXPECT_EQ(marker(2).Reading, -7.0F);
  EXPECT_EQ(marker(2).Position, 0.0024F);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(PropertiesTest, TextInPlaceOfAReadingIsZero) {
  marker(2).Reading = -7;
  world.meter.replies["MKNO 1,2"] = "MKNO 1,2,---";
  answer("2.3ms", [] { EditMarkerPosition(2); });
  EXPECT_EQ(marker(2).Reading, 0.0F);
}

TEST_F(PropertiesTest, ReadingOverSerialLosesItsReturn) {
  world.useSerial();
  world.meter.replies["MKNO 1,1"] = "MKNO 1,1,-34.5";
  answer("1ms", [] { EditMarkerPosition(1); });
  EXPECT_EQ(marker(1).Reading, -34.5F);
}

TEST_F(PropertiesTest, DeltaMarkerHasNoReading) {
  marker(5).Reading = -7;
  world.meter.replies["MKDO 1"] = "MKDO 1,5,-34.5,DBM,0.0025";
  answer("2.3ms", [] { EditMarkerPosition(5); });
  EXPECT_EQ(marker(5).Position, 0.0023F);
  EXPECT_EQ(marker(5).PositionX, 100);
  EXPECT_EQ(marker(5).Reading, -7.0F);
  EXPECT_EQ(received(), (Transcript{"MKDPOS 1,0.0023", "MKDO 1"}));
  EXPECT_EQ(world.gpib.output, "");
}

TEST_F(PropertiesTest, PositionOnAGraphWithoutTimesIsTakenAndSent) {
  Settings.CaptureTime = 0;
  marker(1).PositionX = 42;
  answer("1ms", [] { EditMarkerPosition(1); });
  EXPECT_EQ(marker(1).Position, 0.001F);
  EXPECT_EQ(marker(1).PositionX, 42);
  EXPECT_EQ(received(), (Transcript{"MKPOS 1,1,0.001", "MKNO 1,1"}));
}

TEST_F(PropertiesTest, OneMarkerIsTheActiveOne) {
  marker(2).IsActive = True16;
  ChooseActiveMarker(3);
  for (int number = 1; number <= 4; ++number) {
    EXPECT_EQ(marker(number).IsActive, number == 3 ? True16 : False16);
  }
  EXPECT_EQ(properties.timesMarkerPageRefreshed, 1);
  EXPECT_EQ(view.picture.timesShown, 1);
}

TEST_F(PropertiesTest, DeltaMeasurementIsStored) {
  ChooseDeltaMeasurement(1);
  EXPECT_EQ(Settings.DeltaMeasurement, 1);
  ChooseDeltaMeasurement(0);
  EXPECT_EQ(Settings.DeltaMeasurement, 0);
}

// Measurement and display.

TEST_F(PropertiesTest, MeasurementShowsInTheInfoBox) {
  view.infoBoxOpen = true;
  for (std::int32_t type = 1; type <= 4; ++type) {
    ChooseMeasurement(type);
    EXPECT_EQ(Settings.MeasurementType, type);
    EXPECT_EQ(view.info.hidden.count(2), type < 3 ? 1U : 0U) << type;
  }
  EXPECT_EQ(view.info.results[2].name, "Max");
  EXPECT_EQ(received(), (Transcript{"PMMEAS 1,1", "PMMEAS 1,2", "PMMEAS 1,3", "PMMEAS 1,4"}));
}

TEST_F(PropertiesTest, DisplayPointsShowOnTheGraph) {
  ChooseDisplayPoints(400);
  EXPECT_EQ(Settings.DisplayPoints, 400);
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_EQ(view.picture.shown.scale.width, 400);
}

}  // namespace
}  // namespace pulsemod::test
