#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Faults.h"
#include "SimulatedMeter.h"

namespace pulsemod::test {

/// The oracle's own link: framing, chunks, polls and failures of both links as they ought to be,
/// with a simulated meter of its own.
class OracleLink {
 public:
  /// Nothing ends the wait for a reply; the user closes the program.
  struct WaitsForEver {};

  OracleLink(bool serial, const std::vector<std::string>& setup, const Faults& faults)
      : serial_(serial), meter_(setup), faults_(faults) {}

  bool isSerial() const { return serial_; }
  bool lost() const { return lost_; }

  void open();
  void clearMeter();
  void say(const std::string& command);
  std::optional<std::string> ask(const std::string& query);
  /// Sends and reads one answer; what it says does not matter.
  void askCompletion(const std::string& command);

  /// Why the last GPIB call failed; empty when it did not. On RS232 why the port is lost.
  std::string failureReason() const;

  std::vector<std::string> sent;

 private:
  bool call();
  bool send(const std::string& text);
  bool receive(std::string& reply, std::size_t room);
  std::optional<int> poll();
  std::optional<std::string> askGpib(const std::string& query);

  bool deliver(const std::string& text);
  std::optional<std::string> readLine();
  std::optional<std::string> wireOf(const std::string& text);

  bool serial_;
  SimulatedMeter meter_;
  Faults faults_;
  int replies_ = 0;
  // GPIB
  int calls_ = 0;
  std::optional<int> lastCode_;
  std::string output_;
  std::size_t chunk_ = 0;
  // RS232
  int messages_ = 0;
  std::string line_;
  bool lost_ = false;
};

}  // namespace pulsemod::test
