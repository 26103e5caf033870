#include <charconv>

#include "Expected.h"

namespace endtoend {
namespace {

class Run : public BenchOnEachLink {
 protected:
  void SetUp() override {
    Bench::SetUp();
    startLoaded(GetParam());
    before_ = transcript();
  }

  /// What was said since the main window appeared.
  Texts newHappenings(const Events& events) const {
    return part(happenings(events), happenings(before_).size());
  }

  /// Start, and wait until that many profiles were drawn.
  void runProfiles(std::size_t count) {
    clickStart();
    awaitMessages("TR1 1", count + 1);
  }

  Pixels grabGraph() {
    const std::filesystem::path file = folder() / "graph.ppm";
    hands().grab(robot::profileGraph, file);
    return readPixels(file);
  }

 private:
  Events before_;
};
ON_BOTH_LINKS(Run);

TEST_P(Run, StartReadsBackAndThenRepeatsOnePass) {
  constexpr std::size_t passes = 4;
  runProfiles(passes);
  const Texts cleared = GetParam() == Link::gpib ? Texts{"CLEAR"} : Texts{};
  Texts expected = cleared + startQuestions();
  for (std::size_t i = 0; i < passes; ++i) expected = expected + profilePass(GetParam());
  EXPECT_EQ(part(newHappenings(transcript()), 0, expected.size()), expected);
}

TEST_P(Run, TheItemsOfTheMenuFollowTheAcquisition) {
  struct Item {
    const char* name;
    bool whileStopped;
    bool whileRunning;
  };
  const Item items[] = {
      {"frmMain/menuStart", true, false},       {"frmMain/menuStop", false, true},
      {"frmMain/menuFreeRun", true, false},     {"frmMain/menuComs", true, false},
      {"frmMain/menuExit", true, true},         {"frmMain/menuGraphFont", true, true},
      {"frmMain/menudisplayupdate", true, true}};
  const auto check = [&](bool running) {
    for (const Item& item : items) {
      EXPECT_EQ(hands().is(item.name, "enabled"), running ? item.whileRunning : item.whileStopped)
          << item.name << (running ? " while running" : " while stopped");
    }
  };
  check(false);
  runProfiles(1);
  check(true);
  clickStop();
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  check(false);
}

TEST_P(Run, TheGraphShowsThePulse) {
  runProfiles(2);
  hands().waitWhile("frmMain/lblgraphspeed", "text", "Profile/Second: 0.00");
  const Pixels graph = grabGraph();
  // 2 ms from -0.2 ms on; +10 dBm at the top, -90 dBm at the bottom. The pulse is near 5 dBm up to
  // 0.6 ms, and near -60 dBm after it.
  const auto at = [&graph](double seconds) { return graph.yellowSpan((seconds + 2e-4) / 2e-3); };
  const auto inside = at(3.5e-4);
  EXPECT_GE(inside.first, 0.03);
  EXPECT_LE(inside.second, 0.09);
  const auto outside = at(7.5e-4);
  EXPECT_GE(outside.first, 0.60);
  EXPECT_LE(outside.second, 0.80);
  const auto beforeTrigger = at(-1e-4);
  EXPECT_GE(beforeTrigger.first, 0.60);
  EXPECT_LE(beforeTrigger.second, 0.80);
}

TEST_P(Run, TheGraphIsAlive) {
  EXPECT_EQ(hands().get("frmMain/lblgraphspeed", "text"), "Profile/Second: 0.00");
  const Pixels stopped = grabGraph();
  runProfiles(2);
  Pixels first = grabGraph();
  EXPECT_FALSE(first.bytes == stopped.bytes);
  for (int pictures = 0; pictures < 3; ++pictures) {
    // The pass of the next but one is drawn after the picture that was taken.
    const std::size_t sent = countMessages(transcript(), "TR1 1");
    awaitMessages("TR1 1", sent + 2);
    const Pixels next = grabGraph();
    EXPECT_FALSE(next.bytes == first.bytes) << "the noise of the signal does not move";
    first = next;
  }
  hands().waitWhile("frmMain/lblgraphspeed", "text", "Profile/Second: 0.00");
  const std::string rate = hands().get("frmMain/lblgraphspeed", "text");
  const std::string head = "Profile/Second: ";
  ASSERT_EQ(rate.substr(0, head.size()), head);
  double number = 0;
  std::from_chars(rate.data() + head.size(), rate.data() + rate.size(), number);
  EXPECT_GT(number, 0) << rate;
  EXPECT_EQ(hands().get("frmMain/lblgraphspeed", "toolTip"),
            "Update speed of the GPIB, not the update speed of this display");
}

TEST_P(Run, StopFinishesTheProfileAndAsksForNoFurther) {
  runProfiles(3);
  clickStop();
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  const Texts said = newHappenings(markTranscript());
  ASSERT_EQ(said.back(), "SYDISP OFF");
  // Whole passes between the read-back and the mark.
  const std::size_t head = startQuestions().size() + (GetParam() == Link::gpib ? 1 : 0);
  Texts passes = part(said, head, said.size() - head - 1);
  const Texts pass = profilePass(GetParam());
  ASSERT_EQ(passes.size() % pass.size(), 0U) << "the last pass is not whole";
  for (std::size_t i = 0; i < passes.size(); i += pass.size()) {
    EXPECT_EQ(part(passes, i, pass.size()), pass);
  }
  // The drawing of the last profile stays.
  const Pixels first = grabGraph();
  hands().trigger("frmMain/menuFreeRun");
  EXPECT_EQ(part(newHappenings(awaitMessages("TR3", 1)), said.size()), Texts{"TR3"});
  EXPECT_TRUE(grabGraph().bytes == first.bytes);
}

TEST_P(Run, ItStartsAgainAfterAStop) {
  runProfiles(1);
  clickStop();
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  const std::size_t said = newHappenings(markTranscript()).size();
  const std::size_t profiles = countMessages(transcript(), "TR1 1");
  clickStart();
  const Events events = awaitMessages("TR1 1", profiles + 2);
  const Texts cleared = GetParam() == Link::gpib ? Texts{"CLEAR"} : Texts{};
  const Texts expected = cleared + startQuestions() + profilePass(GetParam());
  EXPECT_EQ(part(newHappenings(events), said, expected.size()), expected);
}

TEST_P(Run, TheDisplayUpdateItemTicksAndTellsTheMeter) {
  EXPECT_FALSE(hands().is("frmMain/menudisplayupdate", "checked"));
  hands().trigger("frmMain/menudisplayupdate");
  EXPECT_EQ(newHappenings(awaitMessages("SYDISP OFF", 1)), Texts{"SYDISP OFF"});
  EXPECT_TRUE(hands().is("frmMain/menudisplayupdate", "checked"));
  hands().trigger("frmMain/menudisplayupdate");
  EXPECT_EQ(newHappenings(awaitMessages("SYDISP ON", 1)), (Texts{"SYDISP OFF", "SYDISP ON"}));
  EXPECT_FALSE(hands().is("frmMain/menudisplayupdate", "checked"));
}

TEST_P(Run, AnOpenMenuDoesNotHoldTheAcquisitionUp) {
  runProfiles(1);
  hands().openMenuOf("frmMain/menuStop");
  awaitMessages("TR1 1", countMessages(transcript(), "TR1 1") + 3);
  hands().waitVisible("QMenu");
  hands().closeMenu();
  EXPECT_TRUE(hands().is("frmMain/menuStop", "enabled"));
}

TEST_P(Run, AModalDialogHoldsTheAcquisitionUp) {
  runProfiles(1);
  hands().trigger("frmMain/menuGraphFont");
  hands().waitVisible("QFontDialog");
  // Every request is answered by an event loop that would let a pass run if it could.
  const std::size_t profiles = countMessages(transcript(), "TR1 1");
  for (int look = 0; look < 50; ++look) hands().get("QFontDialog", "visible");
  EXPECT_EQ(countMessages(transcript(), "TR1 1"), profiles);
  hands().key("QFontDialog", "Escape");
  hands().waitGone("QFontDialog");
  awaitMessages("TR1 1", profiles + 2);
}

TEST_P(Run, TheWindowCanShrinkWhileItRuns) {
  runProfiles(1);
  hands().resize("frmMain", 480, 360);
  hands().waitUntil("frmMain", "width", "480");
  hands().waitUntil("frmMain", "height", "360");
  awaitMessages("TR1 1", countMessages(transcript(), "TR1 1") + 2);
  const Pixels graph = grabGraph();
  EXPECT_EQ(graph.width, 480);
  EXPECT_GE(graph.yellowSpan((3.5e-4 + 2e-4) / 2e-3).first, 0.02);
  EXPECT_LE(graph.yellowSpan((3.5e-4 + 2e-4) / 2e-3).second, 0.12);
}

TEST_P(Run, AStoppedProgramCostsNoProcessorTime) {
  runProfiles(1);
  clickStop();
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  markTranscript();
  const double before = program().processorSeconds();
  EXPECT_EQ(program().awaitEnd(std::chrono::seconds(3)), std::nullopt);
  // A loop that spins would take all of the three seconds that the machine has to give.
  EXPECT_LT(program().processorSeconds() - before, 0.3);
}

}  // namespace
}  // namespace endtoend
