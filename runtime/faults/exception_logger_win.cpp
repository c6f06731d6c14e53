#include "runtime/faults/exception_logger.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <utility>

#include "runtime/errors/saved_error.h"
#include "runtime/faults/backtrace.h"
#include "runtime/faults/exception_codes.h"
#include "runtime/faults/fault_report.h"
#include "runtime/faults/symbols_win.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/sync/bounded_lock.h"

namespace ov {
namespace {

constexpr bool codes_are(std::initializer_list<DWORD> published) {
  const ExceptionCode* entry = kExceptionCodes;
  for (const DWORD code : published) {
    if ((entry++)->code != code) return false;
  }
  return entry == std::end(kExceptionCodes);
}

static_assert(codes_are({EXCEPTION_ACCESS_VIOLATION,
                         EXCEPTION_ARRAY_BOUNDS_EXCEEDED,
                         EXCEPTION_BREAKPOINT,
                         EXCEPTION_DATATYPE_MISALIGNMENT,
                         EXCEPTION_FLT_DENORMAL_OPERAND,
                         EXCEPTION_FLT_DIVIDE_BY_ZERO,
                         EXCEPTION_FLT_INEXACT_RESULT,
                         EXCEPTION_FLT_INVALID_OPERATION,
                         EXCEPTION_FLT_OVERFLOW,
                         EXCEPTION_FLT_STACK_CHECK,
                         EXCEPTION_FLT_UNDERFLOW,
                         EXCEPTION_ILLEGAL_INSTRUCTION,
                         EXCEPTION_IN_PAGE_ERROR,
                         EXCEPTION_INT_DIVIDE_BY_ZERO,
                         EXCEPTION_INT_OVERFLOW,
                         EXCEPTION_INVALID_DISPOSITION,
                         EXCEPTION_NONCONTINUABLE_EXCEPTION,
                         EXCEPTION_PRIV_INSTRUCTION,
                         EXCEPTION_SINGLE_STEP,
                         EXCEPTION_STACK_OVERFLOW}));

// How long an installation and a removal wait for each other.
constexpr uint32_t kPatience = 5000;

// All of it guarded by `lock`.
constinit BoundedLock lock;
bool installed = false;
bool removed_at_exit = false;
void* handler = nullptr;

LONG CALLBACK log_fault(EXCEPTION_POINTERS* fault) {
  const uint32_t code = fault->ExceptionRecord->ExceptionCode;
  if (!is_hard_fault(code)) return EXCEPTION_CONTINUE_SEARCH;
  const SavedError keep;
  const FaultReport report;
  if (!report) return EXCEPTION_CONTINUE_SEARCH;
  ov_err("Unhandled Exception %s(%u)", ov_exc2str(code), code);
  FaultReport::Slot& slot = report.slot();
  capture_backtrace(&slot.backtrace, kFaultFrames);
  log_backtrace(slot.backtrace, slot.line, symbol_finder(code));
  ov_log_flush();
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

// A frame of its own, which the capture leaves out together with the caller's.
[[gnu::noinline]] void capture_backtrace(Backtrace* backtrace, int usual) {
  OSVERSIONINFOW version = {};
  version.dwOSVersionInfoSize = sizeof version;
  GetVersionExW(&version);
  // Only version 5.2 comes in two releases; no other is asked for it.
  const bool two_releases = version.dwMajorVersion == 5 && version.dwMinorVersion == 2;
  const bool second_release = two_releases && GetSystemMetrics(SM_SERVERR2) != 0;
  const int limit =
      frame_limit(version.dwMajorVersion, version.dwMinorVersion, second_release, usual);
  ULONG hash = 0;
  backtrace->count =
      RtlCaptureStackBackTrace(kSkippedFrames, static_cast<ULONG>(limit), backtrace->frames, &hash);
  backtrace->hash = hash;
}

void exception_logger_install() {
  if (!lock.acquire(kPatience)) return;
  if (!std::exchange(installed, true)) {
    handler = AddVectoredExceptionHandler(0, &log_fault);
    open_symbols();
    // Once in the life of the module: the table of what happens at its end only grows.
    removed_at_exit = removed_at_exit || std::atexit(&exception_logger_remove) == 0;
  }
  lock.release();
}

void exception_logger_remove() {
  if (!lock.acquire(process_ends() ? 0 : kPatience)) return;
  if (std::exchange(installed, false)) {
    close_symbols();
    if (void* const registered = std::exchange(handler, nullptr)) {
      RemoveVectoredExceptionHandler(registered);
    }
  }
  lock.release();
}

}  // namespace ov
