#include "Signal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "MeterSettings.h"

namespace simmeter {
namespace {

// Level in dBm while the pulse is on, rise aside.
double topLevel(double top, double sinceRise) {
  // The sine's first swing is damped before its peak; the factor makes the peak kOvershoot.
  constexpr double kDamping = 1.5;
  const double ring = pulse::kOvershoot * kDamping * std::exp(-sinceRise / pulse::kRingConstant) *
                      std::sin(2 * std::numbers::pi * sinceRise / pulse::kRingPeriod);
  return top + ring - pulse::kDroop * sinceRise / pulse::kWidth;
}

}  // namespace

double milliwatts(double dBm) { return std::exp(dBm * (std::numbers::ln10 / 10)); }

double decibels(double mW) {
  return mW > 0 ? std::max(10 * std::log10(mW), kNoReading) : kNoReading;
}

double sensorLevel(bool sensorB, double time) {
  const double top = sensorB ? pulse::kTopB : pulse::kTopA;
  const double inPeriod = time - std::floor(time / pulse::kPeriod) * pulse::kPeriod;
  double power = milliwatts(pulse::kOffLevel);
  if (inPeriod < pulse::kWidth) {
    power += milliwatts(topLevel(top, inPeriod)) * (1 - std::exp(-inPeriod / pulse::kRiseConstant));
  } else {
    power += milliwatts(topLevel(top, pulse::kWidth)) *
             std::exp(-(inPeriod - pulse::kWidth) / pulse::kFallConstant);
  }
  return decibels(power);
}

double channelLevel(int inputConfig, double time) {
  const double a = sensorLevel(false, time);
  const double b = sensorLevel(true, time);
  switch (inputConfig) {
    case kInputB:
      return b;
    case kInputAMinusB:
      return decibels(milliwatts(a) - milliwatts(b));
    case kInputBMinusA:
      return decibels(milliwatts(b) - milliwatts(a));
    case kInputAOverB:
      return a - b;
    case kInputBOverA:
      return b - a;
    default:
      return a;
  }
}

double noiseDeviation(double level) {
  // Additive noise as seen on a logarithmic scale: it shrinks as the level rises.
  const double aboveOff = milliwatts(std::max(level - pulse::kOffLevel, 0.0));
  return pulse::kNoiseOnTop + (pulse::kNoiseOff - pulse::kNoiseOnTop) / aboveOff;
}

double Noise::uniform() { return static_cast<double>(engine_() >> 5) / 134217728.0; }

double Noise::bell() {
  // The sum of four 16-bit numbers from two draws: variance 4/12 of 2^32.
  const auto x = static_cast<std::uint32_t>(engine_());
  const auto y = static_cast<std::uint32_t>(engine_());
  const auto sum = static_cast<double>((x & 0xFFFFu) + (x >> 16) + (y & 0xFFFFu) + (y >> 16));
  return (sum - 2 * 65535.0) * (std::numbers::sqrt3 / 65536.0);
}

}  // namespace simmeter
