#include "CCDFTest.h"
#include "ccdf/CCDFReader.h"
#include "link/Fault.h"

namespace pulsemod::test {
namespace {

std::string curveOf(std::size_t values) {
  std::string text = "TTFRO 1,400";
  for (std::size_t value = 1; value <= values; ++value) text += "," + std::to_string(value) + ".5";
  return text + "\r";
}

TEST(CurveDecoder, TakesCountAndValues) {
  struct Row {
    const char* reply;
    int points;
    std::vector<float> values;
  };
  const Row rows[] = {
      {"TTFRO 1,3,50.5,10.25,1.5\r", 3, {50.5F, 10.25F, 1.5F}},
      // Without a line end its last digit goes.
      {"TTFRO 1,3,50.5,10.25,1.5", 3, {50.5F, 10.25F, 1}},
      {"TTFRO 1,3,50.5,10.25,15", 3, {50.5F, 10.25F, 1}},
      {"TTFRO 1,2,50.5,1", 2, {50.5F, 0}},
      // A comma at the very end closes one field only.
      {"TTFRO 1,2,50.5,", 2, {50.5F}},
      {"TTFRO 2,1,7\r", 1, {7}},
      // Eight characters go, also when the channel has more than one.
      {"TTFRO 1&2,3,50.5,10.25,1.5\r", 2, {3, 50.5F, 10.25F, 1.5F}},
      {"xTTFRO1 ,2,7\r", 0, {2, 7}},
      // The count and the number of values are not compared.
      {"TTFRO 1,5,1,2\r", 5, {1, 2}},
      {"TTFRO 1,1,1,2,3\r", 1, {1, 2, 3}},
      {"TTFRO 1,0,\r", 0, {0}},
      {"TTFRO 1,0,", 0, {}},
      {"TTFRO 1,-4,1\r", -4, {1}},
      {"TTFRO 1,401,1\r", 401, {1}},
      {"TTFRO 1,32767,1\r", 32767, {1}},
      {"TTFRO 1,x,1\r", 0, {1}},
      {"TTFRO 1,2.4,1\r", 2, {1}},
      {"TTFRO 1, 2 , 1 \r", 2, {1}},
      // Any number is taken as it is; text that is none is 0.
      {"TTFRO 1,5,abc,-5,250,1E-05,3x\r", 5, {0, -5, 250, 1E-05F, 3}},
      {"TTFRO 1,2,,,\r", 2, {0, 0, 0}},
      {"TTFRO 1,1,1E-99\r", 1, {0}},
  };
  for (const Row& row : rows) {
    const auto curve = decodeCurve(row.reply);
    ASSERT_TRUE(curve) << row.reply;
    EXPECT_EQ(curve->statedPoints, row.points) << row.reply;
    ASSERT_EQ(curve->count, row.values.size()) << row.reply;
    for (std::size_t index = 0; index < row.values.size(); ++index) {
      EXPECT_EQ(curve->values[index], row.values[index]) << row.reply << " value " << index;
    }
  }
}

TEST(CurveDecoder, AReplyThatIsNoCurveGivesNothing) {
  for (const char* reply : {"", "OK", "OK\r", "TTFRO", "TTFRO 1", "TTFRO 1,", "TTFRO 1,3",
                            "TTFRO 1,3\r", "ttfro 1,3,1\r", "TTFR 1,3,1,2,3\r", "PMPO 1,3,1,2\r"}) {
    EXPECT_FALSE(decodeCurve(reply)) << reply;
  }
}

TEST(CurveDecoder, FourHundredValuesFitAndOneMoreIsAFault) {
  const auto curve = decodeCurve(curveOf(400));
  ASSERT_TRUE(curve);
  EXPECT_EQ(curve->count, 400U);
  EXPECT_EQ(curve->values[0], 1.5F);
  EXPECT_EQ(curve->values[399], 400.5F);
  EXPECT_THROW(decodeCurve(curveOf(401)), Fault);
}

TEST(CurveDecoder, ACountOrAValueThatDoesNotFitIsAFault) {
  for (const char* reply : {"TTFRO 1,70000,1\r", "TTFRO 1,-70000,1\r", "TTFRO 1,32768,1\r",
                            "TTFRO 1,1,1E39\r", "TTFRO 1,2,1,-1E999\r"}) {
    EXPECT_THROW(decodeCurve(reply), Fault) << reply;
  }
}

/// Reading a curve from the meter, over an older one of three points.
class CurveReader : public CCDFTest {
 protected:
  CurveReader() {
    CCDFData[0] = 90;
    CCDFData[1] = 80;
    CCDFData[2] = 70;
    Settings.DisplayPoints = 3;
  }
  void expectOldCurve() const {
    EXPECT_EQ(CCDFData[0], 90);
    EXPECT_EQ(CCDFData[1], 80);
    EXPECT_EQ(CCDFData[2], 70);
    EXPECT_EQ(Settings.DisplayPoints, 3);
  }
};

TEST_F(CurveReader, RestartsTheStatisticsAndReads) {
  world.meter.replies["TTFRO 1"] = "TTFRO 1,2,50.5,10.25";
  EXPECT_TRUE(ReadCCDFData());
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1", "TTFRO 1"}));
  EXPECT_EQ(Settings.DisplayPoints, 2);
  EXPECT_EQ(CCDFData[0], 50.5F);
  EXPECT_EQ(CCDFData[1], 10.25F);
  EXPECT_EQ(CCDFData[2], 70) << "beyond the values that came";
}

TEST_F(CurveReader, SpeaksTheSameBytesOverSerial) {
  world.useSerial();
  world.serial.pieceSize = 1;
  EXPECT_TRUE(ReadCCDFData());
  EXPECT_EQ(world.serial.sent, "PPACQRT 1\rTTFRO 1\r");
  EXPECT_EQ(Settings.DisplayPoints, 3);
  EXPECT_EQ(CCDFData[2], 1.5F);
}

TEST_F(CurveReader, BelongsToTheActiveChannel) {
  Settings.ActiveChannel = 3;
  world.meter.replies["TTFRO 1&2"] = "TTFRO 1&2,3,50.5,10.25,1.5";
  EXPECT_TRUE(ReadCCDFData());
  EXPECT_EQ(received(), (Transcript{"PPACQRT 1&2", "TTFRO 1&2"}));
  EXPECT_EQ(Settings.DisplayPoints, 2);
}

TEST_F(CurveReader, ReplyThatIsNoCurveLeavesTheOldOne) {
  for (const char* reply : {"OK", "TTFRO 1,3", ""}) {
    world.meter.replies["TTFRO 1"] = reply;
    EXPECT_FALSE(ReadCCDFData()) << reply;
    expectOldCurve();
  }
}

TEST_F(CurveReader, FaultLeavesTheOldOne) {
  for (const std::string& reply :
       {curveOf(401), std::string("TTFRO 1,70000,1"), std::string("TTFRO 1,2,1,1E39"),
        std::string("TTFRO 1,2,1,1E39,1")}) {
    world.meter.replies["TTFRO 1"] = reply;
    EXPECT_THROW(ReadCCDFData(), Fault);
    expectOldCurve();
  }
}

TEST_F(CurveReader, FailedQueryEndsTheProgramWithoutAMessage) {
  world.meter.replies.erase("TTFRO 1");
  EXPECT_THROW(ReadCCDFData(), ProgramEnded);
  EXPECT_EQ(world.programEnd.ends, 1);
  EXPECT_EQ(world.gpib.timesCalled("ibonl 7 0"), 1);
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(CurveReader, LostSerialPortEndsTheProgramToo) {
  world.useSerial();
  duringReplyTo("TTFRO 1", [this] { world.serial.lose(); });
  world.serial.pieceSize = 1;
  EXPECT_THROW(ReadCCDFData(), ProgramEnded);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_TRUE(world.gpib.calls.empty());
}

TEST_F(CurveReader, PointsAreReadWithoutARestartAndWithoutTheValues) {
  world.meter.replies["TTFRO 1"] = "TTFRO 1,7,1,2,3";
  ReadCCDFPoints();
  EXPECT_EQ(received(), (Transcript{"TTFRO 1"}));
  EXPECT_EQ(Settings.DisplayPoints, 7);
  EXPECT_EQ(CCDFData[0], 90);
}

TEST_F(CurveReader, PointsStayWithoutAUsableReply) {
  for (const char* reply : {"OK", "TTFRO 1,7", "TTFRO 1,70000,1", ""}) {
    world.meter.replies["TTFRO 1"] = reply;
    ReadCCDFPoints();
    expectOldCurve();
  }
  world.meter.replies.erase("TTFRO 1");
  ReadCCDFPoints();
  expectOldCurve();
  EXPECT_EQ(world.programEnd.ends, 0);
}

}  // namespace
}  // namespace pulsemod::test
