#include "link/MeterLink.h"

#include <array>
#include <cmath>
#include <string_view>

#include "link/ExchangeCount.h"
#include "link/GpibCalls.h"
#include "link/NumberText.h"
#include "platform/Services.h"

namespace pulsemod {

CommsSettings LinkSettings;
bool ReplyMayBeGivenUp = false;
bool LinkGivenUp = false;

namespace {

constexpr int messageAvailable = 0x10;
constexpr int eventStatus = 0x20;
constexpr int pauseBetweenChunksMs = 10;
constexpr float pollIntervalMs = 100;

int address() { return LinkSettings.gpibAddress; }

bool overSerial() { return LinkSettings.commsType == commsTypeRS232; }
bool overGpib() { return LinkSettings.commsType == commsTypeGPIB; }

/// One exchange with the meter. Those that an exchange needs for itself are part of it.
template <typename Exchange>
bool carryOut(const Exchange& exchange) {
  if (ExchangeCount.onlyCounting) {
    ++ExchangeCount.counted;
    return false;
  }
  const bool succeeded = exchange();
  if (ExchangeCount.afterEach) ExchangeCount.afterEach();
  return succeeded;
}

/// Reads one chunk of up to 4096 characters and appends it to `reply` without its last character.
bool receiveChunk(std::string& reply) {
  std::array<char, 4096> buffer{};
  Receive(gpibBoard, address(), buffer.data(), buffer.size());
  if (gpibFailed()) return false;
  const auto received = static_cast<std::size_t>(Gpib.longCount > 0 ? Gpib.longCount : 0);
  services().events.processPending();
  if (received > 0 && received <= buffer.size()) reply.append(buffer.data(), received - 1);
  services().clock.sleep(pauseBetweenChunksMs);
  return true;
}

bool completedOverGpib(const std::string& command) {
  Send(gpibBoard, address(), command);
  if (gpibFailed()) return false;
  std::array<char, 50> buffer{};
  Receive(gpibBoard, address(), buffer.data(), buffer.size());
  if (gpibFailed() || Gpib.longCount <= 1) return false;
  const auto received = static_cast<std::size_t>(Gpib.longCount);
  return received <= buffer.size() &&
         leadingNumber(std::string_view(buffer.data(), received - 1)) == 1;
}

std::string withCompletionQuery(const std::string& command) { return command + "; *OPC?"; }

/// The meter's error state is cleared so that the next exchange starts clean.
void clearMeterErrors() { completedOverGpib(withCompletionQuery("*CLS")); }

bool queryOverGpib(const std::string& command, std::string& reply) {
  Send(gpibBoard, address(), command);
  if (gpibFailed()) return false;
  while (true) {
    if (!receiveChunk(reply)) return false;
    const int status = ReadStatusByte(gpibBoard, address());
    if (gpibFailed()) return false;
    if ((status & eventStatus) != 0) {
      clearMeterErrors();
      return false;
    }
    if ((status & messageAvailable) == 0) return true;
  }
}

/// Polls until the meter has a message; false when it reports an error instead.
bool waitForMessage() {
  while (true) {
    const int status = ReadStatusByte(gpibBoard, address());
    if (gpibFailed()) return false;
    if ((status & messageAvailable) != 0) return true;
    if ((status & eventStatus) != 0) {
      clearMeterErrors();
      return false;
    }
    float delay = pollIntervalMs;
    DelayMs(delay);
  }
}

bool queryOverGpibWhenReady(const std::string& command, std::string& reply) {
  Send(gpibBoard, address(), command);
  if (gpibFailed() || !waitForMessage()) return false;
  while (true) {
    if (!receiveChunk(reply)) return false;
    const int status = ReadStatusByte(gpibBoard, address());
    if (gpibFailed()) return false;
    if ((status & messageAvailable) == 0) return true;
  }
}

bool serialExchangeIsAlive() { return services().serial.isOpen() && !LinkGivenUp; }

/// Lets events run while nothing has moved on the line since `start`; false when the wait is over
/// for good.
bool waitForSerial(float start) {
  const Services& world = services();
  if (!serialExchangeIsAlive()) return false;
  if (!ReplyMayBeGivenUp || !world.progress.dismissed()) {
    world.events.processUntilEvent();
    return true;
  }
  const float silentMs = (onDayOf(start, world.clock.secondsSinceMidnight()) - start) * 1000.0F;
  LinkGivenUp = silentMs >= replyPatienceMs;
  if (LinkGivenUp) return false;
  world.events.processUntilEventOr(static_cast<int>(std::ceil(replyPatienceMs - silentMs)));
  return true;
}

/// False when the port is closed or was lost before the last character had left.
bool writeToSerial(const std::string& command) {
  if (!serialExchangeIsAlive()) return false;
  const Services& world = services();
  const float start = world.clock.secondsSinceMidnight();
  world.serial.write(command + "\r");
  world.events.processPending();
  while (world.serial.outputCount() > 0 && waitForSerial(start)) {
  }
  return serialExchangeIsAlive();
}

/// The next character from the serial port, however long it takes; nothing when the port was lost
/// or the user gave up.
std::optional<char> nextSerialCharacter() {
  const Services& world = services();
  world.events.processPending();
  if (const auto character = world.serial.input()) return character;
  const float start = world.clock.secondsSinceMidnight();
  while (waitForSerial(start)) {
    if (const auto character = world.serial.input()) return character;
  }
  return std::nullopt;
}

/// Collects a reply: what comes before the first "R" is dropped, and so is the "R"; the line feed
/// ends it.
bool ReadSerialReply(std::string& reply) {
  bool started = false;
  while (const auto character = nextSerialCharacter()) {
    if (!started) {
      started = *character == 'R';
    } else if (*character == '\n') {
      return true;
    } else {
      reply += *character;
    }
  }
  return false;
}

bool queryOverSerial(const std::string& command, std::string& reply) {
  return writeToSerial(command) && ReadSerialReply(reply);
}

}  // namespace

void OpenMeterLink() {
  if (!overGpib()) return;
  constexpr int pauseAfterClearMs = 500;
  SendIFC(gpibBoard);
  DevClear(gpibBoard, address());
  services().clock.sleep(pauseAfterClearMs);
}

void ConfigureSerialPort() {
  if (!overSerial()) return;
  SerialPort& port = services().serial;
  if (port.isOpen()) port.close();
  port.setSettings(std::to_string(LinkSettings.rs232Baud) + ",N,8,1");
  port.setPortNumber(LinkSettings.rs232Port);
}

void CloseMeterLink() { ibonl(ibfindA(gpibBoardName), 0); }

bool linkIsLost() { return overSerial() && !services().serial.isOpen(); }

std::string linkFailureReason() {
  if (overGpib()) return gpibFailureReason(address());
  if (!overSerial()) return "The stored communications settings name neither GPIB nor RS232.";
  std::string reason = services().serial.failureReason();
  if (!reason.empty()) return reason;
  return "No power meter answers at COM" + std::to_string(LinkSettings.rs232Port) + ":.";
}

bool SendCommand(const std::string& command) {
  return carryOut([&command] {
    if (overSerial()) {
      writeToSerial(command);
      return false;
    }
    if (!overGpib()) return false;
    Send(gpibBoard, address(), command);
    return !gpibFailed();
  });
}

bool QueryMeter(const std::string& command, std::string& reply) {
  reply.clear();
  return carryOut([&] {
    if (overSerial()) return queryOverSerial(command, reply);
    return overGpib() && queryOverGpib(command, reply);
  });
}

bool QueryMeterWhenReady(const std::string& command, std::string& reply) {
  reply.clear();
  return carryOut([&] {
    if (overSerial()) return queryOverSerial(command, reply);
    return overGpib() && queryOverGpibWhenReady(command, reply);
  });
}

bool WaitOperationComplete(const std::string& command) {
  return carryOut([withQuery = withCompletionQuery(command)] {
    if (overSerial()) {
      std::string reply;
      queryOverSerial(withQuery, reply);
      // The meter's answer is read and never looked at: no reply counts as complete on this link.
      return false;
    }
    return overGpib() && completedOverGpib(withQuery);
  });
}

void ClearMeter() {
  if (!overGpib()) return;
  DevClear(gpibBoard, address());
  float pauseAfterClearMs = 100;
  DelayMs(pauseAfterClearMs);
}

void DelayMs(float& milliseconds) {
  const Services& world = services();
  const float start = world.clock.secondsSinceMidnight();
  const float target = start + milliseconds / 1000.0F;
  milliseconds = target;
  while (true) {
    const float now = onDayOf(start, world.clock.secondsSinceMidnight());
    if (now >= target) return;
    world.events.processUntilEventOr(static_cast<int>(std::ceil((target - now) * 1000.0F)));
  }
}

}  // namespace pulsemod
