#pragma once

#include <QObject>
#include <QUrl>

namespace randomuse {

/// Takes the links that the user guide would have the system open.
class NoBrowser : public QObject {
  Q_OBJECT
 public slots:
  void open(const QUrl& /*url*/) {}
};

}  // namespace randomuse
