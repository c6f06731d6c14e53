// User names, against the reference, with short names of domains that may not fit.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/runtime/fake_identity.h"
#include "tests/support/runtime/user_name_reference.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

std::optional<std::string> shortName(const std::string& domain) {
  const auto found = ov::fake_identity.domains.find(ov::lower(domain));
  if (found == ov::fake_identity.domains.end()) return std::nullopt;
  return found->second;
}

std::optional<std::string> noShortName(const std::string&) {
  return std::nullopt;
}

}  // namespace

// The first byte is the level, the second what the name's buffer has beyond the name.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  ov::fake_identity.asked.clear();
  ov::fake_identity.domains = {
      {"a", "Longer.than.the.name"}, {"acme.example", "Acme"}, {"acme", "A"}};
  const int32_t level = data[0] % 4;
  const char* const text = reinterpret_cast<const char*>(data + 2);
  const std::string name(text, ov_str_nlen(text, size - 2));
  std::vector<char> buffer(name.size() + 1 + data[1]);
  memcpy(buffer.data(), name.c_str(), name.size() + 1);
  const ov_rc error = ov_platform_normalize_user_name_ex(buffer.data(), buffer.size(), level);
  std::optional<std::string> expected = name;
  if (level != 0) {
    expected = ov::reference::normalForm(name, ov::fake_identity.computer,
                                         level == 1 ? noShortName : shortName);
  }
  if (expected && expected->size() >= buffer.size()) expected.reset();
  check(error == (expected ? 0 : OV_EBUFFER));
  check(expected.value_or(name) == buffer.data());
  const auto separators = std::count_if(name.begin(), name.end(),
                                        [](char c) { return c == '@' || c == '\\' || c == '/'; });
  if (level == 1 && separators <= 1) {
    const std::string once = buffer.data();
    check(ov_platform_normalize_user_name_ex(buffer.data(), buffer.size(), 1) == error);
    check(once == buffer.data());
  }
  return 0;
}
