#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Meter.h"

namespace pulsemod::test {

/// The model of the simulated meter, told whole messages and without any clock: the same messages
/// get the same replies. Errors are those that the program's *ESE 56 enables.
///
/// Thousands of runs differ in one reply, so what was answered once after a row of messages is
/// remembered, and the model itself is asked only for what is new.
class SimulatedMeter {
 public:
  explicit SimulatedMeter(const std::vector<std::string>& setup);

  /// The reply with its line end, if there is one.
  std::optional<std::string> tell(const std::string& message);

  /// Stays set until the meter is told *CLS.
  bool errorIsReported = false;

 private:
  struct Answer {
    std::optional<std::string> reply;
    bool errorIsReported = false;
  };

  Answer askModel();
  Answer carryOut(const std::string& message);

  const std::vector<std::string>* setup_;
  std::vector<std::string> messages_;
  /// Of the setup and all messages.
  std::uint64_t key_;
  /// The model, once it was needed; it has been told the first `told_` messages.
  std::optional<simmeter::Meter> model_;
  std::size_t told_ = 0;
  bool modelError_ = false;
};

}  // namespace pulsemod::test
