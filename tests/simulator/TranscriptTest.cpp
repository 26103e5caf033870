#include <gtest/gtest.h>

#include <chrono>
#include <sstream>

#include "Bench.h"
#include "Transcript.h"

namespace simmeter {
namespace {

std::string quoted(std::string_view text) {
  std::string out;
  appendQuoted(out, text, text.size());
  return out;
}

TEST(Transcript, QuotingTellsEveryByteApart) {
  EXPECT_EQ(quoted("GPGATS 1, 1,  ON "), "\"GPGATS 1, 1,  ON \"");
  EXPECT_EQ(quoted("a\"b\\c"), "\"a\\\"b\\\\c\"");
  EXPECT_EQ(quoted("\r\n\t"), "\"\\r\\n\\t\"");
  EXPECT_EQ(quoted(std::string_view("\0\x7f\xc2", 3)), "\"\\x00\\x7f\\xc2\"");
}

TEST(Transcript, LinesHaveTimeKindAndText) {
  TemporaryFolder folder;
  Transcript transcript;
  ASSERT_TRUE(transcript.open(folder / "t"));
  transcript.write("CLEAR", "");
  transcript.write("ERROR", "query DEADLOCK");
  transcript.received("*IDN?", "NL+EOI");
  transcript.handedOver("1\r\n");
  const char* expected[] = {"CLEAR", "ERROR query DEADLOCK", "< \"*IDN?\" NL+EOI",
                            "> 3 \"1\\r\\n\""};
  std::istringstream lines(readFile(folder / "t"));
  for (const char* each : expected) {
    std::string line;
    ASSERT_TRUE(std::getline(lines, line));
    const std::string time = line.substr(0, line.find(' '));
    EXPECT_EQ(time.find_first_not_of("0123456789."), std::string::npos) << line;
    EXPECT_EQ(time.find('.'), time.size() - 7) << line;
    EXPECT_EQ(line.substr(time.size() + 1), each);
  }
  std::string more;
  EXPECT_FALSE(std::getline(lines, more));
}

TEST(Transcript, TimeIsTheMonotonicClock) {
  TemporaryFolder folder;
  Transcript transcript;
  ASSERT_TRUE(transcript.open(folder / "t"));
  const double before = std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
  transcript.write("IFC", "");
  const std::string line = readFile(folder / "t");
  EXPECT_NEAR(parseNumber(line.substr(0, line.find(' '))).value(), before, 0.5);
}

TEST(Transcript, IsAppendedTo) {
  TemporaryFolder folder;
  for (int i = 0; i < 2; ++i) {
    Transcript transcript;
    ASSERT_TRUE(transcript.open(folder / "t"));
    transcript.write("IFC", "");
  }
  EXPECT_EQ(countKind(readFile(folder / "t"), "IFC"), 2);
}

TEST(Transcript, LongRepliesAreCutAndSaySo) {
  TemporaryFolder folder;
  Transcript transcript;
  ASSERT_TRUE(transcript.open(folder / "t"));
  transcript.handedOver(std::string(5000, 'x'));
  EXPECT_NE(readFile(folder / "t").find("> 5000 \"" + std::string(4096, 'x') + "\"..."),
            std::string::npos);
  transcript.handedOver("#41600" + std::string(1601, 'y'));
  EXPECT_NE(readFile(folder / "t").find("> 1607 \"#41600" + std::string(26, 'y') + "\"..."),
            std::string::npos);
}

TEST(Transcript, EndOfEachMessageIsNamed) {
  Bench bench;
  bench.tell("CHDISPN 1");
  bench.exchange->receive("CHDISPN 2", true, Clock::now());
  bench.exchange->receive("CHDISPN  1\n", false, Clock::now());
  EXPECT_NE(bench.record().find(" < \"CHDISPN 1\" NL+EOI\n"), std::string::npos);
  EXPECT_NE(bench.record().find(" < \"CHDISPN 2\" EOI\n"), std::string::npos);
  EXPECT_NE(bench.record().find(" < \"CHDISPN  1\" NL\n"), std::string::npos);
  Bench serial({}, kSerialFraming);
  serial.exchange->receive("CHDISPN 1\r", false, Clock::now());
  EXPECT_NE(serial.record().find(" < \"CHDISPN 1\" CR\n"), std::string::npos);
}

TEST(Transcript, UnwritablePathIsRefused) {
  Transcript transcript;
  EXPECT_FALSE(transcript.open("/nonexistent/folder/transcript"));
  transcript.write("IFC", "");  // and costs nothing
}

}  // namespace
}  // namespace simmeter
