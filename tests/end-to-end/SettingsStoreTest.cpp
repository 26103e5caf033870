#include "Expected.h"

namespace endtoend {
namespace {

class SettingsStore : public BenchOnEachLink {};
ON_BOTH_LINKS(SettingsStore);

TEST_P(SettingsStore, EditsWhileStoppedChangeTheStoreAndNotTheLink) {
  startLoaded(GetParam());
  hands().trigger("frmMain/menuComs");
  hands().click(GetParam() == Link::gpib ? "frmComms/optComms_1" : "frmComms/optComms_0");
  hands().type("frmComms/txtGPIBAddress", "7");
  hands().click("frmComms/optBuad_0");
  hands().click("frmComms/optCommPort_9");
  hands().click("frmComms/cmdSave");
  hands().waitGone("frmComms");
  const std::string type = GetParam() == Link::gpib ? "1" : "2";
  EXPECT_EQ(storeText(),
            "[Comms]\nCommsType=" + type + "\nGPIBAddress=7\nRS232Baud=1200\nRS232Port=10\n");
  // The meter is still the one that it was, and so is the end of the link.
  const std::size_t said = messages(transcript()).size();
  clickStart();
  const Events events = awaitMessages("TR1 1", 3);
  const Texts expected = startQuestions() + profilePass(GetParam());
  EXPECT_EQ(part(messages(events), said, expected.size()), expected);
  closeMainWindowAndExpectEnd();
  EXPECT_EQ(countKind(transcript(), "OFFLINE"), GetParam() == Link::gpib ? 1U : 0U);
}

TEST_P(SettingsStore, ClosingTheOptionsUnsavedAsksAndNoKeepsTheStore) {
  startLoaded(GetParam());
  const std::string stored = storeText();
  hands().trigger("frmMain/menuComs");
  hands().click("frmComms/optBuad_0");
  hands().close("frmComms");
  hands().waitVisible("questionBox");
  EXPECT_EQ(hands().get("questionBox", "windowTitle"), "Settings have been changed");
  hands().key("questionBox", "Escape");
  hands().waitGone("frmComms");
  EXPECT_EQ(storeText(), stored);
}

class NonsenseStore : public Bench {
 protected:
  void startWith(const std::string& text) {
    setStore(text);
    startMeter();
    startProgram();
  }

  void expectFailure(const std::string& partOfReason) {
    hands().click("frmConfigureQuestion/cmdLoadPM");
    const Box box = shownBox(hands());
    EXPECT_EQ(box.title, "*IDN? Failure");
    EXPECT_EQ(box.text, identityFailure);
    EXPECT_NE(box.details.find(partOfReason), std::string::npos) << box.details;
    hands().key("messageBox", "Return");
    expectProgramEnd();
  }
};

TEST_F(NonsenseStore, ATypeThatIsNoNumberCountsAsNoSettings) {
  startWith("[Comms]\nCommsType=abc\nGPIBAddress=13\n");
  EXPECT_EQ(hands().waitAny({"frmComms", "frmConfigureQuestion"}), "frmComms");
}

TEST_F(NonsenseStore, AFileThatIsNoStoreCountsAsNoSettings) {
  using namespace std::string_literals;
  startWith("\0\xff\xfe garbage ]=[ \n\n=\n[Comms\nCommsType"s);
  EXPECT_EQ(hands().waitAny({"frmComms", "frmConfigureQuestion"}), "frmComms");
}

TEST_F(NonsenseStore, ATypeThatIsNeitherLink) {
  startWith("[Comms]\nCommsType=3\nGPIBAddress=13\nRS232Baud=9600\nRS232Port=1\n");
  expectFailure("neither GPIB nor RS232");
}

TEST_F(NonsenseStore, AnAddressThatNobodyHas) {
  startWith("[Comms]\nCommsType=2\nGPIBAddress=99\nRS232Baud=9600\nRS232Port=1\n");
  expectFailure("99");
}

TEST_F(NonsenseStore, AnAddressBeyondAllNumbers) {
  setScenario("board-timeout = 100\n");
  startWith("[Comms]\nCommsType=2\nGPIBAddress=99999999999\nRS232Baud=9600\nRS232Port=1\n");
  expectFailure("GPIB address 0");
}

TEST_F(NonsenseStore, APortThatNoMachineHas) {
  startWith("[Comms]\nCommsType=1\nGPIBAddress=13\nRS232Baud=9600\nRS232Port=99\n");
  expectFailure("COM99:");
}

TEST_F(NonsenseStore, ASpeedThatIsNone) {
  useLink(Link::serial);
  startWith("[Comms]\nCommsType=1\nGPIBAddress=13\nRS232Baud=-5\nRS232Port=1\n");
  expectFailure("-5");
}

TEST_F(NonsenseStore, ASpeedThatTheDialogDoesNotOffer) {
  useLink(Link::serial);
  startWith("[Comms]\nCommsType=1\nGPIBAddress=13\nRS232Baud=115200\nRS232Port=0\n");
  hands().click("frmConfigureQuestion/cmdOpenConfig");
  hands().waitVisible("frmComms");
  for (int index = 0; index < 7; ++index) {
    EXPECT_FALSE(hands().is("frmComms/optBuad_" + std::to_string(index), "checked")) << index;
  }
  EXPECT_TRUE(hands().is("frmComms/optCommPort_0", "checked"));
  hands().close("frmComms");
  hands().click("frmConfigureQuestion/cmdLoadPM");
  hands().waitVisible("frmMain");
  EXPECT_EQ(messages(transcript()), startTranscript() + configurationTranscript());
}

}  // namespace
}  // namespace endtoend
