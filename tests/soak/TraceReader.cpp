#include "TraceReader.h"

#include <bit>
#include <charconv>
#include <cstdint>

namespace soak {

namespace {

constexpr std::size_t points = 400;

/// The fields after a head; nothing unless there are as many as that, and all of them numbers.
template <typename Use>
bool readFields(std::string_view text, std::size_t expected, const Use& use) {
  const char* at = text.data();
  const char* const end = at + text.size();
  for (std::size_t field = 0; field < expected; ++field) {
    double value = 0;
    const auto [rest, error] = std::from_chars(at, end, value);
    if (error != std::errc()) return false;
    use(value);
    at = rest;
    if (field + 1 == expected) break;
    if (at == end || *at != ',') return false;
    ++at;
  }
  return at == end;
}

/// Without a prefix and the end; nothing when the head or the end is another.
std::optional<std::string_view> between(std::string_view bytes, std::string_view head,
                                        std::string_view end) {
  if (!bytes.starts_with(head) || !bytes.ends_with(end)) return std::nullopt;
  if (bytes.size() < head.size() + end.size()) return std::nullopt;
  return bytes.substr(head.size(), bytes.size() - head.size() - end.size());
}

}  // namespace

Ledger::Mark markOfLevel(double dbm) {
  constexpr double first = -50;
  constexpr double step = 0.01;
  return static_cast<Ledger::Mark>(std::llround((dbm - first) / step));
}

void CurveMark::add(float share) {
  value_ ^= std::bit_cast<std::uint32_t>(share);
  value_ *= 1099511628211U;
}

void TraceReader::message(std::string_view text) {
  previous_.swap(message_);
  message_ = text;
  found_ = {};
}

void TraceReader::reply(std::string_view bytes) {
  found_ = {};
  if (message_ == "PMPBO 1") found_ = readBlock(bytes);
  // Without a trigger before it, it is asked for its number of points.
  if (message_ == "PMPO 1" && previous_ == "TR1 1") found_ = readText(bytes);
  if (message_ == "TTFRO 1") found_ = readCurve(bytes);
}

void TraceReader::accepted() {
  if (found_.what == What::whole) ledger_.sent(found_.mark);
  if (found_.what == What::part) ledger_.sentPart();
  found_ = {};
}

TraceReader::Found TraceReader::spoilt() const {
  if (fate_ == Fate::redrawn) ledger_.allowRedraw();
  return {fate_ == Fate::partly ? What::part : What::nothing, 0};
}

TraceReader::Found TraceReader::readBlock(std::string_view bytes) const {
  const auto data = between(bytes, "#41600", "\n");
  if (!data || data->size() != 4 * points) return spoilt();
  const auto byte = [&data](std::size_t index) {
    return static_cast<std::uint32_t>(
        static_cast<unsigned char>((*data)[4 * (points - 1) + index]));
  };
  const std::uint32_t bits = byte(1) << 24U | byte(0) << 16U | byte(2) << 8U | byte(3);
  return {What::whole, markOfLevel(static_cast<double>(std::bit_cast<float>(bits)))};
}

TraceReader::Found TraceReader::readText(std::string_view bytes) const {
  const auto fields = between(bytes, "RPMPO 1,400,", "\r\n");
  double last = 0;
  if (!fields || !readFields(*fields, points, [&last](double value) { last = value; })) {
    return spoilt();
  }
  return {What::whole, markOfLevel(last)};
}

TraceReader::Found TraceReader::readCurve(std::string_view bytes) const {
  const auto fields = between(bytes, "TTFRO 1,400,", "\r\n");
  CurveMark mark;
  const auto add = [&mark](double value) { mark.add(static_cast<float>(value)); };
  if (!fields || !readFields(*fields, points, add)) return spoilt();
  return {What::whole, mark.value()};
}

}  // namespace soak
