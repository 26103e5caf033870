#include "CCDFTest.h"
#include "ccdf/MeasurementSource.h"
#include "link/Conversation.h"

namespace pulsemod::test {
namespace {

struct Target {
  CCDFSource source;
  const char* word;
  const char* other;
  const char* alreadySet;
  const char* notReadBack;
  Boolean16& pending;
};

void PrintTo(const Target& target, std::ostream* out) { *out << target.word; }

const Target targets[] = {
    {CCDFSource::gate, "GATE", "CHANNEL", "No need to change, the measurement Source is Gate ",
     "Can not change measurement source, GATE is not active", CCDFPending.SourceGatePending},
    {CCDFSource::marker, "MARKER", "GATE", "No need to change, the measurement Source is Gate ",
     "Can not change measurement source, MARKER is not active", CCDFPending.SourceMarkerPending},
    {CCDFSource::channel, "CHANNEL", "MARKER",
     "No need to change, the measurement Source is Channel ", "Can not change to Channel",
     CCDFPending.SourceChannelPending}};

/// "title|text|icon" of the box with this text.
std::string boxOf(const std::string& text) {
  return "Changing Measurement Source|" + text + "|none";
}

class SourceChange : public CCDFTest, public ::testing::WithParamInterface<Target> {
 protected:
  SourceChange() {
    CCDF.MeasurementSource = "OLD";
    meterReports(target().other);
  }
  const Target& target() const { return GetParam(); }
  std::string command() const { return std::string("TTSRC 1,") + target().word; }
  void meterReports(const std::string& word) {
    world.meter.replies["TTSRC? 1"] = "TTSRC 1," + word;
  }
  void expectOldSource() const {
    EXPECT_EQ(CCDF.MeasurementSource, "OLD");
    EXPECT_TRUE(view.calls.empty());
  }
};

INSTANTIATE_TEST_SUITE_P(Sources, SourceChange, ::testing::ValuesIn(targets),
                         [](const auto& tested) { return std::string(tested.param.word); });

TEST_P(SourceChange, IsAskedForReadBackAndTold) {
  world.meter.onMessage = [this](const std::string& message) { obeySource(message); };
  ChangeMeasurementSource(target().source);
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1", command(), "TTSRC? 1"}));
  EXPECT_EQ(shownBoxes(), (Boxes{boxOf("The measurement source is changed")}));
  EXPECT_TRUE(world.dialogs.messages[0].details.empty());
  EXPECT_EQ(CCDF.MeasurementSource, target().word);
  EXPECT_EQ(view.calls, (Calls{std::string("SOURCE:") + target().word}));
}

TEST_P(SourceChange, SpeaksTheSameBytesOverSerial) {
  world.useSerial();
  world.meter.onMessage = [this](const std::string& message) { obeySource(message); };
  ChangeMeasurementSource(target().source);
  EXPECT_EQ(world.serial.sent, serialBytes({"TTSRC? 1", command(), "TTSRC? 1"}));
  EXPECT_EQ(shownBoxes(), (Boxes{boxOf("The measurement source is changed")}));
}

TEST_P(SourceChange, WindowAndBoxSayTheSame) {
  world.meter.onMessage = [this](const std::string& message) { obeySource(message); };
  std::string labelUnderTheBox;
  world.dialogs.whileOpen = [&] { labelUnderTheBox = view.source; };
  ChangeMeasurementSource(target().source);
  EXPECT_EQ(labelUnderTheBox, std::string("SOURCE:") + target().word);
}

TEST_P(SourceChange, ToTheSourceThatIsSetSendsNoCommand) {
  meterReports(target().word);
  ChangeMeasurementSource(target().source);
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1"}));
  EXPECT_EQ(shownBoxes(), (Boxes{boxOf(target().alreadySet)}));
  expectOldSource();
}

TEST_P(SourceChange, WithoutAFirstReplyIsSilent) {
  world.meter.replies.erase("TTSRC? 1");
  ChangeMeasurementSource(target().source);
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1"}));
  EXPECT_TRUE(world.dialogs.messages.empty());
  expectOldSource();
}

TEST_P(SourceChange, WithoutASecondReplyIsNotActive) {
  world.meter.onMessage = [this](const std::string& message) {
    if (message == command()) world.meter.replies.erase("TTSRC? 1");
  };
  ChangeMeasurementSource(target().source);
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1", command(), "TTSRC? 1"}));
  EXPECT_EQ(shownBoxes(), (Boxes{boxOf(target().notReadBack)}));
  expectOldSource();
}

TEST_P(SourceChange, ThatTheMeterRefusesIsALimitOfItsMode) {
  ChangeMeasurementSource(target().source);
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1", command(), "TTSRC? 1"}));
  EXPECT_EQ(shownBoxes(),
            (Boxes{boxOf("Can not change measurement source, Put current mode limit ")}));
  expectOldSource();
}

TEST_P(SourceChange, ComparesWordsExactly) {
  std::string lowered = target().word;
  for (char& letter : lowered) letter = static_cast<char>(letter - 'A' + 'a');
  const std::string longer = std::string(target().word) + "S";
  for (const std::string& word : {lowered, longer, std::string()}) {
    received().clear();
    world.dialogs.messages.clear();
    meterReports(word);
    ChangeMeasurementSource(target().source);
    EXPECT_EQ(timesReceived(command()), 1) << word;
    EXPECT_EQ(shownBoxes(),
              (Boxes{boxOf("Can not change measurement source, Put current mode limit ")}));
  }
}

TEST_P(SourceChange, RequestIsCarriedOutAtOnceWhileStopped) {
  meterReports(target().word);
  RequestMeasurementSource(target().source);
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1"}));
  EXPECT_EQ(shownBoxes(), (Boxes{boxOf(target().alreadySet)}));
  EXPECT_EQ(target().pending, False16);
}

TEST_P(SourceChange, RequestWaitsForTheLinkWhileStopped) {
  meterReports(target().word);
  converse([this] {
    RequestMeasurementSource(target().source);
    EXPECT_TRUE(received().empty());
  });
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1"}));
}

TEST_P(SourceChange, RequestIsPendingWhileRunningAndCarriedOutOnce) {
  AcquisitionRunning = True16;
  RequestMeasurementSource(target().source);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(target().pending, True16);
  CarryOutSourceRequests();
  CarryOutSourceRequests();
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1", command(), "TTSRC? 1"}));
  EXPECT_EQ(shownBoxes().size(), 1U);
  EXPECT_EQ(target().pending, False16);
}

TEST_P(SourceChange, RequestDuringItsOwnExchangeIsKept) {
  AcquisitionRunning = True16;
  target().pending = True16;
  world.dialogs.whileOpen = [this] { RequestMeasurementSource(target().source); };
  CarryOutSourceRequests();
  EXPECT_EQ(target().pending, True16);
}

TEST_F(CCDFTest, ThreeSourcesAreChangedInTheirOrderEachWithItsBox) {
  AcquisitionRunning = True16;
  for (const Target& target : targets) RequestMeasurementSource(target.source);
  world.meter.onMessage = [this](const std::string& message) { obeySource(message); };
  CarryOutSourceRequests();
  EXPECT_EQ(received(),
            (Transcript{"TTSRC? 1", "TTSRC 1,MARKER", "TTSRC? 1", "TTSRC? 1", "TTSRC 1,GATE",
                        "TTSRC? 1", "TTSRC? 1", "TTSRC 1,CHANNEL", "TTSRC? 1"}));
  EXPECT_EQ(shownBoxes(), Boxes(3, boxOf("The measurement source is changed")));
  EXPECT_EQ(view.calls, (Calls{"SOURCE:MARKER", "SOURCE:GATE", "SOURCE:CHANNEL"}));
}

TEST_F(CCDFTest, OneFailedSourceChangeHindersNoOther) {
  AcquisitionRunning = True16;
  for (const Target& target : targets) RequestMeasurementSource(target.source);
  CarryOutSourceRequests();  // the meter stays at its channel
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1", "TTSRC 1,MARKER", "TTSRC? 1", "TTSRC? 1",
                                    "TTSRC 1,GATE", "TTSRC? 1", "TTSRC? 1"}));
  EXPECT_EQ(shownBoxes(),
            (Boxes{boxOf("Can not change measurement source, Put current mode limit "),
                   boxOf("Can not change measurement source, Put current mode limit "),
                   boxOf("No need to change, the measurement Source is Channel ")}));
}

TEST_F(CCDFTest, SourceIsReadIntoItsLabel) {
  world.meter.replies["TTSRC? 1"] = "TTSRC 1,MARKER";
  ReadMeasurementSource();
  EXPECT_EQ(CCDF.MeasurementSource, "MARKER");
  EXPECT_EQ(view.calls, (Calls{"SOURCE:MARKER"}));
  world.meter.replies.erase("TTSRC? 1");
  ReadMeasurementSource();
  EXPECT_EQ(CCDF.MeasurementSource, "MARKER");
  EXPECT_EQ(view.calls.size(), 1U);
}

TEST_F(CCDFTest, SourcesBelongToTheActiveChannel) {
  Settings.ActiveChannel = 3;
  world.meter.replies["TTSRC? 1&2"] = "TTSRC 1&2,MARKER";
  ChangeMeasurementSource(CCDFSource::gate);
  EXPECT_EQ(received(), (Transcript{"TTSRC? 1&2", "TTSRC 1&2,GATE", "TTSRC? 1&2"}));
}

}  // namespace
}  // namespace pulsemod::test
