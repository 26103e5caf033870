#pragma once

#include <QObject>
#include <deque>
#include <functional>
#include <string>

class QMimeData;
class QWidget;

namespace pulsemod {

/// Lets a file be dropped on a window from the file manager: one file of this machine at a time.
/// `open` is called when the drop is over, since it may show boxes and the file manager waits until
/// then. While another window is modal, nothing is taken, and what was taken just before is opened
/// when that window is gone.
class FileDrop : public QObject {
 public:
  FileDrop(QWidget* window, std::function<void(const std::string& path)> open);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// The path; empty when the data is no single file of this machine, or cannot be taken now.
  QString fileIn(const QMimeData* data) const;
  bool isBlocked() const;
  void openLater();
  void openDropped();

  QWidget* window_;
  std::function<void(const std::string& path)> open_;
  /// Dropped and not yet opened, in their order.
  std::deque<std::string> dropped_;
};

}  // namespace pulsemod
