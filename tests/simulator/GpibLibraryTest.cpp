// The built library through its C calls, loaded as its users load it.
#include <elf.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <chrono>
#include <cstring>
#include <set>
#include <thread>

#include "Bench.h"
#include "GpibBus.h"
#include "GpibCalls.h"

namespace simmeter {
namespace {

using std::chrono::milliseconds;

class GpibLibrary : public testing::Test, protected GpibCalls {
 protected:
  // A copy for each test, since a library is loaded once and keeps its meter.
  void load(std::string_view scenario = {}) {
    writeFile(folder_ / "scenario", scenario);
    ::setenv("SIMULATED_METER_SCENARIO", (folder_ / "scenario").c_str(), 1);
    ::setenv("SIMULATED_METER_TRANSCRIPT", (folder_ / "transcript").c_str(), 1);
    const std::string copy = folder_ / "libgpib.so.0";
    std::filesystem::copy_file(SIMMETER_LIBRARY, copy);
    ASSERT_EQ(loadFrom(copy), "");
  }

  void start(std::string_view scenario = {}) {
    load(scenario);
    SendIFC(0);
  }

  bool send(std::string_view text, int end = 2) {
    Send(0, 13, text.data(), static_cast<long>(text.size()), end);
    return (ThreadIbsta() & ibsta::kError) == 0;
  }

  std::string receive(long most = 4096) {
    std::string buffer(static_cast<std::size_t>(most), '\0');
    Receive(0, 13, buffer.data(), most, 0x100);
    buffer.resize(static_cast<std::size_t>(ThreadIbcntl()));
    return buffer;
  }

  std::string ask(std::string_view text) {
    send(text);
    return receive();
  }

  int poll() {
    short status = -1;
    ReadStatusByte(0, 13, &status);
    return status;
  }

  std::string record() { return readFile(folder_ / "transcript"); }

 private:
  TemporaryFolder folder_;
};

double secondsSince(TimePoint began) {
  return std::chrono::duration<double>(Clock::now() - began).count();
}

TEST_F(GpibLibrary, IsNotInChargeBeforeInterfaceClear) {
  load();
  EXPECT_FALSE(send("*IDN?"));
  EXPECT_EQ(ThreadIberr(), 1);
  EXPECT_EQ(ThreadIbsta() & ibsta::kInCharge, 0);
  SendIFC(0);
  EXPECT_EQ(ThreadIbsta(), ibsta::kComplete | ibsta::kInCharge);
  EXPECT_TRUE(send("*IDN?"));
}

TEST_F(GpibLibrary, AnswersWithEnd) {
  start();
  EXPECT_TRUE(send("*IDN?"));
  EXPECT_EQ(ThreadIbcntl(), 5);
  EXPECT_EQ(receive(), "PELMORA,QX7205A,SN001234,V1.05\r\n");
  EXPECT_EQ(ThreadIbsta(), ibsta::kComplete | ibsta::kEnd | ibsta::kInCharge);
}

TEST_F(GpibLibrary, SmallBuffersGetTheReplyInChunks) {
  start();
  send("*IDN?");
  EXPECT_EQ(receive(10), "PELMORA,QX");
  EXPECT_EQ(ThreadIbsta() & ibsta::kEnd, 0);
  EXPECT_EQ(poll(), 16);
  EXPECT_EQ(receive(22), "7205A,SN001234,V1.05\r\n");
  EXPECT_NE(ThreadIbsta() & ibsta::kEnd, 0);
  EXPECT_EQ(poll(), 0);
}

TEST_F(GpibLibrary, LongRepliesNeedSeveralReceives) {
  start();
  send("PMPO 1;PMPO 2");
  const std::string first = receive();
  EXPECT_EQ(first.size(), 4096u);
  EXPECT_EQ(ThreadIbsta() & ibsta::kEnd, 0);
  const std::string rest = receive();
  EXPECT_NE(ThreadIbsta() & ibsta::kEnd, 0);
  EXPECT_NE((first + rest).find(";PMPO 2,400,"), std::string::npos);
}

TEST_F(GpibLibrary, StopsAtACharacter) {
  start();
  send("*IDN?");
  std::array<char, 64> buffer{};
  Receive(0, 13, buffer.data(), 64, ',');
  EXPECT_EQ(std::string(buffer.data(), static_cast<std::size_t>(ThreadIbcntl())), "PELMORA,");
  EXPECT_EQ(ThreadIbsta() & (ibsta::kEnd | ibsta::kError), 0);
}

TEST_F(GpibLibrary, EndModesAreTheLibrarysOwn) {
  start();
  send("CHDISPN 1", 2);
  send("CHDISPN 2", 1);
  send("CHDISPN 1\n", 0);
  const std::string text = record();
  EXPECT_NE(text.find("< \"CHDISPN 1\" NL+EOI"), std::string::npos);
  EXPECT_NE(text.find("< \"CHDISPN 2\" EOI"), std::string::npos);
  EXPECT_NE(text.find("< \"CHDISPN 1\" NL\n"), std::string::npos);
  EXPECT_FALSE(send("CHDISPN 1", 7));
  EXPECT_EQ(ThreadIberr(), iberr::kArgument);
}

TEST_F(GpibLibrary, NothingToSayTimesOut) {
  start("board-timeout = 60\n");
  const TimePoint began = Clock::now();
  EXPECT_EQ(receive(), "");
  EXPECT_GE(secondsSince(began), 0.06);
  EXPECT_LT(secondsSince(began), 0.6);  // and not the second it would be without the scenario
  EXPECT_EQ(ThreadIbsta(), ibsta::kError | ibsta::kTimeOut | ibsta::kComplete | ibsta::kInCharge);
  EXPECT_EQ(ThreadIberr(), iberr::kAborted);
  EXPECT_NE(record().find("ERROR query UNTERMINATED"), std::string::npos);
}

TEST_F(GpibLibrary, LateReplyIsWaitedFor) {
  start("board-timeout = 500\nfault = *OPC?, 1, late 60\n");
  const TimePoint began = Clock::now();
  EXPECT_EQ(ask("*OPC?"), "1\r\n");
  EXPECT_GE(secondsSince(began), 0.06);
  EXPECT_LT(secondsSince(began), 0.4);
}

TEST_F(GpibLibrary, TooLateAReplyCanBeReadAgain) {
  start("board-timeout = 150\nfault = *OPC?, 1, late 250\n");
  EXPECT_EQ(ask("*OPC?"), "");
  EXPECT_EQ(ThreadIberr(), iberr::kAborted);
  EXPECT_EQ(receive(), "1\r\n");
  EXPECT_EQ(countKind(record(), "INTERRUPTED-AFTER-TIMEOUT"), 0);
}

TEST_F(GpibLibrary, SendingAfterATimeOutIsToldApart) {
  start("board-timeout = 40\nfault = *OPC?, 1, late 5000\n");
  EXPECT_EQ(ask("*OPC?"), "");
  EXPECT_EQ(ask("*IDN?").size(), 32u);
  EXPECT_EQ(countKind(record(), "INTERRUPTED-AFTER-TIMEOUT"), 1);
  EXPECT_EQ(countKind(record(), "INTERRUPTED"), 0);
}

TEST_F(GpibLibrary, SendingOverAReplyIsAnInterruptedQuery) {
  start();
  send("*IDN?");
  EXPECT_EQ(ask("*OPC?"), "1\r\n");
  EXPECT_EQ(countKind(record(), "INTERRUPTED"), 1);
}

TEST_F(GpibLibrary, StalledReplyGivesWhatCameAndGoesOn) {
  start("board-timeout = 150\nfault = *IDN?, 1, stall 7 250\n");
  EXPECT_EQ(ask("*IDN?"), "PELMORA");
  EXPECT_NE(ThreadIbsta() & ibsta::kTimeOut, 0);
  EXPECT_EQ(ThreadIbcntl(), 7);
  EXPECT_EQ(receive().size(), 25u);
}

TEST_F(GpibLibrary, CutReplyTimesOutWithItsCount) {
  start("board-timeout = 40\nfault = PMPBO, 2, cut 100\n");
  EXPECT_EQ(ask("PMPBO 1").size(), 1607u);
  EXPECT_EQ(ask("PMPBO 1").size(), 100u);
  EXPECT_EQ(ThreadIberr(), iberr::kAborted);
  EXPECT_EQ(ask("*OPC?"), "1\r\n");
  EXPECT_EQ(countKind(record(), "ERROR"), 0);
}

TEST_F(GpibLibrary, ByteWiseReplyArrivesWhole) {
  start("fault = *OPC?, 1, bytewise 5\n");
  const TimePoint began = Clock::now();
  EXPECT_EQ(ask("*OPC?"), "1\r\n");
  EXPECT_GE(secondsSince(began), 0.015);
}

TEST_F(GpibLibrary, NobodyIsAtOtherAddresses) {
  start("address = 7\nboard-timeout = 30\n");
  EXPECT_FALSE(send("*IDN?"));
  EXPECT_EQ(ThreadIberr(), iberr::kNoListener);
  EXPECT_EQ(ThreadIbcntl(), 0);
  short status = -1;
  ReadStatusByte(0, 13, &status);
  EXPECT_EQ(ThreadIberr(), iberr::kAborted);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(receive(), "");
  EXPECT_EQ(ThreadIberr(), iberr::kAborted);
  Send(0, 7, "*OPC?", 5, 2);
  EXPECT_EQ(ThreadIbsta() & ibsta::kError, 0);
}

TEST_F(GpibLibrary, BadArgumentsAreRefused) {
  start();
  Send(0, 31, "x", 1, 2);
  EXPECT_EQ(ThreadIberr(), iberr::kArgument);
  Send(0, 13, nullptr, 1, 2);
  EXPECT_EQ(ThreadIberr(), iberr::kArgument);
  Receive(0, 13, nullptr, 10, 0x100);
  EXPECT_EQ(ThreadIberr(), iberr::kArgument);
  ReadStatusByte(0, 13, nullptr);
  EXPECT_EQ(ThreadIberr(), iberr::kArgument);
  SendIFC(1);
  EXPECT_EQ(ThreadIberr(), iberr::kDriver);
  EXPECT_NE(ThreadIbsta() & ibsta::kError, 0);
}

TEST_F(GpibLibrary, DeviceClearDropsTheReply) {
  start();
  send("*IDN?");
  DevClear(0, 13);
  EXPECT_EQ(poll(), 0);
  EXPECT_EQ(ask("*OPC?"), "1\r\n");
  EXPECT_EQ(countKind(record(), "CLEAR"), 1);
  EXPECT_EQ(countKind(record(), "IFC"), 1);
  EXPECT_EQ(countKind(record(), "INTERRUPTED"), 0);
}

TEST_F(GpibLibrary, BoardIsFoundAndTakenOffline) {
  start();
  const int descriptor = ibfind("GPIB0");
  EXPECT_EQ(descriptor, 0);
  EXPECT_EQ(ibfind("GPIB7"), -1);
  EXPECT_EQ(ThreadIberr(), iberr::kDriver);
  EXPECT_EQ(ibonl(descriptor, 0) & ibsta::kError, 0);
  EXPECT_FALSE(send("*IDN?"));
  EXPECT_EQ(ThreadIberr(), iberr::kNotOnline);
  EXPECT_EQ(countKind(record(), "OFFLINE"), 1);
  EXPECT_EQ(ibonl(-1, 0) & ibsta::kError, ibsta::kError);
  ibonl(0, 1);
  EXPECT_FALSE(send("*IDN?"));
  EXPECT_EQ(ThreadIberr(), iberr::kNotInCharge);
  SendIFC(0);
  EXPECT_TRUE(send("*IDN?"));
}

TEST_F(GpibLibrary, StatusByteShowsErrorsUntilCleared) {
  start();
  EXPECT_EQ(ask("*CLS; *ESE 56; *OPC?"), "1\r\n");
  send("TTSRC 1,NOISE");
  EXPECT_EQ(poll(), 32);
  EXPECT_EQ(ask("TTSRC? 1"), "TTSRC 1,CHANNEL\r\n");
  EXPECT_EQ(poll(), 32);
  EXPECT_EQ(ask("*CLS; *OPC?"), "1\r\n");
  EXPECT_EQ(poll(), 0);
}

TEST_F(GpibLibrary, ServiceRequestShowsInTheStatusWord) {
  start();
  send("*CLS;*SRE 16");
  send("*IDN?");
  EXPECT_NE(ThreadIbsta() & ibsta::kServiceRequest, 0);
  EXPECT_EQ(poll(), 16 | 64);
  EXPECT_EQ(ThreadIbsta() & ibsta::kServiceRequest, 0);
}

TEST_F(GpibLibrary, CallsFailOnDemand) {
  start(
      "board-timeout = 30\n"
      "fault = lib Receive, 2, error EABO\n"
      "fault = lib Send, 4, timeout\n"
      "fault = lib ReadStatusByte, 2, status 0x30\n");
  EXPECT_EQ(ask("*OPC?"), "1\r\n");
  EXPECT_EQ(ask("*OPC?"), "");
  EXPECT_EQ(ThreadIberr(), 6);
  EXPECT_EQ(receive(), "1\r\n");
  EXPECT_TRUE(send("CHDISPN 1"));
  const TimePoint began = Clock::now();
  EXPECT_FALSE(send("CHDISPN 1"));
  EXPECT_GE(secondsSince(began), 0.03);
  EXPECT_NE(ThreadIbsta() & ibsta::kTimeOut, 0);
  EXPECT_EQ(poll(), 0);
  EXPECT_EQ(poll(), 0x30);
  EXPECT_EQ(poll(), 0);
  EXPECT_EQ(countKind(record(), "FAULT"), 3);
}

TEST_F(GpibLibrary, LostLinkStaysLost) {
  start("fault = PMPBO, 1, hang-up\n");
  send("PMPBO 1");
  EXPECT_EQ(receive(), "");
  EXPECT_EQ(ThreadIberr(), iberr::kNotOnline);
  EXPECT_FALSE(send("*IDN?"));
  SendIFC(0);
  EXPECT_EQ(ThreadIberr(), iberr::kNotOnline);
  EXPECT_EQ(ibfind("GPIB0"), -1);
}

TEST_F(GpibLibrary, ACallCanLoseTheLink) {
  start("fault = lib ReadStatusByte, 1, hang-up\n");
  EXPECT_EQ(ask("*OPC?"), "1\r\n");
  EXPECT_EQ(poll(), -1);
  EXPECT_EQ(ThreadIberr(), iberr::kNotOnline);
  EXPECT_FALSE(send("*OPC?"));
  EXPECT_EQ(ThreadIberr(), iberr::kNotOnline);
}

TEST_F(GpibLibrary, ScenarioProblemsAreRecorded) {
  start("modle = X\n");
  EXPECT_NE(record().find("SCENARIO line 1: unknown key 'modle'"), std::string::npos);
}

TEST_F(GpibLibrary, StatusIsEachThreadsOwn) {
  start();
  send("*IDN?");
  int other = 0;
  std::thread([&] {
    send("x", 9);
    other = ThreadIberr();
  }).join();
  EXPECT_EQ(other, iberr::kArgument);
  EXPECT_EQ(ThreadIberr(), 0);
  EXPECT_EQ(ThreadIbcntl(), 5);
}

TEST_F(GpibLibrary, NothingIsLostWhenTheProcessEndsAtOnce) {
  load();
  const pid_t child = ::fork();
  if (child == 0) {
    SendIFC(0);
    send("CHDISPN 2");
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_NE(record().find("< \"CHDISPN 2\" NL+EOI\n"), std::string::npos);
}

// Names that a 64-bit ELF library defines for others.
std::set<std::string> exportedNames(const std::string& path) {
  const std::string file = readFile(path);
  const auto at = [&]<typename T>(std::size_t offset, T value) {
    std::memcpy(&value, file.data() + offset, sizeof value);
    return value;
  };
  std::set<std::string> names;
  const auto header = at(0, Elf64_Ehdr{});
  const auto section = [&](std::size_t index) {
    return at(header.e_shoff + index * sizeof(Elf64_Shdr), Elf64_Shdr{});
  };
  for (std::size_t i = 0; i < header.e_shnum; ++i) {
    const Elf64_Shdr symbols = section(i);
    if (symbols.sh_type != SHT_DYNSYM) continue;
    const Elf64_Shdr strings = section(symbols.sh_link);
    for (std::size_t k = 1; k < symbols.sh_size / sizeof(Elf64_Sym); ++k) {
      const auto symbol = at(symbols.sh_offset + k * sizeof(Elf64_Sym), Elf64_Sym{});
      if (symbol.st_shndx == SHN_UNDEF || ELF64_ST_BIND(symbol.st_info) == STB_LOCAL) continue;
      names.insert(file.data() + strings.sh_offset + symbol.st_name);
    }
  }
  return names;
}

TEST(GpibLibraryFile, ExportsOnlyTheCalls) {
  EXPECT_EQ(
      exportedNames(SIMMETER_LIBRARY),
      (std::set<std::string>{"SendIFC", "DevClear", "Send", "Receive", "ReadStatusByte", "ibfind",
                             "ibonl", "ThreadIbsta", "ThreadIberr", "ThreadIbcntl"}));
}

}  // namespace
}  // namespace simmeter
