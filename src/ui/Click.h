#pragma once

class QKeyEvent;
class QMouseEvent;
class QWidget;

namespace pulsemod {

/// A click on a widget that is no button of the toolkit: the left button, pressed and released on
/// it.
class Click {
 public:
  void press(const QMouseEvent& event);
  /// True when this ends a click on `widget`.
  bool release(const QMouseEvent& event, const QWidget& widget);

 private:
  bool pressed_ = false;
};

/// Enter or Space without a modifier, which stands for a click on the widget with the focus.
bool isClickKey(const QKeyEvent& event);

}  // namespace pulsemod
