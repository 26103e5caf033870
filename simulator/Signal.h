// The signal at the two sensors: a pulse train locked to the trigger, and its noise.
#pragma once

#include <cstdint>
#include <random>

namespace simmeter {

// The pulse train. Times in s, levels in dBm. The trigger is the start of a rise, at t = 0.
namespace pulse {
constexpr double kPeriod = 1.2e-3;
constexpr double kWidth = 0.6e-3;       // from the start of the rise to the start of the fall
constexpr double kRiseConstant = 4e-6;  // of the exponential rise of power
constexpr double kFallConstant = 6e-6;  // of the exponential fall of power
constexpr double kOvershoot = 0.8;      // dB above the top at the peak of the first swing
constexpr double kRingPeriod = 50e-6;
constexpr double kRingConstant = 30e-6;  // of the decay of the ringing
constexpr double kDroop = 0.6;           // dB lost over the width
constexpr double kTopA = 5.0;            // dBm at the start of the pulse, sensor A
constexpr double kTopB = -3.0;           // dBm, sensor B
constexpr double kOffLevel = -60.0;      // dBm between pulses, both sensors
constexpr double kNoiseOnTop = 0.06;     // dB, one standard deviation of a single sweep
constexpr double kNoiseOff = 1.2;        // dB, likewise at the off level
}  // namespace pulse

constexpr double kNoReading = -99.0;  // dBm: nothing to measure, and the lowest level ever shown

double milliwatts(double dBm);
// At and below zero milliwatts the answer is kNoReading.
double decibels(double mW);

// Level of one sensor without noise, dBm; any time, before the trigger too.
double sensorLevel(bool sensorB, double time);

// What a channel with this input configuration (an InputConfig) shows, without noise: a sensor's
// power, a difference of powers (dBm, kNoReading when negative) or a ratio (dB).
double channelLevel(int inputConfig, double time);

// Standard deviation in dB of the noise of a single sweep at a level. Averaging over n sweeps
// divides it by the square root of n.
double noiseDeviation(double level);

// The same sequence on every machine for the same seed: std::mt19937 is fixed by the standard,
// the standard's distributions are not, so the mapping to numbers is done here.
class Noise {
 public:
  explicit Noise(std::uint32_t seed) : engine_(seed) {}

  // In [0, 1).
  double uniform();
  // Bell-shaped, mean 0, standard deviation 1, never beyond 3.47 either way.
  double bell();

 private:
  std::mt19937 engine_;
};

}  // namespace simmeter
