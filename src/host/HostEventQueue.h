#pragma once

#include "platform/EventQueue.h"

namespace pulsemod {

/// The toolkit's event queue. Calls nest: a handler may wait here too.
class HostEventQueue : public EventQueue {
 public:
  void processPending() override;
  void processUntilEvent() override;
  void processUntilEventOr(int milliseconds) override;
};

}  // namespace pulsemod
