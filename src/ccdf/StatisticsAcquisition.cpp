#include "ccdf/StatisticsAcquisition.h"

#include <string>

#include "link/MeterLink.h"
#include "link/ReplyText.h"
#include "profile/MeasurementSettings.h"

namespace pulsemod {

void StopStatisticsAcquisition() {
  const std::string channel = ChannelText();
  std::string reply;
  if (QueryMeter("PPACQS? " + channel, reply) && SplitReply(reply, 1) == "ON") {
    SendCommand("PPACQS " + channel + ",OFF");
  }
}

}  // namespace pulsemod
