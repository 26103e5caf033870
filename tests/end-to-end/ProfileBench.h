#pragma once

#include <string>

#include "Bench.h"
#include "Expected.h"

namespace endtoend {

/// A bench with the main window on the screen, for what its user does there while the meter is
/// spoken with.
class ProfileBench : public BenchOnEachLink {
 protected:
  /// Starts the acquisition and waits until that many profiles were drawn.
  void runProfiles(std::size_t count);
  /// Stops it and waits for the end of the last pass.
  void stopProfiles();

  Texts told() const { return messages(transcript()); }
  std::size_t profilesSoFar() const { return countMessages(transcript(), "TR1 1"); }
  void awaitMoreProfiles(std::size_t count);

  /// Has the program say something of its own between two exchanges, by a key, so that a button
  /// that is held down stays held; waits until it is said, and tells what was said up to it. What
  /// was asked for before is among it.
  Texts awaitMark();
  /// The messages after the first `before`, up to such a mark.
  Texts toldUntilMark(std::size_t before);
  /// Gives the program's event loop many chances to do something.
  void giveItTime();

  Pixels grabGraph();

  /// "MKNO 1,2" and the like; the reply's text without its prefix and end. Empty without one.
  std::string lastReplyTo(const std::string& query) const;
};

/// A message that a mark consists of.
bool isMark(const std::string& message);

}  // namespace endtoend
