// For tests: takes the place of the registry's reading of texts. To be included by one source of a
// program.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_strings.h"

namespace ov {

struct FakeRegistry {
  // Values named "InstallDir" by their key, in the local machine's hive.
  std::map<std::string, std::string> directories;
  std::vector<std::string> asked;
};
inline FakeRegistry fake_registry;

}  // namespace ov

ov_rc ov_reg_get(void* hive, const char* key, const char* name, char* out, uint32_t* length) {
  ov::fake_registry.asked.push_back(key);
  const auto found = ov::fake_registry.directories.find(key);
  if (hive != OV_REG_LOCAL_MACHINE || std::string("InstallDir") != name ||
      found == ov::fake_registry.directories.end()) {
    out[0] = '\0';
    return 2;
  }
  const uint32_t size = *length;
  *length = static_cast<uint32_t>(found->second.size() + 1);
  return ov_str_ncpy(out, found->second.c_str(), size);
}
