#pragma once

#include <functional>

namespace pulsemod {

/// Counting the exchanges of a routine, for the bar that shows how far it has come.
struct ExchangeCountState {
  /// No exchange is carried out; each fails at once, without a reply.
  bool onlyCounting = false;
  /// Exchanges that were not carried out since the last count began.
  int counted = 0;
  /// Called when an exchange is over, however it ended.
  std::function<void()> afterEach;
};
extern ExchangeCountState ExchangeCount;

/// How many exchanges `routine` makes: runs it without a meter, so that the number cannot differ
/// from what it does. It must be a routine that makes the same exchanges whatever the replies are;
/// what else it does, it does here as well. A fault ends the count where it will end the routine.
int countExchanges(const std::function<void()>& routine);

}  // namespace pulsemod
