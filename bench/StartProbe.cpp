// Ends a program at the first paint of a visible window and prints "<ms since start> <resident
// kB>". Its parameter is the monotonic clock's nanoseconds at which the program was started.

#include <QApplication>
#include <QEvent>
#include <QGenericPlugin>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

namespace {

double nowNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

long residentKilobytes() {
  std::ifstream status("/proc/self/status");
  std::string key;
  long value = 0;
  while (status >> key) {
    if (key == "VmRSS:") {
      status >> value;
      return value;
    }
  }
  return 0;
}

class FirstPaint : public QObject {
 public:
  explicit FirstPaint(double started) : started_(started) {}

  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* const widget = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow() && !seen_) {
      seen_ = true;
      const double milliseconds = (nowNanoseconds() - started_) / 1e6;
      // Resident memory is told when the window stands, not in the middle of its first paint.
      QTimer::singleShot(200, this, [milliseconds] {
        std::printf("%.2f %ld\n", milliseconds, residentKilobytes());
        std::fflush(stdout);
        std::_Exit(0);
      });
    }
    return false;
  }

 private:
  double started_;
  bool seen_ = false;
};

class StartProbePlugin : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "startprobe.json")

 public:
  QObject* create(const QString& /*name*/, const QString& started) override {
    auto* const probe = new FirstPaint(started.toDouble());
    qApp->installEventFilter(probe);
    return probe;
  }
};

}  // namespace

#include "StartProbe.moc"
