#pragma once

#include <QColor>
#include <QLabel>
#include <QString>
#include <functional>

#include "ui/Click.h"

namespace pulsemod {

/// A label that can be clicked: with the left button, pressed and released on it, or with Enter or
/// Space while it has the keyboard focus. Its pointer is a hand, and a frame shows the focus. Tools
/// for the disabled know it as a button.
class ParameterLabel : public QLabel {
 public:
  explicit ParameterLabel(QWidget* parent = nullptr);

  void setOnClick(std::function<void()> onClick) { onClick_ = std::move(onClick); }
  void click() { onClick_(); }

  /// What the caption is the value of: spoken before it.
  void setMeaning(const QString& meaning) { meaning_ = meaning; }
  const QString& meaning() const { return meaning_; }

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  /// The frame that shows the focus, while the label has it.
  void paintFocus(const QColor& colour);

 private:
  std::function<void()> onClick_;
  QString meaning_;
  Click click_;
};

}  // namespace pulsemod
