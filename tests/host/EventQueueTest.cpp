#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <thread>

#include "TestHelp.h"
#include "host/HostEventQueue.h"

namespace pulsemod::test {
namespace {

class EventQueueTest : public testing::Test {
 protected:
  void SetUp() override {
    // What the application's own start has left behind.
    for (int pass = 0; pass < 10; ++pass) QCoreApplication::processEvents();
  }

  template <typename Handler>
  static void post(const Handler& handler) {
    QMetaObject::invokeMethod(qApp, handler, Qt::QueuedConnection);
  }

  HostEventQueue events;
};

TEST_F(EventQueueTest, PendingEventsAreHandled) {
  int handled = 0;
  post([&handled] { ++handled; });
  post([&handled] { ++handled; });
  events.processPending();
  EXPECT_EQ(handled, 2);
}

TEST_F(EventQueueTest, NothingPendingReturnsAtOnce) {
  EXPECT_LT(durationMs([this] { events.processPending(); }), 100.0);
}

TEST_F(EventQueueTest, WaitSeesAnEventThatWasPostedBefore) {
  bool handled = false;
  post([&handled] { handled = true; });
  EXPECT_LT(durationMs([this] { events.processUntilEvent(); }), 100.0);
  EXPECT_TRUE(handled);
}

TEST_F(EventQueueTest, WaitEndsWithAnEventFromOutside) {
  bool handled = false;
  std::thread outside([&handled] {
    std::this_thread::sleep_for(100ms);
    post([&handled] { handled = true; });
  });
  const double waited = durationMs([&] {
    while (!handled) events.processUntilEvent();
  });
  outside.join();
  EXPECT_GE(waited, 95.0);
  EXPECT_LT(waited, 1000.0);
}

TEST_F(EventQueueTest, DeadlineEndsTheWait) {
  const auto end = SteadyClock::now() + 100ms;
  const double waited = durationMs([&] {
    while (SteadyClock::now() < end) events.processUntilEventOr(100);
  });
  EXPECT_GE(waited, 99.0);
  EXPECT_LT(waited, 1000.0);
}

TEST_F(EventQueueTest, EventComesBeforeTheDeadline) {
  bool handled = false;
  QTimer::singleShot(30, [&handled] { handled = true; });
  const double waited = durationMs([&] {
    while (!handled) events.processUntilEventOr(5000);
  });
  EXPECT_LT(waited, 1000.0);
}

TEST_F(EventQueueTest, NoTimeLeftOnlyHandlesWhatIsPending) {
  for (const int milliseconds : {0, -1, -100000}) {
    bool handled = false;
    post([&handled] { handled = true; });
    EXPECT_LT(durationMs([&] { events.processUntilEventOr(milliseconds); }), 100.0);
    EXPECT_TRUE(handled);
    EXPECT_LT(durationMs([&] { events.processUntilEventOr(milliseconds); }), 100.0);
  }
}

TEST_F(EventQueueTest, AHandlerMayWaitInItsTurn) {
  double inner = 0;
  bool handled = false;
  post([&] {
    const auto end = SteadyClock::now() + 80ms;
    inner = durationMs([&] {
      while (SteadyClock::now() < end) events.processUntilEventOr(80);
    });
    handled = true;
  });
  const double outer = durationMs([&] { events.processUntilEventOr(20); });
  EXPECT_TRUE(handled);
  EXPECT_GE(inner, 79.0);
  EXPECT_GE(outer, 79.0);
  EXPECT_LT(outer, 1000.0);
}

TEST_F(EventQueueTest, WaitingCostsNothingWhileNothingHappens) {
  int wakeUps = 0;
  QObject counter;
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &counter,
                   [&wakeUps] { ++wakeUps; });
  int returns = 0;
  const double before = processorTimeMs();
  const auto end = SteadyClock::now() + 1s;
  while (SteadyClock::now() < end) {
    events.processUntilEventOr(1000);
    ++returns;
  }
  const double used = processorTimeMs() - before;
  RecordProperty("returns", returns);
  RecordProperty("wakeUps", wakeUps);
  RecordProperty("processorMicroseconds", static_cast<int>(used * 1000));
  EXPECT_LE(returns, 2);
  EXPECT_LE(wakeUps, 4);
  EXPECT_LT(used, 20.0);
}

TEST_F(EventQueueTest, ObjectsThatHandlersGaveUpAreDeleted) {
  QPointer<QObject> object = new QObject;
  post([&object] { object->deleteLater(); });
  events.processPending();
  events.processPending();
  EXPECT_TRUE(object.isNull());
}

}  // namespace
}  // namespace pulsemod::test
