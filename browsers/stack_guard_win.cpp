// The stack protector's value and its end, in place of the compiler's own: that one asks a crypto
// provider for its value, which loads further libraries, and this library is set up under the
// loader's lock, where none may be loaded. What stands here asks the kernel only.
#include <windows.h>
#include <cpuid.h>
#include <immintrin.h>

#include <cstdint>

#define OV_UNPROTECTED __attribute__((no_stack_protector))

namespace {

// Spreads each bit of the number over all of them.
OV_UNPROTECTED uint64_t spread(uint64_t number) {
  number = (number ^ (number >> 30)) * 0xBF58476D1CE4E5B9U;
  number = (number ^ (number >> 27)) * 0x94D049BB133111EBU;
  return number ^ (number >> 31);
}

OV_UNPROTECTED bool hasHardwareNumbers() {
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
  return __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_RDRND) != 0;
}

// The processor's own random number; 0 when it has none at hand.
__attribute__((target("rdrnd"))) OV_UNPROTECTED uint64_t hardwareNumber() {
  unsigned long long number = 0;
  return _rdrand64_step(&number) != 0 ? number : 0;
}

// Times, places and names that nobody outside the process knows all of.
OV_UNPROTECTED uint64_t gather() {
  LARGE_INTEGER ticks = {};
  FILETIME now = {};
  QueryPerformanceCounter(&ticks);
  GetSystemTimeAsFileTime(&now);
  const uint64_t numbers[] = {
      static_cast<uint64_t>(ticks.QuadPart),
      (uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime,
      (uint64_t{GetCurrentProcessId()} << 32) | GetCurrentThreadId(),
      reinterpret_cast<uintptr_t>(&ticks),   // the stack's place
      reinterpret_cast<uintptr_t>(&gather),  // the library's place
      __rdtsc(),
      hasHardwareNumbers() ? hardwareNumber() : 0,
  };
  uint64_t sum = 0;
  for (const uint64_t number : numbers) sum = spread(sum + 0x9E3779B97F4A7C15U + number);
  return sum;
}

}  // namespace

extern "C" {

// The lowest byte is zero, which ends a text that runs over.
uintptr_t __stack_chk_guard = 0xD7C3A5960F1E2D00U;

// Before all other start of the library; no protected function is running then.
__attribute__((constructor(101))) OV_UNPROTECTED static void seedStackGuard() {
  __stack_chk_guard = gather() & ~uintptr_t{0xFF};
}

// Ends the process at once: with its stack overwritten, not even a handler of faults may run. Wine
// makes an exception of it all the same.
// NOLINTNEXTLINE(readability-identifier-naming): the compiler calls it by this name
[[noreturn]] OV_UNPROTECTED void __stack_chk_fail() {
  constexpr uint32_t kSpoiltStack = 2;
  __asm__ volatile("int $0x29" : : "c"(kSpoiltStack));  // the platform's fast fail
  __builtin_unreachable();
}

}  // extern "C"
