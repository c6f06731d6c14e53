// Names of this computer and of domains.
#include <windows.h>
#include <dsgetdc.h>
#include <lm.h>

#include <memory>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"

namespace {

struct NetFree {
  void operator()(void* buffer) const { NetApiBufferFree(buffer); }
};

}  // namespace

ov_rc ov::computer_name(char* out, size_t size) {
  auto characters = static_cast<DWORD>(size);
  return code_of(GetComputerNameA(out, &characters));
}

ov_rc ov::flat_domain_name(const char* domain, char* out, size_t size) {
  DOMAIN_CONTROLLER_INFOA* raw = nullptr;
  const DWORD error = DsGetDcNameA(nullptr, domain, nullptr, nullptr, DS_RETURN_FLAT_NAME, &raw);
  const std::unique_ptr<DOMAIN_CONTROLLER_INFOA, NetFree> info(raw);
  if (error != 0) return static_cast<ov_rc>(error);
  if (raw == nullptr || raw->DomainName == nullptr) return ERROR_NO_SUCH_DOMAIN;
  return ov_str_ncpy(out, raw->DomainName, size);
}
