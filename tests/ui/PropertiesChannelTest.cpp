#include "PropertiesBench.h"
#include "settings/PropertyEdits.h"

using namespace pulsemod;
using namespace pulsemod::test;

class PropertiesChannelTest : public QObject {
  Q_OBJECT

 private slots:
  void dragOfTheSliderSendsOnce();
  void dragBackSendsNothing();
  void stepsOfTheSliderSendEach();
  void countBeyondTheSliderStays();
  void bothChannels();
};

/// From the handle, which stands at the far left.
void PropertiesChannelTest::dragOfTheSliderSendsOnce() {
  PropertiesBench bench;
  Settings.Channels[0].AveragingCount = 1;
  bench.present();
  QSlider& slider = bench.slider();
  const QPoint handle = slider.mapTo(&bench.window, QPoint(7, slider.height() / 2));
  QStringList captions;
  bench.press(handle);
  for (int step = 1; step <= 20; ++step) {
    QTest::mouseMove(bench.window.windowHandle(), handle + QPoint(5 * step, 0));
    captions << bench.button("chkAverage").text();
    QVERIFY(bench.received().empty());
  }
  captions.removeDuplicates();
  QCOMPARE(captions.size(), 20);
  QCOMPARE(Settings.Channels[0].AveragingCount, std::int16_t{1});
  bench.release(handle + QPoint(100, 0));
  const int rest = slider.value();
  QVERIFY2(rest > 100 && rest < mostAveraged, qPrintable(QString::number(rest)));
  QCOMPARE(bench.received(), Transcript{"PMAVGN 1, " + std::to_string(rest)});
  QCOMPARE(static_cast<int>(Settings.Channels[0].AveragingCount), rest);
  QCOMPARE(bench.button("chkAverage").text(), QString("Average (%1)").arg(rest));
  QCOMPARE(captions.back(), bench.button("chkAverage").text());
}

void PropertiesChannelTest::dragBackSendsNothing() {
  PropertiesBench bench;
  Settings.Channels[0].AveragingCount = 1;
  bench.present();
  QSlider& slider = bench.slider();
  const QPoint handle = slider.mapTo(&bench.window, QPoint(7, slider.height() / 2));
  bench.press(handle);
  for (const int x : {50, 100, 0}) {
    QTest::mouseMove(bench.window.windowHandle(), handle + QPoint(x, 0));
  }
  bench.release(handle);
  QVERIFY(bench.received().empty());
  QCOMPARE(bench.button("chkAverage").text(), "Average (1)");
}

void PropertiesChannelTest::stepsOfTheSliderSendEach() {
  PropertiesBench bench;
  Settings.Channels[0].AveragingCount = 16;
  bench.present();
  bench.focus("scrollAVG");
  bench.key(Qt::Key_Right);
  bench.key(Qt::Key_PageUp);
  bench.key(Qt::Key_Left);
  bench.key(Qt::Key_End);
  bench.key(Qt::Key_Right);
  bench.key(Qt::Key_Home);
  QCOMPARE(bench.received(), (Transcript{"PMAVGN 1, 17", "PMAVGN 1, 27", "PMAVGN 1, 26",
                                         "PMAVGN 1, 1000", "PMAVGN 1, 1"}));
  QCOMPARE(Settings.Channels[0].AveragingCount, std::int16_t{1});
}

void PropertiesChannelTest::countBeyondTheSliderStays() {
  PropertiesBench bench;
  for (const std::int16_t count : {std::int16_t{0}, std::int16_t{5000}, std::int16_t{-3}}) {
    Settings.Channels[0].AveragingCount = count;
    bench.present();
    QCOMPARE(Settings.Channels[0].AveragingCount, count);
    QCOMPARE(bench.button("chkAverage").text(), QString("Average (%1)").arg(count));
  }
  QVERIFY(bench.received().empty());
}

void PropertiesChannelTest::bothChannels() {
  PropertiesBench bench;
  Settings.Channels[0] = {2, 16, True16};
  bench.present();
  bench.click("optChannel_2");
  QCOMPARE(Settings.ActiveChannel, std::int16_t{3});
  for (const char* name : {"chkAverage", "scrollAVG", "optInputConfig_0", "optInputConfig_5"}) {
    QVERIFY2(!bench.part(name).isEnabled(), name);
    QCOMPARE(bench.part(name).parentWidget()->toolTip(),
             "Each channel has its own. Choose channel 1 or channel 2 to set it.");
  }
  QVERIFY(!bench.button("chkAverage").isChecked());
  QCOMPARE(bench.button("chkAverage").text(), "Average");
  QCOMPARE(bench.checked("optInputConfig", 6), QList<int>());
  bench.click("chkAverage");
  bench.click("optInputConfig_1");
  QVERIFY(bench.received().empty());
  QVERIFY(bench.world.dialogs.messages.empty());
  // The other pages speak to both.
  bench.click("chkMaker_0");
  QCOMPARE(bench.received(), Transcript{"MKSTATE 1&2,1,ON"});

  bench.click("optChannel_0");
  QVERIFY(bench.part("chkAverage").isEnabled());
  QVERIFY(bench.part("optInputConfig_0").isEnabled());
  QVERIFY(bench.part("chkAverage").parentWidget()->toolTip().isEmpty());
  QCOMPARE(bench.button("chkAverage").text(), "Average (16)");
  QVERIFY(bench.button("chkAverage").isChecked());
  QCOMPARE(bench.checked("optInputConfig", 6), QList<int>{2});
  QCOMPARE(bench.received().size(), std::size_t{1});
}

QTEST_MAIN(PropertiesChannelTest)
#include "PropertiesChannelTest.moc"
