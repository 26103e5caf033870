#include "startup/StartUp.h"

#include <functional>

#include "ccdf/CCDFConfig.h"
#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFLoop.h"
#include "ccdf/MeasurementSource.h"
#include "ccdf/PowerAxis.h"
#include "link/CommsSettings.h"
#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/Session.h"
#include "platform/Services.h"
#include "profile/AcquisitionLoop.h"
#include "profile/MeasurementSettings.h"
#include "startup/MeterModel.h"
#include "startup/ProgramVersion.h"
#include "startup/ReadMeterConfig.h"
#include "startup/WriteMeterConfig.h"

namespace pulsemod {

namespace {

void readOrAskCommsSettings(StartUpView& view) {
  if (ReadCommsSettings()) return;
  view.showCommsOptions();
  SaveCommsSettings();
}

StartChoice askUntilDecided(StartUpView& view) {
  while (true) {
    const StartChoice choice = view.askHowToBegin();
    if (choice != StartChoice::openCommsOptions) return choice;
    view.showCommsOptions();
  }
}

void openLink() {
  OpenMeterLink();
  ConfigureSerialPort();
  SerialPort& port = services().serial;
  if (LinkSettings.commsType == commsTypeRS232 && !port.isOpen()) port.open();
}

/// Enables the meter's error reports (command, execution and device errors) and asks who it is. A
/// meter that keeps silent over RS232 is waited for until the user closes `frmPleaseWait`.
bool queryIdentity(std::string& identity) {
  Progress& progress = services().progress;
  progress.showAfter(replyPatienceMs, "Please Wait... Reading Power Meter Identity...");
  WaitOperationComplete("*CLS; *ESE 56");
  const bool answered = QueryMeter("*IDN?", identity);
  progress.hide();
  return answered;
}

void identifyMeter() {
  std::string identity;
  if (!queryIdentity(identity)) {
    services().dialogs.showMessage("Could not read Power Meter Identity\r\n\r\nProgram will exit.",
                                   "*IDN? Failure", MessageIcon::exclamation, linkFailureReason());
    EndSession();
  }
  MeterModel = modelOfIdentity(identity);
  if (MeterModel == 0) {
    services().dialogs.showMessage(
        "Pelmora.2 - PulseMod will only work with QX7104A, QX7105A, QX7204,QX7205 or QX7205A "
        "power meters",
        "Program Exit", MessageIcon::information);
    EndSession();
  }
  MeterIdentity = shownIdentity(identity);
}

/// Brings model and meter together. A meter that falls silent in the middle is waited for until the
/// user closes `frmPleaseWait`: there is no other window yet.
void shareConfiguration(const std::string& course, const std::function<void()>& exchange) {
  reportFaults([&exchange] { converse(exchange); });
  if (!LinkGivenUp) return;
  services().dialogs.showMessage(
      "The power meter does not answer any more\r\n\r\nProgram will exit.", course,
      MessageIcon::exclamation, linkFailureReason());
  EndSession();
}

void shareCCDFSettings() {
  ConfigureCCDF();
  Progress& progress = services().progress;
  progress.showAfter(replyPatienceMs, "Please Wait... Reading CCDF Settings...");
  reportFaults(ReadCCDFSettings);
  progress.hide();
}

[[noreturn]] void runCCDFMode(StartUpView& view) {
  view.prepareCCDFWindow();
  shareConfiguration("CCDF Mode", shareCCDFSettings);
  ReplyMayBeGivenUp = false;
  view.showCCDFWindow(versionCaption());
  UpdatePowerLabels();
  UpdateCursorLabels();
  ShowMeasurementSource();
  RunCCDFLoop();
}

}  // namespace

std::string versionText() {
  return std::to_string(versionMajor) + "." + std::to_string(versionMinor) + "." +
         std::to_string(versionRevision);
}

std::string versionCaption() { return "Pelmora v" + versionText(); }

void StartUp(StartUpView& view) {
  EditedComms = CommsSettings{};
  InitMeasurementSettings();
  readOrAskCommsSettings(view);
  const StartChoice choice = askUntilDecided(view);
  LinkSettings = EditedComms;
  if (choice == StartChoice::exitProgram) EndSession();
  ReplyMayBeGivenUp = true;
  LinkGivenUp = false;
  converse([] {
    openLink();
    identifyMeter();
  });
  if (choice == StartChoice::ccdfMode) runCCDFMode(view);
  if (choice == StartChoice::configureMeter) {
    shareConfiguration("Configure Power Meter", WriteMeterConfig);
  } else if (choice == StartChoice::loadFromMeter) {
    shareConfiguration("Load from Power Meter", ReadMeterConfig);
  }
  ReplyMayBeGivenUp = false;
  if (choice == StartChoice::justStart) {
    view.showMainWindow({});
    return;
  }
  view.showMainWindow(versionCaption());
  RunAcquisitionLoop();
}

}  // namespace pulsemod
