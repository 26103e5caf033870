// A captured trace and what is measured on it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "MeterSettings.h"
#include "Signal.h"

namespace simmeter {

constexpr int kMostPoints = 400;

// Levels are kept in thousandths of a dB, as they are sent, so that the text, the block and every
// measurement come from the same numbers.
struct Trace {
  double start = 0;    // s: the trigger delay it was captured with
  double capture = 0;  // s: the time it spans
  int count = 0;       // 200 or 400; 0 before the first capture
  std::uint32_t number = 0;
  std::array<std::int32_t, kMostPoints> milliDecibels{};

  // Points count from 1; the last one stands at the end of the capture.
  double timeOf(int point) const { return start + point * capture / count; }
  double level(int point) const {
    return milliDecibels[static_cast<std::size_t>(point - 1)] / 1000.0;
  }
};

// The time inside [start, stop] but not strictly inside the fence, all in s.
struct GateWindow {
  double start = 0;
  double stop = 0;
  bool fenced = false;
  double fenceStart = 0;
  double fenceStop = 0;

  bool holds(double time) const;
};

// Gates 1 to 8. With the repeat on, gates 2 to the repeat count are gate 1 moved by the offset, and
// they are as on and as fenced as gate 1. Nothing for gates that have neither settings of their
// own nor a repeat that reaches them.
std::optional<GateWindow> gateWindow(const MeterSettings& settings, int channel, int gate);

struct Results {
  double average = kNoReading;  // dBm of the mean power
  double peak = kNoReading;
  double minimum = kNoReading;
  double crest = 0;  // dB, peak over average
};

// Over the points inside the window, over all points without one; kNoReading when there are none.
Results measure(const Trace& trace, const GateWindow* window);

// The level in dBm at the point nearest to the time in s; kNoReading outside the trace.
double levelAt(const Trace& trace, double time);

// Takes traces of one channel's signal. The noiseless picture is kept while the settings that
// shape it stay as they are.
class Sampler {
 public:
  // Fills the trace but for its number.
  void capture(const MeterSettings& settings, int channel, Noise& noise, Trace& trace);

 private:
  void prepare(int inputConfig, double start, double capture, int points);

  int inputConfig_ = -1;
  double start_ = 0;
  double capture_ = 0;
  int points_ = 0;
  std::array<double, kMostPoints> level_{};
  std::array<double, kMostPoints> deviation_{};
};

// 200 or 400, as set.
int tracePoints(const MeterSettings& settings);

}  // namespace simmeter
