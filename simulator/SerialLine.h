// The meter on a serial line: a pseudo-terminal whose bytes leave at the line's pace.
#pragma once

#include <csignal>
#include <string>

#include "MessageExchange.h"

namespace simmeter {

struct SerialOptions {
  std::string link;  // path of a symbolic link to the device; empty: none
  long baud = -1;    // -1: as the program has set the line; 0: unpaced
};

class SerialLine {
 public:
  static constexpr int kBitsPerByte = 10;  // start, eight data bits, stop

  // The scenario and the transcript must outlive it.
  SerialLine(const Scenario& scenario, SerialOptions options, Transcript& transcript);
  SerialLine(const SerialLine&) = delete;
  SerialLine& operator=(const SerialLine&) = delete;
  ~SerialLine();

  // Opens the pseudo-terminal and lays the link. Empty, or what went wrong. A link already there
  // is replaced; anything else at that path is left alone and is an error.
  std::string open();

  const std::string& device() const { return device_; }

  // Serves until `stop` is set or a fault hangs up. `waiting` is the signal mask while it sleeps,
  // so that a signal that sets `stop` is never missed.
  void serve(const volatile std::sig_atomic_t& stop, const sigset_t& waiting);

 private:
  std::string layLink();
  void removeLink() const;
  Duration bytePace() const;
  void readInput();
  void writeReply();
  // When there is something to write next; false when only the other side can go on.
  bool nextWrite(TimePoint& when);

  SerialOptions options_;
  Transcript& transcript_;
  MessageExchange exchange_;
  int master_ = -1;
  int slave_ = -1;  // kept open, so that the line outlives the program at the other end
  std::string device_;
  bool blocked_ = false;  // the line took no more bytes
};

}  // namespace simmeter
