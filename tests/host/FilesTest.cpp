#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>

#include <QTemporaryDir>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "TestHelp.h"
#include "host/QtFiles.h"

namespace pulsemod::test {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr auto notRegular = "It is not a regular file";
constexpr auto noSuchFile = "No such file or directory";
constexpr auto notPermitted = "Permission denied";

void put(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string contentOf(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

fs::perms permissionsOf(const fs::path& path) { return fs::status(path).permissions(); }

class FilesTest : public testing::Test {
 protected:
  void SetUp() override { fs::permissions(folder, fs::perms::all); }

  std::string replace(const fs::path& path, std::string_view text) {
    return files.replace(path.string(), text);
  }
  std::string read(const fs::path& path) { return files.read(path.string(), content); }

  /// Everything under the folder, in the order of the alphabet.
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      found.push_back(entry.path().lexically_relative(folder).string());
    }
    std::ranges::sort(found);
    return found;
  }

  void expectRead(const fs::path& path, const std::string& expected) {
    EXPECT_EQ(read(path), "");
    EXPECT_EQ(content, expected);
  }
  void expectNotRead(const fs::path& path, const std::string& reason) {
    content = "as it was";
    EXPECT_EQ(read(path), reason) << path;
    EXPECT_EQ(content, "as it was") << path;
  }

  const QTemporaryDir temporary;
  const fs::path folder = fs::canonical(temporary.path().toStdString());
  const fs::path file = folder / "trace.txt";
  QtFiles files;
  std::string content;
};

TEST_F(FilesTest, AnyBytesComeBackAsTheyWereWritten) {
  std::string bytes;
  for (int round = 0; round < 300; ++round) {
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  }
  bytes += "\r\n\n\r\x1a";
  EXPECT_EQ(replace(file, bytes), "");
  EXPECT_EQ(contentOf(file), bytes);
  expectRead(file, bytes);
}

TEST_F(FilesTest, AnEmptyFileIsWrittenAndRead) {
  EXPECT_EQ(replace(file, ""), "");
  EXPECT_TRUE(fs::is_regular_file(file));
  EXPECT_EQ(fs::file_size(file), 0U);
  content = "before";
  expectRead(file, "");
}

TEST_F(FilesTest, ReplacingLeavesTheNewContentAlone) {
  put(file, std::string(1000, 'x'));
  EXPECT_EQ(replace(file, "new"), "");
  EXPECT_EQ(contentOf(file), "new");
  EXPECT_EQ(names(), std::vector{"trace.txt"s});
}

TEST_F(FilesTest, ReplacingWithNothingEmptiesTheFile) {
  put(file, "old");
  EXPECT_EQ(replace(file, ""), "");
  EXPECT_TRUE(fs::exists(file));
  EXPECT_EQ(contentOf(file), "");
}

TEST_F(FilesTest, TheFileKeepsItsPermissions) {
  for (const unsigned mode : {0600U, 0640U, 0644U, 0664U, 0666U, 0755U}) {
    put(file, "old");
    fs::permissions(file, fs::perms(mode));
    EXPECT_EQ(replace(file, "new"), "");
    EXPECT_EQ(contentOf(file), "new");
    EXPECT_EQ(permissionsOf(file), fs::perms(mode)) << std::oct << mode;
  }
}

TEST_F(FilesTest, ANewFileHasThePermissionsOfAnyOther) {
  put(folder / "other.txt", "");
  EXPECT_EQ(replace(file, "new"), "");
  EXPECT_EQ(permissionsOf(file), permissionsOf(folder / "other.txt"));
}

TEST_F(FilesTest, ALinkStaysAndItsTargetIsReplaced) {
  fs::create_directories(folder / "data/deep");
  fs::create_directory_symlink("data/deep", folder / "short");
  const fs::path target = folder / "data/target.txt";
  struct Case {
    const char* link;
    fs::path leadsTo;
  };
  const Case cases[] = {
      {"absolute.txt", target},
      {"relative.txt", "data/target.txt"},
      {"data/beside.txt", "target.txt"},
      {"data/deep/up.txt", "../target.txt"},
      {"to-a-link.txt", "relative.txt"},
      {"to-a-link-to-a-link.txt", "data/../to-a-link.txt"},
      {"through-a-linked-folder.txt", "short/../target.txt"},
  };
  for (const Case& c : cases) fs::create_symlink(c.leadsTo, folder / c.link);
  put(target, "old");
  const auto before = names();
  for (const Case& c : cases) {
    const std::string text = "through "s + c.link;
    EXPECT_EQ(replace(folder / c.link, text), "") << c.link;
    EXPECT_EQ(fs::read_symlink(folder / c.link), c.leadsTo);
    EXPECT_FALSE(fs::is_symlink(target));
    EXPECT_EQ(contentOf(target), text);
    expectRead(folder / c.link, text);
    EXPECT_EQ(names(), before) << c.link;
  }
}

TEST_F(FilesTest, ALinkInALinkedFolderLeadsFromWhereItReallyIs) {
  fs::create_directories(folder / "data/deep");
  fs::create_directory_symlink("data/deep", folder / "short");
  fs::create_symlink("../target.txt", folder / "data/deep/link.txt");
  put(folder / "data/target.txt", "old");
  EXPECT_EQ(replace(folder / "short/link.txt", "new"), "");
  EXPECT_EQ(contentOf(folder / "data/target.txt"), "new");
  EXPECT_FALSE(fs::exists(folder / "target.txt"));
}

TEST_F(FilesTest, ALinkToNothingStaysAndGetsItsTarget) {
  fs::create_directory(folder / "data");
  for (const fs::path target : {"data/target.txt", "new.txt", "data/../third.txt"}) {
    fs::remove(file);
    fs::create_symlink(target, file);
    expectNotRead(file, noSuchFile);
    EXPECT_EQ(replace(file, "new"), "");
    EXPECT_EQ(fs::read_symlink(file), target);
    EXPECT_EQ(contentOf(folder / target), "new");
  }
  EXPECT_EQ(names(),
            (std::vector{"data"s, "data/target.txt"s, "new.txt"s, "third.txt"s, "trace.txt"s}));
}

TEST_F(FilesTest, ALinkIntoAMissingFolderIsReported) {
  fs::create_symlink("missing/target.txt", file);
  EXPECT_EQ(replace(file, "new"), noSuchFile);
  EXPECT_EQ(fs::read_symlink(file), "missing/target.txt");
  EXPECT_EQ(names(), std::vector{"trace.txt"s});
}

TEST_F(FilesTest, LinksInACircleAreReportedAndStay) {
  fs::create_symlink("second.txt", file);
  fs::create_symlink("trace.txt", folder / "second.txt");
  constexpr auto circle = "Too many levels of symbolic links";
  EXPECT_EQ(replace(file, "new"), circle);
  expectNotRead(file, circle);
  EXPECT_EQ(fs::read_symlink(file), "second.txt");
  EXPECT_EQ(names(), (std::vector{"second.txt"s, "trace.txt"s}));
}

TEST_F(FilesTest, NamesMayHoldBlanksAndAnyLetters) {
  for (const std::string name :
       {"two words.txt", " blanks at both ends ",
        "R\xc3\xbc"
        "ckl\xc3\xa4ufe.txt",
        "u\xcc\x88 in two parts.txt", "\xe6\xb8\xac\xe5\xae\x9a.txt", "\xf0\x9f\x93\x88.txt",
        "100%41 #1.txt", "a\"b'c\\d.txt", "%1 XXXXXX.txt", ".hidden"}) {
    EXPECT_EQ(replace(folder / name, name), "");
    EXPECT_EQ(names(), std::vector{name});
    expectRead(folder / name, name);
    EXPECT_EQ(replace(folder / name, "again"), "");
    EXPECT_EQ(names(), std::vector{name});
    fs::remove(folder / name);
  }
}

TEST_F(FilesTest, ARelativePathStartsAtTheCurrentFolder) {
  const fs::path before = fs::current_path();
  fs::create_directory(folder / "data");
  fs::current_path(folder / "data");
  EXPECT_EQ(files.replace("trace.txt", "here"), "");
  EXPECT_EQ(files.replace("../trace.txt", "above"), "");
  expectRead("trace.txt", "here");
  expectRead("../trace.txt", "above");
  fs::current_path(before);
  EXPECT_EQ(names(), (std::vector{"data"s, "data/trace.txt"s, "trace.txt"s}));
}

TEST_F(FilesTest, TheLargestFileIsReadAndOneByteMoreIsTooMuch) {
  std::string large(Files::largestFile, 'x');
  large.front() = 'a';
  large.back() = 'z';
  put(file, large);
  EXPECT_EQ(read(file), "");
  EXPECT_TRUE(content == large);
  put(file, large + "!");
  expectNotRead(file, "It is too large");
  fs::resize_file(file, std::uintmax_t{1} << 40U);
  expectNotRead(file, "It is too large");
}

TEST_F(FilesTest, AFileThatDoesNotTellItsSizeIsRead) {
  if (!fs::exists("/proc/self/status")) GTEST_SKIP() << "the system has no /proc";
  ASSERT_EQ(fs::file_size("/proc/self/status"), 0U);
  EXPECT_EQ(read("/proc/self/status"), "");
  EXPECT_TRUE(content.starts_with("Name:")) << content;
  EXPECT_TRUE(content.ends_with("\n")) << content;
}

TEST_F(FilesTest, AFolderIsNoFile) {
  fs::create_directory(file);
  fs::create_directory_symlink(file, folder / "link");
  for (const fs::path& path : {file, folder / "link", folder, file / "", file / "."}) {
    expectNotRead(path, notRegular);
    EXPECT_EQ(replace(path, "new"), notRegular);
  }
  EXPECT_TRUE(fs::is_directory(file));
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(names(), (std::vector{"link"s, "trace.txt"s}));
}

TEST_F(FilesTest, ADeviceIsNoFileAndStaysADevice) {
  // As a user who could not do harm.
  const WithoutPrivileges user;
  for (const char* name : {"null", "full", "zero"}) {
    const fs::path device = fs::path("/dev") / name;
    const fs::path link = folder / name;
    fs::create_symlink(device, link);
    for (const fs::path& path : {device, link}) {
      expectNotRead(path, notRegular);
      EXPECT_EQ(replace(path, "new"), notRegular) << path;
      EXPECT_TRUE(fs::is_character_file(path)) << path;
    }
    EXPECT_TRUE(fs::is_symlink(link));
  }
}

TEST_F(FilesTest, APipeIsNoFileAndNobodyWaitsForItsOtherEnd) {
  ASSERT_EQ(mkfifo(file.c_str(), 0666), 0);
  expectNotRead(file, notRegular);
  EXPECT_EQ(replace(file, "new"), notRegular);
  EXPECT_TRUE(fs::is_fifo(file));
  EXPECT_EQ(names(), std::vector{"trace.txt"s});
}

TEST_F(FilesTest, ASocketIsNoFile) {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(file.string().size(), sizeof address.sun_path);
  file.string().copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  expectNotRead(file, notRegular);
  EXPECT_EQ(replace(file, "new"), notRegular);
  EXPECT_TRUE(fs::is_socket(file));
  EXPECT_EQ(names(), std::vector{"trace.txt"s});
  close(socket);
}

TEST_F(FilesTest, AMissingFileOrFolderIsReported) {
  expectNotRead(file, noSuchFile);
  expectNotRead(folder / "missing/trace.txt", noSuchFile);
  EXPECT_EQ(replace(folder / "missing/trace.txt", "new"), noSuchFile);
  put(file, "old");
  expectNotRead(file / "trace.txt", "Not a directory");
  EXPECT_EQ(replace(file / "trace.txt", "new"), "Not a directory");
  EXPECT_EQ(names(), std::vector{"trace.txt"s});
}

TEST_F(FilesTest, NoNameAndTooLongANameAreReported) {
  expectNotRead("", "No file name specified");
  EXPECT_NE(replace("", "new"), "");
  const fs::path tooLong = folder / std::string(256, 'x');
  expectNotRead(tooLong, "File name too long");
  EXPECT_EQ(replace(tooLong, "new"), "File name too long");
  EXPECT_EQ(names(), std::vector<std::string>{});
}

TEST_F(FilesTest, WithoutPermissionAFileIsNotRead) {
  put(file, "old");
  fs::permissions(file, fs::perms(0000));
  const WithoutPrivileges user;
  expectNotRead(file, notPermitted);
}

TEST_F(FilesTest, AFileThatMayNotBeWrittenIsNotReplaced) {
  put(file, "old");
  fs::permissions(file, fs::perms(0444));
  {
    // Who could replace it all the same: he may write into the folder.
    const WithoutPrivileges user;
    EXPECT_EQ(replace(file, "new"), "Existing file " + file.string() + " is not writable");
  }
  EXPECT_EQ(contentOf(file), "old");
  EXPECT_EQ(permissionsOf(file), fs::perms(0444));
  EXPECT_EQ(names(), std::vector{"trace.txt"s});
}

TEST_F(FilesTest, InAReadOnlyFolderNothingIsWritten) {
  put(file, "old");
  fs::permissions(file, fs::perms(0666));
  fs::permissions(folder, fs::perms(0555));
  {
    const WithoutPrivileges user;
    EXPECT_EQ(replace(file, "new"), notPermitted);
    EXPECT_EQ(replace(folder / "new.txt", "new"), notPermitted);
    expectRead(file, "old");
  }
  EXPECT_EQ(contentOf(file), "old");
  EXPECT_EQ(names(), std::vector{"trace.txt"s});
}

TEST_F(FilesTest, AFolderThatMayNotBeEnteredIsReported) {
  fs::create_directory(folder / "closed");
  put(folder / "closed/trace.txt", "old");
  fs::permissions(folder / "closed", fs::perms(0000));
  {
    const WithoutPrivileges user;
    expectNotRead(folder / "closed/trace.txt", notPermitted);
    EXPECT_EQ(replace(folder / "closed/trace.txt", "new"), notPermitted);
  }
  fs::permissions(folder / "closed", fs::perms::owner_all);
  EXPECT_EQ(contentOf(folder / "closed/trace.txt"), "old");
  EXPECT_EQ(names(), (std::vector{"closed"s, "closed/trace.txt"s}));
}

/// What `action` gives in a process for which no file may grow beyond `bytes` bytes, as on a disk
/// that is nearly full.
std::string whereFilesEndAt(rlim_t bytes, const std::function<std::string()>& action) {
  int ends[2];
  if (pipe(ends) != 0) return "no pipe";
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    const std::string result = action();
    _exit(write(ends[1], result.data(), result.size()) < 0 ? 1 : 0);
  }
  close(ends[1]);
  std::string result(1000, '\0');
  const ssize_t size = ::read(ends[0], result.data(), result.size());
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0 || size < 0) return "the process failed";
  result.resize(static_cast<std::size_t>(size));
  return result;
}

TEST_F(FilesTest, AWriteThatTheSystemCutsShortLeavesTheOldFile) {
  const std::string old(3000, 'o');
  put(file, old);
  for (const rlim_t room : {0U, 1U, 1000U, 4096U, 9999U}) {
    EXPECT_EQ(whereFilesEndAt(room, [this] { return replace(file, std::string(10000, 'n')); }),
              "File too large")
        << room;
    EXPECT_EQ(contentOf(file), old) << room;
    EXPECT_EQ(names(), std::vector{"trace.txt"s}) << room;
  }
  EXPECT_EQ(whereFilesEndAt(10000, [this] { return replace(file, std::string(10000, 'n')); }), "");
  EXPECT_EQ(contentOf(file), std::string(10000, 'n'));
}

TEST_F(FilesTest, AWriteThatTheSystemCutsShortMakesNoNewFile) {
  EXPECT_EQ(whereFilesEndAt(1000, [this] { return replace(file, std::string(10000, 'n')); }),
            "File too large");
  EXPECT_EQ(names(), std::vector<std::string>{});
}

}  // namespace
}  // namespace pulsemod::test
