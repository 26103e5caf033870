#pragma once

#include <string>

namespace pulsemod {

/// The window `frmPleaseWait`: one line of text and a bar while a long exchange with the meter goes
/// on. Not modal; the user may close it, which stops nothing by itself.
class Progress {
 public:
  virtual ~Progress() = default;

  /// Shows the window with `text` and an empty bar, painted at once.
  virtual void show(const std::string& text) = 0;
  /// Shows the window with `text` if `hide` is not called within `milliseconds`. Its bar runs
  /// without end: nobody knows how long it takes.
  virtual void showAfter(int milliseconds, const std::string& text) = 0;
  /// Replaces the text and paints it at once if the window is visible; does not show it.
  virtual void setText(const std::string& text) = 0;
  /// How much of a known whole is done, 0 to `whole`: shown by the bar and painted as a text is.
  virtual void setDone(int done, int whole) = 0;
  virtual void hide() = 0;

  /// The user has closed the window since it was last shown.
  virtual bool dismissed() const = 0;
};

}  // namespace pulsemod
