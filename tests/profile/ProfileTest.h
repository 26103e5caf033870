#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "profile/MeasurementSettings.h"
#include "support/FakeProfileView.h"
#include "support/WorldTest.h"

namespace pulsemod::test {

/// The bytes of one value in the order in which the meter sends them.
inline std::string blockBytes(float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  std::string bytes;
  for (const unsigned shift : {16U, 24U, 8U, 0U}) {
    bytes += static_cast<char>(static_cast<unsigned char>(bits >> shift & 0xFFU));
  }
  return bytes;
}

inline std::string blockData(const std::vector<float>& values) {
  std::string data;
  for (const float value : values) data += blockBytes(value);
  return data;
}

/// The data behind its head, "#3800" and the like.
inline std::string block(const std::string& data) {
  const std::string length = std::to_string(data.size());
  return "#" + std::to_string(length.size()) + length + data;
}

/// `count` levels that a single holds exactly: `first`, `first` - 0.25, ...
inline std::vector<float> levels(std::size_t count, float first = -10.0F) {
  std::vector<float> values;
  for (std::size_t index = 0; index < count; ++index) {
    values.push_back(first - 0.25F * static_cast<float>(index));
  }
  return values;
}

/// "PMPO 1,2,-10,-10.25": a readout as the meter sends it, without its line end.
inline std::string textReadout(const std::vector<float>& values) {
  std::string text = "PMPO 1," + std::to_string(values.size());
  for (const float value : values) {
    std::string number = std::to_string(value);
    text += "," + number.substr(0, number.find('.') + 3);
  }
  return text;
}

/// An outside world with a profile window, and a meter at GPIB address 13.
class ProfileTest : public WorldTest {
 protected:
  /// The meter answers the acquisition of `values` on either link.
  void answerProfile(const std::vector<float>& values) {
    world.meter.replies["TR1 1"] = "TR1 1";
    world.meter.replies["PMPBO 1"] = block(blockData(values));
    world.meter.replies["PMPO 1"] = textReadout(values);
  }

  /// The meter answers all that a start reads back.
  void answerReadBack() {
    answerProfile(levels(200));
    world.meter.replies["TRCAPT? 1,PMOD"] = "TRCAPT 1,PMOD,0.0046";
    world.meter.replies["TRDLYT? 1,PMOD"] = "TRDLYT 1,PMOD,0";
    world.meter.replies["PMPREF? 1,DB"] = "PMPREF 1,DB,10";
    world.meter.replies["PMPSCAL? 1,DB"] = "PMPSCAL 1,DB,10";
  }

  /// Where the first `call` stands among the calls of the GPIB library; -1 when there is none.
  long positionOfCall(const std::string& call) const {
    const auto found = std::find(world.gpib.calls.begin(), world.gpib.calls.end(), call);
    return found == world.gpib.calls.end() ? -1 : found - world.gpib.calls.begin();
  }

  static GateSettings& gate(int number) {
    return Settings.Gates[static_cast<std::size_t>(number - 1)];
  }
  static MarkerSettings& marker(int number) {
    return Settings.Markers[static_cast<std::size_t>(number - 1)];
  }

  FakeProfileView view;
};

}  // namespace pulsemod::test
