#include <dlfcn.h>

#include "Expected.h"

namespace endtoend {
namespace {

class RefusedMeter : public BenchOnEachLink {
 protected:
  void chooseLoad() { hands().click("frmConfigureQuestion/cmdLoadPM"); }

  /// The box is the only window; its answer ends the program.
  void expectBoxAndEnd(const Box& expected) {
    const Box box = shownBox(hands());
    EXPECT_EQ(box.title, expected.title);
    EXPECT_EQ(box.text, expected.text);
    EXPECT_EQ(box.icon, expected.icon);
    EXPECT_EQ(box.details, expected.details);
    EXPECT_EQ(windows(), "messageBox|" + expected.title);
    hands().key("messageBox", "Return");
    expectProgramEnd();
  }

  void expectNothingAfter(const Texts& said) {
    const Events events = transcript();
    EXPECT_EQ(messages(events), said);
    EXPECT_EQ(countKind(events, "OFFLINE"), GetParam() == Link::gpib ? 1U : 0U);
  }
};
ON_BOTH_LINKS(RefusedMeter);

const Box unsupported{
    "Program Exit",
    "Pelmora.2 - PulseMod will only work with QX7104A, QX7105A, QX7204,QX7205 or QX7205A power "
    "meters",
    "Information", ""};

TEST_P(RefusedMeter, AnUnsupportedMeterIsNamedAndTheProgramEnds) {
  startOn(GetParam(), "identity = PELMORA,QX9999,SN001234,V1.05\n");
  chooseLoad();
  expectBoxAndEnd(unsupported);
  expectNothingAfter(startTranscript());
}

TEST_P(RefusedMeter, AnIdentityInLowerCaseIsUnsupported) {
  startOn(GetParam(), "identity = pelmora,qx7205a,sn001234,v1.05\n");
  chooseLoad();
  expectBoxAndEnd(unsupported);
  expectNothingAfter(startTranscript());
}

TEST_P(RefusedMeter, EachSupportedModelIsAccepted) {
  startOn(GetParam(), "model = QX7104A\n");
  chooseLoad();
  hands().waitVisible("frmMain");
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
}

TEST_P(RefusedMeter, AMeterThatRefusesTheIdentityQueryCannotBeRead) {
  allowOffences();
  // Refused, the query has no reply; on the serial link the wait for it is the user's to end.
  startOn(GetParam(), "fault = *IDN?, every, refuse\nboard-timeout = 200\n");
  chooseLoad();
  if (GetParam() == Link::serial) hands().close("frmPleaseWait");
  EXPECT_EQ(shownBox(hands()).text, identityFailure);
  hands().key("messageBox", "Return");
  expectProgramEnd();
}

class SilentMeter : public RefusedMeter {};
INSTANTIATE_TEST_SUITE_P(Serial, SilentMeter, ::testing::Values(Link::serial), linkName);

TEST_P(SilentMeter, PleaseWaitAppearsAfterAWhileAndItsCloseEndsTheProgram) {
  startOn(GetParam(), "fault = any, every, missing\n");
  const auto asked = std::chrono::steady_clock::now();
  chooseLoad();
  awaitMessages("*CLS; *ESE 56; *OPC?", 1);
  hands().waitVisible("frmPleaseWait");
  EXPECT_GE(std::chrono::steady_clock::now() - asked, std::chrono::milliseconds(1900));
  EXPECT_EQ(hands().get("frmPleaseWait/lblMessage", "text"),
            "Please Wait... Reading Power Meter Identity...");
  EXPECT_EQ(windows(), "frmPleaseWait|Please Wait");
  hands().close("frmPleaseWait");
  expectBoxAndEnd(
      {"*IDN? Failure", identityFailure, "Warning", "No power meter answers at COM1:."});
  expectNothingAfter({"*CLS; *ESE 56; *OPC?"});
}

TEST_P(SilentMeter, AnAnswerThatComesLateIsStillTaken) {
  startOn(GetParam(), "fault = *IDN?, 1, late 3000\n");
  chooseLoad();
  hands().waitVisible("frmPleaseWait");
  hands().waitVisible("frmMain");
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
}

TEST_P(SilentMeter, AnAnswerWithoutItsMarkNeverComes) {
  startOn(GetParam(), "fault = *CLS, 1, raw 1\\r\\n\n");
  chooseLoad();
  hands().close("frmPleaseWait");
  expectBoxAndEnd(
      {"*IDN? Failure", identityFailure, "Warning", "No power meter answers at COM1:."});
}

class NoMeter : public RefusedMeter {};
INSTANTIATE_TEST_SUITE_P(Gpib, NoMeter, ::testing::Values(Link::gpib), linkName);

TEST_P(NoMeter, NobodyAtTheAddress) {
  startOn(GetParam(), "address = 5\nboard-timeout = 100\n");
  chooseLoad();
  expectBoxAndEnd(
      {"*IDN? Failure", identityFailure, "Warning", "No power meter answers at GPIB address 13."});
  EXPECT_EQ(countKind(transcript(), "OFFLINE"), 1U);
}

TEST_P(NoMeter, AMeterThatKeepsSilent) {
  startOn(GetParam(), "fault = any, every, missing\nboard-timeout = 100\n");
  chooseLoad();
  expectBoxAndEnd(
      {"*IDN? Failure", identityFailure, "Warning", "No power meter answers at GPIB address 13."});
  expectNothingAfter(startTranscript());
}

TEST_P(NoMeter, ABoardThatIsNotThere) {
  startOn(GetParam(),
          "fault = lib SendIFC, every, error ENEB\nfault = lib Send, every, error ENEB\n");
  chooseLoad();
  expectBoxAndEnd({"*IDN? Failure", identityFailure, "Warning",
                   "The GPIB board \"GPIB0\" is not there, or is not configured as the system "
                   "controller."});
}

TEST_P(NoMeter, TheLibraryIsNotInstalled) {
  if (void* const installed = ::dlopen("libgpib.so.0", RTLD_LAZY); installed != nullptr) {
    ::dlclose(installed);
    GTEST_SKIP() << "this machine has a GPIB library of its own";
  }
  hideGpibLibrary();
  startOn(GetParam());
  chooseLoad();
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "*IDN? Failure");
  EXPECT_EQ(box.text, identityFailure);
  EXPECT_EQ(box.icon, "Warning");
  const std::string reason = "The GPIB library libgpib.so.0 could not be loaded";
  EXPECT_EQ(box.details.substr(0, reason.size()), reason);
  hands().key("messageBox", "Return");
  expectProgramEnd();
}

class NoPort : public Bench {};

TEST_F(NoPort, ThePortDoesNotExist) {
  setStore("[Comms]\nCommsType=1\nGPIBAddress=13\nRS232Baud=9600\nRS232Port=1\n");
  // A link of the user's own to nowhere: the same on a machine with and without serial ports.
  const std::filesystem::path link = folder() / "config/Pelmora PulseMod/ports/com1";
  std::filesystem::create_directories(link.parent_path());
  std::filesystem::create_symlink(folder() / "nowhere", link);
  startProgram();
  hands().click("frmConfigureQuestion/cmdLoadPM");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "*IDN? Failure");
  EXPECT_EQ(box.text, identityFailure);
  EXPECT_EQ(box.icon, "Warning");
  EXPECT_NE(box.details.find("COM1:"), std::string::npos) << box.details;
  EXPECT_NE(box.details.find((folder() / "nowhere").string()), std::string::npos) << box.details;
  hands().key("messageBox", "Return");
  expectProgramEnd();
}

}  // namespace
}  // namespace endtoend
