// Names of signals and of hardware exceptions.
#include <string_view>

#include "runtime/faults/exception_codes.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/strings/ascii.h"

namespace {

constexpr std::string_view kSignalPrefix = "SIG";
constexpr std::string_view kExceptionPrefix = "EXCEPTION_";

struct Signal {
  int32_t number;
  const char* name;
};

// The platform's numbers, not those of POSIX; in the order in which names are compared.
constexpr Signal kSignals[] = {{2, "SIGINT"}, {4, "SIGILL"},   {22, "SIGABRT"},
                               {8, "SIGFPE"}, {11, "SIGSEGV"}, {15, "SIGTERM"}};

// Whether `name` is `bare`, alone or with the prefix in front.
bool is_name(std::string_view name, std::string_view prefix, std::string_view bare) {
  if (ov::equal_but_for_case(name, bare)) return true;
  return name.size() == prefix.size() + bare.size() &&
         ov::equal_but_for_case(name.substr(0, prefix.size()), prefix) &&
         ov::equal_but_for_case(name.substr(prefix.size()), bare);
}

}  // namespace

const char* ov_signal2str(int32_t number) {
  for (const Signal& signal : kSignals) {
    if (signal.number == number) return signal.name;
  }
  return "UNKNOWN SIGNAL";
}

int32_t ov_str2signal(const char* name) {
  for (const Signal& signal : kSignals) {
    const std::string_view bare = std::string_view(signal.name).substr(kSignalPrefix.size());
    if (name != nullptr && is_name(name, kSignalPrefix, bare)) return signal.number;
  }
  ov_err("unrecognized signame %s", name != nullptr ? name : "(null)");
  return -1;
}

const char* ov_exc2str(uint32_t code) {
  for (const ov::ExceptionCode& exception : ov::kExceptionCodes) {
    if (exception.code == code) return exception.name;
  }
  return "UNKNOWN EXCEPTION";
}

uint32_t ov_str2exc(const char* name) {
  for (const ov::ExceptionCode& exception : ov::kExceptionCodes) {
    if (name != nullptr && is_name(name, kExceptionPrefix, exception.name)) return exception.code;
  }
  return UINT32_MAX;
}
