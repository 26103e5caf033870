#include "Expected.h"

namespace endtoend {
namespace {

class FirstRun : public Bench {
 protected:
  void start() {
    startMeter();
    startProgram();
  }
};

TEST_F(FirstRun, TheCommsDialogComesFirstAndItsValuesAreStored) {
  start();
  hands().waitVisible("frmComms");
  EXPECT_EQ(windows(), "frmComms|GPIB/RS232 Comms");
  EXPECT_TRUE(hands().is("frmComms/optComms_0", "checked"));
  EXPECT_EQ(hands().get("frmComms/txtGPIBAddress", "text"), "13");
  EXPECT_TRUE(hands().is("frmComms/optBuad_3", "checked"));
  EXPECT_TRUE(hands().is("frmComms/optCommPort_0", "checked"));
  hands().type("frmComms/txtGPIBAddress", "7");
  hands().click("frmComms/optBuad_6");
  hands().click("frmComms/optCommPort_4");
  hands().click("frmComms/cmdSave");
  hands().waitVisible("frmConfigureQuestion");
  // The program may be killed at any moment after: the values are on the disk already.
  EXPECT_EQ(storeText(), "[Comms]\nCommsType=2\nGPIBAddress=7\nRS232Baud=57600\nRS232Port=5\n");
  hands().click("frmConfigureQuestion/Command1");
  expectProgramEnd();
}

TEST_F(FirstRun, TheDefaultsAreStoredWhenTheDialogIsJustClosed) {
  start();
  hands().waitVisible("frmComms");
  hands().close("frmComms");
  hands().waitVisible("frmConfigureQuestion");
  EXPECT_EQ(storeText(), "[Comms]\nCommsType=2\nGPIBAddress=13\nRS232Baud=9600\nRS232Port=1\n");
}

TEST_F(FirstRun, WhatWasChosenIsStoredEvenIfSavingWasDeclined) {
  start();
  hands().click("frmComms/optCommPort_2");
  hands().close("frmComms");
  hands().waitVisible("questionBox");
  EXPECT_EQ(hands().get("questionBox", "text"), "Do you wish to save the settings?");
  EXPECT_EQ(hands().get("questionBox", "windowTitle"), "Settings have been changed");
  hands().key("questionBox", "Escape");
  hands().waitVisible("frmConfigureQuestion");
  EXPECT_EQ(storeText(), "[Comms]\nCommsType=2\nGPIBAddress=13\nRS232Baud=9600\nRS232Port=3\n");
}

TEST_F(FirstRun, AnIllegalAddressIsRefusedAndTheDialogStays) {
  start();
  hands().waitVisible("frmComms");
  for (const char* address : {"0", "31", "abc", "12abc", "", "99999"}) {
    hands().type("frmComms/txtGPIBAddress", address);
    hands().click("frmComms/cmdSave");
    const Box box = shownBox(hands());
    EXPECT_EQ(box.text, "Illegal GPIB Address, only 1 to 30 allowed.") << address;
    EXPECT_EQ(box.title, "GPIB Address");
    EXPECT_EQ(box.icon, "Information");
    hands().key("messageBox", "Return");
    hands().waitGone("messageBox");
    EXPECT_TRUE(hands().is("frmComms", "visible"));
    EXPECT_EQ(storeText(), "");
  }
}

TEST_F(FirstRun, ASecondStartDoesNotAsk) {
  start();
  hands().click("frmComms/cmdSave");
  hands().click("frmConfigureQuestion/Command1");
  expectProgramEnd();
  startProgram();
  EXPECT_EQ(hands().waitAny({"frmComms", "frmConfigureQuestion"}), "frmConfigureQuestion");
  EXPECT_EQ(windows(), "frmConfigureQuestion|Pelmora PulseMod");
}

TEST_F(FirstRun, TheChosenLinkIsTheOneThatIsUsed) {
  useLink(Link::serial);
  start();
  hands().click("frmComms/optComms_1");
  hands().click("frmComms/cmdSave");
  hands().click("frmConfigureQuestion/cmdjuststart");
  hands().waitVisible("frmMain");
  const Events events = transcript();
  EXPECT_EQ(messages(events), startTranscript());
  EXPECT_EQ(countKind(events, "IFC"), 0U);
}

}  // namespace
}  // namespace endtoend
