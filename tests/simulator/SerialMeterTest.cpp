// The program on its pseudo-terminal, started as its users start it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <termios.h>

#include <array>
#include <chrono>
#include <sstream>
#include <thread>

#include "Bench.h"
#include "MeterProgram.h"

namespace simmeter {
namespace {

using std::chrono::milliseconds;

class SerialMeter : public testing::Test {
 protected:
  void start(std::string_view scenario = {}, std::vector<std::string> extra = {}) {
    writeFile(folder / "scenario", scenario);
    std::vector<std::string> arguments{"--scenario", folder / "scenario", "--transcript",
                                       folder / "transcript"};
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    program = std::make_unique<MeterProgram>(SIMMETER_PROGRAM, arguments, folder / "errors");
    device = program->firstLine();
    open();
  }

  void open(speed_t speed = B57600) {
    line = ::open(device.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(line, 0) << device;
    termios settings{};
    ::tcgetattr(line, &settings);
    ::cfmakeraw(&settings);
    ::cfsetspeed(&settings, speed);
    ::tcsetattr(line, TCSANOW, &settings);
  }

  void TearDown() override {
    if (line >= 0) ::close(line);
  }

  void tell(std::string_view text) {
    const std::string bytes = std::string(text) + "\r";
    ASSERT_EQ(::write(line, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  // Bytes up to a line feed, or what came until nothing came for the time.
  std::string read(milliseconds patience = milliseconds(3000)) {
    std::string reply;
    while (reply.empty() || reply.back() != '\n') {
      pollfd events{line, POLLIN, 0};
      if (::poll(&events, 1, static_cast<int>(patience.count())) <= 0) break;
      std::array<char, 4096> buffer{};
      const ssize_t count = ::read(line, buffer.data(), buffer.size());
      if (count <= 0) break;
      reply.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return reply;
  }

  std::string ask(std::string_view text) {
    tell(text);
    return read();
  }

  std::string record() { return readFile(folder / "transcript"); }

  TemporaryFolder folder;
  std::unique_ptr<MeterProgram> program;
  std::string device;
  int line = -1;
};

double secondsSince(TimePoint began) {
  return std::chrono::duration<double>(Clock::now() - began).count();
}

TEST_F(SerialMeter, FramesItsReplies) {
  start();
  EXPECT_EQ(device.substr(0, 9), "/dev/pts/");
  EXPECT_EQ(ask("*IDN?"), "RPELMORA,QX7205A,SN001234,V1.05\r\n");
  EXPECT_EQ(ask("PPACQS? 1"), "RPPACQS 1,OFF\r\n");
  EXPECT_EQ(ask("*CLS; *ESE 56; *OPC?"), "R1\r\n");
  ask("*ESE?");  // what came before is recorded by then
  EXPECT_NE(record().find("< \"*IDN?\" CR\n"), std::string::npos);
  EXPECT_NE(record().find("> 4 \"R1\\r\\n\"\n"), std::string::npos);
}

TEST_F(SerialMeter, SendsWholeTraces) {
  start({}, {"--baud", "0"});
  EXPECT_EQ(ask("TR1 1"), "RTR1 1\r\n");
  const std::string reply = ask("PMPO 1");
  EXPECT_EQ(reply.substr(0, 12), "RPMPO 1,400,");
  EXPECT_EQ(levels(reply).size(), 400u);
}

TEST_F(SerialMeter, PacesAtTheLinesSpeed) {
  start();
  double best = 1e9;  // of a few, since a busy machine may wake either side late
  double wire = 0;
  for (int i = 0; i < 8 && !(best <= 1.005); ++i) {
    const TimePoint began = Clock::now();
    const std::string reply = ask("PMPO 1");
    const double took = secondsSince(began);
    ASSERT_GT(reply.size(), 2500u);
    wire = static_cast<double>(reply.size()) * 10 / 57600;
    ASSERT_GE(took, wire * 0.995);
    best = std::min(best, took / wire);
  }
  EXPECT_LE(best, 1.005);
}

TEST_F(SerialMeter, BytesComeEvenly) {
  start({}, {"--baud", "19200"});
  const TimePoint began = Clock::now();
  tell("PMPO 1");
  double worst = 0;
  double total = 0;
  for (std::string all; all.empty() || all.back() != '\n';) {
    std::array<char, 256> buffer{};
    const ssize_t count = ::read(line, buffer.data(), buffer.size());
    ASSERT_GT(count, 0);
    all.append(buffer.data(), static_cast<std::size_t>(count));
    total += static_cast<double>(count);
    worst = std::max(worst, total * 10 / 19200 - secondsSince(began));
  }
  EXPECT_LT(worst, 0.001);  // never ahead of the line
}

TEST_F(SerialMeter, FollowsAChangeOfSpeed) {
  start();
  termios settings{};
  ::tcgetattr(line, &settings);
  ::cfsetspeed(&settings, B1200);
  ::tcsetattr(line, TCSANOW, &settings);
  const TimePoint began = Clock::now();
  const std::string reply = ask("*IDN?");
  const double wire = static_cast<double>(reply.size()) * 10 / 1200;
  EXPECT_GE(secondsSince(began), wire * 0.995);
  EXPECT_LT(secondsSince(began), wire + 0.5);
}

TEST_F(SerialMeter, ReportsACommandBeforeTheLastByte) {
  start({}, {"--baud", "9600"});
  tell("PMPO 1");
  std::this_thread::sleep_for(milliseconds(50));
  tell("*OPC?");
  const std::string reply = read();
  EXPECT_EQ(reply.substr(reply.size() - 4), "R1\r\n");
  EXPECT_EQ(countKind(record(), "INTERRUPTED"), 1);
  EXPECT_EQ(ask("*ESR?"), "R132\r\n");
}

TEST_F(SerialMeter, OneExchangeAfterTheOtherInterruptsNothing) {
  start({}, {"--baud", "0"});
  for (int i = 0; i < 200; ++i) ASSERT_EQ(ask("*OPC?"), "R1\r\n");
  EXPECT_EQ(countKind(record(), "INTERRUPTED"), 0);
}

TEST_F(SerialMeter, SurvivesClosingAndOpening) {
  start();
  ask("*IDN?");
  ::close(line);
  std::this_thread::sleep_for(milliseconds(50));
  open();
  EXPECT_EQ(ask("*OPC?"), "R1\r\n");
}

TEST_F(SerialMeter, LiftsTheClaimOfAProgramThatMayJustEnd) {
  start();
  ASSERT_EQ(::ioctl(line, TIOCEXCL), 0);
  ask("*OPC?");
  int claimed = 1;
  ASSERT_EQ(::ioctl(line, TIOCGEXCL, &claimed), 0);
  EXPECT_EQ(claimed, 0);
}

TEST_F(SerialMeter, SurvivesAReaderThatNeverReads) {
  start({}, {"--baud", "0"});
  for (int i = 0; i < 30; ++i) tell("PMPO 1");
  tell("*CLS");  // drops what is left of the last reply
  const TimePoint began = Clock::now();
  while (record().find("\"*CLS\"") == std::string::npos && secondsSince(began) < 5) {
    std::this_thread::sleep_for(milliseconds(5));
  }
  ::tcflush(line, TCIFLUSH);
  EXPECT_EQ(ask("*OPC?"), "R1\r\n");
}

TEST_F(SerialMeter, CostsNothingWhileIdle) {
  start();
  ask("*OPC?");
  const auto ticks = [&] {
    std::istringstream words(readFile("/proc/" + std::to_string(program->process()) + "/stat"));
    std::string word;
    long total = 0;
    for (int i = 1; i <= 15 && (words >> word); ++i) {
      if (i >= 14) total += std::stol(word);
    }
    return total;
  };
  const auto switches = [&] {
    const std::string status = readFile("/proc/" + std::to_string(program->process()) + "/status");
    const std::string key = "\nvoluntary_ctxt_switches:";
    return std::stol(status.substr(status.find(key) + key.size()));
  };
  // One quiet spell is enough: on a busy machine the end of the exchange may come late, while a
  // program that polls has no quiet spell at all.
  bool quiet = false;
  for (int i = 0; i < 10 && !quiet; ++i) {
    const long ticksBefore = ticks();
    const long switchesBefore = switches();
    std::this_thread::sleep_for(milliseconds(300));
    quiet = ticks() == ticksBefore && switches() == switchesBefore;
  }
  EXPECT_TRUE(quiet);
}

TEST_F(SerialMeter, LaysAndRemovesItsLink) {
  start({}, {"--link", folder / "ports/com1"});
  EXPECT_EQ(std::filesystem::read_symlink(folder / "ports/com1"), device);
  program->signal(SIGTERM);
  EXPECT_EQ(program->wait(), 0);
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "ports/com1"));
  EXPECT_EQ(countKind(record(), "OFFLINE"), 1);
}

TEST_F(SerialMeter, ReplacesAnOldLink) {
  std::filesystem::create_symlink("/nowhere", folder / "com1");
  start({}, {"--link", folder / "com1"});
  EXPECT_EQ(std::filesystem::read_symlink(folder / "com1"), device);
  program->signal(SIGINT);
  EXPECT_EQ(program->wait(), 0);
}

TEST_F(SerialMeter, LeavesAFileAlone) {
  writeFile(folder / "precious", "data");
  MeterProgram refused(SIMMETER_PROGRAM, {"--link", folder / "precious"}, folder / "errors");
  EXPECT_EQ(refused.firstLine(), "");
  EXPECT_EQ(refused.wait(), 1);
  EXPECT_EQ(readFile(folder / "precious"), "data");
  EXPECT_NE(readFile(folder / "errors").find("not a symbolic link"), std::string::npos);
}

TEST_F(SerialMeter, RefusesABadScenario) {
  writeFile(folder / "scenario", "modle = X\n");
  MeterProgram refused(SIMMETER_PROGRAM, {"--scenario", folder / "scenario"}, folder / "errors");
  EXPECT_EQ(refused.wait(), 2);
  EXPECT_NE(readFile(folder / "errors").find("line 1: unknown key 'modle'"), std::string::npos);
}

TEST_F(SerialMeter, RefusesUnknownOptions) {
  MeterProgram unknown(SIMMETER_PROGRAM, {"--speed"}, folder / "errors");
  EXPECT_EQ(unknown.wait(), 2);
  MeterProgram incomplete(SIMMETER_PROGRAM, {"--baud"}, folder / "errors");
  EXPECT_EQ(incomplete.wait(), 2);
  MeterProgram wrong(SIMMETER_PROGRAM, {"--baud", "fast"}, folder / "errors");
  EXPECT_EQ(wrong.wait(), 2);
}

TEST_F(SerialMeter, HelpsAndSaysItsVersion) {
  MeterProgram help(SIMMETER_PROGRAM, {"--help"}, folder / "errors");
  EXPECT_EQ(help.firstLine(), "Usage: simulated-meter [options]");
  EXPECT_EQ(help.wait(), 0);
  MeterProgram version(SIMMETER_PROGRAM, {"--version"}, folder / "errors");
  EXPECT_EQ(version.firstLine().substr(0, 16), "simulated-meter ");
  EXPECT_EQ(version.wait(), 0);
}

TEST_F(SerialMeter, HangsUpOnDemand) {
  start("fault = PMPO, 1, hang-up\n", {"--link", folder / "com1"});
  EXPECT_EQ(ask("*OPC?"), "R1\r\n");
  tell("PMPO 1");
  EXPECT_EQ(program->wait(), 0);
  EXPECT_EQ(read(), "");
  std::array<char, 8> buffer{};
  EXPECT_LE(::read(line, buffer.data(), buffer.size()), 0);
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "com1"));
}

TEST_F(SerialMeter, FaultsShowOnTheLine) {
  start(
      "fault = *IDN?, 1, late 60\n"
      "fault = *IDN?, 2, cut 8\n"
      "fault = *IDN?, 3, bytewise 3\n"
      "fault = *IDN?, 4, stall 8 600\n"
      "fault = *IDN?, 5, missing\n"
      "fault = *IDN?, 6, empty\n"
      "fault = *IDN?, 7, raw xxR7\\r\\n\n",
      {"--baud", "0"});
  TimePoint began = Clock::now();
  EXPECT_EQ(ask("*IDN?").size(), 33u);
  EXPECT_GE(secondsSince(began), 0.06);
  tell("*IDN?");
  EXPECT_EQ(read(milliseconds(200)), "RPELMORA");
  began = Clock::now();
  EXPECT_EQ(ask("*IDN?").size(), 33u);
  EXPECT_GE(secondsSince(began), 0.099);
  tell("*IDN?");
  EXPECT_EQ(read(milliseconds(200)), "RPELMORA");
  EXPECT_EQ(read().size(), 25u);
  tell("*IDN?");
  EXPECT_EQ(read(milliseconds(200)), "");
  EXPECT_EQ(ask("*IDN?"), "R\r\n");
  EXPECT_EQ(ask("*IDN?"), "xxR7\r\n");
  EXPECT_EQ(ask("*IDN?").size(), 33u);
  EXPECT_EQ(countKind(record(), "FAULT"), 7);
  EXPECT_EQ(countKind(record(), "INTERRUPTED"), 0);
}

}  // namespace
}  // namespace simmeter
