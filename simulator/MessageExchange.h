// The message exchange of IEEE 488.2 and its status reporting, the same behind both links:
// messages in, replies out, the common commands, the event registers, and the errors of a
// controller that breaks the rules.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "FaultPlan.h"
#include "Meter.h"
#include "Reply.h"
#include "Scenario.h"
#include "Transcript.h"

namespace simmeter {

// Bits of the status byte.
namespace stb {
constexpr int kMessageAvailable = 16;
constexpr int kEventStatus = 32;
constexpr int kService = 64;  // RQS in a serial poll, MSS in *STB?
}  // namespace stb

// Bits of the event status register.
namespace esr {
constexpr int kOperationComplete = 1;
constexpr int kQueryError = 4;
constexpr int kDeviceError = 8;
constexpr int kExecutionError = 16;
constexpr int kCommandError = 32;
constexpr int kPowerOn = 128;
}  // namespace esr

// How a link marks its messages.
struct Framing {
  std::string_view replyPrefix;  // before every reply
  bool carriageReturnEnds;       // CR ends a message, and so does a LF that follows none
};
constexpr Framing kGpibFraming{"", false};
constexpr Framing kSerialFraming{"R", true};

class MessageExchange {
 public:
  static constexpr std::size_t kLongestMessage = 4096;  // bytes; longer ones are a device error
  static constexpr std::size_t kLongestAnswer = 65536;  // bytes; longer ones are a deadlock

  // The scenario and the transcript must outlive the exchange. The meter is switched on: the
  // scenario's setup is carried out, and its problems are recorded.
  MessageExchange(const Scenario& scenario, Framing framing, Transcript& transcript);

  // Bytes from the controller; `end` says that EOI came with the last of them. The first byte of
  // a message that comes while a reply is due or unread is an interrupted query: what is left of
  // the reply is discarded.
  void receive(std::string_view bytes, bool end, TimePoint now);

  // Time that each byte of later replies takes on the line.
  void setBytePace(Duration perByte) { perByte_ = perByte; }

  // The reply that is due or not wholly read, or nullptr. The link counts up `taken`.
  Reply* reply() { return reply_ ? &*reply_ : nullptr; }
  // The link has handed over all bytes of the reply.
  void replyFinished();
  // The controller has given up reading.
  void readTimedOut() { readTimedOut_ = reply_.has_value(); }
  // The controller reads and there is nothing to say: a query error, unless a fault is the cause.
  void readInVain();

  // Empties input and output; settings and registers stay.
  void deviceClear();

  // The status byte with RQS, which the poll clears.
  int serialPoll(TimePoint now);
  bool requestsService(TimePoint now);

  FaultPlan& faults() { return faults_; }
  Transcript& transcript() { return transcript_; }
  // A fault has taken the link away for good.
  bool hungUp() const { return hungUp_; }
  void hangUp() { hungUp_ = true; }

 private:
  enum class Interruption { kNone, kPlain, kAfterTimeOut };
  struct Draft;

  void noteInterruption();
  void reportInterruption();
  void finishMessage(std::string_view end, TimePoint now);
  void runMessage(TimePoint now);
  void runUnit(std::string_view unit, std::string& answer, bool& isBlock, TimePoint now);
  Refusal execute(std::string_view unit, std::string& answer, bool& isBlock, TimePoint now);
  Refusal executeCommon(std::string_view unit, std::string& answer, TimePoint now);
  void reportRefusal(Refusal refusal, std::string_view unit);
  void reportQueryError(std::string_view name);
  void sendReply(std::string& answer, bool isBlock, TimePoint now);
  void spoil(const FaultRule& rule, Draft& draft);
  void switchOn();

  int statusByte(TimePoint now) const;  // without bit 64
  void watchService(TimePoint now);

  friend struct CommonCommands;

  const Scenario& scenario_;
  const Framing framing_;
  Transcript& transcript_;
  Meter meter_;
  FaultPlan faults_;
  Duration perByte_{};

  std::string input_;
  bool inputTooLong_ = false;
  bool lastWasCarriageReturn_ = false;

  std::optional<Reply> reply_;
  bool replyWithheld_ = false;  // by a fault: reading in vain is then not the controller's error
  bool readTimedOut_ = false;
  Interruption interruption_ = Interruption::kNone;
  std::string interrupted_;  // the beginning of the reply that was discarded

  int eventStatus_ = esr::kPowerOn;
  int eventEnable_ = 0;
  int serviceEnable_ = 0;
  int serviceReasons_ = 0;  // the enabled bits of the status byte when it was last looked at
  bool requested_ = false;
  bool hungUp_ = false;
};

}  // namespace simmeter
