#pragma once

#include <QLabel>

namespace pulsemod {

/// A label for a number that changes with each pass of a loop. It paints its text from the left
/// edge, on its own ground, without the layout of a general label, which takes longer than the
/// picture.
class RateLabel : public QLabel {
 public:
  explicit RateLabel(QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace pulsemod
