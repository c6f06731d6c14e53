#include "runtime/platform/internal.h"

#include <cstdint>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity.h"
#include "runtime/strings/ascii.h"

using namespace ov;

namespace {

constexpr int32_t kNoteLevel = 1;

class DomainLock {
 public:
  DomainLock() { acquire_domain_lock(); }
  ~DomainLock() { release_domain_lock(); }
  DomainLock(const DomainLock&) = delete;
  DomainLock& operator=(const DomainLock&) = delete;
};

struct Entry {
  uint32_t age;
  char requested[kNameSize];  // empty in an entry that is free
  char resolved[kNameSize];
};

// Guarded by the domain lock, which nobody holds while the platform asks the network.
Entry cache[kRememberedDomains];
uint32_t age_counter = 1;
uint32_t users = 0;

void clear_cache() {
  for (Entry& entry : cache) entry = {};
  age_counter = 1;
}

// The entry of the domain, or the one to use for it: the first free one, or the oldest.
Entry* find_entry(const char* domain) {
  Entry* oldest = cache;
  for (Entry& entry : cache) {
    if (entry.requested[0] == '\0' || equal_but_for_case(entry.requested, domain)) return &entry;
    if (entry.age < oldest->age) oldest = &entry;
  }
  return oldest;
}

// Counts the caller as a user when there is none; whether that was so.
bool init_if_nobody_did() {
  const DomainLock lock;
  if (users > 0) return false;
  clear_cache();
  users = 1;
  return true;
}

// Whether the domain is known; then the result of writing its short name.
bool recall(const char* domain, char* out, size_t size, ov_rc* result) {
  const DomainLock lock;
  Entry* const entry = find_entry(domain);
  if (!equal_but_for_case(entry->requested, domain)) return false;
  entry->age = age_counter++;
  *result = ov_str_ncpy(out, entry->resolved, size);
  return true;
}

// Another thread may have asked for the same domain meanwhile; then its entry is used again.
void remember(const char* domain, const char* resolved) {
  const DomainLock lock;
  Entry* const entry = find_entry(domain);
  ov_str_ncpy(entry->requested, domain, sizeof entry->requested);
  ov_str_ncpy(entry->resolved, resolved, sizeof entry->resolved);
  entry->age = age_counter++;
}

}  // namespace

ov_rc ov_platform_init(void) {
  const DomainLock lock;
  if (users == 0) clear_cache();
  ++users;
  return 0;
}

ov_rc ov_platform_fini(void) {
  const DomainLock lock;
  if (users == 0) return OV_EINVAL;
  if (--users == 0) clear_cache();
  return 0;
}

ov_rc ov::remembered_domain_name(const char* domain, char* out, size_t size) {
  // Noted outside the lock: the log's sink may ask for a user itself.
  if (init_if_nobody_did() && g_dbg_level >= kNoteLevel) {
    ov_dbg("Nobody called ov_platform_init(). Resources may be leaked at program exit.");
  }
  ov_rc result = 0;
  if (recall(domain, out, size, &result)) return result;
  char resolved[kNameSize];
  if (flat_domain_name(domain, resolved, sizeof resolved) != 0) return OV_ENOENT;
  remember(domain, resolved);
  return ov_str_ncpy(out, resolved, size);
}
