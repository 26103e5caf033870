#include "link/Fault.h"

#include <cmath>

#include "link/NumberText.h"
#include "platform/Services.h"

namespace pulsemod {

void reportFault(const std::string& description) {
  services().dialogs.showMessage(description, "Pelmora", MessageIcon::exclamation);
}

bool reportFaults(const std::function<void()>& handler) {
  try {
    handler();
    return true;
  } catch (const Fault& fault) {
    reportFault(fault.what());
    return false;
  }
}

double checkedQuotient(double numerator, double denominator) {
  if (denominator == 0) throw Fault("Division by zero");
  const double quotient = numerator / denominator;
  if (!std::isfinite(quotient)) throw Fault("Overflow");
  return quotient;
}

float checkedSingle(double value) {
  if (!fitsSingle(value)) throw Fault("Overflow");
  return static_cast<float>(value);
}

}  // namespace pulsemod
