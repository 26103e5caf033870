#pragma once

#include <QApplication>
#include <QWidget>

namespace pulsemod {

/// The window that a modal dialog belongs to; none when the program shows no window.
inline QWidget* dialogParent() {
  QWidget* modal = QApplication::activeModalWidget();
  return modal != nullptr ? modal : QApplication::activeWindow();
}

}  // namespace pulsemod
