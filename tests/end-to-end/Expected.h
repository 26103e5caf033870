#pragma once

#include <string>
#include <vector>

#include "Bench.h"
#include "support/Transcripts.h"

namespace endtoend {

using Texts = std::vector<std::string>;

using pulsemod::test::configurationTranscript;
using pulsemod::test::defaultsTranscript;
using pulsemod::test::startTranscript;

/// What a start of the acquisition says to a meter on channel 1.
Texts startQuestions();
/// One pass of the acquisition with markers 1 to 3 on, as they are in the simulated meter.
Texts profilePass(Link link);

Texts operator+(Texts first, const Texts& second);

/// The elements from `begin` on, at most `count`.
Texts part(const Texts& texts, std::size_t begin, std::size_t count = static_cast<std::size_t>(-1));

/// The window that the program shows when it ends because of the meter, with its four texts.
struct Box {
  std::string title;
  std::string text;
  std::string icon;
  std::string details;
};
Box shownBox(robot::RobotClient& hands);

inline constexpr auto identityFailure =
    "Could not read Power Meter Identity\r\n\r\nProgram will exit.";

/// Three bytes a pixel.
struct Pixels {
  int width = 0;
  int height = 0;
  std::string bytes;

  bool isYellow(int x, int y) const;
  /// The heights of the yellow pixels in a column, from 0 at the top to 1 at the bottom; -1 and -1
  /// without one.
  std::pair<double, double> yellowSpan(double x) const;
};
Pixels readPixels(const std::filesystem::path& ppmFile);

}  // namespace endtoend
