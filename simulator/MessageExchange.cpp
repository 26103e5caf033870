#include "MessageExchange.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "NumberText.h"

namespace simmeter {

MessageExchange::MessageExchange(const Scenario& scenario, Framing framing, Transcript& transcript)
    : scenario_(scenario),
      framing_(framing),
      transcript_(transcript),
      meter_(scenario.meter),
      faults_(scenario.faults) {
  for (const std::string& problem : scenario.problems) transcript_.write("SCENARIO", problem);
  switchOn();
}

void MessageExchange::switchOn() {
  meter_.reset();
  for (const std::string& command : scenario_.setup) {
    std::string ignored;
    bool isBlock = false;
    if (meter_.execute(command, ignored, isBlock) != Refusal::kNone) {
      transcript_.write("SCENARIO", "setup refused: " + command);
    }
  }
}

void MessageExchange::receive(std::string_view bytes, bool end, TimePoint now) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    const bool endHere = end && i + 1 == bytes.size();
    const bool secondOfPair = framing_.carriageReturnEnds && c == '\n' && lastWasCarriageReturn_;
    lastWasCarriageReturn_ = c == '\r';
    if (secondOfPair) continue;
    noteInterruption();
    if (framing_.carriageReturnEnds && c == '\r') {
      finishMessage("CR", now);
    } else if (c == '\n') {
      finishMessage(framing_.carriageReturnEnds ? "LF" : endHere ? "NL+EOI" : "NL", now);
    } else {
      if (input_.size() < kLongestMessage) {
        input_ += c;
      } else {
        inputTooLong_ = true;
      }
      if (endHere) finishMessage("EOI", now);
    }
  }
  watchService(now);
}

void MessageExchange::noteInterruption() {
  if (!reply_) return;
  interruption_ = readTimedOut_ ? Interruption::kAfterTimeOut : Interruption::kPlain;
  interrupted_.assign(reply_->bytes, 0, 32);
  reply_.reset();
  eventStatus_ |= esr::kQueryError;
}

void MessageExchange::reportInterruption() {
  if (interruption_ == Interruption::kNone) return;
  std::string_view kind = "INTERRUPTED";
  if (startsIgnoringCase(trimBlanks(input_), "*CLS")) {
    kind = "INTERRUPTED-BY-CLEAR";
  } else if (interruption_ == Interruption::kAfterTimeOut) {
    kind = "INTERRUPTED-AFTER-TIMEOUT";
  }
  interruption_ = Interruption::kNone;
  std::string text;
  appendQuoted(text, interrupted_, interrupted_.size());
  transcript_.write(kind, text);
}

void MessageExchange::finishMessage(std::string_view end, TimePoint now) {
  reportInterruption();
  transcript_.received(input_, end);
  replyWithheld_ = false;
  if (inputTooLong_) {
    reportRefusal(Refusal::kDevice, "message too long");
  } else {
    runMessage(now);
  }
  input_.clear();
  inputTooLong_ = false;
}

void MessageExchange::runMessage(TimePoint now) {
  std::string answer;
  bool isBlock = false;
  bool deadlocked = false;
  std::string_view rest = input_;
  while (true) {
    const std::size_t semicolon = rest.find(';');
    const std::string_view unit = trimBlanks(rest.substr(0, semicolon));
    if (!unit.empty()) runUnit(unit, answer, isBlock, now);
    // What ends and returns within a message is a new reason, and so is its reply.
    watchService(now);
    if (answer.size() > kLongestAnswer || deadlocked) {
      // The controller sends on and does not read: nothing can leave any more.
      if (!deadlocked) reportQueryError("DEADLOCK");
      deadlocked = true;
      answer.clear();
    }
    if (semicolon == std::string_view::npos) break;
    rest.remove_prefix(semicolon + 1);
  }
  if (!answer.empty()) sendReply(answer, isBlock, now);
}

void MessageExchange::runUnit(std::string_view unit, std::string& answer, bool& isBlock,
                              TimePoint now) {
  for (const FaultRule* rule : faults_.onUnit(unit)) {
    transcript_.write("FAULT", rule->written);
    reportRefusal(rule->refusal, unit);
    return;
  }
  const std::size_t before = answer.size();
  if (before != 0) answer += ';';
  const std::size_t start = answer.size();
  const Refusal refusal = execute(unit, answer, isBlock, now);
  if (refusal != Refusal::kNone || answer.size() == start) answer.resize(before);
  reportRefusal(refusal, unit);
}

Refusal MessageExchange::execute(std::string_view unit, std::string& answer, bool& isBlock,
                                 TimePoint now) {
  if (unit.front() == '*') return executeCommon(unit, answer, now);
  return meter_.execute(unit, answer, isBlock);
}

void MessageExchange::reportRefusal(Refusal refusal, std::string_view unit) {
  std::string text;
  switch (refusal) {
    case Refusal::kNone:
      return;
    case Refusal::kCommand:
      eventStatus_ |= esr::kCommandError;
      text = "command ";
      break;
    case Refusal::kExecution:
      eventStatus_ |= esr::kExecutionError;
      text = "execution ";
      break;
    case Refusal::kDevice:
      eventStatus_ |= esr::kDeviceError;
      text = "device ";
      break;
  }
  if (!transcript_.isOpen()) return;
  appendQuoted(text, unit, 200);
  transcript_.write("ERROR", text);
}

void MessageExchange::reportQueryError(std::string_view name) {
  eventStatus_ |= esr::kQueryError;
  transcript_.write("ERROR", "query " + std::string(name));
}

// A reply in the making, before the scenario's faults have had their way with it.
struct MessageExchange::Draft {
  std::string& text;
  std::string_view prefix;
  std::string_view terminator;
  Reply reply;
  std::size_t cut = std::string::npos;  // bytes that leave at all
  bool withheld = false;
};

void MessageExchange::spoil(const FaultRule& rule, Draft& draft) {
  transcript_.write("FAULT", rule.written);
  const auto amount = static_cast<std::size_t>(rule.amount);
  const auto time = std::chrono::milliseconds(rule.amount);
  switch (rule.kind) {
    case FaultKind::kLate:
      draft.reply.due += time;
      return;
    case FaultKind::kCut:
      draft.cut = amount;
      draft.reply.ends = false;
      return;
    case FaultKind::kShort:
      draft.text.resize(std::min(draft.text.size(), amount));
      return;
    case FaultKind::kEmpty:
      draft.text.clear();
      return;
    case FaultKind::kGarble:
      for (std::size_t i = 0; i < draft.text.size(); i += 3) {
        draft.text[i] = static_cast<char>(draft.text[i] ^ 1);
      }
      return;
    case FaultKind::kReplace:
      draft.text = rule.text;
      return;
    case FaultKind::kRaw:
      draft.text = rule.text;
      draft.prefix = draft.terminator = {};
      return;
    case FaultKind::kByteWise:
      draft.reply.perByte = time;
      return;
    case FaultKind::kStall:
      draft.reply.stallAfter = amount;
      draft.reply.stall = std::chrono::milliseconds(rule.second);
      return;
    case FaultKind::kHangUp:
      hungUp_ = true;
      draft.withheld = true;
      return;
    default:  // missing; what belongs to commands or calls never comes here
      draft.withheld = true;
      return;
  }
}

void MessageExchange::sendReply(std::string& answer, bool isBlock, TimePoint now) {
  Draft draft{answer, framing_.replyPrefix, isBlock ? "\n" : "\r\n", {}};
  Reply& reply = draft.reply;
  reply.due = now + scenario_.replyDelay;
  reply.perByte = perByte_;
  for (const FaultRule* rule : faults_.onReply(input_)) spoil(*rule, draft);
  reply.bytes.reserve(answer.size() + 4);
  reply.bytes.append(draft.prefix).append(answer).append(draft.terminator);
  if (draft.cut < reply.bytes.size()) reply.bytes.resize(draft.cut);
  replyWithheld_ = draft.withheld || reply.bytes.empty();
  readTimedOut_ = false;
  if (!replyWithheld_) reply_ = std::move(reply);
}

void MessageExchange::replyFinished() {
  if (reply_->ends) transcript_.handedOver(reply_->bytes);
  replyWithheld_ = !reply_->ends;
  reply_.reset();
}

void MessageExchange::readInVain() {
  if (!replyWithheld_) reportQueryError("UNTERMINATED");
}

void MessageExchange::deviceClear() {
  reportInterruption();
  transcript_.write("CLEAR", "");
  input_.clear();
  inputTooLong_ = false;
  reply_.reset();
  replyWithheld_ = false;
}

int MessageExchange::statusByte(TimePoint now) const {
  int status = 0;
  if (reply_ && reply_->available(now) > 0) status |= stb::kMessageAvailable;
  if ((eventStatus_ & eventEnable_) != 0) status |= stb::kEventStatus;
  return status;
}

void MessageExchange::watchService(TimePoint now) {
  const int reasons = statusByte(now) & serviceEnable_;
  if (reasons == 0) requested_ = false;
  if ((reasons & ~serviceReasons_) != 0) requested_ = true;  // each bit is a reason of its own
  serviceReasons_ = reasons;
}

bool MessageExchange::requestsService(TimePoint now) {
  watchService(now);
  return requested_;
}

int MessageExchange::serialPoll(TimePoint now) {
  watchService(now);
  const int status = statusByte(now) | (requested_ ? stb::kService : 0);
  requested_ = false;
  return status;
}

// The rows' procedures; a friend, so that the table stays a plain table.
struct CommonCommands {
  using Exchange = MessageExchange;
  static void clear(Exchange& e, int, TimePoint, std::string&) { e.eventStatus_ = 0; }
  static void setEventEnable(Exchange& e, int n, TimePoint, std::string&) { e.eventEnable_ = n; }
  static void eventEnable(Exchange& e, int, TimePoint, std::string& answer) {
    appendInteger(answer, e.eventEnable_);
  }
  static void eventStatus(Exchange& e, int, TimePoint, std::string& answer) {
    appendInteger(answer, e.eventStatus_);
    e.eventStatus_ = 0;
  }
  static void setServiceEnable(Exchange& e, int n, TimePoint, std::string&) {
    e.serviceEnable_ = n & ~stb::kService;  // a request for service is no reason for itself
  }
  static void serviceEnable(Exchange& e, int, TimePoint, std::string& answer) {
    appendInteger(answer, e.serviceEnable_);
  }
  static void status(Exchange& e, int, TimePoint now, std::string& answer) {
    int status = e.statusByte(now);
    // What came before in the same message is already in the output queue.
    if (!answer.empty()) status |= stb::kMessageAvailable;
    if ((status & e.serviceEnable_) != 0) status |= stb::kService;
    appendInteger(answer, status);
  }
  static void identity(Exchange& e, int, TimePoint, std::string& answer) {
    answer += e.meter_.identity();
  }
  // Every operation is complete when its command has been carried out.
  static void completeEvent(Exchange& e, int, TimePoint, std::string&) {
    e.eventStatus_ |= esr::kOperationComplete;
  }
  static void complete(Exchange&, int, TimePoint, std::string& answer) { answer += '1'; }
  static void reset(Exchange& e, int, TimePoint, std::string&) { e.switchOn(); }
  static void selfTest(Exchange&, int, TimePoint, std::string& answer) { answer += '0'; }
  static void wait(Exchange&, int, TimePoint, std::string&) {}
};

namespace {

struct CommonCommand {
  std::string_view name;
  bool takesNumber;  // 0 to 255
  void (*run)(MessageExchange&, int, TimePoint, std::string&);
};

constexpr std::array kCommon = {
    CommonCommand{"*CLS", false, CommonCommands::clear},
    CommonCommand{"*ESE", true, CommonCommands::setEventEnable},
    CommonCommand{"*ESE?", false, CommonCommands::eventEnable},
    CommonCommand{"*ESR?", false, CommonCommands::eventStatus},
    CommonCommand{"*SRE", true, CommonCommands::setServiceEnable},
    CommonCommand{"*SRE?", false, CommonCommands::serviceEnable},
    CommonCommand{"*STB?", false, CommonCommands::status},
    CommonCommand{"*IDN?", false, CommonCommands::identity},
    CommonCommand{"*OPC", false, CommonCommands::completeEvent},
    CommonCommand{"*OPC?", false, CommonCommands::complete},
    CommonCommand{"*RST", false, CommonCommands::reset},
    CommonCommand{"*TST?", false, CommonCommands::selfTest},
    CommonCommand{"*WAI", false, CommonCommands::wait},
};

}  // namespace

Refusal MessageExchange::executeCommon(std::string_view unit, std::string& answer, TimePoint now) {
  const std::size_t end = findBlank(unit);
  const std::string_view argument =
      end == std::string_view::npos ? std::string_view{} : trimBlanks(unit.substr(end));
  for (const CommonCommand& command : kCommon) {
    if (!equalIgnoringCase(command.name, unit.substr(0, end))) continue;
    if (command.takesNumber == argument.empty()) return Refusal::kCommand;
    int number = 0;
    if (command.takesNumber) {
      const auto parsed = parseDecimal(argument);
      if (!parsed) return Refusal::kCommand;
      const double rounded = std::round(*parsed);
      if (rounded < 0 || rounded > 255) return Refusal::kExecution;
      number = static_cast<int>(rounded);
    }
    command.run(*this, number, now, answer);
    return Refusal::kNone;
  }
  return Refusal::kCommand;
}

}  // namespace simmeter
