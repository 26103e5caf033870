#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "link/Fault.h"
#include "profile/ProfileTest.h"
#include "support/FileLines.h"
#include "tracefiles/ProfileTraceFile.h"

namespace pulsemod::test {

/// A file with these texts for the number of points and for the capture period, and with these
/// points.
inline FileLines traceLines(const std::string& points, const std::string& capturePeriod,
                            const FileLines& pointLines) {
  FileLines lines = {"Date\t2026-11-21", "Time\t10:30:00", "", "Graph Points\t" + points,
                     "Capture Period\t" + capturePeriod};
  lines.insert(lines.end(), pointLines.begin(), pointLines.end());
  return lines;
}

/// `count` points, -10, -10.25, ... dBm.
inline FileLines pointLines(std::size_t count) {
  FileLines lines;
  for (const float level : levels(count)) {
    std::string number = std::to_string(level);
    lines.push_back("0.001\t" + number.substr(0, number.find('.') + 3));
  }
  return lines;
}

/// A whole file of `points` points.
inline std::string traceFile(std::size_t points, const std::string& capturePeriod = "0.0046") {
  return fileOf(traceLines(std::to_string(points), capturePeriod, pointLines(points)), "\n");
}

/// A profile window, a meter at GPIB address 13, and one trace file. All points of the second
/// profile stand at -1 dBm.
class TraceFileTest : public ProfileTest {
 protected:
  TraceFileTest() { SecondProfileTrace.fill(-1); }

  /// As the window does it: a fault comes to the user as a message.
  void open(const std::string& content) {
    world.files.contents[path] = content;
    reportFaults([this] { OpenProfileTraceFile(path); });
  }

  /// The second profile is that of `traceFile(points)`, with what was there before after it.
  static void expectOpened(std::size_t points) {
    Trace expected;
    expected.fill(-1);
    const std::vector<float> opened = levels(points);
    std::copy(opened.begin(), opened.end(), expected.begin());
    EXPECT_EQ(SecondProfileTrace, expected);
  }

  void expectNotOpened() const {
    expectOpened(0);
    EXPECT_FALSE(view.secondProfileShown);
  }

  Boxes shownQuestions() const {
    Boxes boxes;
    for (const ShownBox& box : world.dialogs.questions) {
      const bool question = box.icon == MessageIcon::question;
      boxes.push_back(box.title + "|" + box.text + "|" + (question ? "question" : "other"));
    }
    return boxes;
  }

  const std::string path = "/data/trace.txt";
  const std::string otherPeriodQuestion =
      "Capture Period Different|The Capture period of the saved file is not the same as the "
      "current setting\r\nChange to saved capture period?|question";
};

}  // namespace pulsemod::test
