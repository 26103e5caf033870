#include <algorithm>
#include <functional>

#include "SettingsFiles.h"

namespace pulsemod::test {
namespace {

/// A file that the user might choose by mistake, or that was damaged, and what comes of it.
struct BadFile {
  std::string name;
  std::string content;
  /// What the user is told; empty for a file that loads all the same.
  std::string message;
  /// The values that are taken over from its beginning, each in a good file's words. After them the
  /// settings are as they were.
  FileLines taken = {};
};

void PrintTo(const BadFile& file, std::ostream* out) { *out << file.name; }

std::string endsAfter(std::size_t lines) {
  return "Input past end of file: it has only " + std::to_string(lines) + " lines";
}

std::string noTruth(std::size_t line) {
  return "Type mismatch: line " + std::to_string(line) + " is neither True nor False";
}

std::string doesNotFit(std::size_t line) {
  return "Overflow: the number in line " + std::to_string(line) + " does not fit";
}

/// The good file with lines changed; lines are numbered from 1.
FileLines changed(const std::function<void(FileLines&)>& change) {
  FileLines lines = otherSettingsLines();
  change(lines);
  return lines;
}

std::string withLine(std::size_t number, const std::string& line) {
  return fileOf(changed([&](FileLines& lines) { lines.at(number - 1) = line; }));
}

std::string swapped(std::size_t one, std::size_t other) {
  return fileOf(changed([&](FileLines& lines) { std::swap(lines[one - 1], lines[other - 1]); }));
}

/// Of the good file, the first lines.
FileLines firstLines(std::size_t count) {
  const FileLines lines = otherSettingsLines();
  return {lines.begin(), lines.begin() + static_cast<long>(count)};
}

/// All its values, with one line in other words.
FileLines allWith(std::size_t number, const std::string& line) {
  return changed([&](FileLines& lines) { lines.at(number - 1) = line; });
}

/// What lines stand for that have come into the places of others: a number is True unless it is 0,
/// a word is 0, and a fraction, all of which are small here, is 0 where a whole number belongs.
FileLines inTheirPlaces(FileLines lines) {
  const FileLines good = otherSettingsLines();
  const auto isWord = [](const std::string& line) { return line == "True" || line == "False"; };
  lines.resize(valueLines);
  for (const std::size_t wholeNumber : {0U, 3U, 46U, 48U, 49U, 51U}) {
    if (lines[wholeNumber].find_first_of(".-") != std::string::npos) lines[wholeNumber] = " 0 ";
  }
  for (std::size_t index = 0; index < valueLines; ++index) {
    std::string& line = lines[index];
    const bool isNumber = !line.empty() && !isWord(line) && line != "FILE END";
    if (isWord(good[index]) && isNumber) {
      line = "True";  // no number of the good file is 0
    } else if (!isWord(good[index]) && !isNumber) {
      line = " 0 ";
    }
  }
  return lines;
}

std::vector<BadFile> badFiles() {
  const std::string good = fileOf(otherSettingsLines());
  const std::string megabyte(1024 * 1024, 'x');
  const std::string nul(1, '\0');
  const FileLines all = otherSettingsLines();
  const FileLines shifted = changed([](FileLines& lines) { lines.erase(lines.begin() + 2); });
  const FileLines pushed = changed([](FileLines& lines) { lines.insert(lines.begin(), ""); });
  const FileLines zero = {" 0 "};
  std::vector<BadFile> files = {
      {"Empty", "", endsAfter(0)},
      {"OneLineEnd", "\n", endsAfter(1), zero},
      {"OnlyTheEndMark", "FILE END\r\n", endsAfter(1), zero},
      {"Blanks", "   ", endsAfter(1), zero},
      {"TraceFile",
       "Date\t2026-11-21\nTime\t10:30:00\n\nGraph Points\t200\nCapture Period\t0.0046\n"
       "2.3E-05\t-34.567\n",
       noTruth(2), zero},
      {"CurveFile",
       "2\r\nDate\t2026-11-21\r\nTime\t10:30:00\r\n\r\nGraph Points\t1\r\n-30\r\n0\r\n0\t5\r\n",
       noTruth(2),
       {" 2 "}},
      {"Html", "<!DOCTYPE html>\n<html>\n</html>\n", noTruth(2), zero},
      {"Binary", std::string("\x7F\x45LF\x02\x01\x01\0\0\0\0\xFF\xFE\n\0\x01\n", 17), noTruth(2),
       zero},
      {"NulBytes", std::string(4096, '\0'), endsAfter(1), zero},
      {"ByteOrderMark", "\xEF\xBB\xBF" + good, "", allWith(1, " 0 ")},
      {"WideCharacters", std::string("1\0\r\0\n\0T\0r\0u\0e\0", 14), noTruth(2), {" 1 "}},
      {"LongLine", megabyte, endsAfter(1), zero},
      {"LongLineAmongValues", withLine(2, megabyte), noTruth(2), firstLines(1)},
      {"LongNumber", withLine(3, std::string(1024 * 1024, '9')), doesNotFit(3), firstLines(2)},
      {"LongLineOfZeros", withLine(3, std::string(1024 * 1024, '0') + "5"), "", allWith(3, " 5 ")},
      {"LongLineBeforeTheEnd",
       fileOf(changed([&](FileLines& lines) { lines.insert(lines.end() - 1, megabyte); })), "",
       all},
      {"NulInATruthValue", withLine(2, "True" + nul), noTruth(2), firstLines(1)},
      {"NulBeforeANumber", withLine(3, nul + "5"), "", allWith(3, " 0 ")},
      {"NulAfterANumber", withLine(3, "5" + nul), "", allWith(3, " 5 ")},
      {"NulInTheEndMark", withLine(53, "FILE" + nul + "END"), endsAfter(53), all},
      {"CommaDecimals", withLine(3, " 0,7 "), "", allWith(3, " 0 ")},
      {"HugeGate", withLine(1, "70000"), doesNotFit(1)},
      {"HugeExponent", withLine(45, "1E20000000000000000000"), doesNotFit(45), firstLines(44)},
      {"HugeSingle", withLine(6, "1E39"), doesNotFit(6), firstLines(5)},
      {"HugeNegative", withLine(46, "-1E39"), doesNotFit(46), firstLines(45)},
      {"HugeWhole", withLine(50, "99999999999"), doesNotFit(50), firstLines(49)},
      {"NotANumber", withLine(3, "nan"), "", allWith(3, " 0 ")},
      {"Infinity", withLine(3, "inf"), "", allWith(3, " 0 ")},
      {"EmptyTruthValue", withLine(5, ""), noTruth(5), firstLines(4)},
      {"ForeignTruthValue", withLine(5, "Wahr"), noTruth(5), firstLines(4)},
      {"OnForTrue", withLine(30, "ON"), noTruth(30), firstLines(29)},
      {"ATruthValueForANumber", withLine(43, "True"), "", allWith(43, " 0 ")},
      {"ANumberForATruthValue", withLine(42, " 7 "), "", allWith(42, "True")},
      {"NumbersSwapped", swapped(43, 44), "",
       changed([](FileLines& lines) { std::swap(lines[42], lines[43]); })},
      {"ATruthValueAndANumberSwapped", swapped(5, 6), "",
       changed([](FileLines& lines) { lines[5] = " 0 "; })},
      {"TheEndMarkTooEarly", swapped(20, 53), noTruth(20), firstLines(19)},
      {"TheEndMarkAmongTheNumbers", swapped(52, 53), endsAfter(53), allWith(52, " 0 ")},
      {"OneLineMissing", fileOf(shifted), endsAfter(52), inTheirPlaces(shifted)},
      {"EmptyLineFirst", "\r\n" + good, "", inTheirPlaces(pushed)},
      {"DoubledLineEnds", fileOf(all, "\n\n"), noTruth(2), firstLines(1)},
      {"CarriageReturnsAlone", fileOf(all, "\r"), endsAfter(1), firstLines(1)},
      {"TwoCarriageReturns", fileOf(all, "\r\r\n"), endsAfter(53), all},
      {"EndMarkInLowerCase", withLine(53, "file end"), endsAfter(53), all},
      {"EndMarkWithABlank", withLine(53, "FILE END "), endsAfter(53), all},
      {"EndMarkCutShort", withLine(53, "FILE EN"), endsAfter(53), all},
      {"HugeVersion", withLine(53, "99999 VERSION\r\nFILE END"), doesNotFit(53), all},
      {"TwiceTheFile", good + good, "", all},
  };
  files.push_back({"MixedLineEnds", "", "", all});
  // Every other line with the other line end.
  std::string mixed;
  for (std::size_t index = 0; const std::string& line : otherSettingsLines()) {
    mixed += line + (index++ % 2 == 0 ? "\r\n" : "\n");
  }
  files.back().content = mixed;
  return files;
}

class BadSettingsFile : public SettingsFileTest, public ::testing::WithParamInterface<BadFile> {};

INSTANTIATE_TEST_SUITE_P(Files, BadSettingsFile, ::testing::ValuesIn(badFiles()),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(BadSettingsFile, EndsWhereItIsBadAndOnlyAGoodOneReachesTheMeter) {
  std::vector<double> expected = storedValues();
  const std::vector<double> taken = valuesOf(GetParam().taken);
  std::copy(taken.begin(), taken.end(), expected.begin());
  load(GetParam().content);
  EXPECT_EQ(storedValues(), expected);
  if (GetParam().message.empty()) {
    EXPECT_TRUE(shownBoxes().empty());
    ASSERT_FALSE(received().empty());
    EXPECT_EQ(received().back(), "*OPC?");
  } else {
    expectOneFault(GetParam().message);
  }
  EXPECT_EQ(properties.timesRefreshed, 1);
}

}  // namespace
}  // namespace pulsemod::test
