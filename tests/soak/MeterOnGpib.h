#pragma once

#include "GpibBus.h"
#include "MeterLine.h"
#include "TraceReader.h"
#include "platform/GpibLibrary.h"

namespace soak {

/// The simulated meter on its GPIB bus. The bus answers at once; what a call would take is added to
/// the program's clock.
class MeterOnGpib : public pulsemod::GpibLibrary, public MeterLine {
 public:
  /// The board's time-out must be 1 ms: so long a call that fails by it really waits.
  MeterOnGpib(const simmeter::Scenario& scenario, SimulatedTime& time, TraceReader& reader);

  int RegisterGpibGlobalsForThread(int* status, int* error, int* count, long* longCount) override;
  int UnregisterGpibGlobalsForThread() override { return 0; }
  void SendIFC(int board) override;
  void DevClear(int board, int address) override;
  void Send(int board, int address, std::string_view bytes, pulsemod::GpibEnd end) override;
  void Receive(int board, int address, char* buffer, std::size_t size, int termination) override;
  void ReadStatusByte(int board, int address, short* statusByte) override;
  int ibfindA(const std::string& name) override;
  int ibonl(int descriptor, int online) override;
  std::string unusableReason() const override { return {}; }

  bool holdsOutput() override;
  simmeter::FaultPlan& faults() override { return bus_.faults(); }
  simmeter::Transcript& transcript() override { return transcript_; }

 private:
  /// True when it did not fail.
  bool finish(const simmeter::CallStatus& done);

  int address_;
  simmeter::Transcript transcript_;
  simmeter::GpibBus bus_;
  SimulatedTime& time_;
  TraceReader& reader_;
  std::string reply_;
  int* status_ = nullptr;
  int* error_ = nullptr;
  int* count_ = nullptr;
  long* longCount_ = nullptr;
};

}  // namespace soak
