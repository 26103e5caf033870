#pragma once

#include <QObject>
#include <QPalette>

class QWidget;

namespace pulsemod {

/// Keeps the text of a widget in full contrast while it is disabled: for values that are locked,
/// and still worth reading.
class ReadableWhileDisabled : public QObject {
 public:
  /// `role` is the colour role of the widget's text.
  ReadableWhileDisabled(QWidget* widget, QPalette::ColorRole role);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void apply();

  QWidget* widget_;
  QPalette::ColorRole role_;
};

}  // namespace pulsemod
