#pragma once

#include <grp.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace pulsemod::test {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

inline std::filesystem::path configurationFolder() { return std::getenv("XDG_CONFIG_HOME"); }

/// Milliseconds that `action` takes.
template <typename Action>
double durationMs(const Action& action) {
  const auto start = SteadyClock::now();
  action();
  return std::chrono::duration<double, std::milli>(SteadyClock::now() - start).count();
}

/// Processor time of this process, in milliseconds.
inline double processorTimeMs() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto ms = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return ms(usage.ru_utime) + ms(usage.ru_stime);
}

/// While it lives, an administrator is the user nobody of the group nogroup; any other user stays
/// who he is.
class WithoutPrivileges {
 public:
  WithoutPrivileges() : wasRoot_(geteuid() == 0) {
    if (!wasRoot_) return;
    groups_.resize(static_cast<std::size_t>(getgroups(0, nullptr)));
    require(getgroups(static_cast<int>(groups_.size()), groups_.data()) >= 0);
    require(setgroups(0, nullptr) == 0);
    require(setresgid(nobody, nobody, 0) == 0);
    require(setresuid(nobody, nobody, 0) == 0);
  }
  ~WithoutPrivileges() {
    if (!wasRoot_) return;
    require(setresuid(0, 0, 0) == 0);
    require(setresgid(0, 0, 0) == 0);
    require(setgroups(groups_.size(), groups_.data()) == 0);
  }
  WithoutPrivileges(const WithoutPrivileges&) = delete;
  WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

 private:
  static void require(bool done) {
    if (!done) std::abort();
  }

  static constexpr uid_t nobody = 65534;
  bool wasRoot_;
  std::vector<gid_t> groups_;
};

}  // namespace pulsemod::test
