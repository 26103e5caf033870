#include <cmath>
#include <limits>

#include "ProfileTest.h"
#include "link/Conversation.h"
#include "link/NumberText.h"
#include "profile/AcquisitionControl.h"
#include "profile/AcquisitionLoop.h"
#include "profile/GraphMouse.h"
#include "profile/GraphScale.h"
#include "profile/ProfileGraph.h"

namespace pulsemod::test {

void PrintTo(const GrabbedEdge& grabbed, std::ostream* out) {
  *out << "edge " << static_cast<int>(grabbed.edge) << " of gate " << grabbed.gate;
}

namespace {

constexpr GrabbedEdge noEdge{};

GrabbedEdge edgeOf(int gate, GateTime edge) { return {edge, static_cast<std::int16_t>(gate)}; }

/// 200 points over 20 ms: column x stands at x times 100 us.
class GraphEdgesTest : public ProfileTest {
 protected:
  GraphEdgesTest() { Settings.CaptureTime = 0.02F; }

  static float timeAt(double column) { return static_cast<float>(column / 10000.0); }

  static void putGate(int number, double start, double stop) {
    gate(number).StartTime = timeAt(start);
    gate(number).StopTime = timeAt(stop);
    gate(number).Enabled = True16;
    PositionGateLines();
  }
  static void putFence(int number, double start, double stop) {
    gate(number).FenceStart = timeAt(start);
    gate(number).FenceStop = timeAt(stop);
    gate(number).FenceEnabled = True16;
    PositionGateLines();
  }
};

TEST_F(GraphEdgesTest, NoEdgeOfAGateThatIsOffIsHit) {
  putGate(1, 20, 60);
  putFence(1, 30, 50);
  gate(1).Enabled = False16;
  gate(1).FenceEnabled = False16;
  for (const double x : {20.0, 30.0, 50.0, 60.0}) EXPECT_EQ(edgeAt(x), noEdge) << x;
}

TEST_F(GraphEdgesTest, EachEdgeIsHitWithinThreePoints) {
  for (int number = 1; number <= 8; ++number) {
    InitMeasurementSettings();
    Settings.CaptureTime = 0.02F;
    for (GateSettings& other : Settings.Gates) other.FenceEnabled = False16;
    putGate(number, 20, 140);
    putFence(number, 60, 100);
    const std::vector<std::pair<double, GateTime>> edges = {{20, GateTime::start},
                                                            {60, GateTime::fenceStart},
                                                            {100, GateTime::fenceStop},
                                                            {140, GateTime::stop}};
    for (const auto& [column, edge] : edges) {
      for (const double offset : {-3.0, -2.5, 0.0, 0.001, 2.99, 3.0}) {
        EXPECT_EQ(edgeAt(column + offset), edgeOf(number, edge)) << column << " + " << offset;
      }
      for (const double offset : {-4.0, -3.01, 3.01, 4.0}) {
        EXPECT_EQ(edgeAt(column + offset), noEdge) << column << " + " << offset;
      }
    }
  }
}

TEST_F(GraphEdgesTest, FenceOfAGateThatIsOffIsHit) {
  putGate(3, 20, 140);
  putFence(3, 60, 100);
  gate(3).Enabled = False16;
  EXPECT_EQ(edgeAt(60), edgeOf(3, GateTime::fenceStart));
  EXPECT_EQ(edgeAt(100), edgeOf(3, GateTime::fenceStop));
  EXPECT_EQ(edgeAt(20), noEdge);
  EXPECT_EQ(edgeAt(140), noEdge);
}

TEST_F(GraphEdgesTest, FenceThatIsOffIsNotHit) {
  putGate(1, 20, 140);
  putFence(1, 60, 100);
  gate(1).FenceEnabled = False16;
  EXPECT_EQ(edgeAt(60), noEdge);
  EXPECT_EQ(edgeAt(100), noEdge);
}

TEST_F(GraphEdgesTest, LastOfSeveralMatchesCountsHoweverNear) {
  struct Row {
    double start, fenceStart, fenceStop, stop;
    GateTime found;
  };
  // All within reach of column 20, the nearest of them always another than the one that counts.
  const std::vector<Row> rows = {
      {90, 20, 22, 120, GateTime::fenceStop}, {22, 20, 100, 120, GateTime::start},
      {22, 90, 20, 120, GateTime::start},     {20, 90, 100, 23, GateTime::stop},
      {20, 20, 20, 23, GateTime::stop},       {18, 20, 20, 120, GateTime::start},
  };
  for (const Row& row : rows) {
    putGate(1, row.start, row.stop);
    putFence(1, row.fenceStart, row.fenceStop);
    EXPECT_EQ(edgeAt(20), edgeOf(1, row.found));
  }
}

TEST_F(GraphEdgesTest, HigherGateWinsOverALowerOne) {
  putGate(1, 20, 100);
  putGate(2, 22, 120);
  EXPECT_EQ(edgeAt(21), edgeOf(2, GateTime::start));
  EXPECT_EQ(edgeAt(20), edgeOf(2, GateTime::start));
  EXPECT_EQ(edgeAt(18), edgeOf(1, GateTime::start));
  // Even its fence wins over the gate edge of the lower one.
  putGate(1, 10, 50);
  putGate(8, 70, 120);
  putFence(8, 52, 90);
  EXPECT_EQ(edgeAt(50), edgeOf(8, GateTime::fenceStart));
}

/// An edge may stand strictly between `lower` and `upper`.
struct Limits {
  const char* name;
  GateTime edge;
  bool fenced;
  float lower;
  float upper;
};

class EdgeLimits : public GraphEdgesTest, public ::testing::WithParamInterface<Limits> {};

INSTANTIATE_TEST_SUITE_P(
    Edges, EdgeLimits,
    ::testing::Values(Limits{"Start", GateTime::start, false, 0.001F, 0.01F},
                      Limits{"StartWithFence", GateTime::start, true, 0.001F, 0.006F},
                      Limits{"Stop", GateTime::stop, false, 0.004F, 0.021F},
                      Limits{"StopWithFence", GateTime::stop, true, 0.008F, 0.021F},
                      Limits{"FenceStart", GateTime::fenceStart, true, 0.004F, 0.008F},
                      Limits{"FenceStartThatIsOff", GateTime::fenceStart, false, 0.004F, 0.008F},
                      Limits{"FenceStop", GateTime::fenceStop, true, 0.006F, 0.01F},
                      Limits{"FenceStopThatIsOff", GateTime::fenceStop, false, 0.006F, 0.01F}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(EdgeLimits, AreStrict) {
  Settings.TriggerDelay = 0.001F;
  putGate(5, 40, 100);
  putFence(5, 60, 80);
  gate(5).FenceEnabled = GetParam().fenced ? True16 : False16;
  const GrabbedEdge edge = edgeOf(5, GetParam().edge);
  constexpr float far = std::numeric_limits<float>::max();
  const auto [name, which, fenced, lower, upper] = GetParam();
  EXPECT_FALSE(edgeMayMoveTo(edge, -far));
  EXPECT_FALSE(edgeMayMoveTo(edge, std::nextafter(lower, -far)));
  EXPECT_FALSE(edgeMayMoveTo(edge, lower));
  EXPECT_TRUE(edgeMayMoveTo(edge, std::nextafter(lower, far)));
  EXPECT_TRUE(edgeMayMoveTo(edge, std::nextafter(upper, -far)));
  EXPECT_FALSE(edgeMayMoveTo(edge, upper));
  EXPECT_FALSE(edgeMayMoveTo(edge, std::nextafter(upper, far)));
  EXPECT_FALSE(edgeMayMoveTo(edge, far));
}

TEST_F(GraphEdgesTest, EndsOfTheGateHoldAlthoughTheFenceLiesOutside) {
  putGate(1, 40, 100);
  putFence(1, 120, 130);
  EXPECT_TRUE(edgeMayMoveTo(edgeOf(1, GateTime::start), timeAt(99)));
  EXPECT_FALSE(edgeMayMoveTo(edgeOf(1, GateTime::start), timeAt(110)));
  putFence(1, 10, 20);
  EXPECT_TRUE(edgeMayMoveTo(edgeOf(1, GateTime::stop), timeAt(41)));
  EXPECT_FALSE(edgeMayMoveTo(edgeOf(1, GateTime::stop), timeAt(30)));
}

TEST_F(GraphEdgesTest, EndOfTheGraphIsTheTimeThatItsLabelShows) {
  Settings.TriggerDelay = 0.0003F;
  Settings.CaptureTime = 0.0001F;
  gate(1).StartTime = 0.00031F;
  // The sum of the singles lies beyond the time that the texts of the two add up to.
  ASSERT_GT(Settings.TriggerDelay + Settings.CaptureTime, 0.0004F);
  EXPECT_FALSE(edgeMayMoveTo(edgeOf(1, GateTime::stop), 0.0004F));
  EXPECT_TRUE(edgeMayMoveTo(edgeOf(1, GateTime::stop), std::nextafter(0.0004F, 0.0F)));
}

TEST_F(GraphEdgesTest, NoEdgeMayMoveAnywhere) {
  EXPECT_FALSE(edgeMayMoveTo(noEdge, 0.0002F));
  EXPECT_FALSE(edgeMayMoveTo(edgeOf(1, GateTime::none), 0.0002F));
  EXPECT_FALSE(edgeMayMoveTo(edgeOf(0, GateTime::start), 0.0002F));
}

TEST_F(GraphEdgesTest, CaptionNamesTheEdgeAndItsTime) {
  EXPECT_EQ(edgeCaption(edgeOf(1, GateTime::start)), "Gate 1 Start 100us");
  EXPECT_EQ(edgeCaption(edgeOf(2, GateTime::stop)), "Gate 2 Stop 577us");
  EXPECT_EQ(edgeCaption(edgeOf(3, GateTime::fenceStart)), "Fence 3 Start 225us");
  EXPECT_EQ(edgeCaption(edgeOf(8, GateTime::fenceStop)), "Fence 8 Stop 321us");
  gate(4).StopTime = 0.0046F;
  EXPECT_EQ(edgeCaption(edgeOf(4, GateTime::stop)), "Gate 4 Stop 4.6ms");
  gate(4).StartTime = 0;
  EXPECT_EQ(edgeCaption(edgeOf(4, GateTime::start)), "Gate 4 Start 0.0s");
}

TEST(EdgeLabelPlace, StaysInsideTheRightAndTheBottomEdge) {
  struct Row {
    PicturePoint pointer;
    PicturePoint place;
  };
  const PictureScale scale{1, 10, 200, -100};
  const PictureSize label{30, 4};
  const std::vector<Row> rows = {
      {{50, -80}, {50, -84}},     {{50, -82}, {50, -86}},    {{50, -83}, {50, -75}},
      {{50, -85}, {50, -77}},     {{190, -20}, {170, -24}},  {{170, -20}, {170, -24}},
      {{170.5, -20}, {170, -24}}, {{50.25, 10}, {50.25, 6}}, {{195, -90}, {170, -82}},
      {{50, -82.5}, {50, -74.5}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(edgeLabelPlace(row.pointer, label, scale), row.place)
        << "pointer " << row.pointer.x << ", " << row.pointer.y;
  }
}

TEST(EdgeLabelPlace, FollowsAReferenceAndAScaleOfTheirOwn) {
  const PictureScale scale{1, -20, 400, -50};
  const PictureSize label{40, 2};
  EXPECT_EQ(edgeLabelPlace({100, -60}, label, scale), (PicturePoint{100, -62}));
  EXPECT_EQ(edgeLabelPlace({100, -66}, label, scale), (PicturePoint{100, -68}));
  EXPECT_EQ(edgeLabelPlace({100, -66.5}, label, scale), (PicturePoint{100, -62.5}));
  EXPECT_EQ(edgeLabelPlace({380, -30}, label, scale), (PicturePoint{360, -32}));
}

/// Of a negative number of dB for each division.
TEST(EdgeLabelPlace, IsTwoHeightsOnWhereTheScaleGrowsDownward) {
  const PictureScale scale{1, 10, 200, 100};
  const PictureSize label{30, 4};
  EXPECT_EQ(edgeLabelPlace({50, 20}, label, scale), (PicturePoint{50, 28}));
  EXPECT_EQ(edgeLabelPlace({190, 108}, label, scale), (PicturePoint{170, 116}));
  EXPECT_EQ(edgeLabelPlace({50, 118}, label, scale), (PicturePoint{50, 114}));
}

class GraphMouseTest : public GraphEdgesTest {
 protected:
  /// Gate 1 from column 20 to 140, its fence from 60 to 100.
  GraphMouseTest() {
    putGate(1, 20, 140);
    putFence(1, 60, 100);
    AcquisitionRunning = True16;
  }

  static void moveTo(double x) { GraphMouseMove({x, -50}); }
  static void pressAt(double x) {
    moveTo(x);
    GraphButtonDown();
  }
  static void drag(double from, double to) {
    pressAt(from);
    moveTo(to);
    GraphButtonUp();
  }
  /// Gate 1 from column 20 to 50, gates 2 and 3 60 columns later each.
  static void repeatGateOne() {
    gate(1).FenceEnabled = False16;
    putGate(1, 20, 50);
    Settings.RepeatEnabled = True16;
    Settings.RepeatCount = 3;
    Settings.RepeatOffset = timeAt(60);
    ExpandRepeatGates();
    PositionGateLines();
  }
  static Transcript writtenStart(const std::string& time) {
    return {"GPGATS 1, 1, ON", "GPFENS 1, 1, ON", "GPTIMST 1, 1, " + time};
  }
  double lineAt(int gateNumber, GateTime edge) const {
    const auto offset = static_cast<std::size_t>(edge) - 1;
    return view.gateLines[static_cast<std::size_t>(gateNumber - 1) * linesPerGate + offset].x;
  }
  void expectLabel(const std::string& caption) const {
    EXPECT_TRUE(view.edgeLabel.visible);
    EXPECT_EQ(view.edgeLabel.caption, caption);
  }
  void expectNoLabel() const {
    EXPECT_FALSE(view.edgeLabel.visible);
    EXPECT_FALSE(view.edgeLabel.sizingPointer);
  }
};

TEST_F(GraphMouseTest, HoverShowsNameTimeAndPointer) {
  const std::vector<std::pair<double, std::string>> cases = {{20, "Gate 1 Start 2ms"},
                                                             {61.5, "Fence 1 Start 6ms"},
                                                             {97, "Fence 1 Stop 10ms"},
                                                             {143, "Gate 1 Stop 14ms"}};
  for (const auto& [x, caption] : cases) {
    moveTo(x);
    expectLabel(caption);
    EXPECT_TRUE(view.edgeLabel.sizingPointer);
    moveTo(80);
    expectNoLabel();
  }
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(gate(1).StartTime, timeAt(20));
}

TEST_F(GraphMouseTest, LabelStandsAtThePointer) {
  GraphMouseMove({20.5, -50});
  EXPECT_EQ(view.edgeLabel.topLeft, (PicturePoint{20.5, -54}));
  GraphMouseMove({21, -85});
  EXPECT_EQ(view.edgeLabel.topLeft, (PicturePoint{21, -77}));
}

TEST_F(GraphMouseTest, LabelIsPlacedByTheCaptionThatItBearsNow) {
  view.edgeLabel.size = {0, 4};
  view.edgeLabel.characterWidth = 5;
  moveTo(140);  // 16 characters: "Gate 1 Stop 14ms"
  EXPECT_EQ(view.edgeLabel.topLeft.x, 120);
  GraphButtonDown();
  moveTo(140);  // and the mark of a drag
  EXPECT_EQ(view.edgeLabel.topLeft.x, 110);
}

TEST_F(GraphMouseTest, LabelFollowsTheScaleOfTheGraph) {
  Settings.ReferenceLevel = 0;
  Settings.ScalePerDivision = 5;
  GraphMouseMove({20, -41});
  EXPECT_EQ(view.edgeLabel.topLeft, (PicturePoint{20, -45}));
  GraphMouseMove({20, -43});
  EXPECT_EQ(view.edgeLabel.topLeft, (PicturePoint{20, -35}));
}

TEST_F(GraphMouseTest, PressPausesUntilTheReleaseOnAnEdgeAndBesideOne) {
  for (const double x : {20.0, 80.0}) {
    for (const Boolean16 running : {True16, False16}) {
      AcquisitionRunning = running;
      pressAt(x);
      EXPECT_EQ(AcquisitionRunning, False16);
      EXPECT_EQ(GraphMouse.ButtonDown, True16);
      EXPECT_EQ(GraphMouse.Dragging, True16);
      moveTo(x);
      EXPECT_EQ(AcquisitionRunning, False16);
      GraphButtonUp();
      EXPECT_EQ(AcquisitionRunning, running);
      EXPECT_EQ(GraphMouse.ButtonDown, False16);
      EXPECT_EQ(GraphMouse.Dragging, False16);
      expectNoLabel();
    }
  }
}

TEST_F(GraphMouseTest, NoProfileIsRequestedWhileTheButtonIsDown) {
  answerProfile(levels(200));
  pressAt(80);
  EXPECT_THROW(AcquireProfile(), WaitsForEver);
  EXPECT_TRUE(received().empty());
  GraphButtonUp();
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
}

TEST_F(GraphMouseTest, PressDuringAPassLetsItFinishAndRequestsNoOther) {
  answerProfile(levels(200));
  duringReplyTo("TR1 1", [] { pressAt(80); });
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1"}));
  EXPECT_EQ(view.picture.timesShown, 1);
  EXPECT_THROW(AcquireProfile(), WaitsForEver);
  EXPECT_EQ(timesReceived("TR1 1"), 1);
  world.events.post(GraphButtonUp);
  AcquireProfile();
  EXPECT_EQ(timesReceived("TR1 1"), 2);
}

TEST_F(GraphMouseTest, PressBesideTheEdgesMovesAndSendsNothing) {
  const std::array<GateSettings, gateCount> before = Settings.Gates;
  pressAt(80);
  for (const double x : {79.0, 60.0, 20.0, 100.0}) {
    moveTo(x);  // Over edges as well: they were not grabbed.
    expectNoLabel();
  }
  GraphButtonUp();
  EXPECT_TRUE(received().empty());
  for (std::size_t index = 0; index < gateCount; ++index) {
    EXPECT_EQ(Settings.Gates[index].StartTime, before[index].StartTime);
    EXPECT_EQ(Settings.Gates[index].StopTime, before[index].StopTime);
    EXPECT_EQ(Settings.Gates[index].FenceStart, before[index].FenceStart);
    EXPECT_EQ(Settings.Gates[index].FenceStop, before[index].FenceStop);
  }
}

/// A drag of each edge, on either link.
struct Drag {
  const char* name;
  GateTime edge;
  double from;
  double to;
  float GateSettings::*time;
  std::int32_t GateSettings::*column;
  const char* command;
  const char* caption;
};

class DraggedEdge : public GraphMouseTest, public ::testing::WithParamInterface<Drag> {};

INSTANTIATE_TEST_SUITE_P(
    Edges, DraggedEdge,
    ::testing::Values(Drag{"Start", GateTime::start, 20, 30, &GateSettings::StartTime,
                           &GateSettings::StartX, "GPTIMST 1, 1, 0.003", "Gate 1 Start 3ms"},
                      Drag{"Stop", GateTime::stop, 142.5, 150, &GateSettings::StopTime,
                           &GateSettings::StopX, "GPTIMSP 1, 1, 0.015", "Gate 1 Stop 15ms"},
                      Drag{"FenceStart", GateTime::fenceStart, 58, 50, &GateSettings::FenceStart,
                           &GateSettings::FenceStartX, "GPFENST 1, 1, 0.005", "Fence 1 Start 5ms"},
                      Drag{"FenceStop", GateTime::fenceStop, 100, 120, &GateSettings::FenceStop,
                           &GateSettings::FenceStopX, "GPFENSP 1, 1, 0.012", "Fence 1 Stop 12ms"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(DraggedEdge, MovesInTheModelAtOnceAndOnTheMeterAtTheRelease) {
  const Drag& dragged = GetParam();
  const GateSettings before = gate(1);
  pressAt(dragged.from);
  moveTo(dragged.to);
  expectLabel(std::string("* ") + dragged.caption);
  EXPECT_TRUE(view.edgeLabel.sizingPointer);
  EXPECT_EQ(gate(1).*dragged.time, timeAt(dragged.to));
  EXPECT_EQ(gate(1).*dragged.column, static_cast<std::int32_t>(dragged.to));
  EXPECT_EQ(lineAt(1, dragged.edge), dragged.to);
  EXPECT_TRUE(received().empty());
  GraphButtonUp();
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 1, ON", "GPFENS 1, 1, ON", dragged.command}));
  expectNoLabel();
  EXPECT_EQ(AcquisitionRunning, True16);
  GateSettings expected = before;
  expected.*dragged.time = timeAt(dragged.to);
  for (const auto time : {&GateSettings::StartTime, &GateSettings::StopTime,
                          &GateSettings::FenceStart, &GateSettings::FenceStop}) {
    EXPECT_EQ(gate(1).*time, expected.*time);
  }
}

TEST_P(DraggedEdge, IsWrittenOverSerialInTheSameBytes) {
  world.useSerial();
  drag(GetParam().from, GetParam().to);
  EXPECT_EQ(world.serial.sent,
            std::string("GPGATS 1, 1, ON\rGPFENS 1, 1, ON\r") + GetParam().command + "\r");
}

TEST_P(DraggedEdge, IsWrittenWhereItStandsWhenItWasNotMoved) {
  pressAt(GetParam().from);
  GraphButtonUp();
  const float time = gate(1).*GetParam().time;
  const std::string command = GetParam().command;
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 1, ON", "GPFENS 1, 1, ON",
                                    command.substr(0, command.rfind(' ') + 1) + numberText(time)}));
}

TEST_F(GraphMouseTest, CommandsCarryChannelGateAndStates) {
  Settings.ActiveChannel = 3;
  putGate(1, 150, 190);
  gate(1).FenceEnabled = False16;
  putGate(7, 20, 50);
  gate(7).FenceEnabled = False16;
  drag(50, 55);
  EXPECT_EQ(received(),
            (Transcript{"GPGATS 1&2, 7, ON", "GPFENS 1&2, 7, OFF", "GPTIMSP 1&2, 7, 0.0055"}));
}

TEST_F(GraphMouseTest, FenceOfAGateThatIsOffIsDraggedAndWritten) {
  gate(1).Enabled = False16;
  PositionGateLines();
  drag(60, 70);
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 1, OFF", "GPFENS 1, 1, ON", "GPFENST 1, 1, 0.007"}));
}

TEST_F(GraphMouseTest, EdgeStaysAtTheLastPositionInsideItsLimitsAndComesBack) {
  pressAt(20);
  moveTo(55);
  moveTo(60);  // where the fence starts
  EXPECT_EQ(gate(1).StartTime, timeAt(55));
  moveTo(150);
  EXPECT_EQ(gate(1).StartTime, timeAt(55));
  EXPECT_EQ(lineAt(1, GateTime::start), 55);
  expectLabel("* Gate 1 Start 5.5ms");
  EXPECT_EQ(view.edgeLabel.topLeft.x, 150);
  moveTo(0);  // the graph's left end
  moveTo(-10);
  EXPECT_EQ(gate(1).StartTime, timeAt(55));
  moveTo(40);
  EXPECT_EQ(gate(1).StartTime, timeAt(40));
  expectLabel("* Gate 1 Start 4ms");
  moveTo(1000);
  GraphButtonUp();
  EXPECT_EQ(received(), writtenStart("0.004"));
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(GraphMouseTest, StopEndsBeforeTheEndOfTheGraph) {
  pressAt(140);
  moveTo(199.5);
  EXPECT_EQ(gate(1).StopTime, timeAt(199.5));
  moveTo(200);
  EXPECT_EQ(gate(1).StopTime, timeAt(199.5));
  moveTo(100);  // where the fence stops
  EXPECT_EQ(gate(1).StopTime, timeAt(199.5));
  moveTo(100.5);
  EXPECT_EQ(gate(1).StopTime, timeAt(100.5));
}

TEST_F(GraphMouseTest, GrabbedEdgeKeepsItsGripOverOtherEdges) {
  putGate(2, 40, 160);
  pressAt(20);
  moveTo(40);
  expectLabel("* Gate 1 Start 4ms");
  EXPECT_EQ(gate(1).StartTime, timeAt(40));
  EXPECT_EQ(gate(2).StartTime, timeAt(40));
  GraphButtonUp();
  EXPECT_EQ(received(), writtenStart("0.004"));
}

TEST_F(GraphMouseTest, LastOfThreeHundredMovesIsWrittenOnce) {
  for (const bool serial : {false, true}) {
    if (serial) world.useSerial();
    world.meter.received.clear();
    putGate(1, 20, 140);
    pressAt(20);
    for (int move = 1; move <= 300; ++move) moveTo(20 + 0.1 * move);
    EXPECT_TRUE(received().empty());
    GraphButtonUp();
    EXPECT_EQ(received(), writtenStart("0.005"));
    moveTo(55);
    GraphButtonUp();
    EXPECT_EQ(received().size(), 3U);
  }
}

TEST_F(GraphMouseTest, PressMarksTheLabelAndEveryMoveKeepsOneMark) {
  moveTo(20);
  GraphButtonDown();
  expectLabel("* Gate 1 Start 2ms");
  moveTo(21);
  expectLabel("* Gate 1 Start 2.1ms");
  moveTo(22);
  expectLabel("* Gate 1 Start 2.2ms");
  GraphButtonUp();
  moveTo(22);
  expectLabel("Gate 1 Start 2.2ms");
}

TEST_F(GraphMouseTest, SecondPressWhileTheButtonIsDownDoesNothing) {
  pressAt(20);
  GraphButtonDown();
  expectLabel("* Gate 1 Start 2ms");
  EXPECT_EQ(AcquisitionRunning, False16);
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_EQ(received(), writtenStart("0.002"));
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_EQ(received().size(), 3U);
}

TEST_F(GraphMouseTest, ReleaseWithoutAPressLeavesTheHoverAlone) {
  moveTo(20);
  GraphButtonUp();
  expectLabel("Gate 1 Start 2ms");
  EXPECT_TRUE(view.edgeLabel.sizingPointer);
  EXPECT_TRUE(received().empty());
}

TEST_F(GraphMouseTest, LeavingTheGraphTakesLabelAndPointer) {
  moveTo(20);
  GraphMouseLeave();
  expectNoLabel();
}

TEST_F(GraphMouseTest, LeavingTheGraphDuringADragTakesNothing) {
  pressAt(20);
  GraphMouseLeave();
  expectLabel("* Gate 1 Start 2ms");
  EXPECT_TRUE(view.edgeLabel.sizingPointer);
  moveTo(30);
  GraphButtonUp();
  EXPECT_EQ(received(), writtenStart("0.003"));
}

TEST_F(GraphMouseTest, PressTakesTheEdgeThatTheLastHoverFound) {
  moveTo(20);
  GraphMouseLeave();
  GraphButtonDown();
  moveTo(30);
  GraphButtonUp();
  EXPECT_EQ(received(), writtenStart("0.003"));
}

TEST_F(GraphMouseTest, HiddenGatesAreNotFound) {
  Settings.GatesVisible = False16;
  pressAt(20);
  expectNoLabel();
  moveTo(30);
  GraphButtonUp();
  EXPECT_EQ(gate(1).StartTime, timeAt(20));
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(GraphMouseTest, EdgeThatWasFoundBeforeTheGatesWereHiddenIsLetGoAtThePress) {
  moveTo(20);
  Settings.GatesVisible = False16;
  GraphButtonDown();
  GraphButtonUp();
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(GraphMouse.Grabbed, noEdge);
}

TEST_F(GraphMouseTest, MoveOverGatesThatWereHiddenMeanwhileTakesTheLabel) {
  moveTo(20);
  Settings.GatesVisible = False16;
  moveTo(20);
  expectNoLabel();
}

TEST_F(GraphMouseTest, EdgeIsLetGoWhenTheGatesAreHiddenDuringADrag) {
  pressAt(20);
  moveTo(30);
  Settings.GatesVisible = False16;
  moveTo(40);
  expectNoLabel();
  EXPECT_EQ(gate(1).StartTime, timeAt(30));
}

TEST_F(GraphMouseTest, RepeatedGateShowsItsLabelAndCannotBeDragged) {
  repeatGateOne();
  moveTo(80);
  expectLabel("Gate 2 Start 8ms");
  EXPECT_FALSE(view.edgeLabel.sizingPointer);
  GraphButtonDown();
  EXPECT_EQ(AcquisitionRunning, False16);
  moveTo(85);
  EXPECT_EQ(GraphMouse.Dragging, False16);
  EXPECT_EQ(gate(2).StartTime, timeAt(80));
  EXPECT_FALSE(view.edgeLabel.sizingPointer);
  GraphButtonUp();
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(GraphMouseTest, RepeatFollowsGateOneAndOnlyThatIsWritten) {
  repeatGateOne();
  moveTo(20);
  EXPECT_TRUE(view.edgeLabel.sizingPointer);
  GraphButtonDown();
  moveTo(30);
  expectLabel("* Gate 1 Start 3ms");
  EXPECT_EQ(gate(2).StartTime, timeAt(90));
  EXPECT_EQ(gate(3).StartTime, timeAt(150));
  EXPECT_EQ(lineAt(2, GateTime::start), 90);
  EXPECT_EQ(lineAt(3, GateTime::start), 150);
  EXPECT_EQ(gate(2).StopTime, timeAt(110));
  GraphButtonUp();
  EXPECT_EQ(received(), (Transcript{"GPGATS 1, 1, ON", "GPFENS 1, 1, OFF", "GPTIMST 1, 1, 0.003"}));
}

TEST_F(GraphMouseTest, OtherGatesStayWithoutARepeat) {
  gate(1).FenceEnabled = False16;
  putGate(1, 20, 50);
  putGate(2, 80, 110);
  drag(20, 30);
  EXPECT_EQ(gate(2).StartTime, timeAt(80));
}

TEST_F(GraphMouseTest, RepeatEndsADragThatGrabbedNothing) {
  repeatGateOne();
  pressAt(65);
  EXPECT_EQ(GraphMouse.Dragging, True16);
  moveTo(66);
  EXPECT_EQ(GraphMouse.Dragging, False16);
  expectNoLabel();
  // So a hover test follows, with the button down; what it finds is not dragged.
  moveTo(20);
  expectLabel("Gate 1 Start 2ms");
  moveTo(21);
  GraphButtonUp();
  EXPECT_EQ(gate(1).StartTime, timeAt(20));
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(GraphMouseTest, StopDuringAPressIsNotUndoneByTheRelease) {
  pressAt(80);
  StopAcquisition();
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_EQ(view.menus, (std::vector<std::string>{"stopped"}));
  EXPECT_THROW(AcquireProfile(), WaitsForEver);
}

TEST_F(GraphMouseTest, StartDuringAPressTakesEffectAtTheRelease) {
  answerReadBack();
  AcquisitionRunning = False16;
  pressAt(80);
  StartAcquisition();
  EXPECT_EQ(timesReceived("TRDLYT? 1,PMOD"), 1);
  EXPECT_EQ(AcquisitionRunning, False16);
  EXPECT_THROW(AcquireProfile(), WaitsForEver);
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
  AcquireProfile();
  EXPECT_EQ(timesReceived("TR1 1"), 1);
}

TEST_F(GraphMouseTest, StartThatIsCompletedDuringAPressTakesEffectAtTheRelease) {
  answerReadBack();
  AcquisitionRunning = False16;
  duringReplyTo("PMPSCAL? 1,DB", [] { pressAt(80); });
  StartAcquisition();
  EXPECT_EQ(AcquisitionRunning, False16);
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(GraphMouseTest, StopAndStartDuringAPressLeaveItRunning) {
  answerReadBack();
  pressAt(80);
  StopAcquisition();
  StartAcquisition();
  EXPECT_EQ(AcquisitionRunning, False16);
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
}

TEST_F(GraphMouseTest, FaultOfThePassUnderAPressStopsForGood) {
  answerProfile(levels(200));
  duringReplyTo("PMPBO 1", [] {
    pressAt(80);
    Settings.ScalePerDivision = 0;
  });
  AcquireProfile();
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, False16);
}

TEST_F(GraphMouseTest, ReleaseDuringAnExchangeWritesAfterIt) {
  struct Case {
    bool serial;
    const char* query;
    Transcript received;
  };
  Transcript afterTheRead = writtenStart("0.003");
  const std::vector<Case> cases = {{false, "TR1 1", {"TR1 1", "PMPBO 1"}},
                                   {false, "PMPBO 1", {"TR1 1", "PMPBO 1"}},
                                   {true, "TR1 1", {"TR1 1", "PMPO 1"}},
                                   {true, "PMPO 1", {"TR1 1", "PMPO 1"}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.serial ? "RS232 " : "GPIB ") + c.query);
    if (c.serial) world.useSerial();
    answerProfile(levels(200));
    world.serial.pieceSize = textReadout(levels(200)).size() / 2;
    world.meter.received.clear();
    ProfileTrace.fill(0);
    putGate(1, 20, 140);
    AcquisitionRunning = True16;
    bool heldBack = false;
    duringReplyTo(c.query, [&] {
      const std::size_t before = received().size();
      drag(20, 30);
      heldBack = received().size() == before;
      EXPECT_EQ(AcquisitionRunning, True16);
      expectNoLabel();
    });
    AcquireProfile();
    EXPECT_TRUE(heldBack);
    Transcript expected = c.received;
    expected.insert(expected.end(), afterTheRead.begin(), afterTheRead.end());
    EXPECT_EQ(received(), expected);
    EXPECT_EQ(world.gpib.interruptedQueries, 0);
    EXPECT_EQ(world.serial.interruptedQueries, 0);
    EXPECT_EQ(ProfileTrace[0], levels(200)[0]);
    EXPECT_EQ(ProfileTrace[199], levels(200)[199]);
    AcquireProfile();
    EXPECT_EQ(timesReceived("TR1 1"), 2);
    EXPECT_EQ(received().size(), 7U);
  }
}

TEST_F(GraphMouseTest, TwoDragsDuringAnExchangeAreWrittenInTheirOrder) {
  answerProfile(levels(200));
  duringReplyTo("PMPBO 1", [] {
    drag(20, 30);
    drag(100, 110);
  });
  AcquireProfile();
  EXPECT_EQ(received(), (Transcript{"TR1 1", "PMPBO 1", "GPGATS 1, 1, ON", "GPFENS 1, 1, ON",
                                    "GPTIMST 1, 1, 0.003", "GPGATS 1, 1, ON", "GPFENS 1, 1, ON",
                                    "GPFENSP 1, 1, 0.011"}));
}

/// What makes the graph impossible to compute.
struct NoGraph {
  const char* name;
  void (*make)();
  const char* description;
};

class MouseOnABrokenGraph : public GraphMouseTest, public ::testing::WithParamInterface<NoGraph> {
 protected:
  void expectToldTimes(std::size_t times) const {
    const std::string box = std::string("Pelmora|") + GetParam().description + "|exclamation";
    EXPECT_EQ(shownBoxes(), std::vector<std::string>(times, box));
  }
};

INSTANTIATE_TEST_SUITE_P(
    Faults, MouseOnABrokenGraph,
    ::testing::Values(NoGraph{"CaptureOfZero", [] { Settings.CaptureTime = 0; },
                              "Division by zero: the capture time is 0"},
                      NoGraph{"ScaleOfZero", [] { Settings.ScalePerDivision = 0; },
                              "Division by zero: the graph's scale is 0 dB"},
                      NoGraph{"NoPoints", [] { Settings.DisplayPoints = 0; },
                              "The graph has no points to draw"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(MouseOnABrokenGraph, IsToldOnceOverAHundredHovers) {
  GetParam().make();
  for (int move = 0; move < 100; ++move) {
    moveTo(20);
    EXPECT_FALSE(view.edgeLabel.visible);
  }
  expectToldTimes(1);
}

TEST_P(MouseOnABrokenGraph, IsToldOnceOverAHundredMovesOfADrag) {
  pressAt(20);
  GetParam().make();
  for (int move = 0; move < 100; ++move) moveTo(20 + move);
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
  EXPECT_FALSE(view.edgeLabel.visible);
  GraphButtonUp();
  EXPECT_EQ(AcquisitionRunning, True16);
  EXPECT_EQ(world.dialogs.messages.size(), 1U);
}

TEST_P(MouseOnABrokenGraph, IsNotToldAgainWhenTheDrawingHasToldIt) {
  GetParam().make();
  RefreshGraph();
  for (int move = 0; move < 100; ++move) moveTo(20);
  expectToldTimes(1);
}

TEST_P(MouseOnABrokenGraph, IsNotToldWhereNoEdgeIs) {
  GetParam().make();
  moveTo(80);
  expectToldTimes(0);
  expectNoLabel();
}

TEST_F(GraphMouseTest, RepeatedGateIsNotWrittenAtAReleaseWithoutAMove) {
  repeatGateOne();
  moveTo(80);
  GraphButtonDown();
  GraphButtonUp();
  EXPECT_TRUE(received().empty());
}

TEST_F(GraphMouseTest, GatePageFollowsEveryMoveOfADragAndTheWrite) {
  moveTo(20);
  EXPECT_EQ(view.timesGatePageRefreshed, 0);
  GraphButtonDown();
  EXPECT_EQ(view.timesGatePageRefreshed, 0);
  moveTo(30);
  moveTo(31);
  EXPECT_EQ(view.timesGatePageRefreshed, 2);
  int refreshedWhenWritten = 0;
  world.meter.onMessage = [&](const std::string& message) {
    if (message.starts_with("GPTIMST")) refreshedWhenWritten = view.timesGatePageRefreshed;
  };
  GraphButtonUp();
  EXPECT_EQ(refreshedWhenWritten, 2);
  EXPECT_EQ(view.timesGatePageRefreshed, 3);
}

TEST_F(GraphMouseTest, GatePageIsLeftAloneWhereNothingIsDragged) {
  drag(80, 85);
  for (const double x : {20.0, 60.0, 140.0}) moveTo(x);
  repeatGateOne();
  drag(80, 85);
  EXPECT_EQ(view.timesGatePageRefreshed, 0);
}

TEST_F(GraphMouseTest, GatePageWaitsForTheWriteThatWaitsForTheLink) {
  converse([this] {
    drag(20, 30);
    EXPECT_EQ(view.timesGatePageRefreshed, 1);
  });
  EXPECT_EQ(received(), writtenStart("0.003"));
  EXPECT_EQ(view.timesGatePageRefreshed, 2);
}

/// The page shows the model, so every gate has its new time by then.
TEST_F(GraphMouseTest, GatePageIsRefreshedWithTheRepeatedGatesMoved) {
  repeatGateOne();
  float secondGateStart = 0;
  view.onGatePageRefresh = [&] { secondGateStart = gate(2).StartTime; };
  pressAt(20);
  moveTo(30);
  EXPECT_EQ(secondGateStart, timeAt(90));
  GraphButtonUp();
}

TEST_F(GraphMouseTest, NoEdgeMovesOnAGraphThatCannotBeDrawn) {
  moveTo(20);
  GraphButtonDown();
  const float before = Settings.Gates[0].StartTime;
  Settings.ScalePerDivision = 0;
  moveTo(24);
  EXPECT_EQ(Settings.Gates[0].StartTime, before);
  Settings.ScalePerDivision = 10;
  moveTo(24);
  EXPECT_NE(Settings.Gates[0].StartTime, before);
}

}  // namespace
}  // namespace pulsemod::test
