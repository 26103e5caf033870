#include <QAccessible>
#include <QImage>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QWindow>
#include <optional>

#include "WindowTest.h"
#include "host/QtDialogs.h"
#include "profile/AcquisitionLoop.h"
#include "profile/MeasurementSettings.h"
#include "profile/ParameterEdits.h"
#include "support/FakeWorld.h"
#include "ui/Look.h"
#include "ui/MainWindow.h"
#include "ui/ParameterLabel.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// One label by itself in a window, and how often it was clicked.
struct Alone {
  QWidget window;
  ParameterLabel label{&window};
  int clicks = 0;

  Alone() {
    window.resize(300, 200);
    label.setText("10.00");
    label.setGeometry(100, 80, 100, 40);
    label.setOnClick([this] { ++clicks; });
    window.show();
    window.activateWindow();
    QCoreApplication::processEvents();
  }
  void press(QPoint place, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mousePress(window.windowHandle(), button, {}, place);
  }
  void release(QPoint place, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseRelease(window.windowHandle(), button, {}, place);
  }
  void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window.windowHandle(), key, modifiers);
  }

  static constexpr QPoint inside{150, 100};
  static constexpr QPoint outside{20, 20};
};

/// The main window; boxes are recorded, or real ones after `useRealBoxes`.
struct Main {
  FakeWorld world;
  MainWindow window{[] {}};
  ProfileViewGuard isTheView{window};
  QtDialogs realBoxes;
  std::optional<Services> services;
  std::optional<ServicesGuard> realBoxesAreUsed;

  Main() {
    window.show();
    window.activateWindow();
    QCoreApplication::processEvents();
  }
  void useRealBoxes() {
    services.emplace(Services{world.clock, world.events, world.gpib, world.serial, world.store,
                              realBoxes, world.fileDialogs, world.files, world.progress,
                              world.programEnd});
    realBoxesAreUsed.emplace(*services);
  }
  QLabel& label(const char* name) { return *window.findChild<QLabel*>(name); }
  QPoint centreOf(const char* name) {
    return label(name).mapTo(&window, label(name).rect().center());
  }
  void click(const char* name) {
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, centreOf(name));
  }
};

constexpr const char* labelNames[] = {"lblRef", "lblscale", "lblStart", "lblCapture", "lblStop"};

QImage imageOf(QWidget& widget) { return widget.grab().toImage(); }

int countOf(const QImage& image, const QColor& colour) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += QColor(image.pixel(x, y)) == colour ? 1 : 0;
  }
  return count;
}

}  // namespace

class ParameterLabelTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

  void clickIsPressAndReleaseInside();
  void releaseOutsideIsNoClick();
  void pressOutsideIsNoClick();
  void releaseAloneIsNoClick();
  void otherButtonsAreNoClick();
  void otherButtonBetweenPressAndRelease();
  void keysOfAClick_data();
  void keysOfAClick();
  void heldKeyAsksOnce();
  void keysWithoutFocusDoNothing();
  void handPointer();
  void focusIsSeen();
  void focusPaintsAnew();
  void isAnnouncedAsAButton();

  void noLabelHasTheFocusAtFirst();
  void focusOrder();
  void eachLabelOpensItsBox_data();
  void eachLabelOpensItsBox();
  void stopLabelExplains();
  void openBoxTakesAllClicks();
  void cancelChangesNothing();
  void runningEditIsPending();
  void nothingIsAcquiredWhileABoxIsOpen();
  void toolTipsTellWhatAClickDoes();
  void labelsAreSpoken_data();
  void labelsAreSpoken();
  void dragFromALabelOntoTheGraph();
};

void ParameterLabelTest::clickIsPressAndReleaseInside() {
  Alone alone;
  alone.press(Alone::inside);
  QCOMPARE(alone.clicks, 0);
  alone.release(Alone::inside + QPoint(20, 5));
  QCOMPARE(alone.clicks, 1);
  // The corners belong to it.
  for (const QPoint corner : {QPoint(100, 80), QPoint(199, 119)}) {
    const int before = alone.clicks;
    alone.press(corner);
    alone.release(corner);
    QCOMPARE(alone.clicks, before + 1);
  }
}

void ParameterLabelTest::releaseOutsideIsNoClick() {
  Alone alone;
  for (const QPoint outside :
       {Alone::outside, QPoint(200, 100), QPoint(150, 120), QPoint(99, 100), QPoint(150, 79)}) {
    alone.press(Alone::inside);
    alone.release(outside);
    QCOMPARE(alone.clicks, 0);
  }
  // Out and back again is a click.
  alone.press(Alone::inside);
  QTest::mouseMove(alone.window.windowHandle(), Alone::outside);
  QTest::mouseMove(alone.window.windowHandle(), Alone::inside);
  alone.release(Alone::inside);
  QCOMPARE(alone.clicks, 1);
}

void ParameterLabelTest::pressOutsideIsNoClick() {
  Alone alone;
  alone.press(Alone::outside);
  alone.release(Alone::inside);
  QCOMPARE(alone.clicks, 0);
}

/// A press that closed a menu leaves its release to what is under the mouse.
void ParameterLabelTest::releaseAloneIsNoClick() {
  Alone alone;
  const auto releaseAlone = [&alone] { QTest::mouseRelease(&alone.label, Qt::LeftButton); };
  releaseAlone();
  QCOMPARE(alone.clicks, 0);
  alone.press(Alone::inside, Qt::RightButton);
  alone.release(Alone::inside, Qt::RightButton);
  releaseAlone();
  QCOMPARE(alone.clicks, 0);
  alone.press(Alone::inside);
  alone.release(Alone::inside);
  releaseAlone();
  QCOMPARE(alone.clicks, 1);
}

void ParameterLabelTest::otherButtonsAreNoClick() {
  Alone alone;
  for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
    alone.press(Alone::inside, button);
    alone.release(Alone::inside, button);
  }
  QCOMPARE(alone.clicks, 0);
}

void ParameterLabelTest::otherButtonBetweenPressAndRelease() {
  Alone alone;
  alone.press(Alone::inside);
  alone.press(Alone::inside, Qt::RightButton);
  alone.release(Alone::inside, Qt::RightButton);
  QCOMPARE(alone.clicks, 0);
  alone.release(Alone::inside);
  QCOMPARE(alone.clicks, 1);
}

void ParameterLabelTest::keysOfAClick_data() {
  QTest::addColumn<Qt::Key>("key");
  QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
  QTest::addColumn<int>("clicks");
  const Qt::KeyboardModifiers none;
  QTest::newRow("Enter") << Qt::Key_Return << none << 1;
  QTest::newRow("Enter of the keypad")
      << Qt::Key_Enter << Qt::KeyboardModifiers(Qt::KeypadModifier) << 1;
  QTest::newRow("Space") << Qt::Key_Space << none << 1;
  QTest::newRow("letter") << Qt::Key_A << none << 0;
  QTest::newRow("Escape") << Qt::Key_Escape << none << 0;
  QTest::newRow("Alt and Enter") << Qt::Key_Return << Qt::KeyboardModifiers(Qt::AltModifier) << 0;
  QTest::newRow("Ctrl and Space") << Qt::Key_Space << Qt::KeyboardModifiers(Qt::ControlModifier)
                                  << 0;
}

void ParameterLabelTest::keysOfAClick() {
  QFETCH(Qt::Key, key);
  QFETCH(Qt::KeyboardModifiers, modifiers);
  QFETCH(int, clicks);
  Alone alone;
  alone.label.setFocus();
  alone.key(key, modifiers);
  QCOMPARE(alone.clicks, clicks);
}

void ParameterLabelTest::heldKeyAsksOnce() {
  Alone alone;
  alone.label.setFocus();
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space}) {
    alone.clicks = 0;
    for (const bool repeats : {false, true, true, true}) {
      QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), repeats);
      QCoreApplication::sendEvent(&alone.label, &event);
      QVERIFY(event.isAccepted());
    }
    QCOMPARE(alone.clicks, 1);
  }
}

void ParameterLabelTest::keysWithoutFocusDoNothing() {
  Alone alone;
  alone.label.clearFocus();
  alone.key(Qt::Key_Return);
  alone.key(Qt::Key_Space);
  QCOMPARE(alone.clicks, 0);
}

void ParameterLabelTest::handPointer() {
  Alone alone;
  QCOMPARE(alone.label.cursor().shape(), Qt::PointingHandCursor);
}

/// A closed frame in one colour, inside the label, that comes and goes with the focus.
void ParameterLabelTest::focusIsSeen() {
  Alone alone;
  alone.label.clearFocus();
  const QImage without = imageOf(alone.label);
  QCOMPARE(countOf(without, look::focusFrame), 0);
  alone.label.setFocus(Qt::TabFocusReason);
  const QImage with = imageOf(alone.label);
  const double ratio = alone.label.devicePixelRatioF();
  for (const QPoint side : {QPoint(50, 1), QPoint(50, 38), QPoint(1, 20), QPoint(98, 20)}) {
    // At a broken ratio the line lies on one of the pixels around.
    const QPoint pixel(static_cast<int>(side.x() * ratio), static_cast<int>(side.y() * ratio));
    int found = 0;
    for (const QPoint near : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(-1, 0)}) {
      found += QColor(with.pixel(pixel + near)) == look::focusFrame ? 1 : 0;
    }
    QVERIFY(found > 0);
  }
  const int perimeter = 2 * (98 + 38);
  QVERIFY(countOf(with, look::focusFrame) >= static_cast<int>(perimeter * ratio) - 8);
  alone.label.clearFocus();
  QCOMPARE(imageOf(alone.label), without);
  // It is seen after a click with the mouse as well, since Enter works then.
  alone.press(Alone::inside);
  alone.release(Alone::inside);
  QCOMPARE(imageOf(alone.label), with);
}

void ParameterLabelTest::focusPaintsAnew() {
  Alone alone;
  struct PaintCounter : QObject {
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      if (event->type() == QEvent::Paint) ++count;
      return false;
    }
    int count = 0;
  } paints;
  for (int i = 0; i < 2; ++i) {
    alone.label.clearFocus();
    QCoreApplication::processEvents();
    alone.label.installEventFilter(&paints);
    paints.count = 0;
    alone.label.setFocus();
    QTRY_COMPARE(paints.count, 1);
    alone.label.clearFocus();
    QTRY_COMPARE(paints.count, 2);
  }
}

void ParameterLabelTest::isAnnouncedAsAButton() {
  Alone alone;
  alone.label.setMeaning("Reference level");
  alone.label.setToolTip("What it is");
  QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&alone.label);
  QVERIFY(spoken != nullptr);
  QCOMPARE(spoken->role(), QAccessible::Button);
  QCOMPARE(spoken->text(QAccessible::Name), "Reference level, 10.00");
  QCOMPARE(spoken->text(QAccessible::Description), "What it is");
  QVERIFY(spoken->state().focusable);
  alone.label.setText("5.00");
  QCOMPARE(spoken->text(QAccessible::Name), "Reference level, 5.00");

  QAccessibleActionInterface* actions = spoken->actionInterface();
  QVERIFY(actions != nullptr);
  QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::setFocusAction()));
  alone.label.clearFocus();
  actions->doAction(QAccessibleActionInterface::setFocusAction());
  QVERIFY(alone.label.hasFocus());
  QCOMPARE(alone.clicks, 0);
  actions->doAction(QAccessibleActionInterface::pressAction());
  // A box must not hold up the one who asked for it.
  QCOMPARE(alone.clicks, 0);
  QCoreApplication::processEvents();
  QCOMPARE(alone.clicks, 1);

  QLabel plain("text");
  QCOMPARE(QAccessible::queryAccessibleInterface(&plain)->role(), QAccessible::StaticText);
}

void ParameterLabelTest::noLabelHasTheFocusAtFirst() {
  Main main;
  for (const char* name : labelNames) QVERIFY(!main.label(name).hasFocus());
  QTest::keyClick(main.window.windowHandle(), Qt::Key_Return);
  QTest::keyClick(main.window.windowHandle(), Qt::Key_Space);
  QVERIFY(main.world.dialogs.inputs.empty());
  main.click("lblCapture");
  QCOMPARE(main.world.dialogs.inputs.size(), std::size_t{1});
  QVERIFY(main.label("lblCapture").hasFocus());
  // A click on the graph takes it away.
  QTest::mouseClick(main.window.windowHandle(), Qt::LeftButton, {}, {300, 300});
  QVERIFY(!main.label("lblCapture").hasFocus());
  QTest::keyClick(main.window.windowHandle(), Qt::Key_Return);
  QCOMPARE(main.world.dialogs.inputs.size(), std::size_t{1});
}

void ParameterLabelTest::focusOrder() {
  Main main;
  for (const char* name :
       {"lblRef", "lblscale", "GraphPic", "lblStart", "lblCapture", "lblStop", "lblRef"}) {
    QTest::keyClick(main.window.windowHandle(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget()->objectName(), name);
  }
  for (const char* name : {"lblStop", "lblCapture"}) {
    QTest::keyClick(main.window.windowHandle(), Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(QApplication::focusWidget()->objectName(), name);
  }
}

void ParameterLabelTest::eachLabelOpensItsBox_data() {
  QTest::addColumn<QString>("name");
  QTest::addColumn<QString>("prompt");
  QTest::addColumn<QString>("title");
  QTest::addColumn<QString>("defaultText");
  QTest::addColumn<QString>("answer");
  QTest::addColumn<QString>("command");
  QTest::newRow("reference") << "lblRef"
                             << "Enter new reference level (dBm)"
                             << "Reference"
                             << "10"
                             << "-7.5"
                             << "PMPREF 1,DB,-7.5";
  QTest::newRow("scale") << "lblscale"
                         << "Enter new graph scale (dB)"
                         << "Reference"
                         << "10"
                         << "5"
                         << "PMPSCAL 1,DB,5";
  QTest::newRow("delay") << "lblStart"
                         << "Enter new trigger delay"
                         << "Time"
                         << "0.0s"
                         << "2us"
                         << "TRDLYT 1,PMOD,2E-06";
  QTest::newRow("capture") << "lblCapture"
                           << "Enter new Capture Period"
                           << "Time"
                           << "4.6ms"
                           << "5ms"
                           << "TRCAPT 1,PMOD,0.005";
}

void ParameterLabelTest::eachLabelOpensItsBox() {
  QFETCH(QString, name);
  QFETCH(QString, prompt);
  QFETCH(QString, title);
  QFETCH(QString, defaultText);
  QFETCH(QString, answer);
  QFETCH(QString, command);
  Main main;
  main.useRealBoxes();
  QStringList shown;
  const auto fillIn = [&](QInputDialog& box) {
    shown << box.labelText() << box.windowTitle() << box.textValue();
    box.setTextValue(answer);
    box.accept();
  };
  whenModalIsShown<QInputDialog>("inputBox", fillIn);
  main.click(qPrintable(name));
  QCOMPARE(shown, QStringList({prompt, title, defaultText}));
  QCOMPARE(main.world.meter.received.size(), std::size_t{2});
  QCOMPARE(QString::fromStdString(main.world.meter.received[0]), command);

  // The keyboard does the same.
  shown.clear();
  main.label(qPrintable(name)).setFocus();
  whenModalIsShown<QInputDialog>("inputBox", fillIn);
  QTest::keyClick(main.window.windowHandle(), Qt::Key_Return);
  QCOMPARE(shown.mid(0, 2), QStringList({prompt, title}));
  QCOMPARE(main.world.meter.received.size(), std::size_t{4});
}

void ParameterLabelTest::stopLabelExplains() {
  Main main;
  main.useRealBoxes();
  int boxes = 0;
  whenModalIsShown<QMessageBox>("messageBox", [&boxes](QMessageBox& box) {
    ++boxes;
    QCOMPARE(box.text(), "Please edit the Capture Time");
    QCOMPARE(box.windowTitle(), "");
    QCOMPARE(box.icon(), QMessageBox::Information);
    box.accept();
  });
  main.click("lblStop");
  QCOMPARE(boxes, 1);
  QVERIFY(main.world.meter.received.empty());
}

void ParameterLabelTest::openBoxTakesAllClicks() {
  Main main;
  main.useRealBoxes();
  int boxes = 0;
  whenModalIsShown<QInputDialog>("inputBox", [&](QInputDialog& box) {
    ++boxes;
    for (const char* name : labelNames) main.click(name);
    QTest::mouseDClick(main.window.windowHandle(), Qt::LeftButton, {}, main.centreOf("lblRef"));
    QTest::keyClick(main.window.windowHandle(), Qt::Key_Space);
    QCoreApplication::processEvents();
    QCOMPARE(QApplication::activeModalWidget(), &box);
    for (const QWidget* window : QApplication::topLevelWidgets()) {
      const bool isABox = dynamic_cast<const QDialog*>(window) != nullptr && window->isVisible();
      QVERIFY(!isABox || window == &box);
    }
    box.reject();
  });
  main.click("lblRef");
  QCOMPARE(boxes, 1);
  QVERIFY(main.world.meter.received.empty());
}

void ParameterLabelTest::cancelChangesNothing() {
  Main main;
  main.useRealBoxes();
  QStringList captions;
  for (const char* name : labelNames) captions << main.label(name).text();
  for (const char* name : {"lblRef", "lblscale", "lblStart", "lblCapture"}) {
    whenModalIsShown<QInputDialog>("inputBox", [](QInputDialog& box) {
      box.setTextValue("77");
      QTest::keyClick(&box, Qt::Key_Escape);
    });
    main.click(name);
    whenModalIsShown<QInputDialog>("inputBox", [](QInputDialog& box) {
      box.setTextValue("");
      box.accept();
    });
    main.click(name);
  }
  QCOMPARE(Settings.ReferenceLevel, 10.0F);
  QCOMPARE(Settings.CaptureTime, 0.0046F);
  QVERIFY(main.world.meter.received.empty());
  for (const char* name : labelNames) {
    QVERIFY(!captions.isEmpty());
    QCOMPARE(main.label(name).text(), captions.takeFirst());
  }
}

void ParameterLabelTest::runningEditIsPending() {
  Main main;
  AcquisitionRunning = True16;
  main.world.dialogs.textAnswers = {"5"};
  main.click("lblRef");
  QCOMPARE(Settings.ReferenceLevel, 5.0F);
  QCOMPARE(PendingEdits.ReferenceLevel, True16);
  QCOMPARE(main.label("lblRef").text(), "Ref: 10.00 dBm");
  QVERIFY(main.world.meter.received.empty());
}

/// The pass of the loop that let the click run goes on only when the box is closed.
void ParameterLabelTest::nothingIsAcquiredWhileABoxIsOpen() {
  Main main;
  main.useRealBoxes();
  AcquisitionRunning = True16;
  main.world.events.post([&main] { main.click("lblRef"); });
  std::size_t receivedInTheBox = 99;
  bool wasRunning = false;
  whenModalIsShown<QInputDialog>("inputBox", [&](QInputDialog& box) {
    QTest::qWait(100);
    receivedInTheBox = main.world.meter.received.size();
    wasRunning = AcquisitionRunning != False16;
    box.reject();
  });
  AcquireProfile();
  QCOMPARE(receivedInTheBox, std::size_t{0});
  QVERIFY(wasRunning);
  QVERIFY(!main.world.meter.received.empty());
}

void ParameterLabelTest::toolTipsTellWhatAClickDoes() {
  Main main;
  for (const char* name : {"lblRef", "lblscale", "lblStart", "lblCapture"}) {
    QVERIFY2(main.label(name).toolTip().endsWith("Click to change it."), name);
    QCOMPARE(main.label(name).cursor().shape(), Qt::PointingHandCursor);
  }
  QVERIFY(main.label("lblStop").toolTip().endsWith("Change the capture period to move it."));
  QCOMPARE(main.label("lblStop").cursor().shape(), Qt::PointingHandCursor);
  QCOMPARE(main.label("lblgraphspeed").cursor().shape(), Qt::ArrowCursor);
}

void ParameterLabelTest::labelsAreSpoken_data() {
  QTest::addColumn<QString>("name");
  QTest::addColumn<QString>("spoken");
  QTest::newRow("reference") << "lblRef"
                             << "Reference level, Ref: 10.00 dBm";
  QTest::newRow("scale") << "lblscale"
                         << "Graph scale, Scale: 10.00 dB";
  QTest::newRow("start") << "lblStart"
                         << "Trigger delay, 0.0s";
  QTest::newRow("capture") << "lblCapture"
                           << "Capture period, 4.6ms";
  QTest::newRow("stop") << "lblStop"
                        << "Stop time, 4.6ms";
}

void ParameterLabelTest::labelsAreSpoken() {
  QFETCH(QString, name);
  QFETCH(QString, spoken);
  Main main;
  QAccessibleInterface* label =
      QAccessible::queryAccessibleInterface(&main.label(qPrintable(name)));
  QCOMPARE(label->text(QAccessible::Name), spoken);
  QCOMPARE(label->text(QAccessible::Description), main.label(qPrintable(name)).toolTip());
  QCOMPARE(label->role(), QAccessible::Button);
}

/// A press on a label is the label's up to its release: the graph under the mouse gets nothing.
void ParameterLabelTest::dragFromALabelOntoTheGraph() {
  Main main;
  AcquisitionRunning = True16;
  QTest::mousePress(main.window.windowHandle(), Qt::LeftButton, {}, main.centreOf("lblRef"));
  QTest::mouseMove(main.window.windowHandle(), {300, 300});
  QCOMPARE(AcquisitionRunning, True16);
  QTest::mouseRelease(main.window.windowHandle(), Qt::LeftButton, {}, {300, 300});
  QVERIFY(main.world.dialogs.inputs.empty());
  QCOMPARE(AcquisitionRunning, True16);
}

QTEST_MAIN(ParameterLabelTest)
#include "ParameterLabelTest.moc"
