#include "Onlookers.h"

#include <charconv>
#include <string_view>

#include "TraceReader.h"
#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFState.h"
#include "profile/ProfileGraph.h"

namespace soak {

namespace {

Ledger::Mark markOfCurve(const pulsemod::Trace& shares) {
  CurveMark mark;
  for (const float share : shares) mark.add(share);
  return mark.value();
}

}  // namespace

void Sightings::rate(const std::string& caption) {
  constexpr std::string_view head = "Profile/Second: ";
  constexpr double most = 1000;
  double value = 0;
  if (caption.starts_with(head)) {
    std::from_chars(caption.data() + head.size(), caption.data() + caption.size(), value);
  }
  if (value <= 0 || value > most) ++oddRates;
}

ProfileOnlooker::ProfileOnlooker(pulsemod::ProfileView& window, Sightings& sightings)
    : window_(window),
      sightings_(sightings),
      picture_(pulsemod::liveTraceColour, [this](std::span<const pulsemod::PicturePoint> trace) {
        const bool whole = trace.size() == pulsemod::tracePoints;
        sightings_.ledger.shown(whole ? std::optional(markOfLevel(trace.back().y)) : std::nullopt);
      }) {}

pulsemod::Picture& ProfileOnlooker::graph() {
  picture_.watch(window_.graph());
  return picture_;
}

CCDFOnlooker::CCDFOnlooker(pulsemod::CCDFView& window, Sightings& sightings)
    : window_(window),
      sightings_(sightings),
      picture_(pulsemod::liveCurveColour, [this](std::span<const pulsemod::PicturePoint>) {
        sightings_.ledger.shown(markOfCurve(pulsemod::CCDFData));
      }) {}

pulsemod::Picture& CCDFOnlooker::graph() {
  picture_.watch(window_.graph());
  return picture_;
}

}  // namespace soak
