#include "ccdf/MeasurementSource.h"

#include <string>

#include "ccdf/CCDFState.h"
#include "ccdf/CCDFView.h"
#include "link/Conversation.h"
#include "link/MeterLink.h"
#include "link/ReplyText.h"
#include "platform/Services.h"

namespace pulsemod {

namespace {

struct Source {
  const char* word;
  const char* alreadySet;
  const char* notReadBack;
  Boolean16& pending;
};

// The blanks at the ends, and the gate in the marker's row, are the system's own.
const Source gateSource{"GATE", "No need to change, the measurement Source is Gate ",
                        "Can not change measurement source, GATE is not active",
                        CCDFPending.SourceGatePending};
const Source markerSource{"MARKER", "No need to change, the measurement Source is Gate ",
                          "Can not change measurement source, MARKER is not active",
                          CCDFPending.SourceMarkerPending};
const Source channelSource{"CHANNEL", "No need to change, the measurement Source is Channel ",
                           "Can not change to Channel", CCDFPending.SourceChannelPending};

const Source& sourceOf(CCDFSource target) {
  switch (target) {
    case CCDFSource::gate:
      return gateSource;
    case CCDFSource::marker:
      return markerSource;
    case CCDFSource::channel:
      break;
  }
  return channelSource;
}

bool querySource(std::string& word) {
  std::string reply;
  if (!QueryMeter("TTSRC? " + ChannelText(), reply)) return false;
  word = SplitReply(reply, 1);
  return true;
}

void storeSource(const std::string& word) {
  CCDF.MeasurementSource = word;
  ShowMeasurementSource();
}

void tell(const std::string& outcome) {
  services().dialogs.showMessage(outcome, "Changing Measurement Source", MessageIcon::none);
}

void change(const Source& target) {
  std::string word;
  if (!querySource(word)) return;
  if (word == target.word) return tell(target.alreadySet);
  SendCommand("TTSRC " + ChannelText() + "," + target.word);
  if (!querySource(word)) return tell(target.notReadBack);
  if (word != target.word) {
    return tell("Can not change measurement source, Put current mode limit ");
  }
  // First, so that window and box say the same.
  storeSource(word);
  tell("The measurement source is changed");
}

void carryOut(const Source& source) {
  if (source.pending == False16) return;
  source.pending = False16;
  change(source);
}

}  // namespace

void ReadMeasurementSource() {
  std::string word;
  if (querySource(word)) storeSource(word);
}

void ShowMeasurementSource() { ccdfView().setSourceLabel("SOURCE:" + CCDF.MeasurementSource); }

void ChangeMeasurementSource(CCDFSource target) { change(sourceOf(target)); }

void RequestMeasurementSource(CCDFSource target) {
  if (AcquisitionRunning != False16) {
    sourceOf(target).pending = True16;
    return;
  }
  whenLinkIsFree([target] { ChangeMeasurementSource(target); });
}

void CarryOutSourceRequests() {
  carryOut(markerSource);
  carryOut(gateSource);
  carryOut(channelSource);
}

}  // namespace pulsemod
