#include "settings/ConfigExchange.h"

#include "link/Conversation.h"
#include "link/Fault.h"
#include "profile/ProfileGraph.h"
#include "profile/Readouts.h"
#include "settings/PropertiesView.h"
#include "settings/PropertyEdits.h"
#include "startup/ReadMeterConfig.h"
#include "startup/WriteMeterConfig.h"

namespace pulsemod {

Boolean16 ConfigExchangeBusy = False16;

namespace {

/// The exchange is over, however it is left.
class ExchangeEnd {
 public:
  ExchangeEnd() = default;
  ~ExchangeEnd() { ConfigExchangeBusy = False16; }
  ExchangeEnd(const ExchangeEnd&) = delete;
  ExchangeEnd& operator=(const ExchangeEnd&) = delete;
};

void exchange(void (*routine)(), void (*afterwards)()) {
  if (ConfigExchangeBusy != False16) return;
  ConfigExchangeBusy = True16;
  whenLinkIsFree([routine, afterwards] {
    const ExchangeEnd end;
    try {
      routine();
    } catch (const Fault&) {
      afterwards();
      throw;
    }
    afterwards();
  });
}

void showRead() {
  ShowSettings();
  propertiesView().showChannelSentence(channelSentence());
}

}  // namespace

void LoadFromMeter() { exchange(ReadMeterConfig, showRead); }

void SaveToMeter() {
  exchange(WriteMeterConfig, [] {});
}

void ShowSettings() {
  SetGatesEnabled();
  propertiesView().refresh();
  RefreshGraph();
  UpdateInfoBox();
  UpdateMarkersWindow();
}

}  // namespace pulsemod
