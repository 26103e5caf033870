#include "ccdf/CCDFReader.h"

#include <algorithm>
#include <string>

#include "ccdf/CCDFState.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "link/NumberText.h"
#include "link/ReplyText.h"
#include "link/Session.h"

namespace pulsemod {

namespace {

constexpr auto curveMnemonic = "TTFRO";
/// The head "TTFRO 1,": mnemonic, blank, one-digit channel, comma.
constexpr std::size_t curveHeadLength = 8;

std::string curveQuery() { return std::string(curveMnemonic) + " " + ChannelText(); }

/// What follows the head of a curve; nothing when it has no comma after its count.
std::optional<std::string_view> curveBody(std::string_view reply) {
  if (reply.find(curveMnemonic) == std::string_view::npos) return std::nullopt;
  if (reply.size() <= curveHeadLength) return std::nullopt;
  reply.remove_prefix(curveHeadLength);
  if (reply.find(',') == std::string_view::npos) return std::nullopt;
  return reply;
}

std::optional<std::int16_t> statedPoints(std::string_view body) {
  return leadingWhole<std::int16_t>(body.substr(0, body.find(',')));
}

}  // namespace

std::optional<DecodedCurve> decodeCurve(std::string_view reply) {
  const auto body = curveBody(reply);
  if (!body) return std::nullopt;
  const auto points = statedPoints(*body);
  if (!points) throw Fault("Overflow: the point count of the meter's curve does not fit 16 bits");
  DecodedCurve curve;
  curve.statedPoints = *points;
  walkClosedFields(body->substr(body->find(',') + 1), [&curve](std::string_view field) {
    if (curve.count == curve.values.size()) {
      throw Fault("Subscript out of range: the meter's curve has more than 400 values");
    }
    curve.values[curve.count++] = checkedSingle(leadingNumber(field));
    return true;
  });
  return curve;
}

bool ReadCCDFData() {
  SendCommand("PPACQRT " + ChannelText());
  std::string reply;
  if (!QueryMeter(curveQuery(), reply)) EndSession();
  const auto curve = decodeCurve(reply);
  if (!curve) return false;
  Settings.DisplayPoints = curve->statedPoints;
  std::copy_n(curve->values.begin(), curve->count, CCDFData.begin());
  return true;
}

void ReadCCDFPoints() {
  std::string reply;
  if (!QueryMeter(curveQuery(), reply)) return;
  const auto body = curveBody(reply);
  if (!body) return;
  if (const auto points = statedPoints(*body)) Settings.DisplayPoints = *points;
}

}  // namespace pulsemod
