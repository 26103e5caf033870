#include "link/ExchangeCount.h"

#include "link/Fault.h"

namespace pulsemod {

ExchangeCountState ExchangeCount;

int countExchanges(const std::function<void()>& routine) {
  ExchangeCount.counted = 0;
  ExchangeCount.onlyCounting = true;
  try {
    routine();
  } catch (const Fault&) {
    // The routine itself will report it.
  }
  ExchangeCount.onlyCounting = false;
  return ExchangeCount.counted;
}

}  // namespace pulsemod
