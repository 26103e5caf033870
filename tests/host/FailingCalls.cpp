#include "FailingCalls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace pulsemod::test {

namespace {

FailingCalls* active = nullptr;

}  // namespace

FailingCalls::FailingCalls(int number, int error, Manner manner)
    : number_(number), error_(error), manner_(manner) {
  if (active != nullptr) std::abort();
  active = this;
}

FailingCalls::~FailingCalls() { active = nullptr; }

FailingCalls::Verdict FailingCalls::next(const char* name) {
  return active == nullptr ? Verdict{false, false} : active->judge(name);
}

FailingCalls::Verdict FailingCalls::judge(const std::string& name) {
  calls_.push_back(name);
  const bool due = static_cast<int>(calls_.size()) == number_;
  if (due && manner_ != Manner::once) failing_ = name;
  if (due && manner_ == Manner::halfway) return {false, true};
  if (!due && failing_ != name) return {false, false};
  failed_ = true;
  // What is full stays full, but no call is interrupted for ever.
  if (error_ == EINTR) failing_.clear();
  errno = error_;
  return {true, false};
}

}  // namespace pulsemod::test

// The stand-ins. What is defined in the program itself comes before the system's library, for all
// libraries of the process.

using pulsemod::test::FailingCalls;

namespace {

/// The call that the program would have come to without the stand-in.
template <typename Function>
Function* original(const char* name) {
  void* found = dlsym(RTLD_NEXT, name);
  if (found == nullptr) std::abort();
  return reinterpret_cast<Function*>(found);
}

constexpr bool isWithoutName(int flags) { return (flags & O_TMPFILE) == O_TMPFILE; }

constexpr bool mayMakeAFile(int flags) { return (flags & O_CREAT) != 0 || isWithoutName(flags); }

bool openFails(int flags) {
  if (isWithoutName(flags) && !FailingCalls::filesWithoutName) {
    errno = EOPNOTSUPP;
    return true;
  }
  return mayMakeAFile(flags) && FailingCalls::next("open").fails;
}

mode_t modeOf(int flags, va_list arguments) {
  return mayMakeAFile(flags) ? va_arg(arguments, mode_t) : 0;
}

int openAs(const char* name, const char* path, int flags, mode_t mode) {
  return openFails(flags) ? -1 : original<int(const char*, int, ...)>(name)(path, flags, mode);
}

int openAtAs(const char* name, int folder, const char* path, int flags, mode_t mode) {
  return openFails(flags)
             ? -1
             : original<int(int, const char*, int, ...)>(name)(folder, path, flags, mode);
}

template <typename... Arguments>
int unlessFailing(const char* kind, const char* name, Arguments... arguments) {
  return FailingCalls::next(kind).fails ? -1 : original<int(Arguments...)>(name)(arguments...);
}

template <typename Bytes, typename... Arguments>
ssize_t transfer(const char* kind, const char* name, int file, Bytes bytes, size_t size,
                 Arguments... where) {
  const auto verdict = FailingCalls::next(kind);
  if (verdict.fails) return -1;
  return original<ssize_t(int, Bytes, size_t, Arguments...)>(name)(
      file, bytes, verdict.half ? size / 2 : size, where...);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openAs("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openAs("open64", path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openAtAs("openat", folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openAtAs("openat64", folder, path, flags, mode);
}

ssize_t write(int file, const void* bytes, size_t size) {
  return transfer("write", "write", file, bytes, size);
}

ssize_t pwrite(int file, const void* bytes, size_t size, off_t where) {
  return transfer("write", "pwrite", file, bytes, size, where);
}

ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t where) {
  return transfer("write", "pwrite64", file, bytes, size, where);
}

ssize_t writev(int file, const iovec* parts, int count) {
  if (FailingCalls::next("write").fails) return -1;
  return original<ssize_t(int, const iovec*, int)>("writev")(file, parts, count);
}

ssize_t read(int file, void* bytes, size_t size) {
  return transfer("read", "read", file, bytes, size);
}

int fsync(int file) { return unlessFailing("sync", "fsync", file); }

int fdatasync(int file) { return unlessFailing("sync", "fdatasync", file); }

int fchmod(int file, mode_t mode) noexcept {
  return unlessFailing("permissions", "fchmod", file, mode);
}

int chmod(const char* path, mode_t mode) noexcept {
  return unlessFailing("permissions", "chmod", path, mode);
}

int rename(const char* from, const char* to) noexcept {
  return unlessFailing("rename", "rename", from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned flags) noexcept {
  return unlessFailing("rename", "renameat2", fromFolder, from, toFolder, to, flags);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
  return unlessFailing("rename", "linkat", fromFolder, from, toFolder, to, flags);
}

int close(int file) {
  const bool fails = FailingCalls::next("close").fails;
  const int error = errno;
  const int result = original<int(int)>("close")(file);
  if (!fails) return result;
  errno = error;
  return -1;
}
}
