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

QString FileDrop::fileIn(const QMimeData* data) const {
  const QWidget* modal = QApplication::activeModalWidget();
  if (modal != nullptr && modal != window_) return {};
  const QList<QUrl> files = data->urls();
  return files.size() == 1 ? files.constFirst().toLocalFile() : QString();
}

bool FileDrop::eventFilter(QObject* /*watched*/, QEvent* event) {
  const QEvent::Type type = event->type();
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
    QTimer::singleShot(0, window_, [open = open_, path = file.toStdString()] {
      reportFaults([&open, &path] { open(path); });
    });
  }
  return true;
}

}  // namespace pulsemod
