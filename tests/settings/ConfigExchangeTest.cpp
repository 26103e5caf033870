#include "PropertiesTest.h"
#include "link/Fault.h"
#include "profile/ProfileGraph.h"
#include "settings/ConfigExchange.h"
#include "startup/MeterScript.h"

namespace pulsemod::test {
namespace {

/// One of the two buttons; `query` is one of those in its exchange.
struct ExchangeButton {
  const char* name;
  void (*click)();
  Transcript (*transcript)();
  const char* query;
};

void PrintTo(const ExchangeButton& button, std::ostream* out) { *out << button.name; }

class ConfigExchangeTest : public PropertiesTest {
 protected:
  ConfigExchangeTest() { answerConfiguration(world.meter); }

  static void expectFree() { EXPECT_EQ(ConfigExchangeBusy, False16); }
};

class WholeExchange : public ConfigExchangeTest,
                      public ::testing::WithParamInterface<ExchangeButton> {
 protected:
  static void click() { GetParam().click(); }
  static Transcript transcript() { return GetParam().transcript(); }
  /// A further message of the user after those of one exchange.
  static Transcript transcriptAnd(const std::string& message) {
    Transcript messages = transcript();
    messages.push_back(message);
    return messages;
  }
};

INSTANTIATE_TEST_SUITE_P(
    Buttons, WholeExchange,
    ::testing::Values(ExchangeButton{"Load", LoadFromMeter, configurationTranscript, "CHACTIV?"},
                      ExchangeButton{"Save", SaveToMeter, defaultsTranscript, "*OPC?"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(WholeExchange, SaysItsTranscriptOnGpib) {
  click();
  EXPECT_EQ(received(), transcript());
  expectFree();
}

TEST_P(WholeExchange, SaysItsTranscriptOverSerial) {
  world.useSerial();
  world.meter.replies["*OPC?"] = "1";
  click();
  EXPECT_EQ(world.serial.sent, serialBytes(transcript()));
  expectFree();
}

TEST_P(WholeExchange, IsIgnoredWhileOneRuns) {
  for (const auto second : {LoadFromMeter, SaveToMeter}) {
    InitMeasurementSettings();
    world.meter.received.clear();
    duringReplyTo(GetParam().query, [second] {
      EXPECT_EQ(ConfigExchangeBusy, True16);
      second();
    });
    click();
    EXPECT_EQ(received(), transcript());
    expectFree();
  }
}

TEST_P(WholeExchange, IsIgnoredWhileOneWaits) {
  for (const auto second : {LoadFromMeter, SaveToMeter}) {
    InitMeasurementSettings();
    world.meter.received.clear();
    converse([this, second] {
      click();
      EXPECT_EQ(ConfigExchangeBusy, True16);
      second();
      EXPECT_TRUE(received().empty());
    });
    EXPECT_EQ(received(), transcript());
    expectFree();
  }
}

TEST_P(WholeExchange, BeginsAgainWhenTheFirstIsOver) {
  for (int time = 0; time < 3; ++time) {
    InitMeasurementSettings();
    world.meter.received.clear();
    click();
    EXPECT_EQ(received(), transcript());
  }
}

TEST_P(WholeExchange, EditsMeanwhileFollowIt) {
  duringReplyTo(GetParam().query, [] { ChooseDisplayPoints(400); });
  click();
  EXPECT_EQ(received(), transcriptAnd("SYDRES 400"));
}

TEST_P(WholeExchange, IsFreeAgainWhenTheProgramEndsInIt) {
  duringReplyTo(GetParam().query, [] { throw ProgramEnded(); });
  EXPECT_THROW(click(), ProgramEnded);
  expectFree();
}

TEST_F(ConfigExchangeTest, LoadShowsWhatCameInEveryWindow) {
  view.infoBoxOpen = true;
  view.markersOpen = true;
  int startShown = 0;
  properties.onRefresh = [&] { startShown = static_cast<int>(gate(2).StartTime * 1e6F + 0.5F); };
  LoadFromMeter();
  EXPECT_EQ(properties.timesRefreshed, 1);
  EXPECT_EQ(startShown, 2100);
  EXPECT_EQ(view.labels[GraphLabel::reference], "Ref: 5.00 dBm");
  EXPECT_EQ(view.labels[GraphLabel::capture], "10ms");
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_TRUE(view.info.groups[1].enabled);
  EXPECT_EQ(view.markers.markers[3].position, "4.5ms");
  EXPECT_EQ(received(), configurationTranscript());
}

TEST_F(ConfigExchangeTest, LoadSaysWhichChannelIsActive) {
  world.meter.replies["CHACTIV?"] = "CHACTIV 2";
  LoadFromMeter();
  EXPECT_EQ(properties.channelSentence,
            "Channel is the current active channel (2) on the power meter. Press 'Load from Power "
            "meter' button to change.");
  EXPECT_EQ(properties.timesChannelSentenceShown, 1);
}

TEST_F(ConfigExchangeTest, LoadTakesTheRepeatOfTheMeter) {
  world.meter.replies["GP1REPS? 1"] = "GP1REPS 1,ON";
  world.meter.replies["GP1REPN? 1"] = "GP1REPN 1,6";
  for (GateSettings& settings : Settings.Gates) settings.Enabled = True16;
  LoadFromMeter();
  for (int number = 1; number <= 8; ++number) {
    EXPECT_EQ(gate(number).Enabled, number <= 6 ? True16 : False16) << number;
  }
}

TEST_F(ConfigExchangeTest, SaveTouchesNoWindowButTheProgress) {
  SaveToMeter();
  EXPECT_EQ(properties.timesRefreshed, 0);
  EXPECT_EQ(properties.timesChannelSentenceShown, 0);
  EXPECT_EQ(view.picture.timesShown, 0);
  EXPECT_EQ(world.progress.hides, 1);
}

TEST_F(ConfigExchangeTest, SaveIsCheckedForCompletion) {
  world.meter.operationComplete = "0";
  SaveToMeter();
  EXPECT_EQ(shownBoxes(),
            (std::vector<std::string>{"Pelmora|Invalid response from Power Meter|exclamation"}));
  expectFree();
}

TEST_F(ConfigExchangeTest, ClickWhileTheMessageStandsIsIgnored) {
  world.meter.operationComplete = "0";
  world.dialogs.whileOpen = [] { SaveToMeter(); };
  SaveToMeter();
  EXPECT_EQ(received(), defaultsTranscript());
}

TEST_F(ConfigExchangeTest, FaultInALoadShowsWhatWasReadAndFreesTheButtons) {
  world.meter.replies["PMPO 1"] = "PMPO 1 and no more";
  EXPECT_THROW(LoadFromMeter(), Fault);
  EXPECT_EQ(properties.timesRefreshed, 1);
  EXPECT_EQ(properties.timesChannelSentenceShown, 1);
  EXPECT_EQ(view.labels[GraphLabel::reference], "Ref: 5.00 dBm");
  EXPECT_FALSE(world.progress.visible);
  expectFree();
  world.meter.replies["PMPO 1"] = "PMPO 1,400,-30,-31";
  world.meter.received.clear();
  LoadFromMeter();
  EXPECT_EQ(received(), configurationTranscript());
}

TEST_F(ConfigExchangeTest, FaultInALoadThatWaitedIsReported) {
  world.meter.replies["PMPO 1"] = "PMPO 1 and no more";
  converse([] { LoadFromMeter(); });
  ASSERT_EQ(world.dialogs.messages.size(), 1U);
  EXPECT_EQ(world.dialogs.messages[0].title, "Pelmora");
  EXPECT_EQ(world.dialogs.messages[0].icon, MessageIcon::exclamation);
  expectFree();
}

TEST_F(ConfigExchangeTest, SaveWithBothChannelsIsAFaultAndFreesTheButtons) {
  Settings.ActiveChannel = 3;
  world.meter.replies["PPACQS? 1&2"] = "PPACQS 1&2,OFF";
  EXPECT_THROW(SaveToMeter(), Fault);
  EXPECT_EQ(received().back(), "PMPSCAL 1&2,DB,10");
  expectFree();
}

TEST_F(ConfigExchangeTest, SilentMeterFreesTheButtons) {
  world.meter.replies.clear();
  LoadFromMeter();
  expectFree();
  EXPECT_EQ(properties.timesRefreshed, 1);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(ConfigExchangeTest, ShowSettingsBringsEveryWindowInLineAndSendsNothing) {
  view.infoBoxOpen = true;
  view.markersOpen = true;
  Settings.ReferenceLevel = -20;
  marker(1).Enabled = True16;
  for (GateSettings& settings : Settings.Gates) settings.Enabled = True16;
  std::string gatesWhenRefreshed;
  properties.onRefresh = [&] {
    for (const GateSettings& settings : Settings.Gates) {
      gatesWhenRefreshed += settings.Enabled != False16 ? 'X' : '-';
    }
  };
  ShowSettings();
  EXPECT_EQ(gatesWhenRefreshed, "XXXX----");
  EXPECT_EQ(view.labels[GraphLabel::reference], "Ref: -20.00 dBm");
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_TRUE(view.info.groups[4].enabled);
  EXPECT_FALSE(view.info.groups[5].enabled);
  EXPECT_EQ(view.markers.markers[0].position, "100us");
  EXPECT_TRUE(received().empty());
}

}  // namespace
}  // namespace pulsemod::test
