#include "runtime/faults/backtrace.h"

#include <cinttypes>

#include "runtime/errors/saved_error.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"

namespace ov {
namespace {

// Room for one address with its blank.
constexpr size_t kAddressRoom = 20;
// How long one look-up waits for another; after a wait in vain, the rest goes without names.
constexpr uint32_t kSymbolPatience = 500;

uint64_t number_of(void* address) {
  return reinterpret_cast<uint64_t>(address);
}

void log_addresses(const Backtrace& backtrace, char (&text)[kBacktraceLineRoom]) {
  size_t end = 0;
  ov_str_printf_to(text, sizeof text, &end, "Backtrace hash:%#x ", backtrace.hash);
  for (int i = 0; i < backtrace.count; ++i) {
    // Only whole addresses.
    if (sizeof text - end < kAddressRoom) break;
    ov_str_printf_to(text, sizeof text, &end, "0x%016" PRIx64 " ", number_of(backtrace.frames[i]));
  }
  ov_err("%s", text);
}

}  // namespace

int frame_limit(uint32_t major, uint32_t minor, bool second_release, int usual) {
  const bool old = major == 5 && (minor == 1 || (minor == 2 && !second_release));
  return old ? kOldSystemFrames : usual;
}

bool is_hard_fault(uint32_t code) {
  switch (code) {
    case 0x80000002:  // misaligned data
    case 0xc0000005:  // access violation
    case 0xc0000006:  // error while paging in
    case 0xc000001d:  // illegal instruction
    case 0xc0000025:  // went on after a fault that allows no going on
    case 0xc0000026:  // a handler's answer was none
    case kStackOverflow:
      return true;
    default:  // array bounds, arithmetic of all kinds, privileged instruction
      return code >= 0xc000008c && code <= 0xc0000096;
  }
}

FindSymbol symbol_finder(uint32_t code) {
  const FindSymbol none = [](void*, uint32_t, Symbol*) { return true; };
  return code == kStackOverflow ? none : &find_symbol;
}

void log_backtrace(const Backtrace& backtrace, char (&line)[kBacktraceLineRoom], FindSymbol find) {
  if (backtrace.count == 0) {
    ov_err("%s", "Backtrace unavailable.");
    return;
  }
  log_addresses(backtrace, line);
  uint32_t patience = kSymbolPatience;
  for (int i = 0; i < backtrace.count; ++i) {
    Symbol symbol;
    if (!find(backtrace.frames[i], patience, &symbol)) patience = 0;
    ov_snprintf(line, sizeof line, "%2d:0x%016" PRIx64 " %s+%" PRId64, i,
                number_of(backtrace.frames[i]), symbol.name, symbol.displacement);
    ov_err("%s", line);
  }
}

}  // namespace ov

void ov_log_btrace(void) {
  const ov::SavedError keep;
  ov::Backtrace backtrace;
  ov::capture_backtrace(&backtrace, ov::kCalledFrames);
  char line[ov::kBacktraceLineRoom];
  ov::log_backtrace(backtrace, line, &ov::find_symbol);
}
