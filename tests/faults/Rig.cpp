#include "Rig.h"

#include <array>

#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/Session.h"
#include "startup/MeterModel.h"
#include "startup/StartUp.h"

namespace pulsemod::test {

namespace {

constexpr std::size_t wholeReply = 1U << 20U;

std::string boxText(const ShownBox& box) {
  constexpr std::array icons = {"none", "information", "exclamation", "question"};
  return box.title + "|" + box.text + "|" + icons[static_cast<std::size_t>(box.icon)] + "|" +
         box.details;
}

}  // namespace

Rig::Rig(bool serial, const std::vector<std::string>& setup, const Faults& faults)
    : serial_(serial), meter_(setup), faults_(faults) {
  world.clock.seconds = 0;  // where the steps of the clock are fine
  world.meter.answer = [this](const std::string& message) { return answer(message); };
  world.gpib.onReply = [this](std::string& wire) { pass(wire); };
  world.serial.onReply = [this](std::string& wire) { pass(wire); };
  world.serial.onMoment = [this](LineMoment moment) { onMoment(moment); };
  world.gpib.fault = [this](const std::string&) {
    const bool fails = faults_.gpib.strikes(gpibCalls++);
    return fails ? std::optional(faults_.gpib.code) : std::nullopt;
  };
  world.events.onIdle = [this] { return onIdle(); };
}

std::optional<std::string> Rig::answer(const std::string& message) {
  const auto reply = meter_.tell(message);
  world.meter.errorIsReported = meter_.errorIsReported;
  if (!reply) return reply;
  wire_ = (serial_ ? "R" : "") + *reply;
  return std::string();
}

/// The meter's own framing in place of the fakes', and what happens to it on its way.
void Rig::pass(std::string& wire) {
  wire = wire_;
  const bool strikes = static_cast<int>(replies.size()) == faults_.spoil.reply;
  replies.push_back(wire);
  std::size_t piece = wholeReply;
  if (strikes) {
    spoilWire(faults_.spoil, wire, serial_ ? 1 : 0);
    if (faults_.spoil.kind == Spoil::Kind::pieces) piece = faults_.spoil.place;
  }
  const bool lostInReply =
      messages - 1 == faults_.loss.message && faults_.loss.moment == LossPlan::Moment::midReply;
  world.serial.pieceSize = lostInReply ? pieceBeforeLoss : piece;
  world.gpib.chunkSize = piece;
}

void Rig::onMoment(LineMoment moment) {
  if (moment == LineMoment::write) ++messages;
  if (messages - 1 != faults_.loss.message) return;
  using enum LossPlan::Moment;
  const LossPlan::Moment planned = faults_.loss.moment;
  const bool strikes = (moment == LineMoment::write && planned == before) ||
                       (moment == LineMoment::leaving && planned == leaving) ||
                       (moment == LineMoment::left && planned == left) ||
                       (moment == LineMoment::piece && planned >= midReply);
  if (strikes) world.serial.lose();
}

/// While a reply is waited for, events go on, and then the user closes the program. Without a
/// conversation it is the loop that waits for the user, and the workflow is over.
bool Rig::onIdle() {
  if (!Conversation.open) return false;
  waited_ = true;
  constexpr int events = 3;
  if (eventsWhileWaiting < events) {
    world.events.post([this] { ++eventsWhileWaiting; });
  } else {
    world.events.post([] { EndSession(); });
  }
  return true;
}

void Rig::act(const std::function<void()>& handler) { reportFaults(handler); }

void Rig::type(const std::string& text, const std::function<void()>& handler) {
  world.dialogs.textAnswers.push_back(text);
  act(handler);
}

void Rig::connect() {
  if (serial_) world.useSerial();
}

void Rig::start(StartChoice choice) {
  storeComms(world, serial_ ? "1" : "2");
  startUp.answers = {choice};
  StartUp(startUp);
}

Outcome Rig::follow(const std::function<void(Rig&)>& workflow) {
  Outcome::End end = Outcome::End::returned;
  try {
    workflow(*this);
  } catch (const WaitsForEver&) {
    end = Outcome::End::returned;
  } catch (const ProgramEnded&) {
    end = waited_ ? Outcome::End::waited : Outcome::End::ended;
  } catch (const std::exception&) {
    end = Outcome::End::broken;
  }
  Outcome outcome = gather();
  outcome.end = end;
  return outcome;
}

Outcome Rig::gather() const {
  Outcome outcome;
  outcome.sent = world.meter.received;
  for (const ShownBox& box : world.dialogs.messages) outcome.boxes.push_back(boxText(box));
  outcome.menus = profile.menus;
  for (const std::string& call : ccdf.calls) {
    if (call == "started" || call == "stopped") outcome.menus.push_back(call);
  }
  outcome.drawings = profile.picture.timesShown + ccdf.picture.timesShown;
  outcome.running = AcquisitionRunning != False16;
  outcome.progressShown = world.progress.visible;
  outcome.meterModel = MeterModel;
  outcome.settings = Settings;
  outcome.profile = ProfileTrace;
  outcome.readings = GateReadings;
  outcome.ccdf = CCDF;
  outcome.curve = CCDFData;
  return outcome;
}

}  // namespace pulsemod::test
