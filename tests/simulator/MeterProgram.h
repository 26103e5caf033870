// The simulated meter's program, started as its users start it.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace simmeter {

// A started program with its standard output in a pipe and its error output in a file.
class MeterProgram {
 public:
  MeterProgram(std::string path, std::vector<std::string> arguments, const std::string& errors) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return;
    arguments.insert(arguments.begin(), std::move(path));
    std::vector<char*> raw;
    for (std::string& each : arguments) raw.push_back(each.data());
    raw.push_back(nullptr);
    process_ = ::fork();
    if (process_ == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that is ended must not leave it behind
      ::unsetenv("SIMULATED_METER_SCENARIO");
      ::unsetenv("SIMULATED_METER_TRANSCRIPT");
      ::dup2(ends[1], 1);
      const int file = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      ::dup2(file, 2);
      ::close(ends[0]);
      ::close(ends[1]);
      ::execv(raw[0], raw.data());
      ::_exit(127);
    }
    ::close(ends[1]);
    output_ = ends[0];
  }
  MeterProgram(const MeterProgram&) = delete;
  MeterProgram& operator=(const MeterProgram&) = delete;
  ~MeterProgram() {
    if (process_ > 0) {
      ::kill(process_, SIGKILL);
      wait();
    }
    ::close(output_);
  }

  std::string firstLine() {
    std::string line;
    char c = 0;
    while (::read(output_, &c, 1) == 1 && c != '\n') line += c;
    return line;
  }

  void signal(int number) { ::kill(process_, number); }
  pid_t process() const { return process_; }

  // The exit code; -1 when it was killed by a signal.
  int wait() {
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

}  // namespace simmeter
