#pragma once

#include <QLineEdit>
#include <functional>

#include "ui/Click.h"

namespace pulsemod {

/// A box whose text is edited elsewhere, in an input box that a click opens: with the left button,
/// pressed and released on it, or with Enter or Space while it has the keyboard focus. Its pointer
/// is a hand.
class ClickableEdit : public QLineEdit {
 public:
  explicit ClickableEdit(QWidget* parent = nullptr);

  void setOnClick(std::function<void()> onClick) { onClick_ = std::move(onClick); }

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  std::function<void()> onClick_;
  Click click_;
};

}  // namespace pulsemod
