#pragma once

#include <string>

#include "FuzzInput.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::fuzz {

/// True for a message that the meter answers.
inline bool isQuery(const std::string& message) {
  if (message.find('?') != std::string::npos) return true;
  for (const char* mnemonic :
       {"TR1 ", "PMPO ", "PMPBO ", "PMRDO ", "GPNMO ", "MKNO ", "MKDO ", "TTFRO ", "TTMKRO "}) {
    if (message.starts_with(mnemonic)) return true;
  }
  return false;
}

/// Separates the replies in an input; no reply of the meter has it.
inline constexpr char endOfReply = '|';

/// Lets the meter answer each query with the next piece of the input; the piece "!" is a refusal.
/// After the last piece the link is gone: the query in progress fails, and so does every other.
class FuzzMeter {
 public:
  FuzzMeter(test::FakeWorld& world, FuzzInput input) : world_(world), input_(input) {
    world_.meter.onMessage = [this](const std::string& message) { prepare(message); };
  }
  FuzzMeter(const FuzzMeter&) = delete;
  FuzzMeter& operator=(const FuzzMeter&) = delete;
  ~FuzzMeter() { world_.meter.onMessage = nullptr; }

  /// For what the user types.
  std::string nextText() { return input_.piece(endOfReply); }

 private:
  void prepare(const std::string& message) {
    test::FakeMeter& meter = world_.meter;
    meter.replies.clear();
    meter.rejected.clear();
    if (!isQuery(message)) return;
    if (input_.atEnd()) return endLink();
    const std::string reply = input_.piece(endOfReply);
    if (reply != "!") {
      meter.replies[message] = reply;
    } else if (overSerial()) {
      endLink();  // nothing comes over this link that could end the wait
    } else {
      meter.rejected.insert(message);
    }
  }

  static bool overSerial() { return LinkSettings.commsType == commsTypeRS232; }

  void endLink() {
    if (overSerial()) {
      world_.serial.lose();
    } else {
      world_.meter.errorIsReported = true;
      LinkSettings.commsType = 0;
    }
  }

  test::FakeWorld& world_;
  FuzzInput input_;
};

/// How the first byte of an input sets the link up; the rest of it chooses the routine.
inline unsigned chooseLink(test::FakeWorld& world, std::uint8_t choice) {
  if ((choice & 1U) != 0) world.useSerial();
  if ((choice & 2U) != 0) {
    world.gpib.chunkSize = 5;
    world.serial.pieceSize = 3;
  }
  return choice >> 2U & 7U;
}

}  // namespace pulsemod::fuzz
