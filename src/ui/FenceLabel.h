#pragma once

#include "ui/ParameterLabel.h"

namespace pulsemod {

/// `lblFence`: the word FENCE as a switch. It stands out while the fence is on, and stands in a
/// bare frame while it is off.
class FenceLabel : public ParameterLabel {
 public:
  explicit FenceLabel(int gate);

  void setFence(bool on);

 protected:
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void reserveWidth();

  int gate_;
  bool isOn_ = false;
};

}  // namespace pulsemod
