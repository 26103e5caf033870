#pragma once

#include <QDialog>

class QLabel;

namespace pulsemod {

/// `frmAbout`: the version of the program, the meter and how it is reached, as a text to copy.
class AboutBox : public QDialog {
 public:
  explicit AboutBox(QWidget* owner);

  /// Shows it, with the present facts.
  void present();

 private:
  QLabel* facts_;
};

}  // namespace pulsemod
