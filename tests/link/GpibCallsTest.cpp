#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "link/GpibCalls.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

using Calls = std::vector<std::string>;

constexpr std::int16_t errorBitAlone = -32768;

/// Its calls publish the status that the test has set; a poll gives 0x30, also one that fails.
class StatusLibrary : public FakeGpib {
 public:
  using FakeGpib::FakeGpib;
  int RegisterGpibGlobalsForThread(int* status, int* error, int* count, long* longCount) override {
    status_ = status;
    error_ = error;
    count_ = count;
    longCount_ = longCount;
    return 0;
  }
  void SendIFC(int) override {
    *status_ = nextStatus;
    *error_ = nextError;
    *count_ = nextCount;
    *longCount_ = nextCount;
  }
  void ReadStatusByte(int, int, short* statusByte) override {
    *statusByte = 0x30;
    SendIFC(0);
  }
  int nextStatus = 0;
  int nextError = 0;
  int nextCount = 0;

 private:
  int* status_ = nullptr;
  int* error_ = nullptr;
  int* count_ = nullptr;
  long* longCount_ = nullptr;
};

class GpibCalls : public testing::Test {
 protected:
  /// The same world with another library.
  const Services& worldWith(GpibLibrary& library) {
    replaced_.emplace(Services{world.clock, world.events, library, world.serial, world.store,
                               world.dialogs, world.fileDialogs, world.files, world.progress,
                               world.programEnd});
    return *replaced_;
  }

  FakeWorld world;

 private:
  std::optional<Services> replaced_;
};

TEST_F(GpibCalls, TheFirstCallRegistersTheVariablesAndLaterOnesDoNot) {
  SendIFC(0);
  DevClear(0, 13);
  Send(0, 13, "*CLS");
  EXPECT_EQ(world.gpib.calls, (Calls{"Register", "SendIFC 0", "DevClear 0 13", "Send 13 *CLS"}));
  EXPECT_EQ(Gpib.registered, -1);
  EXPECT_FALSE(gpibFailed());
}

TEST_F(GpibCalls, EveryCallRegistersWhenItIsTheFirst) {
  std::array<char, 10> buffer{};
  const std::vector<std::pair<std::string, std::function<void()>>> rows = {
      {"SendIFC 0", [] { SendIFC(0); }},
      {"DevClear 0 5", [] { DevClear(0, 5); }},
      {"Send 5 X", [] { Send(0, 5, "X"); }},
      {"Receive 5", [&buffer] { Receive(0, 5, buffer.data(), buffer.size()); }},
      {"ReadStatusByte 5", [] { ReadStatusByte(0, 5); }},
      {"ibfindA GPIB0", [] { ibfindA("GPIB0"); }},
      {"ibonl 7 0", [] { ibonl(7, 0); }},
  };
  for (const auto& [call, run] : rows) {
    Gpib = GpibVariables{};
    world.gpib.calls.clear();
    run();
    EXPECT_EQ(world.gpib.calls, (Calls{"Register", call}));
  }
}

TEST_F(GpibCalls, AlreadyRegisteredVariablesAreRegisteredAnew) {
  world.gpib.registrationResults = {1, 0};
  SendIFC(0);
  EXPECT_EQ(world.gpib.calls, (Calls{"Register", "Unregister", "Register", "SendIFC 0"}));
  EXPECT_EQ(Gpib.registered, -1);
  EXPECT_FALSE(gpibFailed());
}

TEST_F(GpibCalls, ARefusalThatRegisteredSomethingIsUndoneAndFails) {
  for (const int result : {2, 3}) {
    Gpib = GpibVariables{};
    Gpib.libraryError = 6;
    world.gpib.calls.clear();
    world.gpib.registrationResults = {result};
    SendIFC(0);
    EXPECT_EQ(world.gpib.calls, (Calls{"Register", "Unregister"})) << result;
    EXPECT_EQ(Gpib.registered, 0);
    EXPECT_EQ(Gpib.status, errorBitAlone);
    EXPECT_EQ(Gpib.error, 0);
    EXPECT_EQ(Gpib.longCount, static_cast<std::int32_t>(0xDEAD37F0U));
    EXPECT_TRUE(gpibFailed());
  }
}

TEST_F(GpibCalls, AnyOtherRefusalFailsWithoutUnregistering) {
  for (const int result : {4, -1, 99}) {
    Gpib = GpibVariables{};
    Gpib.libraryError = 6;
    world.gpib.calls.clear();
    world.gpib.registrationResults = {result};
    SendIFC(0);
    EXPECT_EQ(world.gpib.calls, (Calls{"Register"})) << result;
    EXPECT_EQ(Gpib.registered, 0);
    EXPECT_EQ(Gpib.status, errorBitAlone);
    EXPECT_EQ(Gpib.error, 0);
    EXPECT_EQ(Gpib.longCount, static_cast<std::int32_t>(0xDEAD37F0U));
  }
}

TEST_F(GpibCalls, AFailedRegistrationIsTriedAgainAtTheNextCall) {
  world.gpib.registrationResults = {4, 2, 0};
  SendIFC(0);
  SendIFC(0);
  SendIFC(0);
  EXPECT_EQ(world.gpib.calls,
            (Calls{"Register", "Register", "Unregister", "Register", "SendIFC 0"}));
  EXPECT_FALSE(gpibFailed());
}

TEST_F(GpibCalls, ResultsOfCallsThatWereNotMade) {
  world.gpib.registrationResults = {4, 4};
  EXPECT_EQ(ReadStatusByte(0, 13), 0);
  EXPECT_LT(ibfindA("GPIB0"), 0);
}

TEST_F(GpibCalls, TheStatusIsCopiedInSixteenBits) {
  StatusLibrary library(world.meter);
  const ServicesGuard guard(worldWith(library));
  library.nextStatus = 0x8100;
  library.nextError = 6;
  library.nextCount = 0x12345;
  SendIFC(0);
  EXPECT_EQ(Gpib.status, -32512);
  EXPECT_EQ(Gpib.error, 6);
  EXPECT_EQ(Gpib.count, 0x2345);
  EXPECT_EQ(Gpib.longCount, 0x12345);
  EXPECT_TRUE(gpibFailed());
  library.nextStatus = 0x0100;
  library.nextError = 0;
  SendIFC(0);
  EXPECT_EQ(Gpib.status, 0x0100);
  EXPECT_EQ(Gpib.error, 0);
  EXPECT_FALSE(gpibFailed());
}

TEST_F(GpibCalls, CommandsEndWithNewlineAndEoi) {
  Send(0, 13, "*IDN?");
  EXPECT_EQ(world.gpib.lastEnd, GpibEnd::newlineWithEoi);
  EXPECT_EQ(static_cast<int>(world.gpib.lastEnd), 1);
  EXPECT_EQ(world.gpib.lastBoard, 0);
  EXPECT_EQ(world.meter.received, (Transcript{"*IDN?"}));
  EXPECT_EQ(Gpib.longCount, 5);
  EXPECT_EQ(Gpib.count, 5);
}

TEST_F(GpibCalls, ReadsStopAtEoiAndTellHowMuchCame) {
  world.gpib.output = "abc\n";
  std::array<char, 10> buffer{};
  Receive(0, 13, buffer.data(), buffer.size());
  EXPECT_EQ(world.gpib.lastTermination, 0x100);
  EXPECT_EQ(world.gpib.lastSize, buffer.size());
  EXPECT_EQ(Gpib.longCount, 4);
  EXPECT_EQ(std::string(buffer.data(), 4), "abc\n");
}

TEST_F(GpibCalls, AFailedPollGivesNoStatusByte) {
  StatusLibrary library(world.meter);
  const ServicesGuard guard(worldWith(library));
  EXPECT_EQ(ReadStatusByte(0, 13), 0x30);
  library.nextStatus = 0x8000;
  EXPECT_EQ(ReadStatusByte(0, 13), 0);
  EXPECT_TRUE(gpibFailed());
}

TEST_F(GpibCalls, FailuresAreToldInWords) {
  const std::string board =
      "The GPIB board \"GPIB0\" is not there, or is not configured as the system controller.";
  const std::string meter = "No power meter answers at GPIB address 21.";
  struct Row {
    int code;
    std::string reason;
  };
  const Row rows[] = {{0, board}, {1, board}, {7, board}, {2, meter}, {6, meter}, {14, meter}};
  for (const Row& row : rows) {
    world.gpib.failureCode = row.code;
    world.gpib.failNext["SendIFC"] = 1;
    SendIFC(0);
    EXPECT_EQ(gpibFailureReason(21), row.reason) << row.code;
  }
  SendIFC(0);
  EXPECT_EQ(gpibFailureReason(21), "");
}

TEST_F(GpibCalls, AnUnusableLibraryTellsItsOwnReason) {
  world.gpib.reason = "libgpib.so.0 was not found.";
  world.gpib.registrationResults = {4};
  SendIFC(0);
  EXPECT_EQ(gpibFailureReason(13), "libgpib.so.0 was not found.");
}

}  // namespace
}  // namespace pulsemod::test
