#include "CCDFTest.h"
#include "ccdf/CCDFConfig.h"
#include "profile/MeasurementSettings.h"

namespace pulsemod::test {
namespace {

using Captions = std::vector<std::string>;

class CCDFConfigTest : public CCDFTest {
 protected:
  void configureAnswered(const std::string& completed) {
    world.meter.operationComplete = completed;
    ConfigureCCDF();
  }
};

TEST_F(CCDFConfigTest, ConfiguresTheDefaults) {
  ConfigureCCDF();
  EXPECT_EQ(received(), ccdfConfigurationTranscript());
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(CCDFConfigTest, ConfiguresTheSameBytesOverSerial) {
  world.useSerial();
  ConfigureCCDF();
  EXPECT_EQ(world.serial.sent, serialBytes(ccdfConfigurationTranscript()));
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(CCDFConfigTest, ConfiguresTheSettingsOfTheActiveChannel) {
  Settings.ActiveChannel = 2;
  Settings.Channels[1].InputConfig = 2;
  Settings.ReferenceLevel = -2.5F;
  Settings.ScalePerDivision = 0.1F;
  ConfigureCCDF();
  EXPECT_EQ(received(), (Transcript{"PPACQS 2,ON", "PPFUNC 2,STATS", "TTFUNC 2,CCDF", "CHDISPN 1",
                                    "CHACTIV 2", "CHMODE 2, PMOD", "CHCFG 2, A-B",
                                    "PMPREF 2,DB,-2.5", "PMPSCAL 2,DB,0.1", "*OPC?"}));
}

TEST_F(CCDFConfigTest, CaptionsStandBeforeTheirCommands) {
  std::vector<std::string> steps;
  world.meter.onMessage = [&](const std::string& message) {
    EXPECT_TRUE(world.progress.visible);
    steps.push_back(world.progress.texts.back() + "|" + message);
  };
  ConfigureCCDF();
  ASSERT_EQ(steps.size(), 10U);
  EXPECT_EQ(steps[0], "Please Wait... Configuring...CCDFsetting|PPACQS 1,ON");
  EXPECT_EQ(steps[2], "Please Wait... Configuring...CCDFsetting|TTFUNC 1,CCDF");
  EXPECT_EQ(steps[3], "Please Wait... Configuring...Channel|CHDISPN 1");
  EXPECT_EQ(steps[6], "Please Wait... Configuring...Channel|CHCFG 1, A");
  EXPECT_EQ(steps[7], "Please Wait... Configuring...pulsemod|PMPREF 1,DB,10");
  EXPECT_EQ(steps[9], "Please Wait... Waiting for response...|*OPC?");
  EXPECT_EQ(world.progress.texts, (Captions{"Please Wait... Configuring...CCDFsetting",
                                            "Please Wait... Configuring...Channel",
                                            "Please Wait... Configuring...pulsemod",
                                            "Please Wait... Waiting for response..."}));
  EXPECT_FALSE(world.progress.visible);
  EXPECT_EQ(world.progress.hides, 1);
}

TEST_F(CCDFConfigTest, AnswersOfOneAreComplete) {
  for (const char* answer : {"1", "+1", "1.0", " 1", "1 done"}) configureAnswered(answer);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(CCDFConfigTest, AnyOtherAnswerIsTold) {
  for (const char* answer : {"0", "2", "-1", "1.5", "", "OK"}) {
    world.dialogs.messages.clear();
    configureAnswered(answer);
    EXPECT_EQ(shownBoxes(), (Boxes{"Pelmora|Invalid response from Power Meter|exclamation"}))
        << answer;
  }
}

TEST_F(CCDFConfigTest, NoAnswerIsSilent) {
  world.meter.onMessage = [this](const std::string& message) {
    if (message == "*OPC?") world.gpib.failNext["Receive"] = 1;
  };
  ConfigureCCDF();
  EXPECT_EQ(received(), ccdfConfigurationTranscript());
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_FALSE(world.progress.visible);
}

/// The state before anything was read differs from all that the meter answers.
class CCDFSettingsTest : public CCDFTest {
 protected:
  CCDFSettingsTest() {
    CCDF.StartPower = -1;
    CCDF.StopPower = 1;
    world.meter.replies["TTFRO 1"] = "TTFRO 1,100,50.5,10.25";
    world.meter.replies["TTPSP? 1"] = "TTPSP 1,-5";
    world.meter.replies["TTPST? 1"] = "TTPST 1,-35.5";
    world.meter.replies["TTSRC? 1"] = "TTSRC 1,GATE";
  }
};

TEST_F(CCDFSettingsTest, WithoutACursorAreRead) {
  CCDF.CursorOn = True16;
  ReadCCDFSettings();
  EXPECT_EQ(received(), ccdfSettingsTranscript(false));
  EXPECT_EQ(Settings.DisplayPoints, 100);
  EXPECT_EQ(CCDFData[0], 0) << "the curve is not stored here";
  EXPECT_EQ(CCDF.StopPower, -5);
  EXPECT_EQ(CCDF.StartPower, -35.5F);
  EXPECT_EQ(CCDF.CursorOn, False16);
  EXPECT_EQ(CCDF.MeasurementSource, "GATE");
  EXPECT_EQ(view.calls,
            (Calls{"stop -5dBm", "start -35.5dBm", "menus for cursor off", "SOURCE:GATE"}));
}

TEST_F(CCDFSettingsTest, WithTheCursorAreRead) {
  world.meter.replies["TTMKS? 1"] = "TTMKS 1,ON";
  ReadCCDFSettings();
  EXPECT_EQ(received(), ccdfSettingsTranscript(true));
  EXPECT_EQ(CCDF.CursorOn, True16);
  EXPECT_EQ(CCDF.CursorPower, -15);
  EXPECT_EQ(CCDF.CursorPercent, 0) << "no share before the first curve";
  EXPECT_FLOAT_EQ(CCDF.CursorX, 20.5F * 100 / 30.5F);
  EXPECT_EQ(view.timesCalled("menus for cursor on"), 1);
}

TEST_F(CCDFSettingsTest, SpeakTheSameBytesOverSerial) {
  world.useSerial();
  world.serial.pieceSize = 1;
  world.meter.replies["TTMKS? 1"] = "TTMKS 1,ON";
  ReadCCDFSettings();
  EXPECT_EQ(world.serial.sent, serialBytes(ccdfSettingsTranscript(true)));
  EXPECT_EQ(CCDF.MeasurementSource, "GATE");
  EXPECT_EQ(CCDF.CursorPower, -15);
}

TEST_F(CCDFSettingsTest, TheCursorIsOnForThatWordAlone) {
  for (const char* reply :
       {"TTMKS 1,OFF", "TTMKS 1,on", "TTMKS ON", "TTMKS ON,1", "TTMKS 1,1", ""}) {
    world.meter.replies["TTMKS? 1"] = reply;
    received().clear();
    CCDF.CursorOn = True16;
    ReadCCDFSettings();
    EXPECT_EQ(CCDF.CursorOn, False16) << reply;
    EXPECT_EQ(received(), ccdfSettingsTranscript(false)) << reply;
  }
}

TEST_F(CCDFSettingsTest, StayWhenNothingIsAnswered) {
  world.meter.replies.clear();
  CCDF.CursorOn = True16;
  CCDF.CursorPower = -7;
  CCDF.CursorPercent = 3;
  CCDF.MeasurementSource = "MARKER";
  ReadCCDFSettings();
  EXPECT_EQ(received(), ccdfSettingsTranscript(false));
  EXPECT_EQ(Settings.DisplayPoints, 200);
  EXPECT_EQ(CCDF.StopPower, 1);
  EXPECT_EQ(CCDF.StartPower, -1);
  EXPECT_EQ(CCDF.CursorOn, True16);
  EXPECT_EQ(CCDF.CursorPower, -7);
  EXPECT_EQ(CCDF.CursorPercent, 3);
  EXPECT_EQ(CCDF.MeasurementSource, "MARKER");
  EXPECT_TRUE(view.calls.empty());
  EXPECT_EQ(world.programEnd.ends, 0);
}

TEST_F(CCDFSettingsTest, ACursorThatCannotBeReadKeepsItsPowerAndHasNoShare) {
  world.meter.replies["TTMKS? 1"] = "TTMKS 1,ON";
  world.meter.replies.erase("TTMKRO 1");
  CCDF.CursorPower = -7;
  CCDF.CursorPercent = 3;
  ReadCCDFSettings();
  EXPECT_EQ(CCDF.CursorOn, True16);
  EXPECT_EQ(CCDF.CursorPower, -7);
  EXPECT_EQ(CCDF.CursorPercent, 0);
}

TEST_F(CCDFSettingsTest, AnAxisWithoutLengthHindersNothing) {
  // The second pair differs as singles, and is the same at the digits that are shown.
  for (const auto& [start, stop] : {std::pair{"-5", "-5"}, std::pair{"-30.000002", "-30"}}) {
    received().clear();
    world.meter.replies["TTMKS? 1"] = "TTMKS 1,ON";
    world.meter.replies["TTPST? 1"] = std::string("TTPST 1,") + start;
    world.meter.replies["TTPSP? 1"] = std::string("TTPSP 1,") + stop;
    CCDF.CursorX = 44;
    CCDF.MeasurementSource.clear();
    ReadCCDFSettings();
    EXPECT_EQ(CCDF.CursorX, 44) << start;
    EXPECT_EQ(received(), ccdfSettingsTranscript(true));
    EXPECT_EQ(CCDF.MeasurementSource, "GATE");
  }
}

}  // namespace
}  // namespace pulsemod::test
