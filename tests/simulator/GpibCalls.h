// The calls of the built GPIB library, loaded as its users load it.
#pragma once

#include <dlfcn.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace simmeter {

struct GpibCalls {
  void (*SendIFC)(int) = nullptr;
  void (*DevClear)(int, std::uint16_t) = nullptr;
  void (*Send)(int, std::uint16_t, const void*, long, int) = nullptr;
  void (*Receive)(int, std::uint16_t, void*, long, int) = nullptr;
  void (*ReadStatusByte)(int, std::uint16_t, short*) = nullptr;
  int (*ibfind)(const char*) = nullptr;
  int (*ibonl)(int, int) = nullptr;
  int (*ThreadIbsta)() = nullptr;
  int (*ThreadIberr)() = nullptr;
  long (*ThreadIbcntl)() = nullptr;

  // Empty, or what is missing.
  std::string loadFrom(const std::string& path) {
    void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return ::dlerror();
    std::string missing;
    const auto resolve = [&](const char* name, auto& target) {
      void* symbol = ::dlsym(library, name);
      if (symbol == nullptr) missing += std::string(name) + " is missing. ";
      target = reinterpret_cast<std::remove_reference_t<decltype(target)>>(symbol);
    };
    resolve("SendIFC", SendIFC);
    resolve("DevClear", DevClear);
    resolve("Send", Send);
    resolve("Receive", Receive);
    resolve("ReadStatusByte", ReadStatusByte);
    resolve("ibfind", ibfind);
    resolve("ibonl", ibonl);
    resolve("ThreadIbsta", ThreadIbsta);
    resolve("ThreadIberr", ThreadIberr);
    resolve("ThreadIbcntl", ThreadIbcntl);
    return missing;
  }
};

}  // namespace simmeter
