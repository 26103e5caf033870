#include "link/TimeText.h"

#include <array>
#include <cmath>

#include "link/Fault.h"
#include "link/NumberText.h"
#include "platform/Services.h"

namespace pulsemod {

namespace {

/// `value` times 1000, through its decimal text so that single-precision noise does not grow.
float timesThousand(float value) { return static_cast<float>(throughShortestText(value) * 1000.0); }

std::string upperCase(std::string_view text) {
  std::string upper(text);
  for (char& character : upper) {
    if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 'a' + 'A');
  }
  return upper;
}

}  // namespace

std::string FormatTime(float seconds) {
  if (seconds == 0) return "0.0s";
  constexpr std::array<const char*, 4> units = {"s", "ms", "us", "ns"};
  float value = seconds;
  std::size_t scalings = 0;
  do {
    ++scalings;
    if (scalings >= units.size() && std::trunc(value) == 0) return {};
    if (std::trunc(value) == 0) value = timesThousand(value);
  } while (std::trunc(value) == 0);
  // Near the largest singles a thousand times the value is none, and the value is whole by itself.
  const double scaled = throughShortestText(value) * 1000.0;
  const double thousandths =
      std::floor(fitsSingle(scaled) ? throughShortestText(static_cast<float>(scaled)) : scaled);
  return numberText(static_cast<float>(thousandths * 0.001)) + units[scalings];
}

float ParseTime(std::string_view text, bool showErrors) {
  std::string number;
  std::string unit;
  for (const char character : text) {
    const bool numeric =
        (character >= '0' && character <= '9') || character == '-' || character == '.';
    (numeric ? number : unit) += character;
  }
  double seconds = leadingNumber(number);
  const std::string upper = upperCase(unit);
  if (upper == "NS") {
    seconds /= 1e9;
  } else if (upper == "US") {
    seconds /= 1e6;
  } else if (upper == "MS") {
    seconds /= 1e3;
  } else if (upper != "S" && !upper.empty() && showErrors) {
    services().dialogs.showMessage("Do not understand format '" + unit + "' - reverting to Seconds",
                                   "s, ms, us format", MessageIcon::information);
  }
  return checkedSingle(seconds);
}

}  // namespace pulsemod
