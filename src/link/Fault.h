#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace pulsemod {

/// A fault of a computation or of what the meter sent: an index out of range, a division by zero, a
/// number that does not fit. Never a failed query: that is a `false`.
class Fault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Shows a fault to the user: its description, title "Pelmora", exclamation icon.
void reportFault(const std::string& description);

/// Runs one event handler and reports a fault in it, so that none travels into the toolkit. Every
/// slot of a window calls its line through this. False when there was a fault.
bool reportFaults(const std::function<void()>& handler);

/// `numerator / denominator`; a `Fault` for a denominator of zero or a result that is not finite.
double checkedQuotient(double numerator, double denominator);

/// `value` as a single; a `Fault` when it does not fit.
float checkedSingle(double value);

}  // namespace pulsemod
