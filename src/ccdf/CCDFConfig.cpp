#include "ccdf/CCDFConfig.h"

#include <string>

#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFReader.h"
#include "ccdf/CCDFState.h"
#include "ccdf/CCDFView.h"
#include "ccdf/MeasurementSource.h"
#include "ccdf/PowerAxis.h"
#include "link/Completion.h"
#include "link/ConfigProgress.h"
#include "link/ExchangeCount.h"
#include "link/MeterLink.h"
#include "link/ReplyText.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileParameters.h"

namespace pulsemod {

namespace {

/// The cursor's share is not shown before the first curve: it is 0 until the loop has read it.
void readCursorState() {
  std::string reply;
  if (!QueryMeter("TTMKS? " + ChannelText(), reply)) return;
  const bool on = SplitReply(reply, 1) == "ON";
  CCDF.CursorOn = boolean16(on);
  ccdfView().setCursorMenus(on);
  if (!on) return;
  ReadCursor();
  CCDF.CursorPercent = 0;
}

void configure(const ConfigProgress& progress) {
  const std::string channel = ChannelText();
  SendCommand("PPACQS " + channel + ",ON");
  SendCommand("PPFUNC " + channel + ",STATS");
  SendCommand("TTFUNC " + channel + ",CCDF");
  progress.step("Configuring...Channel");
  SelectPulseMode();
  progress.step("Configuring...pulsemod");
  SendParameter(referenceLevelParameter, Settings.ReferenceLevel);
  SendParameter(scaleParameter, Settings.ScalePerDivision);
  progress.step("Waiting for response...");
  CheckCompleted();
}

}  // namespace

void ConfigureCCDF() {
  ConfigProgress progress("Configuring...CCDFsetting");
  progress.expect(countExchanges([&progress] { configure(progress); }));
  configure(progress);
}

void ReadCCDFSettings() {
  ReadCCDFPoints();
  ReadStopPower();
  ReadStartPower();
  readCursorState();
  ReadMeasurementSource();
}

}  // namespace pulsemod
