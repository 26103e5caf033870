#pragma once

#include <string>

#include "MessageExchange.h"
#include "MeterLine.h"
#include "TraceReader.h"
#include "platform/SerialPort.h"

namespace soak {

/// The simulated meter on a serial line of 57600 baud. Bytes leave and arrive at the line's pace.
class MeterOnSerial : public pulsemod::SerialPort, public MeterLine {
 public:
  MeterOnSerial(const simmeter::Scenario& scenario, SimulatedTime& time, TraceReader& reader);

  void setPortNumber(int /*number*/) override {}
  void setSettings(std::string_view /*settings*/) override {}
  bool isOpen() const override { return isOpen_; }
  bool open() override { return isOpen_ = failure_.empty(); }
  void close() override { isOpen_ = false; }
  void write(std::string_view bytes) override;
  std::size_t outputCount() const override { return outgoing_.size(); }
  std::optional<char> input() override;
  std::string failureReason() const override { return failure_; }

  /// The device is gone for good.
  void lose(const std::string& reason);

  bool holdsOutput() override { return exchange_.reply() != nullptr || read_ < arrived_.size(); }
  simmeter::FaultPlan& faults() override { return exchange_.faults(); }
  simmeter::Transcript& transcript() override { return transcript_; }
  std::optional<Time> nextArrival() const override;
  void deliver() override;

 private:
  simmeter::TimePoint meterTime() const { return simmeter::TimePoint(time_.now()); }

  simmeter::Transcript transcript_;
  mutable simmeter::MessageExchange exchange_;
  SimulatedTime& time_;
  TraceReader& reader_;
  bool isOpen_ = false;
  std::string failure_;
  std::string outgoing_;
  Time lastLeaves_{};
  /// The program has read the first `read_` of them.
  std::string arrived_;
  std::size_t read_ = 0;
  bool ended_ = false;
};

}  // namespace soak
