// Times as the user types and reads them.
#include <cmath>
#include <cstring>
#include <string>

#include "FuzzInput.h"
#include "link/NumberText.h"
#include "link/TimeText.h"
#include "support/FakeWorld.h"

namespace pulsemod::fuzz {
namespace {

/// What of a typed text is no number, in capitals.
std::string unitOf(std::string_view text) {
  std::string unit;
  for (const char character : text) {
    if (std::string_view("0123456789-.").find(character) != std::string_view::npos) continue;
    const bool small = character >= 'a' && character <= 'z';
    unit += small ? static_cast<char>(character - 'a' + 'A') : character;
  }
  return unit;
}

bool isKnown(const std::string& unit) {
  return unit.empty() || unit == "S" || unit == "MS" || unit == "US" || unit == "NS";
}

void checkTyped(std::string_view text, test::FakeDialogs& dialogs) {
  dialogs.messages.clear();
  float silent = 0;
  float shown = 0;
  const bool silentFaults = faults([&] { silent = ParseTime(text, false); });
  require(dialogs.messages.empty(), "no box when none is asked for");
  const bool shownFaults = faults([&] { shown = ParseTime(text, true); });
  require(dialogs.messages.size() == (isKnown(unitOf(text)) ? 0U : 1U), "one box for a wrong unit");
  require(silentFaults == shownFaults && silent == shown, "a box changes no time");
  require(std::isfinite(silent), "a time is finite");
}

/// A text holds three decimals of its unit, cut toward minus infinity.
void checkCut(float seconds) {
  constexpr double slack = 2e-6;
  const std::string text = FormatTime(seconds);
  const double unit = text.ends_with("ns") ? 1e-9 : text.ends_with("us") ? 1e-6 : 1e-3;
  const auto exact = static_cast<double>(seconds);
  const auto read = static_cast<double>(ParseTime(text, false));
  const double most = std::fabs(exact) * slack;
  require(read <= exact + most, "a time is cut toward minus infinity");
  require(read >= exact - unit * 1e-3 - most, "a time is cut at the third decimal");
}

void checkShown(float seconds) {
  constexpr double nanosecond = 1e-9;
  const std::string text = FormatTime(seconds);
  const double size = std::fabs(static_cast<double>(seconds));
  if (seconds == 0) {
    require(text == "0.0s", "no time is 0.0s");
  } else if (size < nanosecond * 0.999) {
    require(text.empty(), "below a nanosecond there is no text");
  } else if (size >= nanosecond * 1.001 && size < 0.9999) {
    checkCut(seconds);
  } else if (size >= 1) {
    require(text.ends_with("ms"), "seconds bear the unit ms");
    require(std::fabs(leadingNumber(text) - static_cast<double>(seconds)) <= 0.001 + size * 1e-6,
            "seconds are shown as they are");
  }
}

float singleIn(std::string_view bytes) {
  float value = 0;
  std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
  return std::isfinite(value) ? value : 0;
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod::fuzz;
  static pulsemod::test::FakeWorld world;
  const std::string_view text = FuzzInput(data, size).rest();
  checkTyped(text, world.dialogs);
  checkShown(singleIn(text));
  if (const auto single = pulsemod::leadingSingle(text)) checkShown(*single);
  return 0;
}
