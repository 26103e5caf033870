#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <QCoreApplication>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "TestHelp.h"
#include "host/QtSettingsStore.h"

namespace pulsemod::test {
namespace {

namespace fs = std::filesystem;

/// While it lives, the system writes the first `bytes` bytes of any file and no more, as a disk
/// does that is nearly full.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &unlimited_);
    rlimit limited = unlimited_;
    limited.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &unlimited_); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit unlimited_{};
};

class SettingsStoreTest : public testing::Test {
 protected:
  void SetUp() override { fs::remove(file); }
  void TearDown() override {
    fs::permissions(configurationFolder(), fs::perms::owner_all);
    fs::remove_all(file);
  }

  void put(const std::string& text) const { std::ofstream(file, std::ios::binary) << text; }
  std::string content() const {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
  }
  static void writeAll(SettingsStore& store) {
    store.write("Comms", "CommsType", "2");
    store.write("Comms", "GPIBAddress", "13");
    store.write("Comms", "RS232Baud", "9600");
    store.write("Comms", "RS232Port", "1");
  }
  void expectRefusal(QtSettingsStore& store) const {
    EXPECT_FALSE(store.flush());
    const std::string reason = store.failureReason();
    const std::string start = "The settings could not be written to " + file.string() + ": ";
    EXPECT_TRUE(reason.starts_with(start)) << reason;
    EXPECT_GT(reason.size(), start.size() + 5) << reason;
  }

  const fs::path file = configurationFolder() / "Pelmora PulseMod.ini";
  const std::string allSettings =
      "[Comms]\nCommsType=2\nGPIBAddress=13\nRS232Baud=9600\nRS232Port=1\n";
};

TEST_F(SettingsStoreTest, FirstUseFindsNothingAndMakesNothing) {
  const QtSettingsStore store;
  EXPECT_EQ(store.read("Comms", "CommsType"), std::nullopt);
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(SettingsStoreTest, FileHoldsTheSettingsInTheOrderOfWriting) {
  QtSettingsStore store;
  writeAll(store);
  EXPECT_TRUE(store.flush());
  EXPECT_EQ(store.failureReason(), "");
  EXPECT_EQ(content(), allSettings);
}

TEST_F(SettingsStoreTest, WrittenSettingsAreReadBack) {
  QtSettingsStore store;
  writeAll(store);
  EXPECT_EQ(store.read("Comms", "RS232Baud"), "9600");
  store.flush();
  EXPECT_EQ(QtSettingsStore().read("Comms", "GPIBAddress"), "13");
  EXPECT_EQ(QtSettingsStore().read("Comms", "Parity"), std::nullopt);
  EXPECT_EQ(QtSettingsStore().read("Other", "GPIBAddress"), std::nullopt);
}

TEST_F(SettingsStoreTest, ReplacingAValueKeepsTheOthers) {
  put(allSettings);
  QtSettingsStore store;
  store.write("Comms", "GPIBAddress", "30");
  EXPECT_TRUE(store.flush());
  EXPECT_EQ(content(), "[Comms]\nCommsType=2\nGPIBAddress=30\nRS232Baud=9600\nRS232Port=1\n");
}

TEST_F(SettingsStoreTest, SettingsSurviveAnEndAtOnce) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    QtSettingsStore store;
    writeAll(store);
    _exit(store.flush() ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(content(), allSettings);
}

TEST_F(SettingsStoreTest, HandWrittenTextIsRead) {
  put("; written by hand\n[Comms]\nCommsType = 1\nGPIBAddress=13,14\nRS232Baud=\"9600\"\n"
      "RS232Port=\n");
  const QtSettingsStore store;
  EXPECT_EQ(store.read("Comms", "CommsType"), "1");
  EXPECT_EQ(store.read("Comms", "GPIBAddress"), "13, 14");
  EXPECT_EQ(store.read("Comms", "RS232Baud"), "9600");
  EXPECT_EQ(store.read("Comms", "RS232Port"), "");
}

TEST_F(SettingsStoreTest, AFileThatIsNoSettingsFileIsRead) {
  using namespace std::string_literals;
  put("\0\xff[[Comms\n=\n]]\nCommsType"s);
  EXPECT_EQ(QtSettingsStore().read("Comms", "CommsType"), std::nullopt);
}

TEST_F(SettingsStoreTest, AFolderWithoutPermissionIsReported) {
  fs::permissions(configurationFolder(), fs::perms(0555));
  QtSettingsStore store;
  writeAll(store);
  {
    const WithoutPrivileges user;
    expectRefusal(store);
  }
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(SettingsStoreTest, AFileWithoutPermissionIsReported) {
  put(allSettings);
  fs::permissions(file, fs::perms(0444));
  fs::permissions(configurationFolder(), fs::perms(0777));
  QtSettingsStore store;
  store.write("Comms", "CommsType", "1");
  {
    const WithoutPrivileges user;
    expectRefusal(store);
  }
  EXPECT_EQ(content(), allSettings);
}

TEST_F(SettingsStoreTest, AFolderInPlaceOfTheFileIsReported) {
  fs::create_directory(file);
  QtSettingsStore store;
  writeAll(store);
  expectRefusal(store);
}

TEST_F(SettingsStoreTest, AWriteThatIsCutShortIsReportedAndTheOldFileStays) {
  put(allSettings);
  QtSettingsStore store;
  store.write("Comms", "Long", std::string(2000, 'x'));
  {
    const FileSizeLimit limit(1000);
    expectRefusal(store);
    // The toolkit must not try again on its own.
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(content(), allSettings);
  EXPECT_EQ(store.read("Comms", "Long"), std::string(2000, 'x'));
}

TEST_F(SettingsStoreTest, NothingIsOnTheDiskBeforeTheFlush) {
  QtSettingsStore store;
  writeAll(store);
  QCoreApplication::processEvents();
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(SettingsStoreTest, AFlushAfterAFailedOneWritesEverything) {
  QtSettingsStore store;
  writeAll(store);
  fs::create_directory(file);
  expectRefusal(store);
  fs::remove(file);
  EXPECT_TRUE(store.flush());
  EXPECT_EQ(store.failureReason(), "");
  EXPECT_EQ(content(), allSettings);
}

TEST_F(SettingsStoreTest, AFolderThatIsNotThereIsMade) {
  // The folder's path is settled by the first use, so the folder itself is taken away.
  QtSettingsStore store;
  writeAll(store);
  const fs::path aside = configurationFolder().string() + ".aside";
  fs::rename(configurationFolder(), aside);
  EXPECT_TRUE(store.flush()) << store.failureReason();
  EXPECT_EQ(content(), allSettings);
  fs::remove_all(aside);
}

TEST_F(SettingsStoreTest, NothingButTheFileIsLeftBehind) {
  QtSettingsStore store;
  writeAll(store);
  ASSERT_TRUE(store.flush());
  int files = 0;
  for (const auto& entry : fs::directory_iterator(configurationFolder())) {
    EXPECT_EQ(entry.path(), file);
    ++files;
  }
  EXPECT_EQ(files, 1);
}

}  // namespace
}  // namespace pulsemod::test
