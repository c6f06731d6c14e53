#include "runtime/process/environment_block.h"

#include <cstring>

#include <algorithm>
#include <memory>
#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

namespace {

constexpr size_t kRootSize = sizeof "SystemRoot=" + 501;
constexpr int32_t kMostEntries = 4094;

}  // namespace

ov_rc ov::build_environment_block(const char* systemRoot, const char* const* entries, int32_t count,
                                  uint16_t (&block)[kEnvironmentBlockUnits]) {
  char root[kRootSize];
  ov_str_printf_to(root, sizeof root, nullptr, "SystemRoot=%s", systemRoot);
  const size_t taken =
      entries == nullptr || count < 0 ? 0 : static_cast<size_t>(std::min(count, kMostEntries));
  const std::unique_ptr<const char*[]> sorted(new (std::nothrow) const char*[taken + 1]);
  if (sorted == nullptr) return OV_ENOMEM;
  sorted[0] = root;
  std::copy_n(entries, taken, sorted.get() + 1);
  const char** const end = std::remove(sorted.get(), sorted.get() + taken + 1, nullptr);
  std::sort(sorted.get(), end,
            [](const char* a, const char* b) { return strcmp(a, b) < 0; });  // as unsigned bytes
  size_t used = 0;
  for (const char** entry = sorted.get(); entry != end; ++entry) {
    size_t bytes = (kEnvironmentBlockUnits - 1 - used) * sizeof(uint16_t);
    if (bytes == 0 || ov_utf8_to_utf16(*entry, 0, block + used, &bytes) != 0) return OV_ENOMEM;
    used += bytes / sizeof(uint16_t);
  }
  block[used] = 0;
  return 0;
}
