#pragma once

#include <QButtonGroup>
#include <QDialog>
#include <functional>
#include <string>

class QGroupBox;
class QLineEdit;

namespace pulsemod {

/// `frmComms`: edits `EditedComms`. Every click and edit takes effect in memory at once; saving is
/// the button's, or the answer to the question that closing asks after a change.
class CommsDialog : public QDialog {
 public:
  /// `portDevice` tells which device a port number stands for; empty for none.
  explicit CommsDialog(std::function<std::string(int)> portDevice);

  /// Shows it with the present settings until the user closes it.
  void edit();

  /// Closing by any means but the button.
  void reject() override;

 private:
  QGroupBox* buildGpib();
  QGroupBox* buildRS232();
  QWidget* buildOptions(QButtonGroup& group, const QString& caption, const char* name,
                        const QStringList& captions);
  void connectControls();
  void load();
  void save();
  bool mayClose();

  std::function<std::string(int)> portDevice_;
  QButtonGroup links_;
  QButtonGroup bauds_;
  QButtonGroup ports_;
  QLineEdit* address_ = nullptr;
  bool isChanged_ = false;
};

}  // namespace pulsemod
