#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>

#include "CCDFTest.h"
#include "ccdf/CCDFGraphFile.h"
#include "ccdf/PowerAxis.h"
#include "link/Conversation.h"
#include "link/Fault.h"
#include "support/CommaLocale.h"
#include "support/FileLines.h"

namespace pulsemod::test {
namespace {

/// The share at point `index` of the files of these tests.
float share(std::size_t index) { return 90.0F - 0.125F * static_cast<float>(index); }

FileLines curveLines(const std::string& points, const std::string& start, const std::string& stop,
                     std::size_t pointLines) {
  FileLines lines = {
      "2", "Date\t2026-11-21", "Time\t10:30:00", "", "Graph Points\t" + points, start, stop};
  for (std::size_t point = 0; point < pointLines; ++point) {
    std::string number = std::to_string(share(point));
    lines.push_back("-10\t" + number);
  }
  return lines;
}

std::string curveFile(std::size_t points, const std::string& start = "-30",
                      const std::string& stop = "0") {
  return fileOf(curveLines(std::to_string(points), start, stop, points));
}

constexpr auto notACurve =
    "not a CCDF graph|This is not a CCDF graph. Can't load graph data here|none";
constexpr auto invalid = "Open Second Profile|Invalid pmd file. Can't load graph data|none";
constexpr auto notShown = "Power is different|Saved Graph cannot be displayed|none";

std::string fault(const std::string& text) { return "Pelmora|" + text + "|exclamation"; }

/// All points of the second curve stand at -1 before a file is opened.
class CCDFFileTest : public CCDFTest {
 protected:
  CCDFFileTest() { SecondCCDFData.fill(-1); }

  /// As the window does it: a fault comes to the user as a message.
  void open(const std::string& content) {
    world.files.contents[path] = content;
    reportFaults([this] { OpenCCDFGraphFile(path); });
  }

  /// `points` of `curveFile`, and behind them what was there before.
  static void expectOpened(std::size_t points) {
    Trace expected;
    expected.fill(-1);
    for (std::size_t point = 0; point < points; ++point) expected[point] = share(point);
    EXPECT_EQ(SecondCCDFData, expected);
  }

  void expectQuestion() const {
    const std::vector<ShownBox> question{
        {"Starting Power and/or Stoping Power of the Current Setting of the Power Meter is not the "
         "same as the graph required to be opened\r\n\r\nChange to saved Power?",
         "Power is different", MessageIcon::question, ""}};
    EXPECT_EQ(world.dialogs.questions, question);
  }

  void expectSilent() const {
    EXPECT_EQ(shownBoxes(), Boxes{});
    EXPECT_TRUE(world.dialogs.questions.empty());
  }

  const std::string path = "/data/curve.txt";
};

class SaveCurveTest : public CCDFFileTest {
 protected:
  SaveCurveTest() {
    world.fileDialogs.saveAnswer = path;
    for (std::size_t point = 0; point < tracePoints; ++point) CCDFData[point] = share(point);
  }
};

class OpenCurveTest : public CCDFFileTest {};

class OpenCurveWhileRunning : public CCDFFileTest {
 protected:
  OpenCurveWhileRunning() { AcquisitionRunning = True16; }
};

// Saving.

TEST_F(SaveCurveTest, ThreePointsByteForByte) {
  Settings.DisplayPoints = 3;
  CCDFData[0] = 99.98F;
  CCDFData[1] = 10;
  CCDFData[2] = 0.00001F;
  world.files.contents[path] = "old";
  SaveCCDFGraph();
  EXPECT_EQ(world.files.contents[path],
            "2\r\nDate\t2026-11-21\r\nTime\t10:30:00\r\n\r\nGraph Points\t3\r\n-30\r\n0\r\n"
            "-20\t99.98\r\n-10\t10\r\n0\t1E-05\r\n");
  EXPECT_EQ(world.fileDialogs.titles, (std::vector<std::string>{"Save Curve"}));
  EXPECT_TRUE(received().empty());
}

TEST_F(SaveCurveTest, OneLineForEachPoint) {
  for (const std::int16_t points : {std::int16_t{1}, std::int16_t{200}, std::int16_t{400}}) {
    Settings.DisplayPoints = points;
    const FileLines lines = linesOf(ccdfGraphText());
    ASSERT_EQ(lines.size(), 7U + static_cast<std::size_t>(points));
    EXPECT_EQ(lines.back().substr(0, 2), "0\t");
  }
}

TEST_F(SaveCurveTest, PowersHaveAsManyDigitsAsTheyNeed) {
  CCDF.StartPower = -30.1234567F;
  CCDF.StopPower = 0.1F;
  const FileLines lines = linesOf(ccdfGraphText());
  EXPECT_EQ(lines[5], "-30.123457");
  EXPECT_EQ(lines[6], "0.1");
}

TEST_F(SaveCurveTest, PointsOutsideOneToFourHundredAreAFaultAndNoFile) {
  world.files.contents[path] = "old";
  for (const std::int16_t points : {std::int16_t{0}, std::int16_t{-1}, std::int16_t{401}}) {
    world.dialogs.messages.clear();
    Settings.DisplayPoints = points;
    EXPECT_FALSE(reportFaults(SaveCCDFGraph));
    EXPECT_EQ(shownBoxes(), (Boxes{fault("Subscript out of range: a profile has 1 to 400 points, "
                                         "not " +
                                         std::to_string(points))}));
    EXPECT_EQ(world.files.contents[path], "old");
  }
}

TEST_F(SaveCurveTest, CancelledDialogEndsSilently) {
  world.fileDialogs.saveAnswer.clear();
  SaveCCDFGraph();
  EXPECT_TRUE(world.files.contents.empty());
  expectSilent();
}

TEST_F(SaveCurveTest, AFileThatCannotBeWrittenIsReportedAndStays) {
  world.files.contents[path] = "old";
  world.files.writeFailure = "Read-only file system";
  EXPECT_FALSE(reportFaults(SaveCCDFGraph));
  EXPECT_EQ(shownBoxes(),
            (Boxes{fault("/data/curve.txt cannot be written: Read-only file system")}));
  EXPECT_EQ(world.files.contents[path], "old");
}

TEST_F(SaveCurveTest, TextsAreThoseOfADecimalPointEverywhere) {
  CCDF.StartPower = -30.5F;
  const std::string text = ccdfGraphText();
  const CommaLocale comma;
  EXPECT_EQ(ccdfGraphText(), text);
  open(text);
  expectOpened(200);
  expectSilent();
}

TEST_F(SaveCurveTest, AThousandRandomCurvesSavedOpenedAndSavedAgain) {
  std::mt19937 random(20261121);
  const auto single = [&random] {
    for (;;) {
      const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
      // Of which the axis and each place on it still fit.
      if (std::isfinite(value) && std::abs(value) < 1E35F) return value;
    }
  };
  for (int round = 0; round < 1000; ++round) {
    SCOPED_TRACE(round);
    const std::size_t points = random() % 20 + 1;
    Settings.DisplayPoints = static_cast<std::int16_t>(points);
    CCDF.StartPower = single();
    CCDF.StopPower = single();
    for (std::size_t point = 0; point < points; ++point) CCDFData[point] = single();
    const std::string saved = ccdfGraphText();
    SecondCCDFData.fill(-1);
    open(saved);
    ASSERT_TRUE(world.dialogs.questions.empty());

    const FileLines lines = linesOf(saved);
    for (std::size_t point = 0; point < points; ++point) {
      const std::string& line = lines[7 + point];
      ASSERT_EQ(SecondCCDFData[point], std::strtof(line.c_str() + line.find('\t') + 1, nullptr));
    }
    ASSERT_EQ(SecondCCDFData[points], -1);
    CCDFData = SecondCCDFData;
    ASSERT_EQ(ccdfGraphText(), saved);
  }
  EXPECT_TRUE(shownBoxes().empty());
  EXPECT_TRUE(received().empty());
}

// Opening on the same axis.

TEST_F(OpenCurveTest, AsksForAFile) {
  world.fileDialogs.openAnswer = path;
  world.files.contents[path] = curveFile(200);
  OpenCCDFGraph();
  expectOpened(200);
  EXPECT_EQ(world.fileDialogs.titles, (std::vector<std::string>{"Open Second Curve"}));
}

TEST_F(OpenCurveTest, CancelledDialogEndsSilently) {
  OpenCCDFGraph();
  EXPECT_EQ(world.fileDialogs.titles.size(), 1U);
  expectOpened(0);
  EXPECT_FALSE(view.secondCurveShown);
  EXPECT_EQ(view.picture.timesShown, 0);
  expectSilent();
}

TEST_F(OpenCurveTest, AFileThatCannotBeReadIsReported) {
  world.fileDialogs.openAnswer = path;
  EXPECT_FALSE(reportFaults(OpenCCDFGraph));
  EXPECT_EQ(shownBoxes(),
            (Boxes{fault("/data/curve.txt cannot be read: No such file or directory")}));
  expectOpened(0);
  EXPECT_FALSE(view.secondCurveShown);
}

TEST_F(OpenCurveTest, TheSamePowersAskNothingAndTickTheMenu) {
  open(curveFile(200));
  expectOpened(200);
  EXPECT_TRUE(view.secondCurveShown);
  expectSilent();
  EXPECT_TRUE(received().empty());
}

TEST_F(OpenCurveTest, StoppedDrawsTheSecondCurveAtOnce) {
  open(curveFile(200));
  ASSERT_EQ(view.picture.timesShown, 1);
  ASSERT_FALSE(view.picture.shown.polylines.empty());
  const auto& drawn = view.picture.shown.polylines[0];
  EXPECT_EQ(drawn.colour, (Colour{0, 255, 100}));
  EXPECT_EQ(drawn.points.size(), 200U);
}

TEST_F(OpenCurveTest, FewerPointsLeaveTheRestAndTheDisplayPoints) {
  open(curveFile(3));
  expectOpened(3);
  EXPECT_EQ(Settings.DisplayPoints, 200);
  open(curveFile(400));
  expectOpened(400);
  EXPECT_EQ(Settings.DisplayPoints, 200);
  expectSilent();
}

TEST_F(OpenCurveWhileRunning, TheLoopDraws) {
  open(curveFile(200));
  expectOpened(200);
  EXPECT_TRUE(view.secondCurveShown);
  EXPECT_EQ(view.picture.timesShown, 0);
  expectSilent();
}

TEST_F(OpenCurveTest, PowersAreComparedExactly) {
  struct Row {
    float start;
    float stop;
    const char* savedStart;
    const char* savedStop;
    bool asks;
  };
  const Row rows[] = {
      {-30, 0, "-30", "0", false},
      {-30, 0, " -30.0 ", " 0 ", false},
      {-30, 0, "-3E1", "-0", false},
      {-30, 0, "-30 dBm", "0 dBm", false},
      {-30, 0, "-30.00001", "0", true},
      {-30, 0, "-30", "1E-45", true},
      {-30, 0, "30", "0", true},
      {-30, 0, "0", "-30", true},
      {-30, 0, "-30", "", false},
      {-30, 0, "", "0", true},
      {-30.1234567F, 0, "-30.123457", "0", false},
      {-30.1234567F, 0, "-30.12346", "0", true},
      {-30, 0.123456789F, "-30", "0.123456791", false},
      {-30, 0.123456789F, "-30", "0.1234568", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.savedStart) + " to " + row.savedStop);
    world.dialogs.questions.clear();
    CCDF.StartPower = row.start;
    CCDF.StopPower = row.stop;
    open(curveFile(3, row.savedStart, row.savedStop));
    EXPECT_EQ(world.dialogs.questions.size(), row.asks ? 1U : 0U);
    EXPECT_EQ(CCDF.StartPower, row.start);
    EXPECT_EQ(CCDF.StopPower, row.stop);
  }
}

TEST_F(OpenCurveTest, PowersOfEightAndNineDigitsComeBackWithoutAQuestion) {
  for (const auto& [start, stop] : std::vector<std::pair<float, float>>{
           {-30.1234567F, 0.123456789F}, {-1.0F / 3, 16777216.0F}, {-0.1F, 1.00000012F}}) {
    CCDF.StartPower = start;
    CCDF.StopPower = stop;
    open(ccdfGraphText());
    expectSilent();
    EXPECT_TRUE(view.secondCurveShown);
  }
}

// Opening on another axis.

TEST_F(OpenCurveTest, NoKeepsTheOldCurveAndTicksTheMenuAllTheSame) {
  open(curveFile(200, "-40", "10"));
  expectQuestion();
  EXPECT_EQ(shownBoxes(), (Boxes{notShown}));
  expectOpened(0);
  EXPECT_TRUE(view.secondCurveShown);
  EXPECT_EQ(CCDF.StartPower, -30);
  EXPECT_EQ(CCDF.StopPower, 0);
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(view.calls.empty());
  EXPECT_EQ(view.picture.timesShown, 1);
}

TEST_F(OpenCurveWhileRunning, NoAsksForNothingOfTheLoop) {
  open(curveFile(200, "-40", "10"));
  EXPECT_EQ(shownBoxes(), (Boxes{notShown}));
  EXPECT_EQ(CCDFPending.PowerRangePending, False16);
  expectOpened(0);
  EXPECT_TRUE(view.secondCurveShown);
  EXPECT_EQ(view.picture.timesShown, 0);
}

TEST_F(OpenCurveTest, NoReadsNoPoint) {
  open(fileOf(curveLines("401", "-40", "10", 0)));
  EXPECT_EQ(shownBoxes(), (Boxes{notShown}));
}

TEST_F(OpenCurveTest, YesWhileStoppedSendsBothPowersAtOnce) {
  world.dialogs.yesNoAnswers = {true};
  open(curveFile(200, "-40.5", "10"));
  expectQuestion();
  EXPECT_EQ(received(), (Transcript{"TTPST 1,-40.5", "TTPSP 1,10"}));
  EXPECT_EQ(CCDF.StartPower, -40.5F);
  EXPECT_EQ(CCDF.StopPower, 10);
  EXPECT_EQ(view.startPower, "-40.5dBm");
  EXPECT_EQ(view.stopPower, "10dBm");
  EXPECT_EQ(CCDFPending.PowerRangePending, False16);
  expectOpened(200);
  EXPECT_TRUE(view.secondCurveShown);
  EXPECT_TRUE(shownBoxes().empty());
}

TEST_F(OpenCurveTest, OneOtherPowerSendsBoth) {
  for (const auto& [start, stop] :
       std::vector<std::pair<std::string, std::string>>{{"-40", "0"}, {"-30", "5"}}) {
    CCDF.StartPower = -30;
    CCDF.StopPower = 0;
    received().clear();
    world.dialogs.yesNoAnswers = {true};
    open(curveFile(200, start, stop));
    EXPECT_EQ(received(), (Transcript{"TTPST 1," + start, "TTPSP 1," + stop}));
  }
}

TEST_F(OpenCurveTest, YesWhileStoppedSpeaksTheSameBytesOverSerial) {
  world.useSerial();
  Settings.ActiveChannel = 3;
  world.dialogs.yesNoAnswers = {true};
  open(curveFile(200, "-40", "10"));
  EXPECT_EQ(world.serial.sent, "TTPST 1&2,-40\rTTPSP 1&2,10\r");
}

TEST_F(OpenCurveTest, YesIsSentWhenTheLinkIsFree) {
  world.dialogs.yesNoAnswers = {true};
  converse([this] {
    open(curveFile(200, "-40", "10"));
    EXPECT_TRUE(received().empty());
    EXPECT_EQ(view.startPower, "-40dBm");
    expectOpened(200);
  });
  EXPECT_EQ(received(), (Transcript{"TTPST 1,-40", "TTPSP 1,10"}));
}

TEST_F(OpenCurveTest, ANewerEditOfOneEndWinsOverTheFile) {
  world.dialogs.yesNoAnswers = {true};
  world.meter.replies["TTPST? 1"] = "TTPST 1,-25";
  converse([this] {
    open(curveFile(200, "-40", "10"));
    answer("-25");
    EditStartPower();
  });
  EXPECT_EQ(received(), (Transcript{"TTPSP 1,10", "TTPST 1,-25", "TTPST? 1"}));
  EXPECT_EQ(CCDF.StartPower, -25);
  EXPECT_EQ(CCDF.StopPower, 10);
}

TEST_F(OpenCurveTest, AReadBackUnderWayDoesNotOverwriteTheFile) {
  world.dialogs.yesNoAnswers = {true, true};
  struct Row {
    void (*edit)();
    const char* query;
  };
  for (const Row& row : {Row{EditStartPower, "TTPST? 1"}, Row{EditStopPower, "TTPSP? 1"}}) {
    CCDF.StartPower = -30;
    CCDF.StopPower = 0;
    world.meter.onMessage = [this, &row](const std::string& message) {
      if (message == row.query) open(curveFile(200, "-40", "10"));
    };
    answer("-12");
    row.edit();
    EXPECT_EQ(CCDF.StartPower, -40) << row.query;
    EXPECT_EQ(CCDF.StopPower, 10) << row.query;
    EXPECT_EQ(received().back(), "TTPSP 1,10");
  }
}

TEST_F(OpenCurveWhileRunning, YesIsLeftToTheLoop) {
  world.dialogs.yesNoAnswers = {true};
  open(curveFile(200, "-40", "10"));
  expectQuestion();
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(CCDFPending.PowerRangePending, True16);
  EXPECT_EQ(CCDF.StartPower, -40);
  EXPECT_EQ(CCDF.StopPower, 10);
  expectOpened(200);
  EXPECT_TRUE(view.secondCurveShown);

  world.meter.replies["TTPST? 1"] = "TTPST 1,-40";
  world.meter.replies["TTPSP? 1"] = "TTPSP 1,9";
  CarryOutPowerRange();
  EXPECT_EQ(received(), (Transcript{"TTPST 1,-40", "TTPSP 1,10", "TTPST? 1", "TTPSP? 1"}));
  EXPECT_EQ(view.startPower, "-40dBm");
  EXPECT_EQ(view.stopPower, "9dBm");
}

TEST_F(OpenCurveWhileRunning, AReadBackOfTheLoopDoesNotOverwriteTheFile) {
  struct Row {
    Boolean16& pending;
    const char* query;
    const char* reply;
  };
  const Row rows[] = {{CCDFPending.StartPowerPending, "TTPST? 1", "TTPST 1,-20"},
                      {CCDFPending.StopPowerPending, "TTPSP? 1", "TTPSP 1,-5"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.query);
    CCDF.StartPower = -20;
    CCDF.StopPower = -5;
    row.pending = True16;
    world.dialogs.yesNoAnswers = {true};
    world.meter.replies[row.query] = row.reply;
    world.meter.onMessage = [this, &row](const std::string& message) {
      if (message == row.query) open(curveFile(200, "-40", "10"));
    };
    CarryOutPowerEdits();
    EXPECT_EQ(CCDF.StartPower, -40);
    EXPECT_EQ(CCDF.StopPower, 10);
    EXPECT_EQ(CCDFPending.PowerRangePending, True16);
  }
}

// How lines are read.

TEST_F(OpenCurveTest, EitherLineEndAndNoneAtTheLastLine) {
  const FileLines lines = curveLines("200", "-30", "0", 200);
  for (const char* end : {"\n", "\r\n"}) {
    const std::string text = fileOf(lines, end);
    for (const std::size_t cut : {std::size_t{0}, std::string(end).size()}) {
      SecondCCDFData.fill(-1);
      open(text.substr(0, text.size() - cut));
      expectOpened(200);
      expectSilent();
    }
  }
}

TEST_F(OpenCurveTest, DateAndTimeMayHaveAnyForm) {
  for (const char* date :
       {"Date\t21,11,2026", "\xD0\x94\xD0\xB0\xD1\x82\xD0\xB0\t1", "\xFF\xFE", "", "\t7\t"}) {
    SecondCCDFData.fill(-1);
    FileLines lines = curveLines("200", "-30", "0", 200);
    lines[1] = lines[2] = lines[3] = date;
    open(fileOf(lines));
    expectOpened(200);
    expectSilent();
  }
}

TEST_F(OpenCurveTest, TheKindIsTheLeadingNumberOfTheFirstLine) {
  struct Row {
    const char* line;
    bool opens;
  };
  const Row rows[] = {{"2", true},   {" 2 ", true},     {"2abc", true}, {"2.0", true},
                      {"+2", true},  {"2E0", true},     {"3", false},   {"-2", false},
                      {"", false},   {"22", false},     {"2.1", false}, {"two", false},
                      {"x2", false}, {"Date\t2", false}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    SecondCCDFData.fill(-1);
    world.dialogs.messages.clear();
    FileLines lines = curveLines("200", "-30", "0", 200);
    lines[0] = row.line;
    open(fileOf(lines));
    expectOpened(row.opens ? 200 : 0);
    EXPECT_EQ(shownBoxes(), row.opens ? Boxes{} : Boxes{notACurve});
  }
}

TEST_F(OpenCurveTest, TwoNumbersStandApartByBlanksOrTabs) {
  FileLines lines = curveLines("200", "-30", "0", 200);
  const std::vector<std::pair<std::string, float>> points = {
      {"-29.85 99.5", 99.5F}, {"  1   2.5  ", 2.5F}, {"1\t \t3", 3.0F}, {"1\t1E1", 10.0F},
      {"1 1.5e-3", 1.5E-3F},  {"x y", 0.0F},         {"1\t2\t3", 2.0F}, {"1 34,567", 34.0F}};
  for (std::size_t point = 0; point < points.size(); ++point)
    lines[7 + point] = points[point].first;
  open(fileOf(lines));
  expectSilent();
  for (std::size_t point = 0; point < points.size(); ++point) {
    EXPECT_EQ(SecondCCDFData[point], points[point].second) << points[point].first;
  }
}

// Files that are none, or were damaged.

struct BadFile {
  std::string name;
  std::string content;
  /// "title|text|icon" of the one message; empty for a file that opens as if it were good.
  std::string message;
};

void PrintTo(const BadFile& file, std::ostream* out) { *out << file.name; }

std::string withLine(std::size_t number, const std::string& line) {
  FileLines lines = curveLines("200", "-30", "0", 200);
  lines.at(number - 1) = line;
  return fileOf(lines);
}

std::string withPoints(const std::string& count) {
  return fileOf(curveLines(count, "-30", "0", 200));
}

std::string swapped(std::size_t one, std::size_t other) {
  FileLines lines = curveLines("200", "-30", "0", 200);
  std::swap(lines[one - 1], lines[other - 1]);
  return fileOf(lines);
}

std::string endsAfter(std::size_t lines) {
  return fault("Input past end of file: it has only " + std::to_string(lines) + " lines");
}

std::string noPoint(std::size_t line) {
  return fault("There are no two numbers in line " + std::to_string(line) + " of the file");
}

std::string doesNotFit(std::size_t line) {
  return fault("Overflow: the number in line " + std::to_string(line) + " does not fit");
}

std::string tooMany(const std::string& points) {
  return fault("Subscript out of range: a curve has 1 to 400 points, not " + points);
}

std::vector<BadFile> badFiles() {
  const std::string megabyte(1024 * 1024, 'x');
  const std::string nul(1, '\0');
  const std::string good = curveFile(200);
  const FileLines lines = curveLines("200", "-30", "0", 200);
  const std::string hugeCount = fault("Overflow: the number of points in line 5 does not fit");
  std::vector<BadFile> files = {
      {"Empty", "", notACurve},
      {"OneLineEnd", "\r\n", notACurve},
      {"TraceFile",
       "Date\t2026-11-21\nTime\t10:30:00\n\nGraph Points\t1\nCapture Period\t0.0046\n0.0046\t-1\n",
       notACurve},
      {"SettingsFile", " 1 \r\nFalse\r\n 0.0006 \r\n 3 \r\nFalse\r\n", notACurve},
      {"SettingsFileWhoseFirstLineIsTheKind", " 2 \r\nFalse\r\n 0.0006 \r\n 3 \r\n 7 \r\n",
       invalid},
      {"Html", "<!DOCTYPE html>\n<html>\n", notACurve},
      {"Binary", std::string("\x7F\x45LF\x02\x01\x01\0\0\n", 10), notACurve},
      {"NulBytes", std::string(4096, '\0'), notACurve},
      {"NulBeforeTheKind", nul + good, notACurve},
      {"ByteOrderMark", "\xEF\xBB\xBF" + good, notACurve},
      {"WideCharacters", std::string("2\0\r\0\n\0D\0", 8), invalid},
      {"LongLine", megabyte, notACurve},
      {"LongDate", withLine(2, megabyte), ""},
      {"EmptyLineFirst", "\r\n" + good, notACurve},
      {"CarriageReturnsAlone", fileOf(lines, "\r"), invalid},
      {"TwoCarriageReturns", fileOf(lines, "\r\r\n"), ""},
      {"NoTabBeforeTheCount", withLine(5, "Graph Points 200"), invalid},
      {"CountAlone", withLine(5, " 200 "), invalid},
      {"ZeroPoints", withPoints("0"), invalid},
      {"NegativePoints", withPoints("-200"), invalid},
      {"NoCount", withPoints(""), invalid},
      {"AWordForTheCount", withPoints("many"), invalid},
      {"OnePointTooMany", withPoints("401"), tooMany("401")},
      {"ManyPoints", withPoints("70000"), tooMany("70000")},
      {"AsManyAsWrapToTwoHundred", withPoints("65736"), tooMany("65736")},
      {"CountThatDoesNotFit", withPoints("1E20"), hugeCount},
      {"NegativeCountThatDoesNotFit", withPoints("-1E20"), hugeCount},
      {"EndlessCount", withPoints(std::string(1024 * 1024, '9')), hugeCount},
      {"HugeStartPower", withLine(6, "-1E39"), doesNotFit(6)},
      {"HugeStopPower", withLine(7, "1E400"), doesNotFit(7)},
      {"HugeShare", withLine(207, "1\t1E39"), doesNotFit(207)},
      {"OneNumber", withLine(8, "50"), noPoint(8)},
      {"CommaBetweenTheNumbers", withLine(100, "-20,50"), noPoint(100)},
      {"NulBetweenTheNumbers", withLine(207, "-20" + nul + "50"), noPoint(207)},
      {"EmptyPoint", withLine(9, ""), noPoint(9)},
      {"LongLineAmongPoints", withLine(50, megabyte), noPoint(50)},
      {"LongLineOfBlanks", withLine(50, std::string(1024 * 1024, ' ')), noPoint(50)},
      {"LongLineAfterThePoints", good + megabyte, ""},
      {"CountAndEmptyLineSwapped", swapped(4, 5), invalid},
      {"DateAndTimeSwapped", swapped(2, 3), ""},
      {"KindAndDateSwapped", swapped(1, 2), notACurve},
      {"TwiceTheFile", good + good, ""},
  };
  for (std::size_t count = 1; count < 207; count += count < 10 ? 1 : 49) {
    const std::string content = fileOf({lines.begin(), lines.begin() + static_cast<long>(count)});
    files.push_back(
        {"CutAfterLine" + std::to_string(count), content, count < 5 ? invalid : endsAfter(count)});
  }
  std::string mixed;
  for (std::size_t index = 0; const std::string& line : lines) {
    mixed += line + (index++ % 2 == 0 ? "\r\n" : "\n");
  }
  files.push_back({"MixedLineEnds", mixed, ""});
  return files;
}

class BadCurveFile : public CCDFFileTest, public ::testing::WithParamInterface<BadFile> {
 protected:
  void expectOutcome() const {
    EXPECT_EQ(shownBoxes(), GetParam().message.empty() ? Boxes{} : Boxes{GetParam().message});
    EXPECT_TRUE(world.dialogs.questions.empty());
    expectOpened(GetParam().message.empty() ? 200 : 0);
    EXPECT_EQ(view.secondCurveShown, GetParam().message.empty());
    EXPECT_EQ(CCDF.StartPower, -30);
    EXPECT_EQ(CCDF.StopPower, 0);
    EXPECT_EQ(Settings.DisplayPoints, 200);
    EXPECT_TRUE(received().empty());
  }
};

INSTANTIATE_TEST_SUITE_P(Files, BadCurveFile, ::testing::ValuesIn(badFiles()),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(BadCurveFile, IsRefusedWhileStoppedAndChangesNothing) {
  open(GetParam().content);
  expectOutcome();
  EXPECT_EQ(view.picture.timesShown, GetParam().message.empty() ? 1 : 0);
}

TEST_P(BadCurveFile, IsRefusedWhileRunningAndChangesNothing) {
  AcquisitionRunning = True16;
  open(GetParam().content);
  expectOutcome();
  EXPECT_EQ(view.picture.timesShown, 0);
}

}  // namespace
}  // namespace pulsemod::test
