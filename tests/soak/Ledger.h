#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace soak {

/// What must become of the trace, or curve, in whose pass a fault strikes.
enum class Fate {
  shown,    ///< it comes whole all the same
  dropped,  ///< nothing is drawn
  redrawn,  ///< nothing is new, and the old one is drawn again
  partly,   ///< what came is drawn, with the rest of the one before
  notice,   ///< one box, and the acquisition has stopped
};

/// The book of traces: those that the meter sent whole against those that were shown, one by one.
/// A trace is known by a mark, such as its number in its last point.
class Ledger {
 public:
  using Mark = std::uint64_t;

  /// The program has got a trace whole, without an error after it.
  void sent(Mark mark);
  /// It has got a part that counts as a trace.
  void sentPart();
  /// The trace on the screen may be drawn once more.
  void allowRedraw() { redrawAllowed_ = true; }
  /// The trace that was sent last cannot be drawn, and the user has been told why.
  void excuse();
  /// A drawing is finished. No mark: a part that does not bear one.
  void shown(std::optional<Mark> mark);

  std::uint64_t sentWhole() const { return sentWhole_; }
  std::uint64_t shownOnce() const { return shownOnce_; }
  std::uint64_t shownInPart() const { return shownInPart_; }
  std::uint64_t excused() const { return excused_; }
  std::uint64_t lost() const { return lost_; }
  /// Shown again, or out of order, or never sent.
  std::uint64_t doubled() const { return doubled_; }

 private:
  struct Expected {
    std::optional<Mark> mark;
  };
  void expect(Expected trace);

  std::optional<Expected> expected_;
  std::optional<Mark> last_;
  bool redrawAllowed_ = false;
  std::uint64_t sentWhole_ = 0;
  std::uint64_t shownOnce_ = 0;
  std::uint64_t shownInPart_ = 0;
  std::uint64_t excused_ = 0;
  std::uint64_t lost_ = 0;
  std::uint64_t doubled_ = 0;
};

}  // namespace soak
