#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>

#include "TraceFiles.h"
#include "platform/Files.h"
#include "support/CommaLocale.h"

namespace pulsemod::test {
namespace {

class SaveTraceTest : public TraceFileTest {
 protected:
  SaveTraceTest() {
    world.fileDialogs.saveAnswer = path;
    const std::vector<float> live = levels(tracePoints);
    std::copy(live.begin(), live.end(), ProfileTrace.begin());
  }
};

TEST_F(SaveTraceTest, FileOfTheDefaultsByteForByte) {
  ProfileTrace[0] = -34.567F;
  ProfileTrace[199] = 5E-06F;
  SaveProfileTrace();
  const std::string& text = world.files.contents[path];
  const std::string end(platformLineEnd);
  const std::string head = "Date\t2026-11-21" + end + "Time\t10:30:00" + end + end +
                           "Graph Points\t200" + end + "Capture Period\t0.0046" + end +
                           "2.3E-05\t-34.567" + end + "4.6E-05\t-10.25" + end + "6.9E-05\t-10.5" +
                           end + "9.2E-05\t-10.75" + end + "0.000115\t-11" + end;
  EXPECT_EQ(text.substr(0, head.size()), head);
  const std::string tail = end + "0.004577\t-59.5" + end + "0.0046\t5E-06" + end;
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
  EXPECT_EQ(linesOf(text, "\n").size(), 205U);
  EXPECT_EQ(world.fileDialogs.titles, (std::vector<std::string>{"Save Profile"}));
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(shownBoxes().empty());
}

TEST_F(SaveTraceTest, WritesFiveLinesAndOneForEachPoint) {
  for (const std::int16_t points : {std::int16_t{1}, std::int16_t{200}, std::int16_t{400}}) {
    Settings.DisplayPoints = points;
    const FileLines lines = linesOf(profileTraceText(), "\n");
    ASSERT_EQ(lines.size(), 5U + static_cast<std::size_t>(points));
    EXPECT_EQ(lines[3], "Graph Points\t" + std::to_string(points));
    EXPECT_EQ(lines.back().substr(0, lines.back().find('\t')), "0.0046");
  }
}

TEST_F(SaveTraceTest, TimesBeginAfterTheTriggerDelay) {
  Settings.DisplayPoints = 2;
  Settings.CaptureTime = 0.5F;
  Settings.TriggerDelay = -1;
  const FileLines lines = linesOf(profileTraceText(), "\n");
  EXPECT_EQ(fileOf(lines, "\n"),
            "Date\t2026-11-21\nTime\t10:30:00\n\nGraph Points\t2\n"
            "Capture Period\t0.5\n-0.75\t-10\n-0.5\t-10.25\n");
}

TEST_F(SaveTraceTest, PointsOutsideOneToFourHundredAreAFaultAndNoFile) {
  world.files.contents[path] = "old";
  for (const std::int16_t points : {std::int16_t{0}, std::int16_t{-1}, std::int16_t{401}}) {
    world.dialogs.messages.clear();
    Settings.DisplayPoints = points;
    EXPECT_FALSE(reportFaults(SaveProfileTrace));
    EXPECT_EQ(shownBoxes(), (Boxes{"Pelmora|Subscript out of range: a profile has 1 to 400 points, "
                                   "not " +
                                   std::to_string(points) + "|exclamation"}));
    EXPECT_EQ(world.files.contents[path], "old");
  }
}

TEST_F(SaveTraceTest, CancelledDialogEndsSilently) {
  world.fileDialogs.saveAnswer.clear();
  Settings.DisplayPoints = 0;
  SaveProfileTrace();
  EXPECT_TRUE(world.files.contents.empty());
  EXPECT_TRUE(shownBoxes().empty());
}

TEST_F(SaveTraceTest, AFileThatCannotBeWrittenIsReportedAndStays) {
  world.files.contents[path] = "old";
  world.files.writeFailure = "No space left on device";
  EXPECT_FALSE(reportFaults(SaveProfileTrace));
  EXPECT_EQ(
      shownBoxes(),
      (Boxes{"Pelmora|/data/trace.txt cannot be written: No space left on device|exclamation"}));
  EXPECT_EQ(world.files.contents[path], "old");
}

TEST_F(SaveTraceTest, SavesTheProfileThatStandsWhenTheUserHasAnswered) {
  class Answering : public FakeFileDialogs {
   public:
    std::string askSaveFile(const std::string&) override {
      ProfileTrace[0] = -77;
      Settings.DisplayPoints = 1;
      return "/data/late.txt";
    }
  } answering;
  Services services{world.clock,   world.events, world.gpib,  world.serial,   world.store,
                    world.dialogs, answering,    world.files, world.progress, world.programEnd};
  const ServicesGuard guard(services);
  SaveProfileTrace();
  EXPECT_EQ(linesOf(world.files.contents["/data/late.txt"], "\n").back(), "0.0046\t-77");
}

TEST_F(SaveTraceTest, SavedProfileComesBackAsTheSecondOne) {
  AcquisitionRunning = True16;
  SaveProfileTrace();
  world.fileDialogs.openAnswer = path;
  OpenProfileTrace();
  expectOpened(200);
  EXPECT_TRUE(view.secondProfileShown);
  EXPECT_TRUE(shownBoxes().empty());
  EXPECT_TRUE(shownQuestions().empty());
}

TEST_F(SaveTraceTest, TextsAreThoseOfADecimalPointEverywhere) {
  ProfileTrace[1] = -34.567F;
  const std::string text = profileTraceText();
  const CommaLocale comma;
  EXPECT_EQ(profileTraceText(), text);
  open(text);
  EXPECT_EQ(SecondProfileTrace[1], -34.567F);
  EXPECT_EQ(Settings.CaptureTime, 0.0046F);
}

TEST_F(SaveTraceTest, AThousandRandomProfilesSavedOpenedAndSavedAgain) {
  std::mt19937 random(20261121);
  const auto single = [&random] {
    for (;;) {
      const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
      if (std::isfinite(value)) return value;
    }
  };
  for (int round = 0; round < 1000; ++round) {
    SCOPED_TRACE(round);
    const std::size_t points = random() % 20 + 1;
    Settings.DisplayPoints = static_cast<std::int16_t>(points);
    Settings.CaptureTime = static_cast<float>(random() % 10000000 + 1) * 1e-9F;
    Settings.TriggerDelay = static_cast<float>(random() % 1000) * 1e-6F;
    for (std::size_t point = 0; point < points; ++point) {
      ProfileTrace[point] =
          random() % 2 == 0 ? single() : static_cast<float>(random() % 99999) / -1000.0F;
    }
    const std::string saved = profileTraceText();
    const Boolean16 running = random() % 2 == 0 ? True16 : False16;
    AcquisitionRunning = running;
    SecondProfileTrace.fill(-1);
    open(saved);
    ASSERT_TRUE(shownQuestions().empty());

    const FileLines lines = linesOf(saved, "\n");
    for (std::size_t point = 0; point < points; ++point) {
      const std::string& line = lines[5 + point];
      ASSERT_EQ(SecondProfileTrace[point],
                std::strtof(line.c_str() + line.find('\t') + 1, nullptr));
    }
    ASSERT_EQ(SecondProfileTrace[points], -1);
    ProfileTrace = SecondProfileTrace;
    ASSERT_EQ(profileTraceText(), saved);
  }
}

}  // namespace
}  // namespace pulsemod::test
