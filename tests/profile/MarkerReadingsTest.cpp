#include "ProfileTest.h"
#include "profile/Readouts.h"

namespace pulsemod::test {
namespace {

class MarkerReadingsTest : public ProfileTest {
 protected:
  static MarkerSettings& marker(std::size_t number) { return Settings.Markers[number - 1]; }

  /// Marker 2 is on and has been read before; now the meter answers `reply`.
  void readSecondMarker(const std::string& reply) {
    marker(2).Enabled = True16;
    marker(2).Reading = -77;
    marker(2).Position = 0.003F;
    marker(2).PositionX = 42;
    world.meter.replies["MKNO 1,2"] = reply;
    ReadMarkerReadings();
  }
  static void expectSecondMarkerUntouched() {
    EXPECT_EQ(marker(2).Reading, -77.0F);
    EXPECT_EQ(marker(2).Position, 0.003F);
    EXPECT_EQ(marker(2).PositionX, 42);
  }
};

TEST_F(MarkerReadingsTest, OneQueryForEachMarkerThatIsOn) {
  for (const std::size_t number : {1U, 3U, 4U}) marker(number).Enabled = True16;
  for (const char* number : {"1", "3", "4"}) {
    world.meter.replies[std::string("MKNO 1,") + number] =
        std::string("MKNO 1,") + number + ",-1,DBM,0.001";
  }
  ReadMarkerReadings();
  EXPECT_EQ(received(), (Transcript{"MKNO 1,1", "MKNO 1,3", "MKNO 1,4"}));
}

TEST_F(MarkerReadingsTest, NoQueryWhileNoneIsOn) {
  ReadMarkerReadings();
  EXPECT_TRUE(received().empty());
}

TEST_F(MarkerReadingsTest, DeltaMarkerIsNeverRead) {
  marker(5).Enabled = True16;
  marker(5).IsActive = True16;
  ReadMarkerReadings();
  EXPECT_TRUE(received().empty());
}

TEST_F(MarkerReadingsTest, QueriesCarryTheActiveChannel) {
  Settings.ActiveChannel = 3;
  marker(4).Enabled = True16;
  world.meter.replies["MKNO 1&2,4"] = "MKNO 1&2,4,-34.5,DBM,0.0023";
  ReadMarkerReadings();
  EXPECT_EQ(received(), (Transcript{"MKNO 1&2,4"}));
  EXPECT_EQ(marker(4).Reading, -34.5F);
  EXPECT_EQ(marker(4).Position, 0.0023F);
}

TEST_F(MarkerReadingsTest, ReadingIsFieldTwoAndPositionFieldFour) {
  readSecondMarker("MKNO 1,2,-34.567,DBM,0.0023");
  EXPECT_EQ(marker(2).Reading, -34.567F);
  EXPECT_EQ(marker(2).Position, 0.0023F);
  EXPECT_EQ(marker(2).PositionX, 100);
  EXPECT_EQ(marker(1).Reading, 0.0F);
  EXPECT_EQ(marker(3).Reading, 0.0F);
}

TEST_F(MarkerReadingsTest, SerialRepliesKeepTheirReturnAndAreReadAllTheSame) {
  world.useSerial();
  readSecondMarker("MKNO 1,2,-34.567,DBM,0.0023");
  EXPECT_EQ(marker(2).Reading, -34.567F);
  EXPECT_EQ(marker(2).Position, 0.0023F);
}

TEST_F(MarkerReadingsTest, ColumnFollowsDelayCaptureAndPoints) {
  Settings.TriggerDelay = 0.001F;
  Settings.CaptureTime = 0.002F;
  Settings.DisplayPoints = 400;
  readSecondMarker("MKNO 1,2,-1,DBM,0.0015");
  EXPECT_EQ(marker(2).PositionX, 100);
}

TEST_F(MarkerReadingsTest, ColumnOfAPositionBesideTheGraphIsClamped) {
  readSecondMarker("MKNO 1,2,-1,DBM,-0.001");
  EXPECT_EQ(marker(2).PositionX, 0);
  EXPECT_EQ(marker(2).Position, -0.001F);
  readSecondMarker("MKNO 1,2,-1,DBM,1");
  EXPECT_EQ(marker(2).PositionX, 200);
  EXPECT_EQ(marker(2).Position, 1.0F);
}

TEST_F(MarkerReadingsTest, RoundPositionsGiveTheirOwnColumn) {
  // In singles alone this would be just below 30, and the column 29 if it were cut.
  readSecondMarker("MKNO 1,2,-1,DBM,0.00069");
  EXPECT_EQ(marker(2).PositionX, 30);
}

TEST_F(MarkerReadingsTest, ColumnIsRoundedAsThatOfAGate) {
  Settings.CaptureTime = 1;
  const std::vector<std::pair<std::string, int>> cases = {
      {"0.0625", 12}, {"0.1875", 38}, {"0.0635", 13}, {"0.062", 12}, {"0.064", 13}};
  for (const auto& [position, column] : cases) {
    readSecondMarker("MKNO 1,2,-1,DBM," + position);
    EXPECT_EQ(marker(2).PositionX, column) << position;
  }
}

TEST_F(MarkerReadingsTest, RepliesWithoutAPositionLeaveTheMarkerAsItWas) {
  for (const char* reply : {"MKNO 1,2,-34.5,DBM", "MKNO 1,2,-34.5,DBM,", "MKNO 1,2,-34.5,DBM, ",
                            "MKNO 1,2,-34.5", "MKNO 1,2", "MKNO", ""}) {
    readSecondMarker(reply);
    SCOPED_TRACE(reply);
    expectSecondMarkerUntouched();
  }
}

TEST_F(MarkerReadingsTest, NumbersThatDoNotFitLeaveTheMarkerAsItWas) {
  for (const char* reply :
       {"MKNO 1,2,1E39,DBM,0.001", "MKNO 1,2,-34.5,DBM,1E39", "MKNO 1,2,-1E+400,DBM,0.001"}) {
    readSecondMarker(reply);
    SCOPED_TRACE(reply);
    expectSecondMarkerUntouched();
  }
}

/// Found by fuzzing: it ended the pass, and the drawing would have told it a second time.
TEST_F(MarkerReadingsTest, PositionTooFarAwayForAColumnLeavesTheColumn) {
  readSecondMarker("MKNO 1,2,-34.5,DBM,3.3E38");
  EXPECT_EQ(marker(2).Reading, -34.5F);
  EXPECT_EQ(marker(2).Position, 3.3E+38F);
  EXPECT_EQ(marker(2).PositionX, 42);
}

TEST_F(MarkerReadingsTest, TextInPlaceOfAReadingIsZero) {
  readSecondMarker("MKNO 1,2,---,DBM,0.0023");
  EXPECT_EQ(marker(2).Reading, 0.0F);
  EXPECT_EQ(marker(2).Position, 0.0023F);
}

TEST_F(MarkerReadingsTest, FailedQueryLeavesItsMarkerAndGoesOn) {
  marker(2).Enabled = True16;
  marker(2).Reading = -77;
  marker(3).Enabled = True16;
  world.meter.replies["MKNO 1,3"] = "MKNO 1,3,-5,DBM,0.0023";
  ReadMarkerReadings();
  EXPECT_EQ(received(), (Transcript{"MKNO 1,2", "MKNO 1,3"}));
  EXPECT_EQ(marker(2).Reading, -77.0F);
  EXPECT_EQ(marker(3).Reading, -5.0F);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

}  // namespace
}  // namespace pulsemod::test
