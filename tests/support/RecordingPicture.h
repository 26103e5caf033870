#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Picture.h"

namespace pulsemod::test {

/// A picture that keeps what was drawn. `shown` is the last drawing that was finished.
class RecordingPicture : public Picture {
 public:
  struct Line {
    PicturePoint from;
    PicturePoint to;
    Colour colour;
    friend bool operator==(const Line&, const Line&) = default;
  };
  struct Polyline {
    std::vector<PicturePoint> points;
    Colour colour;
  };
  struct Text {
    PicturePoint topLeft;
    std::string text;
    Colour colour;
    friend bool operator==(const Text&, const Text&) = default;
  };
  struct Drawing {
    PictureScale scale;
    std::vector<Line> lines;
    std::vector<Polyline> polylines;
    std::vector<Text> texts;
  };

  void clear() override {
    calls.emplace_back("clear");
    drawn = Drawing{};
  }
  void setScale(const PictureScale& scale) override {
    calls.emplace_back("scale");
    drawn.scale = scale;
  }
  void line(PicturePoint from, PicturePoint to, Colour colour) override {
    calls.emplace_back("line");
    drawn.lines.push_back({from, to, colour});
  }
  void polyline(std::span<const PicturePoint> points, Colour colour) override {
    calls.emplace_back("polyline");
    drawn.polylines.push_back({{points.begin(), points.end()}, colour});
  }
  void text(PicturePoint topLeft, std::string_view text, Colour colour) override {
    calls.emplace_back("text");
    drawn.texts.push_back({topLeft, std::string(text), colour});
  }
  double textHeight() const override { return heightOfText; }
  void endBackground() override { calls.emplace_back("background"); }
  void show() override {
    calls.emplace_back("show");
    shown = drawn;
    ++timesShown;
  }

  Drawing drawn;
  Drawing shown;
  int timesShown = 0;
  /// Every call but `textHeight`, in order: "clear", "scale", "line", ...
  std::vector<std::string> calls;
  /// In user units.
  double heightOfText = 4;
};

}  // namespace pulsemod::test
