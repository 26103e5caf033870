#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QTabWidget>

#include "WindowTest.h"
#include "profile/MeasurementSettings.h"
#include "support/FakeProfileView.h"
#include "support/FakeWorld.h"
#include "ui/PropertiesWindow.h"

namespace pulsemod::test {

/// `frmProperties` before a meter at GPIB address 13. All input goes to the window, as the window
/// system sends it.
struct PropertiesBench {
  FakeWorld world;
  FakeProfileView profile;
  int markersOpened = 0;
  PropertiesWindow window{nullptr, [this] { ++markersOpened; }};
  PropertiesViewGuard isTheView{window};

  void present() {
    window.present();
    QCoreApplication::processEvents();
  }

  template <typename Type = QWidget>
  Type& part(const QString& name) {
    return *window.findChild<Type*>(name);
  }
  QAbstractButton& button(const QString& name) { return part<QAbstractButton>(name); }
  QLineEdit& box(const QString& name) { return part<QLineEdit>(name); }
  QString text(const QString& name) { return box(name).text(); }
  QSlider& slider() { return part<QSlider>("scrollAVG"); }
  QTabWidget& tabs() { return part<QTabWidget>("sstab"); }
  Transcript& received() { return world.meter.received; }

  /// Turns to the page of a control.
  void reveal(QWidget& control) {
    for (int page = 0; page < tabs().count(); ++page) {
      if (tabs().widget(page)->isAncestorOf(&control)) tabs().setCurrentIndex(page);
    }
    QCoreApplication::processEvents();
  }
  /// In the window. A button's mark stands at its left.
  QPoint targetOf(QWidget& control) {
    const bool isOption = control.inherits("QRadioButton") || control.inherits("QCheckBox");
    const QPoint centre = control.rect().center();
    return control.mapTo(&window, isOption ? QPoint(8, centre.y()) : centre);
  }
  void click(const QString& name) {
    QWidget& control = part(name);
    reveal(control);
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, targetOf(control));
  }
  void press(QPoint place) { QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, place); }
  void release(QPoint place) {
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, place);
  }
  void key(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window.windowHandle(), static_cast<Qt::Key>(key), modifiers);
  }
  /// The focus on a control of its page.
  void focus(const QString& name) {
    reveal(part(name));
    part(name).setFocus();
  }
  void type(const QString& name, const QString& text) {
    focus(name);
    box(name).selectAll();
    key(Qt::Key_Delete);
    for (const QChar character : text) QTest::keyClick(window.windowHandle(), character.toLatin1());
  }

  /// The indices of an array's elements of which something holds.
  template <typename Holds>
  QList<int> indicesWhere(const char* name, int count, Holds holds) {
    QList<int> indices;
    for (int index = 0; index < count; ++index) {
      if (holds(part(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index)))) {
        indices << index;
      }
    }
    return indices;
  }
  QList<int> shown(const char* name, int count) {
    return indicesWhere(name, count, [](const QWidget& control) { return !control.isHidden(); });
  }
  QList<int> enabled(const char* name, int count) {
    return indicesWhere(name, count, [](const QWidget& control) { return control.isEnabled(); });
  }
  QList<int> checked(const char* name, int count) {
    return indicesWhere(name, count, [](const QWidget& control) {
      return dynamic_cast<const QAbstractButton&>(control).isChecked();
    });
  }
};

}  // namespace pulsemod::test
