#pragma once

#include <QButtonGroup>
#include <QWidget>
#include <array>

#include "profile/MeasurementSettings.h"
#include "ui/PropertyControls.h"

class QGridLayout;
class QLayout;

namespace pulsemod {

class FenceLabel;

/// Which gates are on, their times and fences, the active gate, and the repeat of gate 1. As the
/// other pages of `frmProperties`, it shows the model when it is told to, and its controls call
/// settings/PropertyEdits.h.
class GatesPage : public QWidget {
 public:
  explicit GatesPage(RunEdit run);

  /// All but the repeat count, which the user may be typing.
  void refresh();
  void showRepeatCount();

 private:
  /// A gate's controls, by their columns.
  struct Row {
    QCheckBox* enabled = nullptr;
    std::array<ClickableEdit*, timesPerGate> times{};
    FenceLabel* fence = nullptr;
    QAbstractButton* active = nullptr;
  };

  QLayout* buildRepeat();
  QGroupBox* buildGates();
  void buildRow(int gate, QGridLayout& layout);
  void connectControls();
  void connectRow(int gate);
  void refreshRow(int gate);

  RunEdit run_;
  QCheckBox* displayed_;
  QCheckBox* repeat_ = nullptr;
  QLineEdit* repeatCount_ = nullptr;
  ClickableEdit* repeatOffset_ = nullptr;
  std::array<Row, gateCount> rows_;
  QButtonGroup active_;
};

}  // namespace pulsemod
