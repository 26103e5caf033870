#pragma once

#include <QDialog>

#include "startup/StartUp.h"

class QPushButton;

namespace pulsemod {

/// `frmConfigureQuestion`: how to begin.
class ConfigureQuestion : public QDialog {
 public:
  ConfigureQuestion();

  /// Shows it until the user has answered. Closing it without a button is `exitProgram`.
  StartChoice ask();

 private:
  QPushButton* addChoice(const char* name, const char* caption, const QString& toolTip,
                         StartChoice choice);

  StartChoice choice_ = StartChoice::exitProgram;
};

}  // namespace pulsemod
