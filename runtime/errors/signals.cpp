// Names of signals and of hardware exceptions.
#include <string_view>

#include "runtime/errors/exception_codes.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"

namespace {

constexpr std::string_view signal_prefix = "SIG";
constexpr std::string_view exception_prefix = "EXCEPTION_";

struct Signal {
  int32_t number;
  const char* name;
};

// The platform's numbers, not those of POSIX; in the order in which names are compared.
constexpr Signal signals[] = {{2, "SIGINT"}, {4, "SIGILL"},   {22, "SIGABRT"},
                              {8, "SIGFPE"}, {11, "SIGSEGV"}, {15, "SIGTERM"}};

constexpr char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool same_without_case(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

// Whether `name` is `bare`, alone or with the prefix in front.
bool is_name(std::string_view name, std::string_view prefix, std::string_view bare) {
  if (same_without_case(name, bare)) return true;
  return name.size() == prefix.size() + bare.size() &&
         same_without_case(name.substr(0, prefix.size()), prefix) &&
         same_without_case(name.substr(prefix.size()), bare);
}

}  // namespace

const char* ov_signal2str(int32_t number) {
  for (const Signal& signal : signals) {
    if (signal.number == number) return signal.name;
  }
  return "UNKNOWN SIGNAL";
}

int32_t ov_str2signal(const char* name) {
  for (const Signal& signal : signals) {
    const std::string_view bare = std::string_view(signal.name).substr(signal_prefix.size());
    if (name && is_name(name, signal_prefix, bare)) return signal.number;
  }
  ov_err("unrecognized signame %s", name ? name : "(null)");
  return -1;
}

const char* ov_exc2str(uint32_t code) {
  for (const ov::ExceptionCode& exception : ov::exception_codes) {
    if (exception.code == code) return exception.name;
  }
  return "UNKNOWN EXCEPTION";
}

uint32_t ov_str2exc(const char* name) {
  for (const ov::ExceptionCode& exception : ov::exception_codes) {
    if (name && is_name(name, exception_prefix, exception.name)) return exception.code;
  }
  return UINT32_MAX;
}
