#include "ProfileTest.h"
#include "profile/AcquisitionControl.h"
#include "profile/AcquisitionLoop.h"
#include "profile/GraphMouse.h"
#include "profile/ProfileGraph.h"

namespace pulsemod::test {

/// In GraphMouseTest.cpp.
void PrintTo(const GrabbedEdge& grabbed, std::ostream* out);

namespace {

/// 200 points over 20 ms: column x stands at x times 100 us. Gate 1 from column 20 to 140, its
/// fence from 60 to 100; gate 2 from column 40 to 160.
class EdgeKeysTest : public ProfileTest {
 protected:
  EdgeKeysTest() {
    Settings.CaptureTime = 0.02F;
    putGate(1, 20, 140);
    putGate(2, 40, 160);
    gate(1).FenceStart = timeAt(60);
    gate(1).FenceStop = timeAt(100);
    gate(1).FenceEnabled = True16;
    PositionGateLines();
    AcquisitionRunning = True16;
  }

  static float timeAt(double column) { return static_cast<float>(column / 10000.0); }
  static void putGate(int number, double start, double stop) {
    gate(number).StartTime = timeAt(start);
    gate(number).StopTime = timeAt(stop);
    gate(number).Enabled = True16;
  }
  /// A key that is pressed and released once.
  static void strike(double points) {
    MoveChosenEdge(points);
    ReleaseChosenEdge();
  }
  static void choose(GateTime edge, int number) {
    GraphMouse.Chosen = {edge, static_cast<std::int16_t>(number)};
  }
  void expectLabel(const std::string& caption, double x) const {
    EXPECT_TRUE(view.edgeLabel.visible);
    EXPECT_EQ(view.edgeLabel.caption, caption);
    EXPECT_DOUBLE_EQ(view.edgeLabel.topLeft.x, x);
    EXPECT_DOUBLE_EQ(view.edgeLabel.topLeft.y, -44);
  }
  std::vector<std::string> captionsOf(int keys, int step) {
    std::vector<std::string> captions;
    for (int key = 0; key < keys; ++key) {
      ChooseEdge(step);
      captions.push_back(view.edgeLabel.visible ? view.edgeLabel.caption : "no label");
    }
    return captions;
  }
};

const std::vector<std::string> byTime = {"Gate 1 Start 2ms",  "Gate 2 Start 4ms",
                                         "Fence 1 Start 6ms", "Fence 1 Stop 10ms",
                                         "Gate 1 Stop 14ms",  "Gate 2 Stop 16ms"};

TEST_F(EdgeKeysTest, EdgesAreChosenByTheirTimesRoundAndRound) {
  std::vector<std::string> expected = byTime;
  expected.push_back(byTime.front());
  EXPECT_EQ(captionsOf(7, 1), expected);
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_TRUE(received().empty());
}

TEST_F(EdgeKeysTest, AndBackFromTheLastOne) {
  std::vector<std::string> expected(byTime.rbegin(), byTime.rend());
  expected.push_back(byTime.back());
  EXPECT_EQ(captionsOf(7, -1), expected);
}

TEST_F(EdgeKeysTest, EdgesAtTheSameTimeAreAllReached) {
  gate(1).FenceEnabled = False16;
  putGate(2, 20, 140);
  EXPECT_EQ(captionsOf(5, 1),
            (std::vector<std::string>{"Gate 1 Start 2ms", "Gate 2 Start 2ms", "Gate 1 Stop 14ms",
                                      "Gate 2 Stop 14ms", "Gate 1 Start 2ms"}));
}

TEST_F(EdgeKeysTest, LabelStandsHalfWayDownTheLine) {
  ChooseEdge(1);
  expectLabel("Gate 1 Start 2ms", 20);
  EXPECT_FALSE(view.edgeLabel.sizingPointer);
}

TEST_F(EdgeKeysTest, OnlyEdgesWithALineAreChosen) {
  gate(1).FenceEnabled = False16;
  gate(2).Enabled = False16;
  gate(2).FenceEnabled = True16;
  EXPECT_EQ(captionsOf(3, 1),
            (std::vector<std::string>{"Gate 1 Start 2ms", "Gate 1 Stop 14ms", "Gate 1 Start 2ms"}));
  Settings.GatesVisible = False16;
  EXPECT_EQ(captionsOf(1, 1), (std::vector<std::string>{"no label"}));
  EXPECT_EQ(GraphMouse.Chosen, GrabbedEdge{});
  Settings.GatesVisible = True16;
  gate(1).Enabled = False16;
  EXPECT_EQ(captionsOf(1, -1), (std::vector<std::string>{"no label"}));
}

TEST_F(EdgeKeysTest, AKeyWithoutAChoiceChoosesTheFirstAndMovesNothing) {
  strike(5);
  expectLabel("Gate 1 Start 2ms", 20);
  EXPECT_EQ(gate(1).StartTime, timeAt(20));
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(EdgeKeysTest, EachEdgeMovesAndIsWrittenAtTheRelease) {
  struct Row {
    GateTime edge;
    double points;
    const char* caption;
    double x;
    const char* command;
  };
  const std::vector<Row> rows = {
      {GateTime::start, 10, "Gate 1 Start 3ms", 30, "GPTIMST 1, 1, 0.003"},
      {GateTime::stop, -0.5, "Gate 1 Stop 13.95ms", 139.5, "GPTIMSP 1, 1, 0.01395"},
      {GateTime::fenceStart, -1, "Fence 1 Start 5.9ms", 59, "GPFENST 1, 1, 0.0059"},
      {GateTime::fenceStop, 20, "Fence 1 Stop 12ms", 120, "GPFENSP 1, 1, 0.012"}};
  for (const Row& row : rows) {
    world.meter.received.clear();
    choose(row.edge, 1);
    MoveChosenEdge(row.points);
    expectLabel(std::string("* ") + row.caption, row.x);
    EXPECT_TRUE(received().empty());
    EXPECT_EQ(AcquisitionRunning, False16);
    ReleaseChosenEdge();
    expectLabel(row.caption, row.x);
    EXPECT_EQ(received(), (Transcript{"GPGATS 1, 1, ON", "GPFENS 1, 1, ON", row.command}));
    EXPECT_EQ(AcquisitionRunning, True16);
    EXPECT_FALSE(view.edgeLabel.sizingPointer);
  }
}

TEST_F(EdgeKeysTest, ARepeatedKeyIsWrittenOnce) {
  choose(GateTime::start, 1);
  for (int repeat = 0; repeat < 12; ++repeat) MoveChosenEdge(0.25);
  EXPECT_EQ(view.gateLines[0].x, 23);
  ReleaseChosenEdge();
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 1, ON", "GPFENS 1, 1, ON", "GPTIMST 1, 1, 0.0023"}));
  ReleaseChosenEdge();
  EXPECT_EQ(received().size(), 3U);
}

TEST_F(EdgeKeysTest, AnEdgeStaysWhereTheMouseMayNotPutItEither) {
  choose(GateTime::start, 1);
  strike(-20);
  expectLabel("Gate 1 Start 2ms", 20);
  strike(40);
  expectLabel("Gate 1 Start 2ms", 20);
  strike(39);
  expectLabel("Gate 1 Start 5.9ms", 59);
  strike(1);
  expectLabel("Gate 1 Start 5.9ms", 59);
  // And so does its label, while the key is down.
  MoveChosenEdge(30);
  expectLabel("* Gate 1 Start 5.9ms", 59);
  ReleaseChosenEdge();
  choose(GateTime::stop, 2);
  strike(40);
  expectLabel("Gate 2 Stop 16ms", 160);
}

TEST_F(EdgeKeysTest, AnEdgeBesideTheGraphComesBackFromItsBorder) {
  gate(2).StopTime = 0.05F;
  choose(GateTime::stop, 2);
  strike(-1);
  EXPECT_EQ(gate(2).StopTime, timeAt(199));
}

TEST_F(EdgeKeysTest, NoOtherIsChosenWhileAKeyIsDown) {
  choose(GateTime::start, 1);
  MoveChosenEdge(1);
  ChooseEdge(1);
  EXPECT_EQ(GraphMouse.Chosen, (GrabbedEdge{GateTime::start, 1}));
  ReleaseChosenEdge();
  ChooseEdge(1);
  EXPECT_EQ(GraphMouse.Chosen, (GrabbedEdge{GateTime::start, 2}));
}

TEST_F(EdgeKeysTest, NoProfileIsRequestedWhileAKeyIsDown) {
  answerProfile(levels(200));
  choose(GateTime::start, 1);
  MoveChosenEdge(1);
  EXPECT_THROW(AcquireProfile(), WaitsForEver);
  EXPECT_TRUE(received().empty());
  ReleaseChosenEdge();
  AcquireProfile();
  EXPECT_EQ(timesReceived("TR1 1"), 1);
}

TEST_F(EdgeKeysTest, TheMouseFindsTheEdgeThatItHadFound) {
  GraphMouseMove({40, -50});
  choose(GateTime::start, 1);
  strike(1);
  GraphButtonDown();
  GraphMouseMove({42, -50});
  GraphButtonUp();
  EXPECT_EQ(gate(1).StartTime, timeAt(21));
  EXPECT_EQ(gate(2).StartTime, timeAt(42));
}

TEST_F(EdgeKeysTest, TheMouseTakesTheLabelAndTheNextKeyBringsItBack) {
  ChooseEdge(1);
  GraphMouseMove({80, -50});
  EXPECT_FALSE(view.edgeLabel.visible);
  strike(1);
  expectLabel("Gate 1 Start 2.1ms", 21);
  GraphMouseMove({21, -50});
  GraphButtonDown();
  GraphButtonUp();
  EXPECT_FALSE(view.edgeLabel.visible);
}

TEST_F(EdgeKeysTest, RepeatedGateIsShownAndCannotBeMoved) {
  gate(1).FenceEnabled = False16;
  putGate(1, 20, 50);
  Settings.RepeatEnabled = True16;
  Settings.RepeatCount = 2;
  Settings.RepeatOffset = timeAt(60);
  ExpandRepeatGates();
  PositionGateLines();
  choose(GateTime::start, 2);
  strike(1);
  expectLabel("Gate 2 Start 8ms", 80);
  EXPECT_EQ(gate(2).StartTime, timeAt(80));
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(AcquisitionRunning, True16);
  choose(GateTime::start, 1);
  strike(1);
  EXPECT_EQ(gate(2).StartTime, timeAt(81));
  EXPECT_EQ(received(),
            (Transcript{"GPGATS 1, 1, ON", "GPFENS 1, 1, OFF", "GPTIMST 1, 1, 0.0021"}));
}

TEST_F(EdgeKeysTest, LeavingForgetsTheChoiceAndItsLabel) {
  ChooseEdge(-1);
  LeaveEdges();
  EXPECT_FALSE(view.edgeLabel.visible);
  ChooseEdge(1);
  EXPECT_EQ(view.edgeLabel.caption, "Gate 1 Start 2ms");
}

TEST_F(EdgeKeysTest, AChoiceThatIsSwitchedOffMeanwhileIsNotMoved) {
  choose(GateTime::fenceStart, 1);
  gate(1).FenceEnabled = False16;
  strike(1);
  EXPECT_EQ(gate(1).FenceStart, timeAt(60));
  EXPECT_EQ(view.edgeLabel.caption, "Gate 1 Start 2ms");
  MoveChosenEdge(1);
  gate(1).Enabled = False16;
  ReleaseChosenEdge();
  EXPECT_FALSE(view.edgeLabel.visible);
}

TEST_F(EdgeKeysTest, AGraphThatCannotBeDrawnIsToldOnceAndNothingMoves) {
  choose(GateTime::start, 1);
  Settings.ScalePerDivision = 0;
  strike(1);
  strike(1);
  ChooseEdge(1);
  EXPECT_FALSE(view.edgeLabel.visible);
  EXPECT_EQ(gate(1).StartTime, timeAt(20));
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_EQ(shownBoxes(), (std::vector<std::string>{
                              "Pelmora|Division by zero: the graph's scale is 0 dB|exclamation"}));
}

}  // namespace
}  // namespace pulsemod::test
