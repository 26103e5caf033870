#include "host/HostEventQueue.h"

#include <QCoreApplication>
#include <QTimer>

namespace pulsemod {

void HostEventQueue::processPending() { QCoreApplication::processEvents(); }

void HostEventQueue::processUntilEvent() {
  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void HostEventQueue::processUntilEventOr(int milliseconds) {
  if (milliseconds <= 0) {
    processPending();
    return;
  }
  // A timer of this call alone: a handler that waits here in its turn does not disturb it.
  QTimer deadline;
  deadline.setTimerType(Qt::PreciseTimer);
  deadline.setSingleShot(true);
  deadline.start(milliseconds);
  processUntilEvent();
}

}  // namespace pulsemod
