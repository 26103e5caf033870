#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace endtoend {

/// A program that runs beside the test. It is killed with the object, and by the system when the
/// test itself is killed.
class Process {
 public:
  struct Order {
    std::vector<std::string> command;                // the path of the program and its arguments
    std::map<std::string, std::string> environment;  // beside what the test itself has
    std::vector<std::string> withoutVariables;
    std::string outputFile;
    std::string errorFile;
  };
  explicit Process(const Order& order);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  bool isRunning();
  void sendSignal(int signal);
  void kill();
  /// Seconds of processor time that it has used so far.
  double processorSeconds() const;
  /// Memory that it occupies at present.
  long residentKilobytes() const;
  /// A file of this path is part of its memory.
  bool hasMapped(const std::string& path) const;

  /// How it ended: its exit status, or 128 and the signal's number. Nothing when it still runs
  /// after the limit.
  std::optional<int> awaitEnd(std::chrono::milliseconds limit);

 private:
  pid_t pid_ = -1;
  std::optional<int> result_;
};

}  // namespace endtoend
