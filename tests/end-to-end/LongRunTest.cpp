#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <sstream>

#include "Edges.h"
#include "Exchanges.h"
#include "Expected.h"
#include "RandomUse.h"
#include "RandomUser.h"

namespace endtoend {
namespace {

/// Gates 1 to 3 are on, and the fence of gate 4 without its gate. Every reply is late, and those of
/// the commonest questions come in two halves.
constexpr auto slowMeter =
    "setup = GPGATS 1,2,ON\n"
    "setup = GPFENS 1,2,ON\n"
    "setup = GPGATS 1,3,ON\n"
    "setup = GPFENS 1,4,ON\n"
    "reply-delay = 12\n"
    "fault = PMPO 1, every, stall 1200 40\n"
    "fault = PMPBO, every, late 30\n"
    "fault = MKNO, every, stall 4 15\n"
    "fault = TRCAPT?, every, stall 9 30\n"
    "fault = TRDLYT?, every, late 30\n"
    "fault = PMPREF?, every, stall 3 30\n"
    "fault = PMPSCAL?, every, late 40\n";

const EdgeTimes edgesAtTheStart = {
    {"Gate 1 Start", 5e-5},    {"Gate 1 Stop", 5.5e-4},   {"Fence 1 Start", 2.2e-4},
    {"Fence 1 Stop", 3.3e-4},  {"Gate 2 Start", 1.25e-3}, {"Gate 2 Stop", 1.75e-3},
    {"Fence 2 Start", 1.4e-3}, {"Fence 2 Stop", 1.5e-3},  {"Gate 3 Start", 7e-4},
    {"Gate 3 Stop", 1.1e-3},   {"Fence 4 Start", 5.5e-4}, {"Fence 4 Stop", 1.25e-3}};

class LongRun : public BenchOnEachLink {
 protected:
  void work(RandomUser& user);
  void typeValue(const std::string& label, const std::string& value);
  /// Everything that was to be said before has been said.
  Events awaitSilence();
  Events awaitSilence(RandomUser& user);
  std::string findEdge(const std::string& edge, double seconds);
  static bool standsUnderAnother(const std::string& edge, const EdgeTimes& told);
  void expectEdgesAsTold(const EdgeTimes& told);
  static std::string interruptions(const Events& events);
  static std::size_t countInterruptions(const Events& events);
  static std::string refusals(const Events& events);

  long memoryEarly_ = 0;
  std::size_t edgesLookedAt_ = 0;
};
ON_BOTH_LINKS(LongRun);

void LongRun::work(RandomUser& user) {
  using Clock = std::chrono::steady_clock;
  const auto begin = Clock::now();
  const auto length = workingTime();
  while (Clock::now() - begin < length) {
    user.act();
    if (memoryEarly_ == 0 && Clock::now() - begin > length / 10) {
      memoryEarly_ = program().residentKilobytes();
    }
  }
}

void LongRun::typeValue(const std::string& label, const std::string& value) {
  hands().click("frmMain/" + label);
  hands().type("inputBox/QLineEdit", value);
  hands().key("inputBox", "Return");
  hands().waitGone("inputBox");
}

Events LongRun::awaitSilence() {
  const std::size_t before = countMessages(transcript(), "TR3");
  hands().trigger("frmMain/menuFreeRun");
  return awaitMessages("TR3", before + 1);
}

/// The same while boxes may still come up.
Events LongRun::awaitSilence(RandomUser& user) {
  const std::size_t before = countMessages(transcript(), "TR3");
  std::size_t looks = 0;
  const auto isSilent = [&](const Events& events) {
    user.comeToRest();
    // A box that comes up takes the key.
    constexpr std::size_t patienceInLooks = 500;
    if (looks++ % patienceInLooks == 0) hands().key("frmMain", "F6");
    return countMessages(events, "TR3") > before;
  };
  awaitTranscript("the end of all exchanges", isSilent);
  hands().giveUpAt("");
  return awaitSilence();
}

/// The label of an edge that should stand at `seconds`, with the graph drawn out around it: other
/// edges may stand very near.
std::string LongRun::findEdge(const std::string& edge, double seconds) {
  constexpr int captureMicroseconds = 20;
  const double delay = std::floor(seconds * 1e6) - captureMicroseconds / 2.0;
  typeValue("lblStart", std::to_string(static_cast<long>(delay)) + "us");
  typeValue("lblCapture", std::to_string(captureMicroseconds) + "us");
  hands().waitUntil("frmMain/lblCapture", "text", std::to_string(captureMicroseconds) + "us");
  awaitSilence();
  std::istringstream place(hands().get(robot::profileGraph, "place"));
  int skipped = 0;
  int width = 0;
  place >> skipped >> skipped >> width;
  const auto column = static_cast<int>((seconds * 1e6 - delay) / captureMicroseconds * width);
  std::string seen;
  for (int away = 0; away < 16; ++away) {
    for (const int x : {column - away, column + away}) {
      hands().mouse("move", robot::profileGraph, x, 20);
      if (!hands().is("lblgate", "visible")) continue;
      seen = hands().get("lblgate", "text");
      if (readEdgeLabel(seen).edge == edge) return seen;
    }
  }
  return "not found; at its place: " + seen;
}

/// Edges may be dragged to one and the same place, and only one of them can be had there.
bool LongRun::standsUnderAnother(const std::string& edge, const EdgeTimes& told) {
  constexpr double reach = 3 * 20e-6 / 400;
  EdgeTimes all = told;
  all.insert(edgesAtTheStart.begin(), edgesAtTheStart.end());
  return std::any_of(all.begin(), all.end(), [&](const auto& other) {
    return other.first != edge && std::fabs(other.second - all.at(edge)) <= reach;
  });
}

void LongRun::expectEdgesAsTold(const EdgeTimes& told) {
  // Beyond this a single is coarser than the columns of the drawn-out graph.
  constexpr double farthest = 0.5;
  for (const auto& [edge, seconds] : told) {
    if (std::fabs(seconds) > farthest || standsUnderAnother(edge, told)) continue;
    const std::string label = findEdge(edge, seconds);
    EXPECT_EQ(readEdgeLabel(label).edge, edge) << label;
    EXPECT_TRUE(showsTime(readEdgeLabel(label).time, seconds))
        << label << ", but the meter was told " << seconds;
    ++edgesLookedAt_;
  }
}

std::string LongRun::interruptions(const Events& events) {
  std::string lines;
  for (const Event& event : events) {
    if (event.kind.starts_with("INTERRUPTED") || event.kind == "SCENARIO") {
      lines += event.kind + " " + event.text + "\n";
    }
  }
  return lines;
}

std::size_t LongRun::countInterruptions(const Events& events) {
  const std::string lines = interruptions(events);
  return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
}

/// The user typed values that no meter takes, and dragged edges on the hours that they spread over
/// the graph: of these it may complain, and of nothing else.
std::string LongRun::refusals(const Events& events) {
  constexpr std::array typed = {"TRCAPT 1,PMOD,", "TRDLYT 1,PMOD,", "PMPREF 1,DB,", "PMPSCAL 1,DB,",
                                "GPTIMST 1,",     "GPTIMSP 1,",     "GPFENST 1,",   "GPFENSP 1,"};
  std::string lines;
  for (const Event& event : events) {
    const bool mayBe = std::any_of(typed.begin(), typed.end(), [&event](const char* command) {
      return event.text.starts_with(std::string("execution \"") + command);
    });
    if (event.kind == "ERROR" && !mayBe) lines += event.text + "\n";
  }
  return lines;
}

TEST_P(LongRun, AUserAtRandomNeverDisturbsAnExchange) {
  const std::uint32_t seed = chooseSeed();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::cout << "seed " << seed << std::endl;
  RecordProperty("seed", std::to_string(seed));
  allowOffences();
  startLoaded(GetParam(), slowMeter);
  const std::size_t said = messages(transcript()).size();
  RandomUser user(hands(), seed, edgesAtTheStart);
  work(user);
  const Events events = awaitSilence(user);
  const long memoryAtTheEnd = program().residentKilobytes();

  EXPECT_EQ(user.oddRefusals(), "");
  EXPECT_LT(user.givenUp(), user.actions() / 4);
  EXPECT_EQ(interruptions(events), "");
  EXPECT_EQ(refusals(events), "");
  const Texts spoken = part(messages(events), said);
  EXPECT_EQ(brokenExchanges(spoken), "");
  for (const auto& [command, number] : user.lastEdits()) {
    std::string last = "never sent";
    for (const std::string& message : spoken) {
      if (message.starts_with(command)) last = message;
    }
    EXPECT_EQ(last, command + number);
  }
  const EdgeTimes told = lastEdgeCommands(spoken);
  for (const auto& [edge, time] : user.lastDrags()) {
    ASSERT_TRUE(told.contains(edge)) << edge << " was dragged";
    EXPECT_TRUE(showsTime(time, told.at(edge)))
        << edge << " was left at " << time << ", but the meter was told " << told.at(edge);
  }

  // The program is well: with usual values it shows and does the usual.
  typeValue("lblRef", "10");
  typeValue("lblscale", "10");
  expectEdgesAsTold(told);
  typeValue("lblStart", "-200us");
  typeValue("lblCapture", "2ms");
  for (const char* item : {"frmMain/menuInfoBox", "frmMain/menuMarkers"}) {
    if (hands().is(item, "checked")) hands().trigger(item);
  }
  const std::size_t profiles = countMessages(awaitSilence(), "TR1 1");
  clickStart();
  EXPECT_EQ(interruptions(awaitMessages("TR1 1", profiles + 2)), "");
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
  closeMainWindowAndExpectEnd();

  const auto seconds = static_cast<double>(workingTime().count());
  std::ostringstream line;
  line << (GetParam() == Link::gpib ? "GPIB" : "RS232") << ", seed " << seed << ", " << seconds
       << " s: " << user.actions() << " actions (" << static_cast<double>(user.actions()) / seconds
       << " a second; " << user.summary() << "), " << spoken.size()
       << " messages, interruptions: " << countInterruptions(events) << "; " << edgesLookedAt_
       << " edges and " << user.lastDrags().size() << " drags compared, memory " << memoryEarly_
       << " kB at a tenth and " << memoryAtTheEnd << " kB at the end";
  std::cout << line.str() << std::endl;
  RecordProperty("actions", std::to_string(user.actions()));
  RecordProperty("kinds", user.summary());
  RecordProperty("messages", std::to_string(spoken.size()));
  RecordProperty("interruptions", std::to_string(countInterruptions(events)));
  RecordProperty("memoryAtATenth", std::to_string(memoryEarly_));
  RecordProperty("memoryAtTheEnd", std::to_string(memoryAtTheEnd));
}

}  // namespace
}  // namespace endtoend
