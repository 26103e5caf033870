#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>

#include "TestHelp.h"
#include "host/Host.h"

namespace pulsemod::test {
namespace {

class SilentProgress : public Progress {
 public:
  void show(const std::string&) override {}
  void showAfter(int, const std::string&) override {}
  void setText(const std::string&) override {}
  void setDone(int, int) override {}
  void hide() override {}
  bool dismissed() const override { return false; }
};

bool gpibLibraryIsLoaded() {
  void* library = dlopen("libgpib.so.0", RTLD_NOW | RTLD_NOLOAD);
  if (library == nullptr) return false;
  dlclose(library);
  return true;
}

std::ptrdiff_t openFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return std::distance(begin(files), end(files));
}

std::ptrdiff_t configurationFiles() {
  const std::filesystem::directory_iterator files(configurationFolder());
  return std::distance(begin(files), end(files));
}

TEST(Host, MakingOneTouchesNothing) {
  // A test that ran before in the same process has loaded the library for good.
  const bool wasLoaded = gpibLibraryIsLoaded();
  const std::ptrdiff_t opened = openFiles();
  const std::ptrdiff_t stored = configurationFiles();
  SilentProgress progress;
  const double before = processorTimeMs();
  const Host host(progress);
  EXPECT_LT(processorTimeMs() - before, 5.0);
  EXPECT_EQ(gpibLibraryIsLoaded(), wasLoaded);
  EXPECT_EQ(openFiles(), opened);
  EXPECT_EQ(configurationFiles(), stored);
}

TEST(Host, ClockOfTheCallerTakesThePlaceOfItsOwn) {
  SilentProgress progress;
  HostClock clock;
  const Host host(progress, &clock);
  EXPECT_EQ(&host.services().clock, &clock);
}

TEST(Host, ServicesAreTheRealOnes) {
  SilentProgress progress;
  const Host host(progress);
  const ServicesGuard guard(host.services());
  EXPECT_EQ(&services().progress, &progress);
  EXPECT_NE(dynamic_cast<HostClock*>(&services().clock), nullptr);
  EXPECT_NE(dynamic_cast<HostEventQueue*>(&services().events), nullptr);
  EXPECT_NE(dynamic_cast<SharedGpibLibrary*>(&services().gpib), nullptr);
  EXPECT_NE(dynamic_cast<HostSerialPort*>(&services().serial), nullptr);
  EXPECT_NE(dynamic_cast<QtSettingsStore*>(&services().settings), nullptr);
  EXPECT_NE(dynamic_cast<QtDialogs*>(&services().dialogs), nullptr);
  EXPECT_NE(dynamic_cast<QtFileDialogs*>(&services().fileDialogs), nullptr);
  EXPECT_NE(dynamic_cast<HostProgramEnd*>(&services().programEnd), nullptr);
}

}  // namespace
}  // namespace pulsemod::test
