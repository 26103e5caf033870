// Opening the properties, to the painted dialog, beside a bare dialog with a tab control.

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QTabWidget>
#include <QVBoxLayout>
#include <cstdio>
#include <cstdlib>

#include "Bounded.h"
#include "host/Host.h"
#include "platform/Services.h"
#include "profile/MeasurementSettings.h"
#include "ui/MainWindow.h"
#include "ui/PleaseWait.h"

namespace {

using namespace pulsemod;

/// Sees which dialog has been painted.
class PaintWatch : public QObject {
 public:
  PaintWatch() { qApp->installEventFilter(this); }

  /// Seconds from `show` until a dialog is painted; any one that is open is closed before.
  template <typename Show>
  double secondsToPaint(const Show& show) {
    if (painted_ != nullptr) painted_->close();
    QCoreApplication::processEvents();
    painted_ = nullptr;
    return bench::secondsOf([&] {
      show();
      while (painted_ == nullptr) QCoreApplication::processEvents();
    });
  }

  bool hasPainted(const char* name) const {
    return painted_ != nullptr && painted_->objectName() == QLatin1String(name);
  }

 protected:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::Paint && qobject_cast<QDialog*>(object) != nullptr) {
      painted_ = qobject_cast<QDialog*>(object);
    }
    return false;
  }

 private:
  QDialog* painted_ = nullptr;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  PleaseWait pleaseWait;
  const Host host(pleaseWait);
  const ServicesGuard services(host.services());
  InitMeasurementSettings();
  MainWindow window([] {});
  const ProfileViewGuard view(window);
  window.show();
  QCoreApplication::processEvents();
  PaintWatch watch;

  QDialog bare(&window);
  bare.resize(600, 400);
  auto* const layout = new QVBoxLayout(&bare);
  layout->addWidget(new QTabWidget(&bare));

  QAction* const menuProperties = window.findChild<QAction*>("menuProperties");
  const auto openProperties = [&] {
    return watch.secondsToPaint([menuProperties] { menuProperties->trigger(); });
  };
  const auto openBare = [&] { return watch.secondsToPaint([&bare] { bare.show(); }); };

  const double firstBare = openBare() * bench::milliseconds;
  const double first = openProperties() * bench::milliseconds;
  if (!watch.hasPainted("frmProperties")) {
    std::fprintf(stderr, "Another dialog than the properties came\n");
    std::_Exit(1);
  }
  std::printf("%-34s %8.3f ms%25s   bare %8.3f ms   ratio %.2f\n",
              "open the properties, first time", first, "", firstBare, first / firstBare);
  bench::compareWithBound("open the properties again", 50, openProperties, openBare);
  std::fflush(stdout);
  std::_Exit(0);
}
