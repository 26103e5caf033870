// CCDF curves.
#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "FuzzInput.h"
#include "ccdf/CCDFReader.h"

namespace pulsemod::fuzz {
namespace {

constexpr std::size_t headLength = 8;

bool hasHead(std::string_view reply) {
  return reply.find("TTFRO") != std::string_view::npos &&
         reply.find(',', headLength) != std::string_view::npos;
}

std::size_t valuesIn(std::string_view reply) {
  const std::size_t first = reply.find(',', headLength) + 1;
  if (first == reply.size()) return 0;
  const std::string_view values = reply.substr(first, reply.size() - first - 1);
  return 1 + static_cast<std::size_t>(std::count(values.begin(), values.end(), ','));
}

void append(std::string& text, float value) {
  std::array<char, 32> buffer{};
  text.append(buffer.data(), std::to_chars(buffer.data(), buffer.end(), value).ptr);
}

std::string textOf(const DecodedCurve& curve) {
  std::string text = "TTFRO 1," + std::to_string(curve.statedPoints) + ",";
  for (std::size_t index = 0; index < curve.count; ++index) {
    if (index > 0) text += ',';
    append(text, curve.values[index]);
  }
  return text + (curve.count == 0 ? "" : "\r");
}

void checkDecoded(std::string_view reply, const DecodedCurve& curve) {
  require(hasHead(reply), "a curve has its mnemonic and its count");
  require(curve.count <= tracePoints && curve.count == valuesIn(reply), "each field is a value");
  for (std::size_t index = 0; index < tracePoints; ++index) {
    require(std::isfinite(curve.values[index]), "the values of a curve are finite");
    require(index < curve.count || curve.values[index] == 0, "no value beyond the count");
  }
}

void checkAgain(const DecodedCurve& curve) {
  const auto again = decodeCurve(textOf(curve));
  require(again && again->count == curve.count && again->values == curve.values &&
              again->statedPoints == curve.statedPoints,
          "a curve is decoded as it was written");
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod;
  using namespace pulsemod::fuzz;
  const std::string_view reply = FuzzInput(data, size).rest();
  std::optional<DecodedCurve> curve;
  if (faults([&] { curve = decodeCurve(reply); })) {
    require(hasHead(reply), "what has no head of a curve is no fault");
    return 0;
  }
  require(curve.has_value() == hasHead(reply), "what has a head is a curve");
  if (!curve) return 0;
  checkDecoded(reply, *curve);
  checkAgain(*curve);
  return 0;
}
