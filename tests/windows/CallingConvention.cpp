#include "CallingConvention.h"

#include <array>
#include <cstdint>
#include <type_traits>

#include "Check.h"
#include "host/GpibLoader.h"

namespace pulsemod::test {

namespace {

[[gnu::always_inline]] inline std::uintptr_t stackPointer() {
  std::uintptr_t pointer = 0;
#ifdef __i386__
  asm volatile("movl %%esp, %0" : "=r"(pointer));
#else
  asm volatile("movq %%rsp, %0" : "=r"(pointer));
#endif
  return pointer;
}

template <typename Function, typename... Arguments>
void expectBalancedStack(const char* name, Function* function, Arguments... arguments) {
  const std::uintptr_t before = stackPointer();
  function(arguments...);
  const std::uintptr_t after = stackPointer();
  expectEqual(static_cast<std::intptr_t>(after - before), 0, name);
}

}  // namespace

void checkCallingConvention() {
  using Address = unsigned short;
  using Bus = GpibFunctions;
  expectEqual(
      std::is_same_v<decltype(Bus::registerGlobals), int(__stdcall*)(int*, int*, int*, long*)>,
      true);
  expectEqual(std::is_same_v<decltype(Bus::unregisterGlobals), int(__stdcall*)()>, true);
  expectEqual(std::is_same_v<decltype(Bus::find), int(__stdcall*)(const char*)>, true);
  expectEqual(std::is_same_v<decltype(Bus::online), int(__stdcall*)(int, int)>, true);
  expectEqual(std::is_same_v<decltype(Bus::sendInterfaceClear), void(__stdcall*)(int)>, true);
  expectEqual(std::is_same_v<decltype(Bus::deviceClear), void(__stdcall*)(int, Address)>, true);
  expectEqual(
      std::is_same_v<decltype(Bus::send), void(__stdcall*)(int, Address, const void*, long, int)>,
      true);
  expectEqual(
      std::is_same_v<decltype(Bus::receive), void(__stdcall*)(int, Address, void*, long, int)>,
      true);
  expectEqual(std::is_same_v<decltype(Bus::readStatusByte), void(__stdcall*)(int, Address, short*)>,
              true);

  const LoadedGpib loaded = loadGpibLibrary(gpibLibraryName);
  expectEqual(loaded.unusableReason, "");
  if (!loaded.unusableReason.empty()) return;
  const GpibFunctions& bus = loaded.functions;
  int status = 0;
  int error = 0;
  int count = 0;
  long longCount = 0;
  short statusByte = 0;
  std::array<char, 8> buffer{};
  const Address meter = 13;
  expectBalancedStack("Register", bus.registerGlobals, &status, &error, &count, &longCount);
  expectBalancedStack("SendIFC", bus.sendInterfaceClear, 0);
  expectBalancedStack("DevClear", bus.deviceClear, 0, meter);
  expectBalancedStack("Send", bus.send, 0, meter, static_cast<const void*>("AB"), 2L, 1);
  expectBalancedStack("Receive", bus.receive, 0, meter, static_cast<void*>(buffer.data()), 8L, 256);
  expectBalancedStack("ReadStatusByte", bus.readStatusByte, 0, meter, &statusByte);
  expectBalancedStack("ibfindA", bus.find, "GPIB0");
  expectBalancedStack("ibonl", bus.online, 17, 0);
  expectBalancedStack("Unregister", bus.unregisterGlobals);
}

}  // namespace pulsemod::test
