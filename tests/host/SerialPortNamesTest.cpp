#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "TestHelp.h"
#include "host/SerialPortNames.h"

namespace pulsemod::test {
namespace {

namespace fs = std::filesystem;

class SerialPortNamesTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(links);
    fs::create_directories(devices);
  }

  std::string addDevice(const std::string& name) const {
    std::ofstream(devices / name) << "";
    return devices / name;
  }
  void addLink(const std::string& name, const fs::path& target) const {
    fs::create_symlink(target, links / name);
  }
  std::optional<std::string> device(int portNumber) const { return devicePath(portNumber, places); }

  QTemporaryDir folder;
  const fs::path root = folder.path().toStdString();
  const fs::path links = root / "ports";
  const fs::path devices = root / "dev";
  bool builtInPortsAreReal = true;
  const SerialPortPlaces places{links, devices,
                                [this](const std::string&) { return builtInPortsAreReal; }};
};

TEST_F(SerialPortNamesTest, NoDeviceNoPort) {
  for (int port = 1; port <= 10; ++port) EXPECT_EQ(device(port), std::nullopt) << port;
}

TEST_F(SerialPortNamesTest, PortsAreCountedFromOneAndDevicesFromZero) {
  const std::string first = addDevice("ttyS0");
  const std::string tenth = addDevice("ttyS9");
  EXPECT_EQ(device(1), first);
  EXPECT_EQ(device(2), std::nullopt);
  EXPECT_EQ(device(10), tenth);
}

TEST_F(SerialPortNamesTest, KindsOfDevicesHaveTheirOrder) {
  const std::string modem = addDevice("ttyACM2");
  EXPECT_EQ(device(3), modem);
  const std::string adapter = addDevice("ttyUSB2");
  EXPECT_EQ(device(3), adapter);
  const std::string builtIn = addDevice("ttyS2");
  EXPECT_EQ(device(3), builtIn);
  const std::string own = addDevice("own");
  addLink("com3", own);
  EXPECT_EQ(device(3), own);
}

TEST_F(SerialPortNamesTest, ANameInReserveIsNoPort) {
  addDevice("ttyS0");
  builtInPortsAreReal = false;
  EXPECT_EQ(device(1), std::nullopt);
  const std::string adapter = addDevice("ttyUSB0");
  EXPECT_EQ(device(1), adapter);
}

TEST_F(SerialPortNamesTest, ALinkDecidesEvenWithoutItsDevice) {
  addDevice("ttyUSB0");
  addLink("com1", "/dev/not-plugged-in");
  EXPECT_EQ(device(1), "/dev/not-plugged-in");
}

TEST_F(SerialPortNamesTest, LinksAreFollowedToTheDevice) {
  const std::string adapter = addDevice("ttyUSB4");
  addLink("by-id", adapter);
  addLink("com1", "by-id");
  EXPECT_EQ(device(1), fs::canonical(adapter).string());
}

TEST_F(SerialPortNamesTest, OnlyALinkCounts) {
  std::ofstream(links / "com1") << "/dev/ttyUSB7";
  EXPECT_EQ(device(1), std::nullopt);
}

TEST_F(SerialPortNamesTest, LinksLieInTheUsersConfigurationFolder) {
  const fs::path ports = configurationFolder() / "Pelmora PulseMod" / "ports";
  EXPECT_EQ(systemSerialPortPlaces().linkFolder, ports.string());
  fs::create_directories(ports);
  fs::create_symlink("/dev/null", ports / "com7");
  EXPECT_EQ(devicePath(7), "/dev/null");
  EXPECT_EQ(portDeviceText(7), "/dev/null");
  fs::remove_all(configurationFolder() / "Pelmora PulseMod");
}

TEST_F(SerialPortNamesTest, NoDeviceHasAnEmptyText) {
  if (devicePath(10)) GTEST_SKIP() << "this computer has a COM10:";
  EXPECT_EQ(portDeviceText(10), "");
}

TEST_F(SerialPortNamesTest, ReserveNamesOfThisSystemAreKnown) {
  const SerialPortPlaces system = systemSerialPortPlaces();
  EXPECT_FALSE(system.isRealPort("ttyS9999"));
  for (int number = 0; number < 32; ++number) {
    const std::string name = "ttyS" + std::to_string(number);
    std::string type;
    if (!(std::ifstream("/sys/class/tty/" + name + "/type") >> type)) continue;
    EXPECT_EQ(system.isRealPort(name), type != "0") << name;
  }
}

}  // namespace
}  // namespace pulsemod::test
