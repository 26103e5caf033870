// Values of the settings store, and the address as it is typed.
#include <array>
#include <charconv>
#include <string>

#include "FuzzInput.h"
#include "link/CommsSettings.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::fuzz {
namespace {

constexpr std::array keys = {"CommsType", "GPIBAddress", "RS232Baud", "RS232Port"};

/// One value a line; values that are not there are missing in the store.
void fill(test::FakeSettingsStore& store, FuzzInput input) {
  for (const char* key : keys) {
    if (input.atEnd()) return;
    store.values[{"Comms", key}] = input.piece('\n');
  }
}

bool isSame(const CommsSettings& one, const CommsSettings& other) {
  return one.commsType == other.commsType && one.gpibAddress == other.gpibAddress &&
         one.rs232Port == other.rs232Port && one.rs232Baud == other.rs232Baud;
}

void checkSaved(test::FakeWorld& world) {
  const CommsSettings edited = EditedComms;
  const bool legal = edited.gpibAddress >= 1 && edited.gpibAddress <= 30;
  const bool saves = legal && world.store.failure.empty();
  require(SaveCommsSettings() == saves, "a legal address is saved where the store is in order");
  require(world.dialogs.messages.size() == (saves ? 0U : 1U), "what is not saved is told");
  if (!legal) {
    require(world.store.written.empty(), "an illegal address writes nothing");
    return;
  }
  require(world.store.written.size() == keys.size(), "four values are written");
  EditedComms = CommsSettings{};
  require(ReadCommsSettings() == (edited.commsType != 0), "what was saved can be read");
  require(edited.commsType == 0 || isSame(EditedComms, edited), "and it is the same");
}

/// The link takes every settings without a fault; nothing answers, whatever they are.
void checkLink(test::FakeWorld& world) {
  LinkSettings = EditedComms;
  std::string reply;
  OpenMeterLink();
  ConfigureSerialPort();
  require(!QueryMeter("*IDN?", reply), "nothing answers");
  linkFailureReason();
  const bool overSerial = LinkSettings.commsType == commsTypeRS232;
  require(world.serial.calls.size() == (overSerial ? 2U : 0U), "the port is set up once");
}

void checkTyped(const std::string& text) {
  setGpibAddressText(text);
  const int address = EditedComms.gpibAddress;
  require(address == 0 ||
              text.find(std::to_string(address < 0 ? -address : address)) != std::string::npos,
          "an address is what was typed");
  setGpibAddressText(" " + std::to_string(address) + " ");
  require(EditedComms.gpibAddress == address, "blanks around it do not count");
  setGpibAddressText(text + "x");
  require(EditedComms.gpibAddress == 0, "text with a letter is no address");
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod;
  using namespace pulsemod::fuzz;
  test::FakeWorld world;
  FuzzInput input(data, size);
  fill(world.store, input);
  if (size % 8 == 7) world.store.failure = "the disk is full";
  EditedComms.rs232Baud = 4711;
  if (ReadCommsSettings()) {
    require(EditedComms.commsType != 0, "settings that were read name a link");
    require(EditedComms.rs232Port != 0, "a port of 0 becomes 1");
  } else {
    require(EditedComms.rs232Baud == 4711, "without a link nothing else is read");
  }
  checkLink(world);
  checkSaved(world);
  checkTyped(input.piece('\n'));
  return 0;
}
