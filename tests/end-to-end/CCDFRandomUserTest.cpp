#include <algorithm>
#include <iostream>
#include <sstream>
#include <thread>

#include "CCDFBench.h"
#include "CCDFExchanges.h"
#include "CCDFRandomUser.h"
#include "RandomUse.h"

namespace endtoend {
namespace {

/// Gate 1 is off, so that the gate is refused as the source. Every reply is late, and those of the
/// commonest questions come in two halves.
constexpr auto slowMeter =
    "setup = GPGATS 1,1,OFF\n"
    "reply-delay = 12\n"
    "fault = TTFRO, every, stall 1200 40\n"
    "fault = TTMKRO, every, stall 4 15\n"
    "fault = TTPST?, every, stall 9 30\n"
    "fault = TTPSP?, every, late 30\n"
    "fault = TTSRC?, every, stall 3 30\n"
    "fault = TTMKPOS?, every, late 40\n";

class CCDFLongRun : public CCDFBench {
 protected:
  void work(CCDFRandomUser& user);
  /// Everything that was to be said before has been said, although boxes may still come up.
  void awaitSilence(CCDFRandomUser& user);
  void typePower(const std::string& label, const std::string& text);

  long memoryEarly_ = 0;
};
ON_BOTH_LINKS(CCDFLongRun);

void CCDFLongRun::work(CCDFRandomUser& user) {
  using Clock = std::chrono::steady_clock;
  const auto begin = Clock::now();
  const auto length = workingTime();
  while (Clock::now() - begin < length) {
    user.act();
    // The meter is slow: a user who is much faster only piles up what waits for it.
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    if (memoryEarly_ == 0 && Clock::now() - begin > length / 10) {
      memoryEarly_ = program().residentKilobytes();
    }
  }
}

void CCDFLongRun::awaitSilence(CCDFRandomUser& user) {
  const Texts mark = ccdfMark();
  std::size_t looks = 0;
  std::size_t said = 0;
  // Two restarts that follow each other, with nothing after them, while the user rests.
  awaitTranscript("the end of all exchanges", [&](const Events& events) {
    const Texts all = messages(events);
    const bool marked = looks > 0 && all.size() >= said + mark.size() &&
                        part(all, all.size() - mark.size()) == mark;
    if (marked) return true;
    user.comeToRest();
    // A box that comes up takes the keys, and too many of them would never come to an end.
    constexpr std::size_t patienceInLooks = 500;
    if (looks++ % patienceInLooks != 0) return false;
    said = messages(transcript()).size();
    for (std::size_t i = 0; i < mark.size(); ++i) hands().key("frmCCDF", "F6");
    return false;
  });
  hands().giveUpAt("");
  awaitMark();
}

void CCDFLongRun::typePower(const std::string& label, const std::string& text) {
  openBoxOf(label);
  answer(text);
  awaitCaption(label, text + "dBm");
}

std::string linesOf(const Events& events, const std::function<bool(const Event&)>& isMeant) {
  std::string lines;
  for (const Event& event : events) {
    if (isMeant(event)) lines += event.kind + " " + event.text + "\n";
  }
  return lines;
}

bool isInterruption(const Event& event) {
  return event.kind.starts_with("INTERRUPTED") || event.kind == "SCENARIO";
}

/// The user typed powers that no meter takes, and chose a gate that is off: of these it may
/// complain, and of nothing else.
bool isUndueComplaint(const Event& event) {
  if (event.kind != "ERROR") return false;
  const bool isDue = event.text.starts_with("execution \"TTPS") ||
                     event.text.starts_with("execution \"TTSRC 1,GATE\"");
  return !isDue;
}

std::string lastWith(const Texts& texts, const std::string& head) {
  std::string last = "never sent";
  for (const std::string& text : texts) {
    if (text.starts_with(head)) last = text;
  }
  return last;
}

TEST_P(CCDFLongRun, AUserAtRandomNeverDisturbsAnExchange) {
  const std::uint32_t seed = chooseSeed();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::cout << "seed " << seed << std::endl;
  RecordProperty("seed", std::to_string(seed));
  allowOffences();
  startCCDF(GetParam(), slowMeter);
  const std::size_t said = told().size();
  CCDFRandomUser user(hands(), seed);
  work(user);
  awaitSilence(user);
  const Events events = transcript();
  const long memoryAtTheEnd = program().residentKilobytes();

  EXPECT_EQ(user.oddRefusals(), "");
  EXPECT_LT(user.givenUp(), user.actions() / 4);
  EXPECT_EQ(linesOf(events, isInterruption), "");
  EXPECT_EQ(linesOf(events, isUndueComplaint), "");
  const Texts spoken = part(messages(events), said);
  EXPECT_EQ(brokenCCDFExchanges(spoken), "");
  for (const auto& [command, text] : user.lastEdits()) {
    EXPECT_EQ(lastWith(spoken, command), command + text);
  }
  const bool cursorOn = lastWith(spoken, "TTMKS 1,") != "TTMKS 1,OFF";
  EXPECT_EQ(isEnabled("menuOFF"), cursorOn);
  EXPECT_EQ(hands().is("frmCCDF/FrameCursor", "visible"), cursorOn);

  // The program is well: with usual values it shows and does the usual.
  typePower("lblStartPower", "-30");
  typePower("lblStopPower", "20");
  if (!cursorOn) choose("menuOn");
  choose("menuSetCursorPosition");
  hands().waitVisible("inputBox");
  answer("6");
  awaitCaption("lblCursorPower", "6dBm");
  runCurves(2);
  const Texts usual = stopCurves();
  EXPECT_EQ(part(usual, usual.size() - ccdfPass(true).size()), ccdfPass(true));
  EXPECT_EQ(linesOf(transcript(), isInterruption), "");
  EXPECT_EQ(windows(), "frmCCDF|Pelmora v" PULSEMOD_VERSION);
  expectProgramEndsByClose();

  const auto seconds = static_cast<double>(workingTime().count());
  const auto curves = std::count(spoken.begin(), spoken.end(), "TTFRO 1");
  std::ostringstream line;
  line << (GetParam() == Link::gpib ? "GPIB" : "RS232") << ", CCDF, seed " << seed << ", "
       << seconds << " s: " << user.actions() << " actions ("
       << static_cast<double>(user.actions()) / seconds << " a second; " << user.summary() << "), "
       << spoken.size() << " messages, " << curves << " curves, " << user.cursorMoves()
       << " drags moved the cursor, memory " << memoryEarly_ << " kB at a tenth and "
       << memoryAtTheEnd << " kB at the end";
  std::cout << line.str() << std::endl;
  RecordProperty("actions", std::to_string(user.actions()));
  RecordProperty("kinds", user.summary());
  RecordProperty("messages", std::to_string(spoken.size()));
  RecordProperty("curves", std::to_string(curves));
  RecordProperty("memoryAtATenth", std::to_string(memoryEarly_));
  RecordProperty("memoryAtTheEnd", std::to_string(memoryAtTheEnd));
}

}  // namespace
}  // namespace endtoend
