#include "ProfileTest.h"
#include "link/NumberText.h"
#include "link/TimeText.h"
#include "profile/ProfileGraph.h"

namespace pulsemod::test {
namespace {

enum LineOfGate : std::size_t { start, stop, fenceStart, fenceStop };

class GateLinesTest : public ProfileTest {
 protected:
  GateLinesTest() { Settings.CaptureTime = 0.02F; }  // 200 points: 10000 a second

  /// Gate `number` is on; its edges stand at 10, 13, 11 and 12 times `number`.
  static void putGate(std::size_t number, Boolean16 fence) {
    GateSettings& gate = Settings.Gates[number - 1];
    const auto column = [number](float x) { return x * static_cast<float>(number) / 10000.0F; };
    gate.StartTime = column(10);
    gate.StopTime = column(13);
    gate.FenceStart = column(11);
    gate.FenceStop = column(12);
    gate.Enabled = True16;
    gate.FenceEnabled = fence;
  }

  const GateLine& line(std::size_t gate, LineOfGate which) const {
    return view.gateLines[(gate - 1) * linesPerGate + which];
  }

  void expectVisible(std::size_t gate, bool edges, bool fences) const {
    EXPECT_EQ(line(gate, start).visible, edges) << "gate " << gate;
    EXPECT_EQ(line(gate, stop).visible, edges) << "gate " << gate;
    EXPECT_EQ(line(gate, fenceStart).visible, fences) << "gate " << gate;
    EXPECT_EQ(line(gate, fenceStop).visible, fences) << "gate " << gate;
  }
};

TEST_F(GateLinesTest, EachOfEightGatesHasFourLines) {
  for (std::size_t gate = 1; gate <= gateCount; ++gate) putGate(gate, True16);
  PositionGateLines();
  ASSERT_EQ(view.gateLines.size(), 32U);
  for (std::size_t gate = 1; gate <= gateCount; ++gate) {
    const auto times = static_cast<double>(gate);
    EXPECT_EQ(line(gate, start), (GateLine{true, 10 * times})) << "gate " << gate;
    EXPECT_EQ(line(gate, stop), (GateLine{true, 13 * times})) << "gate " << gate;
    EXPECT_EQ(line(gate, fenceStart), (GateLine{true, 11 * times})) << "gate " << gate;
    EXPECT_EQ(line(gate, fenceStop), (GateLine{true, 12 * times})) << "gate " << gate;
  }
  EXPECT_EQ(view.timesGateLinesPlaced, 1);
}

TEST_F(GateLinesTest, ColumnsAreStoredWithTheirGates) {
  for (std::size_t gate = 1; gate <= gateCount; ++gate) putGate(gate, True16);
  // They are stored for gates that are not shown as well.
  Settings.Gates[2].Enabled = False16;
  Settings.GatesVisible = False16;
  PositionGateLines();
  for (std::size_t gate = 1; gate <= gateCount; ++gate) {
    const auto times = static_cast<std::int32_t>(gate);
    const GateSettings& settings = Settings.Gates[gate - 1];
    EXPECT_EQ(settings.StartX, 10 * times);
    EXPECT_EQ(settings.StopX, 13 * times);
    EXPECT_EQ(settings.FenceStartX, 11 * times);
    EXPECT_EQ(settings.FenceStopX, 12 * times);
  }
}

TEST_F(GateLinesTest, VisibilityFollowsGateFenceAndTheCommonSwitch) {
  struct Case {
    Boolean16 all, gate, fence;
    bool edgesShown, fencesShown;
  };
  const std::vector<Case> cases = {
      {True16, True16, True16, true, true},     {True16, True16, False16, true, false},
      {True16, False16, True16, false, false},  {True16, False16, False16, false, false},
      {False16, True16, True16, false, false},  {False16, True16, False16, false, false},
      {False16, False16, True16, false, false},
  };
  for (const Case& c : cases) {
    Settings.GatesVisible = c.all;
    for (GateSettings& gate : Settings.Gates) gate.Enabled = gate.FenceEnabled = False16;
    for (const std::size_t gate : {1U, 8U}) {
      Settings.Gates[gate - 1].Enabled = c.gate;
      Settings.Gates[gate - 1].FenceEnabled = c.fence;
    }
    PositionGateLines();
    for (const std::size_t gate : {1U, 8U}) expectVisible(gate, c.edgesShown, c.fencesShown);
    for (std::size_t gate = 2; gate < 8; ++gate) expectVisible(gate, false, false);
  }
}

TEST_F(GateLinesTest, GateBeforeTheDelayStandsAtTheEdge) {
  Settings.TriggerDelay = 0.001F;
  Settings.Gates[0].Enabled = True16;
  Settings.Gates[0].StartTime = 0.0005F;
  Settings.Gates[0].StopTime = 0.002F;
  PositionGateLines();
  EXPECT_EQ(line(1, start), (GateLine{true, 0}));
  EXPECT_EQ(line(1, stop), (GateLine{true, 10}));
  EXPECT_EQ(Settings.Gates[0].StartX, 0);
}

TEST_F(GateLinesTest, GatePastTheCaptureStandsAtTheLastPoint) {
  Settings.Gates[0].Enabled = True16;
  Settings.Gates[0].StopTime = 5;
  PositionGateLines();
  EXPECT_EQ(line(1, stop), (GateLine{true, 200}));
  EXPECT_EQ(Settings.Gates[0].StopX, 200);
}

TEST_F(GateLinesTest, LastRepeatedGateIsDrawnUpToTheEdge) {
  InitMeasurementSettings();
  Settings.RepeatEnabled = True16;
  Settings.RepeatCount = 8;
  ExpandRepeatGates();
  PositionGateLines();
  EXPECT_EQ(line(1, start), (GateLine{true, 4}));  // 0.0001 of 0.0046 s: 4.35
  EXPECT_EQ(line(8, start), (GateLine{true, 187}));
  EXPECT_EQ(line(8, stop), (GateLine{true, 200}));
}

TEST_F(GateLinesTest, HalvesGoToTheEvenColumn) {
  Settings.CaptureTime = 1;
  GateSettings& gate = Settings.Gates[0];
  gate.StartTime = 0.0625F;   // 12.5
  gate.StopTime = 0.1875F;    // 37.5
  gate.FenceStart = 0.3125F;  // 62.5
  gate.FenceStop = 0.4375F;   // 87.5
  PositionGateLines();
  EXPECT_EQ(gate.StartX, 12);
  EXPECT_EQ(gate.StopX, 38);
  EXPECT_EQ(gate.FenceStartX, 62);
  EXPECT_EQ(gate.FenceStopX, 88);
}

TEST_F(GateLinesTest, ColumnsCountTracePoints) {
  InitMeasurementSettings();
  Settings.Gates[0].StartTime = 0.0023F;
  PositionGateLines();
  EXPECT_EQ(Settings.Gates[0].StartX, 100);
  Settings.DisplayPoints = 400;
  PositionGateLines();
  EXPECT_EQ(Settings.Gates[0].StartX, 200);
}

TEST_F(GateLinesTest, LinesStayWhileTracesAreRedrawn) {
  putGate(1, False16);
  PositionGateLines();
  const GateLineArray placed = view.gateLines;
  Settings.Gates[0].StartTime = 0.004F;
  RedrawProfile();
  EXPECT_EQ(view.gateLines, placed);
  EXPECT_EQ(view.timesGateLinesPlaced, 1);
}

using GraphLabelsTest = ProfileTest;

TEST_F(GraphLabelsTest, DefaultCaptions) {
  UpdateGraphLabels();
  const std::map<GraphLabel, std::string> expected = {{GraphLabel::reference, "Ref: 10.00 dBm"},
                                                      {GraphLabel::scale, "Scale: 10.00 dB"},
                                                      {GraphLabel::capture, "4.6ms"},
                                                      {GraphLabel::start, "0.0s"},
                                                      {GraphLabel::stop, "4.6ms"}};
  EXPECT_EQ(view.labels, expected);
  EXPECT_EQ(view.timesGateLinesPlaced, 1);
}

TEST_F(GraphLabelsTest, LevelsHaveTwoDecimals) {
  const std::vector<std::pair<float, std::string>> cases = {
      {0.0F, "0.00"},    {-34.567F, "-34.57"}, {0.125F, "0.13"},    {-0.125F, "-0.13"},
      {-0.001F, "0.00"}, {5.2F, "5.20"},       {1234.5F, "1234.50"}};
  for (const auto& [level, text] : cases) {
    Settings.ReferenceLevel = level;
    Settings.ScalePerDivision = level;
    UpdateGraphLabels();
    EXPECT_EQ(view.labels[GraphLabel::reference], "Ref: " + text + " dBm");
    EXPECT_EQ(view.labels[GraphLabel::scale], "Scale: " + text + " dB");
  }
}

TEST_F(GraphLabelsTest, TimesAreTimeTexts) {
  struct Case {
    float delay, capture;
    const char *startText, *captureText, *stopText;
  };
  const std::vector<Case> cases = {
      {0.0001F, 0.0046F, "100us", "4.6ms", "4.7ms"},
      {0.0F, 0.000005F, "0.0s", "5us", "5us"},
      {0.0000046F, 0.0000054F, "4.6us", "5.4us", "10us"},
      {0.0F, 2.5F, "0.0s", "2.5ms", "2.5ms"},
      {-0.001F, 0.001F, "-1ms", "1ms", "0.0s"},
      {0.000225F, 0.000321F, "225us", "321us", "546us"},
  };
  for (const Case& c : cases) {
    Settings.TriggerDelay = c.delay;
    Settings.CaptureTime = c.capture;
    UpdateGraphLabels();
    EXPECT_EQ(view.labels[GraphLabel::start], c.startText);
    EXPECT_EQ(view.labels[GraphLabel::capture], c.captureText);
    EXPECT_EQ(view.labels[GraphLabel::stop], c.stopText);
  }
}

TEST_F(GraphLabelsTest, RightEdgeIsTheSumOfTheTexts) {
  // Pairs of microseconds; the sums of the bare singles often show another text.
  int otherThanTheSumOfSingles = 0;
  for (int delay = 3; delay < 1000; delay += 41) {
    for (int capture = 1000; capture < 9000; capture += 37) {
      Settings.TriggerDelay = static_cast<float>(delay / 1e6);
      Settings.CaptureTime = static_cast<float>(capture / 1e6);
      // A few singles have no text of seven digits that is the typed one.
      if (throughText(Settings.TriggerDelay) != delay / 1e6) continue;
      if (throughText(Settings.CaptureTime) != capture / 1e6) continue;
      UpdateGraphLabels();
      const std::string expected = FormatTime(static_cast<float>((delay + capture) / 1e6));
      EXPECT_EQ(view.labels[GraphLabel::stop], expected) << delay << " us + " << capture << " us";
      const float sumOfSingles = Settings.TriggerDelay + Settings.CaptureTime;
      if (FormatTime(sumOfSingles) != expected) ++otherThanTheSumOfSingles;
    }
  }
  EXPECT_GT(otherThanTheSumOfSingles, 0);
}

}  // namespace
}  // namespace pulsemod::test
