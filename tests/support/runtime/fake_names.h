// For tests: takes the place of the platform's names of this computer and of domains. To be
// included by one source of a program.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"
#include "runtime/strings/ascii.h"

namespace ov {

struct FakeNames {
  std::string computer = "bB";
  ov_rc computer_error = 0;
  // By the name in lower case.
  std::map<std::string, std::string> domains;
  // Called with each domain that is looked up, in the thread that does.
  std::function<void(const std::string& domain)> on_ask;
  // The domains that were looked up. Guarded by fake_names_lock while threads run.
  std::vector<std::string> asked;
};
inline FakeNames fake_names;
inline std::mutex fake_names_lock;

inline std::string lower(std::string text) {
  for (char& c : text) c = ascii_lower(c);
  return text;
}

// NOLINTBEGIN(misc-definitions-in-headers): inline, they would not be there for the linker.
ov_rc computer_name(char* out, size_t size) {
  if (fake_names.computer_error != 0) return fake_names.computer_error;
  return ov_str_ncpy(out, fake_names.computer.c_str(), size);
}

ov_rc flat_domain_name(const char* domain, char* out, size_t size) {
  {
    const std::lock_guard lock(fake_names_lock);
    fake_names.asked.emplace_back(domain);
  }
  if (fake_names.on_ask) fake_names.on_ask(domain);
  const auto found = fake_names.domains.find(lower(domain));
  if (found == fake_names.domains.end()) return 1355;
  return ov_str_ncpy(out, found->second.c_str(), size);
}
// NOLINTEND(misc-definitions-in-headers)

}  // namespace ov
