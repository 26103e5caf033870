// The trace and the grid by our own main window. Variants:
//   redraw   the model's traces to the painted graph
//   pass     a whole pass of the acquisition on GPIB: two exchanges with the simulated meter, the
//            decoding, the labels, the redraw and the events, without the pauses of 10 ms that a
//            real meter needs. The simulated meter computes in the same thread and is in the
//            figure.

#include <QApplication>
#include <QWidget>

#include "../GraphWindow.h"
#include "Passes.h"
#include "host/Host.h"
#include "link/Conversation.h"
#include "link/MeterLink.h"
#include "platform/Services.h"
#include "profile/AcquisitionControl.h"
#include "profile/AcquisitionLoop.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "startup/ReadMeterConfig.h"
#include "ui/GraphWidget.h"
#include "ui/MainWindow.h"
#include "ui/PleaseWait.h"

namespace {

using namespace pulsemod;
using namespace bench::passes;

/// The host's clock without its sleep.
class ClockWithoutPauses : public Clock {
 public:
  explicit ClockWithoutPauses(Clock& clock) : clock_(clock) {}
  float secondsSinceMidnight() const override { return clock_.secondsSinceMidnight(); }
  void sleep(int /*milliseconds*/) override {}
  std::string dateText() const override { return clock_.dateText(); }
  std::string timeText() const override { return clock_.timeText(); }

 private:
  Clock& clock_;
};

Services withClock(Services services, Clock& clock) {
  return {clock,
          services.events,
          services.gpib,
          services.serial,
          services.settings,
          services.dialogs,
          services.fileDialogs,
          services.files,
          services.progress,
          services.programEnd};
}

void beginAcquisition() {
  converse([] {
    OpenMeterLink();
    ReadMeterConfig();
  });
  DrawGraph();
  SetAcquisitionRunning(true);
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const Arguments arguments(argc, argv);
  PleaseWait pleaseWait;
  const Host host(pleaseWait);
  ClockWithoutPauses clock(host.services().clock);
  const Services ours = withClock(host.services(), clock);
  const ServicesGuard services(ours);
  InitMeasurementSettings();
  Settings.DisplayPoints = pointCount;
  const std::vector<Levels> levels = frames();

  MainWindow window([] {});
  const ProfileViewGuard view(window);
  auto* const graph = window.findChild<GraphWidget*>("GraphPic");
  // Each one, also those that a screen would never show.
  graph->setPaintInterval(0);
  bench::showWithGraph(window, *graph);
  if (graph->size() != graphSize) return 1;
  const PaintCount paints(*graph);

  if (arguments.is("redraw")) {
    measure(*graph, paints, arguments.passes, [&](int pass) {
      const Levels& now = levels[static_cast<std::size_t>(pass % frameCount)];
      std::copy(now.begin(), now.end(), ProfileTrace.begin());
      RedrawProfile();
      QCoreApplication::processEvents();
    });
  } else if (arguments.is("pass")) {
    beginAcquisition();
    measure(*graph, paints, arguments.passes, [&](int /*pass*/) {
      AcquireProfile();
      if (ProfileReadFailed || AcquisitionRunning == False16) std::_Exit(1);
    });
  } else {
    Arguments::refuse();
  }
  std::_Exit(0);
}
