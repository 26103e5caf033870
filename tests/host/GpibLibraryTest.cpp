#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "FakeGpibLibrary.h"
#include "host/SharedGpibLibrary.h"

namespace pulsemod::test {
namespace {

struct StatusVariables {
  int status = 1;
  int error = 2;
  int count = 3;
  long longCount = 4;

  int registerIn(GpibLibrary& library) {
    return library.RegisterGpibGlobalsForThread(&status, &error, &count, &longCount);
  }
};

/// The library found by its name, with variables registered.
class SystemGpib : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(variables.registerIn(library), 0) << library.unusableReason();
    loaded_ = dlopen("libgpib.so.0", RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(loaded_, nullptr);
    function<void()>("fakeGpibReset")();
  }
  void TearDown() override {
    if (loaded_ != nullptr) dlclose(loaded_);
  }

  FakeGpibState& state() { return *function<FakeGpibState*()>("fakeGpibState")(); }
  std::string log() { return function<const char*()>("fakeGpibLog")(); }

  SharedGpibLibrary library;
  StatusVariables variables;

 private:
  template <typename Signature>
  Signature* function(const char* name) {
    return reinterpret_cast<Signature*>(dlsym(loaded_, name));
  }
  void* loaded_ = nullptr;
};

TEST(GpibLoading, WaitsForTheFirstCall) {
  if (dlopen("libgpib.so.0", RTLD_NOW | RTLD_NOLOAD) != nullptr) {
    GTEST_SKIP() << "an earlier test of this process has loaded the library for good";
  }
  SharedGpibLibrary library;
  EXPECT_EQ(dlopen("libgpib.so.0", RTLD_NOW | RTLD_NOLOAD), nullptr);
  EXPECT_EQ(library.unusableReason(), "");
  library.SendIFC(0);
  void* loaded = dlopen("libgpib.so.0", RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(loaded, nullptr);
  dlclose(loaded);
  EXPECT_EQ(library.unusableReason(), "");
}

TEST_F(SystemGpib, CallsReachTheLibraryWithTheirArguments) {
  library.SendIFC(0);
  library.DevClear(0, 13);
  EXPECT_EQ(log(), "SendIFC 0\nDevClear 0 13\n");
}

TEST_F(SystemGpib, EndsOfMessagesHaveTheLibrarysNumbers) {
  library.Send(0, 13, "*IDN?", GpibEnd::newlineWithEoi);
  library.Send(0, 13, "A", GpibEnd::eoi);
  library.Send(0, 13, "B", GpibEnd::none);
  EXPECT_EQ(log(), "Send 0 13 [*IDN?] 2\nSend 0 13 [A] 1\nSend 0 13 [B] 0\n");
}

TEST_F(SystemGpib, SendsNoMoreThanTheTextItWasGiven) {
  const std::string_view part = std::string_view("ABCDEF").substr(1, 3);
  library.Send(0, 1, part, GpibEnd::none);
  EXPECT_EQ(log(), "Send 0 1 [BCD] 0\n");
}

TEST_F(SystemGpib, ReceiveFillsTheBufferAndTheCounts) {
  state().reply = "QX7105A\n";
  state().status = 0x2100;
  std::array<char, 50> buffer{};
  library.Receive(0, 30, buffer.data(), buffer.size(), gpibStopOnEoi);
  EXPECT_EQ(log(), "Receive 0 30 50 256\n");
  EXPECT_STREQ(buffer.data(), "QX7105A\n");
  EXPECT_EQ(variables.longCount, 8);
  EXPECT_EQ(variables.count, 8);
  EXPECT_EQ(variables.status, 0x2100);
}

TEST_F(SystemGpib, StatusIsCopiedAfterEachCall) {
  int error = 0;
  const auto copied = [&](const auto& call) {
    state().status = 0xC000;
    state().error = ++error;
    state().longCount = 1000 + error;
    call();
    EXPECT_EQ(variables.status, 0xC000) << error;
    EXPECT_EQ(variables.error, error);
    EXPECT_EQ(variables.longCount, 1000 + error);
    variables = {};
  };
  short statusByte = 0;
  copied([&] { library.SendIFC(0); });
  copied([&] { library.DevClear(0, 13); });
  copied([&] { library.Send(0, 13, "", GpibEnd::none); });
  copied([&] { library.ReadStatusByte(0, 13, &statusByte); });
  copied([&] { library.ibonl(0, 0); });
}

TEST_F(SystemGpib, StatusIsNotCopiedOnceUnregistered) {
  EXPECT_EQ(library.UnregisterGpibGlobalsForThread(), 0);
  variables = {};
  state().status = 0x8000;
  library.SendIFC(0);
  EXPECT_EQ(variables.status, 1);
  EXPECT_EQ(log(), "SendIFC 0\n");
}

TEST_F(SystemGpib, SerialPollGivesTheStatusByte) {
  state().statusByte = 0x30;
  short statusByte = 0;
  library.ReadStatusByte(0, 13, &statusByte);
  EXPECT_EQ(statusByte, 0x30);
}

TEST_F(SystemGpib, ANamedBoardHasTheDescriptorOfTheConfiguration) {
  EXPECT_EQ(library.ibfindA("GPIB0"), 17);
  library.ibonl(17, 0);
  EXPECT_EQ(log(), "ibfind GPIB0\nibonl 17 0\n");
}

TEST_F(SystemGpib, AnUnnamedBoardIsFoundByItsIndex) {
  state().foundDescriptor = -1;
  EXPECT_EQ(library.ibfindA("GPIB0"), 0);
  EXPECT_EQ(variables.status & gpibStatusError, 0);
  EXPECT_EQ(library.ibfindA("GPIB3"), 3);
}

TEST_F(SystemGpib, OtherNamesAreNoIndices) {
  state().foundDescriptor = -1;
  for (const char* name : {"GPIB", "GPIBx", "GPIB10", "gpib0", "meter0", ""}) {
    EXPECT_EQ(library.ibfindA(name), -1) << name;
    EXPECT_NE(variables.status & gpibStatusError, 0) << name;
  }
}

TEST_F(SystemGpib, ADescriptorBelowZeroIsNeverUsed) {
  EXPECT_NE(library.ibonl(-1, 0) & gpibStatusError, 0);
  EXPECT_EQ(log(), "");
  EXPECT_EQ(variables.status, gpibStatusError);
  EXPECT_EQ(variables.error, 4);
}

void expectNothingWorks(SharedGpibLibrary& library) {
  StatusVariables variables;
  EXPECT_EQ(variables.registerIn(library), 4);
  EXPECT_EQ(library.UnregisterGpibGlobalsForThread(), 4);
  library.SendIFC(0);
  library.DevClear(0, 13);
  library.Send(0, 13, "*IDN?", GpibEnd::newlineWithEoi);
  std::array<char, 4> buffer{'x'};
  library.Receive(0, 13, buffer.data(), buffer.size(), gpibStopOnEoi);
  EXPECT_EQ(buffer[0], 'x');
  short statusByte = 7;
  library.ReadStatusByte(0, 13, &statusByte);
  EXPECT_EQ(statusByte, 7);
  EXPECT_EQ(library.ibfindA("GPIB0"), -1);
  EXPECT_NE(library.ibonl(0, 0) & gpibStatusError, 0);
  EXPECT_EQ(variables.status, 1);
}

TEST(GpibLoading, AMissingLibraryIsNamed) {
  int loads = 0;
  SharedGpibLibrary library([&loads] {
    ++loads;
    return loadGpibLibrary("libgpib-not-there.so.0");
  });
  expectNothingWorks(library);
  const std::string reason = library.unusableReason();
  EXPECT_TRUE(reason.starts_with("The GPIB library libgpib-not-there.so.0 could not be loaded"))
      << reason;
  EXPECT_NE(reason.find("Install linux-gpib"), std::string::npos) << reason;
  EXPECT_EQ(loads, 1);
}

TEST(GpibLoading, AMissingFunctionIsNamed) {
  SharedGpibLibrary library([] { return loadGpibLibrary("libgpib-incomplete.so.0"); });
  expectNothingWorks(library);
  EXPECT_EQ(library.unusableReason(),
            "The GPIB library libgpib-incomplete.so.0 has no function Receive. Install a current "
            "linux-gpib.");
}

// A library that registers status variables itself.

std::vector<std::string> calls;
int registrationResult = 0;

LoadedGpib registeringLibrary() {
  LoadedGpib loaded;
  loaded.functions.registerGlobals = [](int* status, int* error, int* count, long* longCount) {
    calls.emplace_back("register");
    *status = 10;
    *error = 11;
    *count = 12;
    *longCount = 13;
    return registrationResult;
  };
  loaded.functions.unregisterGlobals = [] {
    calls.emplace_back("unregister");
    return 5;
  };
  loaded.functions.find = [](const char* name) {
    calls.emplace_back("find " + std::string(name));
    return -1;
  };
  loaded.functions.send = [](int, unsigned short, const void*, long, int end) {
    calls.emplace_back("send " + std::to_string(end));
  };
  return loaded;
}

class RegisteringGpib : public testing::Test {
 protected:
  void SetUp() override {
    calls.clear();
    registrationResult = 0;
  }
  SharedGpibLibrary library{registeringLibrary};
  StatusVariables variables;
};

TEST_F(RegisteringGpib, RegistrationIsTheLibrarysOwn) {
  for (const int result : {0, 1, 2, 3, 9}) {
    registrationResult = result;
    EXPECT_EQ(variables.registerIn(library), result);
  }
  EXPECT_EQ(variables.status, 10);
  EXPECT_EQ(variables.error, 11);
  EXPECT_EQ(variables.count, 12);
  EXPECT_EQ(variables.longCount, 13);
  EXPECT_EQ(library.UnregisterGpibGlobalsForThread(), 5);
  EXPECT_EQ(calls.back(), "unregister");
}

TEST_F(RegisteringGpib, EndsOfMessagesKeepTheirNumbers) {
  library.Send(0, 13, "A", GpibEnd::newlineWithEoi);
  library.Send(0, 13, "A", GpibEnd::eoi);
  EXPECT_EQ(calls, (std::vector<std::string>{"send 1", "send 2"}));
}

TEST_F(RegisteringGpib, AnIndexIsNoDescriptor) {
  EXPECT_EQ(library.ibfindA("GPIB0"), -1);
  EXPECT_EQ(calls, std::vector<std::string>{"find GPIB0"});
}

TEST_F(RegisteringGpib, TheLibraryAloneWritesTheStatus) {
  variables.registerIn(library);
  variables.status = 77;
  library.Send(0, 13, "A", GpibEnd::none);
  EXPECT_EQ(variables.status, 77);
}

}  // namespace
}  // namespace pulsemod::test
