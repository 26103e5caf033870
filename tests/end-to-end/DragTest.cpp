#include <cmath>
#include <sstream>
#include <utility>

#include "Edges.h"
#include "ProfileBench.h"

namespace endtoend {
namespace {

constexpr double delay = -2e-4;
constexpr double capture = 2e-3;
constexpr int graphPoints = 400;
/// Where neither an edge nor another gate is.
constexpr double emptyPlace = 1.5e-3;

/// Gate 1 with its fence is on: 50, 550, 220 and 330 us.
struct EdgeMove {
  const char* edge;
  const char* shownBefore;
  double from;
  double to;
  /// Past the limit that stands after the moves before.
  double beyond;
};
constexpr EdgeMove edgeMoves[] = {
    {"Gate 1 Start", "50us", 5e-5, 1.5e-4, 2.5e-4},
    {"Gate 1 Stop", "550us", 5.5e-4, 4.5e-4, 3e-4},
    {"Fence 1 Start", "220us", 2.2e-4, 2.8e-4, 3.6e-4},
    {"Fence 1 Stop", "330us", 3.3e-4, 4e-4, 5e-4},
};

/// The pass that began last.
struct PassSoFar {
  /// Its place among the messages.
  std::size_t begin = 0;
  std::size_t replies = 0;
};
PassSoFar lastPass(const Events& events) {
  PassSoFar pass;
  std::size_t count = 0;
  for (const Event& event : events) {
    if (event.kind == ">") ++pass.replies;
    if (event.kind != "<") continue;
    if (event.text == "TR1 1") pass = {count, 0};
    ++count;
  }
  return pass;
}

class Drag : public ProfileBench {
 protected:
  void load(const std::string& scenario = {}) {
    startLoaded(GetParam(), scenario);
    std::istringstream place(hands().get(robot::profileGraph, "place"));
    int skipped = 0;
    place >> skipped >> skipped >> width_;
    ASSERT_GT(width_, 0);
  }

  /// The left edge of the graph is point 1.
  int pixelOf(double seconds) const {
    return static_cast<int>(
        std::lround(((seconds - delay) / capture * graphPoints - 1) / graphPoints * width_));
  }
  double timeUnderPointer() const {
    return delay +
           (1 + static_cast<double>(pointer_) / width_ * graphPoints) / graphPoints * capture;
  }

  void moveTo(double seconds) { moveToPixel(pixelOf(seconds)); }
  void moveToPixel(int x) {
    pointer_ = x;
    step("move");
  }
  void press() { step("press"); }
  void release() { step("release"); }
  std::string label() { return hands().get("lblgate", "text"); }

  /// The label as it must be while the edge goes with the pointer.
  void expectLabelAtPointer(const std::string& edge) {
    const EdgeLabel shown = readEdgeLabel(label());
    EXPECT_TRUE(shown.dragged) << label();
    EXPECT_EQ(shown.edge, edge);
    EXPECT_TRUE(showsTime(shown.time, timeUnderPointer()))
        << label() << ", the pointer is at " << timeUnderPointer();
  }

  /// Exactly the gate, its fence and the one time, the number that the label showed.
  static void expectWrite(const Texts& told, const std::string& shown) {
    ASSERT_EQ(told.size(), 3U) << ::testing::PrintToString(told);
    EXPECT_EQ(part(told, 0, 2), (Texts{"GPGATS 1, 1, ON", "GPFENS 1, 1, ON"}));
    const auto command = edgeCommand(told[2]);
    ASSERT_TRUE(command.has_value()) << told[2];
    const EdgeLabel left = readEdgeLabel(shown);
    EXPECT_EQ(command->first, left.edge);
    EXPECT_TRUE(showsTime(left.time, numberOf(command->second))) << shown << " but " << told[2];
  }

 private:
  void step(const char* kind) { hands().mouse(kind, robot::profileGraph, pointer_, 40); }

  int width_ = 0;
  int pointer_ = 0;
};
ON_BOTH_LINKS(Drag);

TEST_P(Drag, WhileRunningTheMeterIsToldOnReleaseAndNothingBefore) {
  load();
  runProfiles(2);
  const Texts pass = profilePass(GetParam());
  for (const EdgeMove& edge : edgeMoves) {
    SCOPED_TRACE(edge.edge);
    moveTo(edge.from);
    hands().waitVisible("lblgate");
    EXPECT_EQ(label(), std::string(edge.edge) + " " + edge.shownBefore);
    press();
    EXPECT_EQ(label(), std::string("* ") + edge.edge + " " + edge.shownBefore);
    moveTo(edge.to);
    expectLabelAtPointer(edge.edge);
    const std::string shown = label();

    Texts paused = awaitMark();
    giveItTime();
    ASSERT_EQ(told(), paused) << "something was told while the button was down";
    ASSERT_TRUE(isMark(paused.back()));
    paused.pop_back();
    EXPECT_EQ(part(paused, paused.size() - pass.size()), pass) << "the last pass is not whole";

    release();
    hands().waitGone("lblgate");
    awaitMoreProfiles(2);
    const Texts after = part(told(), paused.size() + 1);
    expectWrite(part(after, 0, 3), shown);
    EXPECT_EQ(part(after, 3, pass.size()), pass);
  }
}

TEST_P(Drag, WhileStoppedTheMeterIsToldOnReleaseAndNothingElse) {
  load();
  for (const EdgeMove& edge : edgeMoves) {
    SCOPED_TRACE(edge.edge);
    const std::size_t before = told().size();
    moveTo(edge.from);
    press();
    const Pixels graphBefore = grabGraph();
    moveTo(edge.to);
    expectLabelAtPointer(edge.edge);
    const std::string shown = label();
    EXPECT_FALSE(grabGraph().bytes == graphBefore.bytes) << "the line stays where it was";
    EXPECT_EQ(toldUntilMark(before), Texts{});
    release();
    hands().waitGone("lblgate");
    expectWrite(toldUntilMark(before + 1), shown);
  }
}

TEST_P(Drag, AnEdgeStopsAtItsLimit) {
  load();
  for (const EdgeMove& edge : edgeMoves) {
    SCOPED_TRACE(edge.edge);
    moveTo(edge.from);
    press();
    moveTo(edge.to);
    expectLabelAtPointer(edge.edge);
    const std::string accepted = label();
    moveTo(edge.beyond);
    EXPECT_EQ(label(), accepted);
    // Both ends of the graph are limits, too.
    for (const int x : {-30, pixelOf(delay + capture) + 30}) {
      moveToPixel(x);
      EXPECT_EQ(label(), accepted);
    }
    const std::size_t before = told().size();
    release();
    expectWrite(toldUntilMark(before), accepted);
  }
}

TEST_P(Drag, BackInsideItsLimitsAnEdgeMovesAgain) {
  load();
  moveTo(5e-5);
  press();
  moveTo(3e-4);
  EXPECT_EQ(label(), "* Gate 1 Start 50us");
  moveTo(1e-4);
  expectLabelAtPointer("Gate 1 Start");
  const std::string shown = label();
  const std::size_t before = told().size();
  release();
  expectWrite(toldUntilMark(before), shown);
}

TEST_P(Drag, APressBesideAllEdgesPausesAndTellsTheMeterNothing) {
  load();
  runProfiles(1);
  moveTo(emptyPlace);
  press();
  const Texts paused = awaitMark();
  moveTo(5e-5);
  giveItTime();
  EXPECT_EQ(told(), paused);
  EXPECT_FALSE(hands().is("lblgate", "visible"));
  EXPECT_TRUE(hands().is("frmMain/menuStop", "enabled"));
  release();
  awaitMoreProfiles(2);
  const Texts pass = profilePass(GetParam());
  EXPECT_EQ(part(told(), paused.size(), pass.size()), pass);
}

TEST_P(Drag, AStopByTheKeyboardDuringThePressLasts) {
  load();
  runProfiles(1);
  moveTo(5e-5);
  press();
  moveTo(1e-4);
  const std::string shown = label();
  const std::size_t paused = awaitMark().size();
  hands().key("frmMain", "Shift+F5");
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  release();
  expectWrite(toldUntilMark(paused), shown);
  const Texts silent = told();
  giveItTime();
  EXPECT_EQ(told(), silent);
  EXPECT_TRUE(hands().is("frmMain/menuStart", "enabled"));
  EXPECT_FALSE(hands().is("frmMain/menuStop", "enabled"));
}

TEST_P(Drag, AStartByTheKeyboardDuringThePressWaitsForItsEnd) {
  load();
  moveTo(emptyPlace);
  press();
  const std::size_t before = told().size();
  hands().key("frmMain", "F5");
  hands().waitUntil("frmMain/menuStop", "enabled", "true");
  EXPECT_EQ(toldUntilMark(before), startQuestions());
  giveItTime();
  EXPECT_EQ(profilesSoFar(), 0U);
  release();
  awaitMoreProfiles(2);
}

/// Whether the release comes in the middle of a pass is up to the machine: it is tried until it
/// does.
TEST_P(Drag, AReleaseInTheMiddleOfAPassWaitsForItsEnd) {
  load(
      "fault = TR1, every, late 60\n"
      "fault = PMPBO, every, late 60\n"
      "fault = PMPO 1, every, late 60\n"
      "fault = MKNO, every, late 60\n");
  runProfiles(1);
  const Texts pass = profilePass(GetParam());
  double from = 5e-5;
  double to = 1e-4;
  bool inTheMiddle = false;
  for (int attempt = 0; attempt < 20 && !inTheMiddle; ++attempt) {
    // A pointer that rests where it was would not be noticed.
    moveTo(emptyPlace);
    moveTo(from);
    hands().waitVisible("lblgate");
    awaitMoreProfiles(1);
    press();
    moveTo(to);
    release();
    hands().waitGone("lblgate");
    // No pass began since the press; so the one that is not over was under way at the release.
    const PassSoFar atRelease = lastPass(transcript());
    inTheMiddle = atRelease.replies < pass.size();
    awaitMoreProfiles(2);
    const Texts after = part(told(), atRelease.begin);
    EXPECT_EQ(part(after, 0, pass.size()), pass) << "the pass was broken into";
    expectWrite(part(after, pass.size(), 3), label());
    EXPECT_EQ(part(after, pass.size() + 3, pass.size()), pass);
    std::swap(from, to);
  }
  EXPECT_TRUE(inTheMiddle);
}

}  // namespace
}  // namespace endtoend
