#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QAbstractEventDispatcher>
#include <filesystem>
#include <fstream>
#include <thread>

#include "Pty.h"
#include "TestHelp.h"
#include "host/HostEventQueue.h"
#include "host/HostSerialPort.h"
#include "host/SerialPortNames.h"

namespace pulsemod::test {
namespace {

namespace fs = std::filesystem;

class SerialPortTest : public testing::Test {
 protected:
  void SetUp() override { connect(1, pty.device()); }
  void TearDown() override { fs::remove_all(configurationFolder() / "Pelmora PulseMod"); }

  static void connect(int portNumber, const fs::path& device) {
    const fs::path folder = configurationFolder() / "Pelmora PulseMod" / "ports";
    fs::create_directories(folder);
    const fs::path link = folder / ("com" + std::to_string(portNumber));
    fs::remove(link);
    fs::create_symlink(device, link);
  }

  void openPort() { ASSERT_TRUE(port.open()) << port.failureReason(); }

  /// Runs events until `done`, for 5 s at most.
  template <typename Condition>
  bool waitUntil(const Condition& done) {
    const auto end = SteadyClock::now() + 5s;
    while (!done()) {
      if (SteadyClock::now() > end) return false;
      events.processUntilEventOr(100);
    }
    return true;
  }

  void runEventsFor(std::chrono::milliseconds time) {
    const auto end = SteadyClock::now() + time;
    while (SteadyClock::now() < end) events.processUntilEventOr(10);
  }

  std::string arrived() {
    std::string text;
    while (const auto character = port.input()) text += *character;
    return text;
  }

  void losePort() {
    pty.unplug();
    ASSERT_TRUE(waitUntil([this] { return !port.isOpen(); }));
  }

  /// How often waits for events return within 500 ms.
  int returnsWhileIdle() {
    int returns = 0;
    const auto end = SteadyClock::now() + 500ms;
    while (SteadyClock::now() < end) {
      events.processUntilEventOr(500);
      ++returns;
    }
    return returns;
  }

  Pty pty;
  HostEventQueue events;
  HostSerialPort port;
};

TEST(SerialSettings, BaudIsReadFromTheText) {
  EXPECT_EQ(baudOfSettings("1200,N,8,1"), 1200);
  EXPECT_EQ(baudOfSettings("57600,N,8,1"), 57600);
  for (const char* text : {"", "9600", ",N,8,1", "9600,E,7,1", "9600,N,8,1 ", "0,N,8,1",
                           "-9600,N,8,1", "99999999999,N,8,1"}) {
    EXPECT_EQ(baudOfSettings(text), std::nullopt) << text;
  }
}

TEST_F(SerialPortTest, OpensWithoutTroubleWhereThereAreNoControlLines) {
  EXPECT_FALSE(port.isOpen());
  EXPECT_TRUE(port.open());
  EXPECT_TRUE(port.isOpen());
  runEventsFor(50ms);
  EXPECT_TRUE(port.isOpen());
  EXPECT_EQ(port.failureReason(), "");
}

TEST_F(SerialPortTest, LineIsSetAsTheSettingsSay) {
  port.setSettings("19200,N,8,1");
  openPort();
  const termios line = pty.attributes();
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B19200));
  EXPECT_EQ(line.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
  EXPECT_EQ(line.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0U);
  EXPECT_EQ(line.c_iflag & (IXON | IXOFF | ICRNL | INLCR), 0U);
  EXPECT_EQ(line.c_lflag & (ECHO | ICANON), 0U);
}

TEST_F(SerialPortTest, SettingsTakeEffectAtTheNextOpening) {
  openPort();
  port.setSettings("1200,N,8,1");
  termios line = pty.attributes();
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B9600));
  openPort();
  line = pty.attributes();
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B1200));
}

TEST_F(SerialPortTest, CharactersAreReadOneAtATime) {
  openPort();
  EXPECT_EQ(port.input(), std::nullopt);
  pty.send("R\r\n\xff");
  std::string all;
  ASSERT_TRUE(waitUntil([&] {
    all += arrived();
    return all.size() == 4;
  }));
  EXPECT_EQ(all, "R\r\n\xff");
  EXPECT_EQ(port.input(), std::nullopt);
}

TEST_F(SerialPortTest, ZeroCharactersAreCharacters) {
  openPort();
  pty.send(std::string("a\0b", 3));
  std::string all;
  ASSERT_TRUE(waitUntil([&] {
    all += arrived();
    return all.size() == 3;
  }));
  EXPECT_EQ(all, std::string("a\0b", 3));
}

TEST_F(SerialPortTest, WrittenBytesLeaveWhileEventsRun) {
  openPort();
  port.write("*IDN?\r");
  EXPECT_EQ(port.outputCount(), 6U);
  ASSERT_TRUE(waitUntil([this] { return port.outputCount() == 0; }));
  EXPECT_EQ(pty.received(), "*IDN?\r");
}

TEST_F(SerialPortTest, OutputWaitsForAReaderThatIsBehind) {
  openPort();
  std::string sent;
  while (sent.size() < 200000) sent += std::to_string(sent.size()) + ",";
  port.write(sent);
  runEventsFor(100ms);
  const std::size_t waiting = port.outputCount();
  EXPECT_GT(waiting, 0U);
  EXPECT_LE(waiting, sent.size());
  std::string got;
  ASSERT_TRUE(waitUntil([&] {
    got += pty.received();
    return port.outputCount() == 0 && got.size() == sent.size();
  }));
  EXPECT_EQ(got, sent);
}

TEST_F(SerialPortTest, AnArrivingByteWakesAWait) {
  openPort();
  runEventsFor(50ms);
  std::thread meter([this] {
    std::this_thread::sleep_for(100ms);
    pty.send("x");
  });
  std::optional<char> character;
  const double waited = durationMs([&] {
    while (!(character = port.input())) events.processUntilEvent();
  });
  meter.join();
  EXPECT_EQ(character, 'x');
  EXPECT_GE(waited, 95.0);
  EXPECT_LT(waited, 1000.0);
}

TEST_F(SerialPortTest, AnOpenPortCostsNothingWhileNothingArrives) {
  openPort();
  port.write("x");
  runEventsFor(100ms);
  const double before = processorTimeMs();
  EXPECT_LE(returnsWhileIdle(), 2);
  EXPECT_LT(processorTimeMs() - before, 20.0);
}

TEST_F(SerialPortTest, LossOfTheOtherEndWakesAWaitAndClosesThePort) {
  openPort();
  runEventsFor(50ms);
  std::thread meter([this] {
    std::this_thread::sleep_for(100ms);
    pty.unplug();
  });
  const double waited = durationMs([this] {
    while (port.isOpen()) events.processUntilEvent();
  });
  meter.join();
  EXPECT_LT(waited, 1000.0);
  EXPECT_TRUE(port.failureReason().starts_with("The port COM1: (" + pty.device() +
                                               ") was lost while it was in use"))
      << port.failureReason();
}

TEST_F(SerialPortTest, ALostPortIsQuiet) {
  openPort();
  int wakeUps = 0;
  QObject counter;
  losePort();
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &counter,
                   [&wakeUps] { ++wakeUps; });
  const double before = processorTimeMs();
  const int returns = returnsWhileIdle();
  RecordProperty("returns", returns);
  RecordProperty("wakeUps", wakeUps);
  EXPECT_LE(returns, 3);
  EXPECT_LE(wakeUps, 8);
  EXPECT_LT(processorTimeMs() - before, 20.0);
}

TEST_F(SerialPortTest, ALostPortTakesNothing) {
  openPort();
  losePort();
  port.write("*CLS\r");
  EXPECT_EQ(port.outputCount(), 0U);
  runEventsFor(20ms);
  port.write("*CLS\r");
  EXPECT_EQ(port.outputCount(), 0U);
  EXPECT_EQ(port.input(), std::nullopt);
}

TEST_F(SerialPortTest, WhatArrivedBeforeTheLossCanBeRead) {
  openPort();
  pty.send("R1.5");
  runEventsFor(100ms);
  EXPECT_EQ(port.input(), 'R');
  pty.send("\r\n");
  runEventsFor(100ms);
  losePort();
  runEventsFor(20ms);
  EXPECT_EQ(arrived(), "1.5\r\n");
}

TEST_F(SerialPortTest, ALostPortCanBeOpenedAgainAtOnce) {
  openPort();
  losePort();
  const Pty next;
  connect(1, next.device());
  openPort();
  EXPECT_EQ(port.failureReason(), "");
  runEventsFor(50ms);
  ASSERT_TRUE(port.isOpen());
  port.write("again\r");
  ASSERT_TRUE(waitUntil([this] { return port.outputCount() == 0; }));
  EXPECT_EQ(next.received(), "again\r");
}

TEST_F(SerialPortTest, ClosingForgetsWhatWasNotRead) {
  openPort();
  pty.send("old");
  runEventsFor(100ms);
  EXPECT_EQ(port.input(), 'o');
  port.close();
  EXPECT_FALSE(port.isOpen());
  EXPECT_EQ(port.input(), std::nullopt);
  openPort();
  runEventsFor(20ms);
  EXPECT_EQ(port.input(), std::nullopt);
}

TEST_F(SerialPortTest, AClosedPortTakesNothing) {
  port.write("*CLS\r");
  EXPECT_EQ(port.outputCount(), 0U);
  openPort();
  port.close();
  port.close();
  port.write("*CLS\r");
  EXPECT_EQ(port.outputCount(), 0U);
  runEventsFor(20ms);
  EXPECT_EQ(pty.received(), "");
}

TEST_F(SerialPortTest, APortThatDoesNotExistIsRefused) {
  if (devicePath(10)) GTEST_SKIP() << "this computer has a COM10:";
  port.setPortNumber(10);
  EXPECT_FALSE(port.open());
  EXPECT_FALSE(port.isOpen());
  EXPECT_EQ(port.failureReason(),
            "There is no port COM10: on this computer. Looked for /dev/ttyS9, /dev/ttyUSB9, "
            "/dev/ttyACM9 and the link " +
                (configurationFolder() / "Pelmora PulseMod/ports/com10").string() + ".");
}

TEST_F(SerialPortTest, ADeviceThatIsNotPluggedInIsRefused) {
  connect(2, "/dev/not-plugged-in");
  port.setPortNumber(2);
  EXPECT_FALSE(port.open());
  EXPECT_EQ(port.failureReason(),
            "The port COM2: (/dev/not-plugged-in) is not there. Is its adapter plugged in?");
}

TEST_F(SerialPortTest, APortOfAnotherProgramIsRefused) {
  openPort();
  connect(2, pty.device());
  HostSerialPort second;
  second.setPortNumber(2);
  EXPECT_FALSE(second.open());
  EXPECT_EQ(second.failureReason(),
            "The port COM2: (" + pty.device() + ") is in use by another program.");
  EXPECT_TRUE(port.isOpen());
  port.close();
  EXPECT_TRUE(second.open());
  EXPECT_EQ(second.failureReason(), "");
}

TEST_F(SerialPortTest, AFileIsNoPort) {
  const fs::path file = configurationFolder() / "file";
  std::ofstream(file) << "text";
  connect(1, file);
  EXPECT_FALSE(port.open());
  EXPECT_TRUE(port.failureReason().starts_with("The port COM1: (" + file.string() +
                                               ") could not be opened: "))
      << port.failureReason();
  fs::remove(file);
}

TEST_F(SerialPortTest, APortThatTheUserMayNotUseIsRefused) {
  // Neither its owner nor others may use it; its group may.
  ASSERT_EQ(chmod(pty.device().c_str(), 0060), 0);
  const group* dialout = getgrnam("dialout");
  const bool belongsToDialout =
      geteuid() == 0 && dialout != nullptr && chown(pty.device().c_str(), 0, dialout->gr_gid) == 0;
  const WithoutPrivileges user;
  EXPECT_FALSE(port.open());
  const std::string reason = port.failureReason();
  if (belongsToDialout) {
    EXPECT_EQ(reason, "Your user is not in the group dialout, which may use " + pty.device() +
                          ". Add it with: sudo adduser $USER dialout, then log in again.");
  } else {
    EXPECT_NE(reason.find(" may use " + pty.device()), std::string::npos) << reason;
  }
}

TEST_F(SerialPortTest, UnknownSettingsAreRefused) {
  port.setSettings("fast");
  EXPECT_FALSE(port.open());
  EXPECT_EQ(port.failureReason(), "The serial port has no settings \"fast\".");
}

}  // namespace
}  // namespace pulsemod::test
