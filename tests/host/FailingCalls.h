#pragma once

#include <string>
#include <vector>

namespace pulsemod::test {

/// While one of these lives, the process's calls to the system that make, write, read, rename or
/// close a file are counted, and one of them may fail as if the system had said so. At most one at
/// a time.
class FailingCalls {
 public:
  enum class Manner {
    once,
    /// So do all of its name that come after it.
    fromThenOn,
    /// A call that writes or reads does so with half of the bytes, and those after it fail.
    halfway,
  };

  /// Only counts.
  FailingCalls() : FailingCalls(0, 0) {}
  /// Makes call `number`, from 1, fail with `error`. A failing close closes all the same, as the
  /// system does.
  FailingCalls(int number, int error, Manner manner = Manner::once);
  ~FailingCalls();
  FailingCalls(const FailingCalls&) = delete;
  FailingCalls& operator=(const FailingCalls&) = delete;

  /// Names of the calls so far: open (only of a file that may be made by it), write, read, sync,
  /// permissions, rename, close.
  const std::vector<std::string>& calls() const { return calls_; }
  /// Whether the call came and failed.
  bool hasFailed() const { return failed_; }

  struct Verdict {
    bool fails;
    bool half;
  };
  /// For the stand-ins of the system's calls.
  static Verdict next(const char* name);

  /// Whether the file system knows files without a name, which the toolkit prefers for what it has
  /// not finished. Some do not.
  static inline bool filesWithoutName = true;

 private:
  Verdict judge(const std::string& name);

  std::vector<std::string> calls_;
  int number_;
  int error_;
  Manner manner_;
  /// Of the calls that fail from now on.
  std::string failing_;
  bool failed_ = false;
};

}  // namespace pulsemod::test
