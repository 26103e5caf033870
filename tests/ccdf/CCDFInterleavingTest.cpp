#include "CCDFTest.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFLoop.h"
#include "ccdf/MeasurementSource.h"
#include "ccdf/PowerAxis.h"
#include "link/Conversation.h"

/// Clicks of every kind while a reply of the meter is under way, over a slow serial line. None may
/// get between a query and its reply, and none may be lost.

namespace pulsemod::test {
namespace {

struct Click {
  const char* name;
  void (*act)();
  /// What the meter hears of it in the end; empty for nothing.
  const char* heard;
};

void PrintTo(const Click& click, std::ostream* out) { *out << click.name; }

const Click clicks[] = {
    {"StartPower", EditStartPower, "TTPST 1,-7"},
    {"StopPower", EditStopPower, "TTPSP 1,-7"},
    {"Marker", [] { RequestMeasurementSource(CCDFSource::marker); }, "TTSRC 1,MARKER"},
    {"Gate", [] { RequestMeasurementSource(CCDFSource::gate); }, "TTSRC 1,GATE"},
    {"Channel", [] { RequestMeasurementSource(CCDFSource::channel); }, "TTSRC? 1"},
    {"CursorOn", SwitchCursorOn, "TTMKS 1,ON"},
    {"CursorOff", SwitchCursorOff, "TTMKS 1,OFF"},
    {"CursorPosition", EditCursorPosition, "TTMKPOS 1,-7"},
    {"Drag",
     [] {
       CCDFMouseMove({static_cast<double>(CCDF.CursorX), 0});
       CCDFButtonDown();
       CCDFMouseMove({1, 0});
       CCDFButtonUp();
     },
     "TTMKPOS 1,-20"},
    {"Restart", RestartStatistics, "PPACQRT 1"},
    {"Stop", StopCCDF, ""},
    {"Resize", [] { RefreshCCDFGraph(); }, ""},
};

const char* const queries[] = {"TTFRO 1",  "TTPST? 1",   "TTPSP? 1",
                               "TTSRC? 1", "TTMKPOS? 1", "TTMKRO 1"};

class ClickDuringAReply
    : public CCDFTest,
      public ::testing::WithParamInterface<std::tuple<Click, const char*, bool>> {
 protected:
  ClickDuringAReply() {
    world.useSerial();
    world.serial.pieceSize = 1;
    Settings.DisplayPoints = 3;
    showCursorOn();
    CCDF.CursorPower = -10;
    CCDF.CursorX = 2;
    AcquisitionRunning = True16;
    // So that every query is there in the pass.
    CCDFPending.StartPowerPending = True16;
    CCDFPending.StopPowerPending = True16;
    CCDFPending.SourceChannelPending = True16;
    CCDFPending.CursorPositionPending = True16;
    answer("-7");
  }
  void runPass() {
    world.events.post([] {});
    AcquireCCDF();
  }
};

INSTANTIATE_TEST_SUITE_P(Pass, ClickDuringAReply,
                         ::testing::Combine(::testing::ValuesIn(clicks),
                                            ::testing::ValuesIn(queries), ::testing::Bool()),
                         [](const auto& tested) {
                           std::string query = std::get<1>(tested.param);
                           std::erase_if(query, [](char letter) { return letter < 'A'; });
                           std::erase(query, '?');
                           return std::string(std::get<0>(tested.param).name) + "In" + query +
                                  (std::get<2>(tested.param) ? "AfterStop" : "");
                         });

TEST_P(ClickDuringAReply, WaitsForItsEndAndIsNotLost) {
  const auto& [click, query, stopped] = GetParam();
  bool clicked = false;
  Transcript before;
  duringReplyTo(query, [&, stopFirst = stopped, act = click.act] {
    if (stopFirst) StopCCDF();
    before = received();
    act();
    clicked = true;
    EXPECT_EQ(received(), before) << "the meter heard of it in the middle of a reply";
  });
  runPass();
  ASSERT_TRUE(clicked);
  runPass();
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_FALSE(Conversation.open);
  EXPECT_TRUE(Conversation.kept.empty());
  EXPECT_EQ(world.programEnd.ends, 0);
  if (*click.heard == 0) return;
  const auto after = received().begin() + static_cast<std::ptrdiff_t>(before.size());
  EXPECT_NE(std::find(after, received().end(), click.heard), received().end()) << click.heard;
}

}  // namespace
}  // namespace pulsemod::test
