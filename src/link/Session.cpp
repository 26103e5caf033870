#include "link/Session.h"

#include <cstdlib>

#include "link/Conversation.h"
#include "link/MeterLink.h"
#include "platform/Services.h"

namespace pulsemod {

void EndSession() {
  forgetKeptExchanges();
  if (LinkSettings.commsType == commsTypeGPIB) CloseMeterLink();
  services().programEnd.endProgram();
  std::abort();  // never reached: g++ loses the virtual call's noreturn under sanitizers
}

}  // namespace pulsemod
