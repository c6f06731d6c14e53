// Writing of JSON: quoted texts and objects.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Vantrel::StandIn {

// In double quotes, with every byte escaped that must be; bytes that are not UTF-8 become U+FFFD,
// so that the result is valid JSON whatever came in.
std::string jsonQuoted(std::string_view text);

// One object, written member by member.
class JsonObject {
 public:
  void add(std::string_view name, std::string_view value) { addRaw(name, jsonQuoted(value)); }
  void add(std::string_view name, std::int64_t value) { addRaw(name, std::to_string(value)); }
  // `json` is a value in JSON already.
  void addRaw(std::string_view name, std::string_view json);
  std::string text() const { return "{" + members_ + "}"; }

 private:
  std::string members_;
};

}  // namespace Vantrel::StandIn
