#include <QAction>
#include <QFontDialog>
#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "Contrast.h"
#include "WindowTest.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "support/FakeWorld.h"
#include "ui/Look.h"
#include "ui/MainWindow.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

constexpr auto idleRate = "Profile/Second: 0.00";

/// Sees how deep the resizes of one widget nest.
class CountingApplication : public QApplication {
 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override {
    if (receiver != watched || event->type() != QEvent::Resize) {
      return QApplication::notify(receiver, event);
    }
    ++resizes;
    deepest = std::max(deepest, ++depth_);
    const bool handled = QApplication::notify(receiver, event);
    --depth_;
    return handled;
  }

  QObject* watched = nullptr;
  int resizes = 0;
  int deepest = 0;

 private:
  int depth_ = 0;
};

struct Main {
  FakeWorld world;
  MainWindow window{[] {}};
  ProfileViewGuard isTheView{window};

  Main() {
    window.show();
    QCoreApplication::processEvents();
  }
  template <typename Type = QWidget>
  Type& part(const char* name) {
    return *window.findChild<Type*>(name);
  }
  QLabel& label(const char* name) { return part<QLabel>(name); }
  void resize(int width, int height) {
    window.resize(width, height);
    QCoreApplication::processEvents();
  }
  void setFont(const QFont& font) {
    window.applyGraphFont(font);
    QCoreApplication::processEvents();
  }

  /// The rules of the layout, and that nothing touches or is cut.
  void checkLayout() {
    const QSize area = window.centralWidget()->size();
    const QRect graph = part("GraphPic").geometry();
    const QRect start = label("lblStart").geometry();
    const QRect reference = label("lblRef").geometry();
    QCOMPARE(part("menuLine").geometry(), QRect(0, 0, area.width(), 1));
    QCOMPARE(reference.left(), 0);
    QCOMPARE(graph.left(), 0);
    QCOMPARE(graph.top(), reference.top() + reference.height());
    QCOMPARE(graph.width(), area.width());
    QCOMPARE(graph.height(), area.height() - graph.top() - start.height());
    QCOMPARE(part("lblscale").x(), area.width() - part("lblscale").width());
    QCOMPARE(part("lblscale").y(), reference.top());
    const int rateWidth = part("lblgraphspeed").width();
    QCOMPARE(part("lblgraphspeed").x(), area.width() / 2 - rateWidth / 2);
    QCOMPARE(start.topLeft(), QPoint(0, graph.top() + graph.height()));
    QCOMPARE(part("lblStop").pos(), QPoint(area.width() - part("lblStop").width(), start.top()));
    const int captureWidth = part("lblCapture").width();
    QCOMPARE(part("lblCapture").pos(), QPoint(graph.width() / 2 - captureWidth / 2, start.top()));
    checkRoom(area);
  }
  void checkRoom(const QSize& area) {
    QList<QWidget*> parts = window.centralWidget()->findChildren<QWidget*>();
    QCOMPARE(parts.size(), 9);
    // It floats over the graph, when it is shown at all.
    parts.removeOne(&label("lblgate"));
    for (const QWidget* one : parts) {
      QVERIFY2(QRect({0, 0}, area).contains(one->geometry()), qPrintable(one->objectName()));
      QVERIFY2(one->width() >= one->sizeHint().width(), qPrintable(one->objectName()));
      QVERIFY2(one->height() >= one->sizeHint().height(), qPrintable(one->objectName()));
      for (const QWidget* other : parts) {
        QVERIFY2(one == other || !one->geometry().intersects(other->geometry()),
                 qPrintable(one->objectName() + " " + other->objectName()));
      }
    }
  }
};

}  // namespace

class MainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
  void opens();
  void captionsOfTheModel();
  void layout_data();
  void layout();
  void captionsChangeWidth();
  void rateIsShownAndReset();
  void bigAndSmallFonts();
  void noFontCutsALabel_data();
  void noFontCutsALabel();
  void fontCommand();
  void fontCommandCancelled();
  void manyQueuedResizes();
  void resizesUnderTheBoxOfAFault();
  void minimisedIsLeftAlone();
  void exposeAsksNothingOfTheMeter();
  void gateLinesAreShown();
  void labelsStayReadable();
  void coloursHaveContrast();
};

void MainWindowTest::opens() {
  Main main;
  QCOMPARE(main.window.objectName(), "frmMain");
  QCOMPARE(main.window.windowTitle(), "Pelmora PulseMod");
  const QSize room = main.window.screen()->availableSize();
  QCOMPARE(main.window.size(), QSize(800, 600).boundedTo(room).expandedTo({480, 360}));
  QCOMPARE(main.window.minimumSize(), QSize(480, 360));
  main.checkLayout();
}

void MainWindowTest::captionsOfTheModel() {
  Main main;
  QCOMPARE(main.label("lblRef").text(), "Ref: 10.00 dBm");
  QCOMPARE(main.label("lblscale").text(), "Scale: 10.00 dB");
  QCOMPARE(main.label("lblCapture").text(), "4.6ms");
  QCOMPARE(main.label("lblStop").text(), "4.6ms");
  QCOMPARE(main.label("lblgraphspeed").text(), idleRate);
  Settings.ReferenceLevel = -20.5F;
  main.resize(640, 480);
  QCOMPARE(main.label("lblRef").text(), "Ref: -20.50 dBm");
}

void MainWindowTest::layout_data() {
  QTest::addColumn<QSize>("size");
  QTest::newRow("smallest") << QSize(480, 360);
  QTest::newRow("odd") << QSize(641, 479);
  QTest::newRow("large") << QSize(1600, 1000);
}

void MainWindowTest::layout() {
  QFETCH(QSize, size);
  Main main;
  main.resize(size.width(), size.height());
  QCOMPARE(main.window.size(), size);
  main.checkLayout();
}

void MainWindowTest::captionsChangeWidth() {
  Main main;
  main.resize(480, 360);
  const std::string captions[] = {"Ref: -188.88 dBm", "-123.456ms", "0s", "", "Ref: 5.00 dBm"};
  for (const std::string& caption : captions) {
    for (const GraphLabel label : {GraphLabel::reference, GraphLabel::scale, GraphLabel::capture,
                                   GraphLabel::start, GraphLabel::stop}) {
      main.window.setGraphLabel(label, caption);
      main.checkLayout();
    }
    main.window.showRate("Profile/Second: " + caption, "");
    main.checkLayout();
  }
  QCOMPARE(main.label("lblStop").text(), "Ref: 5.00 dBm");
}

void MainWindowTest::rateIsShownAndReset() {
  Main main;
  const QString toolTip = "Update speed of the GPIB, not the update speed of this display";
  main.window.showRate("Profile/Second: 23.4", toolTip.toStdString());
  QCOMPARE(main.label("lblgraphspeed").text(), "Profile/Second: 23.4");
  QCOMPARE(main.label("lblgraphspeed").toolTip(), toolTip);
  main.checkLayout();
  main.resize(700, 500);
  QCOMPARE(main.label("lblgraphspeed").text(), idleRate);
  main.checkLayout();
}

void MainWindowTest::bigAndSmallFonts() {
  Main main;
  QFont font = main.label("lblRef").font();
  for (const int points : {30, 5, 18, 9}) {
    font.setPointSize(points);
    font.setBold(points > 9);
    main.setFont(font);
    main.resize(480, 360);
    main.checkLayout();
    QVERIFY(main.part("GraphPic").height() >= 100);
    main.resize(790, 600);
    main.checkLayout();
  }
  QCOMPARE(main.window.minimumSize(), QSize(480, 360));
}

void MainWindowTest::noFontCutsALabel_data() {
  QTest::addColumn<QSize>("size");
  // The window grows to what a font needs, as far as its screen allows.
  for (const QSize size :
       {QSize(480, 360), QSize(641, 479), QSize(800, 775), QSize(1280, 1024), QSize(3840, 2160)}) {
    QTest::addRow("%d x %d", size.width(), size.height()) << size;
  }
}

void MainWindowTest::noFontCutsALabel() {
  QFETCH(QSize, size);
  Main main;
  const std::pair<GraphLabel, const char*> longest[] = {{GraphLabel::reference, "Ref: -188.88 dBm"},
                                                        {GraphLabel::scale, "Scale: 88.88 dB"},
                                                        {GraphLabel::start, "-888.888ms"},
                                                        {GraphLabel::capture, "888.888ms"},
                                                        {GraphLabel::stop, "-888.888ms"}};
  QFont font = main.label("lblRef").font();
  for (const char* family : {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"}) {
    font.setFamily(family);
    for (const bool bold : {false, true}) {
      font.setBold(bold);
      for (int points = 6; points <= 48; points += points < 12 ? 1 : 6) {
        font.setPointSize(points);
        main.setFont(font);
        main.resize(size.width(), size.height());
        for (const auto& [label, caption] : longest) main.window.setGraphLabel(label, caption);
        main.checkRoom(main.window.centralWidget()->size());
        if (QTest::currentTestFailed()) {
          qWarning("%s %d pt%s", family, points, bold ? " bold" : "");
          return;
        }
        for (const char* name : {"lblRef", "lblscale", "lblStart", "lblCapture", "lblStop"}) {
          const QLabel& label = main.label(name);
          const QRect text = label.fontMetrics().boundingRect(QRect(), 0, label.text());
          QVERIFY(label.contentsRect().width() >= text.width());
          QVERIFY(label.contentsRect().height() >= label.fontMetrics().height());
        }
        QVERIFY(main.part("GraphPic").height() >= 100);
      }
    }
  }
}

void MainWindowTest::fontCommand() {
  Main main;
  QFont chosen("DejaVu Serif", 17, QFont::Bold);
  chosen.setItalic(true);
  const QFont before = main.label("lblRef").font();
  const QFont rateFont = main.label("lblgraphspeed").font();
  QVERIFY(before.family() != chosen.family());
  main.window.showRate("Profile/Second: 9.99", "");
  whenModalIsShown<QFontDialog>("cmdialog", [&](QFontDialog& dialog) {
    QCOMPARE(dialog.currentFont().family(), before.family());
    QCOMPARE(dialog.currentFont().pointSizeF(), before.pointSizeF());
    dialog.setCurrentFont(chosen);
    dialog.accept();
  });
  main.part<QAction>("menuGraphFont").trigger();
  for (const char* name : {"lblRef", "lblscale", "lblStart", "lblCapture", "lblStop", "GraphPic"}) {
    const QFont font = main.part(name).font();
    QCOMPARE(font.family(), "DejaVu Serif");
    QCOMPARE(font.pointSize(), 17);
    QVERIFY(font.bold());
    QVERIFY(!font.italic());
  }
  QCOMPARE(main.label("lblgraphspeed").font(), rateFont);
  // The layout has run again.
  QCOMPARE(main.label("lblgraphspeed").text(), idleRate);
  main.checkLayout();
}

void MainWindowTest::fontCommandCancelled() {
  Main main;
  main.window.showRate("Profile/Second: 9.99", "");
  const QFont before = main.label("lblRef").font();
  const QImage picture = main.window.grab().toImage();
  whenModalIsShown<QFontDialog>("cmdialog", [](QFontDialog& dialog) {
    dialog.setCurrentFont(QFont("DejaVu Serif", 30));
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  main.part<QAction>("menuGraphFont").trigger();
  QCOMPARE(main.label("lblRef").font(), before);
  QCOMPARE(main.window.grab().toImage(), picture);
}

void MainWindowTest::manyQueuedResizes() {
  Main main;
  QWidget* panel = main.window.centralWidget();
  auto* application = static_cast<CountingApplication*>(qApp);
  application->watched = panel;
  for (int i = 0; i < 300; ++i) {
    const QSize size(500 + i, 400);
    QTimer::singleShot(0, &main.window, [&main, size] { main.window.resize(size); });
    QCoreApplication::postEvent(panel, new QResizeEvent(panel->size(), panel->size()));
  }
  QTRY_COMPARE(main.window.width(), 799);
  QCoreApplication::processEvents();
  application->watched = nullptr;
  QVERIFY(application->resizes >= 300);
  QCOMPARE(application->deepest, 1);
  QCOMPARE(main.world.events.pendingCalls, 0);
  main.checkLayout();
}

void MainWindowTest::resizesUnderTheBoxOfAFault() {
  Main main;
  int depth = 0;
  int deepest = 0;
  main.world.dialogs.whileOpen = [&] {
    deepest = std::max(deepest, ++depth);
    for (int i = 0; i < 300; ++i) main.resize(500 + i, 400);
    --depth;
  };
  const QImage before = main.part("GraphPic").grab().toImage();
  Settings.CaptureTime = 0;
  main.resize(500, 400);
  QCOMPARE(deepest, 1);
  QCOMPARE(main.world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(main.window.width(), 799);
  main.checkLayout();
  main.resize(800, 600);
  QCOMPARE(main.world.dialogs.messages.size(), std::size_t{1});

  Settings.CaptureTime = 0.0092F;
  main.resize(810, 600);
  QCOMPARE(main.label("lblCapture").text(), "9.2ms");
}

void MainWindowTest::minimisedIsLeftAlone() {
  Main main;
  main.window.showRate("Profile/Second: 9.99", "");
  main.window.setWindowState(Qt::WindowMinimized);
  QWidget* panel = main.window.centralWidget();
  QResizeEvent event(panel->size(), panel->size());
  QCoreApplication::sendEvent(panel, &event);
  QCOMPARE(main.label("lblgraphspeed").text(), "Profile/Second: 9.99");
}

void MainWindowTest::exposeAsksNothingOfTheMeter() {
  Main main;
  Settings.Gates[0].Enabled = True16;
  RefreshGraph();
  const QImage before = main.part("GraphPic").grab().toImage();
  main.window.hide();
  Settings.Gates[0].Enabled = False16;
  main.window.show();
  main.window.repaint();
  QCOMPARE(main.part("GraphPic").grab().toImage(), before);
  QVERIFY(main.world.meter.received.empty());
}

void MainWindowTest::gateLinesAreShown() {
  Main main;
  Settings.Gates[0].Enabled = True16;
  QVERIFY(RefreshGraph());
  QWidget& graph = main.part("GraphPic");
  const QImage image = graph.grab().toImage();
  const double ratio = graph.devicePixelRatioF();
  const double x = (Settings.Gates[0].StartX - 1.0) / Settings.DisplayPoints * graph.width();
  const int column = static_cast<int>(std::lround(x * ratio));
  for (int y = 0; y < image.height(); ++y) {
    QCOMPARE(QColor(image.pixel(column, y)), look::gateLine);
  }
}

void MainWindowTest::labelsStayReadable() {
  Main main;
  for (const QLabel* label : main.window.findChildren<QLabel*>()) {
    QVERIFY(label->accessibleName().isEmpty());
    QCOMPARE(label->textFormat(), Qt::PlainText);
  }
  QVERIFY(!main.part("GraphPic").accessibleName().isEmpty());
}

void MainWindowTest::coloursHaveContrast() {
  QVERIFY(contrast(look::label, look::surround) >= 4.5);
  QVERIFY(contrast(look::quietLabel, look::surround) >= 4.5);
  for (const Colour colour :
       {gridColour, liveTraceColour, secondProfileColour, activeMarkerColour, markerColour}) {
    QVERIFY(contrast(toQt(colour), look::graphBackground) >= 4.5);
  }
  QVERIFY(contrast(look::gateLine, look::graphBackground) >= 4.5);
  QVERIFY(contrast(look::fenceLine, look::graphBackground) >= 4.5);
  QVERIFY(contrast(look::edgeLabelText, look::edgeLabelGround) >= 4.5);
  for (const QColor& ground : {look::surround, look::graphBackground}) {
    QVERIFY(contrast(look::focusFrame, ground) >= 4.5);
  }
  Main main;
  const QLabel& label = main.label("lblRef");
  QCOMPARE(label.palette().color(QPalette::WindowText), look::label);
  const QPalette edgeLabel = main.label("lblgate").palette();
  QCOMPARE(edgeLabel.color(QPalette::WindowText), look::edgeLabelText);
  QCOMPARE(edgeLabel.color(QPalette::Window), look::edgeLabelGround);
  QCOMPARE(QColor(main.window.grab().toImage().pixel(label.mapTo(&main.window, QPoint(1, 1)) *
                                                     main.window.devicePixelRatioF())),
           look::surround);
}

int main(int argc, char** argv) {
  CountingApplication application(argc, argv);
  MainWindowTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "MainWindowTest.moc"
