#include <functional>

#include "TraceFiles.h"

namespace pulsemod::test {
namespace {

/// A file that the user might choose by mistake, or that was damaged.
struct BadFile {
  std::string name;
  std::string content;
  /// "title|text|icon" of the one message while the acquisition does not run; empty for a file that
  /// opens as if it were good.
  std::string message;
  /// Of a file with a number of points that is not 200: it is refused otherwise while the
  /// acquisition runs.
  bool otherPoints = false;
};

void PrintTo(const BadFile& file, std::ostream* out) { *out << file.name; }

constexpr auto invalid = "Open Second Profile|Invalid pmd file. Can't load graph data|none";

std::string badPoints(const std::string& text) {
  return "Open Second Profile|" + text + "|exclamation";
}

std::string fault(const std::string& text) { return "Pelmora|" + text + "|exclamation"; }

std::string endsAfter(std::size_t lines) {
  return "Input past end of file: it has only " + std::to_string(lines) + " lines";
}

std::string noPoint(std::size_t line) {
  return badPoints("There are no two numbers in line " + std::to_string(line) + " of the file");
}

std::string tooMany(const std::string& points) {
  return fault("Subscript out of range: a profile has 1 to 400 points, not " + points);
}

FileLines goodLines() { return traceLines("200", "0.0046", pointLines(200)); }

std::string changed(const std::function<void(FileLines&)>& change) {
  FileLines lines = goodLines();
  change(lines);
  return fileOf(lines, "\n");
}

std::string withLine(std::size_t number, const std::string& line) {
  return changed([&](FileLines& lines) { lines.at(number - 1) = line; });
}

std::string withPoints(const std::string& count) {
  return fileOf(traceLines(count, "0.0046", pointLines(200)), "\n");
}

std::string swapped(std::size_t one, std::size_t other) {
  return changed([&](FileLines& lines) { std::swap(lines[one - 1], lines[other - 1]); });
}

const std::string settingsFile =
    " 1 \r\nFalse\r\n 0.0006 \r\n 3 \r\nFalse\r\n 0.0001 \r\n 0.000577 \r\nFalse\r\n";
const std::string curveFile =
    "2\r\nDate\t2026-11-21\r\nTime\t10:30:00\r\n\r\nGraph Points\t3\r\n-30\r\n0\r\n-20\t50\r\n"
    "-10\t5\r\n0\t1\r\n";

std::vector<BadFile> badFiles() {
  const std::string megabyte(1024 * 1024, 'x');
  const std::string nul(1, '\0');
  const std::string good = traceFile(200);
  std::vector<BadFile> files = {
      {"Empty", "", invalid},
      {"OneLineEnd", "\n", invalid},
      {"SettingsFile", settingsFile, invalid},
      {"CurveFile", curveFile, invalid},
      {"CurveFileOfFourLines", "2\r\nDate\tx\r\nTime\tx\r\n\r\n", invalid},
      // It happens to have a number after a tab in its fourth line.
      {"Html", "<!DOCTYPE html>\n<html>\n<body>\n<p>1\t2</p>\n", fault(endsAfter(4))},
      {"Binary", std::string("\x7F\x45LF\x02\x01\x01\0\0\0\0\xFF\xFE\n\0\x01\n", 17), invalid},
      {"NulBytes", std::string(4096, '\0'), invalid},
      {"LongLine", megabyte, invalid},
      {"LongLines", megabyte + "\n" + megabyte + "\n" + megabyte + "\n" + megabyte + "\n", invalid},
      {"WideCharacters", std::string("D\0a\0t\0e\0\t\0\n\0\n\0\n\0\n\0G\0\t\0002\0\n", 25),
       invalid},
      {"ByteOrderMark", "\xEF\xBB\xBF" + good, ""},
      {"NoTabBeforeTheCount", withLine(4, "Graph Points 200"), invalid},
      {"CountAlone", withLine(4, "200"), invalid},
      {"ZeroPoints", withPoints("0"), invalid},
      {"AlmostZeroPoints", withPoints("0.4"), invalid},
      {"NoCount", withPoints(""), invalid},
      {"AWordForTheCount", withPoints("many"), invalid},
      {"NulBeforeTheCount", withPoints(nul + "200"), invalid},
      {"NulAfterTheCount", withPoints("200" + nul), ""},
      {"NegativePoints", withPoints("-200"), invalid},
      {"HugeNegativeCount", withPoints("-2147483648"), invalid},
      {"OnePointTooMany", withPoints("401"), tooMany("401"), true},
      {"ManyPoints", withPoints("70000"), tooMany("70000"), true},
      {"AsManyAsWrapToTwoHundred", withPoints("65736"), tooMany("65736"), true},
      {"LargestCount", withPoints("2147483647"), tooMany("2147483647"), true},
      {"CountThatDoesNotFit", withPoints("2147483648"),
       fault("Overflow: the number of points in line 4 does not fit")},
      {"HugeCount", withPoints("1E20"),
       fault("Overflow: the number of points in line 4 does not fit")},
      {"HugeNegative", withPoints("-1E20"),
       fault("Overflow: the number of points in line 4 does not fit")},
      {"EndlessCount", withPoints(std::string(1024 * 1024, '9')),
       fault("Overflow: the number of points in line 4 does not fit")},
      {"HugePeriod", withLine(5, "Capture Period\t1E39"),
       fault("Overflow: the number in line 5 does not fit")},
      {"HugeLevel", withLine(8, "1\t1E39"),
       badPoints("Overflow: the number in line 8 does not fit")},
      {"HugeLevelAtTheEnd", withLine(205, "1\t-1E400"),
       badPoints("Overflow: the number in line 205 does not fit")},
      {"EmptyLineAmongPoints",
       changed([](FileLines& lines) { lines.insert(lines.begin() + 10, ""); }), noPoint(11)},
      {"OneNumber", withLine(6, "-34.567"), noPoint(6)},
      {"OneNumberAndATab", withLine(6, "-34.567\t"), noPoint(6)},
      {"CommaBetweenTheNumbers", withLine(100, "0.001,-34.567"), noPoint(100)},
      {"SemicolonBetweenTheNumbers", withLine(100, "0.001;-34.567"), noPoint(100)},
      {"NulBetweenTheNumbers", withLine(205, "0.001" + nul + "-34.567"), noPoint(205)},
      {"LongLineAmongPoints", withLine(50, megabyte), noPoint(50)},
      {"LongLineOfBlanks", withLine(50, std::string(1024 * 1024, ' ')), noPoint(50)},
      {"LongLineAfterThePoints", good + megabyte, ""},
      {"CarriageReturnsAlone", fileOf(goodLines(), "\r"), invalid},
      {"DoubledLineEnds", fileOf(goodLines(), "\n\n"), invalid},
      {"EmptyLineFirst", "\n" + good, invalid},
      {"TwoCarriageReturns", fileOf(goodLines(), "\r\r\n"), ""},
      {"CountAndPeriodSwapped", swapped(4, 5), invalid},
      {"CountAndEmptyLineSwapped", swapped(3, 4), invalid},
      {"DateAndTimeSwapped", swapped(1, 2), ""},
      {"TwiceTheFile", good + good, ""},
  };
  for (std::size_t lines = 1; lines < 205; lines += lines < 8 ? 1 : 49) {
    const FileLines all = goodLines();
    const std::string content = fileOf({all.begin(), all.begin() + static_cast<long>(lines)}, "\n");
    std::string message = badPoints(endsAfter(lines));
    if (lines < 5) message = fault(endsAfter(lines));
    if (lines < 4) message = invalid;
    files.push_back({"CutAfterLine" + std::to_string(lines), content, message});
  }
  std::string mixed;
  for (std::size_t index = 0; const std::string& line : goodLines()) {
    mixed += line + (index++ % 2 == 0 ? "\r\n" : "\n");
  }
  files.push_back({"MixedLineEnds", mixed, ""});
  return files;
}

class BadTraceFile : public TraceFileTest, public ::testing::WithParamInterface<BadFile> {
 protected:
  void expectNothingChanged() const {
    expectNotOpened();
    EXPECT_EQ(Settings.DisplayPoints, 200);
    EXPECT_EQ(Settings.CaptureTime, 0.0046F);
    EXPECT_TRUE(received().empty());
    EXPECT_TRUE(shownQuestions().empty());
  }
};

INSTANTIATE_TEST_SUITE_P(Files, BadTraceFile, ::testing::ValuesIn(badFiles()),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(BadTraceFile, IsRefusedWhileStopped) {
  open(GetParam().content);
  if (GetParam().message.empty()) {
    EXPECT_TRUE(shownBoxes().empty());
    expectOpened(200);
    EXPECT_TRUE(view.secondProfileShown);
    return;
  }
  EXPECT_EQ(shownBoxes(), (Boxes{GetParam().message}));
  expectNothingChanged();
}

TEST_P(BadTraceFile, IsRefusedWhileRunning) {
  AcquisitionRunning = True16;
  open(GetParam().content);
  if (GetParam().message.empty()) {
    EXPECT_TRUE(shownBoxes().empty());
    expectOpened(200);
    EXPECT_TRUE(view.secondProfileShown);
    return;
  }
  if (GetParam().otherPoints) {
    EXPECT_EQ(shownBoxes().size(), 2U);
  } else {
    EXPECT_EQ(shownBoxes(), (Boxes{GetParam().message}));
  }
  expectNothingChanged();
}

/// The axis is agreed on before the points are read.
TEST_F(TraceFileTest, WhileStoppedTheAxisOfAFileWithABadPointIsTakenOver) {
  FileLines lines = traceLines("400", "0.01", pointLines(400));
  lines.back() = "no";
  open(fileOf(lines, "\n"));
  EXPECT_EQ(shownBoxes(), (Boxes{noPoint(405)}));
  EXPECT_EQ(Settings.DisplayPoints, 400);
  EXPECT_EQ(Settings.CaptureTime, 0.01F);
  EXPECT_EQ(view.graphLabel(GraphLabel::capture), "10ms");
  EXPECT_TRUE(received().empty());
  expectNotOpened();
}

TEST_F(TraceFileTest, WhileRunningTheQuestionComesBeforeTheBadPoint) {
  AcquisitionRunning = True16;
  world.dialogs.yesNoAnswers = {true};
  open(fileOf(traceLines("200", "0.01", pointLines(199)), "\n"));
  EXPECT_EQ(shownQuestions(), (Boxes{otherPeriodQuestion}));
  EXPECT_EQ(shownBoxes(), (Boxes{badPoints(endsAfter(204))}));
  EXPECT_EQ(Settings.CaptureTime, 0.01F);
  EXPECT_EQ(received(), (Transcript{"TRCAPT 1,PMOD,0.01"}));
  expectNotOpened();
}

TEST_F(TraceFileTest, APeriodThatCannotBeDrawnIsReportedOnceAndLoadsAllTheSame) {
  open(traceFile(200, "none"));
  EXPECT_EQ(shownBoxes(), (Boxes{fault("Division by zero: the capture time is 0")}));
  EXPECT_EQ(Settings.CaptureTime, 0);
  expectOpened(200);
  EXPECT_TRUE(view.secondProfileShown);
}

}  // namespace
}  // namespace pulsemod::test
