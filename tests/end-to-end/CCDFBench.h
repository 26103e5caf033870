#pragma once

#include <string>

#include "Bench.h"
#include "Expected.h"

namespace endtoend {

using pulsemod::test::ccdfTranscript;

/// A bench with the CCDF window on the screen.
class CCDFBench : public BenchOnEachLink {
 protected:
  /// Starts the acquisition and waits until that many curves were drawn.
  void runCurves(std::size_t count);
  /// Stops it and waits for the end of the last pass; tells what was said up to then.
  Texts stopCurves();

  Texts told() const { return messages(transcript()); }
  std::size_t curvesSoFar() const { return countMessages(transcript(), "TTFRO 1"); }
  void awaitMoreCurves(std::size_t count);

  /// While no curves are read: has the program restart the statistics twice, which it does at no
  /// other time, and tells what was said before that.
  Texts awaitMark();
  /// The messages after the first `before`, up to such a mark.
  Texts toldUntilMark(std::size_t before) { return part(awaitMark(), before); }
  /// Gives the program's event loop many chances to do something.
  void giveItTime();

  std::string caption(const std::string& label) { return hands().get("frmCCDF/" + label, "text"); }
  void awaitCaption(const std::string& label, const std::string& text) {
    hands().waitUntil("frmCCDF/" + label, "text", text);
  }
  bool isEnabled(const std::string& item) { return hands().is("frmCCDF/" + item, "enabled"); }
  void choose(const std::string& item) { hands().trigger("frmCCDF/" + item); }

  void openBoxOf(const std::string& label);
  /// Types into the box that is open, and closes it.
  void answer(const std::string& text);
  /// The text of the message that is up or comes up; closes it.
  std::string readMessage(const std::string& title);

  void expectProgramEndsByClose();
  Pixels grabGraph();
};

/// What one pass says while nothing is asked for.
Texts ccdfPass(bool cursorOn);

/// A mark's messages.
Texts ccdfMark();

}  // namespace endtoend
