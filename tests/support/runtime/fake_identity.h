// For tests: takes the place of all that the platform tells of this computer, its domains, drives
// and system. To be included by one source of a program.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity.h"
#include "runtime/strings/ascii.h"

namespace ov {

struct FakeSpace {
  ov_rc error;
  uint64_t total, free;
};

struct FakeIdentity {
  std::string computer = "bB";
  ov_rc computer_error = 0;
  std::string owner = "owner";

  // Short names of domains, by the name in lower case.
  std::map<std::string, std::string> domains;
  // Called with each domain that is looked up, in the thread that does.
  std::function<void(const std::string& domain)> on_ask;
  // The domains that were looked up. Guarded by fake_identity_lock while threads run.
  std::vector<std::string> asked;

  // The roots of the drives, each terminated.
  std::u16string roots{u"C:\\\0D:\\\0Z:\\\0", 12};
  ov_rc roots_error = 0;
  size_t roots_room = 0;  // that was offered
  std::map<std::string, FakeSpace> spaces;
  std::vector<std::string> spaces_asked;

  SystemVersion version = {6, 1, "Service Pack 1"};
  std::string locale = "C";
  ov_rc locale_error = 0;
};
inline FakeIdentity fake_identity;
inline std::mutex fake_identity_lock;
// Stands for the lock of the domains.
inline std::mutex fake_domain_lock;

inline std::string lower(std::string text) {
  for (char& c : text) c = ascii_lower(c);
  return text;
}

// NOLINTBEGIN(misc-definitions-in-headers): inline, they would not be there for the linker.
ov_rc computer_name(char* out, size_t size) {
  if (fake_identity.computer_error != 0) return fake_identity.computer_error;
  return ov_str_ncpy(out, fake_identity.computer.c_str(), size);
}

ov_rc flat_domain_name(const char* domain, char* out, size_t size) {
  {
    const std::lock_guard lock(fake_identity_lock);
    fake_identity.asked.emplace_back(domain);
  }
  if (fake_identity.on_ask) fake_identity.on_ask(domain);
  const auto found = fake_identity.domains.find(lower(domain));
  if (found == fake_identity.domains.end()) return 1355;
  return ov_str_ncpy(out, found->second.c_str(), size);
}

ov_rc drive_roots(uint16_t* out, size_t units) {
  fake_identity.roots_room = units;
  if (fake_identity.roots_error != 0) return fake_identity.roots_error;
  const size_t length = fake_identity.roots.size() + 1;
  if (length > units) return OV_EBUFFER;
  std::memcpy(out, fake_identity.roots.c_str(), length * sizeof *out);
  return 0;
}

ov_rc volume_space(const char* path, uint64_t* total, uint64_t* free) {
  fake_identity.spaces_asked.emplace_back(path);
  const FakeSpace space = fake_identity.spaces[path];
  *total = space.total;
  *free = space.free;
  return space.error;
}

ov_rc system_version(SystemVersion* version) {
  *version = fake_identity.version;
  return 0;
}

ov_rc locale_name(char* out, size_t size) {
  if (fake_identity.locale_error != 0) return fake_identity.locale_error;
  return ov_str_ncpy(out, fake_identity.locale.c_str(), size);
}

void acquire_domain_lock() {
  fake_domain_lock.lock();
}

void release_domain_lock() {
  fake_domain_lock.unlock();
}

}  // namespace ov

ov_rc ov_platform_thread_init(void) {
  return 0;
}

ov_rc ov_platform_get_process_uname(char* out, size_t size) {
  return out == nullptr ? OV_EINVAL : ov_str_ncpy(out, ov::fake_identity.owner.c_str(), size);
}
// NOLINTEND(misc-definitions-in-headers)
