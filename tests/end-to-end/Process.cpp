#include "Process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace endtoend {

namespace {

std::vector<std::string> environmentOf(const Process::Order& order) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const std::string name = text.substr(0, text.find('='));
    bool keep = !order.environment.contains(name);
    for (const std::string& left : order.withoutVariables) keep = keep && left != name;
    if (keep) result.push_back(text);
  }
  for (const auto& [name, value] : order.environment) result.push_back(name + "=" + value);
  return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// Only calls that are safe between fork and exec.
[[noreturn]] void becomeProgram(const std::vector<char*>& command,
                                const std::vector<char*>& environment, const char* outputFile,
                                const char* errorFile, pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(127);
  constexpr int flags = O_WRONLY | O_CREAT | O_APPEND;
  constexpr mode_t mode = 0600;
  const int output = ::open(outputFile, flags, mode);
  const int error = ::open(errorFile, flags, mode);
  if (::dup2(output, STDOUT_FILENO) < 0 || ::dup2(error, STDERR_FILENO) < 0) ::_exit(127);
  ::execve(command.front(), command.data(), environment.data());
  ::_exit(127);
}

}  // namespace

Process::Process(const Order& order) {
  std::vector<std::string> command = order.command;
  std::vector<std::string> environment = environmentOf(order);
  const std::vector<char*> commandPointers = pointersTo(command);
  const std::vector<char*> environmentPointers = pointersTo(environment);
  const pid_t parent = ::getpid();
  pid_ = ::fork();
  if (pid_ < 0) throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
  if (pid_ == 0) {
    becomeProgram(commandPointers, environmentPointers, order.outputFile.c_str(),
                  order.errorFile.c_str(), parent);
  }
}

Process::~Process() { kill(); }

void Process::kill() {
  if (isRunning()) ::kill(pid_, SIGKILL);
  awaitEnd(std::chrono::minutes(1));
}

void Process::sendSignal(int signal) {
  if (isRunning()) ::kill(pid_, signal);
}

bool Process::isRunning() {
  if (result_) return false;
  int status = 0;
  const pid_t ended = ::waitpid(pid_, &status, WNOHANG);
  if (ended != pid_) return true;
  constexpr int signalBase = 128;
  result_ = WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
  return false;
}

std::optional<int> Process::awaitEnd(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  constexpr std::chrono::milliseconds pause{5};
  while (isRunning() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(pause);
  }
  return result_;
}

double Process::processorSeconds() const {
  std::ifstream file("/proc/" + std::to_string(pid_) + "/stat");
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  // The name in brackets may hold anything; user and system time are fields 14 and 15.
  std::istringstream fields(text.substr(text.rfind(')') + 1));
  std::string skipped;
  constexpr int fieldsBefore = 11;
  for (int i = 0; i < fieldsBefore; ++i) fields >> skipped;
  double user = 0;
  double system = 0;
  fields >> user >> system;
  return (user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

long Process::residentKilobytes() const {
  std::ifstream file("/proc/" + std::to_string(pid_) + "/status");
  const std::string name = "VmRSS:";
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(name)) return std::stol(line.substr(name.size()));
  }
  return 0;
}

bool Process::hasMapped(const std::string& path) const {
  std::ifstream file("/proc/" + std::to_string(pid_) + "/maps");
  for (std::string line; std::getline(file, line);) {
    if (line.ends_with(" " + path)) return true;
  }
  return false;
}

}  // namespace endtoend
