#include "ProfileTest.h"
#include "link/MeterLink.h"
#include "profile/ProfileReader.h"

namespace pulsemod::test {
namespace {

class ReadProfileTest : public ProfileTest {
 protected:
  ReadProfileTest() { ProfileTrace.fill(-77); }

  /// The trace holds `values` and behind them what it held before.
  static void expectTrace(const std::vector<float>& values) {
    Trace expected{};
    expected.fill(-77);
    std::copy(values.begin(), values.end(), expected.begin());
    EXPECT_EQ(ProfileTrace, expected);
  }
};

TEST_F(ReadProfileTest, GpibReadsABlock) {
  answerProfile(levels(200));
  EXPECT_TRUE(ReadProfile());
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
  expectTrace(levels(200));
}

TEST_F(ReadProfileTest, SerialReadsText) {
  world.useSerial();
  answerProfile(levels(200));
  EXPECT_TRUE(ReadProfile());
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPO 1"}));
  expectTrace(levels(200));
}

TEST_F(ReadProfileTest, CommandsCarryTheActiveChannel) {
  for (const bool serial : {false, true}) {
    for (const auto& [channel, text] : {std::pair{2, "2"}, std::pair{3, "1&2"}}) {
      if (serial) world.useSerial();
      world.meter.received.clear();
      world.meter.replies[std::string("TR1 ") + text] = "TR1";
      world.meter.replies[std::string("PMPBO ") + text] = block(blockData(levels(200)));
      world.meter.replies[std::string("PMPO ") + text] = "PMPO 2,1,-30";
      Settings.ActiveChannel = static_cast<std::int16_t>(channel);
      EXPECT_TRUE(ReadProfile());
      EXPECT_EQ(received(), (Transcript{std::string("TR1 ") + text,
                                        (serial ? "PMPO " : "PMPBO ") + std::string(text)}));
    }
  }
}

TEST_F(ReadProfileTest, BothChannelsOverSerialLoseSevenCharacters) {
  world.useSerial();
  Settings.ActiveChannel = 3;
  world.meter.replies["TR1 1&2"] = "TR1 1&2";
  world.meter.replies["PMPO 1&2"] = "PMPO 1&2,200,-30,-31";
  EXPECT_TRUE(ReadProfile());
  EXPECT_EQ(Settings.DisplayPoints, 2);
  expectTrace({200.0F, -30.0F, -31.0F});
}

TEST_F(ReadProfileTest, TextSetsTheNumberOfPointsAndABlockDoesNot) {
  answerProfile(levels(400));
  EXPECT_TRUE(ReadProfile());
  EXPECT_EQ(Settings.DisplayPoints, 200);
  expectTrace(levels(400));

  world.useSerial();
  EXPECT_TRUE(ReadProfile());
  EXPECT_EQ(Settings.DisplayPoints, 400);
}

TEST_F(ReadProfileTest, ShorterProfilesKeepTheTail) {
  answerProfile(levels(400, -20.0F));
  ASSERT_TRUE(ReadProfile());
  answerProfile(levels(24, -50.0F));
  ASSERT_TRUE(ReadProfile());
  std::vector<float> expected = levels(400, -20.0F);
  const std::vector<float> head = levels(24, -50.0F);
  std::copy(head.begin(), head.end(), expected.begin());
  expectTrace(expected);
}

TEST_F(ReadProfileTest, FewerTextValuesThanStatedKeepTheTail) {
  world.useSerial();
  world.meter.replies["TR1 1"] = "TR1 1";
  world.meter.replies["PMPO 1"] = "PMPO 1,400,-30,-31";
  EXPECT_TRUE(ReadProfile());
  EXPECT_EQ(Settings.DisplayPoints, 400);
  expectTrace({-30.0F, -31.0F});
}

TEST_F(ReadProfileTest, SerialReplyMayComeInPieces) {
  for (const std::size_t pieceSize : {1U, 7U, 400U}) {
    ProfileTrace.fill(-77);
    world.useSerial();
    world.serial.pieceSize = pieceSize;
    answerProfile(levels(200));
    EXPECT_TRUE(ReadProfile());
    expectTrace(levels(200));
  }
}

TEST_F(ReadProfileTest, BlockSurvivesEitherLineEndOfTheBus) {
  for (const char* terminator : {"\n", "\r\n"}) {
    ProfileTrace.fill(-77);
    world.gpib.terminator = terminator;
    answerProfile(levels(200));
    EXPECT_TRUE(ReadProfile());
    expectTrace(levels(200));
  }
}

TEST_F(ReadProfileTest, BlockWithoutTerminatorLosesAByteAndIsRefused) {
  world.gpib.terminator = "";
  answerProfile(levels(200));
  EXPECT_FALSE(ReadProfile());
  expectTrace({});
}

TEST_F(ReadProfileTest, UnarmedCaptureOverGpibRequestsNoProfile) {
  answerProfile(levels(200));
  world.meter.replies.erase("TR1 1");
  EXPECT_FALSE(ReadProfile());
  EXPECT_EQ(received(), (Transcript{"TR1 1"}));
  expectTrace({});
}

TEST_F(ReadProfileTest, UnansweredBlockOverGpibEndsNothing) {
  answerProfile(levels(200));
  world.meter.replies.erase("PMPBO 1");
  EXPECT_FALSE(ReadProfile());
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
  EXPECT_EQ(world.programEnd.ends, 0);
  EXPECT_TRUE(world.dialogs.messages.empty());
  expectTrace({});
}

TEST_F(ReadProfileTest, ErrorOfTheMeterOverGpibIsClearedAndFails) {
  answerProfile(levels(200));
  world.meter.errorIsReported = true;
  EXPECT_FALSE(ReadProfile());
  EXPECT_EQ(received(), (Transcript{"TR1 1", "*CLS; *OPC?"}));
  EXPECT_TRUE(ReadProfile());
}

TEST_F(ReadProfileTest, PortLostWhileArmingFailsOnly) {
  world.useSerial();
  world.meter.onMessage = [this](const std::string&) { world.serial.lose(); };
  EXPECT_FALSE(ReadProfile());
  EXPECT_EQ(received(), (Transcript{"TR1 1"}));
  EXPECT_EQ(world.programEnd.ends, 0);
  expectTrace({});
}

TEST_F(ReadProfileTest, PortLostWhileReadingEndsTheProgramWithoutABox) {
  world.useSerial();
  answerProfile(levels(200));
  world.loseSerialAt("PMPO 1");
  EXPECT_THROW(ReadProfile(), ProgramEnded);
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPO 1"}));
  EXPECT_EQ(world.programEnd.ends, 1);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(ReadProfileTest, OtherLinkSendsNothingAndFails) {
  LinkSettings.commsType = 3;
  world.serial.open();
  answerProfile(levels(200));
  EXPECT_FALSE(ReadProfile());
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(world.programEnd.ends, 0);
}

}  // namespace
}  // namespace pulsemod::test
