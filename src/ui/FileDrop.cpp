#include "ui/FileDrop.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <utility>

#include "link/Fault.h"

namespace pulsemod {

FileDrop::FileDrop(QWidget* window, std::function<void(const std::string& path)> open)
    : QObject(window), window_(window), open_(std::move(open)) {
  window->setAcceptDrops(true);
  window->installEventFilter(this);
}

bool FileDrop::isBlocked() const {
  const QWidget* modal = QApplication::activeModalWidget();
  return modal != nullptr && modal != window_;
}

QString FileDrop::fileIn(const QMimeData* data) const {
  if (isBlocked()) return {};
  const QList<QUrl> files = data->urls();
  return files.size() == 1 ? files.constFirst().toLocalFile() : QString();
}

bool FileDrop::eventFilter(QObject* /*watched*/, QEvent* event) {
  const QEvent::Type type = event->type();
  if (type == QEvent::WindowUnblocked && !dropped_.empty()) openLater();
  if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
  auto* const drop = static_cast<QDropEvent*>(event);
  const QString file = fileIn(drop->mimeData());
  if (file.isEmpty()) {
    drop->ignore();
    return true;
  }
  drop->setDropAction(Qt::CopyAction);
  drop->accept();
  if (type == QEvent::Drop) {
    dropped_.push_back(file.toStdString());
    openLater();
  }
  return true;
}

void FileDrop::openLater() { QTimer::singleShot(0, this, &FileDrop::openDropped); }

void FileDrop::openDropped() {
  // A box of an exchange that was going on may have come up meanwhile.
  while (!dropped_.empty() && !isBlocked()) {
    const std::string path = std::move(dropped_.front());
    dropped_.pop_front();
    reportFaults([this, &path] { open_(path); });
  }
}

}  // namespace pulsemod
