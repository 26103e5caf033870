#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Pty.h"
#include "TestHelp.h"
#include "host/SerialPortFailure.h"

namespace pulsemod::test {
namespace {

const std::string adapter = "/dev/ttyUSB0";

TEST(OpenFailure, NamesTheGroupToJoin) {
  EXPECT_EQ(openFailureReason(1, adapter, PortProblem::refused, {true, false, "dialout"}, "x"),
            "Your user is not in the group dialout, which may use /dev/ttyUSB0. Add it with: sudo "
            "adduser $USER dialout, then log in again.");
}

TEST(OpenFailure, ADeviceOfNoGroupIsTheAdministrators) {
  EXPECT_EQ(openFailureReason(1, adapter, PortProblem::refused, {true, false, ""}, "x"),
            "Only the administrator may use /dev/ttyUSB0. Its permissions must be changed first.");
}

TEST(OpenFailure, ARefusedPortThatMayBeUsedIsInUse) {
  EXPECT_EQ(openFailureReason(3, adapter, PortProblem::refused, {true, true, "dialout"}, "x"),
            "The port COM3: (/dev/ttyUSB0) is in use by another program.");
}

TEST(OpenFailure, ADeviceThatIsGoneIsNotThereWhateverTheProblem) {
  for (const auto problem : {PortProblem::notFound, PortProblem::refused, PortProblem::unusable}) {
    EXPECT_EQ(openFailureReason(3, adapter, problem, {false, false, ""}, "x"),
              "The port COM3: (/dev/ttyUSB0) is not there. Is its adapter plugged in?");
  }
}

TEST(OpenFailure, OtherwiseTheSystemSaysWhy) {
  EXPECT_EQ(
      openFailureReason(3, adapter, PortProblem::unusable, {true, true, "dialout"}, "I/O error"),
      "The port COM3: (/dev/ttyUSB0) could not be opened: I/O error.");
}

TEST(DeviceAccess, ADeviceThatIsNotThere) {
  const DeviceAccess access = deviceAccess("/dev/not-plugged-in");
  EXPECT_FALSE(access.exists);
  EXPECT_FALSE(access.permitted);
}

TEST(DeviceAccess, TheGroupIsTheDevicesOwn) {
  const Pty pty;
  ASSERT_EQ(chmod(pty.device().c_str(), 0660), 0);
  const group* dialout = getgrnam("dialout");
  if (geteuid() == 0 && dialout != nullptr) {
    ASSERT_EQ(chown(pty.device().c_str(), 0, dialout->gr_gid), 0);
  }
  struct stat status {};
  ASSERT_EQ(stat(pty.device().c_str(), &status), 0);
  if (status.st_gid == 0) GTEST_SKIP() << "devices belong to the administrator's group here";
  const std::string name = getgrgid(status.st_gid)->gr_name;
  const DeviceAccess access = deviceAccess(pty.device());
  EXPECT_TRUE(access.exists);
  EXPECT_TRUE(access.permitted);
  EXPECT_EQ(access.group, name);
}

TEST(DeviceAccess, TheAdministratorsGroupIsNotToBeJoined) {
  const Pty pty;
  if (geteuid() != 0) GTEST_SKIP() << "only an administrator can give a device this group";
  ASSERT_EQ(chmod(pty.device().c_str(), 0660), 0);
  ASSERT_EQ(chown(pty.device().c_str(), 0, 0), 0);
  EXPECT_EQ(deviceAccess(pty.device()).group, "");
}

TEST(DeviceAccess, AGroupThatMayNotReadAndWriteIsNoHelp) {
  const Pty pty;
  for (const mode_t mode : {0600U, 0620U, 0640U}) {
    ASSERT_EQ(chmod(pty.device().c_str(), mode), 0);
    EXPECT_EQ(deviceAccess(pty.device()).group, "") << mode;
  }
}

TEST(DeviceAccess, PermissionIsTheUsers) {
  const Pty pty;
  ASSERT_EQ(chmod(pty.device().c_str(), 0060), 0);
  const WithoutPrivileges user;
  EXPECT_TRUE(deviceAccess(pty.device()).exists);
  EXPECT_FALSE(deviceAccess(pty.device()).permitted);
}

}  // namespace
}  // namespace pulsemod::test
