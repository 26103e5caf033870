#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "files/TextFile.h"
#include "link/Fault.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

using namespace std::string_view_literals;

/// What the `Fault` of `action` says; empty when there is none.
std::string faultOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Fault& fault) {
    return fault.what();
  }
  return {};
}

/// All lines of a text, as they are read one by one.
std::vector<std::string> linesOf(std::string_view text) {
  LineReader reader(text);
  std::vector<std::string> lines;
  while (!reader.atEnd()) lines.emplace_back(reader.next());
  return lines;
}

class TextFile : public testing::Test {
 protected:
  FakeWorld world;
};

TEST_F(TextFile, IsReadAsItStands) {
  const std::string content("one\r\ntwo\n\0three\xC3\xA4", 17);
  world.files.contents["/data/a.txt"] = content;
  EXPECT_EQ(readTextFile("/data/a.txt"), content);
}

TEST_F(TextFile, IsWrittenAsItStands) {
  const std::string content("one\r\ntwo\n\0three", 15);
  world.files.contents["/data/a.txt"] = "old";
  writeFile("/data/a.txt", content);
  EXPECT_EQ(world.files.contents["/data/a.txt"], content);
}

TEST_F(TextFile, ThatCannotBeReadIsNamedWithTheReason) {
  EXPECT_EQ(faultOf([] { readTextFile("/data/none.txt"); }),
            "/data/none.txt cannot be read: No such file or directory");
  world.files.readFailure = "It is too large";
  EXPECT_EQ(faultOf([] { readTextFile("big.txt"); }), "big.txt cannot be read: It is too large");
}

TEST_F(TextFile, ThatCannotBeWrittenIsNamedWithTheReasonAndStays) {
  world.files.contents["/data/a.txt"] = "old";
  world.files.writeFailure = "No space left on device";
  EXPECT_EQ(faultOf([] { writeFile("/data/a.txt", "new"); }),
            "/data/a.txt cannot be written: No space left on device");
  EXPECT_EQ(world.files.contents["/data/a.txt"], "old");
}

TEST_F(TextFile, FaultsComeToTheUserAsMessages) {
  EXPECT_FALSE(reportFaults([] { readTextFile("/data/none.txt"); }));
  const std::vector<ShownBox> box{{"/data/none.txt cannot be read: No such file or directory",
                                   "Pelmora", MessageIcon::exclamation, ""}};
  EXPECT_EQ(world.dialogs.messages, box);
}

TEST(LineReader, TakesOffEitherLineEnd) {
  struct Row {
    std::string_view text;
    std::vector<std::string> lines;
  };
  const Row rows[] = {
      {"", {}},
      {"a", {"a"}},
      {"a\n", {"a"}},
      {"a\r\n", {"a"}},
      {"a\r", {"a"}},
      {"\n", {""}},
      {"\r\n", {""}},
      {"\n\n", {"", ""}},
      {"a\nb\r\nc", {"a", "b", "c"}},
      {"a\r\nb\n", {"a", "b"}},
      {"\n\na", {"", "", "a"}},
      {"a\rb\n", {"a\rb"}},
      {"a\r\r\n", {"a\r"}},
      {" a \t\n", {" a \t"}},
      {"a\0b\nc"sv, {std::string("a\0b", 3), "c"}},
  };
  for (const Row& row : rows) EXPECT_EQ(linesOf(row.text), row.lines) << row.text;
}

TEST(LineReader, CountsTheLinesThatItHasRead) {
  LineReader reader("a\n\nc");
  EXPECT_EQ(reader.lineNumber(), 0U);
  for (std::size_t line = 1; line <= 3; ++line) {
    reader.next();
    EXPECT_EQ(reader.lineNumber(), line);
    EXPECT_EQ(lineName(reader), "line " + std::to_string(line));
  }
  EXPECT_TRUE(reader.atEnd());
}

TEST(LineReader, EndOfTheTextIsAFaultThatCountsItsLines) {
  for (const auto& [text, lines] : std::vector<std::pair<std::string, std::string>>{
           {"", "0"}, {"a", "1"}, {"a\n", "1"}, {"a\nb\n\n", "3"}}) {
    LineReader reader(text);
    while (!reader.atEnd()) reader.next();
    for (int again = 0; again < 2; ++again) {
      EXPECT_EQ(faultOf([&reader] { reader.next(); }),
                "Input past end of file: it has only " + lines + " lines");
    }
  }
}

TEST(LineReader, EndOfTheTextMayCountAsEmptyLines) {
  LineReader reader("a\n");
  EXPECT_EQ(reader.nextOrEmpty(), "a");
  EXPECT_EQ(reader.nextOrEmpty(), "");
  EXPECT_EQ(reader.nextOrEmpty(), "");
  EXPECT_EQ(reader.lineNumber(), 1U);
}

TEST(FileNumber, IsTheOneAtTheStart) {
  LineReader reader("one\ntwo\n");
  reader.next();
  reader.next();
  EXPECT_EQ(fileSingle(reader, " -12.5 dBm"), -12.5F);
  EXPECT_EQ(fileSingle(reader, "abc"), 0.0F);
  EXPECT_EQ(fileSingle(reader, ""), 0.0F);
  for (const char* text : {"3.5E38", "-3.5E38", "1E400"}) {
    EXPECT_EQ(faultOf([&] { fileSingle(reader, text); }),
              "Overflow: the number in line 2 does not fit");
  }
}

TEST(NamedValue, StandsAfterTheTab) {
  struct Row {
    std::string_view line;
    std::string value;
  };
  const Row rows[] = {
      {"Graph Points\t200", "200"},
      {"Graph Points\t 200 ", "200"},
      {"\t200", "200"},
      {"a, b\t200,300", "200"},
      {"a b\tc d", "c d"},
      {"a\t1\t2", "1\t2"},
      {"a\t", ""},
      {"Graph Points 200", ""},
      {" 3 ", ""},
      {"200", ""},
      {"", ""},
  };
  for (const Row& row : rows) EXPECT_EQ(namedValue(row.line), row.value) << row.line;
}

TEST(FileNumber, SecondOfALineStandsAfterBlanksOrTabs) {
  struct Row {
    std::string_view line;
    float number;
  };
  const Row rows[] = {
      {"2.3E-05\t-34.567", -34.567F},
      {"2.3E-05 -34.567", -34.567F},
      {" 2.3E-05 \t  -34.567 \t", -34.567F},
      {"\t1\t2", 2.0F},
      {"1 2 3", 2.0F},
      {"1 +2", 2.0F},
      {"1 -1.5E-3", -1.5E-3F},
      {"1 1e1", 10.0F},
      // The leading number, as everywhere.
      {"1 -34,567", -34.0F},
      {"0,001 -34", -34.0F},
      {"x y", 0.0F},
      {"nan nan", 0.0F},
  };
  for (const Row& row : rows) {
    LineReader reader("line\n");
    reader.next();
    EXPECT_EQ(secondNumber(reader, row.line), row.number) << row.line;
  }
}

TEST(FileNumber, SecondOfALineWithoutTwoFieldsIsAFault) {
  for (const std::string_view line :
       {""sv, " "sv, "\t"sv, "1"sv, " 1 "sv, "\t1\t"sv, "1,2"sv, "1;2"sv, "FILE"sv, "1\0002"sv}) {
    LineReader reader("one\ntwo\nthree\n");
    for (int read = 0; read < 3; ++read) reader.next();
    EXPECT_EQ(faultOf([&] { secondNumber(reader, line); }),
              "There are no two numbers in line 3 of the file")
        << line;
  }
}

TEST(FileNumber, SecondOfALineMustFit) {
  LineReader reader("one\n");
  reader.next();
  for (const char* line : {"1 1E39", "1\t-1E39", "1 1E400"}) {
    EXPECT_EQ(faultOf([&] { secondNumber(reader, line); }),
              "Overflow: the number in line 1 does not fit");
  }
  // The first is of no use, whatever its size.
  EXPECT_EQ(secondNumber(reader, "1E400 5"), 5.0F);
}

}  // namespace
}  // namespace pulsemod::test
