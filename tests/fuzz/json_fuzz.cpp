// The JSON reader against a slow one: what parses is the same tree, but for texts that a NUL cuts.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/support/slow_json.h"
#include "text/json_document.h"

namespace {

using Vantrel::Web::JsonDocument;
using Vantrel::Web::jsonText;
using Vantrel::Web::TestSupport::SlowJson;
using Vantrel::Web::TestSupport::SlowJsonReader;

void check(bool holds) {
  if (!holds) std::abort();
}

// The parser puts a question mark and loses a byte where half a surrogate pair stands, and pairs
// what is no pair; only other texts are compared.
bool isComparable(const std::string& input) {
  return input.find("\\ud") == std::string::npos && input.find("\\uD") == std::string::npos;
}

bool same(yajl_val value, const SlowJson& slow) {
  if (jsonText(value) != slow.text.c_str()) return false;
  if (YAJL_IS_ARRAY(value)) {
    if (value->u.array.len != slow.items.size()) return false;
    for (size_t i = 0; i < slow.items.size(); ++i) {
      if (!same(value->u.array.values[i], slow.items[i])) return false;
    }
    return slow.kind == SlowJson::Kind::kArray;
  }
  if (YAJL_IS_OBJECT(value)) {
    if (value->u.object.len != slow.members.size()) return false;
    for (size_t i = 0; i < slow.members.size(); ++i) {
      const auto& [key, member] = slow.members[i];
      if (value->u.object.keys[i] != std::string(key.c_str())) return false;
      if (!same(value->u.object.values[i], member)) return false;
    }
    return slow.kind == SlowJson::Kind::kObject;
  }
  const bool text = YAJL_IS_STRING(value);
  const bool number = YAJL_IS_NUMBER(value);
  return text == (slow.kind == SlowJson::Kind::kString) &&
         number == (slow.kind == SlowJson::Kind::kNumber) &&
         (value->type == yajl_t_true) == (slow.kind == SlowJson::Kind::kTrue);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::string cut = input.c_str();
  JsonDocument document;
  const bool parsed = document.parse(input);
  check(parsed == (document.root() != nullptr) && parsed == document.errorText().empty());
  if (!parsed) return 0;
  const auto slow = SlowJsonReader(cut).read();
  check(slow.has_value());
  check(!isComparable(cut) || same(document.root(), *slow));
  return 0;
}
