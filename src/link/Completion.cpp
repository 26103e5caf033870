#include "link/Completion.h"

#include <string>

#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "platform/Services.h"

namespace pulsemod {

void CheckCompleted() {
  std::string reply;
  if (!QueryMeter("*OPC?", reply) || leadingNumber(reply) == 1) return;
  services().dialogs.showMessage("Invalid response from Power Meter", "Pelmora",
                                 MessageIcon::exclamation);
}

}  // namespace pulsemod
