#include "Measurements.h"

#include <algorithm>
#include <cmath>

namespace simmeter {

bool GateWindow::holds(double time) const {
  if (time < start || time > stop) return false;
  return !(fenced && time > fenceStart && time < fenceStop);
}

std::optional<GateWindow> gateWindow(const MeterSettings& settings, int channel, int gate) {
  const bool repeated = gate > 1 && settings.isOn(SettingId::kRepeat, channel) &&
                        gate <= settings.whole(SettingId::kRepeatCount, channel);
  if (!repeated && gate > kOwnGates) return std::nullopt;
  const int source = repeated ? 1 : gate;
  const double shift =
      repeated ? (gate - 1) * settings.value(SettingId::kRepeatOffset, channel) : 0;
  const auto time = [&](SettingId id) { return settings.value(id, channel, source) + shift; };
  return GateWindow{time(SettingId::kGateStart), time(SettingId::kGateStop),
                    settings.isOn(SettingId::kFenceOn, channel, source),
                    time(SettingId::kFenceStart), time(SettingId::kFenceStop)};
}

Results measure(const Trace& trace, const GateWindow* window) {
  double sum = 0;
  int count = 0;
  Results results;
  for (int i = 1; i <= trace.count; ++i) {
    if (window != nullptr && !window->holds(trace.timeOf(i))) continue;
    const double level = trace.level(i);
    sum += milliwatts(level);
    results.peak = count == 0 ? level : std::max(results.peak, level);
    results.minimum = count == 0 ? level : std::min(results.minimum, level);
    ++count;
  }
  if (count == 0) return results;
  results.average = decibels(sum / count);
  results.crest = results.peak - results.average;
  return results;
}

double levelAt(const Trace& trace, double time) {
  if (trace.count == 0) return kNoReading;
  const double place = (time - trace.start) * trace.count / trace.capture;
  // A rounding error of the division must not put an edge of the picture outside it.
  constexpr double kSlack = 1e-6;
  if (place < -kSlack || place > trace.count + kSlack) return kNoReading;
  return trace.level(std::clamp(static_cast<int>(std::lround(place)), 1, trace.count));
}

int tracePoints(const MeterSettings& settings) {
  return settings.whole(SettingId::kTracePoints, 1) == 0 ? 200 : 400;
}

void Sampler::prepare(int inputConfig, double start, double capture, int points) {
  if (inputConfig == inputConfig_ && start == start_ && capture == capture_ && points == points_) {
    return;
  }
  inputConfig_ = inputConfig;
  start_ = start;
  capture_ = capture;
  points_ = points;
  for (int i = 1; i <= points; ++i) {
    const auto at = static_cast<std::size_t>(i - 1);
    level_[at] = channelLevel(inputConfig, start + i * capture / points);
    deviation_[at] = noiseDeviation(level_[at]);
  }
}

void Sampler::capture(const MeterSettings& settings, int channel, Noise& noise, Trace& trace) {
  trace.start = settings.value(SettingId::kTriggerDelay, channel);
  trace.capture = settings.value(SettingId::kCaptureTime, channel);
  trace.count = tracePoints(settings);
  prepare(settings.whole(SettingId::kInputConfig, channel), trace.start, trace.capture,
          trace.count);
  const double sweeps = settings.isOn(SettingId::kAveraging, channel)
                            ? settings.value(SettingId::kAverageCount, channel)
                            : 1;
  const double scale = 1 / std::sqrt(sweeps);
  for (std::size_t i = 0; i < static_cast<std::size_t>(trace.count); ++i) {
    const double level = level_[i] + noise.bell() * deviation_[i] * scale;
    trace.milliDecibels[i] =
        static_cast<std::int32_t>(std::lround(std::max(level, kNoReading) * 1000));
  }
}

}  // namespace simmeter
