#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "link/CommsSettings.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

using Written = std::vector<std::string>;

class Comms : public testing::Test {
 protected:
  void store(const std::string& key, const std::string& text) {
    world.store.values[{"Comms", key}] = text;
  }
  void expectEdited(std::int32_t type, std::int16_t address, std::int32_t port, std::int32_t baud) {
    EXPECT_EQ(EditedComms.commsType, type);
    EXPECT_EQ(EditedComms.gpibAddress, address);
    EXPECT_EQ(EditedComms.rs232Port, port);
    EXPECT_EQ(EditedComms.rs232Baud, baud);
  }
  FakeWorld world;
};

const ShownBox illegalAddress{"Illegal GPIB Address, only 1 to 30 allowed.", "GPIB Address",
                              MessageIcon::information, ""};

TEST_F(Comms, TheDefaults) { expectEdited(2, 13, 1, 9600); }

TEST_F(Comms, AnEmptyStoreReadsNothing) {
  EditedComms = {1, 5, 3, 1200};
  EXPECT_FALSE(ReadCommsSettings());
  expectEdited(1, 5, 3, 1200);
}

TEST_F(Comms, ACommsTypeThatIsZeroReadsNothing) {
  store("GPIBAddress", "20");
  store("RS232Baud", "19200");
  store("RS232Port", "2");
  for (const char* text : {"0", "abc", "", "0.2", "99999999999"}) {
    store("CommsType", text);
    EXPECT_FALSE(ReadCommsSettings()) << text;
    expectEdited(2, 13, 1, 9600);
  }
}

TEST_F(Comms, MissingValuesGetTheirDefaults) {
  EditedComms = {2, 5, 3, 1200};
  store("CommsType", "1");
  EXPECT_TRUE(ReadCommsSettings());
  expectEdited(1, 13, 1, 9600);
}

TEST_F(Comms, AllValuesAreRead) {
  store("CommsType", "1");
  store("GPIBAddress", "30");
  store("RS232Baud", "57600");
  store("RS232Port", "10");
  EXPECT_TRUE(ReadCommsSettings());
  expectEdited(1, 30, 10, 57600);
}

TEST_F(Comms, OtherSectionsAreNotRead) {
  world.store.values[{"", "CommsType"}] = "1";
  world.store.values[{"comms", "CommsType"}] = "1";
  EXPECT_FALSE(ReadCommsSettings());
}

TEST_F(Comms, UnusualValuesAreKept) {
  store("CommsType", "3");
  store("GPIBAddress", "31");
  store("RS232Baud", "115200");
  EXPECT_TRUE(ReadCommsSettings());
  expectEdited(3, 31, 1, 115200);
}

TEST_F(Comms, AStoredPortOfZeroBecomesOne) {
  store("CommsType", "1");
  for (const char* text : {"0", "x"}) {
    store("RS232Port", text);
    EXPECT_TRUE(ReadCommsSettings());
    EXPECT_EQ(EditedComms.rs232Port, 1) << text;
  }
}

TEST_F(Comms, AStoredAddressThatIsNoSixteenBitNumberBecomesZero) {
  store("CommsType", "2");
  for (const char* text : {"x", "", "40000", "-40000", "99999999999"}) {
    store("GPIBAddress", text);
    EXPECT_TRUE(ReadCommsSettings());
    EXPECT_EQ(EditedComms.gpibAddress, 0) << text;
  }
}

TEST_F(Comms, SavingWritesTheFourTextsInOrderAndFlushesOnce) {
  EditedComms = {1, 7, 10, 57600};
  EXPECT_TRUE(SaveCommsSettings());
  EXPECT_EQ(world.store.written,
            (Written{"CommsType=1", "GPIBAddress=7", "RS232Baud=57600", "RS232Port=10"}));
  EXPECT_EQ(world.store.flushes, 1);
  EXPECT_EQ(world.store.values.size(), 4U);
  EXPECT_EQ((world.store.values[{"Comms", "CommsType"}]), "1");
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(Comms, SavedSettingsAreReadBack) {
  EditedComms = {1, 30, 10, 1200};
  EXPECT_TRUE(SaveCommsSettings());
  EditedComms = CommsSettings{};
  EXPECT_TRUE(ReadCommsSettings());
  expectEdited(1, 30, 10, 1200);
}

TEST_F(Comms, SavingReplacesAPortOfZeroInMemoryToo) {
  EditedComms = {1, 13, 0, 9600};
  EXPECT_TRUE(SaveCommsSettings());
  EXPECT_EQ(EditedComms.rs232Port, 1);
  EXPECT_EQ(world.store.written.back(), "RS232Port=1");
}

TEST_F(Comms, AnIllegalAddressIsToldAndSavesNothingOnEitherLink) {
  for (const std::int32_t type : {commsTypeRS232, commsTypeGPIB}) {
    for (const int address : {0, 31, -1, 32767, -32768}) {
      world.dialogs.messages.clear();
      EditedComms.commsType = type;
      EditedComms.gpibAddress = static_cast<std::int16_t>(address);
      EXPECT_FALSE(SaveCommsSettings());
      EXPECT_EQ(world.dialogs.messages, (std::vector<ShownBox>{illegalAddress})) << address;
    }
  }
  EXPECT_TRUE(world.store.written.empty());
  EXPECT_EQ(world.store.flushes, 0);
}

TEST_F(Comms, TheFirstAndTheLastAddressAreLegal) {
  for (const int address : {1, 30}) {
    EditedComms.gpibAddress = static_cast<std::int16_t>(address);
    EXPECT_TRUE(SaveCommsSettings());
  }
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(Comms, AStoreThatCannotBeWrittenTellsWhy) {
  world.store.failure = "The disk is full.";
  EXPECT_FALSE(SaveCommsSettings());
  EXPECT_EQ(world.dialogs.messages,
            (std::vector<ShownBox>{{"The communications settings could not be saved.", "Pelmora",
                                    MessageIcon::exclamation, "The disk is full."}}));
}

TEST_F(Comms, TypedAddresses) {
  const std::vector<std::pair<std::string, int>> rows = {
      {"13", 13},   {"1", 1},     {"30", 30},       {"31", 31},   {" 7 ", 7},  {"0", 0},
      {"-5", -5},   {"007", 7},   {"32767", 32767}, {"", 0},      {" ", 0},    {"abc", 0},
      {"12abc", 0}, {"abc12", 0}, {"13.5", 0},      {"13,5", 0},  {"1 3", 0},  {"1E1", 0},
      {"99999", 0}, {"32768", 0}, {"-32769", 0},    {"65549", 0}, {"0x10", 0},
  };
  for (const auto& [text, address] : rows) {
    EditedComms.gpibAddress = 13;
    setGpibAddressText(text);
    EXPECT_EQ(EditedComms.gpibAddress, address) << '"' << text << '"';
  }
}

TEST_F(Comms, AnAddressThatIsNoNumberCannotBeSaved) {
  setGpibAddressText("abc");
  EXPECT_FALSE(SaveCommsSettings());
  EXPECT_EQ(world.dialogs.messages, (std::vector<ShownBox>{illegalAddress}));
  EXPECT_TRUE(world.store.written.empty());
}

}  // namespace
}  // namespace pulsemod::test
