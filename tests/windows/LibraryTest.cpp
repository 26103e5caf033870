#include <windows.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "CallingConvention.h"
#include "Check.h"
#include "FakeGpib32.h"
#include "host/SharedGpibLibrary.h"
#include "link/GpibCalls.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

/// The program's GPIB link on Windows, from the exchanges down to a loaded Gpib-32.dll.

namespace pulsemod::test {
namespace {

constexpr std::int16_t errorBitAlone = -32768;
constexpr auto marker = static_cast<std::int32_t>(0xDEAD37F0U);

/// The stand-in that this process has loaded.
class Fake {
 public:
  Fake() { function<void()>("fakeGpibReset")(); }
  FakeGpib32State& state() { return *function<FakeGpib32State*()>("fakeGpibState")(); }
  std::string log() { return function<const char*()>("fakeGpibLog")(); }

  template <typename Signature>
  Signature* function(const char* name) {
    using Untyped = void (*)();
    return reinterpret_cast<Signature*>(
        reinterpret_cast<Untyped>(GetProcAddress(GetModuleHandleA("Gpib-32.dll"), name)));
  }
};

/// A fresh program on the stand-in.
struct Bench {
  Fake fake;
  FakeWorld world;
  SharedGpibLibrary library;
  Services services{world.clock,    world.events,    library,           world.serial,
                    world.store,    world.dialogs,   world.fileDialogs, world.files,
                    world.progress, world.programEnd};
  ServicesGuard guard{services};
};

void theLibraryIsLoadedByTheFirstCall() {
  SharedGpibLibrary library;
  expectEqual(GetModuleHandleA("Gpib-32.dll") == nullptr, true);
  // Loads it and does not reach it: how it is called is checked next.
  library.ibonl(-1, 0);
  expectEqual(GetModuleHandleA("Gpib-32.dll") == nullptr, false);
  expectEqual(library.unusableReason(), "");
}

void everyCallReachesTheLibraryWithItsArguments() {
  Bench bench;
  std::array<char, 50> buffer{};
  SendIFC(0);
  DevClear(0, 13);
  Send(0, 30, "*CLS");
  Receive(0, 1, buffer.data(), buffer.size());
  ReadStatusByte(0, 13);
  ibfindA("GPIB0");
  ibonl(17, 0);
  expectEqual(bench.fake.log(),
              "Register\nSendIFC 0\nDevClear 0 13\nSend 0 30 [*CLS] 1\nReceive 0 1 50 256\n"
              "ReadStatusByte 0 13\nibfindA GPIB0\nibonl 17 0\n");
}

void endsOfMessagesHaveTheLibrarysNumbers() {
  Bench bench;
  bench.library.Send(0, 13, "A", GpibEnd::newlineWithEoi);
  bench.library.Send(0, 13, "B", GpibEnd::eoi);
  bench.library.Send(0, 13, "C", GpibEnd::none);
  expectEqual(bench.fake.log(), "Send 0 13 [A] 1\nSend 0 13 [B] 2\nSend 0 13 [C] 0\n");
}

void variablesThatWereRegisteredBeforeAreReplaced() {
  Bench bench;
  int earlierStatus = 55;
  int earlier = 0;
  long earlierLongCount = 0;
  bench.fake.function<int __stdcall(int*, int*, int*, long*)>("RegisterGpibGlobalsForThread")(
      &earlierStatus, &earlier, &earlier, &earlierLongCount);
  SendIFC(0);
  expectEqual(bench.fake.log(), "Register\nRegister\nUnregister\nRegister\nSendIFC 0\n");
  expectEqual(Gpib.registered, -1);
  expectEqual(Gpib.status, 0x100);
  expectEqual(earlierStatus, 55);
}

void aRefusedRegistrationFailsTheCall() {
  struct Row {
    int result;
    const char* log;
  };
  const Row rows[] = {
      {2, "Register\nUnregister\n"},
      {3, "Register\nUnregister\n"},
      {4, "Register\n"},
      {-1, "Register\n"},
      {99, "Register\n"},
  };
  for (const Row& row : rows) {
    Bench bench;
    Gpib.libraryError = 6;
    bench.fake.state().registrationResult = row.result;
    SendIFC(0);
    expectEqual(bench.fake.log(), row.log, row.result);
    expectEqual(Gpib.registered, 0, row.result);
    expectEqual(Gpib.status, errorBitAlone, row.result);
    expectEqual(Gpib.error, 0, row.result);
    expectEqual(Gpib.longCount, marker, row.result);
  }
}

void aRefusedRegistrationIsTriedAgain() {
  Bench bench;
  bench.fake.state().registrationResult = 2;
  SendIFC(0);
  bench.fake.state().registrationResult = FakeGpib32State::asUsual;
  SendIFC(0);
  expectEqual(bench.fake.log(), "Register\nUnregister\nRegister\nSendIFC 0\n");
  expectEqual(Gpib.status, 0x100);
}

void theStatusIsCopiedAfterEachCall() {
  Bench bench;
  FakeGpib32State& state = bench.fake.state();
  std::array<char, 8> buffer{};
  const std::vector<std::function<void()>> calls = {
      [] { SendIFC(0); },
      [] { DevClear(0, 13); },
      [] { Send(0, 13, "A"); },
      [&] { Receive(0, 13, buffer.data(), buffer.size()); },
      [] { ReadStatusByte(0, 13); },
      [] { ibfindA("GPIB0"); },
      [] { ibonl(17, 0); },
  };
  std::int16_t error = 0;
  for (const std::function<void()>& call : calls) {
    ++error;
    state.status = 0xC100;
    state.error = error;
    state.count = 0x12300 + error;
    state.longCount = 0;
    state.reply = "";
    call();
    expectEqual(Gpib.status, -0x3F00, error);
    expectEqual(Gpib.error, error, error);
    expectEqual(Gpib.count, 0x2300 + error, error);
    expectEqual(Gpib.longCount, 0, error);
    expectEqual(gpibFailed(), true, error);
  }
  state.status = 0x100;
  state.longCount = 0x12345678;
  SendIFC(0);
  expectEqual(Gpib.longCount, 0x12345678);
  expectEqual(gpibFailed(), false);
}

void aReceivedReplyIsInTheBufferAndCounted() {
  Bench bench;
  bench.fake.state().reply = "QX7105A\n";
  std::array<char, 50> buffer{};
  Receive(0, 13, buffer.data(), buffer.size());
  expectEqual(std::string(buffer.data()), "QX7105A\n");
  expectEqual(Gpib.longCount, 8);
}

void aPollGivesTheStatusByteUnlessItFails() {
  Bench bench;
  bench.fake.state().statusByte = 0x30;
  expectEqual(ReadStatusByte(0, 13), 0x30);
  bench.fake.state().status = 0x8000;
  expectEqual(ReadStatusByte(0, 13), 0);
}

void anExchangeOfTheProgram() {
  Bench bench;
  OpenMeterLink();
  bench.fake.state().reply = "QX7105A,1.0\n";
  std::string reply;
  expectEqual(QueryMeter("*IDN?", reply), true);
  expectEqual(reply, "QX7105A,1.0");
  CloseMeterLink();
  expectEqual(bench.fake.log(),
              "Register\nSendIFC 0\nDevClear 0 13\nSend 0 13 [*IDN?] 1\nReceive 0 13 4096 256\n"
              "ReadStatusByte 0 13\nibfindA GPIB0\nibonl 17 0\n");
}

void aBoardThatIsNotFoundIsNotUsed() {
  Bench bench;
  bench.fake.state().foundDescriptor = -1;
  CloseMeterLink();
  expectEqual(bench.fake.log(), "Register\nibfindA GPIB0\n");
  expectEqual(Gpib.status, errorBitAlone);
  expectEqual(Gpib.error, 4);
}

std::string reasonAgainst(const char* libraryName) {
  return loadGpibLibrary(libraryName).unusableReason;
}

void aLibraryThatCannotBeUsedIsNamed() {
  expectEqual(reasonAgainst("Gpib-not-there.dll"),
              "The GPIB library Gpib-not-there.dll could not be loaded (error 126). Install the "
              "driver of the GPIB board.");
  expectEqual(reasonAgainst("Gpib-broken.dll"),
              "The GPIB library Gpib-broken.dll could not be loaded (error 193). Install the "
              "driver of the GPIB board.");
  expectEqual(reasonAgainst("Gpib-incomplete.dll"),
              "The GPIB library Gpib-incomplete.dll has no function Receive. Install a current "
              "driver of the GPIB board.");
}

void withoutALibraryNothingIsDone() {
  Bench bench;
  SharedGpibLibrary none([] { return loadGpibLibrary("Gpib-not-there.dll"); });
  int number = 7;
  long longCount = 7;
  short statusByte = 7;
  expectEqual(none.RegisterGpibGlobalsForThread(&number, &number, &number, &longCount), 4);
  expectEqual(none.UnregisterGpibGlobalsForThread(), 4);
  none.SendIFC(0);
  none.ReadStatusByte(0, 13, &statusByte);
  expectEqual(none.ibfindA("GPIB0"), -1);
  expectEqual(none.ibonl(17, 0), gpibStatusError);
  expectEqual(number, 7);
  expectEqual(statusByte, 7);
  expectEqual(bench.fake.log(), "");
}

struct Test {
  const char* name;
  void (*run)();
};

int runAll() {
  const Test tests[] = {
      {"TheLibraryIsLoadedByTheFirstCall", theLibraryIsLoadedByTheFirstCall},
      {"CallingConvention", checkCallingConvention},
      {"EveryCallReachesTheLibraryWithItsArguments", everyCallReachesTheLibraryWithItsArguments},
      {"EndsOfMessagesHaveTheLibrarysNumbers", endsOfMessagesHaveTheLibrarysNumbers},
      {"VariablesThatWereRegisteredBeforeAreReplaced",
       variablesThatWereRegisteredBeforeAreReplaced},
      {"ARefusedRegistrationFailsTheCall", aRefusedRegistrationFailsTheCall},
      {"ARefusedRegistrationIsTriedAgain", aRefusedRegistrationIsTriedAgain},
      {"TheStatusIsCopiedAfterEachCall", theStatusIsCopiedAfterEachCall},
      {"AReceivedReplyIsInTheBufferAndCounted", aReceivedReplyIsInTheBufferAndCounted},
      {"APollGivesTheStatusByteUnlessItFails", aPollGivesTheStatusByteUnlessItFails},
      {"AnExchangeOfTheProgram", anExchangeOfTheProgram},
      {"ABoardThatIsNotFoundIsNotUsed", aBoardThatIsNotFoundIsNotUsed},
      {"ALibraryThatCannotBeUsedIsNamed", aLibraryThatCannotBeUsedIsNamed},
      {"WithoutALibraryNothingIsDone", withoutALibraryNothingIsDone},
  };
  for (const Test& test : tests) {
    const CheckCounts before = checkCounts;
    test.run();
    const bool passed = checkCounts.failed == before.failed && checkCounts.made > before.made;
    std::cout << (passed ? "passed " : "FAILED ") << test.name << std::endl;
    // What follows would only lose its way on the stack, or has no library.
    if (!passed) return 1;
  }
  std::cout << checkCounts.made << " checks, all passed" << std::endl;
  return 0;
}

}  // namespace
}  // namespace pulsemod::test

int main() { return pulsemod::test::runAll(); }
