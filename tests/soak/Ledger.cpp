#include "Ledger.h"

namespace soak {

void Ledger::expect(Expected trace) {
  if (expected_) ++lost_;
  expected_ = trace;
  redrawAllowed_ = false;
}

void Ledger::sent(Mark mark) {
  ++sentWhole_;
  expect({mark});
}

void Ledger::sentPart() { expect({}); }

void Ledger::excuse() {
  if (!expected_) return;
  ++excused_;
  // It is what the next redraw shows.
  last_ = expected_->mark;
  expected_.reset();
}

void Ledger::shown(std::optional<Mark> mark) {
  if (!expected_) {
    // Before the first trace, whatever is there is drawn.
    if (!redrawAllowed_ || (last_ && mark != last_)) ++doubled_;
    redrawAllowed_ = false;
    return;
  }
  const Expected expected = *expected_;
  expected_.reset();
  if (!expected.mark) {
    ++shownInPart_;
    last_ = mark;
  } else if (mark == expected.mark) {
    ++shownOnce_;
    last_ = mark;
  } else {
    // Another one in its place.
    ++lost_;
    ++doubled_;
  }
}

}  // namespace soak
