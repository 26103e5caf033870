#include "CCDFTest.h"
#include "ccdf/CCDFLoop.h"
#include "ccdf/PowerAxis.h"
#include "link/Conversation.h"
#include "link/Fault.h"

namespace pulsemod::test {
namespace {

/// One end of the axis; all that differs between the two.
struct End {
  const char* name;
  const char* mnemonic;
  float& power;
  Boolean16& pending;
  void (*edit)();
  void (*read)();
  std::string FakeCCDFView::*label;
  const char* prompt;
  const char* title;
  const char* oldText;
};

void PrintTo(const End& end, std::ostream* out) { *out << end.name; }

const End ends[] = {
    {"Start", "TTPST", CCDF.StartPower, CCDFPending.StartPowerPending, EditStartPower,
     ReadStartPower, &FakeCCDFView::startPower, "Enter new Starting Power in dBm", "Starting Power",
     "-30"},
    {"Stop", "TTPSP", CCDF.StopPower, CCDFPending.StopPowerPending, EditStopPower, ReadStopPower,
     &FakeCCDFView::stopPower, "Enter new Stoping Power in dBm", "Stoping Power ", "0"}};

class PowerAxisTest : public CCDFTest, public ::testing::WithParamInterface<End> {
 protected:
  const End& end() const { return GetParam(); }
  std::string command(const std::string& power) const {
    return std::string(end().mnemonic) + " 1," + power;
  }
  std::string query() const { return std::string(end().mnemonic) + "? 1"; }
  const std::string& label() const { return view.*end().label; }
  void meterReports(const std::string& power) { world.meter.replies[query()] = command(power); }
};

INSTANTIATE_TEST_SUITE_P(Ends, PowerAxisTest, ::testing::ValuesIn(ends),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(PowerAxisTest, EditAsksWithThePresentPower) {
  end().edit();
  ASSERT_EQ(world.dialogs.inputs.size(), 1U);
  EXPECT_EQ(world.dialogs.inputs[0].prompt, end().prompt);
  EXPECT_EQ(world.dialogs.inputs[0].title, end().title);
  EXPECT_EQ(world.dialogs.inputs[0].defaultText, end().oldText);
}

TEST_P(PowerAxisTest, EmptyAnswerChangesAndSendsNothing) {
  for (const Boolean16 running : {False16, True16}) {
    AcquisitionRunning = running;
    const float before = end().power;
    end().edit();
    EXPECT_EQ(end().power, before);
    EXPECT_EQ(end().pending, False16);
    EXPECT_TRUE(received().empty());
    EXPECT_TRUE(view.calls.empty());
  }
}

TEST_P(PowerAxisTest, StoppedEditIsSentAndReadBack) {
  answer("-12.5 dBm");
  meterReports("-12.4");
  end().edit();
  EXPECT_EQ(received(), (Transcript{command("-12.5"), query()}));
  EXPECT_EQ(end().power, -12.4F);
  EXPECT_EQ(label(), "-12.4dBm");
  EXPECT_EQ(end().pending, False16);
}

TEST_P(PowerAxisTest, StoppedEditSpeaksTheSameBytesOverSerial) {
  world.useSerial();
  answer("-12.5");
  meterReports("-12.4");
  end().edit();
  EXPECT_EQ(world.serial.sent, command("-12.5") + "\r" + query() + "\r");
  EXPECT_EQ(end().power, -12.4F);
}

TEST_P(PowerAxisTest, BothLabelsAreSetBeforeTheReadBack) {
  answer("-12.5");
  Calls callsAtTheQuery;
  world.meter.onMessage = [&](const std::string& message) {
    if (message == query()) callsAtTheQuery = view.calls;
  };
  end().edit();
  ASSERT_EQ(callsAtTheQuery.size(), 2U);
  EXPECT_TRUE(callsAtTheQuery[0].starts_with("start "));
  EXPECT_TRUE(callsAtTheQuery[1].starts_with("stop "));
  EXPECT_EQ(view.calls.size(), 3U);
}

TEST_P(PowerAxisTest, WithoutAReadBackTheTypedPowerStays) {
  answer("-12.5");
  world.meter.replies.erase(query());
  end().edit();
  EXPECT_EQ(end().power, -12.5F);
  EXPECT_EQ(label(), "-12.5dBm");
}

TEST_P(PowerAxisTest, ReadBackThatDoesNotFitIsDropped) {
  answer("-12.5");
  meterReports("1E99");
  end().edit();
  EXPECT_EQ(end().power, -12.5F);
  EXPECT_EQ(label(), "-12.5dBm");
}

TEST_P(PowerAxisTest, TextThatIsNoNumberIsZero) {
  answer("abc");
  end().power = -3;
  end().edit();
  EXPECT_EQ(received().front(), command("0"));
}

TEST_P(PowerAxisTest, AnyNumberIsSent) {
  for (const char* power : {"-300", "1000", "1E-05", "1E+10"}) {
    received().clear();
    answer(power);
    end().edit();
    EXPECT_EQ(received().front(), command(power));
  }
}

TEST_P(PowerAxisTest, NumberThatDoesNotFitIsAFaultAndChangesNothing) {
  const float before = end().power;
  answer("1E99");
  EXPECT_THROW(end().edit(), Fault);
  EXPECT_EQ(end().power, before);
  EXPECT_EQ(end().pending, False16);
  EXPECT_TRUE(received().empty());
}

TEST_P(PowerAxisTest, RunningEditBecomesPending) {
  AcquisitionRunning = True16;
  answer("-12.5");
  end().edit();
  EXPECT_EQ(end().power, -12.5F);
  EXPECT_EQ(end().pending, True16);
  EXPECT_TRUE(received().empty());
  EXPECT_TRUE(view.calls.empty());
}

TEST_P(PowerAxisTest, PendingEditIsCarriedOutOnce) {
  meterReports("-12.4");
  end().power = -12.5F;
  end().pending = True16;
  CarryOutPowerEdits();
  CarryOutPowerEdits();
  EXPECT_EQ(received(), (Transcript{command("-12.5"), query()}));
  EXPECT_EQ(end().power, -12.4F);
  EXPECT_EQ(label(), "-12.4dBm");
}

/// Edits during the exchange of an older one, in a running pass.
class RunningPowerEdit : public PowerAxisTest {
 protected:
  RunningPowerEdit() {
    world.useSerial();
    AcquisitionRunning = True16;
    end().power = -12.5F;
    end().pending = True16;
    meterReports("-12.5");
    answer("-20");
  }
  void expectTheNewerIsSentNext() {
    AcquireCCDF();
    EXPECT_EQ(timesReceived(command("-12.5")), 1);
    EXPECT_EQ(timesReceived(command("-20")), 0);
    EXPECT_EQ(end().power, -20);
    meterReports("-20");
    AcquireCCDF();
    EXPECT_EQ(timesReceived(command("-12.5")), 1);
    EXPECT_EQ(timesReceived(command("-20")), 1);
    EXPECT_EQ(end().power, -20);
    EXPECT_EQ(end().pending, False16);
    EXPECT_EQ(label(), "-20dBm");
    EXPECT_EQ(world.serial.interruptedQueries, 0);
  }
};

INSTANTIATE_TEST_SUITE_P(Ends, RunningPowerEdit, ::testing::ValuesIn(ends),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(RunningPowerEdit, DuringTheReadBackIsKeptAndSentNext) {
  duringReplyTo(query(), [this] { end().edit(); });
  expectTheNewerIsSentNext();
}

TEST_P(RunningPowerEdit, WhileTheCommandLeavesIsKeptAndSentNext) {
  whileTheNextMessageLeaves("TTFRO 1", [this] { end().edit(); });
  expectTheNewerIsSentNext();
}

TEST_P(RunningPowerEdit, BetweenStopAndTheEndOfThePassIsKeptAndSent) {
  whileTheNextMessageLeaves("TTFRO 1", [this] {
    StopCCDF();
    end().edit();
  });
  AcquireCCDF();
  EXPECT_EQ(timesReceived(command("-20")), 1);
  EXPECT_EQ(received().back(), query());
}

TEST_P(RunningPowerEdit, DuringTheRangesExchangeIsKeptAndSentNext) {
  end().pending = False16;
  CCDFPending.PowerRangePending = True16;
  whileTheNextMessageLeaves("TTFRO 1", [this] { end().edit(); });
  AcquireCCDF();
  EXPECT_EQ(end().power, -20);
  meterReports("-20");
  AcquireCCDF();
  EXPECT_EQ(received().back(), query());
  EXPECT_EQ(timesReceived(command("-20")), std::string(end().name) == "Stop" ? 2 : 1);
  EXPECT_EQ(end().power, -20);
}

TEST_P(PowerAxisTest, NewerStoppedEditOvertakesTheOlderOne) {
  answer("-20");
  answer("-25");
  converse([this] {
    end().edit();
    end().edit();
    EXPECT_TRUE(received().empty());
  });
  EXPECT_EQ(received(), (Transcript{command("-25"), query()}));
}

TEST_P(PowerAxisTest, ReadTakesTheFieldAfterTheChannel) {
  struct Row {
    const char* fields;
    float power;
  };
  const Row rows[] = {
      {" 1,-5", -5}, {" 1,-5,7", -5}, {" 1, -5.5 ", -5.5F}, {" 1,x", 0}, {" -5", 0}};
  for (const Row& row : rows) {
    world.meter.replies[query()] = end().mnemonic + std::string(row.fields);
    end().power = 9;
    end().read();
    EXPECT_EQ(end().power, row.power) << row.fields;
  }
}

TEST_P(PowerAxisTest, FailedReadLeavesPowerAndLabel) {
  world.meter.replies.erase(query());
  const float before = end().power;
  end().read();
  EXPECT_EQ(end().power, before);
  EXPECT_TRUE(view.calls.empty());
}

TEST_F(CCDFTest, PowerLabelsHaveNoBlank) {
  CCDF.StartPower = -30;
  CCDF.StopPower = 0.125F;
  UpdatePowerLabels();
  EXPECT_EQ(view.calls, (Calls{"start -30dBm", "stop 0.125dBm"}));
}

TEST_F(CCDFTest, PowerRangeIsSentWholeAndThenReadBack) {
  CCDFPending.PowerRangePending = True16;
  CCDF.StartPower = -40;
  CCDF.StopPower = -10;
  world.meter.replies["TTPST? 1"] = "TTPST 1,-39";
  world.meter.replies["TTPSP? 1"] = "TTPSP 1,-11";
  CarryOutPowerRange();
  CarryOutPowerRange();
  EXPECT_EQ(received(), (Transcript{"TTPST 1,-40", "TTPSP 1,-10", "TTPST? 1", "TTPSP? 1"}));
  EXPECT_EQ(CCDF.StartPower, -39);
  EXPECT_EQ(CCDF.StopPower, -11);
  EXPECT_EQ(view.calls, (Calls{"start -40dBm", "stop -10dBm", "start -39dBm", "stop -11dBm"}));
}

}  // namespace
}  // namespace pulsemod::test
