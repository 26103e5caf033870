#include <ostream>

#include "Expected.h"

namespace endtoend {
namespace {

/// A fault of the meter's replies, and what the program goes on saying in spite of it.
struct FaultCase {
  const char* name;
  Link link;
  const char* fault;
  /// Said again and again while it runs, to the end.
  const char* goesOn;
};

void PrintTo(const FaultCase& fault, std::ostream* out) { *out << fault.fault; }

std::string faultName(const ::testing::TestParamInfo<FaultCase>& info) { return info.param.name; }

class LinkFault : public Bench, public ::testing::WithParamInterface<FaultCase> {
 protected:
  /// Does as told, and answers the boxes that stand in the way. The same box again and again would
  /// never let it through.
  void actDespiteBoxes(const std::function<void()>& act) {
    constexpr int mostBoxes = 3;
    for (int boxes = 0; boxes <= mostBoxes; ++boxes) {
      try {
        hands().setLimit(std::chrono::seconds(2));
        act();
        hands().setLimit(patience);
        return;
      } catch (const robot::RobotError&) {
        hands().setLimit(patience);
        if (!windows().starts_with("messageBox|")) throw;
        EXPECT_EQ(hands().get("messageBox", "windowTitle"), "Pelmora");
        hands().key("messageBox", "Return");
      }
    }
    FAIL() << "one box after the other";
  }
};

/// Replies that are wrong but do end: the program drops the profile or the reading and goes on.
TEST_P(LinkFault, TheProgramGoesOnWithoutABox) {
  allowOffences();
  startLoaded(GetParam().link,
              std::string("board-timeout = 60\nfault = ") + GetParam().fault + "\n");
  clickStart();
  const std::size_t before = countMessages(transcript(), GetParam().goesOn);
  constexpr std::size_t rounds = 8;
  awaitMessages(GetParam().goesOn, before + rounds);
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
  EXPECT_TRUE(hands().is("frmMain/menuStop", "enabled"));
  clickStop();
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  closeMainWindowAndExpectEnd();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LinkFault,
    ::testing::Values(
        FaultCase{"BlockMissing", Link::gpib, "PMPBO, every, missing", "TR1 1"},
        FaultCase{"BlockCut", Link::gpib, "PMPBO, every, cut 700", "TR1 1"},
        FaultCase{"BlockShort", Link::gpib, "PMPBO, every, short 700", "TR1 1"},
        FaultCase{"BlockTooShort", Link::gpib, "PMPBO, every, short 50", "TR1 1"},
        FaultCase{"BlockGarbled", Link::gpib, "PMPBO, every, garble", "TR1 1"},
        FaultCase{"BlockEmpty", Link::gpib, "PMPBO, every, empty", "TR1 1"},
        FaultCase{"BlockRefused", Link::gpib, "PMPBO, every, refuse", "TR1 1"},
        FaultCase{
            "BlockTooLong", Link::gpib,
            "PMPBO, every, replace #3999"
            "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
            "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa",
            "TR1 1"},
        FaultCase{"TriggerMissing", Link::gpib, "TR1, every, missing", "TR1 1"},
        FaultCase{"TriggerRefused", Link::gpib, "TR1, every, refuse", "TR1 1"},
        FaultCase{"MarkerMissing", Link::gpib, "MKNO, every, missing", "TR1 1"},
        FaultCase{"MarkerGarbled", Link::gpib, "MKNO, every, garble", "TR1 1"},
        FaultCase{"MarkerRefused", Link::gpib, "MKNO, every, refuse", "TR1 1"},
        FaultCase{"LibraryFails", Link::gpib, "lib Receive, from 60, error EABO", "TR1 1"},
        FaultCase{"StatusFails", Link::gpib, "lib ReadStatusByte, from 60, error EABO", "TR1 1"},
        FaultCase{"TextEmpty", Link::serial, "PMPO, from 3, empty", "TR1 1"},
        FaultCase{"TextShort", Link::serial, "PMPO, from 3, short 700", "TR1 1"},
        FaultCase{"TextGarbled", Link::serial, "PMPO, from 3, garble", "TR1 1"},
        FaultCase{"TextTooManyPoints", Link::serial, "PMPO, from 3, replace PMPO 1,500,1,2,3",
                  "TR1 1"},
        FaultCase{"TextHugeCount", Link::serial, "PMPO, from 3, replace PMPO 1,70000,1,2,3",
                  "TR1 1"},
        FaultCase{"TextNegativeCount", Link::serial, "PMPO, from 3, replace PMPO 1,-5,1,2,3",
                  "TR1 1"},
        FaultCase{"TextNotANumber", Link::serial, "PMPO, from 3, replace PMPO 1,200,x,nan,inf",
                  "TR1 1"},
        FaultCase{"TextByteWise", Link::serial, "MKNO, every, bytewise 5", "TR1 1"},
        FaultCase{"SerialTriggerEmpty", Link::serial, "TR1, every, empty", "TR1 1"},
        FaultCase{"SerialMarkerGarbled", Link::serial, "MKNO, every, garble", "TR1 1"}),
    faultName);

/// Every reply after the identity is spoilt, in the configuration too: whatever the values come to,
/// the program neither crashes nor raises one box after the other. Over RS232 the channel is left
/// alone, since a meter that refuses everything for a channel 0 answers nothing, for ever.
class SpoiltReplies : public LinkFault {};

TEST_P(SpoiltReplies, TheProgramSurvives) {
  allowOffences();
  startOn(GetParam().link, std::string("board-timeout = 20\nfault = ") + GetParam().fault + "\n");
  hands().click("frmConfigureQuestion/cmdLoadPM");
  actDespiteBoxes([this] { hands().waitVisible("frmMain"); });
  const std::size_t before = transcript().size();
  actDespiteBoxes([this] { clickStart(); });
  awaitTranscript("the read-back",
                  [before](const Events& events) { return events.size() > before + 2; });
  actDespiteBoxes([this] {
    // A fault in a pass has stopped the acquisition itself.
    if (hands().is("frmMain/menuStop", "enabled")) clickStop();
    hands().waitUntil("frmMain/menuStart", "enabled", "true");
  });
  actDespiteBoxes([this] { hands().close("frmMain"); });
  expectProgramEnd();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SpoiltReplies,
    ::testing::Values(
        FaultCase{"GpibGarbled", Link::gpib, "any, from 3, garble", ""},
        FaultCase{"GpibEmpty", Link::gpib, "any, from 3, empty", ""},
        FaultCase{"GpibShort", Link::gpib, "any, from 3, short 3", ""},
        FaultCase{"GpibMissing", Link::gpib, "any, from 3, missing", ""},
        FaultCase{"GpibHuge", Link::gpib, "any, from 3, replace X 1,9E37,9E37,9E37", ""},
        FaultCase{"GpibZero", Link::gpib, "any, from 3, replace X 1,0,0,0", ""},
        FaultCase{"GpibProfileHead", Link::gpib, "any, from 3, replace PMPO 1,0,0", ""},
        FaultCase{"SerialGarbled", Link::serial, "any, from 5, garble", ""},
        FaultCase{"SerialEmpty", Link::serial, "any, from 5, empty", ""},
        FaultCase{"SerialShort", Link::serial, "any, from 5, short 3", ""},
        FaultCase{"SerialHuge", Link::serial, "any, from 5, replace X 1,9E37,9E37,9E37", ""},
        FaultCase{"SerialZero", Link::serial, "any, from 5, replace X 1,0,0,0", ""},
        FaultCase{"SerialProfileHead", Link::serial, "any, from 5, replace PMPO 1,0,0", ""}),
    faultName);

class SilentInMidRun : public Bench {};

/// Over RS232 nothing limits the wait for a reply: the window stays alive meanwhile.
TEST_F(SilentInMidRun, TheSerialWindowStaysAlive) {
  startLoaded(Link::serial, "fault = TR1, 3, missing\n");
  clickStart();
  awaitMessages("TR1 1", 3);
  hands().openMenuOf("frmMain/menuStop");
  hands().closeMenu();
  clickStop();
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  hands().resize("frmMain", 500, 400);
  hands().waitUntil("frmMain", "width", "500");
  EXPECT_EQ(messages(transcript()).back(), "TR1 1");
  closeMainWindowAndExpectEnd();
}

/// The same while the configuration is read, when no other window is there to close.
TEST_F(SilentInMidRun, ClosingPleaseWaitLeavesNoProgramWithoutAWindow) {
  startOn(Link::serial, "fault = GPACTN?, every, missing\n");
  hands().click("frmConfigureQuestion/cmdLoadPM");
  awaitMessages("GPACTN? 1", 1);
  hands().close("frmPleaseWait");
  hands().waitGone("frmPleaseWait");
  const std::optional<int> ended = program().awaitEnd(std::chrono::seconds(5));
  if (ended) {
    expectProgramEnd();
  } else {
    EXPECT_NE(windows(), "");
  }
}

}  // namespace
}  // namespace endtoend
