#pragma once

#include <QButtonGroup>
#include <QWidget>

#include "ui/PropertyControls.h"

namespace pulsemod {

/// What the meter measures.
class MeasurementPage : public QWidget {
 public:
  explicit MeasurementPage(const RunEdit& run);

  void refresh();

 private:
  QButtonGroup types_;
};

/// How many points a trace has.
class DisplayPage : public QWidget {
 public:
  explicit DisplayPage(const RunEdit& run);

  void refresh();

 private:
  QButtonGroup points_;
};

}  // namespace pulsemod
