#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>

#include "FailingCalls.h"
#include "host/QtFiles.h"

namespace pulsemod::test {
namespace {

namespace fs = std::filesystem;
using Manner = FailingCalls::Manner;

std::string lines(const char* text, int count) {
  std::string all;
  for (int line = 0; line < count; ++line) all += std::to_string(line) + text + "\r\n";
  return all;
}

struct Surroundings {
  const char* name;
  bool fileIsThere;
  bool filesWithoutName;
};

void PrintTo(const Surroundings& surroundings, std::ostream* out) { *out << surroundings.name; }

class FilesFaultTest : public testing::TestWithParam<Surroundings> {
 protected:
  void SetUp() override { FailingCalls::filesWithoutName = GetParam().filesWithoutName; }
  void TearDown() override { FailingCalls::filesWithoutName = true; }

  bool fileIsThere() const { return GetParam().fileIsThere; }

  void putOldFile() const {
    fs::remove(file);
    if (!fileIsThere()) return;
    std::ofstream(file, std::ios::binary) << oldText;
    fs::permissions(file, permissions);
  }

  std::string replace() { return files.replace(file.string(), newText); }

  std::vector<std::string> callsOfASave() {
    putOldFile();
    const FailingCalls counted;
    EXPECT_EQ(replace(), "");
    return counted.calls();
  }

  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder)) {
      found.push_back(entry.path().filename().string());
    }
    return found;
  }

  void expectFile(const std::string& expected) const {
    EXPECT_EQ(names(), std::vector<std::string>{"trace.txt"});
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    EXPECT_TRUE(text.str() == expected);
    if (fileIsThere()) {
      EXPECT_EQ(fs::status(file).permissions(), permissions);
    }
  }
  void expectOldFile() const {
    if (fileIsThere()) {
      expectFile(oldText);
    } else {
      EXPECT_EQ(names(), std::vector<std::string>{});
    }
  }

  /// Replaces the old file while a call fails; tells the reason given.
  std::string replaceWhileFailing(int number, int error, Manner manner = Manner::once) {
    putOldFile();
    const FailingCalls failing(number, error, manner);
    const std::string reason = replace();
    EXPECT_TRUE(failing.hasFailed());
    return reason;
  }

  void expectUnhinderedSave() {
    EXPECT_EQ(replace(), "");
    expectFile(newText);
  }

  void expectRefusal(int number, int error, Manner manner) {
    const std::string reason = replaceWhileFailing(number, error, manner);
    EXPECT_TRUE(reason == std::strerror(error) || reason == "It cannot be given its name")
        << reason;
    expectOldFile();
    expectUnhinderedSave();
  }

  const QTemporaryDir temporary;
  const fs::path folder = temporary.path().toStdString();
  const fs::path file = folder / "trace.txt";
  // None that a new file would get.
  const fs::perms permissions{0660};
  const std::string oldText = lines(" old", 200);
  const std::string newText = lines("\t-12.345", 400);
  QtFiles files;
};

constexpr int diskErrors[] = {ENOSPC, EIO, EACCES, EDQUOT, EFBIG};

/// In words, for a message of a test.
std::string described(const std::string& call, int number, int error) {
  return call + ", call " + std::to_string(number) + ": " + std::strerror(error);
}

TEST_P(FilesFaultTest, TheFileIsOnTheDiskBeforeItGetsItsName) {
  const auto calls = callsOfASave();
  const auto count = [&](const char* name) { return std::ranges::count(calls, name); };
  const auto first = [&](const char* name) { return std::ranges::find(calls, name); };
  const auto afterWrites = std::find(calls.rbegin(), calls.rend(), "write").base();
  EXPECT_EQ(first("open"), calls.begin());
  EXPECT_GE(count("write"), 1);
  EXPECT_GE(count("sync"), 1);
  EXPECT_GE(count("rename"), 1);
  EXPECT_GE(count("close"), 1);
  EXPECT_EQ(count("permissions") > 0, fileIsThere());
  EXPECT_LE(afterWrites, first("sync"));
  EXPECT_LT(first("sync"), first("rename"));
  expectFile(newText);
}

TEST_P(FilesFaultTest, WhateverFailsIsReportedAndTheOldFileStays) {
  const auto calls = callsOfASave();
  int number = 0;
  bool isOnTheDisk = false;
  for (const std::string& call : calls) {
    ++number;
    // What the toolkit asks of the disk a second time is of no consequence.
    if (call == "close" || (call == "sync" && isOnTheDisk)) continue;
    isOnTheDisk = isOnTheDisk || call == "sync";
    for (const int error : diskErrors) {
      SCOPED_TRACE(described(call, number, error));
      expectRefusal(number, error, Manner::fromThenOn);
      if (call == "write") expectRefusal(number, error, Manner::halfway);
    }
  }
}

/// Some steps the toolkit then takes another way.
TEST_P(FilesFaultTest, ASingleFailureIsReportedOrDoesNoHarm) {
  const auto calls = callsOfASave();
  for (int number = 1; number <= static_cast<int>(calls.size()); ++number) {
    for (const int error : diskErrors) {
      SCOPED_TRACE(described(calls[static_cast<std::size_t>(number - 1)], number, error));
      const std::string reason = replaceWhileFailing(number, error);
      if (reason.empty()) {
        expectFile(newText);
      } else {
        EXPECT_EQ(reason, std::strerror(error));
        expectOldFile();
      }
      expectUnhinderedSave();
    }
  }
}

/// The whole file has been brought to the disk before: it is saved.
TEST_P(FilesFaultTest, ACloseThatFailsAfterEverythingIsWrittenIsNoFailure) {
  const auto calls = callsOfASave();
  int closes = 0;
  for (int number = 1; number <= static_cast<int>(calls.size()); ++number) {
    if (calls[static_cast<std::size_t>(number - 1)] != "close") continue;
    ++closes;
    for (const int error : {ENOSPC, EIO, EACCES, EDQUOT, EFBIG, EINTR}) {
      SCOPED_TRACE(described("close", number, error));
      EXPECT_EQ(replaceWhileFailing(number, error), "");
      expectFile(newText);
    }
  }
  EXPECT_GE(closes, 1);
}

TEST_P(FilesFaultTest, AnInterruptedCallIsMadeAgain) {
  const auto calls = callsOfASave();
  int number = 0;
  for (const std::string& call : calls) {
    SCOPED_TRACE(described(call, ++number, EINTR));
    // The system never interrupts these.
    if (call == "rename" || call == "permissions") continue;
    EXPECT_EQ(replaceWhileFailing(number, EINTR), "");
    expectFile(newText);
    if (call != "write") continue;
    EXPECT_EQ(replaceWhileFailing(number, EINTR, Manner::halfway), "");
    expectFile(newText);
  }
}

TEST_P(FilesFaultTest, ADiskThatCannotBeAskedIsTrusted) {
  const auto calls = callsOfASave();
  const int sync = static_cast<int>(std::ranges::find(calls, "sync") - calls.begin()) + 1;
  for (const int error : {EINVAL, EROFS, ENOTSUP}) {
    SCOPED_TRACE(std::strerror(error));
    EXPECT_EQ(replaceWhileFailing(sync, error), "");
    expectFile(newText);
  }
}

/// As on a file system that gives all its files the same permissions and cannot change them.
TEST_P(FilesFaultTest, PermissionsThatCannotBeSetAndAreRightAnywayAreNoFailure) {
  const auto calls = callsOfASave();
  const auto set = std::ranges::find(calls, "permissions") - calls.begin() + 1;
  EXPECT_EQ(set <= std::ssize(calls), fileIsThere());
  if (!fileIsThere()) return;
  // Those of what the toolkit has not finished.
  fs::permissions(file, fs::perms(0600));
  {
    const FailingCalls failing(static_cast<int>(set), EPERM);
    EXPECT_EQ(replace(), "");
    EXPECT_TRUE(failing.hasFailed());
  }
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
}

INSTANTIATE_TEST_SUITE_P(Saves, FilesFaultTest,
                         testing::Values(Surroundings{"OfAFileThatIsThere", true, true},
                                         Surroundings{"OfANewFile", false, true},
                                         Surroundings{"OfAFileThatIsThereUnderAnotherName", true,
                                                      false},
                                         Surroundings{"OfANewFileUnderAnotherName", false, false}),
                         [](const auto& test) { return test.param.name; });

class ReadFaultTest : public testing::Test {
 protected:
  void SetUp() override { std::ofstream(file, std::ios::binary) << text; }

  int readsOfTheFile() {
    const FailingCalls counted;
    EXPECT_EQ(files.read(file.string(), content), "");
    return static_cast<int>(std::ranges::count(counted.calls(), "read"));
  }

  const QTemporaryDir temporary;
  const fs::path file = fs::path(temporary.path().toStdString()) / "trace.txt";
  const std::string text = lines("\t-12.345", 20000);
  QtFiles files;
  std::string content;
};

TEST_F(ReadFaultTest, AReadThatFailsIsReportedAndNothingIsTaken) {
  const int reads = readsOfTheFile();
  ASSERT_GE(reads, 2);
  for (int number = 1; number <= reads; ++number) {
    for (const Manner manner : {Manner::fromThenOn, Manner::halfway}) {
      SCOPED_TRACE(number);
      content = "as it was";
      const FailingCalls failing(number, EIO, manner);
      const std::string reason = files.read(file.string(), content);
      EXPECT_EQ(reason, failing.hasFailed() ? std::strerror(EIO) : "");
      EXPECT_TRUE(content == (failing.hasFailed() ? "as it was" : text));
      // Half of nothing, which is what the last one finds, is nothing.
      EXPECT_EQ(failing.hasFailed(), number < reads || manner == Manner::fromThenOn);
    }
  }
}

TEST_F(ReadFaultTest, AnInterruptedReadIsMadeAgain) {
  const int reads = readsOfTheFile();
  for (int number = 1; number <= reads; ++number) {
    SCOPED_TRACE(number);
    content = "as it was";
    const FailingCalls failing(number, EINTR);
    EXPECT_EQ(files.read(file.string(), content), "");
    EXPECT_TRUE(failing.hasFailed());
    EXPECT_TRUE(content == text);
  }
}

}  // namespace
}  // namespace pulsemod::test
