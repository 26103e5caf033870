#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/Picture.h"

namespace pulsemod {

/// One step of a drawing. Its points (or, of a text, the one point and the string) lie in the
/// drawing's own arrays.
struct DrawingStep {
  enum class Kind { line, polyline, text };
  Kind kind = Kind::line;
  Colour colour;
  std::size_t firstPoint = 0;
  std::size_t pointCount = 0;
  std::size_t text = 0;
  friend bool operator==(const DrawingStep&, const DrawingStep&) = default;
};

/// A finished picture, in user units.
struct Drawing {
  PictureScale scale;
  std::vector<DrawingStep> steps;
  std::vector<PicturePoint> points;
  std::vector<std::string> texts;
  /// The height of a line of text as a share of the picture's height, as the one who drew it found
  /// it: a text may hang so far below what it is about.
  double textHeightShare = 0;
  /// The first `backgroundSteps` steps are the background.
  std::size_t backgroundSteps = 0;

  /// Empties it and keeps its scale and its memory.
  void clear();
};

/// The backgrounds of both are the same, step by step.
bool sameBackground(const Drawing& one, const Drawing& other);

/// Records a picture step by step. `shown` is the last one that was finished.
class DrawingRecorder : public Picture {
 public:
  /// `textHeightShare` tells the height of a line of text as a share of the picture's height;
  /// `onShow` is called when a drawing is finished.
  DrawingRecorder(std::function<double()> textHeightShare, std::function<void()> onShow);

  void clear() override;
  void setScale(const PictureScale& scale) override;
  void line(PicturePoint from, PicturePoint to, Colour colour) override;
  void polyline(std::span<const PicturePoint> points, Colour colour) override;
  void text(PicturePoint topLeft, std::string_view text, Colour colour) override;
  double textHeight() const override;
  void endBackground() override;
  void show() override;

  const Drawing& shown() const { return shown_; }

 private:
  std::function<double()> textHeightShare_;
  std::function<void()> onShow_;
  Drawing recording_;
  Drawing shown_;
};

}  // namespace pulsemod
