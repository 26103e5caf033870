#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace pulsemod {

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  friend bool operator==(const Colour&, const Colour&) = default;
};

struct PicturePoint {
  double x = 0;
  double y = 0;
  friend bool operator==(const PicturePoint&, const PicturePoint&) = default;
};

/// An extent in user units; both numbers are positive, whatever the signs of the scale.
struct PictureSize {
  double width = 0;
  double height = 0;
  friend bool operator==(const PictureSize&, const PictureSize&) = default;
};

/// The user scale of a picture: what stands at its left and top edge, and how far it reaches. A
/// negative height means that y grows upward.
struct PictureScale {
  double left = 0;
  double top = 0;
  double width = 1;
  double height = 1;
  friend bool operator==(const PictureScale&, const PictureScale&) = default;
};

/// A drawing surface with a user scale; all coordinates are user units, mapped linearly to pixels.
///
/// A drawing begins with `clear` and becomes visible as a whole with `show`. A drawing that is
/// given up half way (a fault in the arithmetic) never becomes visible: the old one stays.
class Picture {
 public:
  virtual ~Picture() = default;

  virtual void clear() = 0;
  /// Before the first line of a drawing; until then the scale of the drawing before is in force.
  virtual void setScale(const PictureScale& scale) = 0;
  virtual void line(PicturePoint from, PicturePoint to, Colour colour) = 0;
  /// Joined lines through `points`; a single point is a dot.
  virtual void polyline(std::span<const PicturePoint> points, Colour colour) = 0;
  /// Text whose top left corner stands at `topLeft`.
  virtual void text(PicturePoint topLeft, std::string_view text, Colour colour) = 0;
  /// Height of a line of text in user units, a positive number whatever the scale's sign.
  virtual double textHeight() const = 0;
  /// All drawn since `clear` is background: it is likely to be the same in the next drawing, so a
  /// surface may keep its image.
  virtual void endBackground() = 0;
  virtual void show() = 0;
};

}  // namespace pulsemod
